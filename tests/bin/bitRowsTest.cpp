// Rows of bits against single pixels, at every width and level; the instructions for words against plain arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "bitRows.h"
#include "guardedBuffer.h"
#include "random.h"

using zelm::ForegroundTest;
using zelm::kWordPixels;
using zelmtest::Guard;
using zelmtest::GuardedBuffer;
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

// A row of every width on pages that end with it; the words behind it stay as they are.
TEST(BitRows, HoldTheForegroundOfARow) {
    Random random(633);
    constexpr uint64_t kOther = 0x123456789ABCDEF0U;
    for (int32_t width = 1; width <= 200; ++width) {
        for (const Guard guard : {Guard::atStart, Guard::atEnd}) {
            GuardedBuffer<uint8_t> row(static_cast<std::size_t>(width), guard);
            fillWithNoise(random, row);
            const auto words = static_cast<std::size_t>(zelm::wordsOf(width));
            std::vector<uint64_t> bits(words + 1, kOther);
            const auto test = ForegroundTest::of(width % 3 == 0 ? 0 : random.integer(0, 255), width % 2);
            zelm::packRow(row.data(), width, test, bits.data());
            EXPECT_EQ(bits[words], kOther);
            for (std::size_t x = 0; x < words * kWordPixels; ++x) {
                const bool expected = x < row.size() && test(row[x]);
                ASSERT_EQ((bits[x / 64] >> (x % 64) & 1U) != 0, expected) << width << ": " << x;
            }
            GuardedBuffer<uint8_t> levels(row.size(), guard);
            zelm::unpackRow(bits.data(), width, levels.data());
            for (std::size_t x = 0; x < row.size(); ++x) {
                ASSERT_EQ(levels[x], test(row[x]) ? 255 : 0) << width << ": " << x;
            }
        }
    }
}

}  // namespace
