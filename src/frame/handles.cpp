#include "frame/handles.h"

#include <new>
#include <vector>

namespace tw {

void retireHandleObject(const void* handleObject) noexcept {
    static auto* retired = new (std::nothrow) std::vector<const void*>;
    // Without room in the list the shell stays allocated all the same: its
    // address is still never handed out again, it is only unlisted.
    if (retired == nullptr) return;
    try {
        retired->push_back(handleObject);
    } catch (const std::bad_alloc&) {
    }
}

}  // namespace tw
