// Every exported fit with each of its allocations failing, in a robust fit that re-weights.
#include <algorithm>

#include "coneGeometry.h"
#include "faultCase.h"
#include "fitShapes.h"
#include "quadricShapes.h"
#include "zelm/fit.h"

using zelmtest::FaultProbe;
using zelmtest::Random;

namespace {

constexpr double kUntouched = -7.0;
constexpr int32_t kPoints = 200;  // up to 128 take no memory

std::vector<Point2d> planePoints() {
    Random random(541);
    return zelmtest::ellipsePoints({30.0, 20.0, 9.0, 6.0, 0.4}, kPoints, 0.1, random);
}

std::vector<Point3d> spacePoints() {
    Random random(542);
    std::vector<Point3d> points;
    for (int32_t i = 0; i < kPoints; ++i) {
        points.push_back({0.1 * i + random.normal(), 0.2 * i + random.normal(), i + 0.3 * random.normal()});
    }
    return points;
}

// Around an ellipsoid, or a cone about its first axis.
std::vector<Point3d> quadricPoints(bool cone) {
    Random random(543);
    const zelmtest::Frame3 frame = zelmtest::randomFrame(random);
    return cone ? zelmtest::conePoints({{1, 2, 3}, frame, 1.2}, kPoints, true, 0.01, random)
                : zelmtest::ellipsoidPoints({{1, 2, 3, 9, 7, 5, 0, 0, 0}, frame}, kPoints, 0.1, random);
}

// call: from a result of up to ten doubles to a status.
template <class Call>
void fitCase(FaultProbe& probe, Call call) {
    double result[10];
    std::fill(result, result + 10, kUntouched);
    const int32_t status = probe.call([&] { return call(result); });
    if (probe.failed()) {
        EXPECT_EQ(status, ZELM_ERR_MEMORY);
        EXPECT_TRUE(std::all_of(result, result + 10, [](double v) { return v == kUntouched; }));
    } else {
        EXPECT_EQ(status, ZELM_OK);
        EXPECT_NE(result[0], kUntouched);
    }
}

}  // namespace

ZELM_FAULT_CASE(zelmFitMean1dim) {
    double values[kPoints];
    Random random(544);
    std::generate(values, values + kPoints, [&] { return random.normal(); });
    values[7] = 20.0;
    fitCase(probe, [&](double* r) { return zelmFitMean1dim(kPoints, values, 1, 3.0, r); });
}

ZELM_FAULT_CASE(zelmFitMean2dim) {
    const auto points = planePoints();
    fitCase(probe,
            [&](double* r) { return zelmFitMean2dim(kPoints, points.data(), 1, 3.0, reinterpret_cast<Point2d*>(r)); });
}

ZELM_FAULT_CASE(zelmFitMean3dim) {
    const auto points = spacePoints();
    fitCase(probe,
            [&](double* r) { return zelmFitMean3dim(kPoints, points.data(), 1, 3.0, reinterpret_cast<Point3d*>(r)); });
}

ZELM_FAULT_CASE(zelmFitLine) {
    const auto points = planePoints();
    fitCase(probe,
            [&](double* r) { return zelmFitLine(kPoints, points.data(), 1, 3.0, reinterpret_cast<Line2d*>(r)); });
}

ZELM_FAULT_CASE(zelmFitLineIn3d) {
    const auto points = spacePoints();
    fitCase(probe, [&](double* r) { return zelmFitLineIn3d(kPoints, points.data(), 1, 3.0, r); });
}

ZELM_FAULT_CASE(zelmFitPlane) {
    const auto points = spacePoints();
    fitCase(probe, [&](double* r) { return zelmFitPlane(kPoints, points.data(), 1, 3.0, r); });
}

ZELM_FAULT_CASE(zelmFitEllipse) {
    const auto points = planePoints();
    fitCase(probe,
            [&](double* r) { return zelmFitEllipse(kPoints, points.data(), 1, 3.0, reinterpret_cast<Ellipse2d*>(r)); });
}

ZELM_FAULT_CASE(zelmFitEllipseC) {
    const auto points = planePoints();
    fitCase(probe, [&](double* r) { return zelmFitEllipseC(kPoints, points.data(), 1, 3.0, r); });
}

ZELM_FAULT_CASE(zelmFitConics) {
    const auto points = planePoints();
    fitCase(probe, [&](double* r) { return zelmFitConics(kPoints, points.data(), 1, 3.0, r); });
}

ZELM_FAULT_CASE(zelmFitEllipsoid) {
    const auto points = quadricPoints(false);
    fitCase(probe, [&](double* r) {
        return zelmFitEllipsoid(kPoints, points.data(), 1, 3.0, reinterpret_cast<Ellipsoid3d*>(r));
    });
}

ZELM_FAULT_CASE(zelmFitCone) {
    const auto points = quadricPoints(true);
    fitCase(probe, [&](double* r) { return zelmFitCone(kPoints, points.data(), 1, 3.0, r); });
}

// Deliberate: inside its robust loop the circle reports a failed allocation as ZELM_ERR_FIT_DATA. Nine blocks come
// before: the points, the system and its factors, and the loop's own four.
ZELM_FAULT_CASE(zelmFitCircle) {
    const auto points = planePoints();
    Circle2d circle = {kUntouched, kUntouched, kUntouched};
    const int32_t status = probe.call([&] { return zelmFitCircle(kPoints, points.data(), 1, 3.0, &circle); });
    if (probe.failed()) {
        EXPECT_EQ(status, probe.allocations() <= 9 ? ZELM_ERR_MEMORY : ZELM_ERR_FIT_DATA);
        EXPECT_EQ(circle.x, kUntouched);
    } else {
        EXPECT_EQ(status, ZELM_OK);
        EXPECT_GT(probe.allocations(), 10);
    }
}
