// The harness's kernel paths and case bookkeeping, compiled once.
#include "support/harness.h"

#include "arith/add_sub.h"
#include "arith/mul_basecase.h"
#include "arith/ntt/transform_dispatch.h"

namespace twtest {

namespace arith = tw::arith;
using arith::AddSubPath;
using arith::BasecasePath;
using arith::ntt::TransformPath;

std::vector<KernelPath> kernelPaths() {
    const KernelPath all[] = {
        {"portable", int(AddSubPath::Portable), int(BasecasePath::Columns), int(TransformPath::Scalar)},
        {"avx2", int(AddSubPath::Portable), int(BasecasePath::Lanes), int(TransformPath::Avx2)},
        {"avx512", int(AddSubPath::Wide), int(BasecasePath::WideLanes), int(TransformPath::Avx512)},
        {"auto", int(AddSubPath::Auto), int(BasecasePath::Auto), int(TransformPath::Auto)},
    };
    std::vector<KernelPath> out;
    for (const KernelPath& p : all)
        if (arith::addSubPathSupported(AddSubPath(p.addSub)) && arith::basecasePathSupported(BasecasePath(p.basecase)) &&
            arith::ntt::transformPathSupported(TransformPath(p.transform)))
            out.push_back(p);
    return out;
}

void pin(const KernelPath& p) {
    arith::forceAddSubPathForTesting(AddSubPath(p.addSub));
    arith::forceBasecasePathForTesting(BasecasePath(p.basecase));
    arith::ntt::forceTransformPathForTesting(TransformPath(p.transform));
}

void unpinAll() { pin(KernelPath{"auto", 0, 0, 0}); }

std::uint64_t caseSeed(std::uint64_t rowSeed, std::size_t index) {
    std::uint64_t z = rowSeed * 0x9E3779B97F4A7C15ull + index + 1;  // splitmix64
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

std::ostream& operator<<(std::ostream& o, const Case& c) {
    return o << c.row << " on path " << c.path << ": " << c.an << " x " << c.bn << " limbs, shapes " << name(c.sa)
             << "/" << name(c.sb) << ", " << name(c.alias) << ", seed " << c.seed;
}

}  // namespace twtest
