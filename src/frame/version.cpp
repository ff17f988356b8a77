#include "frame/version.h"

#include <array>

namespace tw {

namespace {

constexpr char kVersionA[] = "Tarnwick V6.0.0.3";

template <std::size_t N>
constexpr auto widen(const char (&text)[N]) {
    std::array<tw_wchar, N> wide{};
    for (std::size_t i = 0; i < N; ++i) wide[i] = tw_wchar(text[i]);
    return wide;
}
constexpr auto kVersionW = widen(kVersionA);

struct FunctionGroup {
    std::uint32_t bit;
    std::uint32_t count;
};
// The named functions (TW_ HI_ HX_ RC_) and the class interface's members.
constexpr FunctionGroup kGroups[] = {
    {0x1, 25},      {0x2, 90},      {0x4, 91},      {0x8, 24},
    {0x10000, 32},  {0x20000, 203}, {0x40000, 204}, {0x80000, 28},
};

}  // namespace

const char* versionTextA() { return kVersionA; }
const tw_wchar* versionTextW() { return kVersionW.data(); }

std::uint32_t exportedFunctionCount(std::uint32_t mask) {
    std::uint32_t total = 0;
    for (const FunctionGroup& g : kGroups)
        if (mask & g.bit) total += g.count;
    return total;
}

}  // namespace tw
