#include "frame/cache_detect.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frame/platform.h"
#include "frame/radix.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#define TW_HAVE_CPUID 1
#endif

namespace tw {

namespace {

enum class Level : std::uint8_t { L1, L2, L3 };

struct Descriptor {
    std::uint8_t code;
    Level level;
    std::uint16_t kb;
    std::uint8_t lineBytes;  // 0: the descriptor does not say
};

// The Intel leaf-2 descriptors the library knows.  0x8D says 3096 KB (not
// 3072): that is the library's own value and is kept.
constexpr Descriptor kIntelDescriptors[] = {
    {0x0A, Level::L1, 8, 0},     {0x0C, Level::L1, 16, 0},    {0x10, Level::L1, 16, 0},
    {0x15, Level::L1, 16, 0},    {0x60, Level::L1, 16, 0},    {0x1A, Level::L2, 96, 64},
    {0x22, Level::L3, 512, 64},  {0x23, Level::L3, 1024, 64}, {0x25, Level::L3, 2048, 64},
    {0x88, Level::L3, 2048, 64}, {0x29, Level::L3, 4096, 64}, {0x89, Level::L3, 4096, 64},
    {0x39, Level::L2, 128, 64},  {0x79, Level::L2, 128, 64},  {0x3C, Level::L2, 256, 64},
    {0x7A, Level::L2, 256, 64},  {0x41, Level::L2, 128, 0},   {0x81, Level::L2, 128, 0},
    {0x42, Level::L2, 256, 0},   {0x82, Level::L2, 256, 0},   {0x43, Level::L2, 512, 0},
    {0x83, Level::L2, 512, 0},   {0x44, Level::L2, 1024, 0},  {0x84, Level::L2, 1024, 0},
    {0x45, Level::L2, 2048, 0},  {0x85, Level::L2, 2048, 0},  {0x66, Level::L1, 8, 64},
    {0x67, Level::L1, 16, 64},   {0x77, Level::L1, 16, 64},   {0x68, Level::L1, 32, 64},
    {0x7B, Level::L2, 512, 64},  {0x7C, Level::L2, 1024, 64}, {0x7E, Level::L2, 256, 128},
    {0x8A, Level::L3, 8192, 64}, {0x8D, Level::L3, 3096, 128},
};

constexpr std::uint32_t kMinLineBytes = 32;
constexpr std::uint32_t kMinL1Bytes = 8092;
constexpr std::uint32_t kMinOuterBytes = 262144;

// Largest power of two not above bytes / 4; 0 below 4 bytes.
std::uint32_t wordsFloorPowerOfTwo(std::uint32_t bytes) {
    const std::uint32_t words = bytes / 4;
    return words ? std::uint32_t(1) << (bitLength32(words) - 1) : 0;
}

std::uint32_t l1FanoutFor(std::uint32_t l1Bytes) {
    if (l1Bytes <= 3) return 0;
    unsigned shifts = 0;
    for (std::uint32_t v = l1Bytes / 16; v != 0; v >>= 2) ++shifts;
    return std::uint32_t(1) << shifts;
}

}  // namespace

CpuidReadout readCpuid() {
    CpuidReadout cpu;
#ifdef TW_HAVE_CPUID
    unsigned a, b, c, d;
    const unsigned maxLeaf = __get_cpuid_max(0, nullptr);
    if (maxLeaf == 0) return cpu;
    __cpuid(0, a, b, c, d);
    char name[12];
    std::memcpy(name, &b, 4);
    std::memcpy(name + 4, &d, 4);
    std::memcpy(name + 8, &c, 4);
    cpu.vendor.assign(name, 12);
    if (maxLeaf >= 1) {
        __cpuid(1, a, b, c, d);
        cpu.signature = a;
    }
    if (maxLeaf >= 2) {
        __cpuid(2, a, b, c, d);
        cpu.descriptors[0] = a;
        cpu.descriptors[1] = b;
        cpu.descriptors[2] = c;
        cpu.descriptors[3] = d;
    }
    // Leaves beyond the maximum return unrelated data: leave them zero.
    if (__get_cpuid_max(0x80000000, nullptr) >= 0x80000006) {
        __cpuid(0x80000005, a, b, c, d);
        cpu.l1Info = c;
        __cpuid(0x80000006, a, b, c, d);
        cpu.l2Info = c;
    }
#endif
    return cpu;
}

void applyIntelDescriptor(CacheSizes& sizes, std::uint8_t code) {
    for (const Descriptor& d : kIntelDescriptors) {
        if (d.code != code) continue;
        switch (d.level) {
            case Level::L1: sizes.l1Kb = d.kb; break;
            case Level::L2: sizes.l2Kb = d.kb; break;
            case Level::L3: sizes.l3Kb = d.kb; break;
        }
        if (d.lineBytes != 0) sizes.lineBytes = d.lineBytes;
        return;
    }
}

CacheSizes intelCacheSizes(const std::uint32_t (&descriptors)[4]) {
    CacheSizes sizes;
    if ((descriptors[0] & 0xFF) != 1) return sizes;
    for (int r = 0; r < 4; ++r) {
        const std::uint32_t reg = descriptors[r];
        if (reg & 0x80000000u) continue;  // the register holds no descriptors
        // EAX's low byte is the round count, not a descriptor.
        for (int byte = (r == 0 ? 1 : 0); byte < 4; ++byte) applyIntelDescriptor(sizes, std::uint8_t(reg >> (8 * byte)));
    }
    return sizes;
}

CacheSizes amdCacheSizes(std::uint32_t signature, std::uint32_t l1Info, std::uint32_t l2Info) {
    CacheSizes sizes;
    sizes.l1Kb = l1Info >> 24;
    sizes.lineBytes = l1Info & 0xFF;
    const std::uint32_t stepping = signature & 0xF, model = (signature >> 4) & 0xF, family = (signature >> 8) & 0xF;
    sizes.l2Kb = (stepping == 10 && model == 3 && family == 6) ? 64 : l2Info >> 16;
    sizes.l3Kb = 0;
    return sizes;
}

CacheSizes cacheSizesFromCpuid(const CpuidReadout& cpu) {
    CacheSizes sizes;
    if (cpu.vendor == "GenuineIntel")
        sizes = intelCacheSizes(cpu.descriptors);
    else if (cpu.vendor == "AuthenticAMD")
        sizes = amdCacheSizes(cpu.signature, cpu.l1Info, cpu.l2Info);
    sizes.lineBytes = std::max(sizes.lineBytes, kMinLineBytes);
    return sizes;
}

CacheSettings defaultCacheSettings(const CacheSizes& sizes) {
    return {std::max(sizes.l1Kb * 1024, kMinL1Bytes),
            std::max((sizes.l2Kb + sizes.l3Kb / 2) * 1024, kMinOuterBytes),
            sizes.lineBytes & 0xFFFF};
}

CacheSettings applyConfigFile(const CacheSettings& defaults, const std::string& path) {
    constexpr std::string_view kSection = "UserSetCacheInfo";
    auto read = [&](std::string_view key, std::uint32_t fallback) {
        return std::uint32_t(platform::profileInt(path, kSection, key, std::int32_t(fallback)));
    };
    return {read("CacheL1size", defaults.l1Bytes), read("CacheL2size", defaults.outerBytes),
            read("Cacheburst", defaults.burstBytes)};
}

CacheTuning deriveCacheTuning(const CacheSettings& s) {
    return {wordsFloorPowerOfTwo(s.outerBytes), wordsFloorPowerOfTwo(s.burstBytes),
            wordsFloorPowerOfTwo(s.l1Bytes), l1FanoutFor(s.l1Bytes)};
}

CacheTuning cacheTuningFor(const CpuidReadout& cpu, const std::string& configPath) {
    return deriveCacheTuning(applyConfigFile(defaultCacheSettings(cacheSizesFromCpuid(cpu)), configPath));
}

}  // namespace tw
