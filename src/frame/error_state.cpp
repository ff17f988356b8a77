#include "frame/error_state.h"

#include "frame/stopwatch.h"

namespace tw {

namespace detail {
std::atomic<std::uint32_t> terminateFlag{0};
}

namespace {
std::atomic<std::int32_t> lastErrorCode{0};
}

void setLastError(std::int32_t code) {
    if (terminateRequested()) return;  // first error wins
    lastErrorCode.store(code, std::memory_order_relaxed);
    if (code != 0) {
        detail::terminateFlag.store(1, std::memory_order_relaxed);
        stopwatchHaltOnError();
    }
}

std::int32_t lastError() { return lastErrorCode.load(std::memory_order_relaxed); }

void clearErrorState() {
    lastErrorCode.store(0, std::memory_order_relaxed);
    detail::terminateFlag.store(0, std::memory_order_relaxed);
}

}  // namespace tw
