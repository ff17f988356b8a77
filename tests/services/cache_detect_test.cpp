// Cache detection from fixed CPUID readouts and configuration files written
// to a scratch folder; the machine's own processor only in the load check.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "frame/cache_detect.h"
#include "frame/cache_info.h"
#include "frame/ini_reader.h"

namespace {

namespace fs = std::filesystem;
using tw::CacheSettings;
using tw::CacheSizes;
using tw::CpuidReadout;

::testing::AssertionResult sizesAre(const CacheSizes& s, std::uint32_t l1, std::uint32_t l2, std::uint32_t l3,
                                    std::uint32_t line) {
    if (s.l1Kb == l1 && s.l2Kb == l2 && s.l3Kb == l3 && s.lineBytes == line) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "L1 " << s.l1Kb << " KB, L2 " << s.l2Kb << " KB, L3 " << s.l3Kb
                                         << " KB, line " << s.lineBytes;
}

CpuidReadout intel(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    CpuidReadout cpu;
    cpu.vendor = "GenuineIntel";
    cpu.descriptors[0] = a;
    cpu.descriptors[1] = b;
    cpu.descriptors[2] = c;
    cpu.descriptors[3] = d;
    return cpu;
}

CpuidReadout amd(std::uint32_t signature, std::uint32_t l1Info, std::uint32_t l2Info) {
    CpuidReadout cpu;
    cpu.vendor = "AuthenticAMD";
    cpu.signature = signature;
    cpu.l1Info = l1Info;
    cpu.l2Info = l2Info;
    return cpu;
}

// ---- processor readouts ----

TEST(IntelDescriptors, EveryByteAgainstTheTable) {
    struct Expect {
        char level;  // '1', '2', '3'
        std::uint32_t kb, line;
    };
    const std::map<int, Expect> table = {
        {0x0A, {'1', 8, 0}},     {0x0C, {'1', 16, 0}},    {0x10, {'1', 16, 0}},     {0x15, {'1', 16, 0}},
        {0x60, {'1', 16, 0}},    {0x1A, {'2', 96, 64}},   {0x22, {'3', 512, 64}},   {0x23, {'3', 1024, 64}},
        {0x25, {'3', 2048, 64}}, {0x88, {'3', 2048, 64}}, {0x29, {'3', 4096, 64}},  {0x89, {'3', 4096, 64}},
        {0x39, {'2', 128, 64}},  {0x79, {'2', 128, 64}},  {0x3C, {'2', 256, 64}},   {0x7A, {'2', 256, 64}},
        {0x41, {'2', 128, 0}},   {0x81, {'2', 128, 0}},   {0x42, {'2', 256, 0}},    {0x82, {'2', 256, 0}},
        {0x43, {'2', 512, 0}},   {0x83, {'2', 512, 0}},   {0x44, {'2', 1024, 0}},   {0x84, {'2', 1024, 0}},
        {0x45, {'2', 2048, 0}},  {0x85, {'2', 2048, 0}},  {0x66, {'1', 8, 64}},     {0x67, {'1', 16, 64}},
        {0x77, {'1', 16, 64}},   {0x68, {'1', 32, 64}},   {0x7B, {'2', 512, 64}},   {0x7C, {'2', 1024, 64}},
        {0x7E, {'2', 256, 128}}, {0x8A, {'3', 8192, 64}}, {0x8D, {'3', 3096, 128}},
    };
    // Distinct starting values, so that a descriptor writing the wrong field shows.
    const CacheSizes start{1, 2, 3, 4};
    for (int code = 0; code < 256; ++code) {
        CacheSizes s = start;
        tw::applyIntelDescriptor(s, std::uint8_t(code));
        CacheSizes want = start;
        if (auto it = table.find(code); it != table.end()) {
            const Expect& e = it->second;
            (e.level == '1' ? want.l1Kb : e.level == '2' ? want.l2Kb : want.l3Kb) = e.kb;
            if (e.line) want.lineBytes = e.line;
        }
        EXPECT_TRUE(sizesAre(s, want.l1Kb, want.l2Kb, want.l3Kb, want.lineBytes)) << std::hex << "descriptor 0x" << code;
    }
}

TEST(IntelDescriptors, LeafTwoRegisters) {
    // Pentium 4: 0x66 (L1 8 KB, 64-byte lines) and 0x7B (L2 512 KB) among unknown bytes.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(intel(0x665B5001, 0, 0, 0x007B7040)), 8, 512, 0, 64));
    // Pentium III: 0x43 and 0x0C; the line stays at 32.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(intel(0x03020101, 0, 0, 0x0C040843)), 16, 512, 0, 32));
    // A later descriptor of the same level wins; the 3096 KB L3 of 0x8D.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(intel(0x00680A01, 0x8D, 0, 0)), 32, 256, 3096, 128));
    // A register with bit 31 set holds no descriptors.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(intel(0x00000001, 0x8000008D, 0x00000068, 0)), 32, 256, 0, 64));
    // More than one round asked for: the starting sizes.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(intel(0x665B5002, 0, 0, 0x007B7040)), 8, 256, 0, 32));
}

TEST(AmdCaches, FromExtendedLeaves) {
    // Athlon 64: 64 KB L1 data with 64-byte lines, 512 KB L2.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(amd(0x00020FF2, 0x40020140, 0x02008140)), 64, 512, 0, 64));
    // A 16-byte line is raised to 32.
    EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(amd(0x00000F00, 0x10020110, 0x01008110)), 16, 256, 0, 32));
}

TEST(AmdCaches, TheOneProcessorThatMisreportsItsL2) {
    // Family 6, model 3, stepping 10 reports a 1 KB L2; it has 64 KB.
    EXPECT_EQ(tw::cacheSizesFromCpuid(amd(0x0000063A, 0x40020140, 0x00018140)).l2Kb, 64u);
    for (std::uint32_t neighbour : {0x00000639u, 0x0000064Au, 0x0000073Au, 0x0000062Au})
        EXPECT_EQ(tw::cacheSizesFromCpuid(amd(neighbour, 0x40020140, 0x00018140)).l2Kb, 1u) << std::hex << neighbour;
}

TEST(OtherVendors, GetTheStartingSizes) {
    for (const char* vendor : {"Unknown  cpu", "CentaurHauls", "GenuineIntex", "HygonGenuine", ""}) {
        CpuidReadout cpu = intel(0x665B5001, 0, 0, 0x007B7040);
        cpu.l1Info = 0x40020140;
        cpu.l2Info = 0x02008140;
        cpu.vendor = vendor;
        EXPECT_TRUE(sizesAre(tw::cacheSizesFromCpuid(cpu), 8, 256, 0, 32)) << vendor;
    }
}

// ---- defaults and derived values ----

TEST(CacheSettings, DefaultsWithTheirFloors) {
    auto defaults = [](std::uint32_t l1, std::uint32_t l2, std::uint32_t l3, std::uint32_t line) {
        return tw::defaultCacheSettings(CacheSizes{l1, l2, l3, line});
    };
    EXPECT_EQ(defaults(4, 256, 0, 32).l1Bytes, 8092u);  // the library's floor, not 8192
    EXPECT_EQ(defaults(7, 256, 0, 32).l1Bytes, 8092u);
    EXPECT_EQ(defaults(8, 256, 0, 32).l1Bytes, 8192u);
    EXPECT_EQ(defaults(32, 256, 0, 32).l1Bytes, 32768u);
    EXPECT_EQ(defaults(8, 96, 0, 32).outerBytes, 262144u);
    EXPECT_EQ(defaults(8, 96, 200, 32).outerBytes, 262144u);        // (96 + 100) KB is below the floor
    EXPECT_EQ(defaults(8, 512, 3096, 32).outerBytes, 2109440u);     // (512 + 1548) KB
    EXPECT_EQ(defaults(8, 512, 3, 32).outerBytes, 512u * 1024 + 1024);  // half of 3 KB is 1 KB
    EXPECT_EQ(defaults(8, 256, 0, 0x12345).burstBytes, 0x2345u);
}

TEST(CacheTuning, DerivedValues) {
    const tw::CacheTuning typical = tw::deriveCacheTuning(CacheSettings{32768, 2109440, 64});
    EXPECT_EQ(typical.cacheBlockWords, 524288u);
    EXPECT_EQ(typical.burstWords, 16u);
    EXPECT_EQ(typical.l1Words, 8192u);
    EXPECT_EQ(typical.l1Fanout, 64u);  // 2048 -> 512 -> 128 -> 32 -> 8 -> 2 -> 0: six shifts

    const tw::CacheTuning floors = tw::deriveCacheTuning(CacheSettings{8092, 262144, 32});
    EXPECT_EQ(floors.cacheBlockWords, 65536u);
    EXPECT_EQ(floors.burstWords, 8u);
    EXPECT_EQ(floors.l1Words, 1024u);  // 2023 words
    EXPECT_EQ(floors.l1Fanout, 32u);   // 505 -> 126 -> 31 -> 7 -> 1 -> 0

    const struct {
        std::uint32_t l1, words, fanout;
    } small[] = {{0, 0, 0}, {3, 0, 0}, {4, 1, 1}, {15, 2, 1}, {16, 4, 2}, {63, 8, 2}, {64, 16, 4}, {0xFFFFFFFFu, 1u << 29, 1u << 14}};
    for (const auto& c : small) {
        const tw::CacheTuning t = tw::deriveCacheTuning(CacheSettings{c.l1, c.l1, c.l1});
        EXPECT_EQ(t.l1Words, c.words) << c.l1;
        EXPECT_EQ(t.cacheBlockWords, c.words) << c.l1;
        EXPECT_EQ(t.burstWords, c.words) << c.l1;
        EXPECT_EQ(t.l1Fanout, c.fanout) << c.l1;
    }
}

// ---- the configuration file ----

TEST(ProfileText, FindsValuesTheWayProfileLookupsDo) {
    const std::string text =
        "\xEF\xBB\xBF; tuning\r\n"
        "CacheL1size=1\r\n"  // outside any section
        "[Other]\r\n"
        "CacheL1size=2\r\n"
        "  [ usersetcacheinfo ]  \r\n"
        "no equals sign here\r\n"
        ";CacheL2size=3\r\n"
        "  cachel2SIZE  =  \"4096\"  \r\n"
        "CacheL2size=5\r\n"
        "Cacheburst=\r\n"
        "[UserSetCacheInfo]\r\n"
        "CacheL1size=6\r\n";
    using tw::findProfileValue;
    EXPECT_EQ(findProfileValue(text, "UserSetCacheInfo", "CacheL2size"), "4096");  // first key wins
    EXPECT_EQ(findProfileValue(text, "UserSetCacheInfo", "Cacheburst"), "");
    EXPECT_EQ(findProfileValue(text, "UserSetCacheInfo", "CacheL1size"), std::nullopt);  // only the first section counts
    EXPECT_EQ(findProfileValue(text, "other", "CACHEL1SIZE"), "2");
    EXPECT_EQ(findProfileValue(text, "Missing", "CacheL1size"), std::nullopt);
    EXPECT_EQ(findProfileValue("[S]\nk=v", "S", "k"), "v");  // no final line break
}

TEST(ProfileText, IntegersAsGetPrivateProfileIntReadsThem) {
    using tw::parseProfileInt;
    EXPECT_EQ(parseProfileInt("65536", 7), 65536);
    EXPECT_EQ(parseProfileInt("  64  ", 7), 64);
    EXPECT_EQ(parseProfileInt("+12", 7), 12);
    EXPECT_EQ(parseProfileInt("-5", 7), -5);
    EXPECT_EQ(parseProfileInt("12kb", 7), 12);  // leading digits
    EXPECT_EQ(parseProfileInt("0x40", 7), 0);   // decimal only
    EXPECT_EQ(parseProfileInt("4294967297", 7), 1);  // modulo 2^32
    for (const char* garbage : {"", "  ", "abc", "-", "+", "- 5", "k12"}) EXPECT_EQ(parseProfileInt(garbage, 7), 7) << garbage;
}

class ConfigFile : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("tarnwick_ini_" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        const char* previous = std::getenv("TARNWICK_INI");
        hadIni_ = previous != nullptr;
        if (hadIni_) previousIni_ = previous;
        ::unsetenv("TARNWICK_INI");
    }
    void TearDown() override {
        if (hadIni_)
            ::setenv("TARNWICK_INI", previousIni_.c_str(), 1);
        else
            ::unsetenv("TARNWICK_INI");
        std::error_code ignored;
        fs::remove_all(dir_, ignored);
    }
    std::string write(const std::string& name, const std::string& text) {
        const fs::path p = dir_ / name;
        std::ofstream(p, std::ios::binary) << text;
        return p.string();
    }
    static CacheSettings read(const std::string& path) { return tw::applyConfigFile(kDefaults, path); }

    static constexpr CacheSettings kDefaults{8192, 262144, 64};
    fs::path dir_;
    bool hadIni_ = false;
    std::string previousIni_;
};

::testing::AssertionResult settingsAre(const CacheSettings& s, std::uint32_t l1, std::uint32_t outer,
                                       std::uint32_t burst) {
    if (s.l1Bytes == l1 && s.outerBytes == outer && s.burstBytes == burst) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << s.l1Bytes << ", " << s.outerBytes << ", " << s.burstBytes;
}

TEST_F(ConfigFile, OverridesDetectedValues) {
    const std::string path = write("all.ini", "[UserSetCacheInfo]\nCacheL1size=49152\nCacheL2size=1048576\nCacheburst=128\n");
    EXPECT_TRUE(settingsAre(read(path), 49152, 1048576, 128));
}

TEST_F(ConfigFile, MissingPiecesKeepTheDefaults) {
    EXPECT_TRUE(settingsAre(read((dir_ / "absent.ini").string()), 8192, 262144, 64));
    EXPECT_TRUE(settingsAre(read(write("empty.ini", "")), 8192, 262144, 64));
    EXPECT_TRUE(settingsAre(read(write("other.ini", "[Elsewhere]\nCacheL1size=1\n")), 8192, 262144, 64));
    EXPECT_TRUE(settingsAre(read(write("some.ini", "[UserSetCacheInfo]\nCacheL2size=524288\n")), 8192, 524288, 64));
    EXPECT_TRUE(settingsAre(read(dir_.string()), 8192, 262144, 64));  // a folder, not a file
}

TEST_F(ConfigFile, BadValuesKeepTheDefaults) {
    const std::string path = write("bad.ini", "[UserSetCacheInfo]\nCacheL1size=big\nCacheL2size=\nCacheburst=96 bytes\n");
    EXPECT_TRUE(settingsAre(read(path), 8192, 262144, 96));
    // A negative value is what the platform call returns: its unsigned reading.
    EXPECT_EQ(read(write("neg.ini", "[UserSetCacheInfo]\nCacheburst=-4\n")).burstBytes, 0xFFFFFFFCu);
}

TEST_F(ConfigFile, FoundThroughTheEnvironmentOrTheCurrentFolder) {
    const fs::path home = fs::current_path();
    write("Tarnwick.ini", "[UserSetCacheInfo]\nCacheL1size=16384\nCacheL2size=2097152\nCacheburst=64\n");
    const std::string named = write("named.ini", "[UserSetCacheInfo]\nCacheL1size=65536\nCacheL2size=4194304\nCacheburst=128\n");
    const CpuidReadout unknown;
    fs::current_path(dir_);
    const std::string local = tw::configFilePath();
    const tw::CacheTuning fromFolder = tw::cacheTuningFor(unknown, local);
    ::setenv("TARNWICK_INI", named.c_str(), 1);
    const std::string fromEnvPath = tw::configFilePath();
    const tw::CacheTuning fromEnv = tw::cacheTuningFor(unknown, fromEnvPath);
    fs::current_path(home);

    EXPECT_EQ(local, "Tarnwick.ini");
    EXPECT_EQ(fromFolder.l1Words, 4096u);
    EXPECT_EQ(fromFolder.cacheBlockWords, 524288u);
    EXPECT_EQ(fromFolder.burstWords, 16u);
    EXPECT_EQ(fromEnvPath, named);
    EXPECT_EQ(fromEnv.l1Words, 16384u);
    EXPECT_EQ(fromEnv.cacheBlockWords, 1048576u);
    EXPECT_EQ(fromEnv.burstWords, 32u);

    // With no file at all, the processor's sizes decide: the starting sizes here.
    ::setenv("TARNWICK_INI", (dir_ / "absent.ini").c_str(), 1);
    const tw::CacheTuning none = tw::cacheTuningFor(unknown, tw::configFilePath());
    EXPECT_EQ(none.l1Words, 2048u);  // 8192 bytes
    EXPECT_EQ(none.cacheBlockWords, 65536u);
    EXPECT_EQ(none.burstWords, 8u);
    EXPECT_EQ(none.l1Fanout, 32u);
}

TEST(CacheTuningAtLoad, IsThisMachinesDetection) {
    // The values fixed at load come from the same sequence run now (the
    // process's environment and folder are those of its start).
    const tw::CacheTuning now = tw::cacheTuningFor(tw::readCpuid(), tw::configFilePath());
    const tw::CacheTuning& loaded = tw::cacheTuning();
    EXPECT_EQ(loaded.cacheBlockWords, now.cacheBlockWords);
    EXPECT_EQ(loaded.burstWords, now.burstWords);
    EXPECT_EQ(loaded.l1Words, now.l1Words);
    EXPECT_EQ(loaded.l1Fanout, now.l1Fanout);
    if (!fs::exists(tw::configFilePath())) {  // the floors hold without a file
        EXPECT_GE(loaded.l1Words, 1024u);
        EXPECT_GE(loaded.cacheBlockWords, 65536u);
    }
}

}  // namespace
