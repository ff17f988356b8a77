// The twcalc program end to end: one-shot answers, output options, exit codes
// and standard error, the line-by-line mode, and Ctrl-C stopping a long
// evaluation.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>

namespace {

struct ProgramRun {
    int exitCode;
    std::string out;
    std::string err;
};

std::string slurp(const std::string& path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Runs twcalc with a shell-quoted argument string and optional standard input.
ProgramRun twcalc(const std::string& args, const std::string& input = "") {
    // Names of their own: ctest runs the tests of this file in parallel.
    static int runs = 0;
    const std::string dir = ::testing::TempDir() + "twcalc_" + std::to_string(getpid()) + "_" + std::to_string(runs++);
    const std::string in = dir + "_in", out = dir + "_out", err = dir + "_err";
    std::ofstream(in) << input;
    const std::string command = std::string(TWCALC_PATH) + " " + args + " < " + in + " > " + out + " 2> " + err;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(out), slurp(err)};
}

TEST(TwcalcProgram, OneShotAnswers) {
    EXPECT_EQ(twcalc("'2^127-1'").out, "170141183460469231731687303715884105727\n");
    EXPECT_EQ(twcalc("--hex '255*2^100'").out, "0xFF0000000000000000000000000\n");
    EXPECT_EQ(twcalc("'(3^1000) % 10^20'").out, "73102768902855220001\n");
    EXPECT_EQ(twcalc("--group '-1234567'").out, "-1,234,567\n");
    EXPECT_EQ(twcalc("--radix 36 '35'").out, "Z\n");
}

TEST(TwcalcProgram, LongResultsAreShortenedUnlessAskedForInFull) {
    const ProgramRun shortened = twcalc("'10^300'");
    EXPECT_EQ(shortened.out, "1" + std::string(49, '0') + "..." + std::string(50, '0') +
                                 " (301 digits) (--full to print all)\n");
    EXPECT_EQ(twcalc("--full '10^300'").out, "1" + std::string(300, '0') + "\n");
    const std::string file = ::testing::TempDir() + "twcalc_full_" + std::to_string(getpid());
    const ProgramRun toFile = twcalc("--out " + file + " '7^1000'");
    EXPECT_EQ(toFile.exitCode, 0);
    EXPECT_EQ(slurp(file).size(), 846u + 1);  // 7^1000 has 846 digits
}

TEST(TwcalcProgram, ErrorsGoToStandardErrorWithNonZeroExit) {
    ProgramRun r = twcalc("'1/0'");
    EXPECT_NE(r.exitCode, 0);
    EXPECT_EQ(r.err, "error: division by zero\n");
    EXPECT_EQ(r.out, "");
    r = twcalc("'2 +* 3'");
    EXPECT_NE(r.exitCode, 0);
    EXPECT_EQ(r.err, "syntax error at column 4: unexpected '*'\n");
    r = twcalc("'99999999999^999999999'");
    EXPECT_NE(r.exitCode, 0);
    EXPECT_EQ(r.err, "error: result too large\n");
    EXPECT_EQ(twcalc("--radix 1 '5'").exitCode, 2);
}

TEST(TwcalcProgram, TimeUsesTheLibraryStopwatch) {
    const ProgramRun r = twcalc("--time '3^1000 % 7'");
    EXPECT_EQ(r.exitCode, 0);
    ASSERT_NE(r.out.find("\ntime: "), std::string::npos);
    EXPECT_EQ(r.out.substr(r.out.size() - 3), " s\n");
}

TEST(TwcalcProgram, ReadsLinesAndGoesOnAfterAnError) {
    const ProgramRun r = twcalc("", "x = 6\n\nx * 7\n1 / 0\nans + 1\n");
    EXPECT_EQ(r.out, "6\n42\n43\n");
    EXPECT_EQ(r.err, "error: division by zero\n");
    EXPECT_EQ(r.exitCode, 1);
}

// Ctrl-C during a long evaluation stops it through the terminate flag; the
// prompt reports "interrupted" and the next line works.
TEST(TwcalcProgram, InterruptStopsALongEvaluation) {
    int toChild[2], fromChild[2], errFromChild[2];
    ASSERT_EQ(pipe(toChild), 0);
    ASSERT_EQ(pipe(fromChild), 0);
    ASSERT_EQ(pipe(errFromChild), 0);
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        dup2(toChild[0], 0);
        dup2(fromChild[1], 1);
        dup2(errFromChild[1], 2);
        for (int fd : {toChild[0], toChild[1], fromChild[0], fromChild[1], errFromChild[0], errFromChild[1]}) close(fd);
        execl(TWCALC_PATH, TWCALC_PATH, static_cast<char*>(nullptr));
        _exit(127);
    }
    close(toChild[0]);
    close(fromChild[1]);
    close(errFromChild[1]);
    // A power of a hundred million digits takes far longer than the test waits.
    const std::string lines = "3^200000000\n";
    ASSERT_EQ(write(toChild[1], lines.data(), lines.size()), ssize_t(lines.size()));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    kill(pid, SIGINT);
    const std::string next = "6*7\n";
    ASSERT_EQ(write(toChild[1], next.data(), next.size()), ssize_t(next.size()));
    close(toChild[1]);

    const auto start = std::chrono::steady_clock::now();
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() - start > std::chrono::seconds(60)) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            FAIL() << "twcalc did not stop after SIGINT";
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    auto drain = [](int fd) {
        std::string s;
        char buf[256];
        for (ssize_t n; (n = read(fd, buf, sizeof buf)) > 0;) s.append(buf, std::size_t(n));
        close(fd);
        return s;
    };
    EXPECT_EQ(drain(fromChild[0]), "42\n");
    EXPECT_EQ(drain(errFromChild[0]), "interrupted\n");
    ASSERT_TRUE(WIFEXITED(status));
}

}  // namespace
