// A camera of the rig as a target needs it: where it sees a point of space, and how that moves with the point.
#ifndef ZELM_MEASURE_TARGET_CAMERA_H
#define ZELM_MEASURE_TARGET_CAMERA_H

#include <zelmLib.h>

#include <optional>

#include "projection.h"
#include "rig.h"
#include "space3.h"

namespace zelm::measure {

// The raw pixel of a point, lens included, and its derivatives by the point's coordinates.
struct TargetPixel {
    Point2d pixel{};
    Vector3 dx{};  // of pixel.x
    Vector3 dy{};  // of pixel.y
};

class TargetCamera {
public:
    explicit TargetCamera(const RigCamera& camera);

    // Nothing for points behind the camera, or so far out that the lens model folds the image.
    std::optional<TargetPixel> project(const Vector3& X) const;
    // Unit vector from a point towards the camera.
    Vector3 towards(const Vector3& X) const;

private:
    ProjectionCamera lens;
    Matrix3 R{};
    Vector3 t{};
    Vector3 centre{};  // of projection
};

}  // namespace zelm::measure

#endif
