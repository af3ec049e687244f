// Normalisation of point sets: arguments, transforms, in-place use, the common scale in the plane and in space.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "isClose.h"
#include "random.h"
#include "zelm/calib.h"

namespace {

using zelmtest::isClose;

constexpr double kGuard = 7.25;
const double kRoot2 = std::sqrt(2.0);

std::vector<double> randomPoints(zelmtest::Random& random, int n, int dim, double offset) {
    std::vector<double> points(static_cast<std::size_t>(n * dim));
    for (double& coordinate : points) {
        coordinate = offset + random.uniform(-50, 50);
    }
    return points;
}

double meanDistance(const std::vector<double>& points, std::size_t dim) {
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); i += dim) {
        double square = 0.0;
        for (std::size_t k = 0; k < dim; ++k) {
            square += points[i + k] * points[i + k];
        }
        sum += std::sqrt(square);
    }
    return sum / static_cast<double>(points.size() / dim);
}

TEST(CalibNormalizeData, BadArgumentsAreRefusedAndNothingIsWritten) {
    const double src[4] = {1, 2, 3, 4};
    double dst[4] = {kGuard, kGuard, kGuard, kGuard};
    double T[16];
    double Tinv[16];
    T[0] = Tinv[0] = kGuard;
    for (const int32_t dim : {-2, 0, 1, 4}) {
        EXPECT_EQ(zelmCalibNormalizeData(dim, 2, src, dst, T, Tinv), ZELM_ERR_PARAM) << dim;
    }
    EXPECT_EQ(zelmCalibNormalizeData(2, 0, src, dst, T, Tinv), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibNormalizeData(2, -1, src, dst, T, Tinv), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibNormalizeData(2, 2, nullptr, dst, T, Tinv), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmCalibNormalizeData(2, 2, src, nullptr, T, Tinv), ZELM_ERR_PARAM);
    EXPECT_EQ(dst[0], kGuard);
    EXPECT_EQ(T[0], kGuard);
    EXPECT_EQ(Tinv[0], kGuard);
}

// Corners of a square of side 2 around (3, 5): every distance is sqrt(2), so the scale is 1.
TEST(CalibNormalizeData, SquareIsCentredAndKeepsItsSize) {
    const double src[8] = {2, 4, 4, 4, 4, 6, 2, 6};
    double dst[8];
    double T[9];
    double Tinv[9];
    ASSERT_EQ(zelmCalibNormalizeData(2, 4, src, dst, T, Tinv), ZELM_OK);
    const double expected[8] = {-1, -1, 1, -1, 1, 1, -1, 1};
    const double expectedT[9] = {1, 0, -3, 0, 1, -5, 0, 0, 1};
    const double expectedTinv[9] = {1, 0, 3, 0, 1, 5, 0, 0, 1};
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_TRUE(isClose(dst[i], expected[i], 1e-15));
    }
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_TRUE(isClose(T[i], expectedT[i], 1e-15)) << i;
        EXPECT_TRUE(isClose(Tinv[i], expectedTinv[i], 1e-15)) << i;
    }
}

TEST(CalibNormalizeData, MeanDistanceIsRootTwoInThePlaneAndInSpace) {
    zelmtest::Random random(1);
    for (int trial = 0; trial < 500; ++trial) {
        for (const int dim : {2, 3}) {
            const int n = random.integer(2, 200);
            const auto src = randomPoints(random, n, dim, random.uniform(-1000, 1000));
            std::vector<double> dst(src.size());
            ASSERT_EQ(zelmCalibNormalizeData(dim, n, src.data(), dst.data(), nullptr, nullptr), ZELM_OK);
            // Offsets of 20 times the extent lose as many units of rounding.
            EXPECT_TRUE(isClose(meanDistance(dst, static_cast<std::size_t>(dim)), kRoot2, 1e-13));
        }
    }
}

TEST(CalibNormalizeData, TransformsMapThereAndBack) {
    zelmtest::Random random(2);
    for (int trial = 0; trial < 500; ++trial) {
        for (const int dim : {2, 3}) {
            const auto size = static_cast<std::size_t>(dim);
            const int n = random.integer(2, 30);
            const auto src = randomPoints(random, n, dim, random.uniform(-1000, 1000));
            std::vector<double> dst(src.size());
            std::array<double, 16> T{};
            std::array<double, 16> Tinv{};
            ASSERT_EQ(zelmCalibNormalizeData(dim, n, src.data(), dst.data(), T.data(), Tinv.data()), ZELM_OK);
            for (std::size_t i = 0; i < src.size(); ++i) {
                const std::size_t k = i % size;
                const std::size_t row = k * (size + 1);
                EXPECT_TRUE(isClose(T[row + k] * src[i] + T[row + size], dst[i], 1e-15));
                EXPECT_TRUE(isClose(Tinv[row + k] * dst[i] + Tinv[row + size], src[i], 1e-14));
            }
            EXPECT_EQ(T[size * (size + 1) + size], 1.0);
            EXPECT_EQ(Tinv[size * (size + 1) + size], 1.0);
        }
    }
}

TEST(CalibNormalizeData, InPlaceGivesTheSameBits) {
    zelmtest::Random random(3);
    auto points = randomPoints(random, 20, 3, 10);
    std::vector<double> apart(points.size());
    double T[16];
    double Tinv[16];
    ASSERT_EQ(zelmCalibNormalizeData(3, 20, points.data(), apart.data(), nullptr, nullptr), ZELM_OK);
    ASSERT_EQ(zelmCalibNormalizeData(3, 20, points.data(), points.data(), T, Tinv), ZELM_OK);
    EXPECT_EQ(points, apart);
}

TEST(CalibNormalizeData, IdenticalPointsGiveResultsThatAreNotFinite) {
    const double src[6] = {1, 2, 1, 2, 1, 2};
    double dst[6];
    double T[9];
    ASSERT_EQ(zelmCalibNormalizeData(2, 3, src, dst, T, nullptr), ZELM_OK);
    EXPECT_TRUE(std::isinf(T[0]));
    for (const double coordinate : dst) {
        EXPECT_FALSE(std::isfinite(coordinate));
    }
}

}  // namespace
