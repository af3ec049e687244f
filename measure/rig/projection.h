// The projection of a camera with its derivatives, by the parameters that an adjustment estimates.
//
// All models are one: a point of the camera's frame has normalised coordinates (x, y) = (X/Z, Y/Z), or (X, Y) under
// parallel projection; the lens moves them by (k1 r^2 + k2 r^4) (x, y), r^2 = x^2 + y^2; the pixel is
// (fx x + skew y + cx, fy y + cy). The tilted model describes the same skew by an angle.
#ifndef ZELM_MEASURE_PROJECTION_H
#define ZELM_MEASURE_PROJECTION_H

#include <zelmLib.h>

#include <array>
#include <cstddef>

#include "space3.h"

namespace zelm::measure {

struct RigCamera;

// Places of the parameters of a camera.
enum CameraParameter : std::size_t { kFx, kSkew, kFy, kCx, kCy, kK1, kK2, kCameraParameters };
using CameraParameters = std::array<double, kCameraParameters>;

CameraParameters parametersOf(const ZelmCameraIntrinsics& intrinsics);

struct ProjectionCamera {
    bool isParallel = false;
    CameraParameters p{};
};

ProjectionCamera projectionOf(const RigCamera& camera);

// A pixel and what changes it.
struct Projection {
    Point2d pixel{};
    std::array<std::array<double, 3>, 2> byPoint{};                       // by the point in the camera's frame
    std::array<std::array<double, kCameraParameters>, 2> byParameters{};  // by the camera's parameters
};

// Of a point in the camera's frame. A point in the plane of a perspective camera gives numbers that are not finite.
Projection project(const ProjectionCamera& camera, const Vector3& point);
Point2d pixelOf(const ProjectionCamera& camera, const Vector3& point);

// Rotation by |r| radians about r (Rodrigues 1840), row-major.
Matrix3 rotationOf(const Vector3& r);
// J with exp(r + d) = exp(J d) exp(r) to first order in d: the left Jacobian of the rotation group.
Matrix3 leftJacobian(const Vector3& r);

}  // namespace zelm::measure

#endif
