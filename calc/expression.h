// twcalc's expressions: tokens, the syntax tree and the parser.
//
// Grammar, loosest binding first:
//   line       := [name "="] comparison
//   comparison := shift [("<" | "<=" | ">" | ">=" | "==" | "!=") shift]
//   shift      := sum {("<<" | ">>") sum}
//   sum        := product {("+" | "-") product}
//   product    := unary {("*" | "/" | "%") unary}
//   unary      := ("-" | "+") unary | power
//   power      := postfix ["^" unary]          (right-associative; -2^2 = -4)
//   postfix    := primary {"!"}                (factorial: 3!^2 = 36, -3! = -6; "n!=" is "n != ")
//   primary    := number | name | name "(" [comparison {"," comparison}] ")" | "(" comparison ")"
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace twcalc {

// A mistake in a line, at a 1-based column.
class ColumnError : public std::runtime_error {
public:
    ColumnError(std::size_t column, const std::string& message) : std::runtime_error(message), column_(column) {}
    std::size_t column() const { return column_; }

private:
    std::size_t column_;
};

// The line does not follow the grammar.
struct SyntaxError : ColumnError {
    using ColumnError::ColumnError;
};

struct Node {
    enum class Kind { Number, Variable, Call, Unary, Binary };
    Kind kind;
    std::string text;   // the literal, the name, or the operator
    std::size_t column; // where it starts, for error messages
    std::vector<std::unique_ptr<Node>> operands;
};

struct Statement {
    std::string assignTo;  // empty when the line is a bare expression
    std::unique_ptr<Node> expression;
};

// Parses one line; throws SyntaxError.  An empty line gives a null expression.
Statement parseLine(const std::string& line);

}  // namespace twcalc
