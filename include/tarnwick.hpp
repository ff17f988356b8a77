// Tarnwick for C++: value types over the C interface.
//
//   tarnwick::Integer   integers in radix 10^9 (HI_), decimal text for free
//   tarnwick::IntegerX  integers in radix 2^28 (HX_), bits and hexadecimal for free
//   tarnwick::RadixConverter  digit vectors in any radix from 2 to 2^32 (RC_)
//
// Numbers have value semantics (copies are deep, moves steal the handle).
// When a C call reports an error, the wrapper clears the library's error state
// and throws tarnwick::Error carrying the code, so the next call starts clean.
#ifndef TARNWICK_HPP
#define TARNWICK_HPP

#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tarnwick.h"

namespace tarnwick {

// An error reported by the library: code() is one of the TW_ERR_ values.
class Error : public std::runtime_error {
public:
    explicit Error(std::int32_t code) : std::runtime_error(describe(code)), code_(code) {}
    std::int32_t code() const noexcept { return code_; }

    static const char* describe(std::int32_t code) noexcept {
        switch (code) {
            case TW_ERR_STOPPED: return "interrupted";
            case TW_ERR_TOO_LARGE: return "result too large";
            case TW_ERR_HANDLE: return "invalid number handle";
            case TW_ERR_DIV_ZERO: return "division by zero";
            case TW_ERR_LOG: return "invalid logarithm";
            case TW_ERR_RADIX: return "invalid radix";
            default: return "library error";
        }
    }

private:
    std::int32_t code_;
};

namespace detail {

// Throws the pending error, if any, after clearing it.
inline void raiseIfFailed() {
    const std::int32_t code = TW_getLastError();
    if (code != 0 || TW_isTerminated() != 0) {
        TW_setTerminate(0);
        throw Error(code != 0 ? code : TW_ERR_STOPPED);
    }
}

template <class T>
T checked(T value) {
    raiseIfFailed();
    return value;
}

// The C functions of one integer family.
#define TARNWICK_FAMILY_TRAITS(Name, P, S)                                                    \
    struct Name {                                                                             \
        using Handle = P##_handle;                                                            \
        static Handle create() { return P##_new(); }                                          \
        static void destroy(Handle h) { P##_delete(h); }                                      \
        static constexpr auto set_s64 = P##_set_s64;                                          \
        static constexpr auto set_u64 = P##_set_u64;                                          \
        static constexpr auto set_own = P##_set_##S;                                          \
        static constexpr auto set_strA = P##_set_strA;                                        \
        static constexpr auto get_s64 = P##_get_s64;                                          \
        static constexpr auto get_u64 = P##_get_u64;                                          \
        static constexpr auto getSign = P##_getSign;                                          \
        static constexpr auto isZero = P##_isZero;                                            \
        static constexpr auto negate = P##_negate;                                            \
        static constexpr auto abs = P##_abs;                                                  \
        static constexpr auto swap = P##_swap;                                                \
        static constexpr auto compare = P##_compare_##S;                                      \
        static constexpr auto getDigits = P##_getDigits;                                      \
        static constexpr auto getBits = P##_getBits;                                          \
        static constexpr auto add = P##_add;                                                  \
        static constexpr auto sub = P##_sub;                                                  \
        static constexpr auto mul = P##_mul;                                                  \
        static constexpr auto divRem = P##_divRem;                                            \
        static constexpr auto mod = P##_mod;                                                  \
        static constexpr auto pow = P##_pow;                                                  \
        static constexpr auto bitLShift = P##_bitLShift;                                      \
        static constexpr auto bitRShift = P##_bitRShift;                                      \
        static constexpr auto bitAnd = P##_bitAnd;                                            \
        static constexpr auto bitOr = P##_bitOr;                                              \
        static constexpr auto bitXor = P##_bitXor;                                            \
        static constexpr auto getStrRadixA = P##_getStrRadixA;                                \
        static constexpr auto set_rc = P##_set_rc;                                            \
        static constexpr auto gcd = P##_gcd;                                                  \
        static constexpr auto lcm = P##_lcm;                                                  \
        static constexpr auto gcdEx = P##_gcdEx;                                              \
        static constexpr auto gcdList = P##_gcd_v##S;                                         \
        static constexpr auto lcmList = P##_lcm_v##S;                                         \
        static constexpr auto floor = P##_floor;                                              \
        static constexpr auto truncate = P##_truncate;                                        \
        static constexpr auto ceil = P##_ceil;                                                \
        static constexpr auto powMod = P##_powMod;                                            \
        static constexpr auto invertMod = P##_invertMod;                                      \
        static constexpr auto rootRem = P##_rootRem;                                          \
        static constexpr auto log = P##_log;                                                  \
        static constexpr auto factorial = P##_factorial;                                      \
        static constexpr auto factorial2 = P##_factorial2;                                    \
        static constexpr auto primorial = P##_primeFactorial;                                 \
        static constexpr auto binomial = P##_combination;                                     \
        static constexpr auto permutation = P##_permutation;                                  \
        static constexpr auto fibonacci = P##_fibonacci;                                      \
        static constexpr auto lucas = P##_lucas;                                              \
        static constexpr auto productList = P##_product_v##S;                                 \
        static constexpr auto isPrime = P##_isPrime;                                          \
        static constexpr auto nextPrime = P##_nextPrime;                                      \
        static constexpr auto previousPrime = P##_previousPrime;                              \
        static constexpr auto generatePrime = P##_generatePrime;                              \
        static constexpr auto random = P##_random;                                            \
    }
TARNWICK_FAMILY_TRAITS(DecimalTraits, HI, hi);
TARNWICK_FAMILY_TRAITS(BinaryTraits, HX, hx);
#undef TARNWICK_FAMILY_TRAITS

}  // namespace detail

class RadixConverter;

// An integer of unbounded size; Traits selects the limb radix.
template <class Traits>
class BasicInteger {
public:
    using Handle = typename Traits::Handle;

    BasicInteger() : h_(detail::checked(Traits::create())) {
        if (h_ == nullptr) throw Error(TW_ERR_TOO_LARGE);
    }
    BasicInteger(int v) : BasicInteger(static_cast<long long>(v)) {}
    BasicInteger(long v) : BasicInteger(static_cast<long long>(v)) {}
    BasicInteger(long long v) : BasicInteger() { run(Traits::set_s64(h_, v)); }
    BasicInteger(unsigned v) : BasicInteger(static_cast<unsigned long long>(v)) {}
    BasicInteger(unsigned long v) : BasicInteger(static_cast<unsigned long long>(v)) {}
    BasicInteger(unsigned long long v) : BasicInteger() { run(Traits::set_u64(h_, v)); }
    // Text as the library reads it: optional "-", decimal or "0x" hexadecimal,
    // other characters skipped.
    explicit BasicInteger(const char* text) : BasicInteger() { run(Traits::set_strA(h_, text)); }
    explicit BasicInteger(const std::string& text) : BasicInteger(text.c_str()) {}
    // Conversion from the other integer type (and from a radix converter).
    template <class Other>
    explicit BasicInteger(const BasicInteger<Other>& other) : BasicInteger() { assignFrom(other.handle()); }
    explicit BasicInteger(const RadixConverter& rc);

    BasicInteger(const BasicInteger& other) : BasicInteger() { run(Traits::set_own(h_, other.h_)); }
    BasicInteger(BasicInteger&& other) noexcept : h_(std::exchange(other.h_, nullptr)) {}
    BasicInteger& operator=(const BasicInteger& other) {
        if (this != &other) run(Traits::set_own(h_, other.h_));
        return *this;
    }
    BasicInteger& operator=(BasicInteger&& other) noexcept {
        std::swap(h_, other.h_);
        return *this;
    }
    ~BasicInteger() {
        if (h_ != nullptr) Traits::destroy(h_);
    }

    Handle handle() const noexcept { return h_; }

    // ---- queries ----
    int sign() const { return detail::checked(Traits::getSign(h_)); }
    bool is_zero() const { return detail::checked(Traits::isZero(h_)) != 0; }
    std::uint32_t digits() const { return detail::checked(Traits::getDigits(h_)); }
    std::uint32_t bits() const { return detail::checked(Traits::getBits(h_)); }
    // The value as a machine integer: 0 when it does not fit (check bits() first).
    std::int64_t to_int64() const { return detail::checked(Traits::get_s64(h_)); }
    std::uint64_t to_uint64() const { return detail::checked(Traits::get_u64(h_)); }

    // Text in radix 2..62 (0 for 2^32, 63 and above bracketed); flags are the
    // TEXT_ values; groupLength is used with TEXT_GROUP for radices other than 10 and 16.
    std::string to_string(std::uint32_t radix = 10, std::uint8_t flags = 0, std::uint32_t groupLength = 0) const {
        std::uint32_t length = 0;
        const char* text = Traits::getStrRadixA(h_, radix, nullptr, flags, groupLength, &length);
        detail::raiseIfFailed();
        return text != nullptr ? std::string(text, length) : std::string();
    }

    // ---- arithmetic ----
    BasicInteger& operator+=(const BasicInteger& b) { return run(Traits::add(h_, h_, b.h_)); }
    BasicInteger& operator-=(const BasicInteger& b) { return run(Traits::sub(h_, h_, b.h_)); }
    BasicInteger& operator*=(const BasicInteger& b) { return run(Traits::mul(h_, h_, b.h_)); }
    // Truncating division; the remainder takes the dividend's sign.
    BasicInteger& operator/=(const BasicInteger& b) { return run(Traits::divRem(h_, h_, b.h_, nullptr)); }
    BasicInteger& operator%=(const BasicInteger& b) { return run(Traits::mod(h_, h_, b.h_)); }
    BasicInteger& operator&=(const BasicInteger& b) { return run(Traits::bitAnd(h_, h_, b.h_)); }
    BasicInteger& operator|=(const BasicInteger& b) { return run(Traits::bitOr(h_, h_, b.h_)); }
    BasicInteger& operator^=(const BasicInteger& b) { return run(Traits::bitXor(h_, h_, b.h_)); }
    BasicInteger& operator<<=(std::uint32_t k) { return run(Traits::bitLShift(h_, k)); }
    BasicInteger& operator>>=(std::uint32_t k) { return run(Traits::bitRShift(h_, k)); }

    BasicInteger operator-() const {
        BasicInteger r(*this);
        r.run(Traits::negate(r.h_));
        return r;
    }
    BasicInteger operator+() const { return *this; }

    friend BasicInteger operator+(BasicInteger a, const BasicInteger& b) {
        a += b;
        return a;
    }
    friend BasicInteger operator-(BasicInteger a, const BasicInteger& b) {
        a -= b;
        return a;
    }
    friend BasicInteger operator*(BasicInteger a, const BasicInteger& b) {
        a *= b;
        return a;
    }
    friend BasicInteger operator/(BasicInteger a, const BasicInteger& b) {
        a /= b;
        return a;
    }
    friend BasicInteger operator%(BasicInteger a, const BasicInteger& b) {
        a %= b;
        return a;
    }
    friend BasicInteger operator&(BasicInteger a, const BasicInteger& b) {
        a &= b;
        return a;
    }
    friend BasicInteger operator|(BasicInteger a, const BasicInteger& b) {
        a |= b;
        return a;
    }
    friend BasicInteger operator^(BasicInteger a, const BasicInteger& b) {
        a ^= b;
        return a;
    }
    friend BasicInteger operator<<(BasicInteger a, std::uint32_t k) {
        a <<= k;
        return a;
    }
    friend BasicInteger operator>>(BasicInteger a, std::uint32_t k) {
        a >>= k;
        return a;
    }

    // Quotient and remainder in one division.
    friend std::pair<BasicInteger, BasicInteger> divmod(const BasicInteger& a, const BasicInteger& b) {
        BasicInteger q, r;
        q.run(Traits::divRem(q.h_, a.h_, b.h_, r.h_));
        return {std::move(q), std::move(r)};
    }
    friend BasicInteger pow(const BasicInteger& a, std::uint32_t e) {
        BasicInteger r;
        r.run(Traits::pow(r.h_, a.h_, e));
        return r;
    }
    friend BasicInteger abs(BasicInteger a) {
        a.run(Traits::abs(a.h_));
        return a;
    }

    // ---- number theory ----
    // gcd and lcm of the magnitudes; gcdext gives g = a x + b y >= 0 as
    // {g, x, y}; powmod takes a negative exponent as the inverse's power;
    // invert gives 0 when a has no inverse modulo m; sqrt and root truncate
    // toward zero (root(-27, 3) is -3); ilog is floor(log_|base| |a|).
    friend BasicInteger gcd(const BasicInteger& a, const BasicInteger& b) {
        BasicInteger r;
        r.run(Traits::gcd(r.h_, a.h_, b.h_));
        return r;
    }
    friend BasicInteger lcm(const BasicInteger& a, const BasicInteger& b) {
        BasicInteger r;
        r.run(Traits::lcm(r.h_, a.h_, b.h_));
        return r;
    }
    struct GcdExt;
    friend GcdExt gcdext(const BasicInteger& a, const BasicInteger& b) {
        GcdExt e;
        e.g.run(Traits::gcdEx(e.g.h_, e.x.h_, e.y.h_, a.h_, b.h_));
        return e;
    }
    // The gcd and lcm of a list: 0 and 1 for an empty one.
    friend BasicInteger gcd(const std::vector<BasicInteger>& values) { return ofList(Traits::gcdList, values); }
    friend BasicInteger lcm(const std::vector<BasicInteger>& values) { return ofList(Traits::lcmList, values); }
    friend BasicInteger powmod(const BasicInteger& base, const BasicInteger& e, const BasicInteger& m) {
        BasicInteger r;
        r.run(Traits::powMod(r.h_, base.h_, e.h_, m.h_));
        return r;
    }
    friend BasicInteger invert(const BasicInteger& a, const BasicInteger& m) {
        BasicInteger r;
        r.run(Traits::invertMod(r.h_, a.h_, m.h_));
        return r;
    }
    friend BasicInteger root(const BasicInteger& a, std::uint32_t n) {
        BasicInteger r;
        r.run(Traits::rootRem(r.h_, nullptr, a.h_, n));
        return r;
    }
    friend BasicInteger sqrt(const BasicInteger& a) { return root(a, 2); }
    friend std::uint32_t ilog(const BasicInteger& a, const BasicInteger& base) {
        return detail::checked(Traits::log(a.h_, base.h_));
    }
    // x with only its n leading digits (decimal digits for Integer, bits
    // for IntegerX), the rest rounded away toward -infinity, toward zero
    // or toward +infinity; n = 0 keeps x.
    friend BasicInteger floor(BasicInteger x, std::uint32_t n) {
        x.run(Traits::floor(x.h_, n));
        return x;
    }
    friend BasicInteger trunc(BasicInteger x, std::uint32_t n) {
        x.run(Traits::truncate(x.h_, n));
        return x;
    }
    friend BasicInteger ceil(BasicInteger x, std::uint32_t n) {
        x.run(Traits::ceil(x.h_, n));
        return x;
    }
    // ---- numbers defined by an index: Integer::factorial(100), IntegerX::fibonacci(-5) ----
    // n!, n!! (the numbers up to n of n's parity), the product of the primes
    // up to n, C(n, k) and n! / (n - k)! (0 for k outside 0..n), F(n) and L(n)
    // (negative n too); a list's product (1 for an empty one).
    static BasicInteger factorial(std::uint32_t n) { return made(Traits::factorial, n); }
    static BasicInteger factorial2(std::uint32_t n) { return made(Traits::factorial2, n); }
    static BasicInteger primorial(std::uint32_t n) { return made(Traits::primorial, n); }
    static BasicInteger binomial(std::int32_t n, std::int32_t k) { return made(Traits::binomial, n, k); }
    static BasicInteger permutation(std::int32_t n, std::int32_t k) { return made(Traits::permutation, n, k); }
    static BasicInteger fibonacci(std::int32_t n) { return made(Traits::fibonacci, n); }
    static BasicInteger lucas(std::int32_t n) { return made(Traits::lucas, n); }
    friend BasicInteger product(const std::vector<BasicInteger>& values) { return ofList(Traits::productList, values); }

    // ---- primes ----
    // isprime: exact below 10^16, Baillie-PSW above; nextprime and prevprime
    // of |a| (2 below 2; prevprime is 0 when no prime lies below);
    // Integer::genprime(n) a random prime of n decimal digits (IntegerX: n
    // bits) and Integer::random(n) a random number below 10^n (2^n) from the
    // library's generator (TW_seedRandom).
    friend bool isprime(const BasicInteger& a) { return detail::checked(Traits::isPrime(a.h_)) != 0; }
    friend BasicInteger nextprime(const BasicInteger& a) {
        BasicInteger r;
        r.run(Traits::nextPrime(r.h_, a.h_));
        return r;
    }
    friend BasicInteger prevprime(const BasicInteger& a) {
        BasicInteger r;
        r.run(Traits::previousPrime(r.h_, a.h_));
        return r;
    }
    static BasicInteger genprime(std::uint32_t size) { return made(Traits::generatePrime, size); }
    static BasicInteger random(std::int32_t size) { return made(Traits::random, size); }

    friend void swap(BasicInteger& a, BasicInteger& b) noexcept { std::swap(a.h_, b.h_); }

    // ---- comparison ----
    friend int compare(const BasicInteger& a, const BasicInteger& b) {
        return detail::checked(Traits::compare(a.h_, b.h_));
    }
    friend bool operator==(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) == 0; }
    friend auto operator<=>(const BasicInteger& a, const BasicInteger& b) { return compare(a, b) <=> 0; }

    friend std::ostream& operator<<(std::ostream& out, const BasicInteger& x) {
        const auto base = out.flags() & std::ios::basefield;
        const bool upper = (out.flags() & std::ios::uppercase) != 0;
        if (base == std::ios::hex) return out << x.to_string(16, upper ? 0 : TEXT_LOWER_CASE);
        if (base == std::ios::oct) return out << x.to_string(8);
        return out << x.to_string(10);
    }

private:
    template <class OtherHandle>
    void assignFrom(OtherHandle other);

    template <class ListFunction>
    static BasicInteger ofList(ListFunction f, const std::vector<BasicInteger>& values) {
        std::vector<Handle> handles;
        handles.reserve(values.size());
        for (const BasicInteger& v : values) handles.push_back(v.h_);
        BasicInteger r;
        r.run(f(r.h_, handles.data(), static_cast<std::uint32_t>(handles.size())));
        return r;
    }

    template <class Function, class... Args>
    static BasicInteger made(Function f, Args... args) {
        BasicInteger r;
        r.run(f(r.h_, args...));
        return r;
    }

    BasicInteger& run(Handle result) {
        (void)result;
        detail::raiseIfFailed();
        return *this;
    }

    Handle h_;
};

// The result of gcdext: g = a x + b y.
template <class Traits>
struct BasicInteger<Traits>::GcdExt {
    BasicInteger g, x, y;
};

using Integer = BasicInteger<detail::DecimalTraits>;
using IntegerX = BasicInteger<detail::BinaryTraits>;

// pi(n), the number of primes up to n, and the k-th prime (0 past the last
// 32-bit prime), for 32-bit values.
inline std::uint32_t prime_pi(std::uint32_t n) { return TW_getPrimePi(n); }
inline std::uint32_t nth_prime(std::uint32_t k) { return TW_getPrime(k); }

template <>
template <>
inline void Integer::assignFrom(HX_handle other) { run(HI_set_hx(h_, other)); }
template <>
template <>
inline void IntegerX::assignFrom(HI_handle other) { run(HX_set_hi(h_, other)); }

// A sign and a vector of digits in one radix (0 stands for 2^32).
class RadixConverter {
public:
    explicit RadixConverter(std::uint32_t radix) : h_(detail::checked(RC_new(radix))) {
        if (h_ == nullptr) throw Error(TW_ERR_TOO_LARGE);
    }
    template <class Traits>
    RadixConverter(std::uint32_t radix, const BasicInteger<Traits>& value) : RadixConverter(radix) {
        set(value.handle());
    }
    RadixConverter(const RadixConverter& other) : RadixConverter(other.radix()) {
        detail::checked(RC_set_rc(h_, other.h_));
    }
    RadixConverter(RadixConverter&& other) noexcept : h_(std::exchange(other.h_, nullptr)) {}
    RadixConverter& operator=(RadixConverter other) noexcept {
        std::swap(h_, other.h_);
        return *this;
    }
    ~RadixConverter() {
        if (h_ != nullptr) RC_delete(h_);
    }

    RC_handle handle() const noexcept { return h_; }
    std::uint32_t radix() const { return detail::checked(RC_getRadix(h_)); }
    int sign() const { return detail::checked(RC_getSign(h_)); }
    std::vector<std::uint32_t> digits() const {
        DigitVectorView view{};
        detail::checked(RC_getVector(h_, &view));
        return std::vector<std::uint32_t>(view.data, view.data + view.size);
    }
    void set_digits(const std::vector<std::uint32_t>& digits, int sign = 1) {
        detail::checked(RC_resetVector(h_, digits.data(), std::uint32_t(digits.size())));
        detail::checked(RC_resetSign(h_, sign));
    }
    // Same value, digits in another radix.
    RadixConverter& convert(std::uint32_t radix) {
        detail::checked(RC_convert2Radix(h_, radix));
        return *this;
    }
    std::uint64_t sum_of_digits() const { return detail::checked(RC_sumOfDigits(h_)); }

private:
    void set(HI_handle a) { detail::checked(RC_set_hi(h_, a)); }
    void set(HX_handle a) { detail::checked(RC_set_hx(h_, a)); }
    RC_handle h_;
};

template <class Traits>
BasicInteger<Traits>::BasicInteger(const RadixConverter& rc) : BasicInteger() {
    run(Traits::set_rc(h_, rc.handle()));
}

}  // namespace tarnwick

#endif  // TARNWICK_HPP
