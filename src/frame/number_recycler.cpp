#include "frame/number_recycler.h"

namespace tw {

namespace {

// Per thread and radix: at most kKept numbers, each of at most kKeptLimbs
// limbs, a few kilobytes in all.
constexpr int kKept = 16;
constexpr std::size_t kKeptLimbs = 64;

template <class R>
struct KeptNumbers {
    SignedNumber<R>* numbers[kKept] = {};
    int count = 0;
    ~KeptNumbers() {
        while (count > 0) delete numbers[--count];
    }
};

template <class R>
KeptNumbers<R>& keptNumbers() noexcept {
    thread_local KeptNumbers<R> kept;
    return kept;
}

}  // namespace

template <class R>
SignedNumber<R>* takeRecycledNumber() noexcept {
    KeptNumbers<R>& kept = keptNumbers<R>();
    return kept.count > 0 ? kept.numbers[--kept.count] : nullptr;
}

template <class R>
void recycleNumber(SignedNumber<R>* x) noexcept {
    KeptNumbers<R>& kept = keptNumbers<R>();
    if (kept.count == kKept || x->record.limbs.capacity() > kKeptLimbs) {
        delete x;
        return;
    }
    // Zeroing a number within its capacity allocates nothing.
    x->setZero();
    kept.numbers[kept.count++] = x;
}

template DecimalNumber* takeRecycledNumber<DecimalRadix>() noexcept;
template BinaryNumber* takeRecycledNumber<BinaryRadix>() noexcept;
template void recycleNumber<DecimalRadix>(DecimalNumber*) noexcept;
template void recycleNumber<BinaryRadix>(BinaryNumber*) noexcept;

}  // namespace tw
