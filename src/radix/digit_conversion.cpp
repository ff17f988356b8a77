#include "radix/digit_conversion.h"

#include <algorithm>

#include "arith/add_sub.h"
#include "frame/error_state.h"

namespace tw {

namespace {

// The radix as a 64-bit value: 0 stands for 2^32.
constexpr std::uint64_t radixValue(std::uint32_t radix) { return radix == 0 ? std::uint64_t(1) << 32 : radix; }

// acc[0..n) := acc * m + add over radix R, m <= 2^32; returns the new length
// (acc has room for two more limbs).
template <class R>
std::size_t mulAddWord(Limb* acc, std::size_t n, std::uint64_t m, std::uint64_t add) {
    std::uint64_t carry = add;
    for (std::size_t i = 0; i < n; ++i) {
        const u128 t = u128(acc[i]) * m + carry;
        acc[i] = Limb(t % R::base);
        carry = std::uint64_t(t / R::base);
    }
    while (carry) {
        acc[n++] = Limb(carry % R::base);
        carry /= R::base;
    }
    return n;
}

// a[0..n) := a div d, returns a mod d; d <= 2^32.
template <class R>
std::uint64_t divideByWord(Limb* a, std::size_t n, std::uint64_t d) {
    std::uint64_t rem = 0;
    for (std::size_t i = n; i-- > 0;) {
        const u128 cur = u128(rem) * R::base + a[i];
        a[i] = Limb(cur / d);
        rem = std::uint64_t(cur % d);
    }
    return rem;
}

}  // namespace

// Horner's rule from the top digit, then the bottom zero digits as factors of
// the radix.  Quadratic.
template <class R>
void setFromDigits(NumberRecord& x, std::uint32_t sourceRadix, const std::uint32_t* digits, std::size_t count) {
    dropTextBuffers(x);
    while (count > 0 && digits[count - 1] == 0) --count;
    std::size_t low = 0;
    while (low < count && digits[low] == 0) ++low;
    if (count == 0) {
        setRecordZero(x);
        return;
    }
    const std::uint64_t radix = radixValue(sourceRadix);
    // Each source digit adds at most 32 bits: ceil(32 / 28) + 1 limbs of either radix.
    std::vector<Limb> acc(2 * count + 4, 0);
    std::size_t n = 0;
    for (std::size_t i = count; i-- > low;) {
        n = mulAddWord<R>(acc.data(), n, radix, digits[i]);
        if ((i & 255) == 0 && terminateRequested()) {
            setRecordZero(x);
            return;
        }
    }
    for (std::size_t i = 0; i < low; ++i) n = mulAddWord<R>(acc.data(), n, radix, 0);
    resizeStorage(x, std::uint32_t(n), true);
    if (x.allocated() < n) return;
    std::copy(acc.begin(), acc.begin() + std::ptrdiff_t(n), x.digits);
    normalizeIndices(x, std::uint32_t(n));
}

// Repeated division by the target radix.  Quadratic.
template <class R>
std::vector<std::uint32_t> toDigits(const NumberRecord& x, std::uint32_t targetRadix) {
    std::vector<std::uint32_t> out;
    if (x.isZero()) return out;
    const std::uint64_t radix = radixValue(targetRadix);
    std::vector<Limb> work(x.digits, x.digits + x.topIndex + 1);
    std::size_t n = work.size();
    while (n > 0) {
        out.push_back(std::uint32_t(divideByWord<R>(work.data(), n, radix)));
        while (n > 0 && work[n - 1] == 0) --n;
        if ((out.size() & 255) == 0 && terminateRequested()) return {};
    }
    return out;
}

template void setFromDigits<DecimalRadix>(NumberRecord&, std::uint32_t, const std::uint32_t*, std::size_t);
template void setFromDigits<BinaryRadix>(NumberRecord&, std::uint32_t, const std::uint32_t*, std::size_t);
template std::vector<std::uint32_t> toDigits<DecimalRadix>(const NumberRecord&, std::uint32_t);
template std::vector<std::uint32_t> toDigits<BinaryRadix>(const NumberRecord&, std::uint32_t);

}  // namespace tw
