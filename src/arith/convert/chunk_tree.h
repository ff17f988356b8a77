// The divide-and-conquer core of the conversion: between limbs of radix R and
// chunks, words of radix `chunk` (2 < chunk <= 2^32).
//
// Joining: the value of a run of chunks is low + P * high, where P is the
// chunk power of the longest leaf * 2^i chunks shorter than the run, and low
// and high are the values of the two parts; the recursion bottoms out in
// Horner's rule over at most `leaf` chunks.  Splitting runs the other way:
// one division by P (its reciprocal shared by every division of the level)
// gives the high and low parts; the recursion bottoms out in repeated division
// by the chunk.  With products and divisions in O(M(n)), both cost
// O(M(n) log n).  Both poll the terminate flag; when it is raised the results
// are unspecified.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frame/radix.h"

namespace tw::convert {

// Limbs of radix R of sum chunks[i] * chunk^i over i < count, trimmed (empty
// for zero).  Every chunk below `chunk`.
template <class R>
std::vector<Limb> joinChunks(const std::uint32_t* chunks, std::size_t count, std::uint64_t chunk);

// out[0..count) := the chunks of x[0..n) (radix R), least significant first,
// where x < chunk^count.  Decimal x of middling length goes through binary
// limbs first, whose divisions are cheaper.
template <class R>
void splitIntoChunks(std::uint32_t* out, std::size_t count, const Limb* x, std::size_t n, std::uint64_t chunk);

}  // namespace tw::convert
