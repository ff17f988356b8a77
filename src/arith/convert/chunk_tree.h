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
//
// The tree's temporaries (high parts and products of a join, quotients and
// remainders of a split, the divisions' own) are frames of one LimbScratch,
// sized at the top by joinScratchLimbs or splitScratchLimbs.  The cached
// powers (chunk_power_cache.h) outlive the call and are not scratch.
#pragma once

#include <cstddef>
#include <cstdint>

#include "arith/kernels/mul_scratch.h"
#include "frame/radix.h"

namespace tw::convert {

using arith::LimbScratch;

// Limbs of radix R that a value below chunk^count may need: the room
// joinChunks writes in.
template <class R>
std::size_t joinedLimbsBound(std::size_t count, std::uint64_t chunk);

// The scratch joinChunks takes besides its output.
template <class R>
std::size_t joinScratchLimbs(std::size_t count, std::uint64_t chunk);

// out[0 .. joinedLimbsBound(count, chunk)) := the limbs of radix R of
// sum chunks[i] * chunk^i over i < count; returns its length without zero
// limbs at the top (0 for zero).  Every chunk below `chunk`.
template <class R>
std::size_t joinChunks(Limb* out, const std::uint32_t* chunks, std::size_t count, std::uint64_t chunk,
                       LimbScratch& scratch);

// The scratch splitIntoChunks takes for x of n limbs and `count` chunks.
template <class R>
std::size_t splitScratchLimbs(std::size_t n, std::size_t count, std::uint64_t chunk);

// out[0..count) := the chunks of x[0..n) (radix R), least significant first,
// where x < chunk^count.  Decimal x of middling length goes through binary
// limbs first, whose divisions are cheaper.
template <class R>
void splitIntoChunks(std::uint32_t* out, std::size_t count, const Limb* x, std::size_t n, std::uint64_t chunk,
                     LimbScratch& scratch);

}  // namespace tw::convert
