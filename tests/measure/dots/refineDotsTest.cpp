// What fitting a dot refuses and flags, and the function of the interface that does it for many.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "dotShapes.h"
#include "dotTrials.h"
#include "measureRigs.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

using zelm::accuracy::Disturbance;
using zelm::accuracy::DisturbanceFigures;
using zelm::accuracy::tryDisturbed;

// The bench tries ten thousand.
TEST(MeasureRefineDots, WrongPlacesAreNeverAccepted) {
    const auto figures = zelm::accuracy::tryWrongPlaces(600, 5);
    for (std::size_t k = 0; k < zelm::accuracy::kWrongPlaces; ++k) {
        EXPECT_EQ(figures.wrong[k], 0) << k;
    }
}

TEST(MeasureRefineDots, UndisturbedDotsHaveNoFlag) {
    const DisturbanceFigures f = tryDisturbed(Disturbance::nothing, 300, 3);
    EXPECT_EQ(f.accepted, f.trials);
    EXPECT_EQ(f.astray, 0);
    EXPECT_NEAR(f.pull, 1.0, 0.1);
}

TEST(MeasureRefineDots, PartsOfTheOutlineMayBeHidden) {
    const DisturbanceFigures f = tryDisturbed(Disturbance::halfPlane, 300, 4, 0.08, 0.3);
    EXPECT_GE(f.accepted, 9 * f.trials / 10);
    EXPECT_GE(f.flagged, 9 * f.accepted / 10);
    EXPECT_LE(f.astray, f.accepted / 50);
    EXPECT_EQ(tryDisturbed(Disturbance::halfPlane, 200, 5, 0.5, 0.6).astray, 0);
}

// What hides little of a dot and is as bright as its ground makes it pass for a smaller one aside, but for what is left
// along the outline. Such dots are refused; one in a hundred may pass.
TEST(MeasureRefineDots, LittleHiddenIsSeenToo) {
    const DisturbanceFigures f = tryDisturbed(Disturbance::halfPlane, 500, 21, 0.05, 0.2);
    EXPECT_GE(f.accepted, 9 * f.trials / 10);
    EXPECT_GE(f.flagged, 98 * f.accepted / 100);
    EXPECT_LE(f.astray, f.accepted / 100);
}

TEST(MeasureRefineDots, HighlightsSaturationAndNeighbours) {
    for (const auto kind : {Disturbance::highlight, Disturbance::saturation, Disturbance::nearDisc}) {
        const DisturbanceFigures f = tryDisturbed(kind, 200, 6);
        EXPECT_GE(f.accepted, 3 * f.trials / 4) << static_cast<int>(kind);
        EXPECT_LE(f.astray, f.accepted / 100) << static_cast<int>(kind);
        EXPECT_LE(f.pull, 1.3) << static_cast<int>(kind);
    }
}

struct Refined {
    std::vector<std::int32_t> statuses;
    std::vector<std::int32_t> flags;
    std::vector<double> centres;
    std::vector<double> covariances;
    std::vector<double> levels;
};

constexpr double kUntouched = -7.0;

Refined refine(const ZelmMeasureImage& image, const std::vector<double>& shapes, std::int32_t polarity = 0) {
    const std::size_t n = shapes.size() / 6;
    Refined r{std::vector<std::int32_t>(n, -7), std::vector<std::int32_t>(n, -7),
              std::vector<double>(2 * n, kUntouched), std::vector<double>(3 * n, kUntouched),
              std::vector<double>(2 * n, kUntouched)};
    auto dots = emptyRecord<ZelmMeasureRefinedDots>();
    dots.statuses = r.statuses.data();
    dots.flags = r.flags.data();
    dots.centres = r.centres.data();
    dots.covariances = r.covariances.data();
    dots.levels = r.levels.data();
    EXPECT_EQ(zelmMeasureRefineDots(&image, static_cast<std::int64_t>(n), shapes.data(), nullptr, polarity, &dots),
              ZELM_OK);
    return r;
}

void append(std::vector<double>& shapes, const zelm::measure::DotShape& s) {
    shapes.insert(shapes.end(), {s.centre.x, s.centre.y, s.axes[0], s.axes[1], s.axes[2], s.axes[3]});
}

TEST(MeasureRefineDots, ManyDotsInOneCall) {
    const render::RenderedView view = smallView(10.0, 25.0);
    std::vector<double> shapes;
    for (const render::DotTruth& dot : view.dots) {
        append(shapes, shapeOf(dot.ellipse, 0.7, -0.4, 1.05));
    }
    append(shapes, shapeOf({{5.0, 5.0}, 8.0, 7.0, 0.3}));  // where there is none
    const Refined r = refine(imageOf(view.image), shapes);
    for (std::size_t i = 0; i < view.dots.size(); ++i) {
        EXPECT_EQ(r.statuses[i], ZELM_MEASURE_DOT_OK);
        EXPECT_EQ(r.flags[i], 0);
        // Rounding to whole levels alone.
        EXPECT_NEAR(r.centres[2 * i], view.dots[i].ellipse.centre.x, 0.005);
        EXPECT_NEAR(r.centres[2 * i + 1], view.dots[i].ellipse.centre.y, 0.005);
        EXPECT_GT(r.covariances[3 * i], 0.0);
        EXPECT_LT(r.levels[2 * i], r.levels[2 * i + 1]);
    }
    EXPECT_EQ(r.statuses.back(), ZELM_MEASURE_DOT_MISSING);
    EXPECT_NE(r.flags.back(), 0);
    EXPECT_EQ(r.centres.back(), kUntouched);
    EXPECT_EQ(r.covariances.back(), kUntouched);
    for (const std::int32_t status : refine(imageOf(view.image), shapes, 1).statuses) {
        EXPECT_EQ(status, ZELM_MEASURE_DOT_MISSING);
    }
}

TEST(MeasureRefineDots, GarbageIsMissing) {
    const render::RenderedView view = smallView();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const double values[] = {kNan, HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 0.0, 1e-300};
    const render::EllipseTruth& e = view.dots[3].ellipse;
    std::vector<double> shapes;
    for (std::size_t k = 0; k < 6; ++k) {
        for (const double value : values) {
            double shape[6] = {e.centre.x, e.centre.y, e.a, 0.0, 0.0, e.b};
            if ((k == 3 || k == 4) && std::fabs(value) < 1.0) {
                continue;  // sound
            }
            shape[k] = value;
            shapes.insert(shapes.end(), shape, shape + 6);
        }
    }
    for (const std::int32_t status : refine(imageOf(view.image), shapes).statuses) {
        EXPECT_EQ(status, ZELM_MEASURE_DOT_MISSING);
    }
    // The smallest images.
    const std::uint8_t pixel[4] = {0, 255, 255, 0};
    const std::vector<double> one{0.0, 0.0, 4.0, 0.0, 0.0, 4.0};
    EXPECT_EQ(refine({pixel, 1, 1, 1}, one).statuses[0], ZELM_MEASURE_DOT_MISSING);
    EXPECT_EQ(refine({pixel, 2, 2, 2}, one).statuses[0], ZELM_MEASURE_DOT_MISSING);
}

TEST(MeasureRefineDots, DotsCutOffByTheImage) {
    const render::RenderedView view = smallView();
    const render::DotTruth& dot = view.dots[17];
    const auto left = static_cast<int>(dot.ellipse.centre.x);
    for (const double part : {0.85, 0.3}) {  // of the radius, left of the centre, that is seen
        const int column = left - static_cast<int>(part * dot.radius);
        const ZelmMeasureImage image{view.image.pixels.data() + column, view.image.width - column, view.image.height,
                                     view.image.width};
        std::vector<double> shape;
        append(shape, shapeOf(dot.ellipse, -column));
        const Refined r = refine(image, shape);
        EXPECT_EQ(r.flags[0] & ZELM_MEASURE_DOT_CUT, ZELM_MEASURE_DOT_CUT);
        EXPECT_EQ(r.statuses[0], part > 0.5 ? ZELM_MEASURE_DOT_OK : ZELM_MEASURE_DOT_MISSING);
        if (part > 0.5) {
            EXPECT_NEAR(r.centres[0], dot.ellipse.centre.x - column, 0.01);
        }
    }
}

}  // namespace
}  // namespace zelmtest
