// Exported functions of the RC_ family: the radix converter.
#include "api/call_frame.h"
#include "frame/machine_int.h"
#include "radix/radix_converter.h"
#include "text/wide_units.h"

namespace {

using tw::RadixConverter;

// The converter's value through the machine-integer readers of the numbers:
// out-of-range values read as those readers read them (0).
template <class Read>
auto readMachine(RC_handle h, Read read) {
    return tw::frameQuery(decltype(read(tw::BinaryNumber{}))(0), [read](RadixConverter& c) {
        const tw::MachineValue v = tw::machineValue(c);
        tw::BinaryNumber t;
        if (v.fits) tw::setMagnitude64(t, v.sign < 0 ? -1 : 1, v.magnitude);
        return read(t);
    }, h);
}

}  // namespace

extern "C" {

// ---- lifecycle ----
TW_API RC_handle TW_CALL RC_new(uint32_t radix) { return tw::createConverter(radix); }
TW_API RC_handle TW_CALL RC_new_strA(uint32_t radix, const char *text) {
    RC_handle h = tw::createConverter(radix);
    if (h == nullptr) return nullptr;
    return tw::frameUpdate([text](RadixConverter& c) { tw::setFromText(c, text); }, h);
}
TW_API RC_handle TW_CALL RC_new_strW(uint32_t radix, const tw_wchar *text) {
    RC_handle h = tw::createConverter(radix);
    if (h == nullptr) return nullptr;
    const char16_t *units = tw::text::fromWide(text);
    return tw::frameUpdate([units](RadixConverter& c) { tw::setFromText(c, units); }, h);
}
TW_API uint32_t TW_CALL RC_delete(RC_handle h) { return tw::deleteConverter(h); }
TW_API int32_t TW_CALL RC_getCount(void) { return tw::converterRegistry().count(); }

// ---- the fields ----
TW_API uint32_t TW_CALL RC_getRadix(RC_handle h) {
    return tw::frameQuery(0u, [](RadixConverter& c) { return c.radix; }, h);
}
TW_API int32_t TW_CALL RC_getSign(RC_handle h) {
    return tw::frameQuery(0, [](RadixConverter& c) { return tw::readSign(c); }, h);
}
TW_API DigitVectorView *TW_CALL RC_getVector(RC_handle h, DigitVectorView *view) {
    return tw::frameQuery<DigitVectorView *>(nullptr, [view](RadixConverter& c) {
        if (view == nullptr) return view;
        view->data = c.digitList->empty() ? nullptr : c.digitList->data();
        view->size = uint32_t(c.digitList->size());
        return view;
    }, h);
}
// A null digit pointer with a non-zero count is refused like a null array
// elsewhere: -4, no change.
TW_API int32_t TW_CALL RC_resetVector(RC_handle h, const uint32_t *digits, uint32_t count) {
    return tw::frameQuery(0, [digits, count](RadixConverter& c) {
        if (digits == nullptr && count != 0) {
            tw::setLastError(tw::kErrHandle);
            return 0;
        }
        return tw::resetDigits(c, digits, count);
    }, h);
}
TW_API void TW_CALL RC_clearVector(RC_handle h) {
    tw::frameQuery(0, [](RadixConverter& c) {
        tw::clearConverter(c);
        return 0;
    }, h);
}
TW_API int32_t TW_CALL RC_resetRadix(RC_handle h, int32_t radix) {
    return tw::frameQuery(0, [radix](RadixConverter& c) { return int32_t(tw::resetRadix(c, uint32_t(radix))); }, h);
}
TW_API int32_t TW_CALL RC_resetSign(RC_handle h, int32_t sign) {
    return tw::frameQuery(0, [sign](RadixConverter& c) { return c.sign = sign; }, h);
}

// ---- conversion ----
TW_API RC_handle TW_CALL RC_convert2Radix(RC_handle h, uint32_t newRadix) {
    bool refused = false;
    const RC_handle r = tw::frameUpdate([newRadix, &refused](RadixConverter& c) { refused = !tw::convertToRadix(c, newRadix); }, h);
    return refused ? nullptr : r;
}
TW_API RC_handle TW_CALL RC_set_hi(RC_handle h, HI_handle a) {
    return tw::frameUpdate([](RadixConverter& c, const tw::DecimalNumber& x) { tw::converterFromNumber(c, x); }, h, a);
}
TW_API RC_handle TW_CALL RC_set_hx(RC_handle h, HX_handle a) {
    return tw::frameUpdate([](RadixConverter& c, const tw::BinaryNumber& x) { tw::converterFromNumber(c, x); }, h, a);
}
TW_API RC_handle TW_CALL RC_set_rc(RC_handle h, RC_handle a) {
    return tw::frameUpdate([](RadixConverter& c, RadixConverter& source) { tw::setFromConverter(c, source); }, h, a);
}

// ---- machine integers ----
TW_API RC_handle TW_CALL RC_set_s32(RC_handle h, int32_t v) { return RC_set_s64(h, v); }
TW_API RC_handle TW_CALL RC_set_u32(RC_handle h, uint32_t v) { return RC_set_u64(h, v); }
TW_API RC_handle TW_CALL RC_set_s64(RC_handle h, int64_t v) {
    const uint64_t magnitude = v < 0 ? 0 - uint64_t(v) : uint64_t(v);
    return tw::frameUpdate([v, magnitude](RadixConverter& c) { tw::setFromMachineValue(c, v < 0 ? -1 : 1, magnitude); }, h);
}
TW_API RC_handle TW_CALL RC_set_u64(RC_handle h, uint64_t v) {
    return tw::frameUpdate([v](RadixConverter& c) { tw::setFromMachineValue(c, 1, v); }, h);
}
TW_API int32_t TW_CALL RC_get_s32(RC_handle h) {
    return readMachine(h, [](const tw::BinaryNumber& t) { return tw::getS32(t); });
}
TW_API uint32_t TW_CALL RC_get_u32(RC_handle h) {
    return readMachine(h, [](const tw::BinaryNumber& t) { return tw::getU32(t); });
}
TW_API int64_t TW_CALL RC_get_s64(RC_handle h) {
    return readMachine(h, [](const tw::BinaryNumber& t) { return tw::getS64(t); });
}
TW_API uint64_t TW_CALL RC_get_u64(RC_handle h) {
    return readMachine(h, [](const tw::BinaryNumber& t) { return tw::getU64(t); });
}
TW_API uint64_t TW_CALL RC_sumOfDigits(RC_handle h) {
    return tw::frameQuery(uint64_t(0), [](RadixConverter& c) { return tw::sumOfDigits(c); }, h);
}

}  // extern "C"
