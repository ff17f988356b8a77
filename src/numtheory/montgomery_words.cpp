// Montgomery products on 64-bit words by columns (product scanning): column
// k gathers every a_j b_(k-j) and every q_j m_(k-j) in a three-word sum, the
// low columns choose q_k so that their low word vanishes, the high columns
// are the result.  A sum never stores and reloads a partial product row, and
// the result can overwrite the operands: column k >= n writes word k - n
// after the last read of a_(k-n) and b_(k-n).
//
// Bound: with Q = sum q_k 2^(64 k) < R the sum a b + Q m < m^2 + R m < 2 R m
// is divisible by R, so its top half is below 2m: one conditional
// subtraction leaves it below m.  A column holds at most 2n products below
// 2^128 and a carry below 2n 2^64, so the third word stays below 2n + 1.
#include "numtheory/montgomery_words.h"

#include <array>
#include <utility>

#include "frame/radix.h"

namespace tw::numtheory {

namespace {

using u64 = std::uint64_t;

// A column sum of three words: `low` the lower two, `top` the third.
struct Column {
    u128 low = 0;
    u64 top = 0;

    void add(u128 p) { top += addOverflows(low, p); }
    void mac(u64 x, u64 y) { add(u128(x) * y); }
    // The low word leaves; the sum moves down one word.
    u64 shift() {
        const u64 w = u64(low);
        low = (low >> 64) | (u128(top) << 64);
        top = 0;
        return w;
    }
};

// out[0..n) := out - m when carry is set or out >= m.  The borrow of the
// subtraction is the carry when that is set.
void subtractModulusIfAbove(u64* out, const u64* m, std::size_t n, u64 carry) {
    if (carry == 0) {
        std::size_t i = n;
        while (i-- > 0 && out[i] == m[i]) {
        }
        if (i != std::size_t(-1) && out[i] < m[i]) return;
    }
    u64 borrow = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const u128 d = u128(out[i]) - m[i] - borrow;
        out[i] = u64(d);
        borrow = u64(d >> 64) & 1;
    }
}

// Column k < n of the reduction: q_j m_(k-j) for j < k, then q_k.
inline void lowReduction(Column& c, std::size_t k, const u64* m, u64 minv, u64* q) {
    for (std::size_t j = 0; j < k; ++j) c.mac(q[j], m[k - j]);
    q[k] = u64(c.low) * minv;
    c.mac(q[k], m[0]);  // the low word becomes zero
    c.shift();
}

template <std::size_t Fixed>
void mulColumns(u64* out, const u64* a, const u64* b, const u64* m, std::size_t length, u64 minv, u64* q) {
    const std::size_t n = Fixed ? Fixed : length;
    Column c;
    for (std::size_t k = 0; k < n; ++k) {
        for (std::size_t j = 0; j <= k; ++j) c.mac(a[j], b[k - j]);
        lowReduction(c, k, m, minv, q);
    }
    for (std::size_t k = n; k < 2 * n - 1; ++k) {
        for (std::size_t j = k - n + 1; j < n; ++j) {
            c.mac(a[j], b[k - j]);
            c.mac(q[j], m[k - j]);
        }
        out[k - n] = c.shift();
    }
    out[n - 1] = c.shift();
    subtractModulusIfAbove(out, m, n, u64(c.low));
}

// The cross products a_j a_(k-j), j < k - j, of column k gather apart and
// join doubled, then the square a_(k/2)^2 of an even column.
template <std::size_t Fixed>
void sqrColumns(u64* out, const u64* a, const u64* m, std::size_t length, u64 minv, u64* q) {
    const std::size_t n = Fixed ? Fixed : length;
    Column c;
    const auto squareColumn = [&](std::size_t k, std::size_t from) {
        Column cross;
        for (std::size_t j = from; 2 * j < k; ++j) cross.mac(a[j], a[k - j]);
        c.add(cross.low);
        c.add(cross.low);
        c.top += 2 * cross.top;
        if (k % 2 == 0) c.mac(a[k / 2], a[k / 2]);
    };
    for (std::size_t k = 0; k < n; ++k) {
        squareColumn(k, 0);
        lowReduction(c, k, m, minv, q);
    }
    for (std::size_t k = n; k < 2 * n - 1; ++k) {
        squareColumn(k, k - n + 1);
        for (std::size_t j = k - n + 1; j < n; ++j) c.mac(q[j], m[k - j]);
        out[k - n] = c.shift();
    }
    out[n - 1] = c.shift();
    subtractModulusIfAbove(out, m, n, u64(c.low));
}

// Lengths up to kFixedWords get a copy each whose loops the compiler unrolls
// completely: no loop control, and the products of a column scheduled
// together.
constexpr std::size_t kFixedWords = 16;

template <std::size_t... N>
constexpr auto mulTable(std::index_sequence<N...>) {
    return std::array{&mulColumns<N>...};
}
template <std::size_t... N>
constexpr auto sqrTable(std::index_sequence<N...>) {
    return std::array{&sqrColumns<N>...};
}
constexpr auto kMulByLength = mulTable(std::make_index_sequence<kFixedWords + 1>());
constexpr auto kSqrByLength = sqrTable(std::make_index_sequence<kFixedWords + 1>());

}  // namespace

void montgomeryMulWords(u64* out, const u64* a, const u64* b, const u64* m, std::size_t n, u64 minv, u64* q) {
    kMulByLength[n <= kFixedWords ? n : 0](out, a, b, m, n, minv, q);
}

void montgomerySqrWords(u64* out, const u64* a, const u64* m, std::size_t n, u64 minv, u64* q) {
    kSqrByLength[n <= kFixedWords ? n : 0](out, a, m, n, minv, q);
}

u64 negativeInverseMod64(u64 m0) {
    u64 x = m0;  // correct to 3 bits: m0 m0 = 1 mod 8 for odd m0
    for (int i = 0; i < 5; ++i) x *= 2 - m0 * x;  // Newton: doubles the correct bits
    return ~x + 1;
}


}  // namespace tw::numtheory
