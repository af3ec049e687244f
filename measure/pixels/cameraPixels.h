// Pixels and points of one camera, one after the other by the core's functions.
#ifndef ZELM_MEASURE_CAMERA_PIXELS_H
#define ZELM_MEASURE_CAMERA_PIXELS_H

#include <array>

#include "rig.h"

namespace zelm::measure {

// A camera of a rig with the fold of its lens. The rig outlives it.
class CameraPixels {
public:
    CameraPixels(const Rig& rig, char side);

    // What cannot be told is NaN.
    Point2d project(const Point3d& point) const;
    Point2d undistort(const Point2d& raw) const;
    Point2d distort(const Point2d& undistorted) const;
    std::array<double, 3> epipolarLine(const Point2d& raw) const;

private:
    // Whether normalised coordinates of this camera lie where its lens is one-to-one.
    bool isWithinFold(double x, double y) const { return x * x + y * y < fold; }

    // Whether the lens shows what lies at an undistorted pixel.
    bool isImaged(const Point2d& undistorted) const;

    const Zelm2ViewCalib* calib;
    const RigCamera& camera;
    char side;
    std::array<double, 5> matrix;  // fx, skew, fy, cx, cy
    double fold;                   // square of the normalised radius
};

}  // namespace zelm::measure

#endif
