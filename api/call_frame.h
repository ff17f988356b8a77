// The frame every exported handle function passes through: check each handle
// against its family's registry in argument order, stop at the first unknown
// one (its -4 is already recorded) with the function's failure value, then
// forward to the numbers.  No exception leaves: storage exhaustion inside an
// operation becomes -3 with the result number zero.
#pragma once

#include <exception>

#include "frame/error_state.h"
#include "frame/handles.h"

namespace tw {

template <class... Handles>
bool allHandlesKnown(Handles... handles) {
    return (Family<Handles>::registry().contains(handles) && ...);
}

// Queries: the operation's value, or `failure` for an unknown handle.
template <class T, class Op, class... Handles>
T queryNumbers(T failure, Op&& op, Handles... handles) {
    if (!allHandlesKnown(handles...)) return failure;
    try {
        return op(*handles->number...);
    } catch (const std::exception&) {
        setLastError(kErrTooLarge);
        return failure;
    }
}

// Operations that change their first handle: returns it, or null for an
// unknown handle.
template <class Op, class Result, class... Handles>
Result updateNumbers(Op&& op, Result result, Handles... operands) {
    if (!allHandlesKnown(result, operands...)) return nullptr;
    try {
        op(*result->number, *operands->number...);
    } catch (const std::exception&) {
        setLastError(kErrTooLarge);
        result->number->setZero();
    }
    return result;
}

// An operand that the operation deliberately leaves unchecked: its number when
// the handle is live, else null, with no error recorded either way.
template <class Handle>
typename Family<Handle>::Number* uncheckedNumber(Handle h) {
    return Family<Handle>::registry().holds(h) ? h->number : nullptr;
}

}  // namespace tw
