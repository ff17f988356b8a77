// The registries of live handles, one per family.  A handle is known to a
// family only if that family's registry holds it, so an HX_ handle passed to an
// HI_ function fails the check like any stale or invented value.
#pragma once

#include <cstdint>
#include <set>

namespace tw {

class HandleRegistry {
public:
    // True for a registered non-null handle; otherwise records -4.
    bool contains(const void* handle) const;
    // The same test without recording anything, for the few arguments that
    // are deliberately not checked.
    bool holds(const void* handle) const {
        return handle != nullptr && handles_.count(reinterpret_cast<std::uintptr_t>(handle)) != 0;
    }
    void insert(const void* handle);
    // 1 when removed or for null; 0 (and -4) when the handle is unknown.
    std::uint32_t erase(const void* handle);
    std::int32_t count() const { return std::int32_t(handles_.size()); }

private:
    std::set<std::uintptr_t> handles_;
};

HandleRegistry& decimalRegistry();
HandleRegistry& binaryRegistry();
HandleRegistry& converterRegistry();

}  // namespace tw
