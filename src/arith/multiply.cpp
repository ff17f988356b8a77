#include "arith/multiply.h"

#include <algorithm>

#include "arith/add_sub.h"

namespace tw::arith {

// Schoolbook product row by row; the ladder replaces it.
template <class R>
void multiply(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) {
    std::fill(out, out + an + bn, 0);
    for (std::size_t j = 0; j < bn; ++j) {
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < an; ++i) {
            const std::uint64_t t = std::uint64_t(a[i]) * b[j] + out[i + j] + carry;
            out[i + j] = Limb(t % R::base);
            carry = t / R::base;
        }
        out[an + j] = Limb(carry);
    }
}

template <class R>
void square(Limb* out, const Limb* a, std::size_t n) {
    multiply<R>(out, a, n, a, n);
}

template void multiply<DecimalRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void multiply<BinaryRadix>(Limb*, const Limb*, std::size_t, const Limb*, std::size_t);
template void square<DecimalRadix>(Limb*, const Limb*, std::size_t);
template void square<BinaryRadix>(Limb*, const Limb*, std::size_t);

}  // namespace tw::arith
