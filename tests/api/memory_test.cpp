// Results that cannot fit, asked for in a child process whose address space
// is capped: each gives -3 and zero whichever allocation fails first (limbs,
// a product's scratch, a text buffer, a digit vector), and the library
// computes correctly once the error is cleared.  The sanitizers' shadow
// memory needs terabytes of address space, so under them the test is skipped.
#include "support/harness.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TW_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TW_SANITIZED 1
#endif
#endif

namespace twtest {
namespace {

std::size_t addressSpaceInUse() {
    std::ifstream statm("/proc/self/statm");
    std::size_t pages = 0;
    statm >> pages;
    return pages * std::size_t(sysconf(_SC_PAGESIZE));
}

// Runs in the child: prints each failed check and returns their count.
int hugeRequestsUnderCap() {
    int failed = 0;
    auto expect = [&](bool ok, const char* what) {
        if (!ok) ++failed, std::fprintf(stderr, "capped address space: %s\n", what);
    };
    auto tooLarge = [&](bool zero, const char* what) {
        expect(TW_getLastError() == TW_ERR_TOO_LARGE && zero, what);
        TW_setTerminate(0);
    };
    HX_handle x = HX_new(), r = HX_new();
    HI_handle d = HI_new(), e = HI_new();
    RC_handle rc = RC_new(2);
    std::uint32_t length = 7;
    // 2^(10^9) - 1 (143 MB of limbs) and 10^(9 * 2^25) - 1 (134 MB), then
    // 160 MB more address space at most: a product, a power, a longer shift,
    // the text or the digits of either cannot have their storage.
    HX_set_u32(x, 1), HX_bitLShift(x, 1000000000), HX_sub_u32(x, x, 1);
    HI_set_u32(d, 1), HI_decLShift(d, 9u << 25), HI_sub_u32(d, d, 1);
    expect(TW_getLastError() == 0 && HX_getBits(x) == 1000000000 && HI_getDigits(d) == 9u << 25, "the operands");
    const rlimit cap{addressSpaceInUse() + (std::size_t(160) << 20), RLIM_INFINITY};
    if (setrlimit(RLIMIT_AS, &cap) != 0) return 100;

    HX_mul(r, x, x), tooLarge(HX_isZero(r), "HX_mul");
    HX_pow(r, x, 3), tooLarge(HX_isZero(r), "HX_pow");
    expect(!HX_getStrRadixA(x, 2, nullptr, 0, 0, &length) && length == 0, "HX_getStrRadixA gives no text");
    tooLarge(true, "HX_getStrRadixA");
    RC_set_hx(rc, x), tooLarge(RC_getSign(rc) == 0 && RC_get_u32(rc) == 0, "RC_set_hx");
    HX_bitLShift(x, 250000000), tooLarge(HX_isZero(x), "HX_bitLShift");
    HI_mul(e, d, d), tooLarge(HI_isZero(e), "HI_mul");
    expect(!HI_getStrA(d, 0, &length) && length == 0, "HI_getStrA gives no text");
    tooLarge(true, "HI_getStrA");
    HI_decLShift(d, 9u << 25), tooLarge(HI_isZero(d), "HI_decLShift");

    // And then everything works again.
    Mpz want;
    mpz_ui_pow_ui(want, 3, 50000);
    HX_set_u32(x, 3), HX_pow(r, x, 50000), HX_mul(r, r, r);
    HI_set_hx(d, r), HI_set_strA(e, HI_getStrA(d, 0, nullptr));
    mpz_mul(want, want, want);
    expect(TW_getLastError() == 0 && Mpz(HI_getStrA(e, 0, nullptr)) == want, "computing after the failures");
    return failed;
}

TEST(OutOfMemory, HugeResultsGiveTooLargeAndLeaveTheLibraryWorking) {
#ifdef TW_SANITIZED
    GTEST_SKIP() << "address-space limits do not work under the sanitizers";
#endif
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(hugeRequestsUnderCap());
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "the child ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "failed checks (100: no cap)";
}

}  // namespace
}  // namespace twtest
