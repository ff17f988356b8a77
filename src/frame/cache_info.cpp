#include "frame/cache_info.h"

#include "frame/cache_detect.h"

namespace tw {

const CacheTuning& cacheTuning() {
    static const CacheTuning tuning = cacheTuningFor(readCpuid(), configFilePath());
    return tuning;
}

namespace {
// Detection runs while the library loads, so no kernel pays for it later.
[[maybe_unused]] const CacheTuning& detectedAtLoad = cacheTuning();
}  // namespace

}  // namespace tw
