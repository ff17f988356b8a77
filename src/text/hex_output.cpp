#include "text/hex_output.h"

#include "text/digit_tables.h"
#include "text/text_buffer.h"

namespace tw::text {

std::uint32_t hexDigits(const NumberRecord& value) {
    const std::uint32_t bits = BinaryRadix::bitsPerLimb * value.topIndex + bitLength32(value.digits[value.topIndex]);
    return (bits + 3) / 4;
}

template <class Char>
TextView<Char> writeHexText(NumberRecord& owner, const NumberRecord& value, std::int32_t sign, unsigned flags,
                            bool withPrefix) {
    const DigitTables<Char>& tables = digitTables<Char>();
    const auto& groups = (flags & TEXT_LOWER_CASE) ? tables.hexLower : tables.hexUpper;
    const bool grouped = grouping(flags);
    const Char sep = separator<Char>(flags);
    const std::size_t cell = grouped ? 5 : 4;  // characters a 16-bit chunk
    constexpr unsigned bitsPerLimb = BinaryRadix::bitsPerLimb;
    const std::uint32_t top = value.topIndex;
    const std::uint32_t low = value.lowIndex;
    const std::size_t chunks = (std::size_t(bitsPerLimb) * (top + 1) + 15) / 16;

    Char* const buffer = sizeTextBuffer<Char>(owner, kPrefixRoom + cell * chunks + 1);
    Char* const end = buffer + kPrefixRoom + cell * chunks;
    *end = Char(0);
    Char* at = end;
    auto put = [&](unsigned chunk) {
        at -= cell;
        copyGroup(at + cell - 4, groups[chunk]);
        if (grouped) at[0] = sep;
    };
    // The zero limbs below lowIndex: whole zero chunks, then a few zero bits
    // left in the accumulator.
    const std::size_t zeroBits = std::size_t(bitsPerLimb) * low;
    for (std::size_t k = 0; k < zeroBits / 16; ++k) put(0);
    std::uint64_t pending = 0;
    unsigned held = unsigned(zeroBits % 16);
    for (std::uint32_t i = low; i <= top; ++i) {
        pending |= std::uint64_t(value.digits[i]) << held;
        held += bitsPerLimb;
        while (held >= 16) {
            put(unsigned(pending & 0xFFFFu));
            pending >>= 16;
            held -= 16;
        }
    }
    if (held > 0) put(unsigned(pending));

    const std::size_t last = hexDigits(value) - 1;
    Char* start = end - 1 - last - (grouped ? last / 4 : 0);
    if (withPrefix) {
        if (grouped) *--start = Char(' ');
        *--start = Char('x');
        *--start = Char('0');
    }
    start = prependSign(start, sign, flags);
    return TextView<Char>(start, std::size_t(end - start));
}

template TextView<char> writeHexText<char>(NumberRecord&, const NumberRecord&, std::int32_t, unsigned, bool);
template TextView<char16_t> writeHexText<char16_t>(NumberRecord&, const NumberRecord&, std::int32_t, unsigned, bool);

}  // namespace tw::text
