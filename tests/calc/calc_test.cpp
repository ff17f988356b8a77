// twcalc: its parser and evaluator called directly, then the program run as
// a process: answers, options, errors with their columns and exit codes, the
// line mode, and Ctrl-C stopping a long evaluation.
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

#include "calculator.h"

namespace {

using namespace twcalc;

std::string eval(Calculator& calc, const std::string& line) { return calc.evaluate(parseLine(line)).to_string(); }
std::string eval(const std::string& line) {
    Calculator calc;
    return eval(calc, line);
}

TEST(Calculator, EvaluatesExpressions) {
    const std::pair<const char*, const char*> cases[] = {
        {"2 + 3 * 4", "14"}, {"(2 + 3) * 4", "20"}, {"2^3^2", "512"}, {"-2^2", "-4"}, {"(-2)^2", "4"}, {"2^-0", "1"},
        {"10 - 4 - 3", "3"}, {"100 / 10 / 5", "2"}, {"--5", "5"}, {"1 + 2 << 3", "24"}, {"1 << 100 >> 98", "4"},
        {"3 < 4", "1"}, {"1 + 1 == 2", "1"}, {"5 != 5", "0"}, {"-7 / 2", "-3"}, {"-7 % 2", "-1"}, {"0x1F + 1", "32"},
        {"2^127-1", "170141183460469231731687303715884105727"}, {"(3^1000) % 10^20", "73102768902855220001"},
        {"digits(10^1000)", "1001"}, {"bits(2^4096)", "4097"}, {"abs(-12) + sign(-3)", "11"}, {"max(3, min(7, 5))", "5"},
        {"gcd(2^100, 6^50)", "1125899906842624"}, {"lcm(4, 6)", "12"}, {"powmod(3, 10^20, 10^9 + 7)", "139421235"},
        {"invmod(3, 7)", "5"}, {"sqrt(10^40 - 1)", "99999999999999999999"}, {"log(10^20, 10)", "20"},
        {"gcd(12, 18, 27)", "3"}, {"lcm(4, -6, 10)", "60"}, {"root(-3^30, 3)", "-59049"}, {"floor(-123456, 2)", "-130000"},
        {"trunc(-123456, 2)", "-120000"}, {"ceil(123456, 2)", "130000"}, {"3!^2 - -3! + 2^3!", "106"},
        {"fact(20) / fact2(20) - fact2(19) + primorial(30)", "6469693230"}, {"binomial(50, 25) - perm(5, 2)", "126410606437732"},
        {"fib(-100) + lucas(-9)", "-354224848179261915151"}, {"5! == 120", "1"},
        {"isprime(2^127-1)", "1"}, {"nextprime(2^64)", "18446744073709551629"}, {"prevprime(2^64)", "18446744073709551557"},
        {"pi(10^9)", "50847534"}, {"-6 & 3", "2"}, {"-6 | 3 # sign-magnitude", "-7"}, {"xor(-6, -3)", "5"},
        {"xor(2^100, 1) - 2^100", "1"}, {"1 | 2 & 3 == 3", "1"}, {"1 << 2 | 1 + 1", "6"}, {"0b1011 + 0B1 - 0x0c", "0"}, {"prime(10^6)", "15485863"}, {"digits(genprime(30)) + isprime(genprime(30))", "31"}};
    for (const auto& [line, want] : cases) EXPECT_EQ(eval(line), want) << line;
    Calculator calc;
    EXPECT_EQ(eval(calc, "x = 3^100"), "515377520732011331036461129765621272702107522001");
    EXPECT_EQ(eval(calc, "x % 1000"), "1");
    EXPECT_EQ(eval(calc, "ans + 1"), "2");
    EXPECT_EQ(eval(calc, "y = ans * 10"), "20");
    EXPECT_EQ(eval(calc, "x / x + y"), "21");
}

TEST(Calculator, ErrorsCarryTheirColumn) {
    auto syntax = [](const std::string& line) -> std::size_t {
        try {
            parseLine(line);
        } catch (const SyntaxError& e) {
            return e.column();
        }
        return 0;
    };
    const std::pair<const char*, std::size_t> bad[] = {{"2 +* 3", 4}, {"(1 + 2", 7}, {"1 + 2)", 6}, {"3 $ 4", 3}, {"0x", 1},
                                                       {"12ab", 3},   {"1 < 2 < 3", 7}, {"f(1,", 5}, {"", 0},
                                                       {"0b", 1},     {"0b102", 5},  {"1 & | 2", 5}, {"(1, 2)", 3}, {"f(1 2)", 5}};
    for (const auto& [line, column] : bad) EXPECT_EQ(syntax(line), column) << line;
    EXPECT_TRUE(parseLine("  # a comment").program.empty());
    Calculator calc;
    auto evaluation = [&](const std::string& line) -> std::size_t {
        try {
            calc.evaluate(parseLine(line));
        } catch (const EvaluationError& e) {
            return e.column();
        }
        return 0;
    };
    const std::pair<const char*, std::size_t> wrong[] = {{"1 + nope", 5}, {"nope(1)", 1}, {"abs(1, 2)", 1}, {"gcd(1)", 1}, {"root(8, 0)", 1}, {"floor(8, -1)", 1}, {"2 ^ -1", 3},
                                                         {"2 ^ 4294967296", 3}, {"1 << -1", 3}, {"ans = 1", 1}};
    for (const auto& [line, column] : wrong) EXPECT_EQ(evaluation(line), column) << line;
    EXPECT_THROW(calc.evaluate(parseLine("1 / (2 - 2)")), tarnwick::Error);
    EXPECT_EQ(TW_getLastError(), 0);  // the wrapper cleared it
    EXPECT_EQ(eval(calc, "6 * 7"), "42");
    EXPECT_EQ(resultText(Integer("-1234567"), {10, true, false}), "-1,234,567");
    EXPECT_EQ(resultText(Integer(255), {16, false, false}), "0xFF");
    EXPECT_EQ(resultText(Integer(255), {2, true, false}), "1111,1111");
    const std::string long201(201, '7');
    EXPECT_EQ(displayText(long201, {}), std::string(50, '7') + "..." + std::string(50, '7') + " (201 digits) (--full to print all)");
    EXPECT_EQ(displayText(long201, {10, false, true}), long201);
    EXPECT_EQ(displayText(std::string(200, '9'), {}), std::string(200, '9'));
    EXPECT_EQ(displayText("-0x" + std::string(300, 'A'), {16, false, false}).substr(0, 6), "-0xAAA");
}

struct ProgramRun {
    int exitCode;
    std::string out, err;
};
std::string slurp(const std::string& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}
ProgramRun twcalc(const std::string& args, const std::string& input = "") {
    static int runs = 0;  // files of their own: ctest runs these tests in parallel
    const std::string base = ::testing::TempDir() + "twcalc_" + std::to_string(getpid()) + "_" + std::to_string(runs++);
    std::ofstream(base + "_in") << input;
    const int status = std::system((std::string(TWCALC_PATH) + " " + args + " < " + base + "_in > " + base + "_out 2> " + base + "_err").c_str());
    ProgramRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(base + "_out"), slurp(base + "_err")};
    for (const char* suffix : {"_in", "_out", "_err"}) std::remove((base + suffix).c_str());
    return run;
}

TEST(TwcalcProgram, AnswersOptionsAndErrors) {
    EXPECT_EQ(twcalc("'2^127-1'").out, "170141183460469231731687303715884105727\n");
    EXPECT_EQ(twcalc("--hex '255*2^100'").out, "0xFF0000000000000000000000000\n");
    EXPECT_EQ(twcalc("--group '-1234567'").out, "-1,234,567\n");
    EXPECT_EQ(twcalc("--radix 36 '35'").out, "Z\n");
    EXPECT_EQ(twcalc("'10^300'").out, "1" + std::string(49, '0') + "..." + std::string(50, '0') + " (301 digits) (--full to print all)\n");
    EXPECT_EQ(twcalc("--full '10^300'").out, "1" + std::string(300, '0') + "\n");
    std::string groups;  // ",000" sixteen times
    for (int i = 0; i < 16; ++i) groups += ",000";
    EXPECT_EQ(twcalc("--group '10^300'").out, "1" + groups + ",0..." + "00" + groups + " (301 digits) (--full to print all)\n");
    EXPECT_EQ(twcalc("--hex --group '1-2^100'").out, "-0xF,FFFF,FFFF,FFFF,FFFF,FFFF,FFFF\n");
    const std::string file = ::testing::TempDir() + "twcalc_full_" + std::to_string(getpid());
    EXPECT_EQ(twcalc("--out " + file + " '7^1000'").exitCode, 0);
    EXPECT_EQ(slurp(file).size(), 847u);  // 846 digits and a line break
    std::remove(file.c_str());
    const ProgramRun timed = twcalc("--time '3^1000 % 7'");
    EXPECT_TRUE(timed.exitCode == 0 && timed.out.find("\ntime: ") != std::string::npos && timed.out.substr(timed.out.size() - 3) == " s\n");
    const std::pair<const char*, const char*> errors[] = {{"'1/0'", "error: division by zero\n"},
                                                          {"'2 +* 3'", "syntax error at column 4: unexpected '*'\n"},
                                                          {"'99999999999^999999999'", "error: result too large\n"}};
    for (const auto& [args, message] : errors) {
        const ProgramRun r = twcalc(args);
        EXPECT_TRUE(r.exitCode != 0 && r.err == message && r.out.empty()) << args << ": " << r.err;
    }
    EXPECT_EQ(twcalc("--radix 1 '5'").exitCode, 2);
    const ProgramRun help = twcalc("-h");
    EXPECT_TRUE(help.exitCode == 0 && help.out.find("\n  root(a, n) ") != std::string::npos &&
                help.out.find("\n  xor(a, b) ") != std::string::npos && help.out.find("\n  &  ") != std::string::npos) << help.out;
    EXPECT_EQ(twcalc("--version").out.rfind("twcalc, Tarnwick V", 0), 0u);
    // Long chains and deep nesting parse without recursion; past the nesting
    // limit a clear error, and the session goes on.
    std::string sum = "1";
    for (int i = 1; i < 100000; ++i) sum += "+1";
    auto nested = [](std::size_t depth) { return std::string(depth, '(') + "7" + std::string(depth, ')'); };
    const ProgramRun deep = twcalc("", sum + "\n" + nested(10000) + "\n" + nested(100000) + "\n" + std::string(10001, '-') + "1\n0b101 & -7 | 8 # sign-magnitude\n");
    EXPECT_EQ(deep.out, "100000\n7\n13\n");
    EXPECT_EQ(deep.err, "syntax error at column 10001: expression nested too deeply (more than 10000 levels)\n"
                        "syntax error at column 10001: expression nested too deeply (more than 10000 levels)\n");
    const ProgramRun lines = twcalc("", "x = 6\n\nx * 7\n1 / 0\nans + 1\n exit \n5\n");
    EXPECT_EQ(lines.out, "6\n42\n43\n");
    EXPECT_EQ(lines.err, "error: division by zero\n");
    EXPECT_EQ(lines.exitCode, 1);
}

// Ctrl-C during a long evaluation stops it through the terminate flag; the
// line mode reports "interrupted" and the next line works.
TEST(TwcalcProgram, InterruptStopsALongEvaluation) {
    int in[2], out[2], err[2];
    ASSERT_TRUE(pipe(in) == 0 && pipe(out) == 0 && pipe(err) == 0);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        dup2(in[0], 0), dup2(out[1], 1), dup2(err[1], 2);
        for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) close(fd);
        execl(TWCALC_PATH, TWCALC_PATH, static_cast<char*>(nullptr));
        _exit(127);
    }
    close(in[0]), close(out[1]), close(err[1]);
    const std::string lines = "3^200000000\n", next = "6*7\n";  // a hundred million digits: far longer than the wait
    ASSERT_EQ(write(in[1], lines.data(), lines.size()), ssize_t(lines.size()));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    kill(pid, SIGINT);
    ASSERT_EQ(write(in[1], next.data(), next.size()), ssize_t(next.size()));
    close(in[1]);
    int status = 0;
    const auto start = std::chrono::steady_clock::now();
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() - start > std::chrono::seconds(60)) {
            kill(pid, SIGKILL), waitpid(pid, &status, 0);
            FAIL() << "twcalc did not stop after SIGINT";
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    auto drain = [](int fd) {
        std::string s;
        char buf[256];
        for (ssize_t n; (n = read(fd, buf, sizeof buf)) > 0;) s.append(buf, std::size_t(n));
        return close(fd), s;
    };
    EXPECT_EQ(drain(out[0]), "42\n");
    EXPECT_EQ(drain(err[0]), "interrupted\n");
    EXPECT_TRUE(WIFEXITED(status));
}

// A session on a pseudo-terminal, as a user has it: Ctrl-C clears a half-typed
// line, stops an evaluation and a long output, and the variables live on.
class Terminal {
public:
    Terminal() {
        pid_ = forkpty(&fd_, nullptr, nullptr, nullptr);
        if (pid_ == 0) {
            execl(TWCALC_PATH, TWCALC_PATH, "--full", static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    ~Terminal() {
        if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) == 0) kill(pid_, SIGKILL), waitpid(pid_, nullptr, 0);
        close(fd_);
    }
    void type(const std::string& keys) { ASSERT_EQ(write(fd_, keys.data(), keys.size()), ssize_t(keys.size())); }
    // The same for keys that may come after the calculator has left.
    void typeIfRunning(const std::string& keys) { (void)!write(fd_, keys.data(), keys.size()); }
    // Reads until text shows after the previous match; false after a wait far
    // longer than any run needs (only so that a fault cannot hang the tests).
    bool shows(const std::string& text, int timeoutMs = 60000) {
        for (int waited = 0;; waited += 50) {
            const std::size_t at = seen_.find(text, from_);
            if (at != std::string::npos) return from_ = at + text.size(), true;
            if (waited >= timeoutMs) return false;
            pollfd p{fd_, POLLIN, 0};
            char buf[4096];
            ssize_t n = 0;
            if (poll(&p, 1, 50) > 0 && (n = read(fd_, buf, sizeof buf)) > 0) seen_.append(buf, std::size_t(n));
            if (n < 0) return false;
        }
    }
    std::size_t seen() const { return seen_.size(); }
    // Whether the calculator has ended, waiting up to timeoutMs for it.
    bool ended(int timeoutMs) {
        for (int waited = 0; waited <= timeoutMs; waited += 50) {
            if (pid_ > 0 && waitpid(pid_, &status_, WNOHANG) == pid_) pid_ = -1;
            if (pid_ <= 0) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }
    int exitCode() { return ended(0) && WIFEXITED(status_) ? WEXITSTATUS(status_) : -1; }

private:
    pid_t pid_;
    int status_ = 0;
    int fd_ = -1;
    std::string seen_;
    std::size_t from_ = 0;
};

TEST(TwcalcProgram, CtrlCOnATerminalKeepsTheSession) {
    Terminal t;
    ASSERT_TRUE(t.shows("> "));
    t.type("x = 6\n");
    ASSERT_TRUE(t.shows("6\r\n> "));
    t.type("12345");
    ASSERT_TRUE(t.shows("12345"));
    // One Ctrl-C clears the line: a fresh prompt before the next keys.
    t.type("\x03");
    ASSERT_TRUE(t.shows("> "));
    t.type("x + 1\n");
    ASSERT_TRUE(t.shows("7\r\n> "));
    // A hundred million digits: Ctrl-C (again, should one come before the
    // line is read) stops the evaluation.
    t.type("3^200000000\n");
    ASSERT_TRUE(t.shows("3^200000000\r\n"));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    for (int tries = 0; tries < 60; ++tries) {
        t.type("\x03");
        if (t.shows("interrupted\r\n", 1000)) break;
    }
    // Three million digits, of which the terminal takes a few before Ctrl-C.
    t.type("10^3000000\n");
    ASSERT_TRUE(t.shows("1000000000"));  // the echo may come before the prompt or after it
    const std::size_t before = t.seen();
    t.type("\x03");
    ASSERT_TRUE(t.shows("interrupted\r\n"));
    EXPECT_LT(t.seen() - before, 2000000u);
    t.type("x * 7\n");
    EXPECT_TRUE(t.shows("42\r\n> "));
    // Ctrl-D leaves (again, should one come while the terminal changes mode);
    // the stopped lines count as failed.
    for (int tries = 0; tries < 60 && !t.ended(1000); ++tries) t.typeIfRunning("\x04");
    EXPECT_EQ(t.exitCode(), 1);
}

}  // namespace
