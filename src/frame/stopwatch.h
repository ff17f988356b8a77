// The library stopwatch: one process-wide timer over a tick counter.
//
// While running, the stored value is the counter reading at a (virtual) start;
// while stopped, it is the elapsed tick count.  Starting turns an elapsed count
// E into the virtual start now - E, so time accumulates over start/stop cycles.
#pragma once

#include <cstdint>

#include "tarnwick.h"

namespace tw {

// Reads the counter's frequency; the library's start-up calls it once.
// Until then the stopwatch behaves as on a machine without a counter.
void stopwatchStart();

// Starts (on != 0) or stops (on == 0).  `on` is compared with the running
// state as a whole word, so callers pass 0 or 1.
void stopwatchEnable(std::uint32_t on);

// Sets the elapsed time to `value` in `unit` (0 ms, 1 us, 2 ns), rounding up
// to whole ticks, without changing the running state.  Invalid units: no change.
void stopwatchReset(std::uint32_t value, std::int32_t unit);

// Elapsed time in `unit`, truncated; 0 for an invalid unit.
std::uint64_t stopwatchRead(std::int32_t unit);

// Elapsed time as text (format 0: hh:mm:ss.mmm, others: seconds with six
// decimals and an optional unit).  The text lives in a static buffer of its
// width, valid until the next call of the same width.
const char* stopwatchTextA(std::int32_t format);
const tw_wchar* stopwatchTextW(std::int32_t format);

// Stops a running stopwatch exactly as stopwatchEnable(0), keeping the time
// spent so far; called when an error is recorded.
void stopwatchHaltOnError();

// Test seam: replaces the tick source and its frequency (ticks a second).
// A frequency of 0 stands for a machine without a counter: every stopwatch
// function then does nothing and reads 0 or null.  A null `now` restores the
// platform's counter.
void setStopwatchClockForTesting(std::uint64_t (*now)(), std::uint64_t frequency);

}  // namespace tw
