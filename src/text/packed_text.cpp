#include "text/packed_text.h"

#include <string>

#include "frame/error_state.h"
#include "text/text_buffer.h"

namespace tw::text {

namespace {
template <class Char>
constexpr unsigned kBitsPerChar = 8 * sizeof(Char);
constexpr unsigned kLimbBits = BinaryRadix::bitsPerLimb;
}  // namespace

template <class Char>
const Char* packedText(BinaryNumber& x) {
    if (terminateRequested() || x.isZero()) return nullptr;
    constexpr unsigned width = kBitsPerChar<Char>;
    const NumberRecord& value = x.rec();
    const std::size_t bits = std::size_t(kLimbBits) * value.topIndex + bitLength32(value.digits[value.topIndex]);
    const std::size_t count = (bits + width - 1) / width;

    Char* const text = sizeTextBuffer<Char>(x.rec(), count + 1);
    Char* at = text + count;
    *at = Char(0);
    // Regroup the 28-bit limbs into characters, least significant last.
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::uint32_t i = 0; i <= value.topIndex; ++i) {
        pending |= std::uint64_t(value.digits[i]) << held;
        held += kLimbBits;
        while (held >= width && at != text) {
            *--at = Char(pending);
            pending >>= width;
            held -= width;
        }
    }
    if (at != text) *--at = Char(pending);
    return text;
}

template <class Char>
void setFromPackedText(BinaryNumber& x, const Char* text) {
    const DetachedTextBuffers ownText(x.rec());
    x.setZero();
    if (text == nullptr || terminateRequested()) return;
    constexpr unsigned width = kBitsPerChar<Char>;
    const std::size_t count = std::char_traits<Char>::length(text);
    if (count == 0) return;
    const std::size_t limbCount = (count * width + kLimbBits - 1) / kLimbBits;
    NumberRecord& rec = x.rec();
    resizeStorage(rec, std::uint32_t(limbCount), true);
    if (rec.allocated() < limbCount) return;  // -3 recorded, the number is zero
    Limb* limb = rec.digits;
    std::uint64_t pending = 0;
    unsigned held = 0;
    for (std::size_t i = count; i-- > 0;) {
        pending |= std::uint64_t(static_cast<std::make_unsigned_t<Char>>(text[i])) << held;
        held += width;
        if (held >= kLimbBits) {
            *limb++ = Limb(pending & BinaryRadix::mask);
            pending >>= kLimbBits;
            held -= kLimbBits;
        }
    }
    if (held > 0) *limb++ = Limb(pending);
    normalizeIndices(rec, std::uint32_t(limb - rec.digits));
    x.sign = 1;
    x.normalizeSign();
}

template const char* packedText<char>(BinaryNumber&);
template const char16_t* packedText<char16_t>(BinaryNumber&);
template void setFromPackedText<char>(BinaryNumber&, const char*);
template void setFromPackedText<char16_t>(BinaryNumber&, const char16_t*);

}  // namespace tw::text
