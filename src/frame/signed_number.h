// SignedNumber: the object behind an HI_ or HX_ handle.
//
// The sign lives outside the record so that magnitude kernels see records
// only.  The radix policy R makes numbers of the two families distinct types
// while they share every line of code.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "frame/number_record.h"
#include "frame/radix.h"

namespace tw {

template <class R>
struct SignedNumber {
    using Radix = R;

    std::int32_t sign = 0;                  // -1, 0 or +1; 0 exactly for zero
    NumberRecord record;                    // the magnitude, held in place: no allocation of its own

    SignedNumber() { resizeStorage(record, 3, false); }
    SignedNumber(const SignedNumber& other) : sign(other.sign), record(other.record) {}
    SignedNumber& operator=(const SignedNumber& other) {
        if (this != &other) {
            record = other.record;
            sign = other.sign;
            normalizeSign();
        }
        return *this;
    }
    SignedNumber(SignedNumber&&) noexcept = default;
    SignedNumber& operator=(SignedNumber&&) noexcept = default;

    NumberRecord& rec() { return record; }
    const NumberRecord& rec() const { return record; }
    bool isZero() const { return record.isZero(); }
    const Limb* limbs() const { return record.digits; }
    Limb limb(std::uint32_t i) const { return record.digits[i]; }

    // Sign 0 whenever the magnitude is zero; every operation that may yield zero calls it.
    void normalizeSign() {
        if (record.isZero()) sign = 0;
    }
    void setZero() {
        setRecordZero(record);
        sign = 0;
    }
    void negate() { sign = -sign; }
    void swap(SignedNumber& other) noexcept {
        std::swap(sign, other.sign);
        std::swap(record, other.record);  // moves keep each record's limbs where they are
    }
};

using DecimalNumber = SignedNumber<DecimalRadix>;
using BinaryNumber = SignedNumber<BinaryRadix>;

}  // namespace tw
