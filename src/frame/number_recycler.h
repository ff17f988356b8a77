// Numbers a thread deleted wait, zeroed, for its next creations, so that a
// loop of temporaries (new, compute, delete) allocates nothing.  Each thread
// keeps a few small numbers of each radix; larger ones are freed at once, and
// a thread's kept numbers are freed when it ends.
#pragma once

#include "frame/signed_number.h"

namespace tw {

// A kept number (zero, no text), or null when the thread has none.
template <class R>
SignedNumber<R>* takeRecycledNumber() noexcept;

// Keeps x for a later creation, or frees it when it is large or the thread
// keeps enough already.
template <class R>
void recycleNumber(SignedNumber<R>* x) noexcept;

}  // namespace tw
