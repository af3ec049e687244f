// A calibrated pair and the file that holds it: the library's calibration block, byte for byte.
#ifndef ZELM_TOOL_RIG_FILE_H
#define ZELM_TOOL_RIG_FILE_H

#include <zelmLib.h>

#include <array>
#include <filesystem>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace zelm::tool {

// Owns a handle of the library.
struct CloseCalib {
    void operator()(Zelm2ViewCalib* handle) const { zelm2ViewCalibClose(&handle); }
};
using CalibPtr = std::unique_ptr<Zelm2ViewCalib, CloseCalib>;

// What the block says of one camera.
struct RigCamera {
    int model = 0;
    int width = 0;
    int height = 0;
    ZelmCameraIntrinsics intrinsics{};
    std::vector<ZelmCameraExtrinsics> poses;  // a view each
};

// The contents of a calibration block.
struct Rig {
    RigCamera left;
    RigCamera right;
    std::array<double, 9> fundamental{};  // x_left^T F x_right = 0, undistorted pixels

    std::size_t views() const { return left.poses.size(); }
};

// A calibration ready to measure with: what its block says, and the library's object that holds it.
struct LoadedRig {
    Rig rig;
    CalibPtr handle;

    // 'L' or 'R'.
    const RigCamera& camera(char side) const { return side == 'L' ? rig.left : rig.right; }
};

// How the right camera stands to the left one in view 0. Meaningless with a parallel projection.
struct PairGeometry {
    std::array<double, 9> rotation{};     // X_right = rotation X_left + translation
    std::array<double, 3> translation{};  // plane units
    double baseline = 0.0;                // plane units
    double convergenceDegrees = 0.0;      // angle between the optical axes
};

// The contents of the block of a calibrated handle.
Rig rigOf(const Zelm2ViewCalib* handle, const Zelm2ViewCameraDesc& cameras);

// The calibration block of a handle.
std::string blockOf(const Zelm2ViewCalib* handle);

// Reads and checks a block. Throws Failure, naming the file, for one that is truncated, foreign or damaged.
LoadedRig loadRig(const std::filesystem::path& path);
Rig readRig(const std::filesystem::path& path);

bool hasPairGeometry(const Rig& rig);
PairGeometry pairGeometry(const Rig& rig);

// The intrinsics, the poses and the pair as JSON.
nlohmann::ordered_json rigJson(const Rig& rig);

// The same for people; `units` are those of the plate.
std::string rigText(const Rig& rig, const std::string& units);

const char* modelName(int model);

}  // namespace zelm::tool

#endif
