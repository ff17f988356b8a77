// tw_bench: the library against GMP, same operands, same run.
//
//   tw_bench [--max-digits N] [--only SUBSTRING] [--budget SECONDS]
//   tw_bench --peak-memory ours|gmp DIGITS
//
// Prints a table: operation, size in decimal digits, our time per call, GMP's,
// and the ratio ours / GMP (below 1 means faster than GMP).  The second form
// multiplies two numbers of DIGITS decimal digits once with one library only,
// for measuring peak memory from outside (/usr/bin/time -v).
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench_harness.h"

namespace {

using namespace twbench;

struct Options {
    std::size_t maxDigits = 10000000;
    std::string only;
    double budget = 1.0;
};

Options parse(int argc, char** argv) {
    Options o;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--max-digits")) o.maxDigits = std::strtoull(argv[i + 1], nullptr, 10);
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

// r := a op b against GMP's op on the same operands (a product is a square
// when b is a).
template <class Handle>
Timing timeBinary(Handle (*ours)(Handle, Handle, Handle), void (*gmp)(mpz_ptr, mpz_srcptr, mpz_srcptr), Handle a,
                  Handle b, mpz_srcptr ga, mpz_srcptr gb, Handle r, double budget) {
    mpz_t g;
    mpz_init(g);
    const Timing t = timeSideBySide([&] { ours(r, a, b); }, [&] { gmp(g, ga, gb); }, budget);
    mpz_clear(g);
    return t;
}

Timing mulDecimal(std::size_t digits, double budget) {
    Operand a(1, digits), b(2, digits), r(0, 1);
    return timeBinary(HI_mul, mpz_mul, a.hi, b.hi, a.gmp, b.gmp, r.hi, budget);
}

Timing squareDecimal(std::size_t digits, double budget) {
    Operand a(3, digits), r(0, 1);
    return timeBinary(HI_mul, mpz_mul, a.hi, a.hi, a.gmp, a.gmp, r.hi, budget);
}

Timing mulBinary(std::size_t digits, double budget) {
    Operand a(4, digits), b(5, digits), r(0, 1);
    return timeBinary(HX_mul, mpz_mul, a.hx, b.hx, a.gmp, b.gmp, r.hx, budget);
}

Timing divideDecimal(std::size_t digits, double budget) {
    Operand a(6, 2 * digits), b(7, digits);
    HI_handle q = HI_new(), r = HI_new();
    mpz_t gq, gr;
    mpz_init(gq);
    mpz_init(gr);
    const Timing t = timeSideBySide([&] { HI_divRem(q, a.hi, b.hi, r); },
                                    [&] { mpz_tdiv_qr(gq, gr, a.gmp, b.gmp); }, budget);
    mpz_clear(gq);
    mpz_clear(gr);
    HI_delete(q);
    HI_delete(r);
    return t;
}

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

const Case kCases[] = {
    {"HI_mul", 10000000, mulDecimal},
    {"HI_mul square", 10000000, squareDecimal},
    {"HX_mul", 10000000, mulBinary},
    {"HI_divRem 2n/n", 1000000, divideDecimal},
    {"HI_getStrA", 10000000, decimalText},
    {"HI_set_strA", 10000000, decimalParse},
    {"HX_getStrA hex", 10000000, hexText},
    {"HI_getStrRadixA 36", 1000000, radix36Text},
    {"HX_set_hi (dec->bin)", 10000000, convertBetweenTypes<true>},
    {"HI_set_hx (bin->dec)", 10000000, convertBetweenTypes<false>},
    // Lehmer's algorithm alone for now: quadratic, so not past 10^5 digits.
    {"HI_gcd", 100000, gcdDecimal},
    {"HX_gcd", 100000, gcdBinary},
    {"HI_gcdEx", 100000, gcdExDecimal},
};

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
    printHeader();
    for (const Case& c : kCases) {
        if (!options.only.empty() && std::string(c.name).find(options.only) == std::string::npos) continue;
        for (std::size_t digits = 1000; digits <= std::min(c.maxDigits, options.maxDigits); digits *= 10) {
            TW_setTerminate(0);
            printRow({c.name, digits, c.run(digits, options.budget)});
        }
    }
    return 0;
}
