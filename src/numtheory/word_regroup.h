// Bit strings cut at other places: the 28-bit limbs of the binary radix
// against the 64-bit words (and 52-bit lanes) the modular-power kernels run
// on.  Linear in the length.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/radix.h"

namespace tw::numtheory {

// out[0..outCount) := the value of in[0..inCount) (inBits bits a word) cut
// into outBits bits a word, lowest first, zero past the input's top; bits
// that do not fit outCount words are dropped.  1 <= inBits, outBits <= 64.
template <class To, class From>
void regroupWords(To* out, std::size_t outCount, unsigned outBits, const From* in, std::size_t inCount,
                  unsigned inBits) {
    const u128 mask = (u128(1) << outBits) - 1;
    // Fewer than outBits bits wait in `pending`; one more word leaves below 128.
    u128 pending = 0;
    unsigned held = 0;
    std::size_t i = 0;
    for (std::size_t o = 0; o < outCount; ++o) {
        for (; held < outBits && i < inCount; held += inBits) pending |= u128(in[i++]) << held;
        out[o] = To(pending & mask);
        pending >>= outBits;
        held = held > outBits ? held - outBits : 0;
    }
}

}  // namespace tw::numtheory
