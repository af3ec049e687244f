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

// Tilt and roll of the plate behind the homography H = (M, m; ...) and the scales. intrinsics (in their order)
// holds alpha and beta, the scales, which are adapted to the tilt, and cx, cy. Writes the pose. Returns ZELM_OK or the
// status of a failed matrix operation; ZELM_ERR_CALIB_ESTIMATE when the scales are of no use.
std::int32_t telecentricPose(const double* H, double* intrinsics, double* pose);

}  // namespace zelm

#endif
