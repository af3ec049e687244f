#include "meetingPoint.h"

#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kMaxDistances = 2.0;  // epipolar distances that both corrections may be together
constexpr double kSlack = 1.0;         // pixels

// Pixels from the right one to the epipolar line of the left one, undistorted.
double epipolarDistance(const Rig& rig, const Point2d& left, const Point2d& right) {
    Point2d l{};
    Point2d r{};
    zelm2ViewUnDistortPoint(rig.calib.get(), 'L', &left, &l);
    zelm2ViewUnDistortPoint(rig.calib.get(), 'R', &right, &r);
    const Vector3 line = timesTransposed(rig.fundamental, {l.x, l.y, 1.0});
    return std::fabs(line[0] * r.x + line[1] * r.y + line[2]) / std::hypot(line[0], line[1]);
}

}  // namespace

double reprojectionError(const Zelm2ViewCalib* calib, char side, const Point3d& X, const Point2d& pixel) {
    Point2d projected{};
    zelm2ViewChange3Dto2D(calib, side, &X, &projected);
    return std::hypot(pixel.x - projected.x, pixel.y - projected.y);
}

bool isMeetingPoint(const Rig& rig, const Point2d& left, const Point2d& right, double errorLeft, double errorRight) {
    return !(errorLeft + errorRight > kMaxDistances * epipolarDistance(rig, left, right) + kSlack);
}

}  // namespace zelm::measure
