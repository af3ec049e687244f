// Lengths with their uncertainty, against the scatter of lengths measured with drawn rigs and pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "knownRig.h"

namespace zelmtest {
namespace {

constexpr double kNoise = 0.05;  // pixels
constexpr double kUntouched = -7.0;

using Ends = std::vector<std::int64_t>;

struct Outputs {
    std::vector<std::int32_t> statuses;
    std::vector<double> lengths, image, calibration, deviations, expanded;

    explicit Outputs(std::size_t count)
        : statuses(count, -7),
          lengths(count, kUntouched),
          image(count, kUntouched),
          calibration(count, kUntouched),
          deviations(count, kUntouched),
          expanded(count, kUntouched) {}
    ZelmMeasureLengths record() {
        auto r = emptyRecord<ZelmMeasureLengths>();
        r.statuses = statuses.data();
        r.lengths = lengths.data();
        r.image = image.data();
        r.calibration = calibration.data();
        r.deviations = deviations.data();
        r.expanded = expanded.data();
        return r;
    }
    bool operator==(const Outputs&) const = default;
};

std::int32_t lengthsOf(ZelmMeasureRig* rig, const PairPixels& pixels, const Ends& ends, Outputs& out,
                       const ZelmMeasurePixelNoise* noise = nullptr) {
    const ZelmMeasureLengths record = out.record();
    return zelmMeasureLengths(rig, pixels.count(), pixels.left.data(), pixels.right.data(), noise,
                              static_cast<std::int64_t>(ends.size() / 2), ends.data(), &record);
}

Outputs measured(const KnownRig& known, const PairPixels& pixels, const Ends& ends,
                 const ZelmMeasurePixelNoise* noise = nullptr) {
    Outputs out(ends.size() / 2);
    EXPECT_EQ(lengthsOf(known.rig.get(), pixels, ends, out, noise), ZELM_OK) << known.rig.error();
    return out;
}

double distanceOf(const std::vector<double>& X, std::int64_t a, std::int64_t b) {
    const double* const p = &X[3 * static_cast<std::size_t>(a)];
    const double* const q = &X[3 * static_cast<std::size_t>(b)];
    return std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
}

// Long and short lengths across, down and along the line of sight.
std::vector<Point3d> corners() {
    return {{-50.0, -30.0, 0.0}, {50.0, -30.0, 0.0}, {-50.0, 30.0, 0.0},
            {50.0, 30.0, -40.0}, {50.0, 30.0, 40.0}, {48.0, 30.0, 39.0}};
}
const Ends kEnds{0, 1, 0, 2, 1, 3, 3, 4, 4, 5};

class LengthsOfModels : public testing::TestWithParam<std::int32_t> {};

TEST_P(LengthsOfModels, DrawnRigsAndPixelsScatterAsPredicted) {
    const KnownRig known(makePair(GetParam(), 0), kNoise);
    const PairPixels exact = pixelsOf(known.pair, corners());
    const Outputs predicted = measured(known, exact, kEnds);
    const std::size_t count = predicted.lengths.size();
    const std::vector<double> truth = triangulated(known.pair, exact);
    const ParameterDraws draws(known.covariance);
    Random random(77);
    constexpr int kDraws = 8000;  // a deviation errs by 0.8 %, a share of 95 % by 0.25 %
    std::vector<double> squares(3 * count);
    std::vector<int> held(count);
    for (int n = 0; n < kDraws; ++n) {
        PairPixels noisy = exact;
        noisy.addNoise(random, kNoise);
        const TruePair drawn = moved(known.pair, draws.draw(random));
        const std::vector<double> byImage = triangulated(known.pair, noisy);
        const std::vector<double> byCalibration = triangulated(drawn, exact);
        const std::vector<double> byBoth = triangulated(drawn, noisy);
        for (std::size_t i = 0; i < count; ++i) {
            const std::int64_t a = kEnds[2 * i];
            const std::int64_t b = kEnds[2 * i + 1];
            const double length = distanceOf(truth, a, b);
            squares[3 * i] += std::pow(distanceOf(byImage, a, b) - length, 2.0) / kDraws;
            squares[3 * i + 1] += std::pow(distanceOf(byCalibration, a, b) - length, 2.0) / kDraws;
            const double error = distanceOf(byBoth, a, b) - length;
            squares[3 * i + 2] += error * error / kDraws;
            held[i] += std::fabs(error) <= predicted.expanded[i] ? 1 : 0;
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(predicted.statuses[i], ZELM_MEASURE_LENGTH_OK);
        EXPECT_NEAR(predicted.lengths[i], distanceOf(truth, kEnds[2 * i], kEnds[2 * i + 1]), 1e-9);
        EXPECT_NEAR(std::sqrt(squares[3 * i]) / predicted.image[i], 1.0, 0.03);
        EXPECT_NEAR(std::sqrt(squares[3 * i + 1]) / predicted.calibration[i], 1.0, 0.03);
        EXPECT_NEAR(std::sqrt(squares[3 * i + 2]) / predicted.deviations[i], 1.0, 0.03);
        EXPECT_NEAR(100.0 * held[i] / kDraws, 95.0, 1.0);
        EXPECT_NEAR(predicted.expanded[i], 1.959964 * predicted.deviations[i], 1e-6 * predicted.deviations[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, LengthsOfModels, testing::Values(0, 1, 2));

TEST(LengthUncertainty, WhatBothEndsShareCancels) {
    // The points' own covariances, taken as independent, tell another length: by far too much of neighbours.
    const KnownRig known(makePair(0, 0), kNoise);
    const PairPixels exact = pixelsOf(known.pair, corners());
    const Outputs lengths = measured(known, exact, kEnds);
    std::vector<double> covariances(6 * corners().size());
    auto record = emptyRecord<ZelmMeasurePointCovariances>();
    record.calibration = covariances.data();
    ASSERT_EQ(zelmMeasurePointCovariance(known.rig.get(), exact.count(), exact.left.data(), exact.right.data(), nullptr,
                                         &record),
              ZELM_OK);
    const std::vector<Point3d> X = corners();
    for (std::size_t i = 0; i < lengths.lengths.size(); ++i) {
        const auto a = static_cast<std::size_t>(kEnds[2 * i]);
        const auto b = static_cast<std::size_t>(kEnds[2 * i + 1]);
        const double u[3] = {(X[b].x - X[a].x) / lengths.lengths[i], (X[b].y - X[a].y) / lengths.lengths[i],
                             (X[b].z - X[a].z) / lengths.lengths[i]};
        double apart = 0.0;
        for (const std::size_t end : {a, b}) {
            const double* const c = &covariances[6 * end];
            apart += u[0] * u[0] * c[0] + u[1] * u[1] * c[3] + u[2] * u[2] * c[5] +
                     2.0 * (u[0] * u[1] * c[1] + u[0] * u[2] * c[2] + u[1] * u[2] * c[4]);
        }
        // The scatter test above holds the correlated one to 3 %. What moves the ends of the length along the line of
        // sight happens to be next to uncorrelated.
        if (i != 3) {
            EXPECT_GT(std::fabs(std::sqrt(apart) / lengths.calibration[i] - 1.0), 0.2) << i;
        }
    }
    EXPECT_LT(lengths.calibration[4], 0.2 * lengths.calibration[3]);
}

TEST(LengthUncertainty, FrameOfThePlateDoesNotMatter) {
    KnownRig known(makePair(0, 0), kNoise);
    const PairPixels exact = pixelsOf(known.pair, corners());
    const Outputs before = measured(known, exact, kEnds);
    ZelmMeasureCovariance other = known.covariance;
    for (std::size_t i = ZELM_MEASURE_FRAME_ROTATION; i < ZELM_MEASURE_PARAMETERS; ++i) {
        for (std::size_t k = 0; k < ZELM_MEASURE_PARAMETERS; ++k) {
            other.matrix[26 * i + k] = other.matrix[26 * k + i] = 0.0;
        }
        other.matrix[27 * i] = 1.0;
    }
    known.give(other);
    EXPECT_EQ(measured(known, exact, kEnds), before);
}

TEST(LengthUncertainty, StudentsFactorWhereTheNoiseWasEstimated) {
    KnownRig known(makePair(0, 0), kNoise);
    const PairPixels exact = pixelsOf(known.pair, corners());
    ZelmMeasureCovariance estimated = known.covariance;
    estimated.freedom = 10.0;
    known.give(estimated);
    // One estimate: its own freedom, 2.228.
    const Outputs own = measured(known, exact, kEnds);
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = kNoise;
    // Two: u^4 / (u1^4 / 20 + u2^4 / 10), rounded down; or one known: u^4 / (u2^4 / 10).
    noise.freedom = 20.0;
    const Outputs both = measured(known, exact, kEnds, &noise);
    noise.freedom = 0.0;
    const Outputs one = measured(known, exact, kEnds, &noise);
    for (std::size_t i = 0; i < own.lengths.size(); ++i) {
        EXPECT_NEAR(own.expanded[i] / own.deviations[i], 2.228139, 1e-5);
        EXPECT_EQ(both.deviations[i], own.deviations[i]);
        const double a = std::pow(own.image[i], 4.0);
        const double b = std::pow(own.calibration[i], 4.0);
        const double u = std::pow(own.deviations[i], 4.0);
        EXPECT_GE(u / (a / 20.0 + b / 10.0), 10.0);
        EXPECT_LT(both.expanded[i], own.expanded[i]);
        EXPECT_LT(one.expanded[i], both.expanded[i]);
        EXPECT_GT(one.expanded[i], 1.9599 * one.deviations[i]);
    }
}

TEST(LengthUncertainty, ShortLengthsHaveNoDirection) {
    const KnownRig known(makePair(0, 0), kNoise);
    std::vector<Point3d> points{{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}, {0.01, 0.0, 0.0}, {1.0, 0.0, 0.0}};
    const PairPixels exact = pixelsOf(known.pair, points);
    const Outputs out = measured(known, exact, {0, 0, 0, 1, 0, 2, 0, 3});
    for (const std::size_t i : {0U, 1U, 2U}) {
        EXPECT_EQ(out.statuses[i], ZELM_MEASURE_LENGTH_SHORT);
        EXPECT_NEAR(out.lengths[i], i == 2 ? 0.01 : 0.0, 1e-8);
        for (const auto* untouched : {&out.image, &out.calibration, &out.deviations, &out.expanded}) {
            EXPECT_EQ((*untouched)[i], kUntouched);
        }
    }
    EXPECT_EQ(out.statuses[3], ZELM_MEASURE_LENGTH_OK);
    EXPECT_GT(out.deviations[3], 0.0);
    // Also without noise the length from a point to itself has none.
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    const std::vector<double> zeros(3 * points.size());
    noise.left = noise.right = zeros.data();
    const Outputs still = measured(known, exact, {0, 0, 0, 2}, &noise);
    EXPECT_EQ(still.statuses[0], ZELM_MEASURE_LENGTH_SHORT);
    EXPECT_EQ(still.lengths[0], 0.0);
    EXPECT_EQ(still.statuses[1], ZELM_MEASURE_LENGTH_OK);
    EXPECT_EQ(still.image[1], 0.0);
}

// Those that the pixels make are stated as those of the points: the lengths are known as well as before.
TEST(LengthUncertainty, CovariancesOfPointsTakeThePlaceOfThePixels) {
    const KnownRig known(makePair(0, 0), kNoise);
    const PairPixels pixels = pixelsOf(known.pair, corners());
    const auto count = static_cast<std::size_t>(pixels.count());
    std::vector<double> covariances(6 * count);
    auto points = emptyRecord<ZelmMeasurePointCovariances>();
    points.image = covariances.data();
    auto twice = emptyRecord<ZelmMeasurePixelNoise>();
    twice.sigma = 2.0 * kNoise;
    ASSERT_EQ(zelmMeasurePointCovariance(known.rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(),
                                         &twice, &points),
              ZELM_OK);
    const Ends ends{0, 1, 0, 2, 1, 3};
    const Outputs byPixels = measured(known, pixels, ends, &twice);
    const Outputs byCalibration = measured(known, pixels, ends);

    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.points = covariances.data();
    const Outputs byPoints = measured(known, pixels, ends, &noise);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(byPoints.image[i], byPixels.image[i], 1e-9 * byPixels.image[i]);
        EXPECT_GT(byPoints.image[i], 1.9 * byCalibration.image[i]);
        EXPECT_EQ(byPoints.calibration[i], byPixels.calibration[i]);
    }
    // They come back from the call for points, too.
    std::vector<double> back(6 * count);
    points.image = back.data();
    ASSERT_EQ(zelmMeasurePointCovariance(known.rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(),
                                         &noise, &points),
              ZELM_OK);
    for (std::size_t k = 0; k < back.size(); ++k) {
        const double size = covariances[k / 6 * 6] + covariances[k / 6 * 6 + 3] + covariances[k / 6 * 6 + 5];
        EXPECT_NEAR(back[k], covariances[k], 1e-12 * size);
    }
    // A point of which nothing is stated has its pixels' noise.
    for (std::size_t i = 0; i < count; ++i) {
        covariances[6 * i] = std::numeric_limits<double>::quiet_NaN();
    }
    EXPECT_EQ(measured(known, pixels, ends, &noise).image, byCalibration.image);
}

TEST(LengthUncertainty, EndsWithoutAPoint) {
    const KnownRig known(makePair(0, 0), kNoise);
    PairPixels pixels = pixelsOf(known.pair, {{0.0, 0.0, 0.0}});
    pixels.add({1e9, 1e9}, {640.0, 480.0});
    pixels.add({1240.0, 480.0}, {40.0, 480.0});  // behind the cameras
    const Outputs out = measured(known, pixels, {0, 1, 2, 0, 1, 1});
    Outputs expected(3);
    expected.statuses = {ZELM_MEASURE_LENGTH_NO_POINT, ZELM_MEASURE_LENGTH_NO_POINT, ZELM_MEASURE_LENGTH_NO_POINT};
    EXPECT_EQ(out, expected);
}

TEST(LengthUncertainty, EndsThatAreNoPointsAreRefused) {
    const KnownRig known(makePair(0, 0), kNoise);
    const PairPixels pixels = pixelsOf(known.pair, corners());
    for (const Ends& ends : {Ends{0, 6}, Ends{-1, 0}, Ends{0, INT64_MAX}, Ends{INT64_MIN, 0}}) {
        Outputs out(1);
        EXPECT_EQ(lengthsOf(known.rig.get(), pixels, ends, out), ZELM_ERR_PARAM);
        EXPECT_EQ(out, Outputs(1));
    }
    Outputs none(1);
    EXPECT_EQ(lengthsOf(known.rig.get(), pixels, {}, none), ZELM_OK);
    EXPECT_EQ(none, Outputs(1));
}

TEST(LengthUncertainty, ARigWithoutACovarianceTellsTheNoisesPartAlone) {
    const KnownRig known(makePair(0, 0), kNoise);
    const OpenedRig rig(blockOf(known.pair));
    const PairPixels pixels = pixelsOf(known.pair, corners());
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = kNoise;
    Outputs out(5);
    EXPECT_EQ(lengthsOf(rig.get(), pixels, kEnds, out, &noise), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(out, Outputs(5));
    auto record = emptyRecord<ZelmMeasureLengths>();
    record.lengths = out.lengths.data();
    record.image = out.image.data();
    ASSERT_EQ(zelmMeasureLengths(rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(), &noise, 5,
                                 kEnds.data(), &record),
              ZELM_OK);
    const Outputs all = measured(known, pixels, kEnds);
    EXPECT_EQ(out.lengths, all.lengths);
    EXPECT_EQ(out.image, all.image);
}

}  // namespace
}  // namespace zelmtest
