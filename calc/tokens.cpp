#include "tokens.h"

#include <cctype>

namespace twcalc {

namespace {

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)); }
bool isHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)); }
bool isBinaryDigit(char c) { return c == '0' || c == '1'; }
bool isNameStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
bool isNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// Binary digits as the hexadecimal literal the library reads, four bits a digit.
std::string binaryAsHex(const std::string& bits) {
    std::string hex = "0x";
    const std::size_t head = bits.size() % 4 == 0 ? 4 : bits.size() % 4;
    for (std::size_t at = 0, take = head; at < bits.size(); at += take, take = 4) {
        unsigned v = 0;
        for (std::size_t i = at; i < at + take; ++i) v = v * 2 + unsigned(bits[i] - '0');
        hex += "0123456789ABCDEF"[v];
    }
    return hex;
}

// The number starting at line[i]; sets end past it.
std::string numberAt(const std::string& line, std::size_t i, std::size_t& end) {
    const std::size_t column = i + 1;
    end = i + 1;
    const char marker = end < line.size() ? char(std::tolower(static_cast<unsigned char>(line[end]))) : '\0';
    std::string text;
    if (line[i] == '0' && (marker == 'x' || marker == 'b')) {
        const bool hex = marker == 'x';
        const std::size_t digits = ++end;
        while (end < line.size() && (hex ? isHexDigit(line[end]) : isBinaryDigit(line[end]))) ++end;
        if (end == digits) throw SyntaxError(column, hex ? "hexadecimal number without digits" : "binary number without digits");
        text = hex ? line.substr(i, end - i) : binaryAsHex(line.substr(digits, end - digits));
    } else {
        while (end < line.size() && isDigit(line[end])) ++end;
        text = line.substr(i, end - i);
    }
    if (end < line.size() && isNameChar(line[end])) throw SyntaxError(end + 1, "unexpected character in number");
    return text;
}

}  // namespace

std::vector<Token> tokenize(const std::string& line) {
    static const char* const twoCharSymbols[] = {"<<", ">>", "<=", ">=", "==", "!="};
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < line.size() && line[i] != '#') {
        const char c = line[i];
        const std::size_t column = i + 1;
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++i;
        } else if (isDigit(c)) {
            std::size_t end = i;
            tokens.push_back({Token::Kind::Number, numberAt(line, i, end), column});
            i = end;
        } else if (isNameStart(c)) {
            std::size_t end = i + 1;
            while (end < line.size() && isNameChar(line[end])) ++end;
            tokens.push_back({Token::Kind::Name, line.substr(i, end - i), column});
            i = end;
        } else {
            std::string symbol(1, c);
            for (const char* two : twoCharSymbols)
                if (line.compare(i, 2, two) == 0) symbol = two;
            if (symbol.size() == 1 && std::string("+-*/%^&|()=,<>!").find(c) == std::string::npos)
                throw SyntaxError(column, std::string("unexpected character '") + c + "'");
            tokens.push_back({Token::Kind::Symbol, symbol, column});
            i += symbol.size();
        }
    }
    tokens.push_back({Token::Kind::End, "", i + 1});
    return tokens;
}

}  // namespace twcalc
