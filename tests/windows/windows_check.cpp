// Tarnwick.dll as a Windows program sees it: linked through its import
// library, and once more loaded by name with GetProcAddress.  No GMP here:
// known answers, text round trips that check themselves, and products and
// quotients checked against a schoolbook product computed below, exactly up
// to some thousand limbs and modulo 32-bit primes beyond.  Sizes cross every
// rung of the multiplication ladders, the transform and the conversions'
// leaves.  Exits non-zero after the first failures.
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "arith/tuning.h"
#include "frame/radix.h"
#include "tarnwick.h"

namespace {

std::atomic<int> failures{0};

#define CHECK(cond)                                                          \
    do {                                                                     \
        if (!(cond) && ++failures <= 20)                                     \
            std::fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
    } while (0)

static_assert(std::is_same_v<tw_wchar, wchar_t> && sizeof(tw_wchar) == 2, "16-bit text is wchar_t on Windows");

std::wstring widen(const std::string& s) { return std::wstring(s.begin(), s.end()); }

void expectError(std::int32_t code) {
    CHECK(TW_getLastError() == code);
    TW_setTerminate(0);
}

// ---- the two integer families behind one interface ----

struct Decimal {
    using Handle = HI_handle;
    using Radix = tw::DecimalRadix;
    static constexpr std::uint32_t base = 1000000000u;
    static constexpr int digitsPerLimb = 9;  // decimal digits
    static constexpr const char* digits = "0123456789";
    static constexpr int digitBase = 10;
    static Handle make() { return HI_new(); }
    static void drop(Handle h) { HI_delete(h); }
    static void set(Handle h, const std::string& text) { HI_set_strA(h, text.c_str()); }
    static std::string get(Handle h) { return HI_getStrA(h, 0, nullptr); }
    static void mul(Handle r, Handle a, Handle b) { HI_mul(r, a, b); }
    static void divRem(Handle q, Handle a, Handle b, Handle r) { HI_divRem(q, a, b, r); }
};

struct Binary {
    using Handle = HX_handle;
    using Radix = tw::BinaryRadix;
    static constexpr std::uint32_t base = 1u << 28;
    static constexpr int digitsPerLimb = 7;  // hexadecimal digits
    static constexpr const char* digits = "0123456789ABCDEF";
    static constexpr int digitBase = 16;
    static Handle make() { return HX_new(); }
    static void drop(Handle h) { HX_delete(h); }
    static void set(Handle h, const std::string& text) { HX_setHexStrA(h, text.c_str()); }
    static std::string get(Handle h) { return HX_getHexStrA(h, 0, nullptr); }
    static void mul(Handle r, Handle a, Handle b) { HX_mul(r, a, b); }
    static void divRem(Handle q, Handle a, Handle b, Handle r) { HX_divRem(q, a, b, r); }
};

template <class F>
struct Number {
    typename F::Handle h = F::make();
    Number() = default;
    explicit Number(const std::string& text) { F::set(h, text); }
    Number(const Number&) = delete;
    ~Number() { F::drop(h); }
};

using Limbs = std::vector<std::uint32_t>;  // least significant first, no zero on top

std::mt19937_64 rng(20261125);

// Random limbs with long runs of zero and of maximal limbs, top limb non-zero.
template <class F>
Limbs randomLimbs(std::size_t n) {
    Limbs x(n);
    for (auto& limb : x) {
        const unsigned kind = rng() % 8;
        limb = kind == 0 ? 0 : kind == 1 ? F::base - 1 : std::uint32_t(rng() % F::base);
    }
    if (x.back() == 0) x.back() = 1;
    return x;
}

template <class F>
std::string textOf(const Limbs& x) {
    if (x.empty()) return "0";
    std::string t;
    for (std::size_t i = x.size(); i-- > 0;) {
        char group[F::digitsPerLimb];
        std::uint32_t v = x[i];
        for (int k = F::digitsPerLimb; k-- > 0; v /= F::digitBase) group[k] = F::digits[v % F::digitBase];
        t.append(group, F::digitsPerLimb);
    }
    return t.substr(t.find_first_not_of('0'));
}

template <class F>
Limbs limbsOf(const std::string& text) {
    Limbs x;
    for (std::size_t end = text.size(); end > 0;) {
        const std::size_t start = end > std::size_t(F::digitsPerLimb) ? end - F::digitsPerLimb : 0;
        x.push_back(std::uint32_t(std::stoul(text.substr(start, end - start), nullptr, F::digitBase)));
        end = start;
    }
    while (!x.empty() && x.back() == 0) x.pop_back();
    return x;
}

// The schoolbook product, one row at a time with the carry settled at once.
template <class F>
Limbs schoolbook(const Limbs& a, const Limbs& b) {
    Limbs p(a.size() + b.size(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::uint64_t t = std::uint64_t(a[i]) * b[j] + p[i + j] + carry;
            p[i + j] = std::uint32_t(t % F::base);
            carry = t / F::base;
        }
        for (std::size_t k = i + b.size(); carry != 0; ++k) {
            const std::uint64_t t = p[k] + carry;
            p[k] = std::uint32_t(t % F::base);
            carry = t / F::base;
        }
    }
    while (!p.empty() && p.back() == 0) p.pop_back();
    return p;
}

template <class F>
Limbs plus(Limbs a, const Limbs& b) {
    a.resize(std::max(a.size(), b.size()) + 1, 0);
    std::uint32_t carry = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::uint64_t t = std::uint64_t(a[i]) + (i < b.size() ? b[i] : 0) + carry;
        a[i] = std::uint32_t(t % F::base);
        carry = std::uint32_t(t / F::base);
    }
    while (!a.empty() && a.back() == 0) a.pop_back();
    return a;
}

constexpr std::uint64_t kPrimes[] = {4294967291u, 4294967279u, 4294967231u, 2147483647u};

template <class F>
std::uint64_t residue(const Limbs& x, std::uint64_t p) {
    std::uint64_t r = 0;
    for (std::size_t i = x.size(); i-- > 0;) r = (r * F::base + x[i]) % p;
    return r;
}

// ---- products and quotients across the ladder ----

// The product's text against the schoolbook product, or modulo the primes
// where the schoolbook would take too long.
template <class F>
bool isProduct(const std::string& got, const Limbs& a, const Limbs& b) {
    if (a.size() * b.size() <= 4000000) return got == textOf<F>(schoolbook<F>(a, b));
    const Limbs product = limbsOf<F>(got);
    for (std::uint64_t p : kPrimes)
        if (residue<F>(product, p) != residue<F>(a, p) * residue<F>(b, p) % p) return false;
    return true;
}

template <class F>
void checkProduct(std::size_t an, std::size_t bn) {
    const Limbs a = randomLimbs<F>(an), b = randomLimbs<F>(bn);
    Number<F> x(textOf<F>(a)), y(textOf<F>(b)), r;
    F::mul(r.h, x.h, y.h);
    CHECK(isProduct<F>(F::get(r.h), a, b));
    F::mul(r.h, x.h, x.h);  // the square's own ladder
    CHECK(isProduct<F>(F::get(r.h), a, a));
}

// a = q * b + rest with rest < b, so the quotient and remainder are known.
template <class F>
void checkQuotient(std::size_t qn, std::size_t bn) {
    const Limbs b = randomLimbs<F>(bn), q = randomLimbs<F>(qn);
    Limbs rest = randomLimbs<F>(bn);
    rest.back() = b.back() > 1 ? b.back() - 1 : 0;
    while (!rest.empty() && rest.back() == 0) rest.pop_back();
    Number<F> a(textOf<F>(plus<F>(schoolbook<F>(q, b), rest))), d(textOf<F>(b)), quotient, remainder;
    F::divRem(quotient.h, a.h, d.h, remainder.h);
    CHECK(F::get(quotient.h) == textOf<F>(q));
    CHECK(F::get(remainder.h) == textOf<F>(rest));
}

template <class F>
void checkLadder() {
    using namespace tw::arith;
    const LadderBounds& L = kLadder<typename F::Radix>;
    for (std::size_t rung : {L.mulBasecaseMax, L.mulKaratsubaMax, L.mulTransformMin, L.sqrBasecaseMax, L.sqrKaratsubaMax,
                             L.sqrTransformMin, kWideBasecaseMax, kWideLanesMin, kWideAddSubMin, kSqrAsProductMaxDecimal,
                             kTransformStep, kTransformStep * 9 / 8}) {
        for (std::size_t n : {rung - 1, rung, rung + 1}) {
            checkProduct<F>(n, n);
            checkProduct<F>(n, 3 * n + 7);
        }
    }
    checkProduct<F>(1, 1);
    checkProduct<F>(20000, 20000);    // the transform, checked modulo the primes
    checkProduct<F>(120000, 70000);
    for (std::size_t qn : {kSchoolbookDivideMaxQuotientLimbs, kMinBlockQuotientLimbs + 1, std::size_t(300)})
        for (std::size_t bn : {std::size_t(2), qn, 2 * qn + 3}) checkQuotient<F>(qn, bn);
}

// ---- conversions between the radices and text ----

// Decimal text through HI_, HX_ and back; the hexadecimal text of the HX_
// number must name the same value modulo each prime.
void checkConversion(std::size_t limbs) {
    const Limbs a = randomLimbs<Decimal>(limbs);
    const std::string text = textOf<Decimal>(a);
    Number<Decimal> x(text), back;
    Number<Binary> y;
    CHECK(Decimal::get(x.h) == text);
    HX_set_hi(y.h, x.h);
    const Limbs binary = limbsOf<Binary>(Binary::get(y.h));
    for (std::uint64_t p : kPrimes) CHECK(residue<Binary>(binary, p) == residue<Decimal>(a, p));
    HI_set_hx(back.h, y.h);
    CHECK(Decimal::get(back.h) == text);
    const Limbs b = randomLimbs<Binary>(limbs);
    Number<Binary> z(textOf<Binary>(b)), zBack;
    HI_set_hx(back.h, z.h);
    HX_set_hi(zBack.h, back.h);
    CHECK(Binary::get(zBack.h) == textOf<Binary>(b));
}

void checkConversions() {
    using namespace tw::convert;
    for (std::size_t rung : {kConvertByDivisionMax, kJoinLeaf<tw::DecimalRadix>, kJoinLeaf<tw::BinaryRadix>, kSplitLeaf,
                             kBinarySplitMinLimbs, kBinarySplitMaxLimbs})
        for (std::size_t n : {rung - 1, rung, rung + 1, 4 * rung + 3}) checkConversion(n);
    checkConversion(1);
    checkConversion(111112);  // a million decimal digits
}

// ---- known answers ----

void checkText() {
    Number<Decimal> x;
    std::uint32_t count = 0, length = 0;
    HI_set_s32(x.h, -1234567);
    CHECK(std::string(HI_getStrRadixA(x.h, 10, &count, TEXT_GROUP | TEXT_SIGN_SPACE, 0, &length)) == "- 1,234,567");
    CHECK(count == 7 && length == 11);
    CHECK(std::wstring(HI_getStrW(x.h, TEXT_GROUP | TEXT_SPACE_SEPARATOR, nullptr)) == L"-1 234 567");
    HI_set_s32(x.h, 0x1ABCD);
    CHECK(std::string(HI_getHexStrA(x.h, TEXT_GROUP, nullptr)) == "0x 1,ABCD");
    HI_set_s32(x.h, ((10 * 62 + 35) * 62 + 36) * 62 + 61);
    CHECK(std::string(HI_getStrRadixA(x.h, 62, &count, TEXT_LOWER_CASE, 0, nullptr)) == "AZaz");
    HI_set_s32(x.h, -79900);
    CHECK(std::wstring(HI_getStrRadixW(x.h, 1000, &count, TEXT_GROUP | TEXT_SIGN_SPACE, 0, nullptr)) == L"- [079],[900]");
    Number<Binary> y;
    HX_set_s32(y.h, -31);
    CHECK(std::string(HX_getStrA(y.h, 0, nullptr)) == "-0x1F");
    CHECK(std::wstring(HX_getHexStrW(y.h, TEXT_LOWER_CASE, nullptr)) == L"-1f");
    // Text is never refused: what is not a digit is skipped.
    const struct { const char* text; std::int64_t value; } reads[] = {
        {"  -0x1f", -31}, {"- 5", -5}, {"--5", -5}, {"abc", 0}, {"", 0}, {"1,234,567", 1234567},
        {"12abc34", 1234}, {"00x1f", 31}, {"0x1f0x2", 0x1F02}, {"- 0x 1,abcd", -0x1ABCD}};
    for (const auto& r : reads) {
        HI_set_strA(x.h, r.text);
        CHECK(HI_get_s64(x.h) == r.value);
        HX_set_strW(y.h, widen(r.text).c_str());
        CHECK(HX_get_s64(y.h) == r.value);
    }
    HI_set_strA(x.h, nullptr);
    CHECK(HI_isZero(x.h) == 1);
    HI_set_u64(x.h, UINT64_MAX);
    CHECK(std::string(HI_getStrA(x.h, TEXT_PLUS_SIGN, nullptr)) == "+18446744073709551615");
    expectError(0);
}

void checkErrors() {
    Number<Decimal> a, b, q;
    CHECK(HI_set_u32(nullptr, 1) == nullptr);
    expectError(TW_ERR_HANDLE);
    CHECK(HI_get_u32(reinterpret_cast<HI_handle>(Number<Binary>().h)) == 0);  // another family's handle
    expectError(TW_ERR_HANDLE);
    HI_set_u32(a.h, 7);
    CHECK(HI_divRem(q.h, a.h, b.h, nullptr) == q.h);
    expectError(TW_ERR_DIV_ZERO);
    CHECK(HI_log_u32(a.h, 1) == 0);
    expectError(TW_ERR_LOG);
    CHECK(HI_getStrRadixA(a.h, 1, nullptr, 0, 0, nullptr) == nullptr);
    expectError(TW_ERR_RADIX);
    CHECK(HI_bitLShift(a.h, 4000000000u) == a.h && HI_isZero(a.h) == 1);
    expectError(TW_ERR_TOO_LARGE);
    TW_setTerminate(1);
    CHECK(TW_isTerminated() == 1);
    expectError(TW_ERR_STOPPED);
    CHECK(TW_isTerminated() == 0);
}

void checkServices() {
    CHECK(std::string(TW_getVerA()) == "Tarnwick V6.0.0.3");
    CHECK(std::wstring(TW_getVerW()) == L"Tarnwick V6.0.0.3");
    CHECK(TW_getExportFunNums(0xF) == 230 && TW_getExportFunNums(0) == 0);
    // The stopwatch over QueryPerformanceCounter: set while stopped, read as text.
    TW_enableTimer(0);
    TW_resetTimer(1500, 0);
    CHECK(TW_getTimer(1) == 1500000);
    CHECK(std::string(TW_getTimerStrA(3)) == "1.500000 s");
    CHECK(std::string(TW_getTimerStrA(2)) == "1.500000s");
    CHECK(std::wstring(TW_getTimerStrW(1)) == L"1.500000");
    CHECK(std::string(TW_getTimerStrA(0)) == "00:00:01.500");
    TW_resetTimer(360000000, 0);  // 100 hours
    CHECK(std::wstring(TW_getTimerStrW(0)) == L"99:59:59.999");
    TW_resetTimer(0, 0);
    TW_enableTimer(1);
    Sleep(2);
    TW_enableTimer(0);
    CHECK(TW_getTimer(2) > 0);
    // 32-bit number theory and the random generator.
    CHECK(TW_gcd(1071, 462) == 21 && TW_powMod(3, 200, 1000003) == 333986 && TW_getPrimePi(1000000) == 78498);
    Number<Decimal> r1, r2;
    TW_seedRandom(7);
    HI_random(r1.h, 50);
    TW_seedRandom(7);
    HI_random(r2.h, 50);
    CHECK(HI_compare_hi(r1.h, r2.h) == 0);
    expectError(0);
}

// Threads that keep to their own numbers, and hand their free slots back to
// the shared pools when they end.
void checkThreads() {
    const std::int32_t before = HI_getCount();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 300; ++i) {
                HI_handle a = HI_new(), b = HI_new();
                HI_set_u32(a, std::uint32_t(t * 1000 + i));
                HI_mul(b, a, a);
                CHECK(HI_get_u64(b) == std::uint64_t(t * 1000 + i) * std::uint64_t(t * 1000 + i));
                HI_delete(a);
                HI_delete(b);
            }
        });
    for (auto& t : threads) t.join();
    CHECK(HI_getCount() == before);
}

// The exports as a program that loads the DLL by name finds them.
void checkLoadByName() {
    HMODULE dll = LoadLibraryA("Tarnwick.dll");
    CHECK(dll != nullptr);
    if (dll == nullptr) return;
    using New = HI_handle(TW_CALL*)(void);
    using Mul = HI_handle(TW_CALL*)(HI_handle, HI_handle, HI_handle);
    using SetU64 = HI_handle(TW_CALL*)(HI_handle, uint64_t);
    using GetStr = const char*(TW_CALL*)(HI_handle, uint8_t, uint32_t*);
    using Delete = uint32_t(TW_CALL*)(HI_handle);
    const auto newNumber = reinterpret_cast<New>(GetProcAddress(dll, "HI_new"));
    const auto mul = reinterpret_cast<Mul>(GetProcAddress(dll, "HI_mul"));
    const auto setU64 = reinterpret_cast<SetU64>(GetProcAddress(dll, "HI_set_u64"));
    const auto getStr = reinterpret_cast<GetStr>(GetProcAddress(dll, "HI_getStrA"));
    const auto deleteNumber = reinterpret_cast<Delete>(GetProcAddress(dll, "HI_delete"));
    CHECK(newNumber && mul && setU64 && getStr && deleteNumber);
    CHECK(GetProcAddress(dll, "HI_mul@12") == nullptr);  // plain names only
    if (newNumber && mul && setU64 && getStr && deleteNumber) {
        HI_handle a = newNumber();
        setU64(a, 10000000000000000000u);
        mul(a, a, a);
        CHECK(std::string(getStr(a, 0, nullptr)) == "100000000000000000000000000000000000000");
        deleteNumber(a);
    }
    FreeLibrary(dll);
}

}  // namespace

int main() {
    checkServices();
    checkErrors();
    checkText();
    checkLadder<Decimal>();
    checkLadder<Binary>();
    checkConversions();
    checkThreads();
    checkLoadByName();
    CHECK(HI_getCount() == 0 && HX_getCount() == 0);
    std::printf("%s: %s\n", sizeof(void*) == 8 ? "Tarnwick.dll (64-bit)" : "Tarnwick.dll (32-bit)",
                failures == 0 ? "all checks passed" : "FAILED");
    return failures == 0 ? 0 : 1;
}
