// Two cameras with known truth, and the objects that calibrate them from ideal dots.
#ifndef ZELM_TEST_RIG_FIXTURES_H
#define ZELM_TEST_RIG_FIXTURES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "alloc.h"
#include "calibObject.h"
#include "patternFixtures.h"
#include "random.h"
#include "stereoGeometry.h"

namespace zelmtest {

// The library's record of a rendered camera.
inline ZelmCameraIntrinsics intrinsicsOf(const render::Camera& camera) {
    ZelmCameraIntrinsics result{};
    const auto K = render::cameraMatrix(camera);
    std::copy(K.begin(), K.end(), result.A);
    result.alpha = camera.fx;
    result.beta = camera.fy;
    result.gamma = camera.skew;
    result.cx = camera.cx;
    result.cy = camera.cy;
    result.theta = camera.theta;
    result.k1 = camera.k1;
    result.k2 = camera.k2;
    return result;
}

inline ZelmCameraExtrinsics poseOf(const render::Pose& pose) {
    ZelmCameraExtrinsics result{};
    std::copy(pose.R.begin(), pose.R.end(), result.R);
    std::copy(pose.t.begin(), pose.t.end(), result.t);
    const auto r = render::vectorFromRotation(pose.R);
    std::copy(r.begin(), r.end(), result.r);
    return result;
}

inline zelm::CalibratedCamera calibrated(const render::Camera& camera, const render::Pose& pose) {
    const bool isParallel = camera.projection == render::Projection::parallel;
    return {isParallel ? 2 : 0, intrinsicsOf(camera), poseOf(pose)};
}

// The image of a point of space without lens distortion, from the camera's equations alone.
inline Point2d idealPixel(const render::Camera& camera, const render::Pose& pose, const Point3d& X) {
    const auto& R = pose.R;
    double c[3];
    for (std::size_t i = 0; i < 3; ++i) {
        c[i] = R[3 * i] * X.x + R[3 * i + 1] * X.y + R[3 * i + 2] * X.z + pose.t[i];
    }
    const double depth = camera.projection == render::Projection::parallel ? 1.0 : c[2];
    const double xn = c[0] / depth;
    const double yn = c[1] / depth;
    return {camera.fx * xn + (camera.skew + camera.fy * std::tan(camera.theta)) * yn + camera.cx,
            camera.fy * yn + camera.cy};
}

// Distance of the right point from the epipolar line of the left one, pixels.
inline double epipolarDistance(const double* F, const Point2d& left, const Point2d& right) {
    double line[3];
    for (std::size_t j = 0; j < 3; ++j) {
        line[j] = left.x * F[j] + left.y * F[3 + j] + F[6 + j];
    }
    return std::fabs(line[0] * right.x + line[1] * right.y + line[2]) / std::hypot(line[0], line[1]);
}

inline double determinant(const double* m) {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

inline double largestElement(const double* m) {
    double largest = 0.0;
    for (int i = 0; i < 9; ++i) {
        largest = std::max(largest, std::fabs(m[i]));
    }
    return largest;
}

// Puts dots into an entry of an opened object as reading does.
inline void fillEntry(Zelm2ViewCalib* calib, zelm::Camera camera, std::int32_t view, const std::vector<Point2d>& plane,
                      const std::vector<Point2d>& image) {
    Zelm2ViewPtnEntry* const entry = &zelm::entriesOf(zelm::openedWork(*calib), camera)[view];
    zelm::emptyEntry(entry);
    const std::size_t bytes = plane.size() * sizeof(Point2d);
    entry->plane = static_cast<Point2d*>(zelm::allocBytes(bytes));
    entry->image = static_cast<Point2d*>(zelm::allocBytes(bytes));
    std::copy(plane.begin(), plane.end(), entry->plane);
    std::copy(image.begin(), image.end(), entry->image);
    entry->count = static_cast<std::int32_t>(plane.size());
}

// The images of the centres of a plate's dots, with Gaussian noise.
inline void fillView(Zelm2ViewCalib* calib, zelm::Camera side, std::int32_t view, const render::Plate& plate,
                     const render::Camera& camera, const render::Pose& pose, double noise = 0.0,
                     std::uint64_t seed = 1) {
    Random random(seed);
    std::vector<Point2d> onPlane;
    std::vector<Point2d> inImage;
    for (const auto& dot : render::plateDots(plate)) {
        const auto projected = render::project(camera, pose, dot.centre);
        onPlane.push_back({dot.centre.x, dot.centre.y});
        inImage.push_back({projected.pixel.x + noise * random.normal(), projected.pixel.y + noise * random.normal()});
    }
    fillEntry(calib, side, view, onPlane, inImage);
}

}  // namespace zelmtest

#endif
