// Processor cache detection at start-up, in testable pieces: the CPUID
// registers are read once into a CpuidReadout, and everything after that
// (vendor rules, Intel descriptors, the configuration file, the derived block
// sizes) is a pure function of the readout and the file.
#pragma once

#include <cstdint>
#include <string>

#include "frame/cache_info.h"

namespace tw {

// Cache sizes as the processor reports them.
struct CacheSizes {
    std::uint32_t l1Kb = 8;       // L1 data
    std::uint32_t l2Kb = 256;
    std::uint32_t l3Kb = 0;
    std::uint32_t lineBytes = 32;
};

// The registers the detection reads.
struct CpuidReadout {
    std::string vendor = "Unknown  cpu";  // leaf 0: EBX EDX ECX as 12 characters
    std::uint32_t signature = 0;          // leaf 1 EAX: stepping, model, family
    std::uint32_t descriptors[4] = {};    // leaf 2 EAX EBX ECX EDX (Intel)
    std::uint32_t l1Info = 0;             // leaf 0x80000005 ECX (AMD)
    std::uint32_t l2Info = 0;             // leaf 0x80000006 ECX (AMD)
};

// The registers of this processor; the "Unknown  cpu" readout off x86.
CpuidReadout readCpuid();

// Applies one Intel leaf-2 descriptor byte; bytes outside the library's
// table change nothing.
void applyIntelDescriptor(CacheSizes& sizes, std::uint8_t descriptor);

// Intel: the descriptor bytes of leaf 2 over the starting sizes, when its
// low byte asks for a single round.
CacheSizes intelCacheSizes(const std::uint32_t (&descriptors)[4]);

// AMD: L1 and line from leaf 0x80000005, L2 from leaf 0x80000006, but 64 KB
// for the processor of signature family 6, model 3, stepping 10, whose
// leaf 0x80000006 misreports it.
CacheSizes amdCacheSizes(std::uint32_t signature, std::uint32_t l1Info, std::uint32_t l2Info);

// The vendor's rule (other vendors: the starting sizes), the line at least 32.
CacheSizes cacheSizesFromCpuid(const CpuidReadout& cpu);

// The three configurable values, in bytes.
struct CacheSettings {
    std::uint32_t l1Bytes;     // CacheL1size
    std::uint32_t outerBytes;  // CacheL2size: L2 plus half of L3
    std::uint32_t burstBytes;  // Cacheburst: the line
};

// The defaults the configuration file overrides: L1 at least 8092 bytes
// (the library's own floor, kept as it is), L2 + L3/2 at least 256 KB, and
// the low 16 bits of the line size.
CacheSettings defaultCacheSettings(const CacheSizes& sizes);

// The [UserSetCacheInfo] keys CacheL1size, CacheL2size and Cacheburst of the
// file at `path` over the defaults.  Values are taken as GetPrivateProfileIntA
// returns them, an unsigned reading of the 32-bit integer.
CacheSettings applyConfigFile(const CacheSettings& defaults, const std::string& path);

// The kernels' block sizes from the settings.
CacheTuning deriveCacheTuning(const CacheSettings& settings);

// The whole start-up sequence for a given processor and file.
CacheTuning cacheTuningFor(const CpuidReadout& cpu, const std::string& configPath);

}  // namespace tw
