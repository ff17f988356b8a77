// Modular powers and inverses of 32-bit machine integers.
#pragma once

#include <cstdint>

namespace tw::numtheory {

// base^e mod modulus for e read as an unsigned 32-bit pattern (-1 is
// 2^32 - 1), by left-to-right binary exponentiation that returns as soon as
// the accumulator is 0.  The library's rules, in this order: modulus 0
// records -5 and gives 0; modulus 1 gives 0; base 0 gives 0 (0^0 included);
// base 1 or exponent 0 gives 1.  Power-of-two moduli reduce by a mask on the
// low half of each product, others by a 64-by-32 remainder.
std::uint32_t powModWord(std::uint32_t base, std::uint32_t exponent, std::uint32_t modulus);

// The inverse of a modulo modulus by extended Euclid on (modulus, a mod
// modulus), 0 when there is none (no error recorded).  Modulus 0 records -5
// and gives 0; modulus 1 gives 1, the library's rule.
std::uint32_t invertModWord(std::uint32_t a, std::uint32_t modulus);

}  // namespace tw::numtheory
