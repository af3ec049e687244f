// Markers, axes and grid from ideal dots: the stages of pattern reading that follow the measurement of the dots, over
// every roll, tilt and plate that the reader has to cope with. Whole images are read in patternReaderTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "patternFixtures.h"
#include "patternGrid.h"
#include "patternMarkers.h"
#include "random.h"

namespace zelmtest {
namespace {

using zelm::PatternDot;

// Half the pixel noise of a good reading; the bounds below do not depend on it.
constexpr double kCentreNoise = 0.02;

PatternDot idealDot(const render::DotTruth& truth, Random* random) {
    const auto& e = truth.ellipse;
    const double phi = e.angle + std::numbers::pi / 2;
    const double stretch = e.a / e.b - 1.0;
    PatternDot dot;
    dot.centre = {e.centre.x + kCentreNoise * random->normal(), e.centre.y + kCentreNoise * random->normal()};
    dot.eccentricity = std::sqrt(e.a * e.a - e.b * e.b) / e.a;
    dot.ellipseArea = std::numbers::pi * e.a * e.b;
    dot.blobArea = dot.ellipseArea;
    dot.tilt = {stretch * std::cos(phi), stretch * std::sin(phi), phi};
    return dot;
}

std::vector<PatternDot> idealDots(const std::vector<render::DotTruth>& truths, std::uint64_t seed = 1) {
    Random random(seed);
    std::vector<PatternDot> dots;
    for (const auto& truth : truths) {
        dots.push_back(idealDot(truth, &random));
    }
    return dots;
}

// The entry that the stages make of these dots, in vectors.
struct Assigned {
    std::int32_t status = 0;
    std::vector<Point2d> plane;
    std::vector<Point2d> image;
    Zelm2ViewPtnEntry entry{};
};

Assigned assign(const std::vector<PatternDot>& dots, const Zelm2ViewPatternDesc& description) {
    Assigned result;
    result.plane.resize(dots.size());
    result.image.resize(dots.size());
    result.entry = {0, result.plane.data(), result.image.data()};
    auto pattern = description;  // as the object keeps it
    pattern.d0 += pattern.d4 / 3.0;
    pattern.d1 += pattern.d5 / 3.0;
    zelm::DotList markers;
    zelm::MarkerFrame frame{};
    double G[9];
    result.status = zelm::pickMarkers(dots, pattern, &markers);
    if (result.status >= 0) {
        result.status = zelm::findMarkerFrame(markers.span(), dots, &frame);
    }
    if (result.status >= 0) {
        result.status = zelm::estimateGridMap(dots, frame, pattern, G);
    }
    if (result.status >= 0) {
        zelm::assignGrid(dots, frame.corner, pattern, G, &result.entry);
    }
    return result;
}

struct NamedPlate {
    std::string name;
    render::Plate plate;
};

render::Plate plateWith(double pitchX, double pitchY, int markerX, int markerY) {
    render::Plate plate;
    plate.pitchX = pitchX;
    plate.pitchY = pitchY;
    plate.markerX = markerX;
    plate.markerY = markerY;
    return plate;
}

std::vector<NamedPlate> plates() {
    return {{"square pitch, equal marker distances", plateWith(10, 10, 3, 3)},
            {"wide pitch", plateWith(12, 9, 3, 3)},
            {"tall pitch", plateWith(9, 12, 3, 3)},
            {"far x marker", plateWith(10, 10, 4, 2)},
            {"far y marker", plateWith(10, 10, 2, 4)},
            {"wide pitch, far y marker", plateWith(12, 9, 3, 4)},
            {"tall pitch, far x marker", plateWith(9, 12, 4, 2)},
            {"distances as unequal as two to one and a half pitches", plateWith(11, 10, 3, 2)}};
}

struct Tilt {
    double degrees;
    double axis;
};

constexpr Tilt kTilts[] = {{0, 0}, {15, 50}, {30, 140}, {30, 270}, {45, 0}, {45, 50}, {45, 140}};

TEST(PatternGrid, IndicesAreRightForEveryRollTiltAndPlate) {
    const render::Camera camera = testCamera();
    for (const auto& [name, plate] : plates()) {
        int failures = 0;
        for (const auto& [tilt, axis] : kTilts) {
            for (int roll = 0; roll < 360; roll += 5) {
                const auto pose = render::aimedPose(camera, aimAt(camera, 2.2, roll, tilt, axis));
                const auto truths = render::dotTruths(plate, camera, pose);
                const auto assigned = assign(idealDots(truths), describe(plate));
                const bool isRight =
                    assigned.status >= 0 && assigned.entry.count == 143 && countWrongDots(truths, assigned.entry) == 0;
                if (!isRight && failures++ < 5) {
                    ADD_FAILURE() << name << ", roll " << roll << ", tilt " << tilt << " about " << axis << ": status "
                                  << assigned.status << ", " << assigned.entry.count << " dots, "
                                  << countWrongDots(truths, assigned.entry) << " wrong";
                }
            }
        }
        EXPECT_EQ(failures, 0) << name;
    }
}

// Markers five pitches away, at 45 degrees in a view 42 degrees wide: the markers' affine frame takes dots beyond the
// corner marker for their neighbours.
TEST(PatternGrid, StrongPerspectiveDoesNotMisplaceDots) {
    const render::Camera camera = testCamera();
    for (const auto& plate : {plateWith(10, 10, 5, 5), plateWith(10, 10, 5, 3), plateWith(10, 12, 6, 5)}) {
        for (const double axis : {20.0, 140.0}) {
            for (int roll = 0; roll < 360; roll += 5) {
                const auto pose = render::aimedPose(camera, aimAt(camera, 2.2, roll, 45.0, axis));
                const auto truths = render::dotTruths(plate, camera, pose);
                const auto assigned = assign(idealDots(truths), describe(plate));
                if (assigned.status == ZELM_ERR_PATTERN_MARKERS) {
                    continue;  // axes that differ by more than 100 pixels, told aloud
                }
                ASSERT_EQ(assigned.status, ZELM_OK) << roll << ' ' << axis;
                EXPECT_EQ(assigned.entry.count, 143) << roll << ' ' << axis;
                EXPECT_EQ(countWrongDots(truths, assigned.entry), 0) << roll << ' ' << axis;
            }
        }
    }
}

// Angle between the directions from one marker to the other two in the image, degrees.
double imageAngle(const render::Pixel& at, const render::Pixel& a, const render::Pixel& b) {
    const double u = std::atan2(a.y - at.y, a.x - at.x);
    const double v = std::atan2(b.y - at.y, b.x - at.x);
    const double angle = std::fabs(std::remainder(u - v, 2.0 * std::numbers::pi));
    return angle * 180.0 / std::numbers::pi;
}

TEST(PatternMarkers, CornerIsFoundWhereTheImageShowsAnotherAngleNearerToARightOne) {
    const render::Camera camera = testCamera();
    const auto plate = plateWith(10, 10, 2, 4);
    int misleading = 0;
    for (int axis = 0; axis < 180; axis += 5) {
        const auto pose = render::aimedPose(camera, aimAt(camera, 2.2, 0.0, 45.0, axis));
        const auto truths = render::dotTruths(plate, camera, pose);
        const auto at = [&truths](int x, int y) {
            return std::find_if(truths.begin(), truths.end(),
                                [&](const auto& t) {
                                    return t.dot.index == render::GridIndex{x, y};
                                })
                ->ellipse.centre;
        };
        const double corner = std::fabs(imageAngle(at(0, 0), at(2, 0), at(0, 4)) - 90.0);
        const double other = std::fabs(imageAngle(at(2, 0), at(0, 0), at(0, 4)) - 90.0);
        misleading += other < corner ? 1 : 0;
        const auto assigned = assign(idealDots(truths), describe(plate));
        ASSERT_EQ(assigned.status, ZELM_OK) << axis;
        EXPECT_EQ(countWrongDots(truths, assigned.entry), 0) << axis;
    }
    EXPECT_GT(misleading, 0) << "the image misled nowhere: the test shows nothing";
}

// Three round markers: the first with the others at the given angle, 100 pixels away.
std::vector<PatternDot> markersAt(double degrees, double lengthRatio = 1.0) {
    const double angle = degrees * std::numbers::pi / 180.0;
    std::vector<PatternDot> markers(3);
    for (auto& marker : markers) {
        marker.tilt = {0.0, 0.0, std::numbers::pi / 2};
    }
    markers[0].centre = {300, 200};
    markers[1].centre = {400, 200};
    markers[2].centre = {300 + 100 * lengthRatio * std::cos(angle), 200 + 100 * lengthRatio * std::sin(angle)};
    return markers;
}

TEST(PatternMarkers, RightAngleMayBeMissedByTwentyDegrees) {
    zelm::MarkerFrame frame{};
    for (const double degrees : {70.1, 90.0, 109.9, -70.1, -109.9}) {
        const auto markers = markersAt(degrees);
        EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_OK) << degrees;
        EXPECT_EQ(frame.corner.x, 300.0);
    }
    for (const double degrees : {69.9, 110.1, -69.9, -110.1, 180.0}) {
        const auto markers = markersAt(degrees);
        EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_ERR_PATTERN_MARKERS) << degrees;
    }
}

TEST(PatternMarkers, XAxisCrossYAxisIsPositiveWithYDownwards) {
    zelm::MarkerFrame frame{};
    auto markers = markersAt(90.0);  // the third marker lies below the first: it is the y marker
    ASSERT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_OK);
    EXPECT_EQ(frame.toX.x, 100.0);
    EXPECT_NEAR(frame.toY.y, 100.0, 1e-12);
    markers = markersAt(-90.0);  // above: it is the x marker
    ASSERT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_OK);
    EXPECT_NEAR(frame.toX.y, -100.0, 1e-12);
    EXPECT_EQ(frame.toY.x, 100.0);
}

TEST(PatternMarkers, AxesMayDifferByAHundredPixels) {
    zelm::MarkerFrame frame{};
    auto markers = markersAt(90.0, 1.999);
    EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_OK);
    markers = markersAt(90.0, 2.001);
    EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_ERR_PATTERN_MARKERS);
}

TEST(PatternMarkers, OneOrTwoMarkersMakeNoFrame) {
    zelm::MarkerFrame frame{};
    auto markers = markersAt(90.0);
    for (const std::size_t count : {std::size_t{2}, std::size_t{1}}) {
        markers.resize(count);
        EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_ERR_PATTERN_MARKERS);
    }
}

// The minor axes of dots that are all foreshortened the same way may be told as phi or phi + pi; neither may cancel.
TEST(PatternMarkers, TiltsOfOppositeSenseDoNotCancel) {
    zelm::MarkerFrame frame{};
    auto markers = markersAt(90.0);
    for (auto& marker :
         markers) {  // compressed along 45 degrees to 1 / 1.5: the angle at the corner becomes 67 degrees
        const double along = (marker.centre.x + marker.centre.y) / 2.0 * (1.0 - 1.0 / 1.5);
        marker.centre = {marker.centre.x - along, marker.centre.y - along};
    }
    EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_ERR_PATTERN_MARKERS);
    for (std::size_t i = 0; i < 3; ++i) {
        const double phi = std::numbers::pi / 4 + (i == 1 ? std::numbers::pi : 0.0);
        markers[i].tilt = {0.5 * std::cos(phi), 0.5 * std::sin(phi), phi};
    }
    EXPECT_EQ(zelm::findMarkerFrame(markers, markers, &frame), ZELM_OK);
}

}  // namespace
}  // namespace zelmtest
