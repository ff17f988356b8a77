// LimbScratch: the temporary storage of one top-level multiplication.
//
// The divide-and-conquer rungs need buffers at every recursion level.  They
// take them from one arena, sized up front for the whole call and released in
// stack order by Frame objects, instead of allocating at every level.  Should
// the estimate fall short, the arena adds a larger block; blocks are freed when
// the arena goes.  Allocation failure throws std::bad_alloc.
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
    // expectedLimbs: the first block's size; 0 defers allocation to the first take().
    explicit LimbScratch(std::size_t expectedLimbs = 0) : expected_(expectedLimbs) {}
    LimbScratch(const LimbScratch&) = delete;
    LimbScratch& operator=(const LimbScratch&) = delete;
    ~LimbScratch();

    // n uninitialised limbs, valid until the enclosing Frame ends.
    Limb* take(std::size_t n);

    // Blocks allocated so far (one when the estimate was enough).
    std::size_t blockCount() const { return blocks_.size(); }

    // The longest shorter operand of a product that takes the basecase rung.
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

    private:
        LimbScratch& scratch_;
        std::size_t block_;
        std::size_t used_;
    };

private:
    struct Block {
        std::unique_ptr<Limb[]> data;
        std::size_t size;
    };
    void release(std::size_t block, std::size_t used);

    std::vector<Block> blocks_;
    std::size_t current_ = 0;   // block served from
    std::size_t used_ = 0;      // limbs of it handed out
    std::size_t expected_;
    std::size_t basecaseMax_ = kMulBasecaseMax;
};

}  // namespace tw::arith
