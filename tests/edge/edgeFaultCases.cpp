// Every edge search with each of its three work buffers refused.
#include "edgeScene.h"
#include "faultCase.h"

namespace {

using zelmtest::FaultProbe;
using zelmtest::GrayScene;

constexpr Point2d kP1 = {3.0, 10.0};
constexpr Point2d kP2 = {28.0, 10.0};

template <class F>
void checkSearch(FaultProbe& probe, F search) {
    const GrayScene scene(32, 20, [](double x, double) { return x < 16.0 ? 50.0 : 150.0; });
    Point2d point = {-7.0, -7.0};
    double strength = -7.0;
    const int32_t result = probe.call([&] { return search(&scene.image, &point, &strength); });
    if (probe.failed()) {
        EXPECT_EQ(result, ZELM_ERR_MEMORY);
        EXPECT_EQ(point.x, -7.0);
        EXPECT_EQ(point.y, -7.0);
        EXPECT_EQ(strength, -7.0);
    } else {
        EXPECT_EQ(result, 1);
        EXPECT_EQ(probe.allocations(), 3);
        EXPECT_NEAR(point.x, 15.5, 0.1);
    }
}

ZELM_FAULT_CASE(zelmEdge1dDiffMax) {
    checkSearch(probe, [](const ZelmImage* image, Point2d* point, double* strength) {
        return zelmEdge1dDiffMax(image, &kP1, &kP2, 1, point, strength);
    });
}

ZELM_FAULT_CASE(zelmEdge1dGenDiffMax) {
    checkSearch(probe, [](const ZelmImage* image, Point2d* point, double* strength) {
        return zelmEdge1dGenDiffMax(image, &kP1, &kP2, 1, point, strength);
    });
}

ZELM_FAULT_CASE(zelmEdge1dGenNearest) {
    checkSearch(probe, [](const ZelmImage* image, Point2d* point, double* strength) {
        return zelmEdge1dGenNearest(image, &kP1, &kP2, 1, point, strength);
    });
}

ZELM_FAULT_CASE(zelmEdge1dGenGradMax) {
    checkSearch(probe, [](const ZelmImage* image, Point2d* point, double* strength) {
        return zelmEdge1dGenGradMax(image, &kP1, &kP2, 1, point, strength);
    });
}

ZELM_FAULT_CASE(zelmEdge1dGenNearestC) {
    checkSearch(probe, [](const ZelmImage* image, Point2d* point, double* strength) {
        return zelmEdge1dGenNearestC(image, &kP1, &kP2, 1, point, strength);
    });
}

ZELM_FAULT_CASE(zelmEdge1dManual) {
    checkSearch(probe, [](const ZelmImage* image, Point2d* point, double* strength) {
        return zelmEdge1dManual(image, &kP1, &kP2, 1, &zelmtest::kUsual, point, strength);
    });
}

}  // namespace
