// Exported library-wide functions of the TW_ family.
#include "frame/error_state.h"
#include "tarnwick.h"

extern "C" {

TW_API int32_t TW_CALL TW_getLastError(void) { return tw::lastError(); }
TW_API uint32_t TW_CALL TW_isTerminated(void) { return tw::terminateRequested() ? 1u : 0u; }
TW_API void TW_CALL TW_setTerminate(uint32_t flag) {
    if (flag != 0)
        tw::setLastError(tw::kErrStopped);
    else
        tw::clearErrorState();
}

}  // extern "C"
