// Findings of plates' designs against their geometry, and against what the plate's reader makes of rendered plates at
// either side of a limit; plates at a temperature.
#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "patternFixtures.h"
#include "renderView.h"

namespace zelmtest {
namespace {

using Findings = std::vector<ZelmMeasurePlateFinding>;

// 13 x 11 dots in millimetres, well readable.
Zelm2ViewPatternDesc soundPlate() {
    Zelm2ViewPatternDesc p{};
    p.d0 = 120.0;
    p.d1 = 100.0;
    p.d2 = 4.0;
    p.d3 = 7.0;
    p.d4 = p.d5 = 10.0;
    p.d6 = p.d7 = 30.0;
    p.markers = 3;
    p.minDotArea = 20;
    p.minEdgeStrength = 3.0;
    p.minDots = 71;
    return p;
}

ZelmMeasureCamera plainCamera(double focalLength, int width = 1280, int height = 960) {
    ZelmMeasureCamera camera{};
    camera.size = sizeof(camera);
    camera.width = width;
    camera.height = height;
    camera.intrinsics.alpha = camera.intrinsics.beta = focalLength;
    return camera;
}

Findings findingsOf(const Zelm2ViewPatternDesc& plate, const std::vector<ZelmMeasureCamera>& cameras = {},
                    double nearest = 0.0, double farthest = 0.0) {
    Findings findings(20);
    findings.front().size = sizeof(ZelmMeasurePlateFinding);
    std::int64_t count = 0;
    EXPECT_EQ(zelmMeasurePlateDesign(&plate, static_cast<std::int32_t>(cameras.size()), cameras.data(), nearest,
                                     farthest, findings.data(), 20, &count),
              ZELM_OK);
    findings.resize(static_cast<std::size_t>(count));
    return findings;
}

// The one finding that there is.
ZelmMeasurePlateFinding only(const Findings& findings) {
    EXPECT_EQ(findings.size(), 1U);
    return findings.empty() ? ZelmMeasurePlateFinding{} : findings.front();
}

void expectFinding(const ZelmMeasurePlateFinding& f, int flaw, bool isFatal, double value, double limit) {
    EXPECT_EQ(f.flaw, flaw);
    EXPECT_EQ(f.isFatal, isFatal ? 1 : 0);
    EXPECT_NEAR(f.value, value, 1e-9 * (1.0 + std::fabs(value)));
    EXPECT_NEAR(f.limit, limit, 1e-9 * (1.0 + std::fabs(limit)));
    EXPECT_EQ(f.size, static_cast<std::int32_t>(sizeof f));
}

TEST(PlateDesign, ASoundPlateHasNone) {
    EXPECT_TRUE(findingsOf(soundPlate()).empty());
    // 4.2 and 3.5 pixels a millimetre: radii of 8.4 and 7 pixels, a field of 504 x 420.
    EXPECT_TRUE(findingsOf(soundPlate(), {plainCamera(1680.0)}, 400.0, 480.0).empty());
}

TEST(PlateDesign, OfThePlateAlone) {
    auto p = soundPlate();
    p.d3 = 6.0;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_MARKER_RATIO, false, 1.5, 1.6);
    p.d3 = 5.6;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_MARKER_RATIO, true, 1.4, 1.6);
    p = soundPlate();
    p.markers = 4;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_MARKER_COUNT, true, 4.0, 3.0);
    p = soundPlate();
    p.d7 = 32.0;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_MARKER_OFF_GRID, true, 0.2, 0.0);
    p = soundPlate();
    p.d6 = 70.0;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_MARKER_OUTSIDE, true, 7.0, 6.0);
    p = soundPlate();
    p.d3 = 16.5;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_TOUCH, true, -0.25, 0.0);
    p.d3 = 12.5;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_NEIGHBOUR_IN_REACH, false, 1.25, 1.2);
    p = soundPlate();
    p.d6 = 10.0;
    p.d3 = 10.5;  // beside the x marker, which is as wide
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_TOUCH, true, -0.5, 0.0);
    p = soundPlate();
    p.d0 = 20.0;
    p.d6 = 10.0;
    p.minDots = 10;
    p.d1 = 60.0;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_FEW_DOTS, false, 21.0, 25.0);
    p.minDots = 22;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_FEW_DOTS, true, 21.0, 22.0);
}

TEST(PlateDesign, PlatesThatAreTheirOwnImage) {
    auto p = soundPlate();
    p.d0 = 100.0;
    expectFinding(only(findingsOf(p)), ZELM_MEASURE_PLATE_MIRROR, false, 0.0, 0.0);
    p.d7 = 20.0;  // another marker distance tells the sides apart
    EXPECT_TRUE(findingsOf(p).empty());
    p.d5 = 5.0;  // so does another pitch, with as many rows as columns
    p.d1 = 50.0;
    p.d7 = 15.0;
    p.d2 = 2.0;
    p.d3 = 3.5;
    EXPECT_TRUE(findingsOf(p).empty());
    p = soundPlate();
    p.d6 = 70.0;
    p.d7 = 60.0;  // only the corner marker is left
    const Findings findings = findingsOf(p);
    ASSERT_EQ(findings.size(), 3U);
    expectFinding(findings[2], ZELM_MEASURE_PLATE_HALF_TURN, true, 0.0, 0.0);
}

TEST(PlateDesign, BeforeCameras) {
    const auto p = soundPlate();
    // A scale of 1.75 and 1.2 pixels a millimetre.
    Findings f = findingsOf(p, {plainCamera(1680.0, 0, 0)}, 400.0, 960.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_DOTS_SMALL, false, 3.5, 4.5);
    EXPECT_EQ(f[0].camera, 0);
    f = findingsOf(p, {plainCamera(1680.0, 0, 0)}, 400.0, 1400.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_DOTS_SMALL, true, 2.4, 4.5);  // an area of 18.1 pixels
    f = findingsOf(p, {plainCamera(1680.0), plainCamera(12400.0, 0, 0)}, 400.0, 400.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_DOTS_LARGE, false, 62.0, 60.0);
    EXPECT_EQ(f[0].camera, 1);
    auto tight = p;
    tight.d2 = 6.0;
    tight.d3 = 10.5;
    f = findingsOf(tight, {plainCamera(1680.0, 0, 0)}, 400.0, 840.0);  // 2 pixels a millimetre, gaps of 1.75 mm
    expectFinding(only(f), ZELM_MEASURE_PLATE_GAP_SMALL, false, 3.5, 4.0);
    auto unequal = p;
    unequal.d7 = 50.0;
    f = findingsOf(unequal, {plainCamera(1680.0, 0, 0)}, 300.0, 400.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_AXES_DIFFER, true, 112.0, 100.0);
    // 124 mm of field and dots at 10 pixels a millimetre, in 1120 pixels; 104 mm have room.
    f = findingsOf(p, {plainCamera(4000.0, 1120, 1120)}, 400.0, 400.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_FIELD_LARGE, false, 1120.0 / 1240.0, 1.0);
    // Upright it does not fit, turned by a quarter it does.
    EXPECT_TRUE(findingsOf(p, {plainCamera(4000.0, 1080, 1280)}, 400.0, 400.0).empty());
    f = findingsOf(p, {plainCamera(4000.0, 600, 700)}, 400.0, 400.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_FIELD_LARGE, true, 600.0 * 700.0 / (1040.0 * 1240.0), 1.0);
    f = findingsOf(p, {plainCamera(1680.0, 2048, 1700)}, 400.0, 400.0);
    expectFinding(only(f), ZELM_MEASURE_PLATE_FIELD_SMALL, false, 124.0 * 104.0 * 4.2 * 4.2 / (2048.0 * 1700.0), 0.07);
    // A parallel camera's scale is that of every distance.
    ZelmMeasureCamera parallel = plainCamera(1.75, 0, 0);
    parallel.model = ZELM_CAMERA_PARALLEL;
    expectFinding(only(findingsOf(p, {parallel})), ZELM_MEASURE_PLATE_DOTS_SMALL, false, 3.5, 4.5);
}

// How many of the views of a rendered plate, at a small tilt and in noise of 2 gray levels, the reader reads whole.
int viewsRead(const render::Plate& plate, double focalLength, int views) {
    render::Camera camera;
    camera.width = 1000;
    camera.height = 900;
    camera.cx = 499.5;
    camera.cy = 449.5;
    camera.fx = camera.fy = focalLength;
    render::Optics optics;
    optics.blurSigma = 0.8;
    optics.noiseSigma = 2.0;
    int read = 0;
    for (int i = 0; i < views; ++i) {
        const double tilt = 0.25 + 0.05 * i;
        const double c = std::cos(tilt);
        const double s = std::sin(tilt);
        const render::Pose pose{{c, 0.0, s, 0.0, 1.0, 0.0, -s, 0.0, c}, {1.5 * i, -2.0 * i, 400.0}};
        const render::RenderedView view =
            render::renderView(plate, camera, pose, optics, 11 + static_cast<unsigned>(i));
        const Zelm2ViewPatternDesc pattern = describe(plate);
        const ZelmMeasureImage image{view.image.pixels.data(), camera.width, camera.height, camera.width};
        std::int64_t placed = 0;
        const std::int32_t status = zelmMeasurePlateDots(&image, &pattern, nullptr, nullptr, &placed, nullptr);
        read += status == ZELM_OK && placed == static_cast<std::int64_t>(render::plateDots(plate).size()) ? 1 : 0;
    }
    return read;
}

// The reader fails where a design is called fatal, and reads where it is called sound.
TEST(PlateDesign, LimitsAreThoseOfTheReader) {
    constexpr int kViews = 4;
    render::Plate plate;
    EXPECT_EQ(viewsRead(plate, 2000.0, kViews), kViews);
    plate.markerDiameter = 1.62 * plate.dotDiameter;
    EXPECT_EQ(viewsRead(plate, 2000.0, kViews), kViews);
    plate.markerDiameter = 1.4 * plate.dotDiameter;
    EXPECT_EQ(viewsRead(plate, 2000.0, kViews), 0);
    plate.markerDiameter = 11.8;  // reaches to 1.5 times a pitch; gaps of 2.1 mm
    EXPECT_EQ(viewsRead(plate, 2000.0, kViews), kViews);
    plate = render::Plate{};
    plate.markerY = 1;
    plate.markerX = 6;  // 50 mm apart: 250 pixels
    EXPECT_EQ(viewsRead(plate, 2000.0, kViews), 0);
    plate.markerX = 2;
    EXPECT_EQ(viewsRead(plate, 2000.0, kViews), kViews);
}

TEST(PlateDesign, ShorterAndFewerRecords) {
    auto p = soundPlate();
    p.d6 = 70.0;
    p.d3 = 6.0;
    std::int64_t count = 0;
    EXPECT_EQ(zelmMeasurePlateDesign(&p, 0, nullptr, 0.0, 0.0, nullptr, 0, &count), ZELM_OK);
    EXPECT_EQ(count, 2);
    struct Older {
        std::int32_t size, flaw, camera, isFatal;
    };
    std::array<Older, 2> older{Older{sizeof(Older), -1, -7, -1}, Older{-5, -1, -7, -1}};
    EXPECT_EQ(zelmMeasurePlateDesign(&p, 0, nullptr, 0.0, 0.0, reinterpret_cast<ZelmMeasurePlateFinding*>(older.data()),
                                     1, &count),
              ZELM_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(older[0].flaw, ZELM_MEASURE_PLATE_MARKER_OUTSIDE);
    EXPECT_EQ(older[0].camera, -1);
    EXPECT_EQ(older[1].size, -5);  // there was room for one
}

TEST(PlateDesign, WhatCannotBeMeantIsRefused) {
    const auto p = soundPlate();
    const ZelmMeasureCamera camera = plainCamera(1680.0);
    std::int64_t count = -7;
    const auto design = [&count](const Zelm2ViewPatternDesc* plate, std::int32_t cameras, const ZelmMeasureCamera* list,
                                 double nearest, double farthest) {
        return zelmMeasurePlateDesign(plate, cameras, list, nearest, farthest, nullptr, 0, &count);
    };
    EXPECT_EQ(design(nullptr, 0, nullptr, 0.0, 0.0), ZELM_ERR_PARAM);
    EXPECT_EQ(design(&p, 1, nullptr, 400.0, 400.0), ZELM_ERR_PARAM);
    EXPECT_EQ(design(&p, -1, &camera, 400.0, 400.0), ZELM_ERR_PARAM);
    EXPECT_EQ(design(&p, 1, &camera, 500.0, 400.0), ZELM_ERR_PARAM);
    EXPECT_EQ(design(&p, 1, &camera, 0.0, 400.0), ZELM_ERR_PARAM);
    for (double Zelm2ViewPatternDesc::*const length :
         {&Zelm2ViewPatternDesc::d0, &Zelm2ViewPatternDesc::d3, &Zelm2ViewPatternDesc::d7}) {
        for (const double value : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), HUGE_VAL}) {
            auto wrong = p;
            wrong.*length = value;
            EXPECT_EQ(design(&wrong, 0, nullptr, 0.0, 0.0), ZELM_ERR_PARAM);
        }
    }
    ZelmMeasureCamera wrong = camera;
    wrong.intrinsics.alpha = 0.0;
    EXPECT_EQ(design(&p, 1, &wrong, 400.0, 400.0), ZELM_ERR_PARAM);
    wrong = camera;
    wrong.width = -1;
    EXPECT_EQ(design(&p, 1, &wrong, 400.0, 400.0), ZELM_ERR_PARAM);
    wrong = camera;
    wrong.size = 0;
    EXPECT_EQ(design(&p, 1, &wrong, 400.0, 400.0), ZELM_ERR_PARAM);
    EXPECT_EQ(count, -7);
    EXPECT_EQ(zelmMeasurePlateDesign(&p, 0, nullptr, 0.0, 0.0, nullptr, 0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePlateDesign(&p, 0, nullptr, 0.0, 0.0, nullptr, -1, &count), ZELM_ERR_PARAM);
    ZelmMeasurePlateFinding finding{};
    EXPECT_EQ(zelmMeasurePlateDesign(&p, 0, nullptr, 0.0, 0.0, &finding, 1, &count), ZELM_ERR_PARAM);  // no size
}

TEST(PlateExpanded, AllLengthsGrowByOneFactor) {
    const auto p = soundPlate();
    const std::vector<double> places{10.0, -20.0, 0.5, 1.0, 2.0, -3.0};
    Zelm2ViewPatternDesc warm{};
    std::vector<double> grown(6);
    double factor = 0.0;
    ASSERT_EQ(zelmMeasurePlateExpanded(&p, 24e-6, 10.0, 2, places.data(), &warm, grown.data(), &factor), ZELM_OK);
    EXPECT_DOUBLE_EQ(factor, 1.00024);
    EXPECT_DOUBLE_EQ(warm.d0, 120.0288);
    EXPECT_DOUBLE_EQ(warm.d2, 4.00096);
    EXPECT_DOUBLE_EQ(warm.d7, 30.0072);
    EXPECT_EQ(warm.minDots, p.minDots);
    for (std::size_t i = 0; i < places.size(); ++i) {
        EXPECT_DOUBLE_EQ(grown[i], 1.00024 * places[i]);
    }
    ASSERT_EQ(zelmMeasurePlateExpanded(&p, 24e-6, 0.0, 0, nullptr, &warm, nullptr, nullptr), ZELM_OK);
    EXPECT_EQ(warm.d0, p.d0);
}

TEST(PlateExpanded, WhatCannotBeMeantIsRefused) {
    const auto p = soundPlate();
    Zelm2ViewPatternDesc warm{};
    double place = 7.0;
    double factor = -7.0;
    EXPECT_EQ(zelmMeasurePlateExpanded(nullptr, 1e-5, 1.0, 0, nullptr, &warm, nullptr, &factor), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePlateExpanded(&p, 1e-5, 1.0, 0, nullptr, nullptr, nullptr, &factor), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePlateExpanded(&p, 1e-5, 1.0, 1, nullptr, &warm, &place, &factor), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePlateExpanded(&p, 1e-5, 1.0, -1, &place, &warm, &place, &factor), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePlateExpanded(&p, 1.0, -1.0, 0, nullptr, &warm, nullptr, &factor), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePlateExpanded(&p, HUGE_VAL, 1.0, 0, nullptr, &warm, nullptr, &factor), ZELM_ERR_PARAM);
    EXPECT_EQ(warm.d0, 0.0);
    EXPECT_EQ(place, 7.0);
    EXPECT_EQ(factor, -7.0);
}

}  // namespace
}  // namespace zelmtest
