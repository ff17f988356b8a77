#include "text/decimal_output.h"

#include <algorithm>

#include "text/digit_tables.h"
#include "text/text_buffer.h"

namespace tw::text {

std::uint32_t decimalDigits(const NumberRecord& value) {
    return DecimalRadix::decimalDigitsPerLimb * value.topIndex + decimalDigitsOfLimb(value.digits[value.topIndex]);
}

namespace {

// Nine digits of one limb as 1 + 4 + 4 characters.
template <class Char>
void writeLimb(Char* cell, Limb v, const DigitTables<Char>& tables) {
    cell[0] = Char('0' + v / 100000000u);
    copyGroup(cell + 1, tables.decimal[v / 10000u % 10000u]);
    copyGroup(cell + 5, tables.decimal[v % 10000u]);
}

// Nine digits of one limb as three cells of a separator and three digits: the
// group table holds "0ddd" for values below 1000, and the "0" becomes the separator.
template <class Char>
void writeGroupedLimb(Char* cell, Limb v, Char sep, const DigitTables<Char>& tables) {
    const Limb groups[3] = {v / 1000000u, v / 1000u % 1000u, v % 1000u};
    for (const Limb g : groups) {
        copyGroup(cell, tables.decimal[g]);
        cell[0] = sep;
        cell += 4;
    }
}

}  // namespace

template <class Char>
TextView<Char> writeDecimalText(NumberRecord& owner, const NumberRecord& value, std::int32_t sign, unsigned flags) {
    const DigitTables<Char>& tables = digitTables<Char>();
    const bool grouped = grouping(flags);
    const Char sep = separator<Char>(flags);
    const std::size_t cell = grouped ? 12 : 9;  // characters a limb
    const std::uint32_t top = value.topIndex;
    const std::uint32_t low = value.lowIndex;

    Char* const buffer = sizeTextBuffer<Char>(owner, kPrefixRoom + cell * (top + 1) + 1);
    Char* const end = buffer + kPrefixRoom + cell * (top + 1);
    *end = Char(0);
    auto write = [&](Char* at, Limb v) {
        if (grouped)
            writeGroupedLimb(at, v, sep, tables);
        else
            writeLimb(at, v, tables);
    };
    // Limbs below lowIndex are zero: write one and copy it.
    if (low > 0) {
        write(end - cell, 0);
        for (std::uint32_t i = 1; i < low; ++i) std::copy(end - cell, end, end - cell * (i + 1));
    }
    for (std::uint32_t i = low; i <= top; ++i) write(end - cell * (i + 1), value.digits[i]);

    // The first digit, past the top limb's leading zeros (and, grouped, past
    // the separator cell in front of the first group).
    const std::size_t last = decimalDigits(value) - 1;
    Char* start = end - 1 - last - (grouped ? last / 3 : 0);
    start = prependSign(start, sign, flags);
    return TextView<Char>(start, std::size_t(end - start));
}

template TextView<char> writeDecimalText<char>(NumberRecord&, const NumberRecord&, std::int32_t, unsigned);
template TextView<char16_t> writeDecimalText<char16_t>(NumberRecord&, const NumberRecord&, std::int32_t, unsigned);

}  // namespace tw::text
