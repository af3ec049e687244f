// Coverage of pixels by dots against integrals over the dot, which know no edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "blurredEllipse.h"
#include "dotProfile.h"

namespace zelmtest {
namespace {

using zelm::measure::BlurredEllipse;
using zelm::measure::EdgeCoverage;
using zelm::measure::edgeCoverage;
using zelm::measure::Lanes;
using zelm::measure::lanesOf;
using zelm::measure::standardNormal;

// An ellipse with half axes a along x and b along y, blurred by a normal point spread, by many chords: in the parameter
// of the ellipse the integrand is periodic, and the midpoint rule exact.
double integral(double a, double b, double x, double y, double blur) {
    constexpr int kChords = 600;
    double sum = 0.0;
    for (int k = 0; k < kChords; ++k) {
        const double t = std::numbers::pi * ((k + 0.5) / kChords - 0.5);
        const double half = b * std::cos(t);
        const double d = (x - a * std::sin(t)) / blur;
        sum +=
            std::cos(t) * std::exp(-0.5 * d * d) * 0.5 *
            (std::erf((y + half) / (blur * std::numbers::sqrt2)) - std::erf((y - half) / (blur * std::numbers::sqrt2)));
    }
    return sum * a * std::numbers::pi / kChords / (blur * std::sqrt(2.0 * std::numbers::pi));
}

TEST(MeasureDotProfile, NormalDistributionAndDensity) {
    for (double x = -6.4; x <= 6.4; x += 0.0137) {
        EXPECT_NEAR(standardNormal(x).below, 0.5 * std::erfc(-x / std::numbers::sqrt2), 1e-8) << x;
        EXPECT_NEAR(standardNormal(x).density, std::exp(-0.5 * x * x) / std::sqrt(2.0 * std::numbers::pi), 1e-6) << x;
    }
    EXPECT_NEAR(standardNormal(1e300).below, 1.0, 1e-9);
    EXPECT_NEAR(standardNormal(-1e300).below, 0.0, 1e-9);
    EXPECT_TRUE(std::isfinite(standardNormal(std::nan("")).below));
}

// Single precision has 6e-8; the polynomial errs by 7.5e-8, and some roundings meet.
TEST(MeasureDotProfile, FourAtATimeAsOne) {
    constexpr double kTolerance = 3e-7;
    for (double x = -7.0; x <= 7.0; x += 0.0137) {
        const auto four = Lanes{0.0F, static_cast<float>(x), 9.0F, -9.0F};
        const auto rounded = static_cast<double>(four[1]);
        const auto normal = zelm::measure::standardNormal(four);
        EXPECT_NEAR(static_cast<double>(normal.below[1]), 0.5 * std::erfc(-rounded / std::numbers::sqrt2), kTolerance);
        EXPECT_NEAR(static_cast<double>(normal.density[1]),
                    std::exp(-0.5 * rounded * rounded) / std::sqrt(2.0 * std::numbers::pi), kTolerance);
        EXPECT_NEAR(static_cast<double>(normal.below[0]), 0.5, kTolerance);
        EXPECT_EQ(normal.below[2], 1.0F);
        EXPECT_NEAR(static_cast<double>(normal.below[3]), 0.0, 1e-9);
        const auto four2 = edgeCoverage(four, lanesOf(0.2F), 0.75F, 1.0F / 0.75F, lanesOf(0.5F));
        const auto one = edgeCoverage(rounded, static_cast<double>(0.2F), 0.75, 1.0 / 0.75, 0.5);
        // Products of up to ten factors.
        EXPECT_NEAR(static_cast<double>(four2.value[1]), one.value, 4.0 * kTolerance);
        EXPECT_NEAR(static_cast<double>(four2.byDistance[1]), one.byDistance, 4.0 * kTolerance);
        EXPECT_NEAR(static_cast<double>(four2.byBlur[1]), one.byBlur, 4.0 * kTolerance);
    }
}

TEST(MeasureDotProfile, RootsAndPowersOfFour) {
    for (const float x : {1e-20F, 0.3F, 1.0F, 2.0F, 3.7e5F, 1e20F}) {
        const double root = static_cast<double>(zelm::measure::inverseRoot(lanesOf(x))[2]);
        EXPECT_NEAR(root * std::sqrt(static_cast<double>(x)), 1.0, 3e-7) << x;
    }
    EXPECT_TRUE(std::isfinite(zelm::measure::inverseRoot(lanesOf(0.0F))[0]));
    for (float x = -100.0F; x < 100.0F; x += 0.37F) {
        const double power = static_cast<double>(zelm::measure::powerOfTwo(lanesOf(x))[3]);
        EXPECT_NEAR(power * std::exp2(-static_cast<double>(x)), 1.0, 4e-7) << x;
    }
}

TEST(MeasureDotProfile, EdgesOfDiscs) {
    // The series is in powers of the bend, blur over radius: what it leaves out is of the fourth.
    for (const double bend : {0.05, 0.1, 0.2, 0.3}) {
        const double blur = 1.3;
        const double radius = blur / bend;
        for (double d = std::max(-4.0 * blur, -0.9 * radius); d <= 4.0 * blur; d += 0.1) {
            const double exact = integral(radius, radius, radius + d, 0.0, blur);
            EXPECT_NEAR(edgeCoverage(d, bend, blur, 1.0 / blur, 0.0).value, exact, 2e-5 + 0.3 * std::pow(bend, 4))
                << bend << ' ' << d;
        }
    }
}

// The mean over the pixel's square of a straight edge blurred by sigma, across and diagonally.
TEST(MeasureDotProfile, SquarePixels) {
    for (const double sigma : {0.4, 0.7, 1.0}) {
        for (const double angle : {0.0, 0.4, std::numbers::pi / 4.0}) {
            const double c = std::cos(angle);
            const double s = std::sin(angle);
            const double fourth = c * c * c * c + s * s * s * s;
            const double blur = std::sqrt(sigma * sigma + 1.0 / 12.0);
            for (double d = -2.5; d <= 2.5; d += 0.1) {
                double sum = 0.0;
                constexpr int kSteps = 60;
                for (int i = 0; i < kSteps * kSteps; ++i) {
                    const double u = (i % kSteps + 0.5) / kSteps - 0.5;
                    const double v = (i / kSteps + 0.5) / kSteps - 0.5;
                    sum += 0.5 * std::erfc((d + u * c + v * s) / (sigma * std::numbers::sqrt2));
                }
                // The sixth cumulant of a square, 1/252 along an axis, over 720 and the sixth power of the blur, times
                // the fifth Hermite function, at most 2.4.
                const double limit = 2e-4 + 2.4 / (252.0 * 720.0 * std::pow(blur, 6));
                EXPECT_NEAR(edgeCoverage(d, 0.0, blur, 1.0 / blur, fourth).value, sum / (kSteps * kSteps), limit)
                    << sigma << ' ' << angle << ' ' << d;
            }
        }
    }
}

TEST(MeasureDotProfile, DerivativesOfAnEdge) {
    constexpr double kStep = 1e-4;
    for (const double d : {-1.5, -0.3, 0.0, 0.8, 2.0}) {
        const EdgeCoverage e = edgeCoverage(d, 0.1, 0.9, 1.0 / 0.9, 0.6);
        const double byDistance = (edgeCoverage(d + kStep, 0.1, 0.9, 1.0 / 0.9, 0.6).value -
                                   edgeCoverage(d - kStep, 0.1, 0.9, 1.0 / 0.9, 0.6).value) /
                                  (2.0 * kStep);
        EXPECT_NEAR(e.byDistance, byDistance, 1e-5);
        // That by the blur leaves out what is of the second order of the bend and of the square pixel.
        const auto blurred = [&](double blur) { return edgeCoverage(d, blur / 9.0, blur, 1.0 / blur, 0.6).value; };
        EXPECT_NEAR(e.byBlur, (blurred(0.9 + kStep) - blurred(0.9 - kStep)) / (2.0 * kStep), 0.02);
    }
}

TEST(MeasureDotProfile, EllipsesLittleLargerThanTheBlur) {
    constexpr double kStep = 1e-4;
    const double turn = 0.6;
    const double c = std::cos(turn);
    const double s = std::sin(turn);
    const auto at = [&](double x, double y, double scale, double blur) {
        BlurredEllipse ellipse;
        ellipse.set(4.5 * scale, 3.2 * scale, c, s, scale, blur);
        return ellipse.at(x, y);
    };
    for (const double blur : {1.1, 1.6, 2.5}) {
        for (double x = -9.0; x <= 9.0; x += 0.9) {
            const double y = 0.4 * x - 1.0;
            const BlurredEllipse::Value value = at(x, y, 1.0, blur);
            EXPECT_NEAR(value.coverage, integral(4.5, 3.2, x * c + y * s, y * c - x * s, blur), 1e-5);
            const auto slope = [&](const BlurredEllipse::Value& more, const BlurredEllipse::Value& less) {
                return (more.coverage - less.coverage) / (2.0 * kStep);
            };
            EXPECT_NEAR(value.byX, slope(at(x + kStep, y, 1.0, blur), at(x - kStep, y, 1.0, blur)), 1e-4);
            EXPECT_NEAR(value.byY, slope(at(x, y + kStep, 1.0, blur), at(x, y - kStep, 1.0, blur)), 1e-4);
            EXPECT_NEAR(value.byScale, slope(at(x, y, 1.0 + kStep, blur), at(x, y, 1.0 - kStep, blur)), 1e-4);
            EXPECT_NEAR(value.byBlur, slope(at(x, y, 1.0, blur + kStep), at(x, y, 1.0, blur - kStep)), 1e-4);
        }
    }
}

}  // namespace
}  // namespace zelmtest
