// The text buffers' lifetime and the failure answers of the text functions:
// unknown handles, radix 1, the terminate flag, a buffer that cannot grow.
#include <gtest/gtest.h>

#include <string>

#include "text/text_buffer.h"
#include "text/text_support.h"

namespace {

using namespace twtest;

template <class F>
class TextBuffers : public ErrorStateGuard {};
TYPED_TEST_SUITE(TextBuffers, BothTextFamilies);

TYPED_TEST(TextBuffers, EachWidthKeepsItsTextUntilItsNextCall) {
    using F = TypeParam;
    Number<F> x(-123456789);
    const char* a = F::getStrRadixA(x, 7, nullptr, 0, 0, nullptr);
    const std::string first(a);
    // Calls of the other width leave the A text alone, however long their text.
    F::getStrRadixW(x, 2, nullptr, TEXT_GROUP, 1, nullptr);
    F::getStrW(x, TEXT_GROUP, nullptr);
    EXPECT_EQ(std::string(a), first);
    const tw_wchar* w = F::getHexStrW(x, 0, nullptr);
    const std::u16string wide(reinterpret_cast<const char16_t*>(w));
    F::getStrRadixA(x, 3, nullptr, TEXT_GROUP, 1, nullptr);
    EXPECT_TRUE(std::u16string(reinterpret_cast<const char16_t*>(w)) == wide);
    // The next call of the same width replaces the text.
    const char* again = F::getStrRadixA(x, 7, nullptr, 0, 0, nullptr);
    EXPECT_EQ(std::string(again), first);
}

TYPED_TEST(TextBuffers, FreeAndChangeDropBothBuffers) {
    using F = TypeParam;
    Number<F> x(42);
    F::getStrA(x, 0, nullptr);
    F::getStrW(x, 0, nullptr);
    EXPECT_NE(x.object().rec().textBufferA, nullptr);
    EXPECT_NE(x.object().rec().textBufferW, nullptr);
    F::freeStrBuffer(x);
    EXPECT_EQ(x.object().rec().textBufferA, nullptr);
    EXPECT_EQ(x.object().rec().textBufferW, nullptr);
    F::getStrA(x, 0, nullptr);
    F::getHexStrW(x, 0, nullptr);
    F::set_strA(x, "17");
    EXPECT_EQ(x.object().rec().textBufferA, nullptr);
    EXPECT_EQ(x.object().rec().textBufferW, nullptr);
    EXPECT_EQ(strOf<F>(x, 0), F::Radix::isBinary ? "0x11" : "17");
    EXPECT_EQ(TW_getLastError(), 0);
}

TYPED_TEST(TextBuffers, OutParametersMayBeNull) {
    using F = TypeParam;
    Number<F> x(-99);
    EXPECT_STREQ(F::getStrRadixA(x, 10, nullptr, 0, 0, nullptr), "-99");
    EXPECT_STREQ(F::getStrRadixA(x, 5, nullptr, 0, 0, nullptr), "-344");
    EXPECT_STREQ(F::getStrRadixA(x, 100, nullptr, 0, 0, nullptr), "-[99]");
    EXPECT_NE(F::getStrW(x, 0, nullptr), nullptr);
    EXPECT_NE(F::getHexStrA(x, 0, nullptr), nullptr);
}

TYPED_TEST(TextBuffers, UnknownHandles) {
    using F = TypeParam;
    typename F::Handle deleted = F::newNumber();
    F::deleteNumber(deleted);
    for (const typename F::Handle h : {typename F::Handle(nullptr), deleted}) {
        std::uint32_t count = 99;
        EXPECT_EQ(strOf<F>(h, 0), std::nullopt);
        EXPECT_EQ(TW_getLastError(), -4);
        TW_setTerminate(0);
        EXPECT_EQ(hexStrOf<F>(h, 0), std::nullopt);
        EXPECT_EQ(radixStrOf<F>(h, 7, 0, 0, &count), std::nullopt);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(TW_getLastError(), -4);
        TW_setTerminate(0);
        EXPECT_EQ(F::set_strA(h, "5"), nullptr);
        EXPECT_EQ(TW_getLastError(), -4);
        TW_setTerminate(0);
        EXPECT_EQ(F::setHexStrW(h, nullptr), nullptr);
        EXPECT_EQ(TW_getLastError(), -4);
        TW_setTerminate(0);
        F::freeStrBuffer(h);
        EXPECT_EQ(TW_getLastError(), -4);
        TW_setTerminate(0);
    }
}

TYPED_TEST(TextBuffers, RadixOneIsRefused) {
    using F = TypeParam;
    Number<F> x(12345);
    std::uint32_t count = 99;
    EXPECT_EQ(radixStrOf<F>(x, 1, TEXT_GROUP, 3, &count), std::nullopt);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(TW_getLastError(), -7);
}

TYPED_TEST(TextBuffers, RaisedTerminateFlagGivesNoText) {
    using F = TypeParam;
    Number<F> x(-5000);
    const char* before = F::getStrA(x, 0, nullptr);
    ASSERT_NE(before, nullptr);
    TW_setTerminate(1);
    std::uint32_t count = 99;
    EXPECT_EQ(strOf<F>(x, 0), std::nullopt);
    EXPECT_EQ(hexStrOf<F>(x, TEXT_GROUP), std::nullopt);
    for (const std::uint32_t radix : {0u, 7u, 10u, 16u, 1000u}) {
        EXPECT_EQ(radixStrOf<F>(x, radix, 0, 0, &count), std::nullopt);
        EXPECT_EQ(count, 0u);
    }
    EXPECT_TRUE(x.object().rec().textBufferA->empty());
    TW_setTerminate(0);
    EXPECT_STREQ(F::getStrRadixA(x, 10, nullptr, 0, 0, nullptr), "-5000");
}

TYPED_TEST(TextBuffers, BufferThatCannotGrowRecordsTooLarge) {
    using F = TypeParam;
    Number<F> x;
    F::set_strA(x, "123456789012345678901234567890");
    tw::text::setTextAllocationCeilingForTesting(20);
    std::uint32_t count = 99;
    EXPECT_EQ(strOf<F>(x, 0), std::nullopt);
    EXPECT_EQ(TW_getLastError(), -3);
    EXPECT_TRUE(x.object().rec().textBufferA->empty());
    TW_setTerminate(0);
    EXPECT_EQ(radixStrOf<F>(x, 3, 0, 0, &count), std::nullopt);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(TW_getLastError(), -3);
    TW_setTerminate(0);
    EXPECT_EQ(radixStrOf<F>(x, 1000, TEXT_GROUP, 0, &count), std::nullopt);
    EXPECT_EQ(TW_getLastError(), -3);
    tw::text::setTextAllocationCeilingForTesting(SIZE_MAX);
    TW_setTerminate(0);
    // The number itself is untouched.
    EXPECT_EQ(radixStrOf<F>(x, 10, 0, 0, &count), "123456789012345678901234567890");
}

// A conversion between the limb radices that runs out of storage gives no
// text (not the text of a zero) and reads a text as zero.
TYPED_TEST(TextBuffers, ConversionThatRunsOutOfStorage) {
    using F = TypeParam;
    const bool binary = F::Radix::isBinary;
    Number<F> x;
    const std::string digits(600, '7');
    F::set_strA(x, ((binary ? "0x" : "") + digits).c_str());
    tw::setLimbAllocationCeilingForTesting(20);
    std::uint32_t count = 99;
    if (binary)
        EXPECT_EQ(radixStrOf<F>(x, 10, 0, 0, &count), std::nullopt);
    else
        EXPECT_EQ(hexStrOf<F>(x, 0), std::nullopt);
    EXPECT_EQ(count, binary ? 0u : 99u);
    EXPECT_EQ(TW_getLastError(), -3);
    TW_setTerminate(0);
    Number<F> y(5);
    F::set_strA(y, ((binary ? "" : "0x") + digits).c_str());
    EXPECT_EQ(TW_getLastError(), -3);
    EXPECT_EQ(F::isZero(y), 1u);
    EXPECT_TRUE(recordIsNormal(y.object()));
    tw::setLimbAllocationCeilingForTesting(SIZE_MAX);
    TW_setTerminate(0);
}

}  // namespace
