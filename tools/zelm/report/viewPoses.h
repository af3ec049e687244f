// How the plate of each view stood before the cameras.
#ifndef ZELM_TOOL_VIEW_POSES_H
#define ZELM_TOOL_VIEW_POSES_H

#include <array>
#include <optional>
#include <vector>

#include "calibrationSummary.h"

namespace zelm::tool {

using Point3 = std::array<double, 3>;

// A plate as one camera has it before it.
struct PlatePose {
    double distance = 0.0;  // from the camera to the plate's corner marker, plate units; a parallel camera has none
    double tilt = 0.0;      // of the plate's face against the line of sight, radians
    double azimuth = 0.0;   // of the direction to which the face is tilted in the image, from right to down, radians
};

// Left and right; nothing of a camera that has no dots of the view.
struct ViewPose {
    std::array<std::optional<PlatePose>, 2> cameras;
};

std::vector<ViewPose> viewPoses(const Calibration& calibration);

// A rotation and a shift: to = R from + t.
struct Motion {
    std::array<double, 9> R{};
    Point3 t{};

    Point3 operator()(const Point3& from) const;
    // From what it maps to.
    Point3 back(const Point3& to) const;
};

Motion motionOf(const ZelmCameraExtrinsics& pose);

}  // namespace zelm::tool

#endif
