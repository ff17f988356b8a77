// A mistake in a line of twcalc input, at a 1-based column.
#pragma once

#include <stdexcept>
#include <string>

namespace twcalc {

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

}  // namespace twcalc
