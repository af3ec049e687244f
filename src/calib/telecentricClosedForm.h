// Closed-form start values of a parallel-projection camera from one view.
#ifndef ZELM_TELECENTRIC_CLOSED_FORM_H
#define ZELM_TELECENTRIC_CLOSED_FORM_H

#include <cstddef>
#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// The dots at plane (0, 0), (xDistance, 0) and (0, yDistance), by their index in the view.
struct ReferenceDots {
    std::size_t origin;
    std::size_t onX;
    std::size_t onY;
};

// Finds them among n dots; of several matches the last counts. False when one is missing.
bool findReferenceDots(std::size_t n, const Point2d* plane, double xDistance, double yDistance, ReferenceDots* dots);

// The image scales along x and y (image units per plane unit) from the image offsets of the x and the y reference dot
// from the origin dot, and their distances in the plane. Neither finite nor non-zero when the dots coincide.
struct ImageScales {
    double x;
    double y;
};
ImageScales scalesFromBaselines(Point2d toX, double xDistance, Point2d toY, double yDistance);

// The pose of a plate that is seen head-on behind the homography H = (M, m; ...). intrinsics (in their order) holds
// alpha and beta, the scales, and cx, cy. Returns ZELM_OK, ZELM_ERR_CALIB_ESTIMATE when the scales are of no use, or
// the status of a failed matrix operation.
std::int32_t headOnPose(const double* H, const double* intrinsics, double* pose);

// Explains the shear gamma by a tilt of the plate: new scales, gamma = 0 and a new pose that image plate points as
// before. A parallel view shows how plate lengths shrink and shear, two numbers that tilt (two angles) and the ratio
// of the scales share; the ratio is taken such that the tilt is least. Of the two mirrored tilts which image the plate
// alike the one is taken whose x axis points away from the camera. Returns ZELM_OK or the status of a failed matrix
// operation.
std::int32_t shearToTilt(double* intrinsics, double* pose);

}  // namespace zelm

#endif
