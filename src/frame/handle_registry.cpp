#include "frame/handle_registry.h"

#include "frame/error_state.h"

namespace tw {

bool HandleRegistry::contains(const void* handle) const {
    if (holds(handle)) return true;
    setLastError(kErrHandle);
    return false;
}

void HandleRegistry::insert(const void* handle) { handles_.insert(reinterpret_cast<std::uintptr_t>(handle)); }

std::uint32_t HandleRegistry::erase(const void* handle) {
    if (handle == nullptr) return 1;
    if (handles_.erase(reinterpret_cast<std::uintptr_t>(handle)) == 0) {
        setLastError(kErrHandle);
        return 0;
    }
    return 1;
}

// The registries are never destroyed: a handle used from another static
// object's destructor at exit still meets a valid registry.
HandleRegistry& decimalRegistry() {
    static HandleRegistry* registry = new HandleRegistry;
    return *registry;
}
HandleRegistry& binaryRegistry() {
    static HandleRegistry* registry = new HandleRegistry;
    return *registry;
}
HandleRegistry& converterRegistry() {
    static HandleRegistry* registry = new HandleRegistry;
    return *registry;
}

}  // namespace tw
