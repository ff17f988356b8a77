// The platform services on Windows: QueryPerformanceCounter, the private-
// profile functions for Tarnwick.ini, slim reader/writer locks, and DllMain.
#include "frame/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "frame/library_start.h"

namespace tw::platform {

std::uint64_t counterFrequency() {
    LARGE_INTEGER frequency;
    return QueryPerformanceFrequency(&frequency) ? std::uint64_t(frequency.QuadPart) : 0;
}

std::uint64_t counterTicks() {
    LARGE_INTEGER now;
    return QueryPerformanceCounter(&now) ? std::uint64_t(now.QuadPart) : 0;
}

std::string configFilePath() { return "Tarnwick.ini"; }

std::int32_t profileInt(const std::string& path, std::string_view section, std::string_view key,
                        std::int32_t fallback) {
    const std::string sectionName(section), keyName(key);
    // The result is a UINT; the library takes it as the 32-bit integer it reads.
    return std::int32_t(GetPrivateProfileIntA(sectionName.c_str(), keyName.c_str(), fallback, path.c_str()));
}

static_assert(sizeof(SRWLOCK) == sizeof(void*), "an SRWLOCK is one pointer, null when free");

void ConstantMutex::lock() noexcept { AcquireSRWLockExclusive(reinterpret_cast<PSRWLOCK>(&state_)); }
void ConstantMutex::unlock() noexcept { ReleaseSRWLockExclusive(reinterpret_cast<PSRWLOCK>(&state_)); }

}  // namespace tw::platform

// The DLL's entry point.  The C++ runtime's entry has run the load-time
// initialisers by the time it calls here; the library starts on attach.
// Nothing is undone on detach: the registries are never destroyed (handles
// may still be used by other DLLs' static destructors), and at process exit
// the system frees everything at once.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) tw::startLibrary();
    return TRUE;
}
