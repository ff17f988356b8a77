// twcalc's parser and evaluator: precedence, associativity, unary minus,
// variables and ans, errors with their columns, and the text of results.
#include <gtest/gtest.h>

#include "calculator.h"

namespace {

using namespace twcalc;

std::string eval(Calculator& calc, const std::string& line) {
    return calc.evaluate(parseLine(line)).to_string();
}
std::string eval(const std::string& line) {
    Calculator calc;
    return eval(calc, line);
}

TEST(CalculatorEvaluation, PrecedenceAndAssociativity) {
    EXPECT_EQ(eval("2 + 3 * 4"), "14");
    EXPECT_EQ(eval("(2 + 3) * 4"), "20");
    EXPECT_EQ(eval("2^3^2"), "512");           // right-associative
    EXPECT_EQ(eval("-2^2"), "-4");             // the power binds tighter than unary minus
    EXPECT_EQ(eval("(-2)^2"), "4");
    EXPECT_EQ(eval("2^-0"), "1");
    EXPECT_EQ(eval("10 - 4 - 3"), "3");        // left-associative
    EXPECT_EQ(eval("100 / 10 / 5"), "2");
    EXPECT_EQ(eval("--5"), "5");
    EXPECT_EQ(eval("1 + 2 << 3"), "24");       // shifts bind looser than sums
    EXPECT_EQ(eval("1 << 100 >> 98"), "4");
    EXPECT_EQ(eval("3 < 4"), "1");
    EXPECT_EQ(eval("1 + 1 == 2"), "1");
    EXPECT_EQ(eval("5 != 5"), "0");
    EXPECT_EQ(eval("-7 / 2"), "-3");           // truncating, as the library
    EXPECT_EQ(eval("-7 % 2"), "-1");
    EXPECT_EQ(eval("0x1F + 1"), "32");
}

TEST(CalculatorEvaluation, KnownAnswers) {
    EXPECT_EQ(eval("2^127-1"), "170141183460469231731687303715884105727");
    EXPECT_EQ(eval("(3^1000) % 10^20"), "73102768902855220001");
    EXPECT_EQ(eval("digits(10^1000)"), "1001");
    EXPECT_EQ(eval("bits(2^4096)"), "4097");
    EXPECT_EQ(eval("abs(-12) + sign(-3)"), "11");
    EXPECT_EQ(eval("max(3, min(7, 5))"), "5");
}

TEST(CalculatorEvaluation, VariablesAndAns) {
    Calculator calc;
    EXPECT_EQ(eval(calc, "x = 3^100"), "515377520732011331036461129765621272702107522001");
    EXPECT_EQ(eval(calc, "x % 1000"), "1");
    EXPECT_EQ(eval(calc, "ans + 1"), "2");
    EXPECT_EQ(eval(calc, "y = ans * 10"), "20");
    EXPECT_EQ(eval(calc, "x / x + y"), "21");
}

// The 1-based column of the error a line produces.
std::size_t syntaxErrorColumn(const std::string& line) {
    try {
        parseLine(line);
    } catch (const SyntaxError& e) {
        return e.column();
    }
    return 0;
}

TEST(CalculatorErrors, SyntaxErrorsCarryTheirColumn) {
    EXPECT_EQ(syntaxErrorColumn("2 +* 3"), 4u);
    EXPECT_EQ(syntaxErrorColumn("(1 + 2"), 7u);    // the end of the line
    EXPECT_EQ(syntaxErrorColumn("1 + 2)"), 6u);
    EXPECT_EQ(syntaxErrorColumn("3 $ 4"), 3u);
    EXPECT_EQ(syntaxErrorColumn("0x"), 1u);
    EXPECT_EQ(syntaxErrorColumn("12ab"), 3u);
    EXPECT_EQ(syntaxErrorColumn("1 < 2 < 3"), 7u);
    EXPECT_EQ(syntaxErrorColumn("f(1,"), 5u);
    EXPECT_EQ(syntaxErrorColumn(""), 0u);
    EXPECT_FALSE(parseLine("   ").expression);
}

TEST(CalculatorErrors, EvaluationErrors) {
    Calculator calc;
    auto column = [&](const std::string& line) -> std::size_t {
        try {
            calc.evaluate(parseLine(line));
        } catch (const EvaluationError& e) {
            return e.column();
        }
        return 0;
    };
    EXPECT_EQ(column("1 + nope"), 5u);
    EXPECT_EQ(column("nope(1)"), 1u);
    EXPECT_EQ(column("abs(1, 2)"), 1u);
    EXPECT_EQ(column("2 ^ -1"), 3u);
    EXPECT_EQ(column("2 ^ 4294967296"), 3u);
    EXPECT_EQ(column("1 << -1"), 3u);
    EXPECT_EQ(column("ans = 1"), 1u);
    try {
        calc.evaluate(parseLine("1 / (2 - 2)"));
        FAIL() << "no error";
    } catch (const tarnwick::Error& e) {
        EXPECT_EQ(e.code(), TW_ERR_DIV_ZERO);
    }
    EXPECT_EQ(TW_getLastError(), 0);  // the wrapper cleared it
    EXPECT_EQ(calc.evaluate(parseLine("6 * 7")).to_string(), "42");
}

TEST(CalculatorOutput, RadixGroupingAndShortening) {
    const Integer v("-1234567");
    EXPECT_EQ(resultText(v, {10, true, false}), "-1,234,567");
    EXPECT_EQ(resultText(Integer(255), {16, false, false}), "0xFF");
    EXPECT_EQ(resultText(Integer(255), {2, false, false}), "11111111");
    EXPECT_EQ(resultText(Integer(255), {2, true, false}), "1111,1111");

    const std::string long201(201, '7');
    const std::string shown = displayText(long201, {});
    EXPECT_EQ(shown, std::string(50, '7') + "..." + std::string(50, '7') + " (201 digits) (--full to print all)");
    EXPECT_EQ(displayText(long201, {10, false, true}), long201);
    EXPECT_EQ(displayText(std::string(200, '9'), {}), std::string(200, '9'));
    const std::string negativeHex = "-0x" + std::string(300, 'A');
    EXPECT_EQ(displayText(negativeHex, {16, false, false}).substr(0, 6), "-0xAAA");
}

}  // namespace
