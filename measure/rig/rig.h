// A calibrated pair of cameras as the rest of the library works with it.
#ifndef ZELM_MEASURE_RIG_H
#define ZELM_MEASURE_RIG_H

#include <zelmLib.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "calibrationCovariance.h"
#include "fault.h"
#include "space3.h"

namespace zelm::measure {

// Owns an object of the core.
struct CloseCalib {
    void operator()(Zelm2ViewCalib* calib) const { zelm2ViewCalibClose(&calib); }
};
using CalibPtr = std::unique_ptr<Zelm2ViewCalib, CloseCalib>;

struct RigCamera {
    int model = ZELM_CAMERA_PERSPECTIVE;
    int width = 0;
    int height = 0;
    ZelmCameraIntrinsics intrinsics{};
    std::vector<ZelmCameraExtrinsics> poses;  // a view each
    std::vector<std::vector<Point2d>> dots;   // a view each, as taken; none of a rig from a file

    bool isParallel() const { return model == ZELM_CAMERA_PARALLEL; }
    const ZelmCameraExtrinsics& pose() const { return poses.front(); }
    Matrix3 matrix() const;
    // Along the camera's axis.
    double depthOf(const Point3d& X) const {
        const ZelmCameraExtrinsics& p = pose();
        return p.R[6] * X.x + p.R[7] * X.y + p.R[8] * X.z + p.t[2];
    }
    bool holds(Point2d pixel) const {
        return pixel.x >= 0.0 && pixel.y >= 0.0 && pixel.x <= width - 1 && pixel.y <= height - 1;
    }
};

struct Rig {
    RigCamera left;
    RigCamera right;
    std::array<double, 9> fundamental{};  // x_left' F x_right = 0, undistorted pixels
    CalibPtr calib;
    std::optional<CalibrationCovariance> covariance;  // of a rig that was adjusted

    // 'L' or 'R'.
    const RigCamera& camera(char side) const { return side == 'L' ? left : right; }
    std::size_t views() const { return left.poses.size(); }
    // Throws for a rig of two parallel cameras.
    void requireTriangulation() const;
};

// X_to = R X_from + t.
struct Motion {
    Matrix3 R{};
    Vector3 t{};
};
Motion motionBetween(const RigCamera& from, const RigCamera& to);

// Throws Fault unless the bytes are a sound calibration block.
Rig rigOfBlock(std::span<const unsigned char> block);
// With the dots that the object was calibrated from.
Rig rigOfCalib(const Zelm2ViewCalib* calib);

}  // namespace zelm::measure

// What the handles of the interface point to.
struct ZelmMeasureRig {
    zelm::measure::Rig rig;
    bool isOpen = false;  // not so: the block was refused
    zelm::measure::ErrorText error;
};

namespace zelm::measure {

// Does the work of a function with a rig; refuses handles that hold none, which keep the words of their refusal.
template <class Work>
std::int32_t withRig(ZelmMeasureRig* handle, Work work) noexcept {
    if (handle == nullptr || !handle->isOpen) {
        return ZELM_ERR_PARAM;
    }
    return guarded(&handle->error, [&] { work(static_cast<const Rig&>(handle->rig)); });
}

inline char sideOf(std::int32_t side) {
    require(side == 'L' || side == 'R', "a side is 'L' or 'R'");
    return static_cast<char>(side);
}

}  // namespace zelm::measure

#endif
