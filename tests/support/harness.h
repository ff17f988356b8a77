// The test harness: GMP as the oracle, operands of chosen shapes from fixed
// seeds, the kernel paths pinned through the library's seams, and two table
// runners that try every combination of a row and report the first
// difference with everything needed to replay it.
//
//   KernelRow<R>  a span function (out, a, an, b, bn) against a GMP formula,
//                 over sizes x shapes x aliasings x kernel paths;
//   ApiRow<F>     a C-interface call (r, a, b) of either family against a GMP
//                 formula, over sizes x shapes x signs x the five aliasings.
//
// A row is a few lines in the test that owns the operation, for example
//
//   run(KernelRow<R>{"multiply", around({64, 65, 192, 193}),        // sizes
//                    [](std::size_t an, std::size_t bn) { return an + bn; },  // output limbs
//                    [](Limb* o, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
//                        tw::arith::multiply<R>(o, a, an, b, bn);    // ours
//                    },
//                    [](mpz_ptr w, mpz_srcptr a, mpz_srcptr b, std::size_t, std::size_t) {
//                        return mpz_mul(w, a, b), true;               // GMP's; false skips
//                    }},
//       50);                                                          // the row's seed
//
// and optionally the shape pairs, the aliasings, whether to run on every
// kernel path, and a hook that reshapes the drawn operands.  The tables are
// in kernels/ and api/.
#pragma once

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "arith/kernels/mul_scratch.h"
#include "frame/kernel_paths.h"
#include "frame/handles.h"
#include "frame/signed_number.h"
#include "tarnwick.h"

namespace twtest {

using tw::Limb;
using Limbs = std::vector<Limb>;
using Dec = tw::DecimalRadix;
using Bin = tw::BinaryRadix;
using Radices = ::testing::Types<Dec, Bin>;

// ---- GMP values ----

struct Mpz {
    mpz_t v;
    Mpz() { mpz_init(v); }
    Mpz(const char* decimal) { mpz_init_set_str(v, decimal, 10); }
    Mpz(long x) { mpz_init_set_si(v, x); }
    Mpz(const Mpz& o) { mpz_init_set(v, o.v); }
    Mpz& operator=(const Mpz& o) { mpz_set(v, o.v); return *this; }
    ~Mpz() { mpz_clear(v); }
    operator mpz_ptr() { return v; }
    operator mpz_srcptr() const { return v; }
    __mpz_struct* operator->() { return v; }
    const __mpz_struct* operator->() const { return v; }
    std::string str(int base = 10) const {
        std::string s(mpz_sizeinbase(v, base < 0 ? -base : base) + 2, '\0');  // a negative base: upper case
        mpz_get_str(s.data(), base, v);
        s.resize(std::strlen(s.c_str()));
        return s;
    }
    bool operator==(const Mpz& o) const { return mpz_cmp(v, o.v) == 0; }
};
inline std::ostream& operator<<(std::ostream& o, const Mpz& m) {
    const std::string s = m.str(16);
    return o << "0x" << (s.size() > 80 ? s.substr(0, 40) + "..." + s.substr(s.size() - 40) : s);
}

// The value of p[0..n) in radix R, in linear time: a limb is nine decimal or
// seven hexadecimal digits.  Limbs not below the radix are not digits: the
// caller checks the range first (inRange).
template <class R>
Mpz value(const Limb* p, std::size_t n) {
    Mpz m;
    if constexpr (R::isBinary) {
        mpz_import(m.v, n, -1, sizeof(Limb), 0, 32 - R::bitsPerLimb, p);  // the top four bits are nails
    } else {
        std::string s(9 * n, '0');
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t j = 0, x = p[n - 1 - i]; j < 9; ++j, x /= 10) s[9 * i + 8 - j] = char('0' + x % 10);
        if (n) mpz_set_str(m.v, s.c_str(), 10);
    }
    return m;
}
template <class R>
Mpz value(const Limbs& v) { return value<R>(v.data(), v.size()); }

// The limbs of |v| in radix R, at least minLength of them.
template <class R>
Limbs limbsOf(mpz_srcptr v, std::size_t minLength = 1) {
    Limbs out;
    if constexpr (R::isBinary) {
        out.resize(mpz_sizeinbase(v, 2) / R::bitsPerLimb + 2);
        std::size_t n = 0;
        mpz_export(out.data(), &n, -1, sizeof(Limb), 0, 32 - R::bitsPerLimb, v);
        out.resize(n);
    } else {
        Mpz a;
        mpz_abs(a.v, v);
        const std::string s = a.str();
        for (std::size_t end = s.size(); end > 0;) {
            const std::size_t start = end > 9 ? end - 9 : 0;
            Limb x = 0;
            for (std::size_t i = start; i < end; ++i) x = 10 * x + Limb(s[i] - '0');
            out.push_back(x);
            end = start;
        }
    }
    while (out.size() > 1 && out.back() == 0) out.pop_back();
    if (out.empty()) out.push_back(0);
    if (out.size() < minLength) out.resize(minLength, 0);
    return out;
}

template <class R>
bool inRange(const Limb* p, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (p[i] >= R::base) return false;
    return true;
}

// R^k.
template <class R>
Mpz radixPower(std::size_t k) {
    Mpz m;
    mpz_ui_pow_ui(m.v, R::base, k);
    return m;
}

// ---- operands ----

// What the limbs of an operand look like.  The top limb is non-zero except
// for Zero.
enum class Shape {
    Random,    // uniform limbs
    Max,       // every limb radix - 1 (all nines, all ones): the longest carries
    NearMax,   // maximal limbs, one in eight random: carries that stop anywhere
    LowZeros,  // the lower half zero: lowIndex above 0, pieces that start with zeros
    Power,     // a one over zeros: a power of the radix
    OneMax,    // a one over maximal limbs: the smallest top limb
    Zero,      // all limbs zero (where a kernel takes zero operands)
    Unit,      // the value one: a carry or borrow that ripples through
};
inline const char* name(Shape s) {
    static const char* names[] = {"random", "max", "near-max", "low-zeros", "power", "one-max", "zero", "one"};
    return names[int(s)];
}
inline const std::vector<Shape> kProductShapes = {Shape::Random, Shape::Max, Shape::NearMax, Shape::LowZeros};
inline const std::vector<Shape> kAllShapes = {Shape::Random, Shape::Max,   Shape::NearMax,
                                              Shape::LowZeros, Shape::Power, Shape::OneMax};

class Gen {
public:
    explicit Gen(std::uint64_t seed) : rng_(seed) {}
    std::uint64_t next() { return rng_(); }
    std::size_t below(std::size_t n) { return n ? std::size_t(rng_() % n) : 0; }

    template <class R>
    Limbs limbs(std::size_t n, Shape shape = Shape::Random) {
        Limbs v(n);
        for (std::size_t i = 0; i < n; ++i) {
            const Limb u = Limb(rng_() % R::base);
            switch (shape) {
                case Shape::Random: v[i] = u; break;
                case Shape::Max: v[i] = R::base - 1; break;
                case Shape::NearMax: v[i] = rng_() % 8 ? R::base - 1 : u; break;
                case Shape::LowZeros: v[i] = i < n / 2 ? 0 : u; break;
                case Shape::Power: case Shape::Zero: case Shape::Unit: v[i] = 0; break;
                case Shape::OneMax: v[i] = R::base - 1; break;
            }
        }
        if (n && shape == Shape::Power) v[n - 1] = 1;
        if (n && shape == Shape::OneMax) v[n - 1] = 1;
        if (n && shape == Shape::Unit) v[0] = 1;
        if (n && shape != Shape::Zero && shape != Shape::Unit && v[n - 1] == 0) v[n - 1] = 1 + Limb(rng_() % (R::base - 1));
        return v;
    }
    // A random shape (mostly Random).
    template <class R>
    Limbs mixed(std::size_t n) {
        static const Shape pick[] = {Shape::Random, Shape::Random, Shape::Random, Shape::Max, Shape::NearMax,
                                     Shape::LowZeros};
        return limbs<R>(n, pick[below(6)]);
    }
    // Signed value of n limbs, zero one time in sixteen.
    template <class R>
    Mpz signedValue(std::size_t n, Shape shape = Shape::Random) {
        Mpz v = value<R>(limbs<R>(n, shape));
        const auto r = next() % 16;
        if (r == 0) mpz_set_ui(v, 0);
        if (r & 2) mpz_neg(v, v);
        return v;
    }

private:
    std::mt19937_64 rng_;
};

// Operand pairs for a row: every shape with itself and with random limbs.
inline std::vector<std::pair<Shape, Shape>> shapePairs(const std::vector<Shape>& shapes) {
    std::vector<std::pair<Shape, Shape>> out;
    for (Shape s : shapes) {
        out.push_back({s, s});
        if (s != Shape::Random) out.push_back({s, Shape::Random}), out.push_back({Shape::Random, s});
    }
    return out;
}

using Sizes = std::vector<std::pair<std::size_t, std::size_t>>;
// (s, s), (s + 1, s) and a lopsided (3s + 5, s) for each shorter length s.
inline Sizes around(std::initializer_list<std::size_t> shorter) {
    Sizes out;
    for (std::size_t s : shorter) out.insert(out.end(), {{s, s}, {s + 1, s}, {3 * s + 5, s}});
    return out;
}
inline Sizes equal(std::initializer_list<std::size_t> lengths) {
    Sizes out;
    for (std::size_t n : lengths) out.push_back({n, n});
    return out;
}
// Each boundary b and its neighbours b - 1 and b + 1.
inline std::vector<std::size_t> either(std::initializer_list<std::size_t> boundaries) {
    std::vector<std::size_t> out;
    for (std::size_t b : boundaries) {
        if (b > 1) out.push_back(b - 1);
        out.insert(out.end(), {b, b + 1});
    }
    return out;
}

// ---- kernel paths ----

// One processor path for every kernel family at once (frame/kernel_paths.h):
// the span sums, the basecase products and squares, and the transforms.
struct PathCase {
    const char* name;
    bool pinned;          // false: the library's own choice by length
    tw::KernelPath path;  // the path pinned
};
inline const PathCase kOwnChoice{"auto", false, tw::KernelPath::Portable};
// The paths this processor runs: portable code everywhere, the 256-bit
// kernels, the 512-bit kernels (pinned from the shortest length on), and the
// library's own choice.
std::vector<PathCase> kernelPaths();
void pin(const PathCase& path);
void unpinAll();

// The scratch arena the division kernels take, one a thread.
inline tw::arith::LimbScratch& divisionScratch() {
    thread_local tw::arith::LimbScratch scratch;
    return scratch;
}

// Pins a path for a scope.
struct Pinned {
    explicit Pinned(const PathCase& p) { pin(p); }
    ~Pinned() { unpinAll(); }
};

// ---- the kernel table ----

enum class Alias { None, OutIsA, OutIsB, AIsB, All };
inline const char* name(Alias a) {
    static const char* names[] = {"distinct", "out==a", "out==b", "a==b", "out==a==b"};
    return names[int(a)];
}
inline const std::vector<Alias> kAllAliases = {Alias::None, Alias::OutIsA, Alias::OutIsB, Alias::AIsB, Alias::All};

// Everything that names one case of a table, printed with a failure.
struct Case {
    const char* row;
    const char* path;
    std::size_t an, bn;
    Shape sa, sb;
    Alias alias;
    std::uint64_t seed;
};
std::ostream& operator<<(std::ostream& o, const Case& c);

template <class R>
struct KernelRow {
    const char* name;
    Sizes sizes;
    // out[0..outLength(an, bn)) := ours(a, b); the reference is want(a, b)
    // (false: the case does not apply).  The output's value must equal it.
    std::function<std::size_t(std::size_t an, std::size_t bn)> outLength;
    std::function<void(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn)> ours;
    std::function<bool(mpz_ptr want, mpz_srcptr a, mpz_srcptr b, std::size_t an, std::size_t bn)> want;
    std::vector<std::pair<Shape, Shape>> pairs = shapePairs(kProductShapes);
    std::vector<Alias> aliases = {Alias::None};
    bool acrossPaths = true;  // run on every kernel path, else on the library's own choice
    // Optional: reshapes the operands after they are drawn (a dividend next
    // to a multiple of the divisor, say).
    std::function<void(Gen& gen, Limbs& a, Limbs& b)> adjust = nullptr;
};

std::uint64_t caseSeed(std::uint64_t rowSeed, std::size_t index);
inline constexpr std::size_t kGuard = 8;
inline constexpr Limb kSentinel = 0xA5A5A5A5u;  // not a limb of either radix

// Runs one case; an empty string when it passes, else what went wrong.
template <class R>
std::string runCase(const KernelRow<R>& row, const Case& c) {
    Gen gen(c.seed);
    Limbs a = gen.limbs<R>(c.an, c.sa);
    Limbs b = gen.limbs<R>(c.bn, c.sb);
    if (row.adjust) row.adjust(gen, a, b);
    if (c.alias == Alias::AIsB || c.alias == Alias::All) b = a;
    const std::size_t an = a.size(), bn = b.size();
    Mpz want;
    if (!row.want(want, value<R>(a), value<R>(b), an, bn)) return {};
    const std::size_t n = row.outLength(an, bn);
    Limbs buf(n + 2 * kGuard, kSentinel);
    Limb* out = buf.data() + kGuard;
    for (std::size_t i = 0; i < n; ++i) out[i] = Limb(0x5EED0000u + i);  // garbage the kernel must overwrite
    if (c.alias != Alias::None && c.alias != Alias::AIsB && std::max(an, bn) > n) return "the row aliases a longer operand";
    Limbs ac = a, bc = b;
    const Limb* x = ac.data();
    const Limb* y = bc.data();
    switch (c.alias) {
        case Alias::None: break;
        case Alias::OutIsA: std::copy(a.begin(), a.end(), out); x = out; break;
        case Alias::OutIsB: std::copy(b.begin(), b.end(), out); y = out; break;
        case Alias::AIsB: y = x; break;
        case Alias::All: std::copy(a.begin(), a.end(), out); x = y = out; break;
    }
    row.ours(out, x, an, y, bn);
    for (std::size_t i = 0; i < kGuard; ++i)
        if (buf[i] != kSentinel || buf[kGuard + n + i] != kSentinel) return "wrote outside the result";
    if (c.alias == Alias::None && (ac != a || bc != b)) return "changed an operand";
    if (!inRange<R>(out, n)) return "a limb of the result is not below the radix";
    const Mpz got = value<R>(out, n);
    if (!(got == want)) {
        std::ostringstream s;
        s << "got " << got << ", want " << want;
        return s.str();
    }
    return {};
}

// Every case of a row; the first failure is reported and ends the row.
template <class R>
void run(const KernelRow<R>& row, std::uint64_t rowSeed) {
    const std::vector<PathCase> paths = row.acrossPaths ? kernelPaths() : std::vector<PathCase>{kOwnChoice};
    std::size_t index = 0;
    for (const PathCase& path : paths) {
        const Pinned pinned(path);
        for (const auto& [an, bn] : row.sizes)
            for (const auto& [sa, sb] : row.pairs)
                for (const Alias alias : row.aliases) {
                    const Case c{row.name, path.name, an, bn, sa, sb, alias, caseSeed(rowSeed, index++)};
                    const std::string failure = runCase(row, c);
                    if (!failure.empty()) {
                        ADD_FAILURE() << (R::isBinary ? "radix 2^28, " : "radix 10^9, ") << c << ": " << failure;
                        return;
                    }
                }
    }
}

// ---- the two families of the C interface ----

#define TWTEST_FAMILY(Name, P, S)                                                                         \
    struct Name {                                                                                         \
        using Handle = P##_handle;                                                                        \
        using Radix = tw::Family<Handle>::Number::Radix;                                                  \
        static constexpr auto newNumber = P##_new;                                                        \
        static constexpr auto deleteNumber = P##_delete;                                                  \
        static constexpr auto getCount = P##_getCount;                                                    \
        static constexpr auto set_u32 = P##_set_u32;                                                      \
        static constexpr auto set_s32 = P##_set_s32;                                                      \
        static constexpr auto set_u64 = P##_set_u64;                                                      \
        static constexpr auto set_s64 = P##_set_s64;                                                      \
        static constexpr auto set_own = P##_set_##S;                                                      \
        static constexpr auto get_u32 = P##_get_u32;                                                      \
        static constexpr auto get_s32 = P##_get_s32;                                                      \
        static constexpr auto get_u64 = P##_get_u64;                                                      \
        static constexpr auto get_s64 = P##_get_s64;                                                      \
        static constexpr auto getSign = P##_getSign;                                                      \
        static constexpr auto isZero = P##_isZero;                                                        \
        static constexpr auto isEven = P##_isEven;                                                        \
        static constexpr auto isOdd = P##_isOdd;                                                          \
        static constexpr auto isAbsOne = P##_isAbsOne;                                                    \
        static constexpr auto negate = P##_negate;                                                        \
        static constexpr auto abs = P##_abs;                                                              \
        static constexpr auto swap = P##_swap;                                                            \
        static constexpr auto compare = P##_compare_##S;                                                  \
        static constexpr auto compare_s32 = P##_compare_s32;                                              \
        static constexpr auto compare_u32 = P##_compare_u32;                                              \
        static constexpr auto compareAbs = P##_compareAbs_##S;                                            \
        static constexpr auto compareAbs_s32 = P##_compareAbs_s32;                                        \
        static constexpr auto compareAbs_u32 = P##_compareAbs_u32;                                        \
        static constexpr auto getDigits = P##_getDigits;                                                  \
        static constexpr auto getBits = P##_getBits;                                                      \
        static constexpr auto add = P##_add;                                                              \
        static constexpr auto sub = P##_sub;                                                              \
        static constexpr auto add_u32 = P##_add_u32;                                                      \
        static constexpr auto sub_u32 = P##_sub_u32;                                                      \
        static constexpr auto mul_u32 = P##_mul_u32;                                                      \
        static constexpr auto bitLShift = P##_bitLShift;                                                  \
        static constexpr auto bitRShift = P##_bitRShift;                                                  \
        static constexpr auto mul = P##_mul;                                                              \
        static constexpr auto divRem = P##_divRem;                                                        \
        static constexpr auto mod = P##_mod;                                                              \
        static constexpr auto div_s32 = P##_div_s32;                                                      \
        static constexpr auto pow = P##_pow;                                                              \
        static constexpr auto random = P##_random;                                                        \
        static constexpr auto bitAnd = P##_bitAnd;                                                        \
        static constexpr auto bitOr = P##_bitOr;                                                          \
        static constexpr auto bitXor = P##_bitXor;                                                        \
        static constexpr auto getStrA = P##_getStrA;                                                      \
        static constexpr auto getStrW = P##_getStrW;                                                      \
        static constexpr auto getHexStrA = P##_getHexStrA;                                                \
        static constexpr auto getHexStrW = P##_getHexStrW;                                                \
        static constexpr auto getStrRadixA = P##_getStrRadixA;                                            \
        static constexpr auto getStrRadixW = P##_getStrRadixW;                                            \
        static constexpr auto set_strA = P##_set_strA;                                                    \
        static constexpr auto set_strW = P##_set_strW;                                                    \
        static constexpr auto setHexStrA = P##_setHexStrA;                                                \
        static constexpr auto setHexStrW = P##_setHexStrW;                                                \
        static constexpr auto freeStrBuffer = P##_freeStrBuffer;                                          \
        static constexpr auto set_rc = P##_set_rc;                                                        \
    }
TWTEST_FAMILY(DecimalFamily, HI, hi);
TWTEST_FAMILY(BinaryFamily, HX, hx);
#undef TWTEST_FAMILY
using BothFamilies = ::testing::Types<DecimalFamily, BinaryFamily>;

// The object behind a handle: read, written and checked for normal form.
template <class R>
void setNumber(tw::SignedNumber<R>& x, mpz_srcptr v) {
    const Limbs limbs = limbsOf<R>(v);
    tw::NumberRecord& rec = x.rec();
    tw::dropTextBuffers(rec);
    tw::resizeStorage(rec, std::uint32_t(limbs.size()), true);
    std::copy(limbs.begin(), limbs.end(), rec.digits);
    tw::normalizeIndices(rec, std::uint32_t(limbs.size()));
    x.sign = mpz_sgn(v);
}
template <class R>
Mpz numberValue(const tw::SignedNumber<R>& x) {
    Mpz m = value<R>(x.limbs(), x.rec().topIndex + 1);
    if (x.sign < 0) mpz_neg(m.v, m.v);
    return m;
}
// Every invariant of a public number: at least three limbs, limbs below the
// radix, zeros above topIndex and below lowIndex, sign 0 exactly for zero.
template <class R>
std::string abnormality(const tw::SignedNumber<R>& x) {
    const tw::NumberRecord& r = x.rec();
    if (r.allocated() < 3) return "fewer than three limbs";
    if (!inRange<R>(r.digits, r.allocated())) return "a limb not below the radix";
    for (std::size_t i = r.topIndex + 1; i < r.allocated(); ++i)
        if (r.digits[i]) return "a non-zero limb above topIndex";
    if (r.digits[r.topIndex] == 0)
        return r.topIndex || r.lowIndex || x.sign ? "zero with indices or a sign" : "";
    if (x.sign != 1 && x.sign != -1) return "a non-zero value without sign";
    if (r.digits[r.lowIndex] == 0) return "lowIndex on a zero limb";
    for (std::size_t i = 0; i < r.lowIndex; ++i)
        if (r.digits[i]) return "a non-zero limb below lowIndex";
    return {};
}

// A handle owned by a test.
template <class F>
class Number {
public:
    Number() : h_(F::newNumber()) {}
    explicit Number(std::int64_t v) : Number() { F::set_s64(h_, v); }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { F::deleteNumber(h_); }
    typename F::Handle h() const { return h_; }
    operator typename F::Handle() const { return h_; }
    auto& object() const { return *tw::Family<typename F::Handle>::find(h_); }
    Mpz value() const { return numberValue(object()); }
    void set(mpz_srcptr v) { setNumber(object(), v); }
    bool normal() const { return abnormality(object()).empty(); }

private:
    typename F::Handle h_;
};

// ::testing::AssertionResult: x is in normal form and holds `want`.
template <class F>
::testing::AssertionResult holds(const Number<F>& x, mpz_srcptr want) {
    const std::string bad = abnormality(x.object());
    if (!bad.empty()) return ::testing::AssertionFailure() << bad;
    const Mpz got = x.value();
    if (mpz_cmp(got, want) != 0) {
        Mpz w;
        mpz_set(w, want);
        return ::testing::AssertionFailure() << "holds " << got.str() << ", want " << w.str();
    }
    return ::testing::AssertionSuccess();
}
template <class F>
::testing::AssertionResult holds(const Number<F>& x, long want) { return holds(x, Mpz(want)); }

// Clears the error state around a test.
class Clean : public ::testing::Test {
protected:
    void SetUp() override { TW_setTerminate(0); }
    void TearDown() override { TW_setTerminate(0); }
};
template <class F>
class Family : public Clean {};

// An error code as the next read of the error state gives it; clears it.
inline std::int32_t takeError() {
    const std::int32_t e = TW_getLastError();
    TW_setTerminate(0);
    return e;
}

// ---- the interface table ----

// A call (r, a, b) of family F against GMP.  With `words` non-empty, b is a
// machine word taken from the list (shifts, powers, word operations) and only
// the aliasings of r with a are tried.
template <class F>
struct ApiRow {
    const char* name;
    Sizes sizes;  // limbs of a and b in F's radix
    std::function<typename F::Handle(typename F::Handle r, typename F::Handle a, typename F::Handle b,
                                     mpz_srcptr bValue)>
        ours;
    std::function<bool(mpz_ptr want, mpz_srcptr a, mpz_srcptr b)> want;
    std::vector<std::uint32_t> words = {};
    std::vector<Shape> shapes = {Shape::Random, Shape::Max, Shape::LowZeros};
    std::vector<Alias> aliases = kAllAliases;
};

template <class F>
std::string runApiCase(const ApiRow<F>& row, const Case& c, std::uint64_t signs) {
    using R = typename F::Radix;
    Gen gen(c.seed);
    Mpz va = value<R>(gen.limbs<R>(c.an, c.sa)), vb;
    if (row.words.empty())
        vb = value<R>(gen.limbs<R>(c.bn, c.sb));
    else
        mpz_set_ui(vb, row.words[c.bn]);
    if (signs & 1) mpz_neg(va, va);
    if ((signs & 2) && row.words.empty()) mpz_neg(vb, vb);
    if (signs == 4) mpz_set_ui(va, 0);
    if (signs == 5 && row.words.empty()) mpz_set_ui(vb, 0);
    if (c.alias == Alias::AIsB || c.alias == Alias::All) vb = va;
    Mpz want;
    if (!row.want(want, va, vb)) return {};
    Number<F> r, a, b;
    r.set(Mpz("-987654321987654321987654321"));  // a stale result to overwrite
    a.set(va);
    b.set(vb);
    typename F::Handle hr = r, ha = a, hb = b, result = r;
    switch (c.alias) {
        case Alias::None: break;
        case Alias::OutIsA: hr = result = a; break;
        case Alias::OutIsB: hr = result = b; break;
        case Alias::AIsB: hb = a; break;
        case Alias::All: hr = hb = result = a; break;
    }
    const auto returned = row.ours(hr, ha, hb, vb);
    std::ostringstream s;
    if (TW_getLastError() != 0) s << "error " << TW_getLastError() << " recorded; ";
    if (returned != result) s << "did not return the result handle; ";
    const Number<F>& out = result == a.h() ? a : result == b.h() ? b : r;
    const std::string bad = abnormality(out.object());
    if (!bad.empty()) s << "result not normal: " << bad << "; ";
    if (!(out.value() == want)) s << "got " << out.value() << ", want " << want << "; ";
    if (c.alias == Alias::None && !(a.value() == va && b.value() == vb)) s << "changed an operand; ";
    TW_setTerminate(0);
    return s.str();
}

template <class F>
void run(const ApiRow<F>& row, std::uint64_t rowSeed) {
    const bool words = !row.words.empty();
    Sizes sizes;
    for (const auto& [an, bn] : row.sizes)
        if (!words)
            sizes.push_back({an, bn});
        else
            for (std::size_t w = 0; w < row.words.size(); ++w) sizes.push_back({an, w});
    const std::vector<Alias> aliases =
        words && row.aliases == kAllAliases ? std::vector<Alias>{Alias::None, Alias::OutIsA} : row.aliases;
    std::size_t index = 0;
    for (const auto& [an, bn] : sizes)
        for (const auto& [sa, sb] : shapePairs(row.shapes))
            for (const Alias alias : aliases) {
                const std::uint64_t signs = index % 6;  // both signs each side, and zero operands
                const Case c{row.name, words ? "word" : "handles", an, bn, sa, sb, alias, caseSeed(rowSeed, index++)};
                const std::string failure = runApiCase(row, c, signs);
                if (!failure.empty()) {
                    ADD_FAILURE() << (F::Radix::isBinary ? "HX_, " : "HI_, ") << c << ", signs " << signs << ": "
                                  << failure;
                    return;
                }
            }
}

}  // namespace twtest
