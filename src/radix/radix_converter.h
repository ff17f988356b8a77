// The radix converter: an integer held as a sign and a digit vector in a radix
// the caller chooses (2 .. 2^32 - 1, or 0 for 2^32).  The C handle points at
// the object itself.
//
// Rules the object keeps:
//  - the radix is never 1 (RC_new and RC_resetRadix refuse it with -7), so
//    every conversion has a positional radix to work with;
//  - the sign is read normalised: a vector whose value is zero (empty, or
//    zero digits only) reads sign 0 and the stored sign becomes 0.  Otherwise
//    the stored value is read back as stored (RC_resetSign keeps any i32), and
//    conversions take a negative sign as minus and anything else as plus;
//  - digits are meant to lie below the radix.  RC_resetVector refuses a
//    vector that breaks this; RC_resetRadix does not look at the digits, and
//    digits left at or above a smaller radix still count with their full
//    value, sum digit[i] * radix^i.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "frame/handle_registry.h"
#include "frame/handles.h"
#include "frame/signed_number.h"
#include "tarnwick.h"

struct RC_converter_ {
    std::uint32_t radix;                                  // 0 stands for 2^32
    std::int32_t sign;                                    // as stored; see readSign
    std::unique_ptr<std::vector<std::uint32_t>> digitList;  // least significant first
};

namespace tw {

using RadixConverter = RC_converter_;
using Digits = std::vector<std::uint32_t>;

// Empties the vector and clears the sign (also the state after storage ran out).
void clearConverter(RadixConverter& c);

// Converter handles pass the call frame like number handles; the object
// behind one is the converter itself.
template <> struct Family<RC_handle> : RegisteredFamily<RC_handle, RadixConverter, converterRegistry> {
    static void clear(RadixConverter& c) { clearConverter(c); }
};

// A new registered converter with an empty vector and sign +1, or null with
// -7 for radix 1 (and -3 when it cannot be allocated).
RC_handle createConverter(std::uint32_t radix);
// 1 when deleted, its converter freed (or null), 0 with -4 for an unknown handle.
std::uint32_t deleteConverter(RC_handle h);

// The sign normalised: 0 (and stored as 0) when the value is zero.
std::int32_t readSign(RadixConverter& c);

// Replaces the digits; -7 (recorded) and no change when a digit is not below
// the radix, else the digit count (capped at INT32_MAX).
std::int32_t resetDigits(RadixConverter& c, const std::uint32_t* digits, std::uint32_t count);

// Sets the radix unless it is 1 (-7 recorded, no change); returns the radix held.
std::uint32_t resetRadix(RadixConverter& c, std::uint32_t radix);

// The converter's value as a number of either radix (sign +1 for any
// non-negative stored sign, 0 for zero).
template <class R>
void numberFromConverter(SignedNumber<R>& x, RadixConverter& c);

// The converter := the value of x, as digits in the converter's radix.
template <class R>
void converterFromNumber(RadixConverter& c, const SignedNumber<R>& x);

// Converts the digits to newRadix, same value.  Radix 1: -7, no change,
// returns false.
bool convertToRadix(RadixConverter& c, std::uint32_t newRadix);

// c := the value of source, as digits in c's radix (source may be c).
void setFromConverter(RadixConverter& c, RadixConverter& source);

// c := a machine integer given as sign and magnitude.
void setFromMachineValue(RadixConverter& c, std::int32_t sign, std::uint64_t magnitude);

// c := the value of text read as HI_set_strA / HI_set_strW read it (Char is
// char or char16_t), as digits in c's radix.
template <class Char>
void setFromText(RadixConverter& c, const Char* text);

// The value for the machine-integer readers: whether the magnitude fits 64
// bits, the magnitude when it does, and the normalised sign.
struct MachineValue {
    bool fits;
    std::int32_t sign;
    std::uint64_t magnitude;
};
MachineValue machineValue(RadixConverter& c);

// Sum of the digits, in 32-bit arithmetic when (radix - 1) * count fits 32
// bits and in 64-bit arithmetic otherwise; zero digits at the top are skipped
// first.  With digits below the radix both sums are exact.
std::uint64_t sumOfDigits(const RadixConverter& c);

}  // namespace tw
