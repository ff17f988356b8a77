#include "arith/kernels/mul_scratch.h"

#include <algorithm>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define TW_SCRATCH_POISON(p, n) ASAN_POISON_MEMORY_REGION((p), (n) * sizeof(Limb))
#define TW_SCRATCH_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION((p), (n) * sizeof(Limb))
#else
#define TW_SCRATCH_POISON(p, n) ((void)(p), (void)(n))
#define TW_SCRATCH_UNPOISON(p, n) ((void)(p), (void)(n))
#endif

namespace tw::arith {

namespace {
// Limbs left poisoned after each buffer (none outside AddressSanitizer builds).
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kGuard = 4;
#else
constexpr std::size_t kGuard = 0;
#endif
static_assert(kGuard + LimbScratch::kLineLimbs - 1 <= LimbScratch::kAlignedTakeSlack);
}  // namespace

LimbScratch::~LimbScratch() {
    for (Block& b : blocks_) TW_SCRATCH_UNPOISON(b.storage.get(), b.size + kLineLimbs - 1);
}

Limb* LimbScratch::takeFrom(std::size_t n, std::size_t alignLimbs) {
    // Blocks start on a cache line, so aligning the offset aligns the address.
    // alignLimbs is 1 or a line: a power of two, so a mask finds the skip (a
    // division here showed in the profiles of short kernels).
    auto skip = [&] { return (alignLimbs - (used_ & (alignLimbs - 1))) & (alignLimbs - 1); };
    while (current_ < blocks_.size() && blocks_[current_].size - used_ < skip() + n + kGuard) {
        ++current_;
        used_ = 0;
    }
    if (current_ == blocks_.size()) {
        // Grow geometrically so that a poor estimate costs few extra blocks.
        const std::size_t last = blocks_.empty() ? 0 : blocks_.back().size;
        const std::size_t size = std::max({n + kGuard, 2 * last, expected_, std::size_t(256)});
        // Aligned by hand: the aligned forms of operator new cost more than
        // a small product's arena can bear.
        std::unique_ptr<Limb[]> storage(new Limb[size + kLineLimbs - 1]);
        const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(storage.get());
        Limb* data = storage.get() + ((64 - start % 64) % 64) / sizeof(Limb);
        TW_SCRATCH_POISON(storage.get(), size + kLineLimbs - 1);
        blocks_.push_back(Block{std::move(storage), data, size});
        used_ = 0;
    }
    used_ += skip();  // the skipped limbs stay poisoned
    Limb* p = blocks_[current_].data + used_;
    TW_SCRATCH_UNPOISON(p, n);
    used_ += n + kGuard;
    return p;
}

void LimbScratch::release(std::size_t block, std::size_t used) {
    if (blocks_.empty()) return;
    // Everything handed out after (block, used) becomes free (and poisoned) again.
    for (std::size_t i = block; i <= current_ && i < blocks_.size(); ++i) {
        const std::size_t from = i == block ? used : 0;
        TW_SCRATCH_POISON(blocks_[i].data + from, blocks_[i].size - from);
    }
    current_ = block;
    used_ = used;
}

}  // namespace tw::arith
