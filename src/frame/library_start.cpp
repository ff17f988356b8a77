#include "frame/library_start.h"

#include "frame/cache_info.h"
#include "frame/kernel_paths.h"
#include "frame/stopwatch.h"

namespace tw {

void startLibrary() {
    static const bool started = [] {
        stopwatchStart();
        (void)cacheTuning();
        resetKernelPath();
        return true;
    }();
    (void)started;
}

}  // namespace tw
