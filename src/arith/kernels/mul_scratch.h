// LimbScratch: the temporary storage of one top-level kernel call.
//
// The divide-and-conquer kernels need buffers at every recursion level.  They
// take them from one arena, sized up front for the whole call by the kernel's
// size function and released in stack order by Frame objects, instead of
// allocating at every level.  Should the estimate fall short, the arena adds a
// larger block; blocks are freed when the arena goes.  Allocation failure
// throws std::bad_alloc.
//
// Every block starts on a cache line, and takeAligned() hands out buffers that
// do too: the transform's vector kernels stream through residue vectors and
// root tables laid out that way.  Residues are words of the limb type (below
// primes near 2^30), so one limb arena serves them.
//
// The arena also carries the one choice a caller may make about the rungs:
// how long a shorter operand the basecase still takes (see multiplyFast).
//
// Under AddressSanitizer each buffer is followed by a poisoned guard, so an
// overrun into the next buffer is reported as it would be for separate
// allocations.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "arith/tuning.h"
#include "frame/radix.h"

namespace tw::arith {

class LimbScratch {
public:
    // Limbs in a cache line.
    static constexpr std::size_t kLineLimbs = 64 / sizeof(Limb);
    // What a size function adds per aligned take: the limbs skipped to reach
    // the line (at most kLineLimbs - 1) and the sanitizer's guard, rounded up.
    static constexpr std::size_t kAlignedTakeSlack = 2 * kLineLimbs;

    // expectedLimbs: the first block's size; 0 defers allocation to the first take().
    explicit LimbScratch(std::size_t expectedLimbs = 0) : expected_(expectedLimbs) {}
    LimbScratch(const LimbScratch&) = delete;
    LimbScratch& operator=(const LimbScratch&) = delete;
    ~LimbScratch();

    // n uninitialised limbs, valid until the enclosing Frame ends.
    Limb* take(std::size_t n) { return takeFrom(n, 1); }
    // The same, starting on a 64-byte boundary.
    Limb* takeAligned(std::size_t n) { return takeFrom(n, kLineLimbs); }

    // Blocks allocated so far (one when the estimate was enough).
    std::size_t blockCount() const { return blocks_.size(); }

    // The longest shorter operand of a product that takes the basecase rung;
    // 0 (the default) leaves it to the ladder's bound for the radix.
    std::size_t basecaseMax() const { return basecaseMax_; }
    void setBasecaseMax(std::size_t limbs) { basecaseMax_ = limbs; }

    // Releases everything taken since its construction when it goes out of scope.
    class Frame {
    public:
        explicit Frame(LimbScratch& s) : scratch_(s), block_(s.current_), used_(s.used_) {}
        Frame(const Frame&) = delete;
        Frame& operator=(const Frame&) = delete;
        ~Frame() { scratch_.release(block_, used_); }
        Limb* take(std::size_t n) { return scratch_.take(n); }
        Limb* takeAligned(std::size_t n) { return scratch_.takeAligned(n); }

    private:
        LimbScratch& scratch_;
        std::size_t block_;
        std::size_t used_;
    };

private:
    struct Block {
        std::unique_ptr<Limb[]> storage;  // a line longer than size, for the alignment
        Limb* data;                       // its first cache-line boundary
        std::size_t size;
    };
    Limb* takeFrom(std::size_t n, std::size_t alignLimbs);
    void release(std::size_t block, std::size_t used);

    std::vector<Block> blocks_;
    std::size_t current_ = 0;   // block served from
    std::size_t used_ = 0;      // limbs of it handed out
    std::size_t expected_;
    std::size_t basecaseMax_ = 0;
};

}  // namespace tw::arith
