// Rows of bits against single pixels, at every width and level; the instructions for words against plain arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "bitKernels.h"
#include "bitRows.h"
#include "bitWords.h"
#include "guardedBuffer.h"
#include "processors.h"
#include "random.h"

using zelm::BitKernels;
using zelm::ForegroundTest;
using zelm::kWordPixels;
using zelmtest::ForcedProcessor;
using zelmtest::Guard;
using zelmtest::GuardedBuffer;
using zelmtest::Processor;
using zelmtest::Random;

namespace {

void fillWithNoise(Random& random, GuardedBuffer<uint8_t>& pixels) {
    std::generate(pixels.begin(), pixels.end(), [&] { return static_cast<uint8_t>(random.bits() & 0xFFU); });
}

TEST(BitWords, ArePackedAlikeByPlainArithmetic) {
    Random random(631);
    GuardedBuffer<uint8_t> pixels(kWordPixels, Guard::atEnd);
    for (int trial = 0; trial < 2000; ++trial) {
        fillWithNoise(random, pixels);
        const auto level = static_cast<uint8_t>(trial % 256);
        uint64_t expected = 0;
        for (std::size_t x = 0; x < kWordPixels; ++x) {
            expected |= static_cast<uint64_t>(pixels[x] >= level) << x;
        }
        ASSERT_EQ(zelm::packWordPlain(pixels.data(), level), expected) << trial;
        ASSERT_EQ(zelm::packWord(pixels.data(), level), expected) << trial;
    }
}

TEST(BitWords, AreUnpackedAlikeByPlainArithmetic) {
    Random random(632);
    for (int trial = 0; trial < 2000; ++trial) {
        const uint64_t word = trial < 64 ? uint64_t{1} << trial : random.bits();
        for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
            GuardedBuffer<uint8_t> plain(kWordPixels, guard);
            GuardedBuffer<uint8_t> pixels(kWordPixels, guard);
            zelm::unpackWordPlain(word, plain.data());
            zelm::unpackWord(word, pixels.data());
            for (std::size_t x = 0; x < kWordPixels; ++x) {
                ASSERT_EQ(plain[x], (word >> x & 1U) != 0 ? 255 : 0) << trial << ": " << x;
                ASSERT_EQ(pixels[x], plain[x]) << trial << ": " << x;
            }
        }
    }
}

std::vector<const BitKernels*> tiersOfMachine() {
    std::vector<const BitKernels*> tiers = {&zelm::kBitPlainTier};
#if defined(__x86_64__)
    if (zelmtest::machineHasAvx2Tier()) {
        tiers.push_back(&zelm::kBitAvx2Tier);
    }
#endif
    return tiers;
}

// A row of every width on pages that end with it; the words behind it stay as they are.
TEST(BitRows, HoldTheForegroundOfARow) {
    Random random(633);
    constexpr uint64_t kOther = 0x123456789ABCDEF0U;
    for (const BitKernels* const tier : tiersOfMachine()) {
        for (int32_t width = 1; width <= 200; ++width) {
            for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
                GuardedBuffer<uint8_t> row(static_cast<std::size_t>(width), guard);
                fillWithNoise(random, row);
                const auto words = static_cast<std::size_t>(zelm::wordsOf(width));
                std::vector<uint64_t> bits(words + 1, kOther);
                const auto test = ForegroundTest::of(width % 3 == 0 ? 0 : random.integer(0, 255), width % 2);
                zelm::packRow(*tier, row.data(), width, test, bits.data());
                EXPECT_EQ(bits[words], kOther);
                for (std::size_t x = 0; x < words * kWordPixels; ++x) {
                    const bool expected = x < row.size() && test(row[x]);
                    ASSERT_EQ((bits[x / 64] >> (x % 64) & 1U) != 0, expected) << width << ": " << x;
                }
                GuardedBuffer<uint8_t> levels(row.size(), guard);
                zelm::unpackRow(*tier, bits.data(), width, levels.data());
                for (std::size_t x = 0; x < row.size(); ++x) {
                    ASSERT_EQ(levels[x], test(row[x]) ? 255 : 0) << width << ": " << x;
                }
            }
        }
    }
}

bool bitAt(const GuardedBuffer<uint64_t>& words, ptrdiff_t bit) {
    return (const_cast<GuardedBuffer<uint64_t>&>(words)[static_cast<std::size_t>(bit / 64)] >> (bit % 64) & 1U) != 0;
}

// Each bit against its three sources, with no more words around the row than the kernel may read.
TEST(BitKernels, UniteBitsOfEveryDistance) {
    Random random(634);
    for (const BitKernels* const tier : tiersOfMachine()) {
        for (ptrdiff_t step = 1; step < 200; ++step) {
            if (step % kWordPixels == 0) {
                continue;
            }
            const ptrdiff_t margin = step / kWordPixels + 1;
            const ptrdiff_t words = random.integer(1, 13);
            for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
                GuardedBuffer<uint64_t> from(static_cast<std::size_t>(words + 2 * margin), guard);
                std::generate(from.begin(), from.end(), [&] { return random.bits() & random.bits() & random.bits(); });
                GuardedBuffer<uint64_t> to(static_cast<std::size_t>(words), guard);
                tier->uniteBits(from.data() + margin, words, step, to.data());
                for (ptrdiff_t bit = 0; bit < words * kWordPixels; ++bit) {
                    const ptrdiff_t at = bit + margin * kWordPixels;
                    ASSERT_EQ(bitAt(to, bit), bitAt(from, at) || bitAt(from, at - step) || bitAt(from, at + step))
                        << step << ": " << bit;
                }
            }
        }
    }
}

TEST(BitKernels, UniteWordsOfThreeRows) {
    Random random(635);
    for (const BitKernels* const tier : tiersOfMachine()) {
        for (std::size_t words = 0; words < 30; ++words) {
            GuardedBuffer<uint64_t> rows[3] = {{words, Guard::atEnd}, {words, Guard::atEnd}, {words, Guard::atStart}};
            for (auto& row : rows) {
                std::generate(row.begin(), row.end(), [&] { return random.bits() & random.bits(); });
            }
            GuardedBuffer<uint64_t> to(words, Guard::atEnd);
            tier->uniteWords(rows[0].data(), rows[1].data(), rows[2].data(), static_cast<ptrdiff_t>(words), to.data());
            for (std::size_t i = 0; i < words; ++i) {
                ASSERT_EQ(to[i], rows[0][i] | rows[1][i] | rows[2][i]) << words << ": " << i;
            }
        }
    }
}

TEST(BitKernels, AreThoseOfTheProcessor) {
    {
        const ForcedProcessor forced(zelmtest::plainProcessor());
        EXPECT_EQ(&zelm::bitTierOfProcessor(), &zelm::kBitPlainTier);
    }
#if defined(__x86_64__)
    const ForcedProcessor forced{Processor{}};
    EXPECT_EQ(&zelm::bitTierOfProcessor(), &zelm::kBitAvx2Tier);
#endif
}

}  // namespace
