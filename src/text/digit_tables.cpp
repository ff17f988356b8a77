#include "text/digit_tables.h"

namespace tw::text {

template <class Char>
DigitTables<Char>::DigitTables() {
    static constexpr char upper[] = "0123456789ABCDEF";
    static constexpr char lower[] = "0123456789abcdef";
    for (unsigned v = 0; v < 10000; ++v) {
        unsigned rest = v;
        for (int i = 3; i >= 0; --i, rest /= 10) decimal[v][i] = Char('0' + rest % 10);
    }
    for (unsigned v = 0; v < 65536; ++v) {
        for (int i = 3; i >= 0; --i) {
            const unsigned nibble = (v >> (4 * (3 - i))) & 15u;
            hexUpper[v][i] = Char(upper[nibble]);
            hexLower[v][i] = Char(lower[nibble]);
        }
    }
}

namespace {
const DigitTables<char> narrowTables;
const DigitTables<char16_t> wideTables;
}  // namespace

template <>
const DigitTables<char>& digitTables<char>() { return narrowTables; }
template <>
const DigitTables<char16_t>& digitTables<char16_t>() { return wideTables; }

}  // namespace tw::text
