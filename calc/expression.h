// twcalc's expressions: a line parsed into a postfix program.
//
// Grammar, loosest binding first:
//   line       := [name "="] comparison
//   comparison := or [("<" | "<=" | ">" | ">=" | "==" | "!=") or]
//   or         := and {"|" and}
//   and        := shift {"&" shift}
//   shift      := sum {("<<" | ">>") sum}
//   sum        := product {("+" | "-") product}
//   product    := unary {("*" | "/" | "%") unary}
//   unary      := ("-" | "+") unary | power
//   power      := postfix ["^" unary]          (right-associative; -2^2 = -4)
//   postfix    := primary {"!"}                (factorial: 3!^2 = 36, -3! = -6; "n!=" is "n != ")
//   primary    := number | name | name "(" [comparison {"," comparison}] ")" | "(" comparison ")"
//
// The parser keeps its pending operators on a heap stack instead of recursing,
// so a chain of any length parses in constant machine stack, and the program
// it builds is flat: evaluating and freeing it never recurse either.  Nesting
// (parentheses, calls, prefix signs, power towers) is limited to kMaxNesting
// levels.
#pragma once

#include <string>
#include <vector>

#include "column_error.h"

namespace twcalc {

constexpr std::size_t kMaxNesting = 10000;

// One step of a postfix program, run on a stack of values.
struct Instruction {
    enum class Kind {
        Number,    // push the literal
        Variable,  // push the variable's value
        Call,      // replace the top argumentCount values by the function's value
        Unary,     // "-", "+" or "!" on the top value
        Binary     // the top two values by the operator
    };
    Kind kind;
    std::string text;     // the literal, the name, or the operator
    std::size_t column;   // where it starts, for error messages
    std::size_t argumentCount = 0;
};

struct Statement {
    std::string assignTo;              // empty when the line is a bare expression
    std::vector<Instruction> program;  // empty for an empty line
};

// Parses one line; throws SyntaxError.
Statement parseLine(const std::string& line);

}  // namespace twcalc
