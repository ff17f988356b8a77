#include "arith/kernels/ntt/roots.h"

#include "arith/kernels/ntt/roots_of_unity.h"
#include "arith/kernels/ntt/transform_lengths.h"

namespace tw::arith::ntt {

namespace {

// Each level a chain of Montgomery forms, so that neither the powers nor their
// Shoup companions need a division (prime_field.h).
void fillLevels(Limb* roots, Limb* companions, const PrimeConstants& c, bool inverse) {
    roots[0] = companions[0] = 0;
    for (std::size_t h = 1; h < kLeafLength; h *= 2) {
        const std::uint32_t w = toMontgomery(rootOfUnity(c.index, 2 * h, inverse), c);
        std::uint32_t power = c.montR;
        for (std::size_t j = 0; j < h; ++j) {
            roots[h + j] = fromMontgomery(power, c);
            companions[h + j] = shoupCompanionOfMontgomery(power, c);
            power = montMul(power, w, c);
        }
    }
}

// Built in place: the tables are too large for a stack temporary.
struct AllLeafRootTables {
    LeafRootTables prime[kPrimeCount];
    AllLeafRootTables() {
        for (std::size_t i = 0; i < kPrimeCount; ++i) {
            const PrimeConstants c = primeConstants(i);
            fillLevels(prime[i].forwardRoots, prime[i].forwardCompanions, c, false);
            fillLevels(prime[i].inverseRoots, prime[i].inverseCompanions, c, true);
        }
    }
};

}  // namespace

const LeafRootTables& leafRootTables(std::size_t primeIndex) {
    static const AllLeafRootTables tables;
    return tables.prime[primeIndex];
}

std::size_t topRootWords(std::size_t blockLength) {
    return blockLength > kLeafLength ? 2 * topLevelOffset(blockLength) : 0;
}

TopRootTable buildTopRootTable(const TransformKernels& kernels, std::size_t primeIndex, std::size_t blockLength,
                               Limb* words) {
    if (blockLength <= kLeafLength) return {};
    kernels.buildTopRoots(words, words + topLevelOffset(blockLength), blockLength, primeConstants(primeIndex));
    return {words, blockLength};
}

TransformPlan makePlan(std::size_t primeIndex, std::size_t length, const TopRootTable& top) {
    TransformPlan plan;
    plan.length = length;
    plan.blockLength = transformBlockLength(length);
    plan.primeIndex = primeIndex;
    plan.prime = primeConstants(primeIndex);
    const LeafRootTables& leaf = leafRootTables(primeIndex);
    const Limb* topCompanions = top.words ? top.words + topLevelOffset(top.blockLength) : nullptr;
    plan.forward = {leaf.forwardRoots, leaf.forwardCompanions, top.words, topCompanions};
    plan.inverse = {leaf.inverseRoots, leaf.inverseCompanions, top.words, topCompanions};
    if (plan.hasRadix3()) {
        // w^M for the N-th root w = g^((p-1)/N) is g^((p-1)/3), the table's cube root.
        const std::uint32_t p = plan.prime.p;
        plan.root = rootOfUnity(primeIndex, length);
        plan.rootInverse = rootOfUnity(primeIndex, length, true);
        plan.cubeRoot = rootOfUnity(primeIndex, 3);
        plan.cubeRootInverse = rootOfUnity(primeIndex, 3, true);
        plan.cubeRootCompanion = shoupCompanion(plan.cubeRoot, p);
        plan.cubeRootInverseCompanion = shoupCompanion(plan.cubeRootInverse, p);
    }
    return plan;
}

}  // namespace tw::arith::ntt
