// Markers, axes and grid from ideal dots: the stages of pattern reading that follow the measurement of the dots, over
// every roll, tilt and plate that the reader has to cope with. Whole images are read in patternReaderTest.cpp.
#include <gtest/gtest.h>

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

TEST(PatternGrid, IndicesAreRightForEveryRollTiltAndPlate) {
    const render::Camera camera = testCamera();
    for (const auto& [name, plate] : plates()) {
        int failures = 0;
        for (const double tilt : {0.0, 15.0, 30.0, 45.0}) {
            for (const double axis : {0.0, 50.0, 140.0, 270.0}) {
                for (int roll = 0; roll < 360; roll += 5) {
                    const auto pose = render::aimedPose(camera, aimAt(camera, 2.2, roll, tilt, axis));
                    const auto truths = render::dotTruths(plate, camera, pose);
                    const auto assigned = assign(idealDots(truths), describe(plate));
                    const bool isRight = assigned.status >= 0 && assigned.entry.count == 143 &&
                                         countWrongDots(truths, assigned.entry) == 0;
                    if (!isRight && failures++ < 5) {
                        ADD_FAILURE() << name << ", roll " << roll << ", tilt " << tilt << " about " << axis
                                      << ": status " << assigned.status << ", " << assigned.entry.count << " dots, "
                                      << countWrongDots(truths, assigned.entry) << " wrong";
                    }
                }
            }
        }
        EXPECT_EQ(failures, 0) << name;
    }
}

}  // namespace
}  // namespace zelmtest
