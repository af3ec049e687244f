// Scores along a list of positions: which positions are scored, what is written, and the statistics handed on.
#include <gtest/gtest.h>

#include <vector>

#include "corrAlongPoints.h"
#include "random.h"

namespace {

using namespace zelm;
using namespace zelmtest;

TEST(CorrAlongPoints, FindsAWindowOfTheSearchImage) {
    Random random(1);
    std::vector<std::uint8_t> img(64 * 48);
    for (std::uint8_t& pixel : img) {
        pixel = static_cast<std::uint8_t>(random.integer(0, 255));
    }
    constexpr std::int32_t kSize = 9;
    const std::uint8_t* const tmpl = img.data() + 20 * 64 + 30;
    double sum = 0.0;
    double squares = 0.0;
    for (int row = 0; row < kSize; ++row) {
        for (int c = 0; c < kSize; ++c) {
            const double t = tmpl[row * 64 + c];
            sum += t;
            squares += t * t;
        }
    }
    const double mean = sum / (kSize * kSize);
    const double sigma = std::sqrt(squares / (kSize * kSize) - mean * mean);
    std::vector<Point2i> positions;
    for (std::int32_t x = 0; x < 64; ++x) {
        positions.push_back({x, 24});
    }
    std::vector<CorrScore> scores(64, CorrScore{-7, 0, -7.0});
    const std::int32_t written =
        innerCorrAlongPointsFull(kSize, kSize, tmpl, 64, nullptr, 0, 64, 48, img.data(), 64, nullptr, 0,
                                 positions.data(), 0, 63, scores.data(), mean, sigma, 4.0, 4.0);
    EXPECT_EQ(written, 64 - kSize + 1);
    EXPECT_NEAR(scores[34].score, 1.0, 1e-5);
    EXPECT_EQ(scores[34].index, 34);
    EXPECT_EQ(scores[3].index, -7);
    EXPECT_LT(scores[33].score, 0.9);
}

}  // namespace
