// The platform services on Linux and other POSIX systems: the steady clock
// in nanoseconds as the counter, the project's own INI reader for the
// configuration file, and start-up from a load-time initialiser.
#include "frame/platform.h"

#include <chrono>
#include <cstdlib>

#include "frame/ini_reader.h"
#include "frame/library_start.h"

namespace tw::platform {

std::uint64_t counterFrequency() { return 1000000000u; }

std::uint64_t counterTicks() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::uint64_t(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

std::string configFilePath() {
    const char* named = std::getenv("TARNWICK_INI");
    return named ? named : "Tarnwick.ini";
}

std::int32_t profileInt(const std::string& path, std::string_view section, std::string_view key,
                        std::int32_t fallback) {
    return readProfileInt(path, section, key, fallback);
}

namespace {
// Every program that calls the library links this file (the stopwatch reads
// its counter), so the start-up runs with the other load-time initialisers.
[[maybe_unused]] const bool startedAtLoad = (startLibrary(), true);
}  // namespace

}  // namespace tw::platform
