// Version text and the export-table counts.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tarnwick.h"

namespace {

TEST(Version, TextInBothWidths) {
    const char* a = TW_getVerA();
    ASSERT_NE(a, nullptr);
    EXPECT_STREQ(a, "Tarnwick V6.0.0.3");
    EXPECT_EQ(TW_getVerA(), a);  // constant storage, not a buffer refilled per call

    const tw_wchar* w = TW_getVerW();
    ASSERT_NE(w, nullptr);
    std::u16string wide;
    for (; *w != 0; ++w) wide += char16_t(*w);
    EXPECT_EQ(wide, u"Tarnwick V6.0.0.3");
}

TEST(Version, ExportCountsByGroup) {
    EXPECT_EQ(TW_getExportFunNums(0), 0u);
    EXPECT_EQ(TW_getExportFunNums(0xF), 230u);
    const struct {
        std::uint32_t mask, count;
    } groups[] = {{0x1, 25},     {0x2, 90},      {0x4, 91},      {0x8, 24},
                  {0x10000, 32}, {0x20000, 203}, {0x40000, 204}, {0x80000, 28}};
    std::uint32_t all = 0, total = 0;
    for (const auto& g : groups) {
        EXPECT_EQ(TW_getExportFunNums(g.mask), g.count) << std::hex << g.mask;
        all |= g.mask;
        total += g.count;
    }
    EXPECT_EQ(TW_getExportFunNums(all), total);
    // Bits outside the eight groups count nothing.
    EXPECT_EQ(TW_getExportFunNums(~all), 0u);
    EXPECT_EQ(TW_getExportFunNums(0xFFFFFFFFu), total);
    EXPECT_EQ(TW_getExportFunNums(0x10 | 0x2), 90u);
}

}  // namespace
