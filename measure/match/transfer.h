// How the pixels of one camera of a pair move through the other one's image with the depth of what they show.
#ifndef ZELM_MEASURE_TRANSFER_H
#define ZELM_MEASURE_TRANSFER_H

#include <array>
#include <limits>
#include <optional>
#include <vector>

#include "rig.h"
#include "space3.h"

namespace zelm::measure {

// Distances along the axes of the cameras between which points are looked for, in plate units.
struct DepthLimits {
    double leftNearest = 0.0;
    double leftFarthest = std::numeric_limits<double>::infinity();
    double rightNearest = 0.0;
    double rightFarthest = std::numeric_limits<double>::infinity();
};

// The limits that hold where the user names none: for each perspective camera from half the distance of the nearest
// plate of the calibration, that of its corner marker, to twice that of the farthest.
DepthLimits calibratedLimits(const Rig& rig);

// A plane of space near an undistorted pixel of a camera. What tells the depth is rho: the inverse of the depth along
// the camera's axis, or, for a parallel camera, the depth itself; over the pixels of a plane it is affine.
struct Surface {
    Point2d at{};         // undistorted
    double rho = 0.0;     // there
    double slopeX = 0.0;  // of rho, a pixel
    double slopeY = 0.0;

    double rhoAt(Point2d p) const { return rho + slopeX * (p.x - at.x) + slopeY * (p.y - at.y); }
    // The same plane about another pixel.
    Surface movedTo(Point2d p) const { return {p, rhoAt(p), slopeX, slopeY}; }
};

struct Interval {
    double low = 0.0;
    double high = 0.0;

    bool isEmpty() const { return !(low < high); }
    double middle() const { return 0.5 * (low + high); }
};

// From undistorted pixels of one camera to those of the other.
class Transfer {
public:
    // `from`: 'L' or 'R'.
    Transfer(const Rig& rig, char from, const DepthLimits& limits);

    // Where the other camera sees the point at `rho` on the ray of a pixel.
    Point2d targetOf(Point2d pixel, double rho) const;
    // How that place moves with rho.
    Point2d motionOf(Point2d pixel, double rho) const;
    // The rho that brings the pixel nearest to a place of its epipolar line.
    double rhoFor(Point2d pixel, Point2d target, Point2d direction) const;
    // The rho for which the point is within the limits, in front of both cameras and in the other image.
    Interval searchInterval(Point2d pixel) const;
    // The depth along the left or, for a transfer from the right, along the right camera's axis.
    double depthOf(double rho) const { return parallel ? rho : 1.0 / rho; }
    // Change of that depth with rho, as a magnitude.
    double depthSlope(double rho) const { return parallel ? 1.0 : 1.0 / (rho * rho); }

    // The homography that carries the pixels of a plane into the other image.
    Matrix3 homographyOf(const Surface& surface) const;
    // The plane through the point at rho that faces both cameras alike.
    Surface facingSurface(Point2d pixel, double rho) const;
    bool isParallel() const { return parallel; }

private:
    // a + b * rho >= 0, each of them affine in the pixel as well.
    struct Condition {
        Vector3 pixel;
        double rho;
    };
    void addConditions(const Rig& rig, char from, const DepthLimits& limits);
    void addDepthLimits(const std::array<double, 4>& axis, double nearest, double farthest);

    bool parallel = false;
    Matrix3 M{};                                          // target ~ M * pixel + m * rho
    Vector3 m{};                                          //
    std::array<std::array<double, 3>, 4> spaceOfPixel{};  // the point of a pixel, homogeneous: B * pixel + b * rho
    std::array<double, 4> spaceOfRho{};
    Vector3 otherCentre{};  // of projection, in the frame of this camera,
    Vector3 otherAxis{};    // and its direction of view
    bool otherParallel = false;
    Matrix3 inverseCamera{};  // of this camera's matrix
    std::vector<Condition> conditions;
};

}  // namespace zelm::measure

#endif
