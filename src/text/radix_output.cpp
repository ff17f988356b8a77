#include "text/radix_output.h"

#include <algorithm>

#include "frame/error_state.h"
#include "text/digit_tables.h"
#include "text/text_buffer.h"

namespace tw::text {

namespace {

constexpr char kUpperDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr char kLowerDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
constexpr char kMixedDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// Digits written between two polls of the terminate flag.
constexpr std::size_t kPollInterval = 4096;

// True when the terminate flag is raised at a poll point.
bool stopped(std::size_t written) { return written % kPollInterval == 0 && terminateRequested(); }

}  // namespace

template <class Char>
TextView<Char> writeRadixText(NumberRecord& owner, const std::vector<std::uint32_t>& digits, std::uint32_t radix,
                              std::int32_t sign, unsigned flags, std::uint32_t groupLength) {
    const char* alphabet = radix > 36 ? kMixedDigits : (flags & TEXT_LOWER_CASE) ? kLowerDigits : kUpperDigits;
    const std::size_t group = grouping(flags) ? groupLength : 0;
    const std::size_t count = digits.size();
    const std::size_t length = count + (group ? (count - 1) / group : 0);

    Char* const buffer = sizeTextBuffer<Char>(owner, kPrefixRoom + length + 1);
    Char* const end = buffer + kPrefixRoom + length;
    *end = Char(0);
    Char* at = end;
    const Char sep = separator<Char>(flags);
    if (group == 0) {
        // Ungrouped: blocks of digits between polls, nothing else per digit.
        for (std::size_t d = 0; d < count;) {
            if (terminateRequested()) return stoppedText<Char>(owner);
            const std::size_t blockEnd = std::min(count, d + kPollInterval);
            for (; d < blockEnd; ++d) *--at = Char(alphabet[digits[d]]);
        }
    } else {
        for (std::size_t d = 0; d < count; ++d) {
            if (stopped(d + 1)) return stoppedText<Char>(owner);
            if (d != 0 && d % group == 0) *--at = sep;
            *--at = Char(alphabet[digits[d]]);
        }
    }
    if (radix == 16) {
        if (group) *--at = Char(' ');
        *--at = Char('x');
        *--at = Char('0');
    }
    at = prependSign(at, sign, flags);
    return TextView<Char>(at, std::size_t(end - at));
}

template <class Char>
TextView<Char> writeBracketedText(NumberRecord& owner, const std::vector<std::uint32_t>& digits, std::uint32_t radix,
                                  std::int32_t sign, unsigned flags) {
    const DigitTables<Char>& tables = digitTables<Char>();
    const std::size_t width = decimalDigitsOfLimb(radix - 1u);  // radix 0: 2^32 - 1 has 10 digits
    const bool grouped = grouping(flags);
    const std::size_t count = digits.size();
    const bool hasSign = sign < 0 || (sign > 0 && (flags & TEXT_PLUS_SIGN));
    const std::size_t signLength = hasSign ? ((flags & TEXT_SIGN_SPACE) ? 2 : 1) : 0;
    const std::size_t length = signLength + count * (width + 2) + (grouped ? count - 1 : 0);

    Char* const start = sizeTextBuffer<Char>(owner, length + 1);
    Char* at = start + length;
    *at = Char(0);
    const Char sep = separator<Char>(flags);
    Char padded[12];  // a digit below 2^32 as twelve decimal characters
    for (std::size_t d = 0; d < count; ++d) {
        if (stopped(d + 1)) return stoppedText<Char>(owner);
        if (grouped && d != 0) *--at = sep;
        const std::uint32_t v = digits[d];
        copyGroup(padded, tables.decimal[v / 100000000u]);
        copyGroup(padded + 4, tables.decimal[v / 10000u % 10000u]);
        copyGroup(padded + 8, tables.decimal[v % 10000u]);
        *--at = Char(']');
        at -= width;
        std::copy(padded + 12 - width, padded + 12, at);
        *--at = Char('[');
    }
    prependSign(at, sign, flags);
    return TextView<Char>(start, length);
}

#define TW_RADIX_OUTPUT_FOR(Char)                                                                             \
    template TextView<Char> writeRadixText<Char>(NumberRecord&, const std::vector<std::uint32_t>&, std::uint32_t, \
                                                 std::int32_t, unsigned, std::uint32_t);                      \
    template TextView<Char> writeBracketedText<Char>(NumberRecord&, const std::vector<std::uint32_t>&,           \
                                                     std::uint32_t, std::int32_t, unsigned);
TW_RADIX_OUTPUT_FOR(char)
TW_RADIX_OUTPUT_FOR(char16_t)
#undef TW_RADIX_OUTPUT_FOR

}  // namespace tw::text
