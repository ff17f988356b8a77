// twcalc: a calculator for integers of unbounded size.
//
//   twcalc [options] 'EXPR'    evaluate and print
//   twcalc [options]           read expressions line by line from standard input
//
// Options: --hex, --radix N, --group, --full, --out FILE, --time, --help (-h),
// --version.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <unistd.h>

#include "calculator.h"

namespace {

using namespace twcalc;

volatile std::sig_atomic_t evaluating = 0;

// Ctrl-C stops a running evaluation through the library's terminate flag;
// at the prompt it ends the program as usual.
extern "C" void onInterrupt(int) {
    if (evaluating) {
        TW_setTerminate(1);
    } else {
        std::signal(SIGINT, SIG_DFL);
        std::raise(SIGINT);
    }
}

struct Options {
    OutputOptions output;
    std::string outFile;
    bool time = false;
    std::string expression;
    bool haveExpression = false;
};

constexpr const char* kUsage = "usage: twcalc [--hex] [--radix N] [--group] [--full] [--out FILE] [--time] ['EXPR']\n";

[[noreturn]] void usage(const char* message) {
    std::fprintf(stderr, "twcalc: %s\n%s", message, kUsage);
    std::exit(2);
}

[[noreturn]] void help() {
    std::printf("%s\n"
                "Evaluates EXPR, or else reads one expression a line from standard input\n"
                "(quit, exit or end of input leave; Ctrl-C stops a long evaluation).\n\n"
                "Options:\n"
                "  --hex          print results in hexadecimal\n"
                "  --radix N      print results in radix N (2 to 4294967295, 0 for 2^32)\n"
                "  --group        group the digits (1,234,567; FFFF,FFFF)\n"
                "  --full         print long results whole (else first and last 50 digits)\n"
                "  --out FILE     also write each result whole to FILE\n"
                "  --time         print the time each evaluation took\n"
                "  -h, --help     this text\n"
                "  --version      the library's version\n\n"
                "Expressions: integers (decimal, 0x hexadecimal, 0b binary), variables\n"
                "(x = ...; ans is the last result), parentheses, # to the end of the line is\n"
                "a comment. Operators, tightest first:\n"
                "  n!             factorial\n"
                "  ^              power, right-associative (-2^2 = -4, 2^3^2 = 512)\n"
                "  - +            signs\n"
                "  * / %%          division truncates toward zero\n"
                "  + -\n"
                "  << >>\n"
                "  &              bitwise and, |a| & |b|, negative if both are\n"
                "  |              bitwise or, |a| | |b|, negative if either is\n"
                "  < <= > >= == != giving 1 or 0; they do not chain\n"
                "xor(a, b) is the exclusive or, negative if exactly one is. Nesting is\n"
                "limited to 10000 levels; chains of operators are not.\n\n"
                "Functions:\n",
                kUsage);
    for (const auto& [name, f] : functionTable()) std::printf("  %-16s %s\n", f.usage, f.description);
    std::exit(0);
}

Options parseArguments(int argc, char** argv) {
    Options o;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            help();
        } else if (arg == "--version") {
            std::printf("twcalc, %s\n", TW_getVerA());
            std::exit(0);
        } else if (arg == "--hex") {
            o.output.radix = 16;
        } else if (arg == "--radix") {
            if (++i == argc) usage("--radix needs a number");
            char* end = nullptr;
            const unsigned long radix = std::strtoul(argv[i], &end, 10);
            if (*end != '\0' || radix == 1 || radix > 0xFFFFFFFFul) usage("--radix takes 0 (for 2^32) or 2 to 4294967295");
            o.output.radix = std::uint32_t(radix);
        } else if (arg == "--group") {
            o.output.group = true;
        } else if (arg == "--full") {
            o.output.full = true;
        } else if (arg == "--out") {
            if (++i == argc) usage("--out needs a file name");
            o.outFile = argv[i];
        } else if (arg == "--time") {
            o.time = true;
        } else if (arg.size() > 1 && arg[0] == '-' && arg[1] == '-') {
            usage(("unknown option " + arg).c_str());
        } else {
            if (o.haveExpression) usage("give one expression (quote it)");
            o.expression = arg;
            o.haveExpression = true;
        }
    }
    return o;
}

// Evaluates one line and prints its result; returns false on an error, which
// has been reported on standard error.
bool runLine(Calculator& calc, const std::string& line, const Options& options) {
    try {
        const Statement statement = parseLine(line);
        if (statement.program.empty()) return true;
        if (options.time) {
            TW_resetTimer(0, 0);
            TW_enableTimer(1);
        }
        evaluating = 1;
        Integer value = calc.evaluate(statement);
        evaluating = 0;
        const std::string text = resultText(value, options.output);
        if (options.time) TW_enableTimer(0);
        std::cout << displayText(text, options.output) << '\n';
        if (options.time) std::cout << "time: " << TW_getTimerStrA(3) << '\n';
        std::cout.flush();
        if (!options.outFile.empty()) {
            std::ofstream out(options.outFile);
            out << text << '\n';
            if (!out) {
                std::fprintf(stderr, "error: cannot write %s\n", options.outFile.c_str());
                return false;
            }
        }
        return true;
    } catch (const SyntaxError& e) {
        std::fprintf(stderr, "syntax error at column %zu: %s\n", e.column(), e.what());
    } catch (const EvaluationError& e) {
        std::fprintf(stderr, "error at column %zu: %s\n", e.column(), e.what());
    } catch (const tarnwick::Error& e) {
        std::fprintf(stderr, e.code() == TW_ERR_STOPPED ? "%s\n" : "error: %s\n", e.what());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "error: %s\n", e.what());
    }
    evaluating = 0;
    TW_enableTimer(0);
    TW_setTerminate(0);
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parseArguments(argc, argv);
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);

    Calculator calc;
    if (options.haveExpression) return runLine(calc, options.expression, options) ? 0 : 1;

    const bool interactive = isatty(STDIN_FILENO);
    std::string line;
    bool allGood = true;
    for (;;) {
        if (interactive) std::cout << "> " << std::flush;
        if (!std::getline(std::cin, line)) break;
        if (line == "quit" || line == "exit") break;
        allGood = runLine(calc, line, options) && allGood;
    }
    return allGood ? 0 : 1;
}
