// Allocation faults of the geometry: only the linear solves and the enclosing circle allocate.
#include "faultCase.h"
#include "zelm/cg.h"
#include "zelm/clp2d.h"
#include "zelm/clp3d.h"
#include "zelm/misc.h"

namespace {

const Point2d kP{0.0, 0.0};
const Point2d kQ{2.0, 1.0};
const Point2d kR{0.0, 3.0};
const Line2d kLine{0.0, 1.0, -0.5};
const Line2d kOther{1.0, 0.0, -0.5};
const Circle2d kCircle{0.0, 0.0, 1.0};
const Point3d kP3{0.0, 0.0, 0.0};
const Point3d kQ3{2.0, 1.0, 0.0};
const Point3d kR3{0.0, 3.0, 1.0};
const Line3d kLine3{0.0, 1.0, 2.0, 1.0, 0.0, 1.0};
const Line3d kOther3{0.0, 0.0, 1.0, 0.0, 1.0, 0.0};
const Plane3d kPlane{0.0, 0.0, 1.0, -1.0};
const Plane3d kOtherPlane{1.0, 0.0, 0.0, -1.0};
const Point2d kSquare[4] = {{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};

// A function that needs a linear solve: ZELM_ERR_DEGENERATE when its memory fails, outputs untouched.
void expectSolveStatus(const zelmtest::FaultProbe& probe, std::int32_t status, double output) {
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_DEGENERATE : ZELM_OK);
    if (probe.failed()) {
        EXPECT_EQ(output, 77.0);
    }
}

}  // namespace

#define ZELM_GEOM_NO_ALLOCATION(function, ...)    \
    ZELM_NO_ALLOCATION_CASE(function) {           \
        [[maybe_unused]] Point2d points[4] = {};  \
        [[maybe_unused]] Line2d line{};           \
        [[maybe_unused]] Circle2d circle{};       \
        [[maybe_unused]] Point3d point3{};        \
        [[maybe_unused]] Line3d line3{};          \
        [[maybe_unused]] Plane3d plane{};         \
        [[maybe_unused]] double value = 0.0;      \
        [[maybe_unused]] std::int32_t number = 0; \
        probe.call([&] {                          \
            function(__VA_ARGS__);                \
            return 0;                             \
        });                                       \
    }

ZELM_GEOM_NO_ALLOCATION(zelmClp2dDistanceTwoPoints, &kP, &kQ, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dCenterTwoPoints, &kP, &kQ, points)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dLineTwoPoints, &kP, &kQ, &line)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dMidperpendicularTwoPoints, &kP, &kQ, &line)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dVerticalLinePointAndLine, &kP, &kLine, &line)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dLinePointAndSlope, &kP, 0.5, &line)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dAngleTwoLines, &kLine, &kOther, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dCenterLineOfTwoLines, &kLine, &kOther, &line)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dDistancePointToLine, &kP, &kLine, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dTranslationOfLine, &kLine, &kP, &line)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dAreaTriangle, &kP, &kQ, &kR, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dSignAreaTriangle, &kP, &kQ, &kR, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dCircleTwoPoints, &kP, &kQ, &circle)
ZELM_GEOM_NO_ALLOCATION(zelmClp2dClosestToCircle, &kQ, &kCircle, points, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dDistanceTwoPoints, &kP3, &kQ3, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dCenterTwoPoints, &kP3, &kQ3, &point3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dLineTwoPoints, &kP3, &kQ3, &line3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dFootOfPerpendicularToLine, &kP3, &kLine3, &point3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dVerticalLinePointAndLine, &kP3, &kLine3, &line3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dDistancePointToLine, &kP3, &kLine3, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dDistanceTwoLines, &kLine3, &kOther3, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dPlaneThreePoints, &kP3, &kQ3, &kR3, &plane)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dVerticalPlanePointAndVector, &kP3, &kQ3, &plane)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dVerticalLinePointAndPlane, &kP3, &kPlane, &line3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dDistancePointToPlane, &kP3, &kPlane, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dIntersectionLineAndPlane, &kLine3, &kPlane, &point3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dFootOfPerpendicularToPlane, &kP3, &kPlane, &point3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dAngleLineAndPlane, &kLine3, &kPlane, &value)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dIntersectionTwoPlanes, &kPlane, &kOtherPlane, &line3)
ZELM_GEOM_NO_ALLOCATION(zelmClp3dAngleTwoPlanes, &kPlane, &kOtherPlane, &value)
ZELM_GEOM_NO_ALLOCATION(zelmCgSortByArgument, 4, kSquare, points)
ZELM_GEOM_NO_ALLOCATION(zelmCgConvexHull, 4, kSquare, &number, points)
ZELM_GEOM_NO_ALLOCATION(zelmCgIntersectionOfTwoSegments, &kP, &kQ, &kR, &kQ, &number, points)
ZELM_GEOM_NO_ALLOCATION(zelmCgPointInConvexPolygon, 4, kSquare, &kQ, &number)
ZELM_GEOM_NO_ALLOCATION(zelmCgIntersectionSegmentAndConvexPolygon, 4, kSquare, &kP, &kQ, points)
ZELM_NO_ALLOCATION_CASE(zelmMiscChangeRectToRect2) {
    const ZelmRect rect{1, 2, 3, 4};
    ZelmRect2 out{};
    probe.call([&] { return zelmMiscChangeRectToRect2(&rect, &out); });
}
ZELM_NO_ALLOCATION_CASE(zelmMiscChangeRect2ToRect) {
    const ZelmRect2 rect{1, 2, 3, 4};
    ZelmRect out{};
    probe.call([&] { return zelmMiscChangeRect2ToRect(&rect, &out); });
}
ZELM_NO_ALLOCATION_CASE(zelmMiscBilinearGrayLevel) {
    std::uint8_t pixels[4] = {1, 2, 3, 4};
    const ZelmImage image{pixels, 2, 2};
    probe.call([&] { return zelmMiscBilinearGrayLevel(&image, 0.5, 0.5); });
}
ZELM_NO_ALLOCATION_CASE(zelmMiscPlotPointsOfLine) {
    const Point2i from{0, 0};
    const Point2i to{3, 1};
    Point2i out[4] = {};
    probe.call([&] { return zelmMiscPlotPointsOfLine(&from, &to, out); });
}

ZELM_NO_ALLOCATION_CASE(zelmClp2dIntersectionTwoLines) {
    Point2d point{77.0, 77.0};
    const std::int32_t status = probe.call([&] { return zelmClp2dIntersectionTwoLines(&kLine, &kOther, &point); });
    expectSolveStatus(probe, status, point.x);
}

ZELM_NO_ALLOCATION_CASE(zelmClp2dFootOfPerpendicularToLine) {
    Point2d foot{77.0, 77.0};
    const std::int32_t status = probe.call([&] { return zelmClp2dFootOfPerpendicularToLine(&kP, &kLine, &foot); });
    expectSolveStatus(probe, status, foot.x);
}

ZELM_NO_ALLOCATION_CASE(zelmClp2dCircleThreePoints) {
    Circle2d circle{77.0, 77.0, 77.0};
    const std::int32_t status = probe.call([&] { return zelmClp2dCircleThreePoints(&kP, &kQ, &kR, &circle); });
    expectSolveStatus(probe, status, circle.x);
}

ZELM_NO_ALLOCATION_CASE(zelmClp2dIntersectionLineAndCircle) {
    Point2d q1{77.0, 77.0};
    Point2d q2{77.0, 77.0};
    const std::int32_t status =
        probe.call([&] { return zelmClp2dIntersectionLineAndCircle(&kLine, &kCircle, &q1, &q2); });
    expectSolveStatus(probe, status, q1.x);
}

ZELM_NO_ALLOCATION_CASE(zelmClp2dTangentPointToCircle) {
    Line2d l1{77.0, 77.0, 77.0};
    Line2d l2{77.0, 77.0, 77.0};
    Point2d t1{77.0, 77.0};
    Point2d t2{77.0, 77.0};
    const std::int32_t status =
        probe.call([&] { return zelmClp2dTangentPointToCircle(&kQ, &kCircle, &l1, &t1, &l2, &t2); });
    expectSolveStatus(probe, status, l1.a);
    expectSolveStatus(probe, status, t2.x);
}

ZELM_FAULT_CASE(zelmCgSmallestEnclosingCircle) {
    Point2d centre{77.0, 77.0};
    double radius = 77.0;
    const std::int32_t status = probe.call([&] { return zelmCgSmallestEnclosingCircle(4, kSquare, &centre, &radius); });
    EXPECT_EQ(status, probe.failed() ? ZELM_ERR_MEMORY : ZELM_OK);
    if (probe.failed()) {
        EXPECT_EQ(centre.x, 77.0);
        EXPECT_EQ(radius, 77.0);
    }
}

// A failed solve ends the clipping with no points.
ZELM_NO_ALLOCATION_CASE(zelmCgIntersectionLineAndConvexPolygon) {
    Point2d points[2] = {};
    const std::int32_t count =
        probe.call([&] { return zelmCgIntersectionLineAndConvexPolygon(4, kSquare, &kLine, points); });
    EXPECT_EQ(count, probe.failed() ? 0 : 2);
}
