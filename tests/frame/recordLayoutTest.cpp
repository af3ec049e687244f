// Sizes and offsets of every public record, and the values of the status codes: the binary interface. Checked when this
// file is compiled; the tests only name what is covered.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "zelmLib.h"

namespace {

constexpr std::size_t kPointer = sizeof(void*);

// 32-bit x86 aligns the doubles of a record to 4 bytes, so that records which mix them with integers are tighter there.
struct DoubleAfterInt {
    int32_t i;
    double d;
};
constexpr bool kTight = offsetof(DoubleAfterInt, d) == 4;

#define PIN_SIZE(record, bytes) static_assert(sizeof(record) == (bytes), #record)
#define PIN_FIELD(record, field, offset) static_assert(offsetof(record, field) == (offset), #record "." #field)

PIN_SIZE(Point2d, 16);
PIN_FIELD(Point2d, x, 0);
PIN_FIELD(Point2d, y, 8);

PIN_SIZE(Point3d, 24);
PIN_FIELD(Point3d, x, 0);
PIN_FIELD(Point3d, y, 8);
PIN_FIELD(Point3d, z, 16);

PIN_SIZE(Line2d, 24);
PIN_FIELD(Line2d, a, 0);
PIN_FIELD(Line2d, b, 8);
PIN_FIELD(Line2d, c, 16);

PIN_SIZE(Circle2d, 24);
PIN_FIELD(Circle2d, x, 0);
PIN_FIELD(Circle2d, y, 8);
PIN_FIELD(Circle2d, r, 16);

PIN_SIZE(Line3d, 48);
PIN_FIELD(Line3d, x, 0);
PIN_FIELD(Line3d, y, 8);
PIN_FIELD(Line3d, z, 16);
PIN_FIELD(Line3d, dx, 24);
PIN_FIELD(Line3d, dy, 32);
PIN_FIELD(Line3d, dz, 40);

PIN_SIZE(Plane3d, 32);
PIN_FIELD(Plane3d, a, 0);
PIN_FIELD(Plane3d, b, 8);
PIN_FIELD(Plane3d, c, 16);
PIN_FIELD(Plane3d, d, 24);

PIN_SIZE(Ellipse2d, 40);
PIN_FIELD(Ellipse2d, x, 0);
PIN_FIELD(Ellipse2d, y, 8);
PIN_FIELD(Ellipse2d, a, 16);
PIN_FIELD(Ellipse2d, b, 24);
PIN_FIELD(Ellipse2d, angle, 32);

PIN_SIZE(Ellipsoid3d, 72);
PIN_FIELD(Ellipsoid3d, x, 0);
PIN_FIELD(Ellipsoid3d, y, 8);
PIN_FIELD(Ellipsoid3d, z, 16);
PIN_FIELD(Ellipsoid3d, a, 24);
PIN_FIELD(Ellipsoid3d, b, 32);
PIN_FIELD(Ellipsoid3d, c, 40);
PIN_FIELD(Ellipsoid3d, azimuth, 48);
PIN_FIELD(Ellipsoid3d, elevation, 56);
PIN_FIELD(Ellipsoid3d, roll, 64);

PIN_SIZE(ZelmMatchPose, 32);
PIN_FIELD(ZelmMatchPose, x, 0);
PIN_FIELD(ZelmMatchPose, y, 8);
PIN_FIELD(ZelmMatchPose, angle, 16);
PIN_FIELD(ZelmMatchPose, scale, 24);

PIN_SIZE(ZelmRect, 16);
PIN_FIELD(ZelmRect, x, 0);
PIN_FIELD(ZelmRect, y, 4);
PIN_FIELD(ZelmRect, width, 8);
PIN_FIELD(ZelmRect, height, 12);

PIN_SIZE(ZelmRect2, 16);
PIN_FIELD(ZelmRect2, x1, 0);
PIN_FIELD(ZelmRect2, y1, 4);
PIN_FIELD(ZelmRect2, x2, 8);
PIN_FIELD(ZelmRect2, y2, 12);

PIN_SIZE(ZelmImage, kPointer + 8);
PIN_FIELD(ZelmImage, pixels, 0);
PIN_FIELD(ZelmImage, width, kPointer);
PIN_FIELD(ZelmImage, height, kPointer + 4);

PIN_SIZE(vImage_Buffer, 4 * kPointer);
PIN_FIELD(vImage_Buffer, data, 0);
PIN_FIELD(vImage_Buffer, height, kPointer);
PIN_FIELD(vImage_Buffer, width, 2 * kPointer);
PIN_FIELD(vImage_Buffer, rowBytes, 3 * kPointer);

PIN_SIZE(ZelmBlob, kTight ? 52 : 56);
PIN_FIELD(ZelmBlob, area, 0);
PIN_FIELD(ZelmBlob, cx, kTight ? 4 : 8);
PIN_FIELD(ZelmBlob, cy, kTight ? 12 : 16);
PIN_FIELD(ZelmBlob, left, kTight ? 20 : 24);
PIN_FIELD(ZelmBlob, top, kTight ? 24 : 28);
PIN_FIELD(ZelmBlob, right, kTight ? 28 : 32);
PIN_FIELD(ZelmBlob, bottom, kTight ? 32 : 36);
PIN_FIELD(ZelmBlob, width, kTight ? 36 : 40);
PIN_FIELD(ZelmBlob, height, kTight ? 40 : 44);
PIN_FIELD(ZelmBlob, angle, kTight ? 44 : 48);

PIN_SIZE(ZelmEdge1dParam, 28);
PIN_FIELD(ZelmEdge1dParam, halfWidth, 0);
PIN_FIELD(ZelmEdge1dParam, contrastPercent, 4);
PIN_FIELD(ZelmEdge1dParam, minContrast, 8);
PIN_FIELD(ZelmEdge1dParam, flatTolerance, 12);
PIN_FIELD(ZelmEdge1dParam, minFlatRun, 16);
PIN_FIELD(ZelmEdge1dParam, filterSize, 20);
PIN_FIELD(ZelmEdge1dParam, selector, 24);

PIN_SIZE(ZelmCameraIntrinsics, 22 * 8);
PIN_FIELD(ZelmCameraIntrinsics, A, 0);
PIN_FIELD(ZelmCameraIntrinsics, alpha, 72);
PIN_FIELD(ZelmCameraIntrinsics, beta, 80);
PIN_FIELD(ZelmCameraIntrinsics, gamma, 88);
PIN_FIELD(ZelmCameraIntrinsics, cx, 96);
PIN_FIELD(ZelmCameraIntrinsics, cy, 104);
PIN_FIELD(ZelmCameraIntrinsics, theta, 112);
PIN_FIELD(ZelmCameraIntrinsics, k1, 120);
PIN_FIELD(ZelmCameraIntrinsics, k2, 128);
PIN_FIELD(ZelmCameraIntrinsics, reserved, 136);

PIN_SIZE(ZelmCameraExtrinsics, 15 * 8);
PIN_FIELD(ZelmCameraExtrinsics, R, 0);
PIN_FIELD(ZelmCameraExtrinsics, t, 72);
PIN_FIELD(ZelmCameraExtrinsics, r, 96);

PIN_SIZE(Zelm2ViewPtnEntry, 3 * kPointer);
PIN_FIELD(Zelm2ViewPtnEntry, count, 0);
PIN_FIELD(Zelm2ViewPtnEntry, plane, kPointer);
PIN_FIELD(Zelm2ViewPtnEntry, image, 2 * kPointer);

PIN_SIZE(Zelm2ViewCameraDesc, 24);
PIN_FIELD(Zelm2ViewCameraDesc, leftModel, 0);
PIN_FIELD(Zelm2ViewCameraDesc, leftWidth, 4);
PIN_FIELD(Zelm2ViewCameraDesc, leftHeight, 8);
PIN_FIELD(Zelm2ViewCameraDesc, rightModel, 12);
PIN_FIELD(Zelm2ViewCameraDesc, rightWidth, 16);
PIN_FIELD(Zelm2ViewCameraDesc, rightHeight, 20);

PIN_SIZE(Zelm2ViewPatternDesc, 96);
PIN_FIELD(Zelm2ViewPatternDesc, d0, 0);
PIN_FIELD(Zelm2ViewPatternDesc, d1, 8);
PIN_FIELD(Zelm2ViewPatternDesc, d2, 16);
PIN_FIELD(Zelm2ViewPatternDesc, d3, 24);
PIN_FIELD(Zelm2ViewPatternDesc, d4, 32);
PIN_FIELD(Zelm2ViewPatternDesc, d5, 40);
PIN_FIELD(Zelm2ViewPatternDesc, d6, 48);
PIN_FIELD(Zelm2ViewPatternDesc, d7, 56);
PIN_FIELD(Zelm2ViewPatternDesc, markers, 64);
PIN_FIELD(Zelm2ViewPatternDesc, polarity, 68);
PIN_FIELD(Zelm2ViewPatternDesc, minDotArea, 72);
PIN_FIELD(Zelm2ViewPatternDesc, reserved76, 76);
PIN_FIELD(Zelm2ViewPatternDesc, minEdgeStrength, 80);
PIN_FIELD(Zelm2ViewPatternDesc, minDots, 88);
PIN_FIELD(Zelm2ViewPatternDesc, reserved92, 92);

PIN_SIZE(Zelm2ViewCalibResult, kTight ? 24 : 32);
PIN_FIELD(Zelm2ViewCalibResult, statusL, 0);
PIN_FIELD(Zelm2ViewCalibResult, errorL, kTight ? 4 : 8);
PIN_FIELD(Zelm2ViewCalibResult, statusR, kTight ? 12 : 16);
PIN_FIELD(Zelm2ViewCalibResult, errorR, kTight ? 16 : 24);

PIN_SIZE(Zelm2ViewEpiLine, sizeof(Line2d) + 2 * sizeof(Point2d));
PIN_FIELD(Zelm2ViewEpiLine, a, 0);
PIN_FIELD(Zelm2ViewEpiLine, b, 8);
PIN_FIELD(Zelm2ViewEpiLine, c, 16);
PIN_FIELD(Zelm2ViewEpiLine, x0, 24);
PIN_FIELD(Zelm2ViewEpiLine, y0, 32);
PIN_FIELD(Zelm2ViewEpiLine, x1, 40);
PIN_FIELD(Zelm2ViewEpiLine, y1, 48);

PIN_SIZE(ZelmCstmExpPrm, 32);
PIN_FIELD(ZelmCstmExpPrm, iWidth, 0);
PIN_FIELD(ZelmCstmExpPrm, iHeight, 4);
PIN_FIELD(ZelmCstmExpPrm, dX, 8);
PIN_FIELD(ZelmCstmExpPrm, dY, 16);
PIN_FIELD(ZelmCstmExpPrm, dVal, 24);

PIN_SIZE(ZelmCstmHomMap, kTight ? 40 : 56);
PIN_FIELD(ZelmCstmHomMap, iWidth, 0);
PIN_FIELD(ZelmCstmHomMap, iHeight, 4);
PIN_FIELD(ZelmCstmHomMap, mapX, 8);
PIN_FIELD(ZelmCstmHomMap, mapXStride, kTight ? 12 : 16);
PIN_FIELD(ZelmCstmHomMap, mapY, kTight ? 16 : 24);
PIN_FIELD(ZelmCstmHomMap, mapYStride, kTight ? 20 : 32);
PIN_FIELD(ZelmCstmHomMap, minX, kTight ? 24 : 36);
PIN_FIELD(ZelmCstmHomMap, minY, kTight ? 28 : 40);
PIN_FIELD(ZelmCstmHomMap, maxX, kTight ? 32 : 44);
PIN_FIELD(ZelmCstmHomMap, maxY, kTight ? 36 : 48);

static_assert(kTight == (sizeof(void*) == 4), "32-bit x86 packs doubles to 4 bytes, 64-bit x86 does not");

// Two integers, two pointers, eight doubles.
PIN_SIZE(ZelmCstmRefImg, 8 + 2 * kPointer + 64);
PIN_FIELD(ZelmCstmRefImg, width, 0);
PIN_FIELD(ZelmCstmRefImg, height, 4);
PIN_FIELD(ZelmCstmRefImg, pixels, 8);
PIN_FIELD(ZelmCstmRefImg, mask, 8 + kPointer);
PIN_FIELD(ZelmCstmRefImg, mean, 8 + 2 * kPointer);
PIN_FIELD(ZelmCstmRefImg, sigma, 32 + 2 * kPointer);
PIN_FIELD(ZelmCstmRefImg, anchorX, 56 + 2 * kPointer);
PIN_FIELD(ZelmCstmRefImg, anchorY, 64 + 2 * kPointer);

// The 4 bytes before minScore are padding where doubles are aligned to 8.
constexpr std::size_t kAfterMaxResults = (kTight ? 84 : 88) + 2 * kPointer;
PIN_SIZE(ZelmCstmSearchPrm, kAfterMaxResults + 16);
PIN_FIELD(ZelmCstmSearchPrm, width, 0);
PIN_FIELD(ZelmCstmSearchPrm, height, 4);
PIN_FIELD(ZelmCstmSearchPrm, pixels, 8);
PIN_FIELD(ZelmCstmSearchPrm, mask, 8 + kPointer);
PIN_FIELD(ZelmCstmSearchPrm, roiX, 8 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, roiY, 12 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, roiWidth, 16 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, roiHeight, 20 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, epiLine, 24 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, reserved, 48 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, maxResults, 80 + 2 * kPointer);
PIN_FIELD(ZelmCstmSearchPrm, minScore, kAfterMaxResults);
PIN_FIELD(ZelmCstmSearchPrm, minDistance, kAfterMaxResults + 8);
PIN_FIELD(ZelmCstmSearchPrm, mode, kAfterMaxResults + 12);

PIN_SIZE(ZelmCstmMatch, 24);
PIN_FIELD(ZelmCstmMatch, score, 0);
PIN_FIELD(ZelmCstmMatch, x, 8);
PIN_FIELD(ZelmCstmMatch, y, 16);

struct StatusCode {
    const char* name;
    int32_t actual;
    int32_t expected;
};

#define STATUS(name, value) \
    StatusCode {            \
#name, name, value  \
    }

TEST(PublicInterface, StatusCodesKeepTheirValues) {
    const StatusCode codes[] = {
        STATUS(ZELM_OK, 0),
        STATUS(ZELM_ERR_MEMORY, -1),
        STATUS(ZELM_ERR_PARAM, -2),
        STATUS(ZELM_ERR_DEGENERATE, -100),
        STATUS(ZELM_ERR_SINGULAR, -110),
        STATUS(ZELM_ERR_EIGEN_NOT_CONVERGED, -111),
        STATUS(ZELM_ERR_SVD_FAILED, -112),
        STATUS(ZELM_ERR_NOT_POSITIVE_DEFINITE, -113),
        STATUS(ZELM_ERR_FIT_DATA, -130),
        STATUS(ZELM_ERR_FIT_NOT_ELLIPSE, -131),
        STATUS(ZELM_ERR_FIT_NOT_ELLIPSOID, -132),
        STATUS(ZELM_ERR_FIT_NOT_CONE, -133),
        STATUS(ZELM_ERR_CALIB_HOMOGRAPHY, -150),
        STATUS(ZELM_ERR_CALIB_ESTIMATE, -151),
        STATUS(ZELM_ERR_CALIB_NOT_CONVERGED, -152),
        STATUS(ZELM_ERR_UNDISTORT, -153),
        STATUS(ZELM_ERR_PATTERN, -200),
        STATUS(ZELM_ERR_PATTERN_MARKERS, -201),
        STATUS(ZELM_ERR_PATTERN_GRID, -202),
        STATUS(ZELM_ERR_STEREO_GEOMETRY, -210),
        STATUS(ZELM_ERR_PATTERN_PLATE, -220),
    };
    for (const auto& [name, actual, expected] : codes) {
        EXPECT_EQ(actual, expected) << name;
    }
}

}  // namespace
