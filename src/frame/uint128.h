// u128: unsigned 128-bit arithmetic for exact intermediate products.
// The compiler's own type where it has one (every 64-bit target); on 32-bit
// targets, which have none, a portable class with the same operators over
// two 64-bit halves.  Code written against u128 compiles unchanged on both.
// The class is compiled everywhere, so that 64-bit builds test it against
// the built-in type; TARNWICK_PORTABLE_U128 makes it the u128 of a 64-bit
// build too (the whole library on the 32-bit path).
#pragma once

#include <cmath>
#include <compare>
#include <cstdint>
#include <type_traits>

namespace tw {

namespace detail {
template <class T>
constexpr bool isNegative(T v) {
    if constexpr (std::is_signed_v<T>) return v < 0;
    else return false;
}
}  // namespace detail

class PortableU128 {
public:
    constexpr PortableU128() = default;
    // From any integer, as the built-in conversion: signed values are taken
    // modulo 2^128 (sign-extended).
    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    constexpr PortableU128(T v) : low_(std::uint64_t(v)), high_(detail::isNegative(v) ? ~std::uint64_t(0) : 0) {}

    // To a narrower integer: the low bits, as the built-in conversion.
    template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
    constexpr explicit operator T() const {
        if constexpr (std::is_same_v<T, bool>) return (low_ | high_) != 0;
        else return T(low_);
    }

    // To floating point, rounded to nearest as the built-in conversion: the
    // top 64 bits with the bits below them folded into the lowest one, so
    // that the one rounding of the 64-bit conversion sees them.
    explicit operator double() const {
        if (high_ == 0) return double(low_);
        const unsigned shift = 64u - unsigned(__builtin_clzll(high_));
        const std::uint64_t top = (*this >> shift).low_ | ((low_ << (64 - shift)) != 0);
        return std::ldexp(double(top), int(shift));
    }

    friend constexpr PortableU128 operator+(PortableU128 a, PortableU128 b) {
        const std::uint64_t low = a.low_ + b.low_;
        return {low, a.high_ + b.high_ + (low < a.low_)};
    }
    friend constexpr PortableU128 operator-(PortableU128 a, PortableU128 b) {
        return {a.low_ - b.low_, a.high_ - b.high_ - (a.low_ < b.low_)};
    }
    friend constexpr PortableU128 operator*(PortableU128 a, PortableU128 b) {
        PortableU128 p = wideProduct(a.low_, b.low_);
        p.high_ += a.low_ * b.high_ + a.high_ * b.low_;
        return p;
    }
    friend constexpr PortableU128 operator/(PortableU128 a, PortableU128 b) { return divide(a, b, nullptr); }
    friend constexpr PortableU128 operator%(PortableU128 a, PortableU128 b) {
        PortableU128 r;
        divide(a, b, &r);
        return r;
    }
    friend constexpr PortableU128 operator&(PortableU128 a, PortableU128 b) { return {a.low_ & b.low_, a.high_ & b.high_}; }
    friend constexpr PortableU128 operator|(PortableU128 a, PortableU128 b) { return {a.low_ | b.low_, a.high_ | b.high_}; }
    friend constexpr PortableU128 operator^(PortableU128 a, PortableU128 b) { return {a.low_ ^ b.low_, a.high_ ^ b.high_}; }
    friend constexpr PortableU128 operator<<(PortableU128 a, unsigned s) {
        if (s == 0) return a;
        if (s >= 64) return {0, a.low_ << (s - 64)};
        return {a.low_ << s, (a.high_ << s) | (a.low_ >> (64 - s))};
    }
    friend constexpr PortableU128 operator>>(PortableU128 a, unsigned s) {
        if (s == 0) return a;
        if (s >= 64) return {a.high_ >> (s - 64), 0};
        return {(a.low_ >> s) | (a.high_ << (64 - s)), a.high_ >> s};
    }
    constexpr PortableU128 operator~() const { return {~low_, ~high_}; }
    constexpr PortableU128 operator-() const { return PortableU128() - *this; }
    constexpr bool operator!() const { return (low_ | high_) == 0; }

    friend constexpr bool operator==(PortableU128 a, PortableU128 b) { return a.low_ == b.low_ && a.high_ == b.high_; }
    friend constexpr std::strong_ordering operator<=>(PortableU128 a, PortableU128 b) {
        return a.high_ != b.high_ ? a.high_ <=> b.high_ : a.low_ <=> b.low_;
    }

    constexpr PortableU128& operator++() { return *this = *this + 1; }
    constexpr PortableU128& operator--() { return *this = *this - 1; }
    constexpr PortableU128 operator++(int) {
        const PortableU128 old = *this;
        ++*this;
        return old;
    }
    constexpr PortableU128 operator--(int) {
        const PortableU128 old = *this;
        --*this;
        return old;
    }
    constexpr PortableU128& operator+=(PortableU128 b) { return *this = *this + b; }
    constexpr PortableU128& operator-=(PortableU128 b) { return *this = *this - b; }
    constexpr PortableU128& operator*=(PortableU128 b) { return *this = *this * b; }
    constexpr PortableU128& operator/=(PortableU128 b) { return *this = *this / b; }
    constexpr PortableU128& operator%=(PortableU128 b) { return *this = *this % b; }
    constexpr PortableU128& operator&=(PortableU128 b) { return *this = *this & b; }
    constexpr PortableU128& operator|=(PortableU128 b) { return *this = *this | b; }
    constexpr PortableU128& operator^=(PortableU128 b) { return *this = *this ^ b; }
    constexpr PortableU128& operator<<=(unsigned s) { return *this = *this << s; }
    constexpr PortableU128& operator>>=(unsigned s) { return *this = *this >> s; }

private:
    constexpr PortableU128(std::uint64_t low, std::uint64_t high) : low_(low), high_(high) {}

    // The full product of two 64-bit words, from four 32-bit partial products.
    static constexpr PortableU128 wideProduct(std::uint64_t a, std::uint64_t b) {
        const std::uint64_t a0 = std::uint32_t(a), a1 = a >> 32, b0 = std::uint32_t(b), b1 = b >> 32;
        const std::uint64_t p00 = a0 * b0, p01 = a0 * b1, p10 = a1 * b0, p11 = a1 * b1;
        // The middle column: at most 3 * (2^32 - 1), no overflow.
        const std::uint64_t middle = (p00 >> 32) + std::uint32_t(p01) + std::uint32_t(p10);
        return {(middle << 32) | std::uint32_t(p00), p11 + (p01 >> 32) + (p10 >> 32) + (middle >> 32)};
    }

    static constexpr unsigned bitLength(PortableU128 v) {
        if (v.high_ != 0) return 128u - unsigned(__builtin_clzll(v.high_));
        return v.low_ != 0 ? 64u - unsigned(__builtin_clzll(v.low_)) : 0u;
    }

    // Quotient (and remainder) by shift and subtract from the divisor's
    // highest bit aligned with the dividend's; 64-bit operands take the
    // machine's division.  Division by zero traps, as the built-in one.
    static constexpr PortableU128 divide(PortableU128 a, PortableU128 b, PortableU128* remainder) {
        if (a.high_ == 0 && b.high_ == 0) {
            if (remainder) *remainder = a.low_ % b.low_;
            return a.low_ / b.low_;
        }
        PortableU128 q;
        if (b <= a) {
            const unsigned shift = bitLength(a) - bitLength(b);
            PortableU128 d = b << shift;
            for (unsigned i = 0; i <= shift; ++i, d = d >> 1) {
                q = q << 1;
                if (d <= a) {
                    a = a - d;
                    q.low_ |= 1;
                }
            }
        }
        if (remainder) *remainder = a;
        return q;
    }

    std::uint64_t low_ = 0;
    std::uint64_t high_ = 0;
};

// sum += addend; true when the sum wrapped past 2^128.
inline bool addOverflows(PortableU128& sum, PortableU128 addend) {
    sum += addend;
    return sum < addend;
}

#if defined(__SIZEOF_INT128__) && !defined(TARNWICK_PORTABLE_U128)
__extension__ typedef unsigned __int128 u128;
inline bool addOverflows(u128& sum, u128 addend) { return __builtin_add_overflow(sum, addend, &sum); }
#else
using u128 = PortableU128;
#endif

}  // namespace tw
