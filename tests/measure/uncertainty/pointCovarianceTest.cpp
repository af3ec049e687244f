// Covariances of points, against those of points triangulated with drawn rigs and pixels.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

#include "knownRig.h"
#include "space3.h"

namespace zelmtest {
namespace {

using namespace zelm::measure;

constexpr double kNoise = 0.05;  // pixels
constexpr double kUntouched = -7.0;

struct Outputs {
    std::vector<std::int32_t> statuses;
    std::vector<double> positions, image, calibration, depths;

    explicit Outputs(std::size_t count)
        : statuses(count, -7),
          positions(3 * count, kUntouched),
          image(6 * count, kUntouched),
          calibration(6 * count, kUntouched),
          depths(2 * count, kUntouched) {}
    ZelmMeasurePointCovariances record() {
        auto r = emptyRecord<ZelmMeasurePointCovariances>();
        r.statuses = statuses.data();
        r.positions = positions.data();
        r.image = image.data();
        r.calibration = calibration.data();
        r.depths = depths.data();
        return r;
    }
    bool operator==(const Outputs&) const = default;
};

std::int32_t covariancesOf(ZelmMeasureRig* rig, const PairPixels& pixels, Outputs& out,
                           const ZelmMeasurePixelNoise* noise = nullptr) {
    const ZelmMeasurePointCovariances record = out.record();
    return zelmMeasurePointCovariance(rig, pixels.count(), pixels.left.data(), pixels.right.data(), noise, &record);
}

std::vector<Point3d> somePoints() {
    return {{0.0, 0.0, 0.0}, {60.0, 45.0, -30.0}, {-60.0, 40.0, 30.0}, {55.0, -45.0, 10.0}, {-50.0, -40.0, -60.0}};
}

// Sums of products of the errors of points.
class Moments {
public:
    explicit Moments(std::size_t points) : sums(6 * points) {}
    void add(const std::vector<double>& errors) {
        for (std::size_t i = 0; i < sums.size() / 6; ++i) {
            const double* const e = &errors[3 * i];
            const double products[] = {e[0] * e[0], e[0] * e[1], e[0] * e[2], e[1] * e[1], e[1] * e[2], e[2] * e[2]};
            for (std::size_t k = 0; k < 6; ++k) {
                sums[6 * i + k] += products[k];
            }
        }
        draws += 1.0;
    }
    // Of point i, where the predicted covariance is the unit matrix: U' U = predicted, U'^-1 S U^-1.
    [[nodiscard]] zelm::measure::Matrix<3> whitened(std::size_t i, const double* predicted) const {
        zelm::measure::Matrix<3> U{};
        const std::size_t places[3][3] = {{0, 1, 2}, {1, 3, 4}, {2, 4, 5}};
        for (std::size_t r = 0; r < 3; ++r) {
            for (std::size_t c = 0; c < 3; ++c) {
                U[r][c] = predicted[places[r][c]];
            }
        }
        EXPECT_TRUE(factor(U));
        zelm::measure::Matrix<3> S{};
        for (std::size_t r = 0; r < 3; ++r) {
            for (std::size_t c = 0; c < 3; ++c) {
                S[r][c] = sums[6 * i + places[r][c]] / draws;
            }
        }
        for (int side = 0; side < 2; ++side) {  // U'^-1 S, then the same of the transpose
            zelm::measure::Matrix<3> half{};
            for (std::size_t c = 0; c < 3; ++c) {
                for (std::size_t r = 0; r < 3; ++r) {
                    double value = S[r][c];
                    for (std::size_t k = 0; k < r; ++k) {
                        value -= U[k][r] * half[c][k];
                    }
                    half[c][r] = value / U[r][r];
                }
            }
            S = half;
        }
        return S;
    }

private:
    std::vector<double> sums;
    double draws = 0.0;
};

// The elements of a sample covariance of n draws err by sqrt(2 / n) at most: 1.3 % of 12000, a quarter of the bound.
constexpr int kDraws = 12000;
constexpr double kSampleBound = 0.05;

void expectUnitMatrix(const zelm::measure::Matrix<3>& S) {
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_NEAR(S[r][c], r == c ? 1.0 : 0.0, kSampleBound) << r << ' ' << c;
        }
    }
}

std::vector<double> errorsOf(const std::vector<double>& positions, const std::vector<Point3d>& truth) {
    std::vector<double> errors = positions;
    for (std::size_t i = 0; i < truth.size(); ++i) {
        errors[3 * i] -= truth[i].x;
        errors[3 * i + 1] -= truth[i].y;
        errors[3 * i + 2] -= truth[i].z;
    }
    return errors;
}

class CovarianceOfModels : public testing::TestWithParam<std::int32_t> {};

TEST_P(CovarianceOfModels, DrawnRigsAndPixelsScatterAsPredicted) {
    const KnownRig known(makePair(GetParam(), 0), kNoise);
    const std::vector<Point3d> truth = somePoints();
    const PairPixels exact = pixelsOf(known.pair, truth);
    Outputs out(truth.size());
    ASSERT_EQ(covariancesOf(known.rig.get(), exact, out), ZELM_OK) << known.rig.error();
    const ParameterDraws draws(known.covariance);
    Random random(2026);
    Moments byImage(truth.size());
    Moments byCalibration(truth.size());
    Moments byBoth(truth.size());
    for (int n = 0; n < kDraws; ++n) {
        PairPixels noisy = exact;
        noisy.addNoise(random, kNoise);
        const TruePair drawn = moved(known.pair, draws.draw(random));
        byImage.add(errorsOf(triangulated(known.pair, noisy), truth));
        byCalibration.add(errorsOf(triangulated(drawn, exact), truth));
        byBoth.add(errorsOf(triangulated(drawn, noisy), truth));
    }
    for (std::size_t i = 0; i < truth.size(); ++i) {
        SCOPED_TRACE(i);
        double sum[6];
        for (std::size_t k = 0; k < 6; ++k) {
            sum[k] = out.image[6 * i + k] + out.calibration[6 * i + k];
        }
        expectUnitMatrix(byImage.whitened(i, &out.image[6 * i]));
        expectUnitMatrix(byCalibration.whitened(i, &out.calibration[6 * i]));
        expectUnitMatrix(byBoth.whitened(i, sum));
    }
}

INSTANTIATE_TEST_SUITE_P(Models, CovarianceOfModels, testing::Values(0, 1, 2));

TEST(PointCovariance, DepthsHaveTheDeviationsOfTheirScatter) {
    const KnownRig known(makePair(0, 0), kNoise);
    const std::vector<Point3d> truth = somePoints();
    const PairPixels exact = pixelsOf(known.pair, truth);
    Outputs out(truth.size());
    ASSERT_EQ(covariancesOf(known.rig.get(), exact, out), ZELM_OK);
    const ParameterDraws draws(known.covariance);
    Random random(5);
    std::vector<double> squares(2 * truth.size());
    const auto depth = [](const TruePair& pair, const double* X) {
        const ZelmCameraExtrinsics& p = pair.left.pose;
        return p.R[6] * X[0] + p.R[7] * X[1] + p.R[8] * X[2] + p.t[2];
    };
    constexpr int kDepthDraws = 8000;  // 1.6 % of a variance, 0.8 % of a deviation
    const std::vector<double> exactly = triangulated(known.pair, exact);
    for (int n = 0; n < kDepthDraws; ++n) {
        PairPixels noisy = exact;
        noisy.addNoise(random, kNoise);
        const TruePair drawn = moved(known.pair, draws.draw(random));
        const std::vector<double> a = triangulated(known.pair, noisy);
        const std::vector<double> b = triangulated(drawn, exact);
        for (std::size_t i = 0; i < truth.size(); ++i) {
            const double d = depth(known.pair, &exactly[3 * i]);
            squares[2 * i] += std::pow(depth(known.pair, &a[3 * i]) - d, 2.0) / kDepthDraws;
            squares[2 * i + 1] += std::pow(depth(drawn, &b[3 * i]) - d, 2.0) / kDepthDraws;
        }
    }
    for (std::size_t i = 0; i < squares.size(); ++i) {
        EXPECT_NEAR(std::sqrt(squares[i]) / out.depths[i], 1.0, 0.04) << i;
    }
}

TEST(PointCovariance, PixelCovariancesOfTheirOwn) {
    const KnownRig known(makePair(0, 0), kNoise);
    const std::vector<Point3d> truth = somePoints();
    const PairPixels exact = pixelsOf(known.pair, truth);
    const double s2 = kNoise * kNoise;
    Outputs plain(truth.size());
    ASSERT_EQ(covariancesOf(known.rig.get(), exact, plain), ZELM_OK);
    // The same noise, said point by point, or for one side alone.
    std::vector<double> isotropic;
    for (std::size_t i = 0; i < truth.size(); ++i) {
        isotropic.insert(isotropic.end(), {s2, 0.0, s2});
    }
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    for (const int sides : {1, 2, 3}) {
        noise.left = (sides & 1) != 0 ? isotropic.data() : nullptr;
        noise.right = (sides & 2) != 0 ? isotropic.data() : nullptr;
        Outputs out(truth.size());
        ASSERT_EQ(covariancesOf(known.rig.get(), exact, out, &noise), ZELM_OK);
        EXPECT_EQ(out, plain) << sides;
    }
    // Twice the sigma is four times the covariance; the calibration's part stays.
    noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = 2.0 * kNoise;
    Outputs twice(truth.size());
    ASSERT_EQ(covariancesOf(known.rig.get(), exact, twice, &noise), ZELM_OK);
    EXPECT_EQ(twice.calibration, plain.calibration);
    for (std::size_t k = 0; k < twice.image.size(); ++k) {
        EXPECT_NEAR(twice.image[k], 4.0 * plain.image[k], 1e-12 * std::fabs(plain.image[k]));
    }
    // Long, slanting ellipses scatter points as the covariance says: the point is that of equal weights none the less.
    Random random(8);
    std::vector<double> slanting;
    for (std::size_t i = 0; i < truth.size(); ++i) {
        slanting.insert(slanting.end(), {9.0 * s2, 2.5 * s2, s2});
    }
    noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.left = slanting.data();
    noise.sigma = kNoise;
    Outputs out(truth.size());
    ASSERT_EQ(covariancesOf(known.rig.get(), exact, out, &noise), ZELM_OK);
    Moments moments(truth.size());
    for (int n = 0; n < kDraws; ++n) {
        PairPixels noisy = exact;
        for (std::size_t i = 0; i < truth.size(); ++i) {
            const double a = kNoise * random.normal();
            const double b = kNoise * random.normal();
            noisy.left[2 * i] += 3.0 * a;
            noisy.left[2 * i + 1] += 2.5 / 3.0 * a + std::sqrt(1.0 - 2.5 * 2.5 / 9.0) * b;
            noisy.right[2 * i] += kNoise * random.normal();
            noisy.right[2 * i + 1] += kNoise * random.normal();
        }
        moments.add(errorsOf(triangulated(known.pair, noisy), truth));
    }
    for (std::size_t i = 0; i < truth.size(); ++i) {
        expectUnitMatrix(moments.whitened(i, &out.image[6 * i]));
    }
}

TEST(PointCovariance, PairsWithoutAPointHaveAStatusAlone) {
    KnownRig known(makePair(0, 0), kNoise);
    PairPixels pixels = pixelsOf(known.pair, {{0.0, 0.0, 0.0}});
    pixels.add({1e9, 1e9}, {640.0, 480.0});
    pixels.add({std::nan(""), 0.0}, {640.0, 480.0});
    Outputs out(3);
    ASSERT_EQ(covariancesOf(known.rig.get(), pixels, out), ZELM_OK);
    EXPECT_EQ(out.statuses[0], ZELM_MEASURE_POINT_OK);
    EXPECT_EQ(out.statuses[1], ZELM_MEASURE_POINT_DISTORTION);
    EXPECT_NE(out.statuses[2], ZELM_MEASURE_POINT_OK);
    EXPECT_NE(out.image[5], kUntouched);
    for (std::size_t k = 6; k < 18; ++k) {
        EXPECT_EQ(out.image[k], kUntouched);
        EXPECT_EQ(out.calibration[k], kUntouched);
    }
    // Behind a camera there are numbers.
    PairPixels behind;
    behind.add({1240.0, 480.0}, {40.0, 480.0});
    Outputs one(1);
    ASSERT_EQ(covariancesOf(known.rig.get(), behind, one), ZELM_OK);
    EXPECT_EQ(one.statuses[0], ZELM_MEASURE_POINT_BEHIND);
    EXPECT_GT(one.image[0], 0.0);
}

TEST(PointCovariance, NumbersThatGrowBeyondADoubleAreNone) {
    KnownRig known(makePair(0, 0), kNoise);
    const PairPixels pixels = pixelsOf(known.pair, {{0.0, 0.0, 0.0}});
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = 1e200;
    Outputs out(1);
    ASSERT_EQ(covariancesOf(known.rig.get(), pixels, out, &noise), ZELM_OK);
    Outputs expected(1);
    expected.statuses[0] = ZELM_MEASURE_POINT_PARALLEL;
    EXPECT_EQ(out, expected);
}

TEST(PointCovariance, ArraysThatAreNotWantedMayBeMissing) {
    const KnownRig known(makePair(0, 0), kNoise);
    const PairPixels pixels = pixelsOf(known.pair, somePoints());
    Outputs all(somePoints().size());
    ASSERT_EQ(covariancesOf(known.rig.get(), pixels, all), ZELM_OK);
    Outputs some(somePoints().size());
    auto record = emptyRecord<ZelmMeasurePointCovariances>();
    record.calibration = some.calibration.data();
    ASSERT_EQ(zelmMeasurePointCovariance(known.rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(),
                                         nullptr, &record),
              ZELM_OK);
    Outputs expected(somePoints().size());
    expected.calibration = all.calibration;
    EXPECT_EQ(some, expected);
}

TEST(PointCovariance, ARigWithoutACovarianceTellsTheNoisesPartAlone) {
    const TruePair pair = makePair(0, 0);
    const OpenedRig rig(blockOf(pair));
    const PairPixels pixels = pixelsOf(pair, somePoints());
    Outputs out(somePoints().size());
    EXPECT_EQ(covariancesOf(rig.get(), pixels, out), ZELM_MEASURE_ERR_DATA);
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = kNoise;
    EXPECT_EQ(covariancesOf(rig.get(), pixels, out, &noise), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(rig.error(), "the calibration has no covariance: calibrate with the adjustment");
    EXPECT_EQ(out, Outputs(somePoints().size()));
    auto record = emptyRecord<ZelmMeasurePointCovariances>();
    record.image = out.image.data();
    ASSERT_EQ(
        zelmMeasurePointCovariance(rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(), &noise, &record),
        ZELM_OK);
    const KnownRig known(pair, kNoise);
    Outputs expected(somePoints().size());
    ASSERT_EQ(covariancesOf(known.rig.get(), pixels, expected), ZELM_OK);
    EXPECT_EQ(out.image, expected.image);
}

TEST(PointCovariance, TwoParallelCamerasAreRefused) {
    const OpenedRig rig(parallelBlock());
    PairPixels pixels;
    pixels.add({100.0, 100.0}, {100.0, 100.0});
    auto noise = emptyRecord<ZelmMeasurePixelNoise>();
    noise.sigma = kNoise;
    Outputs out(1);
    auto record = emptyRecord<ZelmMeasurePointCovariances>();
    record.image = out.image.data();
    EXPECT_EQ(zelmMeasurePointCovariance(rig.get(), 1, pixels.left.data(), pixels.right.data(), &noise, &record),
              ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(out, Outputs(1));
}

TEST(PointCovariance, ManyPairsInOneCallAreTheSameAsOneByOne) {
    constexpr std::size_t kCount = 100000;
    const KnownRig known(makePair(0, 0), kNoise);
    Random random(9);
    std::vector<Point3d> points;
    for (std::size_t i = 0; i < kCount; ++i) {
        points.push_back(randomWorldPoint(random));
    }
    const PairPixels pixels = pixelsOf(known.pair, points);
    Outputs out(kCount);
    std::vector<double> positions(3 * kCount);
    auto plain = emptyRecord<ZelmMeasurePoints>();
    plain.positions = positions.data();
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    ASSERT_EQ(zelmMeasureTriangulate(known.rig.get(), pixels.count(), pixels.left.data(), pixels.right.data(), &plain),
              ZELM_OK);
    const auto middle = Clock::now();
    ASSERT_EQ(covariancesOf(known.rig.get(), pixels, out), ZELM_OK);
    const std::chrono::duration<double> triangulation = middle - start;
    const std::chrono::duration<double> all = Clock::now() - middle;
    std::printf("%.2f us a point beside triangulation's %.2f us\n",
                1e6 * (all - triangulation).count() / static_cast<double>(kCount),
                1e6 * triangulation.count() / static_cast<double>(kCount));
    EXPECT_EQ(out.positions, positions);
    for (std::size_t i = 0; i < kCount; i += 997) {
        PairPixels one;
        one.add({pixels.left[2 * i], pixels.left[2 * i + 1]}, {pixels.right[2 * i], pixels.right[2 * i + 1]});
        Outputs single(1);
        ASSERT_EQ(covariancesOf(known.rig.get(), one, single), ZELM_OK);
        for (std::size_t k = 0; k < 6; ++k) {
            EXPECT_EQ(single.image[k], out.image[6 * i + k]);
            EXPECT_EQ(single.calibration[k], out.calibration[6 * i + k]);
        }
    }
}

}  // namespace
}  // namespace zelmtest
