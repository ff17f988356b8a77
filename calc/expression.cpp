#include "expression.h"

#include "tokens.h"

namespace twcalc {

namespace {

// Binding strength of the binary operators; prefix signs bind between the
// products and the power.
constexpr int kComparison = 1, kPrefix = 7, kPower = 8;

int binaryPrecedence(const Token& t) {
    if (t.kind != Token::Kind::Symbol) return 0;
    static const std::pair<const char*, int> table[] = {
        {"<", 1}, {"<=", 1}, {">", 1}, {">=", 1}, {"==", 1}, {"!=", 1}, {"|", 2}, {"&", 3}, {"<<", 4},
        {">>", 4}, {"+", 5},  {"-", 5},  {"*", 6},  {"/", 6},  {"%", 6},  {"^", kPower}};
    for (const auto& [symbol, precedence] : table)
        if (t.text == symbol) return precedence;
    return 0;
}

bool isSymbol(const Token& t, const char* symbol) { return t.kind == Token::Kind::Symbol && t.text == symbol; }

// An entry of the pending-operator stack: an operator waiting for its right
// operand, or an open parenthesis or call.
struct Pending {
    enum class Kind { Operator, Parenthesis, Call } kind;
    const Token* token;
    int precedence = 0;         // operators
    bool prefix = false;        // operators: a sign in front of its operand
    std::size_t arguments = 0;  // calls: the arguments closed so far
};

class Parser {
public:
    explicit Parser(const std::vector<Token>& tokens) : tokens_(tokens) {}

    Statement statement() {
        Statement s;
        if (peek().kind == Token::Kind::End) return s;
        if (peek().kind == Token::Kind::Name && isSymbol(tokens_[pos_ + 1], "=")) {
            s.assignTo = peek().text;
            pos_ += 2;
        }
        expression();
        s.program = std::move(program_);
        return s;
    }

private:
    const Token& peek() const { return tokens_[pos_]; }
    const Token& next() { return tokens_[pos_++]; }

    [[noreturn]] static void unexpected(const Token& t) {
        if (t.kind == Token::Kind::End) throw SyntaxError(t.column, "unexpected end of expression");
        throw SyntaxError(t.column, "unexpected '" + t.text + "'");
    }

    void emit(Instruction::Kind kind, const Token& t, std::size_t arguments = 0) {
        program_.push_back({kind, t.text, t.column, arguments});
    }

    void push(Pending p) {
        const bool nests = p.kind != Pending::Kind::Operator || p.prefix || p.precedence == kPower;
        if (nests && ++nesting_ > kMaxNesting)
            throw SyntaxError(p.token->column, "expression nested too deeply (more than " +
                                                   std::to_string(kMaxNesting) + " levels)");
        pending_.push_back(p);
    }
    void popOperator() {
        const Pending& p = pending_.back();
        if (p.prefix || p.precedence == kPower) --nesting_;
        emit(p.prefix ? Instruction::Kind::Unary : Instruction::Kind::Binary, *p.token);
        pending_.pop_back();
    }
    // Emits the pending operators of the innermost group that bind at least
    // as tightly as `precedence`.
    void reduce(int precedence) {
        while (!pending_.empty() && pending_.back().kind == Pending::Kind::Operator &&
               pending_.back().precedence >= precedence)
            popOperator();
    }
    bool inGroup() const { return !pending_.empty(); }

    // The whole line, one token at a time, alternating between expecting an
    // operand and expecting what follows one.
    void expression() {
        bool wantOperand = true;
        for (;;) {
            const Token& t = next();
            if (wantOperand) {
                wantOperand = operand(t);
                continue;
            }
            if (isSymbol(t, "!")) {
                emit(Instruction::Kind::Unary, t);  // binds to the operand just read
            } else if (const int precedence = binaryPrecedence(t)) {
                // ^ is right-associative: an earlier ^ waits for this one; a
                // comparison stays pending so that a second one is caught.
                reduce(precedence == kPower || precedence == kComparison ? precedence + 1 : precedence);
                if (precedence == kComparison && !pending_.empty() &&
                    pending_.back().kind == Pending::Kind::Operator && pending_.back().precedence == kComparison)
                    throw SyntaxError(t.column, "comparisons do not chain; use parentheses");
                push({Pending::Kind::Operator, &t, precedence});
                wantOperand = true;
            } else {
                reduce(kComparison);
                if (!inGroup()) {
                    if (t.kind != Token::Kind::End) unexpected(t);
                    return;
                }
                Pending& group = pending_.back();
                if (group.kind == Pending::Kind::Call && isSymbol(t, ",")) {
                    ++group.arguments;
                    wantOperand = true;
                } else if (isSymbol(t, ")")) {
                    if (group.kind == Pending::Kind::Call) emit(Instruction::Kind::Call, *group.token, group.arguments + 1);
                    pending_.pop_back();
                    --nesting_;
                } else {
                    throw SyntaxError(t.column, std::string("expected ')'") +
                                                    (t.kind == Token::Kind::End ? " at the end" : ""));
                }
            }
        }
    }

    // Reads a token where an operand must start; true when the operand is
    // still to come (after a sign or an opening parenthesis).
    bool operand(const Token& t) {
        if (t.kind == Token::Kind::Number) {
            emit(Instruction::Kind::Number, t);
            return false;
        }
        if (t.kind == Token::Kind::Name) {
            if (!isSymbol(peek(), "(")) {
                emit(Instruction::Kind::Variable, t);
                return false;
            }
            next();
            if (isSymbol(peek(), ")")) {
                next();
                emit(Instruction::Kind::Call, t, 0);
                return false;
            }
            push({Pending::Kind::Call, &t});
            return true;
        }
        if (isSymbol(t, "(")) {
            push({Pending::Kind::Parenthesis, &t});
            return true;
        }
        if (isSymbol(t, "-") || isSymbol(t, "+")) {
            push({Pending::Kind::Operator, &t, kPrefix, true});
            return true;
        }
        unexpected(t);
    }

    const std::vector<Token>& tokens_;
    std::size_t pos_ = 0;
    std::vector<Pending> pending_;
    std::size_t nesting_ = 0;
    std::vector<Instruction> program_;
};

}  // namespace

Statement parseLine(const std::string& line) {
    const std::vector<Token> tokens = tokenize(line);
    return Parser(tokens).statement();
}

}  // namespace twcalc
