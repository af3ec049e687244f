// What a pixel sees of an edge, against sums over its square.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "blurredStep.h"

namespace zelmtest {
namespace {

using zelm::measure::blurredStep;

// The mean over a pixel's square of an edge with Gaussian blur, by the midpoint rule.
double summed(double distance, double blur, double angle) {
    constexpr int kSteps = 400;
    double sum = 0.0;
    for (int i = 0; i < kSteps; ++i) {
        for (int j = 0; j < kSteps; ++j) {
            const double x = (i + 0.5) / kSteps - 0.5;
            const double y = (j + 0.5) / kSteps - 0.5;
            const double d = distance + std::cos(angle) * x + std::sin(angle) * y;
            sum += 0.5 * std::erfc(-d / (blur * std::numbers::sqrt2));
        }
    }
    return sum / (kSteps * kSteps);
}

TEST(BlurredStep, IsTheMeanOverThePixel) {
    for (const double blur : {0.2, 0.6, 1.7}) {
        for (const double angle : {0.0, 0.3, std::numbers::pi / 4.0, 1.2, std::numbers::pi / 2.0}) {
            for (const double distance : {-2.0, -0.4, 0.0, 0.15, 0.7}) {
                // The midpoint rule of steps h is off by h^2 / 24 times the second derivative, 6 at most: 2e-6.
                EXPECT_NEAR(blurredStep(distance, blur, std::cos(angle), std::sin(angle)).share,
                            summed(distance, blur, angle), 4e-6)
                    << blur << ' ' << angle << ' ' << distance;
            }
        }
    }
}

TEST(BlurredStep, DerivativesAreThoseOfTheShare) {
    constexpr double h = 1e-4;
    for (const double blur : {0.1, 0.5, 1.1}) {
        for (const double angle : {0.0, 0.5, std::numbers::pi / 4.0, 1.5}) {
            const double c = std::cos(angle);
            const double s = std::sin(angle);
            for (const double distance : {-1.0, -0.3, 0.0, 0.45}) {
                const auto at = blurredStep(distance, blur, c, s);
                const auto share = [&](double d, double b) { return blurredStep(d, b, c, s).share; };
                // Central differences: h^2 / 6 times the third derivative, 100 at most; rounding of 1e-12 over h.
                EXPECT_NEAR(at.byDistance, (share(distance + h, blur) - share(distance - h, blur)) / (2.0 * h), 3e-7);
                EXPECT_NEAR(at.byBlur, (share(distance, blur + h) - share(distance, blur - h)) / (2.0 * h), 3e-7);
            }
        }
    }
}

TEST(BlurredStep, FarFromTheEdgeIsOneLevelOrTheOther) {
    for (const double angle : {0.0, 0.7}) {
        EXPECT_NEAR(blurredStep(-20.0, 0.5, std::cos(angle), std::sin(angle)).share, 0.0, 1e-9);
        EXPECT_NEAR(blurredStep(20.0, 0.5, std::cos(angle), std::sin(angle)).share, 1.0, 1e-9);
    }
}

}  // namespace
}  // namespace zelmtest
