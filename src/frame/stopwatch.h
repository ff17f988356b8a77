// The library stopwatch.
#pragma once

namespace tw {

// Stops a running stopwatch, keeping the time spent so far; called when an
// error is recorded.
void stopwatchHaltOnError();

}  // namespace tw
