// twcalc's tokens: numbers, names and operator symbols of one line.
#pragma once

#include <string>
#include <vector>

#include "column_error.h"

namespace twcalc {

struct Token {
    enum class Kind { Number, Name, Symbol, End } kind;
    std::string text;    // a number is kept as the library reads it: decimal or 0x hexadecimal
    std::size_t column;  // 1-based
};

// Splits a line into tokens ending with an End token; "#" starts a comment
// that runs to the end of the line.  0b binary literals become 0x ones.
// Throws SyntaxError.
std::vector<Token> tokenize(const std::string& line);

}  // namespace twcalc
