// tarnwick.hpp as a user compiles it, under C++17 and C++20 with each
// compiler: text in and out, conversions, built-in operands, the value-type
// services, and the results kept from the C library. GMP and the built-in
// integers are the oracles. Exits non-zero after reporting every mismatch.
#include <gmp.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <unordered_map>

#include "tarnwick.hpp"

namespace {

int failures = 0;

#define CHECK(cond)                                                            \
    do {                                                                       \
        if (!(cond)) {                                                         \
            std::fprintf(stderr, "%s:%d: failed: %s\n", __FILE__, __LINE__, #cond); \
            ++failures;                                                        \
        }                                                                      \
    } while (0)

// True when expr throws an E.
#define THROWS(expr, E)                 \
    [&] {                               \
        try {                           \
            (void)(expr);               \
        } catch (const E&) {            \
            return true;                \
        } catch (...) {                 \
        }                               \
        return false;                   \
    }()

struct Mpz {
    mpz_t v;
    Mpz() { mpz_init(v); }
    Mpz(const Mpz&) = delete;
    ~Mpz() { mpz_clear(v); }
    std::string str() const {
        std::string s(mpz_sizeinbase(v, 10) + 2, '\0');
        mpz_get_str(s.data(), 10, v);
        return s.c_str();
    }
};

std::mt19937_64 rng(20261125);

template <class T>
void textIn() {
    // Random digits in every radix, both cases up to 36, against GMP.
    for (int radix = 2; radix <= 62; ++radix)
        for (std::size_t length : {1, 30, 200}) {
            std::string text = rng() % 2 ? "-" : "";
            for (std::size_t i = 0; i < length; ++i) {
                const int d = int(rng() % radix);
                const char letters = radix > 36 ? (d >= 36 ? 'a' - 26 : 'A') : rng() % 2 ? 'A' : 'a';
                text += char(d < 10 ? '0' + d : letters + d - 10);
            }
            Mpz m;
            mpz_set_str(m.v, text.c_str(), radix);
            CHECK(T(text, radix).to_string() == m.str());
        }
    const std::pair<const char*, int> bad[] = {{"3.99", 0}, {"1e5", 0},   {"hello", 0}, {"--5", 0}, {"", 0},
                                               {"-", 0},    {"0x", 0},    {" 12", 0},   {"12 ", 0}, {"+-1", 0},
                                               {"0x-5", 0}, {"1,000", 0}, {"12", 2},    {"g", 16},  {"0x1", 10},
                                               {"Z", 35},   {"a", 10},    {"1", 1},     {"1", 63}};
    for (const auto& b : bad) {
        CHECK(THROWS(T(b.first, b.second), std::invalid_argument));
        CHECK(THROWS(T(std::string(b.first), b.second), tarnwick::Error));
    }
    try {
        T("7", 63);
    } catch (const std::exception& e) {  // one std::exception base: caught here
        CHECK(dynamic_cast<const tarnwick::Error&>(e).code() == TW_ERR_RADIX);
    }
    CHECK(THROWS(T(static_cast<const char*>(nullptr)), tarnwick::TextError));
    const char* good[][3] = {{"+42", "0", "42"},   {"-0x1F", "0", "-31"}, {"0X1f", "16", "31"},   {"1f", "16", "31"},
                             {"-0", "0", "0"},     {"007", "0", "7"},     {"zZ", "36", "1295"}, {"zZ", "62", "3817"},
                             {"-101", "2", "-5"}};
    for (const auto& g : good) CHECK(T(g[0], std::atoi(g[1])).to_string() == g[2]);
    const char* lenient[][2] = {{"3.99", "399"}, {"1e5", "15"}, {"hello", "0"}, {"--5", "-5"}};
    for (const auto& l : lenient) CHECK(T::lenient(l[0]).to_string() == l[1]);
}

template <class T>
void streams() {
    // Built-in integers under every base, showbase, uppercase and adjustment.
    const long long values[] = {0, 7, 255, 123456789, std::numeric_limits<long long>::max(), -1, -300};
    const std::ios::fmtflags bases[] = {std::ios::dec, std::ios::hex, std::ios::oct};
    const std::ios::fmtflags adjusts[] = {std::ios::right, std::ios::left, std::ios::internal};
    for (long long v : values)
        for (auto base : bases)
            for (int extra = 0; extra < 4; ++extra)
                for (auto adjust : adjusts) {
                    if (v < 0 && base != std::ios::dec) continue;  // built-ins write two's complements
                    const auto flags = base | adjust | (extra & 1 ? std::ios::showbase : std::ios::fmtflags()) |
                                       (extra & 2 ? std::ios::uppercase : std::ios::fmtflags());
                    std::ostringstream ours, builtin;
                    ours.flags(flags), builtin.flags(flags);
                    ours.fill('*'), builtin.fill('*');
                    ours << std::setw(12) << T(v) << T(v);
                    builtin << std::setw(12) << v << v;
                    CHECK(ours.str() == builtin.str());
                }
    std::ostringstream signs, hex;
    signs << std::showpos << T(0) << ' ' << T(42) << ' ' << std::hex << std::showbase << T(-255) << ' ' << T(255);
    hex << std::hex << std::uppercase << T("12345678901234567890123");
    CHECK(signs.str() == "+0 +42 -0xff +0xff" && hex.str() == "29D42B64E76714244CB");

    // Reading, against built-in long long for the same text and basefield.
    const char* texts[] = {"  42 rest", "-17", "+5", "ff", "0x1f", "017", "abc", "-", "", "99x"};
    for (const char* text : texts)
        for (auto base : {std::ios::dec, std::ios::hex, std::ios::oct, std::ios::fmtflags()}) {
            std::istringstream ours(text), builtin(text);
            ours.setf(base, std::ios::basefield), builtin.setf(base, std::ios::basefield);
            T x(-99);
            long long v = -99;
            ours >> x;
            builtin >> v;
            CHECK(ours.rdstate() == builtin.rdstate());
            if (builtin.fail()) CHECK(x == -99);
            else CHECK(x == v && ours.tellg() == builtin.tellg());
        }
    std::istringstream in("-123456789012345678901234567890 DeadBeefDeadBeefDeadBeef1 x");
    T a, b, c;
    in >> a >> std::hex >> b;
    CHECK(a == T("-123456789012345678901234567890") && b == T("DEADBEEFDEADBEEFDEADBEEF1", 16));
    CHECK(!(in >> c) && in.fail());
}

template <class T>
void conversions() {
    const struct {
        const char* text;
        bool s64, u64;
    } ranges[] = {{"9223372036854775807", true, true},    {"9223372036854775808", false, true},
                  {"-9223372036854775808", true, false},  {"-9223372036854775809", false, false},
                  {"18446744073709551615", false, true},  {"18446744073709551616", false, false},
                  {"-1", true, false},                    {"0", true, true}};
    for (const auto& r : ranges) {
        const T x(r.text);
        CHECK(x.fits_int64() == r.s64 && x.fits_uint64() == r.u64);
        CHECK(r.s64 ? x.to_int64() == std::strtoll(r.text, nullptr, 10) : THROWS(x.to_int64(), std::overflow_error));
        CHECK(r.u64 ? x.to_uint64() == std::strtoull(r.text, nullptr, 10) : THROWS(x.to_uint64(), tarnwick::Error));
    }
    // Doubles both ways, truncated as GMP's mpz_set_d and mpz_get_d do.
    const double doubles[] = {0.0, -0.0, 0.99, -1.5, 123456789.75, 4503599627370497.5, 9223372036854775808.0,
                              -9223372036854775808.0, 18446744073709551616.0, 1e300, -1.7976931348623157e308};
    for (double d : doubles) {
        Mpz m;
        mpz_set_d(m.v, d);
        CHECK(T(d).to_string() == m.str());
    }
    for (double d : {std::nan(""), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()})
        CHECK(THROWS(T(d), std::domain_error) && THROWS(T(d), tarnwick::Error));
    for (int digits = 1; digits < 308; digits += 7) {
        std::string text = "-1";
        for (int i = 1; i < digits; ++i) text += char('0' + rng() % 10);
        Mpz m;
        mpz_set_str(m.v, text.c_str(), 10);
        CHECK(T(text).to_double() == mpz_get_d(m.v) && T(text.substr(1)).to_double() == -mpz_get_d(m.v));
    }
    CHECK(std::isinf((T(1) << 1024).to_double()));
    CHECK(to_string(T(-42)) == "-42" && tarnwick::to_string(T(255), 16) == "0xFF");
}

// x op v for v at both ends of a built-in integer type, both ways round.
template <class T, class I>
void withBuiltin() {
    // Both ends of I, and small values on either side of |x| where the word
    // functions' own sign rule would show.
    std::vector<I> vs{std::numeric_limits<I>::min(), std::numeric_limits<I>::max()};
    for (long long small : {-1001LL, -999LL, -7LL, 0LL, 7LL, 999LL, 1000LL, 1001LL})
        if (small >= static_cast<long long>(std::numeric_limits<I>::min()) && small <= static_cast<long long>(std::numeric_limits<I>::max()))
            vs.push_back(static_cast<I>(small));
    for (I v : vs)
        for (long xv : {-1000L, 0L, 1000L}) {
            const T x(xv);
            Mpz w, e, g;
            mpz_set_str(w.v, std::to_string(+v).c_str(), 10);
            mpz_set_si(g.v, xv);
            const auto is = [&](const T& r) { return r.to_string() == e.str(); };
            mpz_add(e.v, g.v, w.v);
            T y = x;
            y += v;
            CHECK(is(x + v) && is(v + x) && is(y));
            mpz_sub(e.v, g.v, w.v);
            y = x;
            y -= v;
            CHECK(is(x - v) && is(y));
            mpz_neg(e.v, e.v);
            CHECK(is(v - x));
            y = x;
            y *= v;
            mpz_mul(e.v, g.v, w.v);
            CHECK(is(x * v) && is(v * x) && is(y));
            if (xv != 0) CHECK((mpz_tdiv_r(e.v, w.v, g.v), is(v % x)));
            if (v != 0) CHECK((mpz_tdiv_q(e.v, g.v, w.v), is(x / v)));
            const int c = mpz_cmp(w.v, g.v);
            CHECK((x < v) == (c > 0) && (v == x) == (c == 0) && (x == v) == (c == 0) && (v >= x) == (c >= 0));
            CHECK((x != v) == (c != 0) && (v > x) == (c > 0) && (x >= v) == (c <= 0) && (v <= x) == (c <= 0));
        }
}

template <class T>
void valueType() {
    T zero, one(1), big("-1000000000000000000");
    CHECK(!zero && !static_cast<bool>(zero) && static_cast<bool>(one) && !!one);
    CHECK(++big == T("-999999999999999999") && big-- == T("-999999999999999999") && big == T("-1000000000000000000"));
    T nine(999999999);
    CHECK(nine++ == 999999999 && nine == 1000000000 && --nine == 999999999 && --zero == -1);
    std::unordered_map<T, int> table;
    table[pow(T(10), 30)] = 1;
    table[T(-7)] = 2;
    CHECK(table.count(T("1000000000000000000000000000000")) == 1 && table.at(T("-7")) == 2 && table.size() == 2);
    CHECK(std::hash<T>()(T("-0")) == std::hash<T>()(T(0)));

    // A moved-from number can be assigned, used again and destroyed.
    const int live = std::is_same<T, tarnwick::Integer>::value ? HI_getCount() : HX_getCount();
    {
        T a(5), b(7);
        T x = std::move(a);
        a = b;
        CHECK(a == 7 && x == 5);
        T y(std::move(b));
        b = T(3) + 4;
        T c(std::move(y));
        y = c;
        y += 1;
        CHECK(b == 7 && y == 8);
        T d(std::move(c));
        CHECK(THROWS(c + 1, tarnwick::Error));
        T& same = c;
        c = std::move(same);
    }
    CHECK(live == (std::is_same<T, tarnwick::Integer>::value ? HI_getCount() : HX_getCount()));

    // Results kept from the C library where GMP and Python differ.
    CHECK(pow(T(0), 0) == 0 && (T(-3) >> 1) == -1 && (T(-6) & 3) == 2 && (T(-6) | 3) == -7 && (T(-6) ^ T(-3)) == 5);
    CHECK(sqrt(T(-16)) == -4 && T(-7) / 2 == -3 && T(-7) % 2 == -1);
    try {
        (void)(T(1) << 1300000000u);
        CHECK(false);
    } catch (const std::runtime_error& e) {
        CHECK(dynamic_cast<const tarnwick::Error&>(e).code() == TW_ERR_TOO_LARGE);
    }
    try {
        (void)(T(1) / 0);
        CHECK(false);
    } catch (const tarnwick::Error& e) {
        CHECK(e.code() == TW_ERR_DIV_ZERO && std::strcmp(e.what(), "division by zero") == 0);
    }
    CHECK(TW_getLastError() == 0);
#ifdef TARNWICK_THREE_WAY
    CHECK((T(1) <=> T(2)) < 0 && (T(2) <=> 2) == 0);
#endif
}

template <class T>
void formatting() {
    const char* rows[][3] = {{"", "42", "42"},          {"#x", "255", "0xff"},         {"#X", "-255", "-0XFF"},
                             {"+d", "7", "+7"},         {" d", "7", " 7"},             {"*^9x", "-255", "***-ff***"},
                             {"#010x", "255", "0x000000ff"}, {"<5", "42", "42   "},  {"#o", "0", "0"},
                             {"#x", "0", "0x0"},        {"#b", "5", "0b101"},          {"08", "-42", "-0000042"}};
    for (const auto& r : rows) {
        tarnwick::detail::FormatOptions opts;
        bool ok = false;
        const char* end = r[0] + std::strlen(r[0]);
        CHECK(opts.parse(r[0], end, ok) == end && ok && tarnwick::detail::formatted(T(r[1]), opts, true) == r[2]);
    }
    for (const char* bad : {"q", "5.2", "x5"}) {
        tarnwick::detail::FormatOptions opts;
        bool ok = true;
        opts.parse(bad, bad + std::strlen(bad), ok);
        CHECK(!ok);
    }
#ifdef __cpp_lib_format
    CHECK(std::format("{:#x}|{:>5}", T(255), T(-3)) == "0xff|   -3");
#endif
}

template <class T>
void all() {
    textIn<T>();
    streams<T>();
    conversions<T>();
    withBuiltin<T, char>(), withBuiltin<T, signed char>(), withBuiltin<T, unsigned char>();
    withBuiltin<T, short>(), withBuiltin<T, unsigned short>(), withBuiltin<T, int>(), withBuiltin<T, unsigned>();
    withBuiltin<T, long>(), withBuiltin<T, unsigned long>(), withBuiltin<T, long long>();
    withBuiltin<T, unsigned long long>();
    valueType<T>();
    formatting<T>();
}

}  // namespace

int main() {
    using namespace tarnwick::literals;
    all<tarnwick::Integer>();
    all<tarnwick::IntegerX>();
    CHECK(123_tw == 123 && 0x1F_twx == 31 && 0b101_tw == 5 && 017_twx == 15 && 1'000'000_tw == 1000000);
    CHECK(123456789012345678901234567890_tw == tarnwick::Integer("123456789012345678901234567890"));
    CHECK(THROWS(1.5_tw, std::invalid_argument));
    std::printf("%s, C++%ld: %d failures\n", __VERSION__, __cplusplus / 100 % 100, failures);
    return failures == 0 ? 0 : 1;
}
