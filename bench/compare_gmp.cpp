// tw_bench: the library against GMP, same operands, same run.
//
//   tw_bench [--max-digits N] [--only SUBSTRING] [--budget SECONDS]
//   tw_bench --peak-memory ours|gmp DIGITS
//   tw_bench --stop-latency [--max-digits N] [--only SUBSTRING]
//
// Prints a table: operation, size in decimal digits, our time per call, GMP's,
// and the ratio ours / GMP (below 1 means faster than GMP).  The second form
// multiplies two numbers of DIGITS decimal digits once with one library only,
// for measuring peak memory from outside (/usr/bin/time -v).  The third
// raises the terminate flag from another thread during each long operation
// and prints how long the call took to return (stop_latency.h).
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bench_harness.h"
#include "stop_latency.h"

namespace {

using namespace twbench;

struct Options {
    std::size_t maxDigits = 10000000;
    bool stopLatency = false;
    std::string only;
    double budget = 1.0;
};

Options parse(int argc, char** argv) {
    Options o;
    for (int i = 1; i < argc; i += 2) {
        if (!std::strcmp(argv[i], "--stop-latency")) {
            o.stopLatency = true;
            --i;
        } else if (i + 1 == argc) {
            break;
        } else if (!std::strcmp(argv[i], "--max-digits")) o.maxDigits = std::strtoull(argv[i + 1], nullptr, 10);
        else if (!std::strcmp(argv[i], "--only")) o.only = argv[i + 1];
        else if (!std::strcmp(argv[i], "--budget")) o.budget = std::atof(argv[i + 1]);
    }
    return o;
}

struct Case {
    const char* name;
    std::size_t maxDigits;
    // Runs the case at one size; returns the timing.
    Timing (*run)(std::size_t digits, double budget);
};

// Calls a few-nanosecond operation this many times per timed call, so that
// the harness's own call does not blur the ratio.
constexpr int kSmallRepeat = 16;
int repeatFor(std::size_t digits) { return digits < 1000 ? kSmallRepeat : 1; }

// Times `repeat` calls of each per timed call and reports one.
template <class Ours, class Gmp>
Timing timeRepeated(int repeat, Ours ours, Gmp gmp, double budget) {
    Timing t = timeSideBySide([&] { for (int i = 0; i < repeat; ++i) ours(); },
                              [&] { for (int i = 0; i < repeat; ++i) gmp(); }, budget);
    t.ours /= repeat;
    t.gmp /= repeat;
    return t;
}

// r := a op b against GMP's op on the same operands (a product is a square
// when b is a).
template <class Handle>
Timing timeBinary(Handle (*ours)(Handle, Handle, Handle), void (*gmp)(mpz_ptr, mpz_srcptr, mpz_srcptr), Handle a,
                  Handle b, mpz_srcptr ga, mpz_srcptr gb, Handle r, double budget, int repeat = 1) {
    mpz_t g;
    mpz_init(g);
    const Timing t = timeRepeated(repeat, [&] { ours(r, a, b); }, [&] { gmp(g, ga, gb); }, budget);
    mpz_clear(g);
    return t;
}

Timing addDecimal(std::size_t digits, double budget) {
    Operand a(24, digits), b(25, digits), r(0, 1);
    return timeBinary(HI_add, mpz_add, a.hi, b.hi, a.gmp, b.gmp, r.hi, budget, repeatFor(digits));
}

Timing addBinary(std::size_t digits, double budget) {
    Operand a(26, digits), b(27, digits), r(0, 1);
    return timeBinary(HX_add, mpz_add, a.hx, b.hx, a.gmp, b.gmp, r.hx, budget, repeatFor(digits));
}

Timing mulDecimal(std::size_t digits, double budget) {
    Operand a(1, digits), b(2, digits), r(0, 1);
    return timeBinary(HI_mul, mpz_mul, a.hi, b.hi, a.gmp, b.gmp, r.hi, budget, repeatFor(digits));
}

Timing squareDecimal(std::size_t digits, double budget) {
    Operand a(3, digits), r(0, 1);
    return timeBinary(HI_mul, mpz_mul, a.hi, a.hi, a.gmp, a.gmp, r.hi, budget, repeatFor(digits));
}

Timing mulBinary(std::size_t digits, double budget) {
    Operand a(4, digits), b(5, digits), r(0, 1);
    return timeBinary(HX_mul, mpz_mul, a.hx, b.hx, a.gmp, b.gmp, r.hx, budget, repeatFor(digits));
}

// 2n by n digits against mpz_tdiv_qr.
template <class Handle>
Timing divideTiming(Handle (*ours)(Handle, Handle, Handle, Handle), Handle Operand::*member, std::size_t digits,
                    double budget) {
    Operand a(6, 2 * digits), b(7, digits), q(0, 1), r(0, 1);
    mpz_t gq, gr;
    mpz_init(gq);
    mpz_init(gr);
    const Timing t = timeRepeated(repeatFor(digits), [&] { ours(q.*member, a.*member, b.*member, r.*member); },
                                  [&] { mpz_tdiv_qr(gq, gr, a.gmp, b.gmp); }, budget);
    mpz_clear(gq);
    mpz_clear(gr);
    return t;
}

Timing divideDecimal(std::size_t digits, double budget) { return divideTiming(HI_divRem, &Operand::hi, digits, budget); }
Timing divideBinary(std::size_t digits, double budget) { return divideTiming(HX_divRem, &Operand::hx, digits, budget); }

// gcd against mpz_gcd, the extended form against mpz_gcdext.
Timing gcdDecimal(std::size_t digits, double budget) {
    Operand a(14, digits), b(15, digits), r(0, 1);
    return timeBinary(HI_gcd, mpz_gcd, a.hi, b.hi, a.gmp, b.gmp, r.hi, budget);
}

Timing gcdBinary(std::size_t digits, double budget) {
    Operand a(16, digits), b(17, digits), r(0, 1);
    return timeBinary(HX_gcd, mpz_gcd, a.hx, b.hx, a.gmp, b.gmp, r.hx, budget);
}

Timing gcdExDecimal(std::size_t digits, double budget) {
    Operand a(18, digits), b(19, digits), g(0, 1), x(0, 1), y(0, 1);
    mpz_t gg, gx, gy;
    mpz_init(gg);
    mpz_init(gx);
    mpz_init(gy);
    const Timing t = timeSideBySide([&] { HI_gcdEx(g.hi, x.hi, y.hi, a.hi, b.hi); },
                                    [&] { mpz_gcdext(gg, gx, gy, a.gmp, b.gmp); }, budget);
    mpz_clear(gg);
    mpz_clear(gx);
    mpz_clear(gy);
    return t;
}

// Roots against mpz_sqrtrem and mpz_rootrem.
template <unsigned n>
Timing rootDecimal(std::size_t digits, double budget) {
    Operand a(20 + n, digits), root(0, 1), rem(0, 1);
    mpz_t gr, gm;
    mpz_init(gr);
    mpz_init(gm);
    const Timing t = timeSideBySide([&] { HI_rootRem(root.hi, rem.hi, a.hi, n); },
                                    [&] {
                                        if constexpr (n == 2)
                                            mpz_sqrtrem(gr, gm, a.gmp);
                                        else
                                            mpz_rootrem(gr, gm, a.gmp, n);
                                    },
                                    budget);
    mpz_clear(gr);
    mpz_clear(gm);
    return t;
}

// A random value of exactly `bits` bits in both libraries; `odd` forces the
// low bit, otherwise it is cleared.
struct BitOperand {
    HI_handle hi = HI_new();
    HX_handle hx = HX_new();
    mpz_t gmp;
    BitOperand(std::uint64_t seed, unsigned bits, bool odd) {
        gmp_randstate_t state;
        gmp_randinit_default(state);
        gmp_randseed_ui(state, seed);
        mpz_init(gmp);
        mpz_urandomb(gmp, state, bits);
        mpz_setbit(gmp, bits - 1);
        if (odd)
            mpz_setbit(gmp, 0);
        else
            mpz_clrbit(gmp, 0);
        gmp_randclear(state);
        std::string text(mpz_sizeinbase(gmp, 10) + 2, '\0');
        mpz_get_str(text.data(), 10, gmp);
        HI_set_strA(hi, text.c_str());
        HX_set_strA(hx, text.c_str());
    }
    ~BitOperand() {
        HI_delete(hi);
        HX_delete(hx);
        mpz_clear(gmp);
    }
};

// base^exponent mod m against mpz_powm, all three of `bits` bits.
template <class Handle>
Timing powModTiming(Handle (*ours)(Handle, Handle, Handle, Handle), Handle BitOperand::*member, unsigned bits,
                    bool oddModulus, double budget) {
    BitOperand base(31, bits, true), exponent(32, bits, true), modulus(33, bits, oddModulus), result(0, 8, true);
    mpz_t g;
    mpz_init(g);
    const Timing t = timeSideBySide([&] { ours(result.*member, base.*member, exponent.*member, modulus.*member); },
                                    [&] { mpz_powm(g, base.gmp, exponent.gmp, modulus.gmp); }, budget);
    mpz_clear(g);
    return t;
}

// Text output against mpz_get_str in the same base, into a buffer sized once.
template <class Write>
Timing timeTextOutput(Write write, mpz_srcptr g, int base, double budget) {
    std::string text(mpz_sizeinbase(g, base) + 2, '\0');
    return timeSideBySide(write, [&] { mpz_get_str(text.data(), base, g); }, budget);
}

Timing decimalText(std::size_t digits, double budget) {
    Operand a(8, digits);
    return timeTextOutput([&] { HI_getStrA(a.hi, 0, nullptr); }, a.gmp, 10, budget);
}

Timing hexText(std::size_t digits, double budget) {
    Operand a(9, digits);
    return timeTextOutput([&] { HX_getStrA(a.hx, 0, nullptr); }, a.gmp, 16, budget);
}

Timing radix36Text(std::size_t digits, double budget) {
    Operand a(10, digits);
    return timeTextOutput([&] { HI_getStrRadixA(a.hi, 36, nullptr, 0, 0, nullptr); }, a.gmp, 36, budget);
}

Timing decimalParse(std::size_t digits, double budget) {
    Operand a(11, digits);
    const std::string text = HI_getStrA(a.hi, 0, nullptr);
    HI_handle r = HI_new();
    mpz_t g;
    mpz_init(g);
    const Timing t = timeSideBySide([&] { HI_set_strA(r, text.c_str()); },
                                    [&] { mpz_set_str(g, text.c_str(), 10); }, budget);
    mpz_clear(g);
    HI_delete(r);
    return t;
}

// Conversion between the integer types against GMP's decimal text on the
// same value: decimal limbs to binary ones beside mpz_set_str, binary limbs
// to decimal ones beside mpz_get_str.
template <bool toBinary>
Timing convertBetweenTypes(std::size_t digits, double budget) {
    Operand a(toBinary ? 12 : 13, digits);
    std::string text(mpz_sizeinbase(a.gmp, 10) + 2, '\0');
    mpz_get_str(text.data(), 10, a.gmp);
    HI_handle d = HI_new();
    HX_handle b = HX_new();
    mpz_t g;
    mpz_init(g);
    const Timing t = timeSideBySide(
        [&] {
            if constexpr (toBinary)
                HX_set_hi(b, a.hi);
            else
                HI_set_hx(d, a.hx);
        },
        [&] {
            if constexpr (toBinary)
                mpz_set_str(g, text.c_str(), 10);
            else
                mpz_get_str(text.data(), 10, a.gmp);
        },
        budget);
    mpz_clear(g);
    HI_delete(d);
    HX_delete(b);
    return t;
}

// 7^e of `digits` digits from a one-limb base, against mpz_pow_ui.
Timing powDecimal(std::size_t digits, double budget) {
    const auto exponent = std::uint32_t(double(digits) / std::log10(7.0));
    HI_handle base = HI_set_u32(HI_new(), 7), r = HI_new();
    mpz_t g;
    mpz_init(g);
    const Timing t = timeSideBySide([&] { HI_pow(r, base, exponent); }, [&] { mpz_ui_pow_ui(g, 7, exponent); }, budget);
    mpz_clear(g);
    HI_delete(base);
    HI_delete(r);
    return t;
}

// Small numbers, where the call itself costs most: 2-limb sums (18 digits
// are two limbs of 10^9, 16 digits two of 2^28) and 100-digit products and
// divisions.
const Case kSmallCases[] = {
    {"HI_add", 18, addDecimal},
    {"HX_add", 16, addBinary},
    {"HI_mul", 100, mulDecimal},
    {"HI_mul square", 100, squareDecimal},
    {"HX_mul", 100, mulBinary},
    {"HI_divRem 2n/n", 100, divideDecimal},
    {"HX_divRem 2n/n", 100, divideBinary},
    {"HI_getStrRadixA 36", 100, radix36Text},
    {"HX_set_hi (dec->bin)", 100, convertBetweenTypes<true>},
    {"HI_set_hx (bin->dec)", 100, convertBetweenTypes<false>},
};

const Case kCases[] = {
    {"HI_mul", 10000000, mulDecimal},
    {"HI_mul square", 10000000, squareDecimal},
    {"HX_mul", 10000000, mulBinary},
    {"HI_divRem 2n/n", 1000000, divideDecimal},
    {"HX_divRem 2n/n", 100000, divideBinary},
    {"HI_getStrA", 10000000, decimalText},
    {"HI_set_strA", 10000000, decimalParse},
    {"HX_getStrA hex", 10000000, hexText},
    {"HI_getStrRadixA 36", 1000000, radix36Text},
    {"HX_set_hi (dec->bin)", 10000000, convertBetweenTypes<true>},
    {"HI_set_hx (bin->dec)", 10000000, convertBetweenTypes<false>},
    {"HI_pow", 100000, powDecimal},
    {"HI_gcd", 1000000, gcdDecimal},
    {"HX_gcd", 1000000, gcdBinary},
    {"HI_gcdEx", 1000000, gcdExDecimal},
    {"HI_rootRem n=2", 1000000, rootDecimal<2>},
    {"HI_rootRem n=3", 100000, rootDecimal<3>},
};

// Modular powers at the sizes of cryptography, in bits of the modulus.
struct PowModCase {
    const char* name;
    bool binary;
    bool oddModulus;
    unsigned maxBits;
};
const PowModCase kPowModCases[] = {
    {"HX_powMod odd m", true, true, 4096},
    {"HI_powMod odd m", false, true, 4096},
    {"HX_powMod even m", true, false, 2048},
    {"HI_powMod even m", false, false, 2048},
};

// A prime of `bits` bits against mpz_probab_prime_p(., 25), and the next
// prime after a random number against mpz_nextprime.
void runPrimeCases(const Options& options) {
    for (unsigned bits : {1024u, 2048u}) {
        if (!options.only.empty() && std::string("HX_isPrime").find(options.only) == std::string::npos) break;
        BitOperand p(41, bits, true);
        mpz_nextprime(p.gmp, p.gmp);
        std::string text(mpz_sizeinbase(p.gmp, 10) + 2, '\0');
        mpz_get_str(text.data(), 10, p.gmp);
        HX_set_strA(p.hx, text.c_str());
        volatile int sink = 0;  // gmp.h declares the test pure: keep its result
        const Timing t = timeSideBySide([&] { HX_isPrime(p.hx); }, [&] { sink = sink + mpz_probab_prime_p(p.gmp, 25); },
                                        options.budget);
        printRow({"HX_isPrime (a prime)", std::to_string(bits) + " bits", t});
    }
    if (!options.only.empty() && std::string("HX_nextPrime").find(options.only) == std::string::npos) return;
    BitOperand a(42, 1024, true), r(0, 8, true);
    mpz_t g;
    mpz_init(g);
    const Timing t = timeSideBySide([&] { HX_nextPrime(r.hx, a.hx); }, [&] { mpz_nextprime(g, a.gmp); }, options.budget);
    printRow({"HX_nextPrime", "1024 bits", t});
    mpz_clear(g);
}

// pi(x) and the k-th prime of 32-bit values, which GMP does not offer: mean
// times over random arguments, and pi's first call, which builds the tables
// (so this runs before anything else asks for primes).
void runPrimeCountCases(const Options& options) {
    if (!options.only.empty() && std::string("TW_getPrimePi TW_getPrime").find(options.only) == std::string::npos) return;
    const auto seconds = [](auto&& f) {
        const auto start = std::chrono::steady_clock::now();
        f();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    std::mt19937 rng(43);
    volatile std::uint32_t sink = 0;
    const double first = seconds([&] { sink = sink + TW_getPrimePi(rng()); });
    const double pi = seconds([&] {
        for (int i = 0; i < 2000; ++i) sink = sink + TW_getPrimePi(rng());
    }) / 2000;
    const double nth = seconds([&] {
        for (int i = 0; i < 50; ++i) sink = sink + TW_getPrime(1 + rng() % 203280221u);
    }) / 50;
    std::printf("| TW_getPrimePi, first call | 32 bits | %s | - | - |\n", formatSeconds(first).c_str());
    std::printf("| TW_getPrimePi, mean | 32 bits | %s | - | - |\n", formatSeconds(pi).c_str());
    std::printf("| TW_getPrime, mean | 32 bits | %s | - | - |\n", formatSeconds(nth).c_str());
}

// The cost of a handle's life: a turn of new, add and delete against
// mpz_init, mpz_add and mpz_clear; and HI_add on three handles while 10^6
// others are live against the same with only those three live (both ours).
void runHandleCases(const Options& options) {
    if (!options.only.empty() && std::string("HI_new HI_add handles").find(options.only) == std::string::npos) return;
    Operand a(28, 18), b(29, 18);
    const Timing turn = timeRepeated(kSmallRepeat, [&] {
        HI_handle t = HI_new();
        HI_add(t, a.hi, b.hi);
        HI_delete(t);
    }, [&] {
        mpz_t t;
        mpz_init(t);
        mpz_add(t, a.gmp, b.gmp);
        mpz_clear(t);
    }, options.budget);
    printRow({"HI_new, HI_add, HI_delete", "18", turn});
    // The two states cannot coexist, so they alternate: rounds of a timed
    // batch with few handles, then with many.
    const auto batch = [&](HI_handle r, HI_handle x, HI_handle y) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < 1000000; ++i) HI_add(r, x, y);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / 1e6;
    };
    Timing live{1e30, 1e30};
    std::vector<HI_handle> many(1000000);
    for (int round = 0; round < 3; ++round) {
        HI_handle r = HI_new();
        live.gmp = std::min(live.gmp, batch(r, a.hi, b.hi));
        HI_delete(r);
        for (HI_handle& h : many) h = HI_set_hi(HI_new(), a.hi);
        live.ours = std::min(live.ours, batch(many[many.size() / 3], many[many.size() / 2], many.back()));
        for (HI_handle h : many) HI_delete(h);
    }
    std::printf("| HI_add, 10^6 live handles / 3 live | 18 | %s | %s | %.2f |\n", formatSeconds(live.ours).c_str(),
                formatSeconds(live.gmp).c_str(), live.ours / live.gmp);
}

void runPowModCases(const Options& options) {
    for (const PowModCase& c : kPowModCases) {
        if (!options.only.empty() && std::string(c.name).find(options.only) == std::string::npos) continue;
        for (unsigned bits = c.oddModulus ? 512 : c.maxBits; bits <= c.maxBits; bits *= 2) {
            TW_setTerminate(0);
            const Timing t = c.binary ? powModTiming<HX_handle>(HX_powMod, &BitOperand::hx, bits, c.oddModulus, options.budget)
                                      : powModTiming<HI_handle>(HI_powMod, &BitOperand::hi, bits, c.oddModulus, options.budget);
            printRow({c.name, std::to_string(bits) + " bits", t});
        }
    }
}

// Numbers defined by an index n (factorials, sequences) against GMP's
// function of the same n; the decimal factorial counts its text too, since
// it is built in the radix that prints without conversion.
struct IndexCase {
    const char* name;
    std::vector<std::uint32_t> n;
    void (*ours)(HI_handle hi, HX_handle hx, std::uint32_t n);
    void (*gmp)(mpz_ptr g, std::uint32_t n);
};
const IndexCase kIndexCases[] = {
    {"HX_factorial", {100000, 1000000, 10000000}, [](HI_handle, HX_handle x, std::uint32_t n) { HX_factorial(x, n); },
     [](mpz_ptr g, std::uint32_t n) { mpz_fac_ui(g, n); }},
    {"HI_factorial + HI_getStrA", {1000000, 10000000},
     [](HI_handle x, HX_handle, std::uint32_t n) { HI_getStrA(HI_factorial(x, n), 0, nullptr); },
     [](mpz_ptr g, std::uint32_t n) {
         mpz_fac_ui(g, n);
         std::free(mpz_get_str(nullptr, 10, g));
     }},
    {"HI_fibonacci", {1000000, 10000000}, [](HI_handle x, HX_handle, std::uint32_t n) { HI_fibonacci(x, int32_t(n)); },
     [](mpz_ptr g, std::uint32_t n) { mpz_fib_ui(g, n); }},
    {"HX_fibonacci", {1000000, 10000000}, [](HI_handle, HX_handle x, std::uint32_t n) { HX_fibonacci(x, int32_t(n)); },
     [](mpz_ptr g, std::uint32_t n) { mpz_fib_ui(g, n); }},
    {"HX_primeFactorial", {10000000}, [](HI_handle, HX_handle x, std::uint32_t n) { HX_primeFactorial(x, n); },
     [](mpz_ptr g, std::uint32_t n) { mpz_primorial_ui(g, n); }},
    {"HX_combination(n, n/2)", {1000000}, [](HI_handle, HX_handle x, std::uint32_t n) { HX_combination(x, int32_t(n), int32_t(n / 2)); },
     [](mpz_ptr g, std::uint32_t n) { mpz_bin_uiui(g, n, n / 2); }},
};

void runIndexCases(const Options& options) {
    HI_handle hi = HI_new();
    HX_handle hx = HX_new();
    mpz_t g;
    mpz_init(g);
    for (const IndexCase& c : kIndexCases) {
        if (!options.only.empty() && std::string(c.name).find(options.only) == std::string::npos) continue;
        for (const std::uint32_t n : c.n) {
            TW_setTerminate(0);
            const Timing t = timeSideBySide([&] { c.ours(hi, hx, n); }, [&] { c.gmp(g, n); }, options.budget);
            printRow({c.name, "n = " + powerOfTen(n), t});
        }
    }
    mpz_clear(g);
    HI_delete(hi);
    HX_delete(hx);
}

}  // namespace

// One product of two random DIGITS-digit numbers with one library only.
int peakMemoryRun(const std::string& library, std::size_t digits) {
    std::string text(digits, '0');
    for (std::size_t i = 0; i < digits; ++i) text[i] = char('0' + (i * 7919 + 13) % 10);
    text[0] = '7';
    if (library == "gmp") {
        mpz_t a, b, r;
        mpz_init_set_str(a, text.c_str(), 10);
        std::reverse(text.begin(), text.end());
        text[0] = '7';
        mpz_init_set_str(b, text.c_str(), 10);
        text.clear();
        text.shrink_to_fit();
        mpz_init(r);
        mpz_mul(r, a, b);
        std::printf("%zu bits\n", mpz_sizeinbase(r, 2));
        return 0;
    }
    HI_handle a = HI_new(), b = HI_new(), r = HI_new();
    HI_set_strA(a, text.c_str());
    std::reverse(text.begin(), text.end());
    text[0] = '7';
    HI_set_strA(b, text.c_str());
    text.clear();
    text.shrink_to_fit();
    HI_mul(r, a, b);
    std::printf("%u digits\n", HI_getDigits(r));
    return 0;
}

int main(int argc, char** argv) {
    if (argc == 4 && !std::strcmp(argv[1], "--peak-memory")) return peakMemoryRun(argv[2], std::strtoull(argv[3], nullptr, 10));
    const Options options = parse(argc, argv);
    if (options.stopLatency) return runStopLatency(options.maxDigits, options.only);
    printHeader();
    for (const Case& c : kSmallCases) {
        if (!options.only.empty() && std::string(c.name).find(options.only) == std::string::npos) continue;
        TW_setTerminate(0);
        printRow({c.name, std::to_string(c.maxDigits), c.run(c.maxDigits, options.budget)});
    }
    runHandleCases(options);
    runCppLoopCases(options.only, options.budget);
    runHandleTurnCases(options.only);
    for (const Case& c : kCases) {
        if (!options.only.empty() && std::string(c.name).find(options.only) == std::string::npos) continue;
        for (std::size_t digits = 1000; digits <= std::min(c.maxDigits, options.maxDigits); digits *= 10) {
            TW_setTerminate(0);
            printRow({c.name, powerOfTen(digits), c.run(digits, options.budget)});
        }
    }
    runPowModCases(options);
    runPrimeCountCases(options);
    runPrimeCases(options);
    runIndexCases(options);
    return 0;
}
