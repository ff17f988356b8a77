// twcalc's evaluation: variables, `ans`, the function table, and the text of
// results.  Library failures surface as tarnwick::Error; mistakes in the
// expression that only show at evaluation as EvaluationError with a column.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "expression.h"
#include "tarnwick.hpp"

namespace twcalc {

using tarnwick::Integer;

// The line parses but cannot be evaluated (unknown name, operand out of range).
struct EvaluationError : ColumnError {
    using ColumnError::ColumnError;
};

// A named function: how many arguments it takes, what it computes, and its
// line in --help.
struct Function {
    std::size_t minArity, maxArity;
    Integer (*apply)(const std::vector<Integer>& args);
    const char* usage;        // "gcd(a, b, ...)"
    const char* description;  // "greatest common divisor"
};
const std::map<std::string, Function>& functionTable();

// An argument that must be a machine word (a root's degree, a digit count)
// and is not: the caller adds the column.
struct ArgumentError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Calculator {
public:
    // Evaluates one parsed line; an assignment stores the value too.  The
    // result becomes `ans`.
    Integer evaluate(const Statement& statement);

private:
    Integer variable(const Instruction& step) const;
    Integer call(const Instruction& step, std::vector<Integer>& stack) const;

    std::map<std::string, Integer> variables_;
    Integer ans_;
};

struct OutputOptions {
    std::uint32_t radix = 10;
    bool group = false;
    bool full = false;  // no shortening of long results
};

// The text of a result in the chosen radix and grouping.
std::string resultText(const Integer& value, const OutputOptions& options);
// The text as shown: results of more than 200 digits keep their first and last
// 50 digits unless options.full is set.
std::string displayText(const std::string& text, const OutputOptions& options);

}  // namespace twcalc
