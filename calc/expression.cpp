#include "expression.h"

#include <cctype>

namespace twcalc {

namespace {

struct Token {
    enum class Kind { Number, Name, Symbol, End } kind;
    std::string text;
    std::size_t column;
};

bool isNameStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }
bool isNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

std::vector<Token> tokenize(const std::string& line) {
    static const char* const twoCharSymbols[] = {"<<", ">>", "<=", ">=", "==", "!="};
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < line.size()) {
        const char c = line[i];
        const std::size_t column = i + 1;
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++i;
        } else if (std::isdigit(static_cast<unsigned char>(c))) {
            std::size_t end = i + 1;
            if (c == '0' && end < line.size() && (line[end] == 'x' || line[end] == 'X')) {
                ++end;
                const std::size_t digits = end;
                while (end < line.size() && std::isxdigit(static_cast<unsigned char>(line[end]))) ++end;
                if (end == digits) throw SyntaxError(column, "hexadecimal number without digits");
            } else {
                while (end < line.size() && std::isdigit(static_cast<unsigned char>(line[end]))) ++end;
            }
            if (end < line.size() && isNameChar(line[end])) throw SyntaxError(end + 1, "unexpected character in number");
            tokens.push_back({Token::Kind::Number, line.substr(i, end - i), column});
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
            if (symbol.size() == 1 && std::string("+-*/%^()=,<>!").find(c) == std::string::npos)
                throw SyntaxError(column, std::string("unexpected character '") + c + "'");
            tokens.push_back({Token::Kind::Symbol, symbol, column});
            i += symbol.size();
        }
    }
    tokens.push_back({Token::Kind::End, "", line.size() + 1});
    return tokens;
}

class Parser {
public:
    explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    Statement statement() {
        Statement s;
        if (peek().kind == Token::Kind::End) return s;
        if (peek().kind == Token::Kind::Name && tokens_[pos_ + 1].text == "=" &&
            tokens_[pos_ + 1].kind == Token::Kind::Symbol) {
            s.assignTo = next().text;
            next();
        }
        s.expression = comparison();
        if (peek().kind != Token::Kind::End) throw SyntaxError(peek().column, "unexpected '" + peek().text + "'");
        return s;
    }

private:
    using NodePtr = std::unique_ptr<Node>;

    const Token& peek() const { return tokens_[pos_]; }
    const Token& next() { return tokens_[pos_++]; }
    bool atSymbol(std::initializer_list<const char*> symbols) const {
        if (peek().kind != Token::Kind::Symbol) return false;
        for (const char* s : symbols)
            if (peek().text == s) return true;
        return false;
    }
    void expect(const char* symbol) {
        if (!atSymbol({symbol}))
            throw SyntaxError(peek().column, std::string("expected '") + symbol + "'" +
                                                 (peek().kind == Token::Kind::End ? " at the end" : ""));
        next();
    }

    static NodePtr binary(const Token& op, NodePtr left, NodePtr right) {
        auto n = std::make_unique<Node>(Node{Node::Kind::Binary, op.text, op.column, {}});
        n->operands.push_back(std::move(left));
        n->operands.push_back(std::move(right));
        return n;
    }

    // One left-associative level: operand {op operand}.
    template <class Operand>
    NodePtr leftAssociative(std::initializer_list<const char*> ops, Operand operand) {
        NodePtr left = (this->*operand)();
        while (atSymbol(ops)) {
            const Token op = next();
            left = binary(op, std::move(left), (this->*operand)());
        }
        return left;
    }

    NodePtr comparison() {
        NodePtr left = shift();
        if (atSymbol({"<", "<=", ">", ">=", "==", "!="})) {
            const Token op = next();
            left = binary(op, std::move(left), shift());
            if (atSymbol({"<", "<=", ">", ">=", "==", "!="}))
                throw SyntaxError(peek().column, "comparisons do not chain; use parentheses");
        }
        return left;
    }
    NodePtr shift() { return leftAssociative({"<<", ">>"}, &Parser::sum); }
    NodePtr sum() { return leftAssociative({"+", "-"}, &Parser::product); }
    NodePtr product() { return leftAssociative({"*", "/", "%"}, &Parser::unary); }

    NodePtr unary() {
        if (atSymbol({"-", "+"})) {
            const Token op = next();
            auto n = std::make_unique<Node>(Node{Node::Kind::Unary, op.text, op.column, {}});
            n->operands.push_back(unary());
            return n;
        }
        return power();
    }

    NodePtr power() {
        NodePtr base = postfix();
        if (atSymbol({"^"})) {
            const Token op = next();
            return binary(op, std::move(base), unary());  // right-associative
        }
        return base;
    }

    NodePtr postfix() {
        NodePtr operand = primary();
        while (atSymbol({"!"})) {
            auto n = std::make_unique<Node>(Node{Node::Kind::Unary, "!", next().column, {}});
            n->operands.push_back(std::move(operand));
            operand = std::move(n);
        }
        return operand;
    }

    NodePtr primary() {
        const Token t = peek();
        if (t.kind == Token::Kind::Number) {
            next();
            return std::make_unique<Node>(Node{Node::Kind::Number, t.text, t.column, {}});
        }
        if (t.kind == Token::Kind::Name) {
            next();
            if (!atSymbol({"("})) return std::make_unique<Node>(Node{Node::Kind::Variable, t.text, t.column, {}});
            next();
            auto call = std::make_unique<Node>(Node{Node::Kind::Call, t.text, t.column, {}});
            if (!atSymbol({")"})) {
                call->operands.push_back(comparison());
                while (atSymbol({","})) {
                    next();
                    call->operands.push_back(comparison());
                }
            }
            expect(")");
            return call;
        }
        if (atSymbol({"("})) {
            next();
            NodePtr inner = comparison();
            expect(")");
            return inner;
        }
        if (t.kind == Token::Kind::End) throw SyntaxError(t.column, "unexpected end of expression");
        throw SyntaxError(t.column, "unexpected '" + t.text + "'");
    }

    std::vector<Token> tokens_;
    std::size_t pos_ = 0;
};

}  // namespace

Statement parseLine(const std::string& line) { return Parser(tokenize(line)).statement(); }

}  // namespace twcalc
