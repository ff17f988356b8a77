// The frame every exported handle function passes through, for every family:
// check each handle against its family's registry in argument order, stop at
// the first unknown one (its -4 is already recorded) with the function's
// failure value, then forward to the objects behind the handles.  No
// exception leaves: storage exhaustion inside an operation becomes -3 with the
// result object cleared (a number zero, a converter empty).  The operations
// settle their own aliasing: they see the objects, and equal handles are the
// same object.
#pragma once

#include <cstdint>
#include <exception>
#include <tuple>
#include <vector>

#include "frame/error_state.h"
#include "frame/handles.h"

namespace tw {

namespace frame_detail {

// The object behind h while every handle before it was known; null once one
// was not (only the first unknown handle records -4).
template <class Handle>
[[gnu::always_inline]] inline typename Family<Handle>::Object* nextObject(bool& known, Handle h) {
    if (!known) return nullptr;
    auto* object = checkedObject(h);
    known = object != nullptr;
    return object;
}

}  // namespace frame_detail

// Whether every handle is live, checked in order; the first unknown one records -4.
template <class... Handles>
bool allHandlesKnown(Handles... handles) {
    return ((checkedObject(handles) != nullptr) && ...);
}

// Queries: the operation's value, or `failure` for an unknown handle.  The
// frames are inlined into each exported function, so the operation is a
// direct call and the handle checks cost no call of their own.
template <class T, class Op, class... Handles>
[[gnu::always_inline]] inline T frameQuery(T failure, Op&& op, Handles... handles) {
    bool known = true;
    // A braced list evaluates left to right: the handles are checked in order.
    const std::tuple<typename Family<Handles>::Object*...> objects{frame_detail::nextObject(known, handles)...};
    if (!known) return failure;
    try {
        return std::apply([&op](auto*... o) { return op(*o...); }, objects);
    } catch (const std::exception&) {
        setLastError(kErrTooLarge);
        return failure;
    }
}

// Operations that change the object of their first handle: returns it, or
// null for an unknown handle.
template <class Op, class Result, class... Handles>
[[gnu::always_inline]] inline Result frameUpdate(Op&& op, Result result, Handles... operands) {
    bool known = true;
    auto* target = frame_detail::nextObject(known, result);
    const std::tuple<typename Family<Handles>::Object*...> objects{frame_detail::nextObject(known, operands)...};
    if (!known) return nullptr;
    try {
        std::apply([&op, target](auto*... o) { op(*target, *o...); }, objects);
    } catch (const std::exception&) {
        setLastError(kErrTooLarge);
        Family<Result>::clear(*target);
    }
    return result;
}

// The objects behind an array of handles of one family, checked in order; an
// unknown handle, or a null array with a non-zero count, records -4.
template <class Handle>
struct HandleArray {
    std::vector<const typename Family<Handle>::Object*> objects;
    bool known = true;

    HandleArray(const Handle* handles, std::uint32_t count) {
        if (handles == nullptr && count != 0) {
            setLastError(kErrHandle);
            known = false;
            return;
        }
        objects.reserve(count);
        for (std::uint32_t i = 0; i < count && known; ++i)
            if (const auto* object = frame_detail::nextObject(known, handles[i])) objects.push_back(object);
    }
};

// Operations whose operands are an array of handles (list products, vector
// GCDs): the result handle first, then the array; null for an unknown handle.
template <class Op, class Result, class Handle>
Result frameUpdateFromArray(Op&& op, Result result, const Handle* handles, std::uint32_t count) {
    auto* target = checkedObject(result);
    if (target == nullptr) return nullptr;
    try {
        const HandleArray<Handle> operands(handles, count);
        if (!operands.known) return nullptr;
        op(*target, operands.objects);
    } catch (const std::exception&) {
        setLastError(kErrTooLarge);
        Family<Result>::clear(*target);
    }
    return result;
}

// An operand that the operation deliberately leaves unchecked: its object
// when the handle is live, else null, with no error recorded either way.
template <class Handle>
typename Family<Handle>::Object* uncheckedObject(Handle h) {
    return Family<Handle>::find(h);
}

}  // namespace tw
