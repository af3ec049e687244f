// Figures of distances against closed forms, by the interface.
#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

#include "isClose.h"

namespace {

using zelmtest::isClose;

ZelmMeasureFigures figuresOf(const std::vector<double>& distances) {
    ZelmMeasureFigures figures{};
    figures.size = sizeof figures;
    EXPECT_EQ(zelmMeasureFigures(static_cast<std::int64_t>(distances.size()), distances.data(), &figures), ZELM_OK);
    EXPECT_EQ(figures.size, static_cast<std::int32_t>(sizeof figures));
    EXPECT_EQ(figures.count, static_cast<std::int64_t>(distances.size()));
    return figures;
}

TEST(MeasureFigures, NoDistancesHaveFiguresOfZero) {
    ZelmMeasureFigures f{sizeof f, 9, 9, 9.0, 9.0, 9.0, 9.0, 9.0};
    ASSERT_EQ(zelmMeasureFigures(0, nullptr, &f), ZELM_OK);
    EXPECT_EQ(f.count, 0);
    EXPECT_EQ(f.mean, 0.0);
    EXPECT_EQ(f.rms, 0.0);
    EXPECT_EQ(f.max, 0.0);
    EXPECT_EQ(f.median, 0.0);
    EXPECT_EQ(f.quantile95, 0.0);
}

TEST(MeasureFigures, OneDistanceIsAllFigures) {
    const ZelmMeasureFigures f = figuresOf({2.5});
    for (const double value : {f.mean, f.rms, f.max, f.median, f.quantile95}) {
        EXPECT_EQ(value, 2.5);
    }
}

TEST(MeasureFigures, WholeNumbersGiveClosedForms) {
    // n .. 1, out of order: the mean is (n + 1) / 2, the mean square (n + 1)(2 n + 1) / 6.
    for (const int n : {2, 3, 100, 101}) {
        SCOPED_TRACE(n);
        std::vector<double> distances(static_cast<std::size_t>(n));
        std::iota(distances.rbegin(), distances.rend(), 1.0);
        const ZelmMeasureFigures f = figuresOf(distances);
        EXPECT_TRUE(isClose(f.mean, 0.5 * (n + 1), 1e-14));
        EXPECT_TRUE(isClose(f.rms, std::sqrt((n + 1) * (2 * n + 1) / 6.0), 1e-14));
        EXPECT_EQ(f.max, n);
        // The middle one; of an even number the larger of the two in the middle.
        EXPECT_EQ(f.median, n / 2 + 1);
        EXPECT_EQ(f.quantile95, 95 * n / 100 + 1);
    }
}

TEST(MeasureFigures, NotANumberIsInfinitelyFar) {
    const ZelmMeasureFigures f = figuresOf({1.0, std::numeric_limits<double>::quiet_NaN(), 3.0});
    EXPECT_EQ(f.median, 3.0);
    for (const double value : {f.mean, f.rms, f.max, f.quantile95}) {
        EXPECT_EQ(value, std::numeric_limits<double>::infinity());
    }
}

TEST(MeasureFigures, DistancesStayAsTheyWere) {
    const std::vector<double> distances{3.0, 1.0, 2.0};
    std::vector<double> given = distances;
    figuresOf(given);
    EXPECT_EQ(given, distances);
}

}  // namespace
