#include "calculator.h"

#include <cctype>
#include <cstdint>
#include <iterator>

namespace twcalc {

namespace {

// Machine-integer operands (exponents, shift counts) must fit 32 unsigned bits.
std::uint32_t smallOperand(const Integer& v, const Instruction& where, const char* what) {
    if (v.sign() < 0 || v.bits() > 32)
        throw EvaluationError(where.column, std::string(what) + " must be between 0 and 4294967295");
    return std::uint32_t(v.to_uint64());
}

Integer fromBool(bool b) { return Integer(b ? 1 : 0); }

std::string arityText(const Function& f) {
    const std::string count = std::to_string(f.minArity);
    if (f.maxArity != f.minArity) return count + " or more arguments";
    return count + " argument" + (f.minArity == 1 ? "" : "s");
}

}  // namespace

namespace {

// The word argument of root, floor, trunc and ceil.
std::uint32_t wordArgument(const Integer& v) {
    if (v.sign() < 0 || v.bits() > 32) throw ArgumentError("the count must be between 0 and 4294967295");
    return std::uint32_t(v.to_uint64());
}

// The index argument of binomial, perm, fib and lucas.
std::int32_t indexArgument(const Integer& v) {
    if (v.bits() > 31) throw ArgumentError("the index must be between -2147483648 and 2147483647");
    return std::int32_t(v.to_int64());
}

std::uint32_t degree(const Integer& v) {
    if (v.is_zero()) throw ArgumentError("the degree must be 1 or more");
    return wordArgument(v);
}

}  // namespace

// Adding a function is one line here.
const std::map<std::string, Function>& functionTable() {
    using Args = const std::vector<Integer>&;
    constexpr std::size_t kMany = SIZE_MAX;
    static const std::map<std::string, Function> table = {
        {"abs", {1, 1, [](Args a) { return abs(a[0]); }, "abs(a)", "absolute value"}},
        {"sign", {1, 1, [](Args a) { return Integer(a[0].sign()); }, "sign(a)", "-1, 0 or 1"}},
        {"digits", {1, 1, [](Args a) { return Integer(a[0].digits()); }, "digits(a)", "number of decimal digits"}},
        {"bits", {1, 1, [](Args a) { return Integer(a[0].bits()); }, "bits(a)", "number of bits"}},
        {"min", {2, 2, [](Args a) { return a[0] < a[1] ? a[0] : a[1]; }, "min(a, b)", "the smaller"}},
        {"max", {2, 2, [](Args a) { return a[0] < a[1] ? a[1] : a[0]; }, "max(a, b)", "the larger"}},
        {"gcd", {2, kMany, [](Args a) { return gcd(a); }, "gcd(a, b, ...)", "greatest common divisor, >= 0"}},
        {"lcm", {2, kMany, [](Args a) { return lcm(a); }, "lcm(a, b, ...)", "least common multiple, >= 0"}},
        {"powmod", {3, 3, [](Args a) { return powmod(a[0], a[1], a[2]); }, "powmod(b, e, m)",
                    "b^e modulo m (e < 0: the inverse's power)"}},
        {"invmod", {2, 2, [](Args a) { return invert(a[0], a[1]); }, "invmod(a, m)", "inverse of a modulo m, 0 if none"}},
        {"sqrt", {1, 1, [](Args a) { return sqrt(a[0]); }, "sqrt(a)", "square root, truncated"}},
        {"root", {2, 2, [](Args a) { return root(a[0], degree(a[1])); }, "root(a, n)",
                  "n-th root, truncated toward zero"}},
        {"log", {2, 2, [](Args a) { return Integer(ilog(a[0], a[1])); }, "log(a, b)", "floor of log base b of |a|"}},
        {"floor", {2, 2, [](Args a) { return floor(a[0], wordArgument(a[1])); }, "floor(x, n)",
                   "x kept to n leading digits, rounded down"}},
        {"trunc", {2, 2, [](Args a) { return trunc(a[0], wordArgument(a[1])); }, "trunc(x, n)",
                   "x kept to n leading digits, rounded toward zero"}},
        {"ceil", {2, 2, [](Args a) { return ceil(a[0], wordArgument(a[1])); }, "ceil(x, n)",
                  "x kept to n leading digits, rounded up"}},
        {"isprime", {1, 1, [](Args a) { return Integer(isprime(a[0]) ? 1 : 0); }, "isprime(n)",
                     "1 if |n| is prime (Baillie-PSW above 10^16), else 0"}},
        {"nextprime", {1, 1, [](Args a) { return nextprime(a[0]); }, "nextprime(n)", "the least prime above n"}},
        {"prevprime", {1, 1, [](Args a) { return prevprime(a[0]); }, "prevprime(n)",
                       "the greatest prime below n, 0 if none"}},
        {"pi", {1, 1, [](Args a) { return Integer(tarnwick::prime_pi(wordArgument(a[0]))); }, "pi(n)",
                "the number of primes up to n (n below 2^32)"}},
        {"prime", {1, 1, [](Args a) { return Integer(tarnwick::nth_prime(wordArgument(a[0]))); }, "prime(k)",
                   "the k-th prime (32-bit primes; 0 past them)"}},
        {"random", {1, 1, [](Args a) { return Integer::random(indexArgument(a[0])); }, "random(n)",
                    "a random number of at most n digits"}},
        {"genprime", {1, 1, [](Args a) { return Integer::genprime(wordArgument(a[0])); }, "genprime(n)",
                      "a random prime of n digits"}},
        {"fact", {1, 1, [](Args a) { return Integer::factorial(wordArgument(a[0])); }, "fact(n)", "n!, also written n!"}},
        {"fact2", {1, 1, [](Args a) { return Integer::factorial2(wordArgument(a[0])); }, "fact2(n)",
                   "n!!, the product of the numbers up to n of n's parity"}},
        {"primorial", {1, 1, [](Args a) { return Integer::primorial(wordArgument(a[0])); }, "primorial(n)",
                       "the product of the primes up to n"}},
        {"binomial", {2, 2, [](Args a) { return Integer::binomial(indexArgument(a[0]), indexArgument(a[1])); },
                      "binomial(n, k)", "n! / (k! (n-k)!), 0 unless 0 <= k <= n"}},
        {"perm", {2, 2, [](Args a) { return Integer::permutation(indexArgument(a[0]), indexArgument(a[1])); },
                  "perm(n, k)", "n! / (n-k)!, 0 unless 0 <= k <= n"}},
        {"fib", {1, 1, [](Args a) { return Integer::fibonacci(indexArgument(a[0])); }, "fib(n)",
                 "the Fibonacci number F(n), n may be negative"}},
        {"xor", {2, 2, [](Args a) { return a[0] ^ a[1]; }, "xor(a, b)",
                 "bitwise exclusive or (sign-magnitude: negative if exactly one is)"}},
        {"lucas", {1, 1, [](Args a) { return Integer::lucas(indexArgument(a[0])); }, "lucas(n)",
                   "the Lucas number L(n), n may be negative"}},
    };
    return table;
}

namespace {

// Unknown functions and wrong argument counts are reported before anything
// is computed.
void checkCalls(const std::vector<Instruction>& program) {
    for (const Instruction& step : program) {
        if (step.kind != Instruction::Kind::Call) continue;
        const auto it = functionTable().find(step.text);
        if (it == functionTable().end()) throw EvaluationError(step.column, "unknown function '" + step.text + "'");
        const Function& f = it->second;
        if (step.argumentCount < f.minArity || step.argumentCount > f.maxArity)
            throw EvaluationError(step.column, step.text + " takes " + arityText(f));
    }
}

Integer unary(const Instruction& step, Integer v) {
    if (step.text == "!") return Integer::factorial(smallOperand(v, step, "the factorial's operand"));
    return step.text == "-" ? -v : v;
}

Integer binary(const Instruction& step, const Integer& a, const Integer& b) {
    const std::string& op = step.text;
    if (op == "+") return a + b;
    if (op == "-") return a - b;
    if (op == "*") return a * b;
    if (op == "/") return a / b;
    if (op == "%") return a % b;
    if (op == "^") return pow(a, smallOperand(b, step, "the exponent"));
    if (op == "&") return a & b;
    if (op == "|") return a | b;
    if (op == "<<") return a << smallOperand(b, step, "the shift count");
    if (op == ">>") return a >> smallOperand(b, step, "the shift count");
    if (op == "<") return fromBool(a < b);
    if (op == "<=") return fromBool(a <= b);
    if (op == ">") return fromBool(a > b);
    if (op == ">=") return fromBool(a >= b);
    if (op == "==") return fromBool(a == b);
    if (op == "!=") return fromBool(a != b);
    throw EvaluationError(step.column, "unknown operator '" + op + "'");
}

}  // namespace

Integer Calculator::evaluate(const Statement& statement) {
    if (statement.program.empty()) throw EvaluationError(1, "empty expression");
    checkCalls(statement.program);
    std::vector<Integer> stack;
    for (const Instruction& step : statement.program) {
        switch (step.kind) {
            case Instruction::Kind::Number:
                stack.emplace_back(step.text.c_str());
                break;
            case Instruction::Kind::Variable:
                stack.push_back(variable(step));
                break;
            case Instruction::Kind::Call: {
                Integer value = call(step, stack);
                stack.push_back(std::move(value));
                break;
            }
            case Instruction::Kind::Unary:
                stack.back() = unary(step, std::move(stack.back()));
                break;
            case Instruction::Kind::Binary: {
                const Integer b = std::move(stack.back());
                stack.pop_back();
                stack.back() = binary(step, stack.back(), b);
                break;
            }
        }
    }
    Integer value = std::move(stack.back());
    if (!statement.assignTo.empty()) {
        if (statement.assignTo == "ans" || functionTable().count(statement.assignTo))
            throw EvaluationError(1, "'" + statement.assignTo + "' cannot be assigned");
        variables_[statement.assignTo] = value;
    }
    ans_ = value;
    return value;
}

Integer Calculator::variable(const Instruction& step) const {
    if (step.text == "ans") return ans_;
    const auto it = variables_.find(step.text);
    if (it == variables_.end()) throw EvaluationError(step.column, "unknown variable '" + step.text + "'");
    return it->second;
}

// Takes the call's arguments off the stack and returns the function's value.
Integer Calculator::call(const Instruction& step, std::vector<Integer>& stack) const {
    const std::vector<Integer> args(std::make_move_iterator(stack.end() - std::ptrdiff_t(step.argumentCount)),
                                    std::make_move_iterator(stack.end()));
    stack.resize(stack.size() - step.argumentCount);
    try {
        return functionTable().at(step.text).apply(args);
    } catch (const ArgumentError& e) {
        throw EvaluationError(step.column, step.text + ": " + e.what());
    }
}

std::string resultText(const Integer& value, const OutputOptions& options) {
    // Decimal groups of three and hexadecimal groups of four are the library's
    // own; other radices are grouped by four as well.
    const std::uint8_t flags = options.group ? TEXT_GROUP : 0;
    const std::uint32_t groupLength = options.radix == 10 ? 3 : 4;
    std::string text = value.to_string(options.radix, flags, groupLength);
    // The library sets a grouped hexadecimal number apart from its "0x"; the
    // calculator writes the prefix against the digits, as it reads them.
    const std::size_t prefix = text.find("0x ");
    if (prefix <= 1) text.erase(prefix + 2, 1);
    return text;
}

std::string displayText(const std::string& text, const OutputOptions& options) {
    constexpr std::size_t kLongest = 200, kKeep = 50;
    // Digits are what counts: signs, "0x", separators and brackets do not.
    std::size_t first = 0;
    while (first < text.size() && (text[first] == '-' || text[first] == '+' || text[first] == ' ')) ++first;
    if (text.compare(first, 2, "0x") == 0) first += 2;
    auto isDigit = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
    std::size_t digits = 0;
    for (std::size_t i = first; i < text.size(); ++i) digits += isDigit(text[i]);
    if (options.full || digits <= kLongest) return text;
    // The first and last kKeep digits with the separators between them, so
    // that a grouped result stays grouped.
    std::size_t headEnd = first, tailStart = text.size();
    for (std::size_t kept = 0; kept < kKeep; ++headEnd) kept += isDigit(text[headEnd]);
    for (std::size_t kept = 0; kept < kKeep;) kept += isDigit(text[--tailStart]);
    return text.substr(0, headEnd) + "..." + text.substr(tailStart) + " (" + std::to_string(digits) +
           " digits) (--full to print all)";
}

}  // namespace twcalc
