// The library's start-up, run once when it is loaded: the counter frequency
// for the stopwatch, the processor's caches with the configuration file over
// them, and the widest kernel path the processor runs.  The platform's entry
// point calls it (a load-time initialiser, or DllMain on Windows).
#pragma once

namespace tw {

// Idempotent: later calls do nothing.
void startLibrary();

}  // namespace tw
