#include "frame/kernel_paths.h"

namespace tw {

namespace {

bool probe(KernelPath path) {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_cpu_init();
    switch (path) {
        case KernelPath::Portable: return true;
        case KernelPath::Avx2: return __builtin_cpu_supports("avx2");
        case KernelPath::Avx512: return __builtin_cpu_supports("avx512f");
        case KernelPath::Ifma: return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512ifma");
    }
    return false;
#else
    return path == KernelPath::Portable;
#endif
}

KernelPath probeWidest() {
    for (KernelPath p : {KernelPath::Ifma, KernelPath::Avx512, KernelPath::Avx2})
        if (probe(p)) return p;
    return KernelPath::Portable;
}

constexpr std::uint8_t kForcedBit = 0x80;

}  // namespace

namespace detail {
constinit std::atomic<std::uint8_t> kernelChoiceBits{std::uint8_t(KernelPath::Portable)};
}  // namespace detail

KernelPath widestKernelPath() {
    static const KernelPath widest = probeWidest();
    return widest;
}

bool processorRuns(KernelPath path) { return path <= widestKernelPath(); }

bool forceKernelPathForTesting(KernelPath path) {
    if (!processorRuns(path)) return false;
    detail::kernelChoiceBits.store(std::uint8_t(path) | kForcedBit, std::memory_order_relaxed);
    return true;
}

void resetKernelPath() {
    detail::kernelChoiceBits.store(std::uint8_t(widestKernelPath()), std::memory_order_relaxed);
}

}  // namespace tw
