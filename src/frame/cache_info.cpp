#include "frame/cache_info.h"

#include "frame/cache_detect.h"
#include "frame/platform.h"

namespace tw {

// Detected once, by the library's start-up, so that no kernel pays for it later.
const CacheTuning& cacheTuning() {
    static const CacheTuning tuning = cacheTuningFor(readCpuid(), platform::configFilePath());
    return tuning;
}

}  // namespace tw
