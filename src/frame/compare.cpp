#include "frame/compare.h"

#include <algorithm>

namespace tw {

int compareMagnitude(const NumberRecord& a, const NumberRecord& b) {
    if (&a == &b) return 0;
    if (a.topIndex != b.topIndex) return a.topIndex < b.topIndex ? -1 : 1;
    const std::uint32_t stop = std::max(a.lowIndex, b.lowIndex);
    for (std::uint32_t i = a.topIndex + 1; i-- > stop;) {
        if (a.digits[i] != b.digits[i]) return a.digits[i] < b.digits[i] ? -1 : 1;
    }
    if (a.lowIndex == b.lowIndex) return 0;
    return a.lowIndex < b.lowIndex ? 1 : -1;
}

}  // namespace tw
