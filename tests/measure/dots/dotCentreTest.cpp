// Centres of single dots in rendered plates against the centres of their true outlines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "measureRigs.h"

namespace zelmtest {
namespace {

constexpr double kUntouched = -7.0;
// The bias of an edge between two pixels, averaged over 20 rays.
constexpr double kWhole = 0.015;

render::RenderedView plateView(render::Polarity polarity, double tilt, double noise = 0.0) {
    render::Plate plate = smallPlate();
    plate.polarity = polarity;
    const render::Camera camera = testCamera();
    return renderAt(plate, camera, aimAt(camera, 5.0, 20.0, tilt, 35.0), noise);
}

ZelmMeasureImage imageOf(const render::GrayImage& image) {
    return {image.pixels.data(), image.width, image.height, image.width};
}

struct Centres {
    std::vector<double> pixels;
    std::vector<std::int32_t> statuses;
    bool operator==(const Centres&) const = default;
};

Centres centresAt(const ZelmMeasureImage& image, const std::vector<Point2d>& seeds, std::int32_t polarity) {
    std::vector<double> flat;
    for (const Point2d& seed : seeds) {
        flat.insert(flat.end(), {seed.x, seed.y});
    }
    Centres result{std::vector<double>(flat.size(), kUntouched), std::vector<std::int32_t>(seeds.size(), -7)};
    EXPECT_EQ(zelmMeasureDotCentres(&image, static_cast<std::int64_t>(seeds.size()), flat.data(), polarity,
                                    result.pixels.data(), result.statuses.data()),
              ZELM_OK);
    return result;
}

double errorOf(const Centres& centres, std::size_t i, const render::DotTruth& truth) {
    return std::hypot(centres.pixels[2 * i] - truth.ellipse.centre.x,
                      centres.pixels[2 * i + 1] - truth.ellipse.centre.y);
}

void expectMissing(const Centres& centres) {
    for (std::size_t i = 0; i < centres.statuses.size(); ++i) {
        EXPECT_EQ(centres.statuses[i], ZELM_MEASURE_DOT_MISSING) << i;
        EXPECT_EQ(centres.pixels[2 * i], kUntouched) << i;
        EXPECT_EQ(centres.pixels[2 * i + 1], kUntouched) << i;
    }
}

// Seeds within a dot, beside its centre.
std::vector<Point2d> seedsIn(const std::vector<render::DotTruth>& dots) {
    Random random(8);
    std::vector<Point2d> seeds;
    for (const render::DotTruth& dot : dots) {
        const double angle = random.uniform(0.0, 6.28);
        seeds.push_back({dot.ellipse.centre.x + 0.5 * dot.ellipse.b * std::cos(angle),
                         dot.ellipse.centre.y + 0.5 * dot.ellipse.b * std::sin(angle)});
    }
    return seeds;
}

// Gray over all pixels right of a column.
void cover(render::GrayImage& image, double fromColumn, std::uint8_t gray) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = static_cast<int>(std::ceil(fromColumn)); x < image.width; ++x) {
            image.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                         static_cast<std::size_t>(x)] = gray;
        }
    }
}

TEST(MeasureDotCentres, DarkAndBrightDotsAreFoundAtTheirOutlinesCentre) {
    for (const auto polarity : {render::Polarity::darkDots, render::Polarity::lightDots}) {
        for (const double tilt : {0.0, 30.0}) {
            SCOPED_TRACE(testing::Message() << "polarity " << static_cast<int>(polarity) << ", tilt " << tilt);
            const render::RenderedView view = plateView(polarity, tilt);
            ASSERT_EQ(view.dots.size(), 35U);
            const Centres centres = centresAt(imageOf(view.image), seedsIn(view.dots), static_cast<int>(polarity));
            for (std::size_t i = 0; i < view.dots.size(); ++i) {
                EXPECT_EQ(centres.statuses[i], ZELM_MEASURE_DOT_OK);
                EXPECT_LE(errorOf(centres, i, view.dots[i]), kWhole);
            }
        }
    }
}

TEST(MeasureDotCentres, NoiseIsAveragedOut) {
    const render::RenderedView view = plateView(render::Polarity::darkDots, 20.0, 4.0);
    const Centres centres = centresAt(imageOf(view.image), seedsIn(view.dots), 0);
    double squares = 0.0;
    for (std::size_t i = 0; i < view.dots.size(); ++i) {
        ASSERT_EQ(centres.statuses[i], ZELM_MEASURE_DOT_OK);
        squares += errorOf(centres, i, view.dots[i]) * errorOf(centres, i, view.dots[i]);
    }
    // An edge of 85 gray values a pixel in noise of 4 is found to 0.05 pixels; 20 of them tell a centre to 0.05 times
    // the root of 4 / 20.
    EXPECT_LE(std::sqrt(squares / static_cast<double>(view.dots.size())), 0.05);
}

TEST(MeasureDotCentres, PartlyHiddenDotsAreMeasuredByTheArcThatIsSeen) {
    const render::RenderedView clean = plateView(render::Polarity::darkDots, 0.0);
    const render::DotTruth& dot = clean.dots[17];
    const double radius = dot.radius;
    for (const std::uint8_t gray : {std::uint8_t{190}, std::uint8_t{90}}) {
        // Beyond this part of the radius 10, 20 and 30 % of the outline are hidden.
        for (const double part : {0.95, 0.81, 0.59}) {
            SCOPED_TRACE(testing::Message() << "gray " << int{gray} << " from " << part);
            render::RenderedView view = clean;
            cover(view.image, dot.ellipse.centre.x + part * radius, gray);
            const Centres centres =
                centresAt(imageOf(view.image), {{dot.ellipse.centre.x - 2.0, dot.ellipse.centre.y + 1.0}}, 0);
            ASSERT_EQ(centres.statuses[0], ZELM_MEASURE_DOT_OK);
            // What disturbs the ends of the arc, as much as 0.1 pixels, is left out.
            EXPECT_LE(errorOf(centres, 0, dot), kWhole);
        }
    }
}

TEST(MeasureDotCentres, MostlyHiddenDotsAreMissing) {
    const render::RenderedView clean = plateView(render::Polarity::darkDots, 0.0);
    const render::DotTruth& dot = clean.dots[17];
    for (const double part : {-0.2, -0.5}) {  // 56 and 67 % of the outline
        SCOPED_TRACE(part);
        render::RenderedView view = clean;
        cover(view.image, dot.ellipse.centre.x + part * dot.radius, 190);
        expectMissing(
            centresAt(imageOf(view.image), {{dot.ellipse.centre.x - 0.75 * dot.radius, dot.ellipse.centre.y}}, 0));
    }
}

TEST(MeasureDotCentres, WhereNoDotIsNoneIsFound) {
    const render::RenderedView view = plateView(render::Polarity::darkDots, 0.0);
    // Halfway to the next dots, and on the dark ground beside the plate.
    const Point2d a{view.dots[16].ellipse.centre.x, view.dots[16].ellipse.centre.y};
    const Point2d b{view.dots[24].ellipse.centre.x, view.dots[24].ellipse.centre.y};
    expectMissing(centresAt(imageOf(view.image), {{0.5 * (a.x + b.x), 0.5 * (a.y + b.y)}, {5.0, 5.0}}, 0));
    // A dot of the other polarity.
    expectMissing(centresAt(imageOf(view.image), {a}, 1));
    // Just outside a dot, which must cover the seed.
    const render::DotTruth& dot = view.dots[16];
    expectMissing(centresAt(imageOf(view.image), {{dot.ellipse.centre.x + dot.radius + 1.5, dot.ellipse.centre.y}}, 0));
    // Beside its outline, in the corner of its box.
    expectMissing(centresAt(imageOf(view.image),
                            {{dot.ellipse.centre.x + 0.8 * dot.radius, dot.ellipse.centre.y + 0.8 * dot.radius}}, 0));
    const std::vector<std::uint8_t> flat(100 * 100, 128);
    const ZelmMeasureImage image{flat.data(), 100, 100, 100};
    expectMissing(centresAt(image, {{50.0, 50.0}, {0.0, 0.0}, {99.0, 99.0}}, 0));
    expectMissing(centresAt(image, {{50.0, 50.0}, {0.0, 0.0}, {99.0, 99.0}}, 1));
}

TEST(MeasureDotCentres, SeedsOutsideTheImageAreMissing) {
    const render::RenderedView view = plateView(render::Polarity::darkDots, 0.0);
    const double infinite = std::numeric_limits<double>::infinity();
    const double none = std::numeric_limits<double>::quiet_NaN();
    expectMissing(centresAt(imageOf(view.image),
                            {{none, 100.0},
                             {100.0, none},
                             {infinite, 100.0},
                             {100.0, -infinite},
                             {-0.5, 100.0},
                             {100.0, 479.5},
                             {639.5, 100.0},
                             {1e300, 1e300}},
                            0));
}

// The part of an image that begins `margin` pixels right of the left end of a dot, or left of it if negative.
TEST(MeasureDotCentres, DotsNearTheBorderAreMeasuredAsLongAsTheyAreSeen) {
    const render::RenderedView view = plateView(render::Polarity::darkDots, 0.0);
    const render::DotTruth& dot = view.dots[17];
    const int leftEnd = static_cast<int>(std::floor(dot.ellipse.centre.x - dot.radius));
    const auto cutAt = [&](int column) {
        return ZelmMeasureImage{view.image.pixels.data() + column, view.image.width - column, view.image.height,
                                view.image.width};
    };
    const auto centreIn = [&](int column) {
        return centresAt(cutAt(column), {{dot.ellipse.centre.x - column + 1.0, dot.ellipse.centre.y}}, 0);
    };
    for (const int margin : {12, 6, 4}) {
        SCOPED_TRACE(margin);
        const Centres centres = centreIn(leftEnd - margin);
        ASSERT_EQ(centres.statuses[0], ZELM_MEASURE_DOT_OK);
        EXPECT_NEAR(centres.pixels[0] + leftEnd - margin, dot.ellipse.centre.x, kWhole);
        EXPECT_NEAR(centres.pixels[1], dot.ellipse.centre.y, kWhole);
    }
    // Cut by a quarter of the radius, 23 % of the outline; then through its middle.
    const Centres cut = centreIn(leftEnd + static_cast<int>(0.25 * dot.radius));
    ASSERT_EQ(cut.statuses[0], ZELM_MEASURE_DOT_OK);
    EXPECT_NEAR(cut.pixels[0] + leftEnd + static_cast<int>(0.25 * dot.radius), dot.ellipse.centre.x, 5.0 * kWhole);
    expectMissing(centreIn(static_cast<int>(dot.ellipse.centre.x)));
}

TEST(MeasureDotCentres, PaddedRowsGiveTheSameCentres) {
    const render::RenderedView view = plateView(render::Polarity::lightDots, 25.0);
    const std::vector<Point2d> seeds = seedsIn(view.dots);
    const Centres dense = centresAt(imageOf(view.image), seeds, 1);
    constexpr std::size_t kStride = 701;
    std::vector<std::uint8_t> padded(kStride * 480, 77);
    for (std::size_t y = 0; y < 480; ++y) {
        std::copy_n(view.image.pixels.begin() + static_cast<std::ptrdiff_t>(y * 640), 640,
                    padded.begin() + static_cast<std::ptrdiff_t>(y * kStride));
    }
    EXPECT_EQ(centresAt({padded.data(), 640, 480, kStride}, seeds, 1), dense);
    EXPECT_EQ(std::count(dense.statuses.begin(), dense.statuses.end(), ZELM_MEASURE_DOT_OK), 35);
}

TEST(MeasureDotCentres, CentresMayReplaceTheSeeds) {
    const render::RenderedView view = plateView(render::Polarity::darkDots, 0.0);
    const ZelmMeasureImage image = imageOf(view.image);
    std::vector<Point2d> seeds = seedsIn(view.dots);
    seeds.push_back({5.0, 5.0});
    const Centres apart = centresAt(image, seeds, 0);
    std::vector<double> both;
    for (const Point2d& seed : seeds) {
        both.insert(both.end(), {seed.x, seed.y});
    }
    std::vector<std::int32_t> statuses(seeds.size(), -7);
    ASSERT_EQ(zelmMeasureDotCentres(&image, static_cast<std::int64_t>(seeds.size()), both.data(), 0, both.data(),
                                    statuses.data()),
              ZELM_OK);
    EXPECT_EQ(statuses, apart.statuses);
    EXPECT_TRUE(std::equal(both.begin(), both.end() - 2, apart.pixels.begin()));
    EXPECT_EQ(both.back(), 5.0);  // a missing dot keeps its seed
}

TEST(MeasureDotCentres, NoSeedsAreSuccess) {
    const render::RenderedView view = plateView(render::Polarity::darkDots, 0.0);
    const ZelmMeasureImage image = imageOf(view.image);
    EXPECT_EQ(zelmMeasureDotCentres(&image, 0, nullptr, 0, nullptr, nullptr), ZELM_OK);
}

}  // namespace
}  // namespace zelmtest
