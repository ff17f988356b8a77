// Four-character digit groups, built once when the library is loaded, so that
// output writes whole groups instead of dividing digit by digit.
#pragma once

namespace tw::text {

template <class Char>
struct DigitTables {
    Char decimal[10000][4];     // "0000" .. "9999"
    Char hexUpper[65536][4];    // "0000" .. "FFFF"
    Char hexLower[65536][4];    // "0000" .. "ffff"

    DigitTables();
};

// The tables of one character width (char or char16_t).
template <class Char>
const DigitTables<Char>& digitTables();

}  // namespace tw::text
