// pi(x) for 32-bit x past the small prime table, by Meissel's formula over
// Legendre's recursion, with the bit counts on the processor's popcnt where
// it has one and in plain arithmetic elsewhere.
#pragma once

#include <cstdint>

#include "numtheory/prime_tables.h"

namespace tw::numtheory {

// pi(x) for kSmallPrimeLimit < x < 2^32.
std::uint32_t meisselCount(std::uint32_t x, const PrimeTables& t);

}  // namespace tw::numtheory
