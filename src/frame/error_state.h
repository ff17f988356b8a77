// The library-wide error code and terminate flag.
//
// Every failure goes through setLastError: the first error since the flag was
// last cleared is the one kept, and recording it raises the flag so that long
// computations return early.  The flag is the one piece of state another thread
// may write (TW_setTerminate), so it is atomic; kernels poll it with a relaxed load.
#pragma once

#include <atomic>
#include <cstdint>

namespace tw {

enum ErrorCode : std::int32_t {
    kErrNone = 0,
    kErrStopped = -2,
    kErrTooLarge = -3,
    kErrHandle = -4,
    kErrDivZero = -5,
    kErrLog = -6,
    kErrRadix = -7,
};

namespace detail {
extern std::atomic<std::uint32_t> terminateFlag;
}

void setLastError(std::int32_t code);
std::int32_t lastError();
// Clears both the error code and the flag (TW_setTerminate(0)).
void clearErrorState();

inline bool terminateRequested() {
    return detail::terminateFlag.load(std::memory_order_relaxed) != 0;
}

}  // namespace tw
