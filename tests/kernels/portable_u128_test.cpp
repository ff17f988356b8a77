// The portable 128-bit integer that 32-bit builds take for u128, against the
// compiler's own 128-bit type: every operator on operands of every width,
// edges included (runs of ones, zero halves, shifts of 0, 63, 64, 127).
#include "support/harness.h"

#include "frame/uint128.h"

namespace twtest {
namespace {

#if defined(__SIZEOF_INT128__)
__extension__ typedef unsigned __int128 Native;
using tw::PortableU128;

PortableU128 portable(Native v) { return (PortableU128(std::uint64_t(v >> 64)) << 64) | std::uint64_t(v); }
Native native(PortableU128 v) { return (Native(std::uint64_t(v >> 64)) << 64) | std::uint64_t(v); }

TEST(PortableU128, MatchesTheBuiltInType) {
    Gen g(128);
    auto operand = [&] {
        Native v = (Native(g.next()) << 64) | g.next();
        switch (g.below(5)) {
            case 0: return v >> g.below(128);                  // any width
            case 1: return Native(g.next());                   // high half zero
            case 2: return ~Native(0) - g.below(3);            // near 2^128
            case 3: return (Native(1) << g.below(128)) - 1;    // a run of ones
            default: return v;
        }
    };
    constexpr unsigned kEdgeShifts[] = {0, 63, 64, 127};
    for (int i = 0; i < 200000; ++i) {
        const Native a = operand(), b = operand();
        const PortableU128 pa = portable(a), pb = portable(b);
        const unsigned s = i < 4 ? kEdgeShifts[i] : unsigned(g.below(128));
        ASSERT_TRUE(native(pa + pb) == a + b && native(pa - pb) == a - b && native(pa * pb) == a * b);
        if (b != 0) ASSERT_TRUE(native(pa / pb) == a / b && native(pa % pb) == a % b) << i;
        ASSERT_TRUE(native(pa << s) == a << s && native(pa >> s) == a >> s);
        ASSERT_TRUE((pa < pb) == (a < b) && (pa == pb) == (a == b) && (pa >= pb) == (a >= b));
        ASSERT_EQ(double(pa), double(a));
        ASSERT_EQ(std::uint32_t(pa), std::uint32_t(a));
        const std::int64_t signedWord = std::int64_t(g.next());
        ASSERT_TRUE(native(PortableU128(signedWord)) == Native(signedWord));  // sign-extended
        PortableU128 ps = pa;
        Native ns = a;
        ASSERT_EQ(tw::addOverflows(ps, pb), tw::addOverflows(ns, b));
        ASSERT_TRUE(native(ps) == ns);
    }
    static_assert(PortableU128(~std::uint64_t(0)) * ~std::uint64_t(0) / ~std::uint64_t(0) == ~std::uint64_t(0));
}
#endif

}  // namespace
}  // namespace twtest
