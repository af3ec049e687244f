// A calibrated pair and the file that holds it: the library's calibration block, byte for byte.
#ifndef ZELM_TOOL_RIG_FILE_H
#define ZELM_TOOL_RIG_FILE_H

#include <zelmMeasure.h>

#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "savedSummary.h"

namespace zelm::tool {

struct Console;

// Own handles of the libraries.
struct CloseCalib {
    void operator()(Zelm2ViewCalib* calib) const { zelm2ViewCalibClose(&calib); }
};
using CalibPtr = std::unique_ptr<Zelm2ViewCalib, CloseCalib>;
struct CloseRig {
    void operator()(ZelmMeasureRig* rig) const { zelmMeasureRigClose(&rig); }
};
using MeasurePtr = std::unique_ptr<ZelmMeasureRig, CloseRig>;

// What a calibration says of one camera.
struct RigCamera {
    int model = ZELM_CAMERA_PERSPECTIVE;
    int width = 0;
    int height = 0;
    ZelmCameraIntrinsics intrinsics{};
    std::vector<ZelmCameraExtrinsics> poses;  // a view each

    bool isParallel() const { return model == ZELM_CAMERA_PARALLEL; }
};

// How the right camera stands to the left one in view 0: X_right = R X_left + t.
using PairGeometry = ZelmMeasureRelativePose;

// What a calibration says.
struct Rig {
    RigCamera left;
    RigCamera right;
    std::array<double, 9> fundamental{};              // x_left^T F x_right = 0, undistorted pixels
    std::optional<PairGeometry> pair;                 // none with a parallel projection
    std::optional<ZelmMeasureCovariance> covariance;  // of the parameters, where it is known

    std::size_t views() const { return left.poses.size(); }
    // Another program calibrated it: it has the one pose of its frame, and no views.
    bool isImported() const { return views() == 1; }
};

// A calibration ready to measure with: what it says, and the measuring library's handle of it.
struct LoadedRig {
    Rig rig;
    MeasurePtr handle;
    std::filesystem::path file;         // it was loaded from; empty for one that was just calibrated
    SavedSummary summary;               // that stands beside the file
    std::string units = kUnknownUnits;  // of lengths, in words

    // For the functions of the core that only read the calibration.
    const Zelm2ViewCalib* calib() const { return zelmMeasureRigCalib(handle.get()); }
    // 'L' or 'R'.
    const RigCamera& camera(char side) const { return side == 'L' ? rig.left : rig.right; }
    // Throws Failure with what the measuring library says of the last call, after the name of the file at fault.
    void require(std::int32_t status, const std::string& culprit) const;
    // Throws Failure, with what to do, for a rig whose covariance is not known.
    void requireCovariance() const;
};

// The rig of a calibrated handle, with the dots that it was calibrated from.
LoadedRig rigOf(const Zelm2ViewCalib* calib);

// The rig of a handle of the measuring library.
LoadedRig rigOfHandle(MeasurePtr handle);

// The calibration block of a handle.
std::string blockOf(const Zelm2ViewCalib* calib);

// The bytes of a rig's covariance; empty when it has none.
std::string covarianceBytes(const LoadedRig& rig);

// The file that holds the covariance of a rig: of the same name, but for the ending .zcov.
std::filesystem::path covarianceFile(const std::filesystem::path& rig);

// Reads and checks a block, the covariance beside it when there is one, and the summary beside it (rig.json), for the
// unit of lengths and the verdict. Every command loads its calibration here: one that was refused, and written all the
// same, is a warning. Throws Failure, naming the file, for a block that is truncated, foreign or damaged.
LoadedRig loadRig(const std::filesystem::path& path, const Console& console);

}  // namespace zelm::tool

#endif
