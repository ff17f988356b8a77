// The traits that tie a C handle type to its registry and object type, and
// the creation and deletion of handles.  The C header's handle structs stay
// incomplete: a handle is a value of the registry's encoding, not an address.
#pragma once

#include <cstdint>
#include <exception>
#include <utility>
#include <type_traits>

#include "frame/error_state.h"
#include "frame/handle_registry.h"
#include "frame/number_recycler.h"
#include "frame/signed_number.h"
#include "tarnwick.h"

namespace tw {

template <class Handle> struct Family;

// What the call frame needs of a family: its registry, the object behind a
// live handle, and how that object is cleared when storage runs out.  Handle
// values are the registry's own encoding and are never dereferenced.
template <class Handle, class ObjectType, HandleRegistry& (*Registry)()>
struct RegisteredFamily {
    using Object = ObjectType;
    [[gnu::always_inline]] static HandleRegistry& registry() { return Registry(); }
    // The object behind a live handle, else null; records nothing.
    [[gnu::always_inline]] static Object* find(Handle h) { return static_cast<Object*>(registry().find(h)); }
};

template <class Handle, class NumberType, HandleRegistry& (*Registry)()>
struct NumberFamily : RegisteredFamily<Handle, NumberType, Registry> {
    using Number = NumberType;
    static void clear(NumberType& x) { x.setZero(); }
};
template <> struct Family<HI_handle> : NumberFamily<HI_handle, DecimalNumber, decimalRegistry> {};
template <> struct Family<HX_handle> : NumberFamily<HX_handle, BinaryNumber, binaryRegistry> {};

// The object behind a live handle, or null after recording -4.  Always
// inline: every call of the C interface makes one for each handle.
template <class Handle>
[[gnu::always_inline]] inline typename Family<Handle>::Object* checkedObject(Handle h) {
    auto* object = Family<Handle>::find(h);
    if (object == nullptr) setLastError(kErrHandle);
    return object;
}

// Registers a new object (null when it could not be allocated, -3 recorded)
// under a new handle.  When no slot can be had the handle is null and -3 is
// recorded; such a creation is counted once as the registry's null entry.
template <class Handle, class Object>
Handle registerObject(Object* object) {
    void* handle = object != nullptr ? Family<Handle>::registry().insert(object) : nullptr;
    if (handle == nullptr) {
        delete object;
        Family<Handle>::registry().countNullEntry();
    }
    return static_cast<Handle>(handle);
}

// A new object of the family under a new handle (see registerObject).
template <class Handle, class Object, class... Args>
Handle createHandle(Args&&... args) {
    Object* object = nullptr;
    try {
        object = new Object(std::forward<Args>(args)...);
    } catch (const std::exception&) {
        setLastError(kErrTooLarge);
    }
    return registerObject<Handle>(object);
}

// 1 when deleted (its object freed) or null; 0 with -4 for any other value.
template <class Handle>
std::uint32_t deleteHandle(Handle h) {
    if (h == nullptr) return 1;
    auto* object = static_cast<typename Family<Handle>::Object*>(Family<Handle>::registry().take(h));
    if (object == nullptr) {
        setLastError(kErrHandle);
        return 0;
    }
    using Object = typename Family<Handle>::Object;
    if constexpr (std::is_same_v<Object, DecimalNumber> || std::is_same_v<Object, BinaryNumber>)
        recycleNumber(object);
    else
        delete object;
    return 1;
}

// A new zero number: one the thread deleted before, if it kept one.
template <class Handle>
Handle createNumberHandle() {
    using Number = typename Family<Handle>::Number;
    if (Number* kept = takeRecycledNumber<typename Number::Radix>()) return registerObject<Handle>(kept);
    return createHandle<Handle, Number>();
}

}  // namespace tw
