// The library-wide services: cache detection from fixed processor readouts
// and configuration files, the random generators, the stopwatch on a fake
// tick source (no test waits on the clock), and the version.
#include "support/harness.h"

#include <unistd.h>
#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "frame/cache_detect.h"
#include "frame/cache_info.h"
#include "frame/ini_reader.h"
#include "frame/platform.h"
#include "frame/random_generator.h"
#include "frame/stopwatch.h"

namespace twtest {
namespace {

namespace fs = std::filesystem;
using tw::CacheSettings;
using tw::CacheSizes;
using tw::CpuidReadout;

std::string sizes(const CacheSizes& s) {
    return std::to_string(s.l1Kb) + "/" + std::to_string(s.l2Kb) + "/" + std::to_string(s.l3Kb) + "/" + std::to_string(s.lineBytes);
}
CpuidReadout intel(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    CpuidReadout cpu;
    cpu.vendor = "GenuineIntel";
    cpu.descriptors[0] = a, cpu.descriptors[1] = b, cpu.descriptors[2] = c, cpu.descriptors[3] = d;
    return cpu;
}
CpuidReadout amd(std::uint32_t signature, std::uint32_t l1Info, std::uint32_t l2Info) {
    CpuidReadout cpu;
    cpu.vendor = "AuthenticAMD";
    cpu.signature = signature, cpu.l1Info = l1Info, cpu.l2Info = l2Info;
    return cpu;
}

TEST(CacheDetection, IntelDescriptorTable) {
    // code: level, KB, line (0: unchanged).
    const std::map<int, std::array<std::uint32_t, 3>> table = {
        {0x0A, {1, 8, 0}},      {0x0C, {1, 16, 0}},     {0x10, {1, 16, 0}},     {0x15, {1, 16, 0}},    {0x60, {1, 16, 0}},
        {0x1A, {2, 96, 64}},    {0x22, {3, 512, 64}},   {0x23, {3, 1024, 64}},  {0x25, {3, 2048, 64}}, {0x88, {3, 2048, 64}},
        {0x29, {3, 4096, 64}},  {0x89, {3, 4096, 64}},  {0x39, {2, 128, 64}},   {0x79, {2, 128, 64}},  {0x3C, {2, 256, 64}},
        {0x7A, {2, 256, 64}},   {0x41, {2, 128, 0}},    {0x81, {2, 128, 0}},    {0x42, {2, 256, 0}},   {0x82, {2, 256, 0}},
        {0x43, {2, 512, 0}},    {0x83, {2, 512, 0}},    {0x44, {2, 1024, 0}},   {0x84, {2, 1024, 0}},  {0x45, {2, 2048, 0}},
        {0x85, {2, 2048, 0}},   {0x66, {1, 8, 64}},     {0x67, {1, 16, 64}},    {0x77, {1, 16, 64}},   {0x68, {1, 32, 64}},
        {0x7B, {2, 512, 64}},   {0x7C, {2, 1024, 64}},  {0x7E, {2, 256, 128}},  {0x8A, {3, 8192, 64}}, {0x8D, {3, 3096, 128}}};
    for (int code = 0; code < 256; ++code) {
        CacheSizes s{1, 2, 3, 4}, want{1, 2, 3, 4};  // distinct starts: a descriptor writing the wrong field shows
        tw::applyIntelDescriptor(s, std::uint8_t(code));
        if (auto it = table.find(code); it != table.end()) {
            const auto [level, kb, line] = it->second;
            (level == 1 ? want.l1Kb : level == 2 ? want.l2Kb : want.l3Kb) = kb;
            if (line) want.lineBytes = line;
        }
        EXPECT_EQ(sizes(s), sizes(want)) << std::hex << "descriptor 0x" << code;
    }
}

TEST(CacheDetection, FromProcessorReadouts) {
    auto detect = [](const CpuidReadout& c) { return sizes(tw::cacheSizesFromCpuid(c)); };
    EXPECT_EQ(detect(intel(0x665B5001, 0, 0, 0x007B7040)), "8/512/0/64");  // 0x66 and 0x7B among unknown bytes
    EXPECT_EQ(detect(intel(0x03020101, 0, 0, 0x0C040843)), "16/512/0/32");
    EXPECT_EQ(detect(intel(0x00680A01, 0x8D, 0, 0)), "32/256/3096/128");  // a later descriptor wins
    EXPECT_EQ(detect(intel(0x00000001, 0x8000008D, 0x00000068, 0)), "32/256/0/64");  // bit 31: no descriptors
    EXPECT_EQ(detect(intel(0x665B5002, 0, 0, 0x007B7040)), "8/256/0/32");  // more than one round: the start
    EXPECT_EQ(detect(amd(0x00020FF2, 0x40020140, 0x02008140)), "64/512/0/64");
    EXPECT_EQ(detect(amd(0x00000F00, 0x10020110, 0x01008110)), "16/256/0/32");  // a 16-byte line is raised to 32
    // Family 6, model 3, stepping 10 reports a 1 KB L2; it has 64 KB.  Its neighbours are believed.
    EXPECT_EQ(tw::cacheSizesFromCpuid(amd(0x0000063A, 0x40020140, 0x00018140)).l2Kb, 64u);
    for (std::uint32_t neighbour : {0x00000639u, 0x0000064Au, 0x0000073Au, 0x0000062Au})
        EXPECT_EQ(tw::cacheSizesFromCpuid(amd(neighbour, 0x40020140, 0x00018140)).l2Kb, 1u) << std::hex << neighbour;
    for (const char* vendor : {"Unknown  cpu", "CentaurHauls", "GenuineIntex", "HygonGenuine", ""}) {
        CpuidReadout cpu = intel(0x665B5001, 0, 0, 0x007B7040);
        cpu.l1Info = 0x40020140, cpu.l2Info = 0x02008140, cpu.vendor = vendor;
        EXPECT_EQ(detect(cpu), "8/256/0/32") << vendor;
    }
}

// The readout holds this processor's registers, read here again.
TEST(CacheDetection, ReadsThisProcessorsRegisters) {
#if defined(__x86_64__) || defined(__i386__)
    const CpuidReadout cpu = tw::readCpuid();
    unsigned a, b, c, d;
    ASSERT_TRUE(__get_cpuid(0, &a, &b, &c, &d));
    char vendor[12];
    std::memcpy(vendor, &b, 4), std::memcpy(vendor + 4, &d, 4), std::memcpy(vendor + 8, &c, 4);
    EXPECT_EQ(cpu.vendor, std::string(vendor, 12));
    ASSERT_TRUE(__get_cpuid(1, &a, &b, &c, &d));
    EXPECT_EQ(cpu.signature, a);
    if (__get_cpuid(2, &a, &b, &c, &d)) EXPECT_EQ(Limbs(cpu.descriptors, cpu.descriptors + 4), (Limbs{a, b, c, d}));
    if (__get_cpuid(0x80000006, &a, &b, &c, &d)) EXPECT_EQ(cpu.l2Info, c);
#else
    EXPECT_EQ(tw::readCpuid().vendor, "Unknown  cpu");
#endif
}

TEST(CacheDetection, DefaultsAndDerivedValues) {
    auto defaults = [](std::uint32_t l1, std::uint32_t l2, std::uint32_t l3, std::uint32_t line) {
        return tw::defaultCacheSettings(CacheSizes{l1, l2, l3, line});
    };
    EXPECT_EQ(defaults(4, 256, 0, 32).l1Bytes, 8092u);  // the library's floor, not 8192
    EXPECT_EQ(defaults(7, 256, 0, 32).l1Bytes, 8092u);
    EXPECT_EQ(defaults(8, 256, 0, 32).l1Bytes, 8192u);
    EXPECT_EQ(defaults(32, 256, 0, 32).l1Bytes, 32768u);
    EXPECT_EQ(defaults(8, 96, 200, 32).outerBytes, 262144u);      // (96 + 100) KB is below the floor
    EXPECT_EQ(defaults(8, 512, 3096, 32).outerBytes, 2109440u);   // (512 + 1548) KB
    EXPECT_EQ(defaults(8, 512, 3, 32).outerBytes, 512u * 1024 + 1024);
    EXPECT_EQ(defaults(8, 256, 0, 0x12345).burstBytes, 0x2345u);
    auto tuning = [](std::uint32_t l1, std::uint32_t outer, std::uint32_t burst) {
        const tw::CacheTuning t = tw::deriveCacheTuning(CacheSettings{l1, outer, burst});
        return std::to_string(t.cacheBlockWords) + "/" + std::to_string(t.burstWords) + "/" + std::to_string(t.l1Words) + "/" +
               std::to_string(t.l1Fanout);
    };
    EXPECT_EQ(tuning(32768, 2109440, 64), "524288/16/8192/64");
    EXPECT_EQ(tuning(8092, 262144, 32), "65536/8/1024/32");
    const std::pair<std::uint32_t, const char*> small[] = {{0, "0/0/0/0"}, {3, "0/0/0/0"}, {4, "1/1/1/1"}, {15, "2/2/2/1"},
                                                           {16, "4/4/4/2"}, {63, "8/8/8/2"}, {64, "16/16/16/4"},
                                                           {0xFFFFFFFFu, "536870912/536870912/536870912/16384"}};
    for (const auto& [v, want] : small) EXPECT_EQ(tuning(v, v, v), want) << v;
}

TEST(CacheDetection, ProfileText) {
    const std::string text =
        "\xEF\xBB\xBF; tuning\r\nCacheL1size=1\r\n[Other]\r\nCacheL1size=2\r\n  [ usersetcacheinfo ]  \r\n"
        "no equals sign here\r\n;CacheL2size=3\r\n  cachel2SIZE  =  \"4096\"  \r\nCacheL2size=5\r\nCacheburst=\r\n"
        "[UserSetCacheInfo]\r\nCacheL1size=6\r\n";
    using tw::findProfileValue;
    EXPECT_EQ(findProfileValue(text, "UserSetCacheInfo", "CacheL2size"), "4096");  // first key wins
    EXPECT_EQ(findProfileValue(text, "UserSetCacheInfo", "Cacheburst"), "");
    EXPECT_EQ(findProfileValue(text, "UserSetCacheInfo", "CacheL1size"), std::nullopt);  // only the first section counts
    EXPECT_EQ(findProfileValue(text, "other", "CACHEL1SIZE"), "2");
    EXPECT_EQ(findProfileValue(text, "Missing", "CacheL1size"), std::nullopt);
    EXPECT_EQ(findProfileValue("[S]\nk=v", "S", "k"), "v");
    const std::pair<const char*, std::int32_t> ints[] = {{"65536", 65536}, {"  64  ", 64}, {"+12", 12}, {"-5", -5},
                                                         {"12kb", 12},     {"0x40", 0},    {"4294967297", 1}};
    for (const auto& [s, v] : ints) EXPECT_EQ(tw::parseProfileInt(s, 7), v) << s;
    for (const char* garbage : {"", "  ", "abc", "-", "+", "- 5", "k12"}) EXPECT_EQ(tw::parseProfileInt(garbage, 7), 7) << garbage;
}

TEST(CacheDetection, ConfigurationFiles) {
    const fs::path dir = fs::temp_directory_path() / ("tarnwick_ini_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    auto write = [&](const std::string& name, const std::string& text) {
        std::ofstream(dir / name, std::ios::binary) << text;
        return (dir / name).string();
    };
    auto read = [](const std::string& path) {
        const CacheSettings s = tw::applyConfigFile(CacheSettings{8192, 262144, 64}, path);
        return std::to_string(s.l1Bytes) + "/" + std::to_string(s.outerBytes) + "/" + std::to_string(s.burstBytes);
    };
    const char* section = "[UserSetCacheInfo]\n";
    EXPECT_EQ(read(write("all.ini", std::string(section) + "CacheL1size=49152\nCacheL2size=1048576\nCacheburst=128\n")),
              "49152/1048576/128");
    EXPECT_EQ(read((dir / "absent.ini").string()), "8192/262144/64");
    EXPECT_EQ(read(write("other.ini", "[Elsewhere]\nCacheL1size=1\n")), "8192/262144/64");
    EXPECT_EQ(read(write("some.ini", std::string(section) + "CacheL2size=524288\n")), "8192/524288/64");
    EXPECT_EQ(read(dir.string()), "8192/262144/64");  // a folder, not a file
    EXPECT_EQ(read(write("bad.ini", std::string(section) + "CacheL1size=big\nCacheL2size=\nCacheburst=96 bytes\n")), "8192/262144/96");
    EXPECT_EQ(read(write("neg.ini", std::string(section) + "Cacheburst=-4\n")), "8192/262144/4294967292");
    // Found in the current folder, or where TARNWICK_INI says.
    const char* previous = std::getenv("TARNWICK_INI");
    const std::string saved = previous ? previous : "";
    ::unsetenv("TARNWICK_INI");
    write("Tarnwick.ini", std::string(section) + "CacheL1size=16384\nCacheL2size=2097152\nCacheburst=64\n");
    const std::string named = write("named.ini", std::string(section) + "CacheL1size=65536\nCacheL2size=4194304\nCacheburst=128\n");
    const fs::path home = fs::current_path();
    fs::current_path(dir);
    const std::string local = tw::platform::configFilePath();
    const tw::CacheTuning fromFolder = tw::cacheTuningFor(CpuidReadout{}, local);
    ::setenv("TARNWICK_INI", named.c_str(), 1);
    const std::string fromEnvPath = tw::platform::configFilePath();
    const tw::CacheTuning fromEnv = tw::cacheTuningFor(CpuidReadout{}, fromEnvPath);
    fs::current_path(home);
    ::setenv("TARNWICK_INI", (dir / "absent.ini").c_str(), 1);
    const tw::CacheTuning none = tw::cacheTuningFor(CpuidReadout{}, tw::platform::configFilePath());
    previous ? ::setenv("TARNWICK_INI", saved.c_str(), 1) : ::unsetenv("TARNWICK_INI");
    fs::remove_all(dir);
    EXPECT_EQ(local, "Tarnwick.ini");
    EXPECT_TRUE(fromFolder.l1Words == 4096 && fromFolder.cacheBlockWords == 524288 && fromFolder.burstWords == 16);
    EXPECT_EQ(fromEnvPath, named);
    EXPECT_TRUE(fromEnv.l1Words == 16384 && fromEnv.cacheBlockWords == 1048576 && fromEnv.burstWords == 32);
    EXPECT_TRUE(none.l1Words == 2048 && none.cacheBlockWords == 65536 && none.burstWords == 8 && none.l1Fanout == 32);
    // The values fixed at load are this machine's detection.
    const tw::CacheTuning now = tw::cacheTuningFor(tw::readCpuid(), tw::platform::configFilePath());
    EXPECT_TRUE(tw::cacheTuning().cacheBlockWords == now.cacheBlockWords && tw::cacheTuning().l1Words == now.l1Words &&
                tw::cacheTuning().burstWords == now.burstWords && tw::cacheTuning().l1Fanout == now.l1Fanout);
}

// ---- random numbers ----

using tw::LaggedFibonacciGenerator;

// The published check value: after ran_start(310952) and 2009 batches of
// 1009 (or 1009 of 2009), the state's first word is 995235265.
TEST(RandomGenerator, KnuthsCheckValueAndSeeding) {
    LaggedFibonacciGenerator g;
    std::vector<std::uint32_t> a(2009);
    g.start(310952);
    for (int m = 0; m < 2009; ++m) g.generate(a.data(), 1009);
    EXPECT_EQ(g.state()[0], 995235265u);
    g.generate(a.data(), 1009);
    EXPECT_EQ(a[0], 995235265u);
    g.start(310952);
    for (int m = 0; m < 1009; ++m) g.generate(a.data(), 2009);
    EXPECT_EQ(g.state()[0], 995235265u);
    LaggedFibonacciGenerator big, halved, other, top, below;
    big.start(0xFFFFFFFFu);  // seeds above the range are halved: to 0x1FFFFFFF
    halved.start(0x1FFFFFFFu);
    other.start(0x1FFFFFFEu);
    EXPECT_EQ(big.state(), halved.state());
    EXPECT_NE(big.state(), other.state());
    top.start(LaggedFibonacciGenerator::kMaxSeed);
    below.start(LaggedFibonacciGenerator::kMaxSeed >> 1);
    EXPECT_NE(top.state(), below.state());
    // next() hands out the head of each batch.
    LaggedFibonacciGenerator reference;
    g.start(12345);
    reference.start(12345);
    std::vector<std::uint32_t> batch(LaggedFibonacciGenerator::kBatchLength);
    for (int round = 0; round < 3; ++round) {
        reference.generate(batch.data(), batch.size());
        for (std::size_t i = 0; i < LaggedFibonacciGenerator::kBatchUsed; ++i) ASSERT_EQ(g.next(), batch[i]) << round << ", " << i;
    }
    // The library's own instance mixes the seed first.
    for (std::uint32_t seed : {0u, 310952u, 0xFFFFFFFFu}) {
        TW_seedRandom(seed);
        reference.start(seed ^ 0x2B9ACA00u);
        for (int i = 0; i < 250; ++i) ASSERT_EQ(tw::libraryGenerator().next(), reference.next()) << seed;
    }
    TW_seedRandom(5);
    for (std::uint32_t bound : {1u, 2u, 10u, 37u}) {
        std::set<std::uint32_t> seen;
        for (std::uint32_t i = 0; i < 60 * bound; ++i) seen.insert(tw::randomBelow(bound));
        EXPECT_TRUE(seen.size() == bound && *seen.rbegin() == bound - 1) << bound;
    }
    for (std::uint32_t bound : {1000000000u, 1u << 28, 1u << 30}) {
        std::uint32_t most = 0;
        for (int i = 0; i < 2000; ++i) most = std::max(most, tw::randomBelow(bound));
        EXPECT_TRUE(most < bound && most > bound - bound / 100) << bound;
    }
}

template <class F>
using RandomNumbers = Family<F>;
TYPED_TEST_SUITE(RandomNumbers, BothFamilies);

// |size| decimal digits or bits, uniform below the bound, negated for a
// negative size, reproducible from the seed.
TYPED_TEST(RandomNumbers, BoundsSignsAndSeeds) {
    using F = TypeParam;
    Number<F> r, n;
    TW_seedRandom(2024);
    for (std::uint32_t size : {1u, 2u, 8u, 9u, 10u, 27u, 28u, 29u, 57u, 1000u}) {
        Mpz bound, largest;
        mpz_ui_pow_ui(bound, F::Radix::isBinary ? 2 : 10, size);
        for (int draw = 0; draw < 40; ++draw) {
            ASSERT_EQ(F::random(r, std::int32_t(size)), r.h());
            const Mpz v = r.value();
            ASSERT_TRUE(r.normal() && mpz_sgn(v) >= 0 && mpz_cmp(v, bound) < 0) << size;
            if (mpz_cmp(v, largest) > 0) largest = v;
        }
        mpz_mul_ui(largest, largest, 4);  // the largest of 40 draws is in the upper three quarters
        EXPECT_GE(mpz_cmp(largest, bound), 0) << size;
    }
    for (std::int32_t size : {1, 2}) {  // every value of a small range shows
        std::set<std::int64_t> seen;
        for (int draw = 0; draw < 2000; ++draw) F::random(r, size), seen.insert(F::get_s64(r));
        EXPECT_EQ(seen.size(), F::Radix::isBinary ? std::size_t(1) << size : size == 1 ? 10u : 100u);
    }
    for (std::int32_t size : {1, 9, 28, 200}) {
        TW_seedRandom(5);
        F::random(r, size);
        TW_seedRandom(5);
        F::random(n, -size);
        Mpz neg;
        mpz_neg(neg, r.value());
        EXPECT_TRUE(holds(n, neg)) << size;
    }
    auto draws = [&](std::uint32_t seed) {
        TW_seedRandom(seed);
        std::string out;
        for (std::int32_t size : {5, 50, -500, 3}) F::random(r, size), out += r.value().str(16) + ",";
        return out;
    };
    EXPECT_EQ(draws(31337), draws(31337));
    EXPECT_NE(draws(31337), draws(31338));
    F::set_s64(r, -12345);
    EXPECT_EQ(F::random(r, 0), r.h());
    EXPECT_TRUE(holds(r, 0L));
    EXPECT_EQ(takeError(), 0);
}

// A decimal size past 1 292 913 986 digits has a bit count beyond 32 bits; both
// types refuse the same sizes, before any storage.
TYPED_TEST(RandomNumbers, TooLarge) {
    using F = TypeParam;
    Number<F> r(77);
    for (std::int32_t size : {INT32_MIN, INT32_MAX, 1292913987, -1292913987}) {
        EXPECT_EQ(F::random(r, size), r.h());
        EXPECT_EQ(takeError(), TW_ERR_TOO_LARGE) << size;
        EXPECT_TRUE(holds(r, 0L));
        F::set_u32(r, 77);
    }
}

// ---- the stopwatch ----

std::uint64_t fakeTicks = 0;
std::uint64_t fakeNow() { return fakeTicks; }
constexpr std::uint64_t kGiga = 1000000000u;

class Stopwatch : public Clean {
protected:
    void SetUp() override { useFrequency(kGiga); }
    void TearDown() override {
        TW_enableTimer(0);
        TW_resetTimer(0, 0);
        tw::setStopwatchClockForTesting(nullptr, 0);
        Clean::TearDown();
    }
    // Stopped at zero on a counter of `frequency` ticks a second that does not start at zero.
    static void useFrequency(std::uint64_t frequency) {
        fakeTicks = 5 * frequency;
        tw::setStopwatchClockForTesting(fakeNow, frequency);
        TW_enableTimer(0);
        TW_resetTimer(0, 0);
    }
    static void advance(double seconds) { fakeTicks += std::uint64_t(seconds * kGiga); }
    static std::string text(std::int32_t format) {
        const char* a = TW_getTimerStrA(format);
        const tw_wchar* w = TW_getTimerStrW(format);
        if (!a || !w) return "<null>";
        std::string narrowed;
        for (; *w; ++w) narrowed += char(*w);
        EXPECT_EQ(narrowed, a);
        return a;
    }
    static void elapsed(std::uint64_t us) {
        TW_enableTimer(0);
        TW_resetTimer(0, 0);
        TW_enableTimer(1);
        fakeTicks += us * 1000;
        TW_enableTimer(0);
    }
};

TEST_F(Stopwatch, CountsOnlyWhileRunning) {
    TW_enableTimer(1);
    advance(2);
    EXPECT_EQ(TW_getTimer(0), 2000u);  // readable while running
    TW_enableTimer(0);
    advance(7);
    TW_enableTimer(1);
    advance(0.25);
    TW_enableTimer(1);  // already running: no restart
    advance(2.75);
    TW_enableTimer(0);
    EXPECT_EQ(TW_getTimer(0), 5000u);
    EXPECT_EQ(TW_getTimer(1), 5000000u);
    EXPECT_EQ(TW_getTimer(2), 5000000000u);
    for (std::int32_t unit : {-1, 3, INT32_MIN}) {
        EXPECT_EQ(TW_getTimer(unit), 0u);
        TW_resetTimer(7, unit);
    }
    EXPECT_EQ(TW_getTimer(0), 5000u);  // invalid units change nothing
    TW_enableTimer(1);
    advance(100000);  // ticks * 10^9 would leave 64 bits
    EXPECT_EQ(TW_getTimer(2), 100005 * kGiga);
}

TEST_F(Stopwatch, ResetSetsTheElapsedTime) {
    TW_resetTimer(1500, 0);
    advance(3);
    EXPECT_EQ(TW_getTimer(1), 1500000u);  // still stopped
    TW_resetTimer(42, 1);
    EXPECT_EQ(TW_getTimer(2), 42000u);
    TW_enableTimer(1);
    TW_resetTimer(250, 0);  // running: keeps running from the value
    advance(1);
    EXPECT_EQ(TW_getTimer(0), 1250u);
    fakeTicks = 300;  // a value beyond the counter's reading clamps the start to 0
    TW_resetTimer(1000, 0);
    EXPECT_EQ(TW_getTimer(2), 300u);
    useFrequency(3579545);  // 1 us is 3.58 ticks, kept as 4
    TW_resetTimer(1, 1);
    EXPECT_EQ(TW_getTimer(2), 4 * kGiga / 3579545);
    TW_resetTimer(1000, 0);
    EXPECT_EQ(TW_getTimer(2), kGiga);
    useFrequency(3);
    TW_enableTimer(1);
    TW_resetTimer(1, 2);
    EXPECT_EQ(TW_getTimer(0), 333u);
}

TEST_F(Stopwatch, TextFormats) {
    elapsed(1500000);
    EXPECT_EQ(text(3), "1.500000 s");
    EXPECT_EQ(text(2), "1.500000s");
    EXPECT_EQ(text(INT32_MAX), "1.500000s");
    EXPECT_EQ(text(1), "1.500000");
    EXPECT_EQ(text(INT32_MIN), "1.500000");
    elapsed(7000089);
    EXPECT_EQ(text(1), "7.000089");
    elapsed(10000000001u);  // the four-digit seconds field wraps
    EXPECT_EQ(text(2), "0.000001s");
    elapsed(0);
    EXPECT_EQ(text(0), "00:00:00.000");
    elapsed(3723004999u);  // milliseconds truncate
    EXPECT_EQ(text(0), "01:02:03.004");
    elapsed(360000000000u);  // 100 hours: capped
    EXPECT_EQ(text(0), "99:59:59.999");
}

TEST_F(Stopwatch, ErrorsStopItAndNoCounterMakesItInert) {
    TW_enableTimer(1);
    advance(2);
    EXPECT_EQ(HI_get_u32(nullptr), 0u);  // records -4, which stops the stopwatch
    advance(3);
    EXPECT_EQ(TW_getTimer(0), 2000u);
    TW_setTerminate(0);
    TW_enableTimer(1);
    advance(1);
    TW_setTerminate(1);  // the caller's stop too
    advance(1);
    EXPECT_EQ(TW_getTimer(0), 3000u);
    TW_setTerminate(0);
    tw::setStopwatchClockForTesting(fakeNow, 0);
    TW_enableTimer(1);
    TW_resetTimer(9, 0);
    EXPECT_EQ(TW_getTimer(0), 0u);
    EXPECT_EQ(TW_getTimerStrA(0), nullptr);
    EXPECT_EQ(TW_getTimerStrW(1), nullptr);
    tw::setStopwatchClockForTesting(fakeNow, kGiga);
    EXPECT_EQ(TW_getTimer(0), 3000u);  // neither started nor reset meanwhile
}

TEST(Version, TextAndExportCounts) {
    EXPECT_STREQ(TW_getVerA(), "Tarnwick V6.0.0.3");
    EXPECT_EQ(TW_getVerA(), TW_getVerA());  // constant storage
    std::string narrowed;
    for (const tw_wchar* w = TW_getVerW(); *w; ++w) narrowed += char(*w);
    EXPECT_EQ(narrowed, "Tarnwick V6.0.0.3");
    const std::pair<std::uint32_t, std::uint32_t> groups[] = {{0x1, 25},     {0x2, 90},      {0x4, 91},      {0x8, 24},
                                                              {0x10000, 32}, {0x20000, 203}, {0x40000, 204}, {0x80000, 28}};
    std::uint32_t all = 0, total = 0;
    for (const auto& [mask, count] : groups) {
        EXPECT_EQ(TW_getExportFunNums(mask), count);
        all |= mask;
        total += count;
    }
    EXPECT_EQ(TW_getExportFunNums(0xF), 230u);
    EXPECT_EQ(TW_getExportFunNums(0), 0u);
    EXPECT_EQ(TW_getExportFunNums(~all), 0u);
    EXPECT_EQ(TW_getExportFunNums(0xFFFFFFFFu), total);
    EXPECT_EQ(TW_getExportFunNums(0x10 | 0x2), 90u);
}

}  // namespace
}  // namespace twtest
