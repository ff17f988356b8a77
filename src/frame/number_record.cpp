#include "frame/number_record.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "frame/error_state.h"

namespace tw {

namespace {

std::size_t limbAllocationCeiling = std::numeric_limits<std::uint32_t>::max();

void pointAtStorage(NumberRecord& r) {
    r.digits = r.limbs.data();
    r.digitsEnd = r.limbs.data() + r.limbs.size();
}

// Lengthens the array to `wanted` zero-filled limbs, growing the capacity to
// had + max(had, wanted - had) so that repeated growth stays amortised.
bool growTo(std::vector<Limb>& limbs, std::size_t wanted) {
    const std::size_t had = limbs.size();
    try {
        if (wanted > limbAllocationCeiling) throw std::bad_alloc();
        if (limbs.capacity() < wanted) {
            std::size_t capacity = had + std::max(had, wanted - had);
            if (capacity > limbAllocationCeiling) capacity = wanted;
            limbs.reserve(capacity);
        }
        limbs.resize(wanted, 0);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace

void setLimbAllocationCeilingForTesting(std::size_t limbs) { limbAllocationCeiling = limbs; }

NumberRecord::NumberRecord(const NumberRecord& other)
    : lowIndex(other.lowIndex), topIndex(other.topIndex),
      limbs(other.digits, other.digits + other.topIndex + 1) {
    pointAtStorage(*this);
}

NumberRecord& NumberRecord::operator=(const NumberRecord& other) {
    if (this == &other) return *this;
    Limb* out = prepareOverwrite(*this, other.topIndex + 1);
    if (out == nullptr) return *this;  // storage exhausted: -3 recorded, zero
    std::memcpy(out, other.digits, (other.topIndex + 1) * sizeof(Limb));
    lowIndex = other.lowIndex;
    topIndex = other.topIndex;
    return *this;
}

void resizeStorageSlow(NumberRecord& r, std::uint32_t limbCount, bool discard) {
    if (discard) {
        r.limbs.clear();
    } else if (r.digits && r.digits != r.limbs.data()) {
        // An earlier operation dropped low limbs by advancing `digits`.
        const std::size_t shift = std::size_t(r.digits - r.limbs.data());
        r.limbs.erase(r.limbs.begin(), r.limbs.begin() + std::ptrdiff_t(shift));
    }
    const std::size_t wanted = std::max<std::size_t>(limbCount, 3);
    const std::size_t had = r.limbs.size();
    if (had < wanted) {
        if (!growTo(r.limbs, wanted)) {
            setLastError(kErrTooLarge);
            dropTextBuffers(r);
            r.limbs.clear();
            r.limbs.resize(std::min<std::size_t>(r.limbs.capacity(), 3), 0);
            if (r.limbs.size() < 3) growTo(r.limbs, 3);
            r.lowIndex = r.topIndex = 0;
            pointAtStorage(r);
            return;
        }
    } else if (!discard && limbCount < had) {
        std::fill(r.limbs.begin() + limbCount, r.limbs.end(), 0);
    }
    pointAtStorage(r);
}

void freeTextBuffers(NumberRecord& r) {
    r.textBufferA.reset();
    r.textBufferW.reset();
}

Limb* prepareOverwriteSlow(NumberRecord& r, std::uint32_t limbCount) {
    resizeStorage(r, limbCount, true);
    return r.allocated() >= limbCount ? r.digits : nullptr;
}

void setRecordZero(NumberRecord& r) {
    dropTextBuffers(r);
    resizeStorage(r, 3, true);
    r.topIndex = r.lowIndex = 0;
}

}  // namespace tw
