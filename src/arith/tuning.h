// Every switch-over point of the library in one place: the rungs of the
// multiplication and squaring ladders, where vector kernels take over, the
// division's block sizes, the conversions' leaves and bands, and the bounds
// of what is kept between calls.  Each value comes with the measurement that
// set it (this project's 2-core AVX-512 machine, both radices unless said);
// bench/tune measures the crossovers again on the machine it runs on.
//
// These are tuning, not behaviour: any value that keeps the static_asserts
// below gives the same results, only at another speed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw::arith {

// ---- multiplication and squaring ladders (limbs of the shorter operand) ----

// The rungs of both ladders in one radix: the product's (by limbs of the
// shorter operand) single limb, basecase up to mulBasecaseMax, Karatsuba up
// to mulKaratsubaMax, Toom-3 below mulTransformMin, the transform from there;
// the square's the same.  An empty Toom-3 band is allowed: Toom-3 still
// splits products too long for the transform.
struct LadderBounds {
    std::size_t mulBasecaseMax, mulKaratsubaMax, mulTransformMin;
    std::size_t sqrBasecaseMax, sqrKaratsubaMax, sqrTransformMin;
};

// Radix 10^9, measured by tw_tune and by timing the rungs side by side on
// balanced operands (us; machine under load).  Basecase against one level of
// Karatsuba: 1.03 | 1.05 at 64 limbs, 1.16 | 1.25 at 72, 1.55 | 1.49 at 80.
// Karatsuba beats Toom-3 at every length below the transform (6.2 | 7.5 at
// 192 limbs, 14.2 | 16.6 at 320), so the Toom-3 band is empty.  Karatsuba
// against the transform: 6.19 | 6.12 at 192 limbs, 6.91 | 5.70 at 208.
// Squares: the basecase to the lane kernels' reach (2.56 | 2.91 at 128
// limbs); Karatsuba against the transform 4.33 | 4.49 at 176, 5.06 | 4.72 at 192.
inline constexpr LadderBounds kDecimalLadder{
    75, 199, 200,
    128, 183, 184,
};

// Radix 2^28.  The basecase against Karatsuba: ahead up to the lane kernels'
// reach where the 512-bit kernels run (0.99 | 1.16 at 128 limbs), so there
// the ladder takes kWideBasecaseMax instead of mulBasecaseMax.  Karatsuba
// beats Toom-3 at every length below the transform (8.6 | 11.9 at 464
// limbs), and the transform from about 500 limbs: 8.60 | 10.15 at 464,
// 9.18 | 10.02 at 496, 10.33 | 10.03 at 512.  Squares: the basecase to 128
// (0.93 | 1.34), Karatsuba against the transform 7.90 | 7.98 at 464 limbs,
// 7.99 | 7.79 at 480, 8.79 | 7.73 at 512.
inline constexpr LadderBounds kBinaryLadder{
    64, 499, 500,
    128, 471, 472,
};

template <class R>
inline constexpr const LadderBounds& kLadder = R::isBinary ? kBinaryLadder : kDecimalLadder;

// The basecase's bound in radix 2^28 where the 512-bit kernels are available,
// for the ladder and for the conversions' own rule (multiplyFast) alike.
// There one basecase of 72 limbs takes 0.4 us against 0.7 us by Karatsuba
// over 36-limb halves, and 128 limbs 1.0 us against 1.4 us.  It cannot
// exceed the lane kernels' reach (kLaneKernelMax).
inline constexpr std::size_t kWideBasecaseMax = 128;

// Decimal squares of up to this many limbs are taken as products a * a: the
// product's lanes beat the triangle with its serial doubling pass while that
// pass is a large part of the work.  Measured through HI_mul(r, a, a): 12
// limbs 101 against 138-182 ns, 23 limbs 0.92 of the time, 34 limbs 0.88, 45
// limbs about even, 111 limbs 1.6 times.  (Radix 2^28 keeps the triangle: its
// 512-bit square lanes start at kWideLanesSqrMin.)
inline constexpr std::size_t kSqrAsProductMaxDecimal = 32;

// Transform lengths above this (in limbs) are not used: the sum of a
// convolution must stay below the product of the three transform primes.
inline constexpr std::size_t kTransformMaxLength = 0x3000000;
// Above this transform length Toom-3 splits the operands; between the two, Karatsuba.
inline constexpr std::size_t kTransformToomLength = 0x6000000;

// ---- vector kernels (frame/kernel_paths.h) ----

// Where the 512-bit kernels take over when no path is forced: one whole
// vector.  A shorter span needs masked loads whose 64 bytes reach past it,
// and such a load waits for any store still in flight to the limbs beyond
// (a neighbouring span just written: about 9 ns on Zen 4, more than the
// scalar loop takes for up to 15 limbs).  From 16 limbs the loads stay inside
// the spans and the kernels are 3 to 8 times faster, both radices.
inline constexpr std::size_t kWideAddSubMin = 16;

// Where the 512-bit kernels are used when no path is forced: from this many
// limbs of the shorter operand (or, second, of the square's), radix 2^28
// only.  Below it the wider blocks waste more of their padding and ragged
// rows than they gain (measured even at 8 limbs, ahead from 12).  For radix
// 10^9 the compare after every addition settles one lane in about 70
// additions, so eight lanes a compare mispredict too often; there the 256-bit
// kernels are measured faster.
inline constexpr std::size_t kWideLanesMin = 12;
inline constexpr std::size_t kWideLanesSqrMin = 12;

// ---- products off the ladder (fast_product.h) ----

// The transform beats Toom-3 all through the Toom-3 band under
// ProductRule::Fastest (measured in both radices), except for results a
// little longer than the step at 512 limbs, where the transform's length
// doubles: results from kTransformStep to kTransformStep * 9/8 limbs keep Toom-3.
inline constexpr std::size_t kTransformStep = 512;

// Products needed only modulo radix^N - 1 (cyclicIsCheaper): the cyclic
// product costs about 15 ns a limb of N in either radix, the ladder's
// Karatsuba and Toom-3 rungs about k * longer * sqrt(shorter), so the cyclic
// one wins when shorter * longer^2 >= c N^2: c = 46 in decimal limbs, 54 in
// binary ones (whose ladder is faster).  Longer operands below 140 limbs, and
// shorter ones in the basecase's band, keep the ladder at every length
// measured (62 x 1000 limbs: 0.8 and 0.4 times the cyclic time).
inline constexpr unsigned kCyclicCostDecimal = 46;
inline constexpr unsigned kCyclicCostBinary = 54;
inline constexpr std::size_t kCyclicMinLonger = 140;

// ---- division (divide_newton.h) ----

// Quotients of up to this many limbs are found by long division, one limb
// at a time (n * bn limb products), without a reciprocal; dividends of up to
// kSchoolbookDivideStackLimbs do it in a copy on the stack.  Measured on 2n by
// n decimal digits: at 12 quotient limbs 0.64 against 0.92 us through the
// reciprocal (binary 0.58 against 0.73), at 17 limbs 0.85 times the time, at
// 23 about even, at 34 limbs 1.5 times.
inline constexpr std::size_t kSchoolbookDivideMaxQuotientLimbs = 20;
inline constexpr std::size_t kSchoolbookDivideStackLimbs = 256;

// Quotient limbs a block takes at the least: below this the fixed cost of a
// block outweighs its products, so short divisors get blocks longer than
// themselves.
inline constexpr std::size_t kMinBlockQuotientLimbs = 32;

// Quotients from 2 kMinBlockQuotientLimbs up to this many limbs divide in two
// blocks through a reciprocal of half their length: while products are below
// the transform's sizes, the reciprocal of full length costs more than the
// second block.  From here on the single block is as fast or faster.
inline constexpr std::size_t kHalfReciprocalMaxQuotientLimbs = 4096;

// ---- products of many factors (numtheory/list_products.h, factorials.h) ----

// Words a leaf of the word product tree multiplies into its running product
// one by one; longer lists split in halves.  Measured on the 53 428 primes of
// C(10^6, 5*10^5) in radix 2^28: 4.6 ms with leaves of 16, 32 or 64 words,
// 5.3 ms at 128, about 10 ms at 8 and at 256.
inline constexpr std::size_t kWordProductLeaf = 32;

// A binomial coefficient C(n, k) or an arrangement count n! / (n - k)! with
// k below n / kDirectProductShare is the product of the k words n - k + 1 .. n
// (divided by k! for the binomial) instead of a product of prime powers,
// which must sieve and weigh every prime up to n.  Measured on binomials in
// radix 2^28, direct against prime powers: n = 10^6, k = n/64: 1.8 against
// 1.1 ms, k = n/128: 0.8 against 0.9 ms; n = 10^8, k = n/64: 822 against
// 644 ms, k = n/128: 377 against 606 ms.
inline constexpr std::uint32_t kDirectProductShare = 128;

constexpr bool laddersOrdered(const LadderBounds& b) {
    return 1 < b.mulBasecaseMax && b.mulBasecaseMax < b.mulKaratsubaMax && b.mulKaratsubaMax < b.mulTransformMin &&
           1 < b.sqrBasecaseMax && b.sqrBasecaseMax < b.sqrKaratsubaMax && b.sqrKaratsubaMax < b.sqrTransformMin;
}
static_assert(laddersOrdered(kDecimalLadder) && laddersOrdered(kBinaryLadder));
static_assert(kTransformMaxLength < kTransformToomLength);
static_assert(kWideBasecaseMax > kBinaryLadder.mulBasecaseMax);
static_assert(2 * kMinBlockQuotientLimbs <= kHalfReciprocalMaxQuotientLimbs);

}  // namespace tw::arith

namespace tw::arith::ntt {

// ---- the transform ----

// Blocks of at most this many words are transformed level by level while they
// stay in the first-level cache; longer blocks run one radix-2 level over the
// whole block and recurse into both halves.
inline constexpr std::size_t kLeafLength = 4096;

}  // namespace tw::arith::ntt

namespace tw::convert {

// ---- conversions between radices ----

// Magnitudes shorter than this many limbs change limb radix by repeated
// division by the target radix (convertLimbs), which needs no temporaries;
// from here on the divide-and-conquer conversion is faster.
inline constexpr std::size_t kConvertByDivisionMax = 40;

// Most chunks a leaf of the tree holds.  Horner's rule and repeated division
// by the chunk cost about leaf^2 / 2 word steps there, and beat the products
// and divisions of the tree up to these lengths.  Binary limbs take Horner's
// rule in 64-bit words, two chunks a step, which pays off further up.
template <class R>
inline constexpr std::size_t kJoinLeaf = R::isBinary ? 128 : 32;
inline constexpr std::size_t kSplitLeaf = 32;

// Decimal magnitudes in this band of lengths split faster by way of binary
// limbs: a join into radix 2^28 (products only) and a split with binary
// divisions cost less than the decimal divisions, whose products carry in
// radix 10^9.  Measured, the detour saves a sixth from 300 to 1100 limbs;
// below the band the join costs more than it saves, and above it the join's
// own share of the work catches up (even by 1500 limbs).
inline constexpr std::size_t kBinarySplitMinLimbs = 128;
inline constexpr std::size_t kBinarySplitMaxLimbs = 1400;
static_assert(kBinarySplitMinLimbs < kBinarySplitMaxLimbs);

// ---- what conversions keep between calls ----

// Limbs the cache holds at most between conversions (16 MB): enough for the
// powers of numbers of some 10^7 digits.
inline constexpr std::size_t kChunkPowerCacheLimbs = std::size_t(1) << 22;
// Chunks whose powers are kept at once.
inline constexpr std::size_t kChunkPowerCacheEntries = 4;

// Powers up to this many limbs keep the transforms of their divisions
// (arith::KeptTransforms, about twelve times the power's length in words).
// The levels below it hold most of a tree's divisions; above it a level
// divides once or twice a conversion, and keeping its transforms would make
// a conversion of 10^8 digits hold half a gigabyte more.
inline constexpr std::size_t kKeptTransformsMaxLimbs = std::size_t(1) << 16;

}  // namespace tw::convert

namespace tw::numtheory {

// ---- greatest common divisors ----

// Decimal digits above the common low zero limbs (nine a limb) from which
// both operands of a GCD take the sub-quadratic path: the library's fixed
// rule for the switch, not a measured crossover.
inline constexpr std::int64_t kSubquadraticGcdDigits = 65536;

// Products of 64-bit words whose shorter operand has at most this many words
// go by rows of word products; longer ones are repacked into 28-bit limbs for
// the ladder.  Measured: 400 x 8 words take about 4.5 us either way, 400 x 4
// 2.4 against 6.2 us, 400 x 16 9.5 against 6.4 us; with 40-word operands the
// two cross near 12 words.
inline constexpr std::size_t kWordProductRowsMax = 8;

// Half-GCDs of numbers shorter than this many words take single Lehmer
// steps only, and the sub-quadratic run hands such numbers to the plain one.
// Measured on random pairs of 5200 and 20000 words (GCD and extended GCD):
// 30 to 60 words alike within the noise, 100 some 15 % slower at 20000
// words, 200 and 400 slower still (a third more at 1300 words).
inline constexpr std::size_t kHalfGcdMinWords = 40;

// ---- square roots ----

// Divisions of the recursive square root whose quotient limbs times divisor
// limbs are at most this go by long division, one quotient limb at a time;
// larger ones through a reciprocal.  Measured in radix 10^9 (us, long
// division against reciprocal): 8 by 8 limbs 0.40 against 0.90, 16 by 16
// 0.83 against 1.44, 8 by 32 0.73 against 0.99, 16 by 32 2.1 against 1.4,
// 32 by 32 3.7 against 2.1; radix 2^28 crosses at about the same products.
inline constexpr std::size_t kRootLongDivisionMax = 256;

// ---- modular powers ----

// Odd binary moduli of up to this many bits run their powers on 64-bit words
// (montgomery_words.h) instead of 28-bit limbs.  A square and reduction on
// words takes 36 us at 8192 bits; on limbs at 8220 bits 68 us with portable
// products, 39 us with the 512-bit basecase.
inline constexpr std::size_t kWordMontgomeryMaxBits = 8192;

// Limbs of 52 bits up to which the multiply-add lanes take odd moduli (16638
// bits), whatever kWordMontgomeryMaxBits says: at 8220 to 12000 bits they are
// 3 to 5 times faster than the 28-bit limbs.  Lanes hold their sums below
// 2^63 up to 511 limbs (montgomery_ifma.h).
inline constexpr std::size_t kIfmaMontgomeryMaxLimbs = 320;
// From this many bits of an odd modulus on, where the processor has them,
// the 52-bit multiply-add lanes (montgomery_ifma.h) take over from the words:
// a square and reduction takes 40 against 36 ns at 320 bits, 40 against
// 49 ns at 352, 58 against 79 ns at 512, 0.13 against 0.23 us at 1024 and
// 0.25 against 1.1 us at 2048.
inline constexpr std::size_t kIfmaMontgomeryMinBits = 336;
// Sums of up to this many vectors of eight lanes (64 limbs of 52 bits, moduli
// below 3326 bits) stay in registers and in place, b and m read moved up;
// longer ones move down a lane a step, so that b and m can stay aligned.
// At 64 limbs both take 0.61 us; at 80 limbs the sum in place spills
// registers and takes 1.08 against 0.87 us, at 160 limbs 12.9 against 5.6 us.
inline constexpr std::size_t kIfmaStillSumMaxVectors = 8;

// ---- 32-bit primes ----

// Ranges shorter than this are counted by sieving them rather than by two
// values of pi(x), and the k-th prime's bisection hands over to a sieve once
// its bracket is this short.  Measured on random ranges of the strong test's
// span (40 each, machine under load): sieving 2^16 numbers 0.30 ms against
// 0.82 ms for two values of pi, 2^17 numbers 0.94 ms against 0.52 ms.
inline constexpr std::uint32_t kPrimeSieveCountSpan = 1u << 16;
inline constexpr std::uint32_t kPrimeSieveFinishSpan = 1u << 16;

}  // namespace tw::numtheory
