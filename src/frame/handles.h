// Handle objects and the traits that tie a C handle type to its registry and
// number type.  The C header declares the handle structs incomplete; they are
// completed here.
#pragma once

#include <cstdint>
#include <new>
#include <type_traits>

#include "frame/error_state.h"
#include "frame/handle_registry.h"
#include "frame/signed_number.h"
#include "tarnwick.h"

// One field: the number behind the handle.  After delete the field is null and
// the handle object itself is kept, so its address is never handed out again.
struct HI_number_ {
    tw::DecimalNumber* number;
};
struct HX_number_ {
    tw::BinaryNumber* number;
};

namespace tw {

template <class Handle> struct Family;

// What the call frame needs of a family: its registry, the object behind a
// live handle, and how that object is cleared when storage runs out.
template <class Handle, class NumberType, HandleRegistry& (*Registry)()>
struct NumberFamily {
    using Number = NumberType;
    using Object = NumberType;
    static HandleRegistry& registry() { return Registry(); }
    static Object& object(Handle h) { return *h->number; }
    static void clear(Object& x) { x.setZero(); }
};
template <> struct Family<HI_handle> : NumberFamily<HI_handle, DecimalNumber, decimalRegistry> {};
template <> struct Family<HX_handle> : NumberFamily<HX_handle, BinaryNumber, binaryRegistry> {};

// The number behind a live handle, or null after recording -4.
template <class Handle>
typename Family<Handle>::Number* numberOf(Handle h) {
    return Family<Handle>::registry().contains(h) ? h->number : nullptr;
}

// Keeps retired handle objects reachable (and their addresses taken) for the
// life of the process; only the pointer-sized shell stays, the number is freed.
void retireHandleObject(const void* handleObject) noexcept;

template <class Handle>
Handle createNumberHandle() {
    using Number = typename Family<Handle>::Number;
    // A handle whose number cannot be allocated is not handed out: the null
    // handle is registered (and counted) instead, and never passes a check.
    auto* handle = new (std::nothrow) std::remove_pointer_t<Handle>{nullptr};
    if (handle != nullptr) {
        try {
            handle->number = new Number();
        } catch (const std::exception&) {
            delete handle;
            handle = nullptr;
            setLastError(kErrTooLarge);
        }
    }
    Family<Handle>::registry().insert(handle);
    return handle;
}

template <class Handle>
std::uint32_t deleteNumberHandle(Handle h) {
    if (h == nullptr) return 1;
    if (Family<Handle>::registry().erase(h) == 0) return 0;
    delete h->number;
    h->number = nullptr;
    retireHandleObject(h);
    return 1;
}

}  // namespace tw
