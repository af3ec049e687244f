// The measured dots of one camera's views and the unknowns to be estimated from them, in normalised units.
//
// Both point sets are centred on their mean and scaled to a mean distance of sqrt(2) from it: the images over all views
// (image' = s (image - m)), the plate likewise. Every unknown is then of the order of 1 to 10, whatever the image size
// and the unit of the plate, which the thresholds of the refinement and the sums of the normal equations rely on.
#ifndef ZELM_CAMERA_DATA_H
#define ZELM_CAMERA_DATA_H

#include <cstddef>
#include <cstdint>

#include "cameraProjection.h"
#include "workBuffer.h"
#include "zelm/calib.h"

namespace zelm {

// p' = s (p - m).
struct Normalisation {
    double s;
    double mx;
    double my;
};

struct CameraData {
    WorkBuffer<std::size_t> first;  // index of each view's first dot; one more entry than views
    WorkBuffer<Point2d> plane;
    WorkBuffer<Point2d> image;
    Normalisation planeUnits;
    Normalisation imageUnits;
    bool parallel;

    [[nodiscard]] std::size_t views() const { return first.size() - 1; }
    [[nodiscard]] std::size_t dots() const { return plane.size(); }
};

// The unknowns; poses holds kPose numbers a view.
struct CameraUnknowns {
    double intrinsics[kIntrinsics] = {};
    double* poses = nullptr;
};

}  // namespace zelm

#endif
