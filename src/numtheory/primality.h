// Primality and prime search for numbers of both integer types.  The test
// looks at the magnitude: one listed composite, 32-bit values through the
// 32-bit services, values below 10^16 by strong tests to five bases (exact
// there), larger ones by trial division, then Baillie-PSW (the strong test
// to base 2 and the strong Lucas test), then any further Miller-Rabin rounds
// asked for, to random bases from the library generator.  The searches sieve
// a window of candidates by small primes before testing.  Decimal numbers
// are tested in binary words.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "arith/convert/digit_conversion.h"
#include "arith/numbers/signed_add.h"
#include "arith/numbers/digit_counts.h"
#include "frame/machine_int.h"
#include "frame/random_generator.h"
#include "frame/random_number.h"
#include "frame/signed_number.h"
#include "numtheory/prime_tables.h"
#include "arith/tuning.h"
#include "frame/kernel_paths.h"
#include "numtheory/lane_residues.h"
#include "numtheory/probable_prime.h"
#include "numtheory/residue_words.h"
#include "numtheory/roots.h"
#include "arith/numbers/power.h"
#include "numtheory/word_primes.h"
#include "numtheory/word_regroup.h"

namespace tw::numtheory {

// The codes of the test: composite, probable prime, prime settled exactly.
inline constexpr std::uint32_t kComposite = 0, kProbablePrime = 1, kProvenPrime = 2;

namespace detail {

// A strong pseudoprime to the bases 2, 3, 7, 61 and 24251 below 10^16.
inline constexpr std::uint64_t kListedComposite = 46856248255981ull;
inline constexpr std::uint64_t kFiveBaseLimit = 10000000000000000ull;

// |x| in 64-bit words, lowest first, no zero top word (empty for zero).
template <class R>
std::vector<std::uint64_t> magnitudeWords(const SignedNumber<R>& x) {
    if (x.isZero()) return {};
    std::vector<std::uint32_t> limbs;
    if constexpr (R::isBinary) {
        limbs.assign(x.limbs(), x.limbs() + x.rec().topIndex + 1);
    } else {
        BinaryNumber b;
        setFromDigits<BinaryRadix>(b.rec(), DecimalRadix::base, x.limbs(), x.rec().topIndex + 1);
        limbs.assign(b.limbs(), b.limbs() + b.rec().topIndex + 1);
    }
    std::vector<std::uint64_t> words((limbs.size() * BinaryRadix::bitsPerLimb + 63) / 64);
    regroupWords(words.data(), words.size(), 64, limbs.data(), limbs.size(), BinaryRadix::bitsPerLimb);
    while (!words.empty() && words.back() == 0) words.pop_back();
    return words;
}

// The words as a positive binary number.
inline BinaryNumber numberOfWords(const std::vector<std::uint64_t>& words) {
    std::vector<std::uint32_t> limbs((words.size() * 64 + BinaryRadix::bitsPerLimb - 1) / BinaryRadix::bitsPerLimb);
    regroupWords(limbs.data(), limbs.size(), BinaryRadix::bitsPerLimb, words.data(), words.size(), 64);
    BinaryNumber x;
    setFromDigits<BinaryRadix>(x.rec(), BinaryRadix::base, limbs.data(), limbs.size());
    x.sign = 1;
    x.normalizeSign();
    return x;
}

// Whether the probable-prime tests run on the multiply-add lanes: the
// processor has them and no test pinned a narrower path.
inline bool useLanes() {
    const KernelChoice choice = kernelChoice();
    return choice.path >= KernelPath::Ifma && processorRuns(KernelPath::Ifma);
}

// The odd primes up to 2^16 grouped into products below 2^64, so that one
// pass over a long number gives its remainders by several primes at once.
struct PrimeGroup {
    std::uint64_t product;
    std::uint32_t first, count;  // into the small table
};
inline const std::vector<PrimeGroup>& primeGroups() {
    static const std::vector<PrimeGroup> groups = [] {
        const auto& small = primeTables().small;
        std::vector<PrimeGroup> out;
        for (std::uint32_t i = 1; i < small.size() && small[i] < (1u << 16);) {
            PrimeGroup g{1, i, 0};
            while (i < small.size() && small[i] < (1u << 16) && g.product <= UINT64_MAX / small[i])
                g.product *= small[i++], ++g.count;
            out.push_back(g);
        }
        return out;
    }();
    return groups;
}

// Whether an odd prime up to `bound` divides n (n above all of them).
inline bool hasSmallFactor(const std::vector<std::uint64_t>& n, std::uint32_t bound) {
    const auto& small = primeTables().small;
    for (const PrimeGroup& g : primeGroups()) {
        if (small[g.first] > bound) break;
        const std::uint64_t r = wordsModSmall(n.data(), n.size(), g.product);
        for (std::uint32_t k = 0; k < g.count; ++k)
            if (r % small[g.first + k] == 0) return true;
    }
    return false;
}

// A base for a Miller-Rabin round: random, in [2, n - 2], in the ring's form.
template <class Ring>
typename Ring::Element randomBase(Ring& ring, const std::vector<std::uint64_t>& n) {
    std::vector<std::uint64_t> base(n.size(), 0);
    {
        const auto lock = lockLibraryGenerator();
        const auto word = [] {
            return (std::uint64_t(randomBelow(1u << 30)) << 34) ^ (std::uint64_t(randomBelow(1u << 30)) << 4) ^
                   randomBelow(16);
        };
        // One word less than n keeps the base below n.
        for (std::size_t i = 0; i + 1 < n.size(); ++i) base[i] = word();
        if (n.size() == 1) base[0] = word() % (n[0] - 3);
    }
    if (n.size() == 1 || std::all_of(base.begin() + 1, base.end(), [](std::uint64_t w) { return w == 0; }))
        base[0] = std::max<std::uint64_t>(base[0], 2);
    return ring.enter(base);
}

// Baillie-PSW on an odd n (not a square of a small prime), then `rounds`
// Miller-Rabin rounds, on the ring given.
template <class Ring>
bool bailliePswOn(Ring& ring, const std::vector<std::uint64_t>& n, std::uint32_t rounds) {
    if (!strongProbablePrimeBaseTwo(ring, n)) return false;
    std::int64_t D = selfridgeD(n, 205);
    if (D == 1) {  // no D among the first hundred: a square has none at all
        const BinaryNumber x = numberOfWords(n);
        BinaryNumber root, rest;
        rootRemainder(root, &rest, x, 2);
        if (rest.isZero()) return false;
        D = selfridgeD(n, std::int64_t(1) << 40);
    }
    if (D == 0 || !strongLucasProbablePrime(ring, n, D)) return false;
    for (std::uint32_t i = 0; i < rounds && !terminateRequested(); ++i)
        if (!strongProbablePrime(ring, n, randomBase(ring, n))) return false;
    return true;
}

// Baillie-PSW on the multiply-add lanes where the processor has them and n
// is long enough for them to win, else on 64-bit words.
inline bool bailliePsw(const std::vector<std::uint64_t>& n, std::uint32_t rounds) {
    const std::size_t bits = 64 * n.size() - std::size_t(__builtin_clzll(n.back()));
    if (bits >= kIfmaMontgomeryMinBits && LaneResidues::takes(bits) && useLanes()) {
        LaneResidues ring(n.data(), n.size(), bits);
        return bailliePswOn(ring, n, rounds);
    }
    ResidueWords ring(n.data(), n.size());
    return bailliePswOn(ring, n, rounds);
}

// The five-base test, exact below 10^16 but for the listed composite.
inline bool fiveBasesSayPrime(std::uint64_t n) {
    ResidueWords ring(&n, 1);
    const std::vector<std::uint64_t> words{n};
    for (const std::int64_t base : {2, 3, 7, 61, 24251})
        if (std::uint64_t(base) % n != 0 && !strongProbablePrime(ring, words, ring.small(base))) return false;
    return true;
}

}  // namespace detail

// The primality code of |x| (kComposite, kProbablePrime or kProvenPrime);
// above 10^16 `rounds` Miller-Rabin rounds to random bases follow Baillie-PSW.
template <class R>
std::uint32_t primality(const SignedNumber<R>& x, std::uint32_t rounds) {
    if (terminateRequested()) return kComposite;
    if (const auto small = magnitudeU64(x)) {
        const std::uint64_t n = *small;
        if (n == detail::kListedComposite) return kComposite;
        if (n <= UINT32_MAX) return isPrimeWord(std::uint32_t(n)) ? kProvenPrime : kComposite;
        if ((n & 1) == 0) return kComposite;
        if (n < detail::kFiveBaseLimit) return detail::fiveBasesSayPrime(n) ? kProvenPrime : kComposite;
    }
    const std::vector<std::uint64_t> n = detail::magnitudeWords(x);
    if ((n[0] & 1) == 0 || detail::hasSmallFactor(n, 1000)) return kComposite;
    const bool passed = detail::bailliePsw(n, rounds);
    return passed && !terminateRequested() ? kProbablePrime : kComposite;
}

namespace detail {

// The first prime of the odd candidates c, c + 2, ... (c odd, above 2^32),
// sieving windows of them by the primes up to 2^16, forward or backward.
template <class R>
void searchPrime(SignedNumber<R>& c, bool upward) {
    const std::size_t bits = bitCount(c);
    const std::uint32_t window = std::uint32_t(std::clamp<std::size_t>(bits * 4, 256, 1u << 16));
    const auto& small = primeTables().small;
    std::vector<std::uint8_t> composite(window);
    for (;;) {
        const std::vector<std::uint64_t> words = magnitudeWords(c);
        std::fill(composite.begin(), composite.end(), 0);
        for (const PrimeGroup& g : primeGroups()) {
            const std::uint64_t r = wordsModSmall(words.data(), words.size(), g.product);
            for (std::uint32_t k = 0; k < g.count; ++k) {
                const std::uint32_t p = small[g.first + k];
                // Candidate i is c + 2i (or c - 2i): the first i it divides.
                const std::uint64_t rp = r % p, half = (p + 1) / 2;
                std::uint64_t i = upward ? (p - rp) % p * half % p : rp * half % p;
                for (; i < window; i += p) composite[i] = 1;
            }
        }
        for (std::uint32_t i = 0; i < window; ++i) {
            if (composite[i]) continue;
            if (terminateRequested()) return;
            SignedNumber<R> candidate = c;
            if (upward) arith::addWord(candidate, 2 * i);
            else arith::subtractWord(candidate, 2 * i);
            if (bailliePsw(magnitudeWords(candidate), 0)) {
                c.swap(candidate);
                return;
            }
        }
        if (upward) arith::addWord(c, 2 * window);
        else arith::subtractWord(c, 2 * window);
    }
}

}  // namespace detail

// r := the least prime above a (2 for any a below 2).
template <class R>
void nextPrimeInto(SignedNumber<R>& r, const SignedNumber<R>& a) {
    SignedNumber<R> c;
    if (a.sign <= 0) {
        setU64(c, 2);
    } else if (const auto v = magnitudeU64(a); v && *v < 4294967291u) {
        setU64(c, nextPrimeWord(std::uint32_t(*v)));
    } else {
        c = a;
        arith::addWord(c, (c.limbs()[0] & 1) ? 2 : 1);  // the first odd number above a (radices are even)
        detail::searchPrime(c, true);
    }
    if (terminateRequested()) c.setZero();
    r.swap(c);
}

// r := the greatest prime below a; 0 when there is none (a at most 2).
template <class R>
void previousPrimeInto(SignedNumber<R>& r, const SignedNumber<R>& a) {
    SignedNumber<R> c;
    const auto v = magnitudeU64(a);
    if (a.sign <= 0 || (v && *v <= 2)) {
        c.setZero();
    } else if (v && *v <= 4294967296ull) {
        setU64(c, *v == 4294967296ull ? 4294967291u : previousPrimeWord(std::uint32_t(*v)));
    } else {
        c = a;
        arith::subtractWord(c, (c.limbs()[0] & 1) ? 2 : 1);  // the first odd number below a
        detail::searchPrime(c, false);
    }
    if (terminateRequested()) c.setZero();
    r.swap(c);
}

// r := a random prime of exactly `size` decimal digits (decimal numbers) or
// bits (binary ones): a uniform number of that size, then the least prime
// from it on, drawn again when that prime is too long.  0 when no prime has
// that size (0 digits, 0 or 1 bit).
template <class R>
void generatePrimeInto(SignedNumber<R>& r, std::uint32_t size) {
    SignedNumber<R> low, high, x, p;
    if (size == 0 || (R::isBinary && size == 1) || size > maxRandomSize<R>()) {
        if (size > maxRandomSize<R>()) setLastError(kErrTooLarge);
        r.setZero();
        return;
    }
    setU64(low, R::isBinary ? 2 : 10);
    high = low;
    arith::powerInPlace(low, size - 1);
    arith::powerInPlace(high, size);
    while (!terminateRequested()) {
        setRandom(x, std::int32_t(size));
        if (compareMagnitude(x.rec(), low.rec()) < 0) continue;
        arith::subtractWord(x, 1);
        nextPrimeInto(p, x);
        if (compareMagnitude(p.rec(), high.rec()) < 0) break;
    }
    if (terminateRequested()) p.setZero();
    r.swap(p);
}

}  // namespace tw::numtheory
