// The sub-pixel step: the filters, the window, the peak and its refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "edgeScene.h"
#include "edgeSubpixel.h"

namespace {

using zelm::EdgeCandidate;
using zelm::EdgePosition;
using zelm::EdgeProfile;
using zelm::kEdgeGuard;
using zelmtest::blurredStep;
using zelmtest::findInProfile;
using zelmtest::Found;
using zelmtest::kUsual;

constexpr double kPi = 3.14159265358979323846;

// A profile of given gray levels, guard cells included as the engine fills them.
EdgeProfile makeProfile(const std::vector<double>& values) {
    EdgeProfile profile;
    const std::size_t cells = values.size() + 2 * static_cast<std::size_t>(kEdgeGuard);
    const auto last = static_cast<int64_t>(values.size()) - 1;
    profile.segment = {{0.0, 0.0}, {1.0, 0.0}, last, static_cast<double>(last)};
    profile.count = static_cast<int64_t>(values.size());
    profile.quantised = zelm::WorkBuffer<int32_t>(cells);
    profile.gray = zelm::WorkBuffer<double>(cells);
    profile.derivative = zelm::WorkBuffer<double>(cells);
    for (std::size_t i = 0; i < cells; ++i) {
        const auto sample = static_cast<int64_t>(i) - kEdgeGuard;
        const auto inside = static_cast<std::size_t>(std::clamp<int64_t>(sample, 0, profile.count - 1));
        profile.gray[i] = values[inside];
    }
    return profile;
}

// The transition from sample a to sample b, with no plateau beyond to look at.
EdgeCandidate between(int64_t a, int64_t b, int32_t difference) {
    return {a, b, difference, a, b};
}

std::vector<double> stepValues(double at, double blur, double size) {
    std::vector<double> values;
    for (int i = 0; i < 30; ++i) {
        values.push_back(40.0 + size * blurredStep(i - at, blur));
    }
    return values;
}

TEST(EdgeFilter, IsTheSampledDerivativeOfAGaussian) {
    for (const auto& [size, sigma] : {std::pair{5, 1.0}, std::pair{7, 1.5}}) {
        const auto kernel = zelm::edgeKernel(size);
        ASSERT_EQ(kernel.size(), static_cast<std::size_t>(size));
        for (int k = -(size / 2); k <= size / 2; ++k) {
            const double u = k / sigma;
            const double density = std::exp(-0.5 * u * u) / (std::sqrt(2.0 * kPi) * sigma);
            EXPECT_DOUBLE_EQ(kernel[static_cast<std::size_t>(k + size / 2)], k * density / (sigma * sigma));
        }
    }
}

TEST(EdgeFilter, OtherSizesHaveNone) {
    for (const int32_t size : {0, 1, 3, 4, 6, 8, 9, -5, -7, INT32_MAX, INT32_MIN}) {
        EXPECT_TRUE(zelm::edgeKernel(size).empty());
    }
    for (const int32_t size : {3, 4, 6, 9, 1, 0, -5}) {
        ZelmEdge1dParam param = kUsual;
        param.filterSize = size;
        EXPECT_EQ(findInProfile({50, 50, 50, 50, 50, 150, 150, 150, 150, 150}, 1, param).result, 0) << size;
    }
}

TEST(EdgeFilter, AWindowThatLeavesTheProfileIsAMemoryError) {
    // The step stands between samples 4 and 5, so the widened interval is 2..6 and cells 12..16 of 30.
    const std::vector<int> q = {50, 50, 50, 50, 50, 150, 150, 150, 150, 150};
    ZelmEdge1dParam param = kUsual;
    for (const int32_t half : {12, 13, 14, 1000, 1073741823}) {
        param.filterSize = 2 * half;
        EXPECT_EQ(findInProfile(q, 1, param).result, half <= 12 ? 0 : ZELM_ERR_MEMORY) << half;
    }
    // The same beyond the far end: two plateaus of which the second is short.
    const std::vector<int> late = {50, 50, 50, 50, 50, 50, 50, 50, 50, 50, 50, 50, 150, 150, 150};
    for (const int32_t half : {15, 16}) {  // interval 9..13, cells 19..23 of 35 + half
        param.filterSize = 2 * half;
        EXPECT_EQ(findInProfile(late, 1, param).result, half <= 11 ? 0 : ZELM_ERR_MEMORY) << half;
    }
}

TEST(EdgeSubpixel, AStepHalfwayBetweenSamplesIsFoundThere) {
    for (const int32_t size : {5, 7}) {
        EdgeProfile profile = makeProfile(stepValues(14.5, 1e-3, 100.0));
        EdgePosition position = {};
        ASSERT_EQ(zelm::locateEdge(profile, between(14, 15, 100), size, position), 1);
        // The two largest derivatives are equal: the peak is exactly between them.
        EXPECT_NEAR(position.sample, 14.5, 1e-9);
    }
}

TEST(EdgeSubpixel, StrengthIsTheSlopeOfTheFilteredEdge) {
    // A blurred step filtered by a Gaussian has the slope size / sqrt(2 pi (blur^2 + sigma^2)); sampling the filter at
    // +-3 loses its tails: 10 % of size 7 (beyond two sigma), 1 % of size 5 (beyond 2.5 sigma of the first moment).
    for (const double blur : {0.8, 1.0, 1.3}) {
        EdgeProfile profile = makeProfile(stepValues(14.3, blur, 100.0));
        EdgePosition position = {};
        ASSERT_EQ(zelm::locateEdge(profile, between(9, 20, 100), 7, position), 1);
        const double ideal = 100.0 / std::sqrt(2.0 * kPi * (blur * blur + 2.25));
        EXPECT_LT(position.strength, ideal);
        EXPECT_GT(position.strength, 0.88 * ideal);
    }
}

TEST(EdgeSubpixel, IsGoodToFiveThousandthsOnACleanBlurredEdge) {
    // Values not rounded to gray levels: what remains is the filter's sampling and the three-point peak.
    for (const int32_t size : {5, 7}) {
        for (const double blur : {0.7, 1.0, 1.5}) {
            double worst = 0.0;
            for (double at = 14.0; at < 15.0; at += 0.05) {
                EdgeProfile profile = makeProfile(stepValues(at, blur, 100.0));
                EdgePosition position = {};
                ASSERT_EQ(zelm::locateEdge(profile, between(7, 22, 100), size, position), 1);
                worst = std::max(worst, std::fabs(position.sample - at));
            }
            EXPECT_LT(worst, 0.005) << size << " " << blur;
        }
    }
}

TEST(EdgeSubpixel, WhatLiesBeyondTheIntervalHasNoInfluence) {
    std::vector<double> values = stepValues(14.3, 0.7, 60.0);
    EdgeProfile alone = makeProfile(values);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] += i < 11 ? 150.0 : i > 18 ? -90.0 : 0.0;
    }
    EdgeProfile crowded = makeProfile(values);
    EdgePosition expected = {};
    EdgePosition position = {};
    ASSERT_EQ(zelm::locateEdge(alone, between(11, 18, 60), 7, expected), 1);
    ASSERT_EQ(zelm::locateEdge(crowded, between(11, 18, 60), 7, position), 1);
    EXPECT_EQ(position.sample, expected.sample);
    EXPECT_EQ(position.strength, expected.strength);
}

TEST(EdgeSubpixel, PlateauSamplesWithinTheFiltersReachAreSeen) {
    // The interval bites into a blurred transition. Held there, the profile misplaces the edge; the plateaus repair it.
    EdgeProfile held = makeProfile(stepValues(14.3, 1.2, 100.0));
    EdgeProfile seen = makeProfile(stepValues(14.3, 1.2, 100.0));
    EdgePosition position = {};
    ASSERT_EQ(zelm::locateEdge(held, between(12, 17, 100), 7, position), 1);
    EXPECT_GT(std::fabs(position.sample - 14.3), 0.005);
    ASSERT_EQ(zelm::locateEdge(seen, {12, 17, 100, 5, 25}, 7, position), 1);
    EXPECT_NEAR(position.sample, 14.3, 0.002);
    // Beyond the plateaus the profile is still held.
    std::vector<double> crowded = stepValues(14.3, 1.2, 100.0);
    std::fill(crowded.begin(), crowded.begin() + 9, 250.0);
    std::fill(crowded.begin() + 21, crowded.end(), 0.0);
    EdgeProfile bounded = makeProfile(crowded);
    EdgePosition again = {};
    ASSERT_EQ(zelm::locateEdge(bounded, {12, 17, 100, 9, 20}, 7, again), 1);
    EXPECT_NEAR(again.sample, position.sample, 1e-9);
}

TEST(EdgeSubpixel, AShortIntervalIsWidenedToFive) {
    std::vector<double> values(30, 10.0);
    std::fill(values.begin() + 15, values.end(), 90.0);
    for (const auto& [a, b] : {std::pair<int64_t, int64_t>{14, 15}, {14, 16}, {13, 15}, {13, 16}}) {
        EdgeProfile given = makeProfile(values);
        EdgePosition position = {};
        ASSERT_EQ(zelm::locateEdge(given, between(a, b, 80), 7, position), 1);
        EXPECT_NEAR(position.sample, 14.5, 1e-9) << a << " " << b;
    }
}

TEST(EdgeSubpixel, AnEdgeAtTheVeryEndOfTheProfileUsesTheGuardCells) {
    // Plateaus of three samples whose ends are the ends of the segment.
    const Found found = findInProfile({50, 50, 50, 150, 150, 150}, 1);
    ASSERT_EQ(found.result, 1);
    EXPECT_NEAR(found.point.x, 2.5, 1e-9);
    std::vector<double> values = {10.0, 90.0, 90.0, 90.0, 90.0, 90.0, 90.0};
    EdgeProfile atStart = makeProfile(values);
    EdgePosition position = {};
    ASSERT_EQ(zelm::locateEdge(atStart, between(0, 1, 80), 7, position), 1);
    EXPECT_NEAR(position.sample, 0.5, 1e-9);
    std::reverse(values.begin(), values.end());
    EdgeProfile atEnd = makeProfile(values);
    ASSERT_EQ(zelm::locateEdge(atEnd, between(5, 6, -80), 7, position), 1);
    EXPECT_NEAR(position.sample, 5.5, 1e-9);
}

TEST(EdgeSubpixel, ADerivativeWithoutAPeakIsNoEdge) {
    // A straight ramp: the derivative is the same everywhere inside.
    std::vector<double> ramp;
    for (int i = 0; i < 40; ++i) {
        ramp.push_back(5.0 * i);
    }
    EdgeProfile profile = makeProfile(ramp);
    EdgePosition position = {-7.0, -7.0};
    EXPECT_EQ(zelm::locateEdge(profile, between(8, 32, 120), 7, position), 0);
    // A constant one has none at all.
    EdgeProfile flat = makeProfile(std::vector<double>(20, 80.0));
    EXPECT_EQ(zelm::locateEdge(flat, between(8, 12, 0), 7, position), 0);
    EXPECT_EQ(position.sample, -7.0);
}

TEST(EdgeSubpixel, APeakBeyondHalfASampleIsNoEdge) {
    // The derivative grows towards the interval's end, so that the largest one inside has a larger neighbour.
    std::vector<double> values;
    for (int i = 0; i < 30; ++i) {
        values.push_back(i < 15 ? 0.0 : 90.0);
    }
    EdgeProfile profile = makeProfile(values);
    EdgePosition position = {-7.0, -7.0};
    EXPECT_EQ(zelm::locateEdge(profile, between(9, 14, 90), 7, position), 0);
    EXPECT_EQ(position.sample, -7.0);
}

}  // namespace
