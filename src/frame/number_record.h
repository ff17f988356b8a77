// NumberRecord: the magnitude of one integer, in limbs of the owner's radix.
//
// Invariants after every public operation:
//  - at least three limbs are allocated and every limb above topIndex is zero;
//  - zero is a single zero limb with topIndex == lowIndex == 0;
//  - otherwise limb[topIndex] != 0, limb[lowIndex] != 0 and all limbs below
//    lowIndex are zero, so lowIndex counts the whole trailing zero limbs.
// resizeStorage is the only routine that allocates limbs.
#pragma once

#include <cstddef>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "frame/radix.h"

namespace tw {

struct NumberRecord {
    std::unique_ptr<std::string> textBufferA;      // last 8-bit text handed out
    std::unique_ptr<std::u16string> textBufferW;   // last 16-bit text handed out
    Limb* digits = nullptr;                        // limb 0 of the magnitude
    Limb* digitsEnd = nullptr;                     // one past the last allocated limb
    std::uint32_t lowIndex = 0;                    // lowest non-zero limb
    std::uint32_t topIndex = 0;                    // highest non-zero limb
    std::vector<Limb> limbs;                       // the storage behind digits

    NumberRecord() = default;
    // A copy holds exactly topIndex + 1 limbs and no text.
    NumberRecord(const NumberRecord& other);
    // Assignment drops the target's text and reuses its storage.
    NumberRecord& operator=(const NumberRecord& other);
    NumberRecord(NumberRecord&&) noexcept = default;
    NumberRecord& operator=(NumberRecord&&) noexcept = default;

    std::size_t allocated() const { return std::size_t(digitsEnd - digits); }
    bool isZero() const { return digits[topIndex] == 0; }
    std::uint32_t usedLimbs() const { return topIndex + 1; }
};

// Ensures at least max(limbCount, 3) limbs.  discard: the old value is dropped
// and every limb is zero; otherwise limbs below limbCount keep their values and
// the limbs from limbCount up are zeroed.  Storage never shrinks.  When the
// limbs cannot be had, records -3 and leaves the record zero.
void resizeStorageSlow(NumberRecord& record, std::uint32_t limbCount, bool discard);
// Inline for the common case of a request within the capacity, with no
// limbs dropped below `digits`: no allocation, only the zeroing.
[[gnu::always_inline]] inline void resizeStorage(NumberRecord& record, std::uint32_t limbCount, bool discard) {
    Limb* const base = record.limbs.data();
    const std::size_t had = record.limbs.size();
    const std::size_t wanted = limbCount < 3 ? 3 : limbCount;
    if (record.digits != base || wanted > record.limbs.capacity()) [[unlikely]]
        return resizeStorageSlow(record, limbCount, discard);
    if (discard) {
        std::fill(base, base + std::min(had, wanted), Limb(0));
    } else if (limbCount < had) {
        std::fill(base + limbCount, base + had, Limb(0));
        return;
    } else if (wanted <= had) {
        return;
    }
    record.limbs.resize(wanted);  // within the capacity, the new limbs zero
    record.digitsEnd = base + wanted;
}

void freeTextBuffers(NumberRecord& record);
// Inline, as almost every operation calls it on a record that holds no text.
[[gnu::always_inline]] inline void dropTextBuffers(NumberRecord& record) {
    if (record.textBufferA || record.textBufferW) [[unlikely]]
        freeTextBuffers(record);
}

// Makes the record zero (keeps its storage, drops its text).
void setRecordZero(NumberRecord& record);

// Recomputes topIndex and lowIndex after limbs 0 .. limbCount-1 were written.
[[gnu::always_inline]] inline void normalizeIndices(NumberRecord& record, std::uint32_t limbCount) {
    std::uint32_t top = limbCount ? limbCount - 1 : 0;
    while (top > 0 && record.digits[top] == 0) --top;
    if (record.digits[top] == 0) {
        record.topIndex = record.lowIndex = 0;
        resizeStorage(record, 3, true);
        return;
    }
    std::uint32_t low = 0;
    while (record.digits[low] == 0) ++low;
    record.topIndex = top;
    record.lowIndex = low;
}

// Storage for a value about to be written whole into limbs 0 .. limbCount-1:
// at least max(limbCount, 3) limbs, those from limbCount up zero, those below
// left for the caller to overwrite; the text is dropped.  A small result
// lands in the capacity the record already has, with no allocation and no
// zeroing of limbs that are zero already.  Null, with -3 recorded and the
// record zero, when the limbs cannot be had.
Limb* prepareOverwriteSlow(NumberRecord& record, std::uint32_t limbCount);
[[gnu::always_inline]] inline Limb* prepareOverwrite(NumberRecord& record, std::uint32_t limbCount) {
    dropTextBuffers(record);
    if (record.digits != record.limbs.data() || limbCount > record.allocated())
        return prepareOverwriteSlow(record, limbCount);
    // Every limb above topIndex is zero already.
    const std::uint32_t used = record.topIndex + 1;
    for (std::uint32_t i = limbCount; i < used; ++i) record.digits[i] = 0;
    return record.digits;
}

// Test seam: requests for more limbs than this fail as if memory were exhausted.
void setLimbAllocationCeilingForTesting(std::size_t limbs);

}  // namespace tw
