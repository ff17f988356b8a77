#include "frame/handles.h"

#include <vector>

namespace tw {

void retireHandleObject(const void* handleObject) {
    static auto* retired = new std::vector<const void*>;
    retired->push_back(handleObject);
}

}  // namespace tw
