// The renderer's camera, written from the camera's equations alone and in double precision, so that the renderer is an
// independent check of the library's camera model.
//
// A point X of the plate stands at Xc = R X + t in camera coordinates (x right, y down, z forward). Its normalised
// coordinates are (xn, yn) = (Xc/Zc, Yc/Zc), or (Xc, Yc) under parallel projection; the ideal pixel is
// (fx xn + (skew + fy tan(theta)) yn + cx, fy yn + cy); with r^2 = xn^2 + yn^2 the lens moves it away from the
// principal point by the factor 1 + k1 r^2 + k2 r^4. Pixel centres are at integer coordinates.
#ifndef ZELM_RENDER_CAMERA_H
#define ZELM_RENDER_CAMERA_H

#include <array>

#include "plate.h"

namespace zelm::render {

// A point of the image in pixels.
struct Pixel {
    double x = 0.0;
    double y = 0.0;
};

enum class Projection { perspective, parallel };

struct Camera {
    int width = 1280;
    int height = 960;
    Projection projection = Projection::perspective;
    double fx = 1690.0;  // pixels; pixels per plane unit under parallel projection
    double fy = 1690.0;  //
    double skew = 0.0;   // pixels
    double cx = 639.5;
    double cy = 479.5;
    double theta = 0.0;  // angle of sheared image axes in radians (model 1 of the library's camera)
    double k1 = 0.0;
    double k2 = 0.0;
};

// X_camera = R X_plate + t; R row-major.
struct Pose {
    std::array<double, 9> R = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::array<double, 3> t = {0, 0, 0};
};

// An image point and its derivatives by the plane coordinates.
struct ProjectedPoint {
    Pixel pixel;
    double dxdX = 0.0, dxdY = 0.0;
    double dydX = 0.0, dydY = 0.0;
};

// Throws std::invalid_argument unless the sizes and focal lengths are positive and every value is finite.
void checkCamera(const Camera& camera);

// The 3x3 camera matrix, row-major.
std::array<double, 9> cameraMatrix(const Camera& camera);

// Image of a plane point. Throws std::domain_error when the point is behind the camera, or so far out that the lens
// model folds the image.
ProjectedPoint project(const Camera& camera, const Pose& pose, PlanePoint point);

// Whether `project` can be asked for that point.
bool canProject(const Camera& camera, const Pose& pose, PlanePoint point);

// Rotation by |r| radians about the axis r.
std::array<double, 9> rotationFromVector(const std::array<double, 3>& r);
// Its inverse; the vector's length is in [0, pi].
std::array<double, 3> vectorFromRotation(const std::array<double, 9>& R);

// The pose that first applies `inner` and then `outer`, for example right = compose(rightFromLeft, left).
Pose compose(const Pose& outer, const Pose& inner);
Pose inverse(const Pose& pose);

// A pose described by what the camera sees.
struct Aim {
    Pixel pixel = {639.5, 479.5};  // where the plane point appears (without lens distortion)
    PlanePoint point;              // the plane point that appears there
    double scale = 5.0;            // pixels per plane unit there, across the direction of tilt (perspective only)
    double rollDegrees = 0.0;      // turn of the plate in its plane
    double tiltDegrees = 0.0;      // angle between the plate's normal and the optical axis
    double tiltAxisDegrees = 0.0;  // direction of the tilt axis in the image, from x towards y
};

// The pose of a plate seen so. Under parallel projection the scale is the camera's and the distance is set to 1.
Pose aimedPose(const Camera& camera, const Aim& aim);

}  // namespace zelm::render

#endif
