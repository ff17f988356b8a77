// Word buffers aligned to a cache line, for transforms kept across calls
// (CyclicFactor).  Temporaries come from LimbScratch::takeAligned instead.
// Allocation may throw std::bad_alloc.
#pragma once

#include <cstddef>
#include <memory>
#include <new>

#include "frame/radix.h"

namespace tw::arith::ntt {

struct AlignedWordsDeleter {
    void operator()(Limb* p) const { ::operator delete(p, std::align_val_t(64)); }
};
using AlignedWords = std::unique_ptr<Limb[], AlignedWordsDeleter>;

inline AlignedWords allocateWords(std::size_t count) {
    return AlignedWords(static_cast<Limb*>(::operator new(count * sizeof(Limb), std::align_val_t(64))));
}

}  // namespace tw::arith::ntt
