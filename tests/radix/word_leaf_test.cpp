// The split of leaves on 64-bit words against GMP: chunks whose largest power
// below 2^64 takes one to many chunks, a power at or above 2^63 (no shift) and
// far below it, values of all-ones words, and chunk counts beyond the value.
#include "arith/convert/word_leaf.h"

#include <gmp.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "radix/oracle_digits.h"

namespace {

std::vector<std::uint32_t> gmpChunks(const std::vector<std::uint64_t>& words, std::uint64_t chunk, std::size_t count) {
    twtest::Mpz v;
    mpz_import(v.v, words.size(), -1, sizeof(std::uint64_t), 0, 0, words.data());
    std::vector<std::uint32_t> out(count);
    for (std::size_t j = 0; j < count; ++j) out[j] = std::uint32_t(mpz_fdiv_q_ui(v.v, v.v, chunk));
    EXPECT_EQ(mpz_sgn(v.v), 0);
    return out;
}

TEST(WordLeaf, ChunksAgreeWithGmp) {
    std::mt19937_64 rng(5);
    for (std::uint64_t chunk : {2ull, 3ull, 10ull, 36ull * 36 * 36, 2176782336ull /* 36^6 */, 3486784401ull /* 3^20 */,
                                4294967295ull, 2147483647ull, 65537ull, 1000000007ull, 999999999ull}) {
        const tw::convert::WordChunkDivider divider(chunk);
        const double chunkBits = std::log2(double(chunk));
        for (std::size_t n : {1, 2, 3, 5, 8, 17, 40, 77}) {
            for (int style = 0; style < 3; ++style) {
                std::vector<std::uint64_t> words(n);
                for (auto& w : words) w = style == 0 ? rng() : style == 1 ? ~std::uint64_t(0) : (rng() % 3 == 0 ? rng() : 0);
                const std::size_t count = std::size_t(64 * double(n) / chunkBits) + 1 + style;
                const auto expected = gmpChunks(words, chunk, count);
                std::vector<std::uint32_t> out(count, 0xDEADBEEF);
                std::vector<std::uint64_t> scratch = words;
                divider.split(out.data(), count, scratch.data(), n);
                ASSERT_EQ(out, expected) << "chunk " << chunk << ", " << n << " words, style " << style;
            }
        }
    }
}

TEST(WordLeaf, BinaryLimbsRegroupIntoWords) {
    std::mt19937_64 rng(6);
    for (std::size_t n : {1, 2, 3, 15, 16, 17, 100}) {
        std::vector<tw::Limb> limbs(n);
        for (auto& l : limbs) l = tw::Limb(rng()) & tw::BinaryRadix::mask;
        std::vector<std::uint64_t> words(n * 28 / 64 + 2, 0);
        words.resize(tw::convert::binaryLimbsToWords(words.data(), limbs.data(), n));
        EXPECT_EQ(words.size(), (28 * n + 63) / 64);
        twtest::Mpz a;
        mpz_import(a.v, words.size(), -1, sizeof(std::uint64_t), 0, 0, words.data());
        EXPECT_EQ(mpz_cmp(a.v, twtest::toMpz<tw::BinaryRadix>(limbs).v), 0) << n << " limbs";
    }
}

}  // namespace
