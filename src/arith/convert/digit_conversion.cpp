#include "arith/convert/digit_conversion.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "frame/error_state.h"
#include "arith/convert/chunk_radix.h"
#include "arith/convert/chunk_tree.h"
#include "arith/convert/regroup.h"

namespace tw {

namespace {

using arith::LimbScratch;
using convert::ChunkRadix;

// Digits that are not below the radix (a converter whose radix was changed
// under its digits) still have a value: sum digit[i] * radix^i.  Carrying the
// excess upwards gives the proper digits of that value.
std::vector<std::uint32_t> carryExcess(const std::uint32_t* digits, std::size_t count, std::uint64_t radix) {
    std::vector<std::uint32_t> out(digits, digits + count);
    std::uint64_t carry = 0;  // below 2^32: (2^32 - 1 + carry) / 2 < 2^32
    for (std::uint32_t& d : out) {
        const std::uint64_t t = d + carry;
        d = std::uint32_t(t % radix);
        carry = t / radix;
    }
    for (; carry != 0; carry /= radix) out.push_back(std::uint32_t(carry % radix));
    return out;
}

// Packs digits[0..count) by `digitsPerChunk` into chunks[0 .. count / k
// rounded up), least significant first.
void packChunks(std::uint32_t* chunks, const std::uint32_t* digits, std::size_t count, const ChunkRadix& c) {
    const std::size_t k = c.digitsPerChunk;
    const std::size_t chunkCount = (count + k - 1) / k;
    for (std::size_t j = 0; j < chunkCount; ++j) {
        const std::size_t begin = j * k, end = std::min(count, begin + k);
        std::uint64_t v = 0;
        for (std::size_t i = end; i-- > begin;) v = v * c.radix + digits[i];
        chunks[j] = std::uint32_t(v);
    }
}

// The limbs of the value of the digits, each below the radix; top limbs may be zero.
// The packed chunks and the join's temporaries share one arena; the join
// writes straight into the result.
template <class R>
std::vector<Limb> limbsOfDigits(std::uint64_t radixValue, const std::uint32_t* digits, std::size_t count) {
    if constexpr (R::isBinary) {
        if (const unsigned j = convert::powerOfTwoExponent(radixValue)) return convert::bitDigitsToLimbs(digits, count, j);
    } else {
        if (const unsigned j = convert::powerOfTenExponent(radixValue)) return convert::decimalDigitsToLimbs(digits, count, j);
    }
    const ChunkRadix c = convert::chunkRadixOf(radixValue);
    const std::size_t chunkCount = (count + c.digitsPerChunk - 1) / c.digitsPerChunk;
    const std::size_t packed = c.digitsPerChunk == 1 ? 0 : chunkCount;
    LimbScratch scratch(packed + convert::joinScratchLimbs<R>(chunkCount, c.chunk));
    const std::uint32_t* chunks = digits;
    if (packed != 0) {
        std::uint32_t* own = scratch.take(packed);
        packChunks(own, digits, count, c);
        chunks = own;
    }
    std::vector<Limb> limbs(convert::joinedLimbsBound<R>(chunkCount, c.chunk));
    limbs.resize(convert::joinChunks<R>(limbs.data(), chunks, chunkCount, c.chunk, scratch));
    return limbs;
}

template <class R>
using OtherRadix = std::conditional_t<R::isBinary, DecimalRadix, BinaryRadix>;

// Whether digits of the radix regroup from limbs of radix R: powers of two
// from binary limbs, powers of ten from decimal limbs.
template <class R>
bool regroups(std::uint64_t radixValue) {
    return R::isBinary ? convert::powerOfTwoExponent(radixValue) != 0 : convert::powerOfTenExponent(radixValue) != 0;
}

// The digits of limbs[0..n) in a radix that regroups from radix R.
template <class R>
std::vector<std::uint32_t> regroupedDigits(const Limb* limbs, std::size_t n, std::uint64_t radixValue) {
    if constexpr (R::isBinary)
        return convert::limbsToBitDigits(limbs, n, convert::powerOfTwoExponent(radixValue));
    else
        return convert::limbsToDecimalDigits(limbs, n, convert::powerOfTenExponent(radixValue));
}

// An upper bound on the chunks of a magnitude of `limbs` limbs.
template <class R>
std::size_t chunksBound(std::size_t limbs, std::uint64_t chunk) {
    const double bits = double(limbs) * convert::limbBits<R>();
    return std::size_t(bits / std::log2(double(chunk)) * (1 + 1e-12)) + 2;
}

// Chunks unpacked between two tests of the terminate flag: the digits of a
// stripe are fresh memory, and a first touch of many pages is slow.
constexpr std::size_t kChunksPerPoll = std::size_t(1) << 14;

// Unpacks chunks[0..n) into digits and drops zero digits at the top; empty
// when the terminate flag stops it.
std::vector<std::uint32_t> unpackChunks(const std::uint32_t* chunks, std::size_t n, const ChunkRadix& c) {
    std::vector<std::uint32_t> digits;
    if (c.digitsPerChunk == 1) {
        digits.assign(chunks, chunks + n);
    } else {
        // The vector grows a stripe at a time inside its capacity.
        digits.reserve(n * c.digitsPerChunk);
        // A multiply-high per digit instead of a hardware division.
        const convert::WordDivisor byRadix(c.radix);
        const unsigned k = c.digitsPerChunk;
        for (std::size_t j = 0; j < n;) {
            if (terminateRequested()) return {};
            const std::size_t stripeEnd = std::min(n, j + kChunksPerPoll);
            digits.resize(stripeEnd * k);
            std::uint32_t* out = digits.data() + j * k;
            // Four chunks at a time: their chains of dependent divisions overlap.
            for (; j + 4 <= stripeEnd; j += 4, out += 4 * k) {
                std::uint64_t v[4] = {chunks[j], chunks[j + 1], chunks[j + 2], chunks[j + 3]};
                for (unsigned i = 0; i < k; ++i)
                    for (unsigned lane = 0; lane < 4; ++lane) {
                        std::uint64_t digit;
                        v[lane] = byRadix.divide(v[lane], digit);
                        out[lane * k + i] = std::uint32_t(digit);
                    }
            }
            for (; j < stripeEnd; ++j) {
                std::uint64_t v = chunks[j], digit;
                for (unsigned i = 0; i < k; ++i) {
                    v = byRadix.divide(v, digit);
                    *out++ = std::uint32_t(digit);
                }
            }
        }
    }
    while (!digits.empty() && digits.back() == 0) digits.pop_back();
    return digits;
}

}  // namespace

template <class R>
void setFromDigits(NumberRecord& x, std::uint32_t sourceRadix, const std::uint32_t* digits, std::size_t count) {
    dropTextBuffers(x);
    while (count > 0 && digits[count - 1] == 0) --count;
    if (count == 0) {
        setRecordZero(x);
        return;
    }
    // Zero digits at the bottom stay in place: the regrouping paths pass them
    // at no cost and the tree joins zero runs without multiplying them.
    const std::uint64_t radixValue = convert::radixValue(sourceRadix);
    std::vector<Limb> limbs;
    if (radixValue == 1) {
        // Every power of 1 is 1: the value is the sum of the digits.
        u128 sum = 0;
        for (std::size_t i = 0; i < count; ++i) sum += digits[i];
        for (; sum != 0; sum /= R::base) limbs.push_back(Limb(sum % R::base));
    } else if (std::any_of(digits, digits + count, [&](std::uint32_t d) { return d >= radixValue; })) {
        const std::vector<std::uint32_t> proper = carryExcess(digits, count, radixValue);
        limbs = limbsOfDigits<R>(radixValue, proper.data(), proper.size());
    } else {
        limbs = limbsOfDigits<R>(radixValue, digits, count);
    }
    while (!limbs.empty() && limbs.back() == 0) limbs.pop_back();
    if (terminateRequested() || limbs.empty()) {
        setRecordZero(x);
        return;
    }
    if (limbs.size() >= UINT32_MAX) {
        setLastError(kErrTooLarge);
        setRecordZero(x);
        return;
    }
    const std::uint32_t n = std::uint32_t(limbs.size());
    resizeStorage(x, n, true);
    if (x.allocated() < n) return;  // storage exhausted: -3 recorded, x zero
    std::copy(limbs.begin(), limbs.end(), x.digits);
    normalizeIndices(x, n);
}

template <class R>
std::vector<std::uint32_t> toDigits(const NumberRecord& x, std::uint32_t targetRadix) {
    if (x.isZero()) return {};
    if (targetRadix == 1) {
        setLastError(kErrRadix);
        return {};
    }
    const std::uint64_t radixValue = convert::radixValue(targetRadix);
    const Limb* limbs = x.digits;
    const std::size_t n = x.topIndex + 1;
    std::vector<std::uint32_t> digits;
    if (regroups<R>(radixValue)) {
        digits = regroupedDigits<R>(limbs, n, radixValue);
    } else if (regroups<OtherRadix<R>>(radixValue)) {
        // A power of the other limb radix's base: a join into that radix
        // (products only) and a regrouping beat the divisions of a split.
        using Other = OtherRadix<R>;
        const std::size_t bound = convert::joinedLimbsBound<Other>(n, R::base);
        LimbScratch scratch(bound + convert::joinScratchLimbs<Other>(n, R::base));
        Limb* other = scratch.take(bound);
        const std::size_t length = convert::joinChunks<Other>(other, limbs, n, R::base, scratch);
        digits = regroupedDigits<Other>(other, length, radixValue);
    } else {
        const ChunkRadix c = convert::chunkRadixOf(radixValue);
        const std::size_t count = chunksBound<R>(n, c.chunk);
        LimbScratch scratch(count + convert::splitScratchLimbs<R>(n, count, c.chunk));
        std::uint32_t* chunks = scratch.take(count);
        convert::splitIntoChunks<R>(chunks, count, limbs, n, c.chunk, scratch);
        if (terminateRequested()) return {};
        digits = unpackChunks(chunks, count, c);
    }
    while (!digits.empty() && digits.back() == 0) digits.pop_back();
    if (terminateRequested()) return {};
    return digits;
}

template void setFromDigits<DecimalRadix>(NumberRecord&, std::uint32_t, const std::uint32_t*, std::size_t);
template void setFromDigits<BinaryRadix>(NumberRecord&, std::uint32_t, const std::uint32_t*, std::size_t);
template std::vector<std::uint32_t> toDigits<DecimalRadix>(const NumberRecord&, std::uint32_t);
template std::vector<std::uint32_t> toDigits<BinaryRadix>(const NumberRecord&, std::uint32_t);

}  // namespace tw
