// What the library asks of the operating system, in one place: the
// high-resolution counter, the configuration file, a lock that is ready
// before any constructor runs, and the start-up at load.  platform_posix.cpp
// and platform_win32.cpp implement it; the build compiles the one that fits.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#if !defined(_WIN32)
#include <mutex>
#endif

namespace tw::platform {

// Ticks a second of the counter, read once at load; 0 when the machine has
// no high-resolution counter (every stopwatch reading is then 0).
std::uint64_t counterFrequency();
// The counter now, in ticks.
std::uint64_t counterTicks();

// The configuration file as the platform names it: on Windows the bare name
// "Tarnwick.ini", which the private-profile functions look up in the Windows
// folder; elsewhere $TARNWICK_INI when set, else Tarnwick.ini in the current
// folder.
std::string configFilePath();
// An integer of [section] key= in the file at `path`, as
// GetPrivateProfileIntA reads it; `fallback` when the file, the section or
// the key is missing.
std::int32_t profileInt(const std::string& path, std::string_view section, std::string_view key,
                        std::int32_t fallback);

// A mutex with a constant initialiser, for objects that are constant-
// initialised so that they exist before and after every other.  The
// standard mutex of the Windows threads library is not constexpr.
#if defined(_WIN32)
class ConstantMutex {
public:
    constexpr ConstantMutex() = default;
    ConstantMutex(const ConstantMutex&) = delete;
    ConstantMutex& operator=(const ConstantMutex&) = delete;
    void lock() noexcept;
    void unlock() noexcept;

private:
    void* state_ = nullptr;  // an SRWLOCK: one pointer, null when free
};
#else
using ConstantMutex = std::mutex;
#endif

}  // namespace tw::platform
