// Powers of a chunk kept from one conversion to the next.  The powers and the
// reciprocals of the divisions are a good part of the cost of a conversion
// (more than a quarter of it at 10^5 digits), and they depend only on the
// chunk, the leaf and the limb radix: programs that print many numbers in one
// radix compute them once.
//
// The cache keeps the powers of a few chunks, the most recently used first,
// within a bound on the limbs it holds; what exceeds the bound is dropped after
// the conversion that built it.  Powers that the terminate flag cut short are
// dropped as well, never handed out again.  Each thread has its own cache, so
// no lock is needed and threads never see each other's powers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "arith/convert/chunk_powers.h"
#include "arith/tuning.h"

namespace tw::convert {

// The powers of `chunk` for `leaf` (see ChunkPowers), from the cache or new.
// The caller holds them for one conversion and then calls releaseChunkPowers.
template <class R>
std::shared_ptr<ChunkPowers<R>> acquireChunkPowers(std::uint64_t chunk, std::size_t leaf, bool separateTwos);

// Ends a conversion's use of the powers: keeps them for the next one if they
// are whole and the cache stays within its bound, else drops them.
template <class R>
void releaseChunkPowers(std::shared_ptr<ChunkPowers<R>> powers);

// Empties the cache (tests, and callers that want the memory back).
void clearChunkPowerCache();

// Limbs the cache holds now, and the chunks whose powers it holds.
std::size_t chunkPowerCacheLimbs();
std::size_t chunkPowerCacheEntries();

}  // namespace tw::convert
