// Whether a triangulated point is where the rays of its pixels meet.
#ifndef ZELM_MEASURE_MEETING_POINT_H
#define ZELM_MEASURE_MEETING_POINT_H

#include "rig.h"

namespace zelm::measure {

// Pixels from a raw pixel to the raw projection of a point.
double reprojectionError(const Zelm2ViewCalib* calib, char side, const Point3d& X, const Point2d& pixel);

// Of rays side by side the core's equations give the solution of least norm, which is on neither. Told by the
// reprojection errors of the point in both images: the optimal correction moves the two raw pixels by hardly more than
// their epipolar distance.
bool isMeetingPoint(const Rig& rig, const Point2d& left, const Point2d& right, double errorLeft, double errorRight);

}  // namespace zelm::measure

#endif
