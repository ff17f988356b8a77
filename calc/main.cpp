// twcalc: a calculator for integers of unbounded size.
//
//   twcalc [options] 'EXPR'    evaluate and print
//   twcalc [options]           read expressions line by line from standard input
//
// Options: --hex, --radix N, --group, --full, --out FILE, --time, --help (-h),
// --version.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "calculator.h"
#include "chunked_output.h"
#include "interrupt.h"
#include "line_reader.h"

namespace {

using namespace twcalc;

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
                "Evaluates EXPR, or else reads one expression a line from standard input.\n"
                "quit, exit, Ctrl-D or the end of the input leave. Ctrl-C stops a long\n"
                "evaluation or a long output and keeps the variables; at the prompt it\n"
                "clears the line. %s\n\n"
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
                kUsage,
                lineEditing() ? "On a terminal, lines are edited (emacs keys, ~/.editrc) and the\n"
                                "up and down arrows recall earlier lines."
                              : "This build reads lines without editing (no libedit).");
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

// Writes a result, stopping at Ctrl-C; false when stopped or failed, which
// has been reported.
bool writeResult(int fd, const std::string& text, const char* where) {
    switch (writeChunked(fd, text)) {
        case WriteResult::Done:
            return true;
        case WriteResult::Interrupted:
            if (fd == STDOUT_FILENO) (void)::write(fd, "\n", 1);  // end the cut line
            std::fprintf(stderr, "interrupted\n");
            return false;
        case WriteResult::Failed:
            break;
    }
    std::fprintf(stderr, "error: cannot write %s\n", where);
    return false;
}

bool writeResultFile(const std::string& path, const std::string& text) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (fd < 0) {
        std::fprintf(stderr, "error: cannot write %s\n", path.c_str());
        return false;
    }
    const bool written = writeResult(fd, text + '\n', path.c_str());
    return ::close(fd) == 0 && written;
}

// Evaluates one line and prints its result; returns false on an error, which
// has been reported on standard error.  Ctrl-C stops the evaluation, the
// conversion to text and the writing alike.
bool evaluateLine(Calculator& calc, const std::string& line, const Options& options) {
    try {
        const Statement statement = parseLine(line);
        if (statement.program.empty()) return true;
        if (options.time) {
            TW_resetTimer(0, 0);
            TW_enableTimer(1);
        }
        const Integer value = calc.evaluate(statement);
        const std::string text = resultText(value, options.output);
        if (options.time) TW_enableTimer(0);
        std::string shown = displayText(text, options.output) + '\n';
        if (options.time) shown += std::string("time: ") + TW_getTimerStrA(3) + '\n';
        if (!writeResult(STDOUT_FILENO, shown, "the result")) return false;
        return options.outFile.empty() || writeResultFile(options.outFile, text);
    } catch (const SyntaxError& e) {
        std::fprintf(stderr, "syntax error at column %zu: %s\n", e.column(), e.what());
    } catch (const EvaluationError& e) {
        std::fprintf(stderr, "error at column %zu: %s\n", e.column(), e.what());
    } catch (const tarnwick::Error& e) {
        // On a terminal the "^C" echo is still on the line.
        const char* format = e.code() != TW_ERR_STOPPED ? "error: %s\n" : isatty(STDERR_FILENO) ? "\n%s\n" : "%s\n";
        std::fprintf(stderr, format, e.what());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "error: %s\n", e.what());
    }
    TW_enableTimer(0);
    return false;
}

bool runLine(Calculator& calc, const std::string& line, const Options& options) {
    beginWork();
    const bool good = evaluateLine(calc, line, options);
    endWork();
    clearInterrupt();
    return good;
}

bool isLeaveCommand(const std::string& line) {
    const std::size_t first = line.find_first_not_of(" \t");
    const std::size_t last = line.find_last_not_of(" \t");
    if (first == std::string::npos) return false;
    const std::string word = line.substr(first, last + 1 - first);
    return word == "quit" || word == "exit";
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parseArguments(argc, argv);
    const bool interactive = !options.haveExpression && isatty(STDIN_FILENO);
    installInterruptHandler(interactive);

    Calculator calc;
    if (options.haveExpression) return runLine(calc, options.expression, options) ? 0 : 1;

    const std::unique_ptr<LineReader> reader = makeLineReader(interactive);
    std::string line;
    bool allGood = true;
    for (;;) {
        const LineReader::Result got = reader->read(line);
        if (got == LineReader::Result::End) {
            if (interactive) (void)::write(STDOUT_FILENO, "\n", 1);  // leave the prompt's line
            break;
        }
        if (got == LineReader::Result::Interrupted) continue;
        if (isLeaveCommand(line)) break;
        allGood = runLine(calc, line, options) && allGood;
    }
    return allGood ? 0 : 1;
}
