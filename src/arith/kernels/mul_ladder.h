// The rungs of the multiplication and squaring ladders, and the internal
// entry points through which every sub-product recurses.
//
// Common rules:
// - out holds exactly the product's limb count and overlaps no operand;
//   operands may overlap each other.
// - Rung functions take spans whose top limb is non-zero, the longer
//   operand first (l >= s).  mulLadder / sqrLadder take any operands,
//   trim them and pick the rung.
// - Every rung tests the terminate flag on entry and returns early when it
//   is raised; out is then unspecified (the top-level caller zeroes it).
// - Temporaries come from the LimbScratch of the top-level call.
#pragma once

#include <cstddef>

#include "arith/kernels/mul_scratch.h"
#include "frame/radix.h"

namespace tw::arith {

// out[0 .. an+bn) := a[0..an) * b[0..bn), an, bn >= 1; operands may have zero
// limbs at either end.  Zero limbs at the bottom are skipped and the rung is
// chosen by the shorter trimmed length.
template <class R>
void mulLadder(Limb* out, const Limb* a, std::size_t an, const Limb* b, std::size_t bn, LimbScratch& scratch);

// out[0 .. 2n) := a[0..n)^2, n >= 1, through the squaring ladder.
template <class R>
void sqrLadder(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch);

// Karatsuba, subtractive form: h = floor(l/2); when h >= s the operands are
// too lopsided and mulUnbalanced runs instead.  Else three half-size products
// L0*S0, L1*S1 and |L1-L0|*|S1-S0|.  l >= s >= 2.  Scratch about 3.5 l limbs
// at this level.  Cost O(l^1.585) for balanced operands.
template <class R>
void mulKaratsuba(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch);

// Toom-3: k = floor(l/3).  s <= k: mulUnbalanced.  k < s <= 2k: L in three
// pieces, S in two, four products (points 0, 1, -1, infinity).  Else both in
// three pieces, five products (points 0, 1, -1, 2, infinity).  l >= s >= 2,
// l >= 3.  Scratch about 6 l limbs at this level.  Cost O(l^1.465) balanced.
template <class R>
void mulToom3(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch);

// Lopsided operands, l >= s >= 1: straight to the transform when that pays
// (see the definition), else L in pieces of s limbs, each piece times S
// through the ladder, added in at the piece's offset.  Scratch 2s limbs plus
// what the piece products need.
template <class R>
void mulUnbalanced(Limb* out, const Limb* L, std::size_t l, const Limb* S, std::size_t s, LimbScratch& scratch);

// Karatsuba square: h = floor((n+1)/2); squares of the high half, the low
// half and their difference.  n >= 2.
template <class R>
void sqrKaratsuba(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch);

// Toom-3 square with pieces of floor(n/3) limbs (the top piece takes the
// rest): five squares.  n >= 3.
template <class R>
void sqrToom3(Limb* out, const Limb* a, std::size_t n, LimbScratch& scratch);

// A first block size for the scratch of one top-level call: enough for the
// whole recursion in the usual cases, so that one allocation serves it.
std::size_t mulScratchEstimate(std::size_t longer, std::size_t shorter);

}  // namespace tw::arith
