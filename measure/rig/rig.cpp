#include "rig.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "calibBlock.h"

namespace zelm::measure {
namespace {

constexpr int kMinViews = 3;       // of a calibration
constexpr int kImportedViews = 1;  // of a pair that another program calibrated: its poses alone
constexpr int kMaxSide = 1 << 20;  // pixels; a larger image is no image size but foreign bytes

bool isSane(std::int32_t views, const Zelm2ViewCameraDesc& c) {
    const auto isSide = [](int side) { return side > 0 && side <= kMaxSide; };
    const auto isModel = [](int model) { return model >= ZELM_CAMERA_PERSPECTIVE && model <= ZELM_CAMERA_PARALLEL; };
    return (views >= kMinViews || views == kImportedViews) && isModel(c.leftModel) && isModel(c.rightModel) &&
           isSide(c.leftWidth) && isSide(c.leftHeight) && isSide(c.rightWidth) && isSide(c.rightHeight);
}

void checkHeader(std::span<const unsigned char> bytes) {
    if (bytes.size() < block::kLeftRectifying) {
        refuse("not a calibration: only " + std::to_string(bytes.size()) + " bytes; was it copied whole?");
    }
    const std::int32_t views = block::views(bytes.data());
    if (!isSane(views, block::cameras(bytes.data()))) {
        refuse("not a calibration: it does not begin with a view count, camera models and image sizes");
    }
    if (static_cast<std::int64_t>(bytes.size()) != block::size(views)) {
        refuse("damaged calibration: " + std::to_string(bytes.size()) + " bytes, but " + std::to_string(views) +
               " views take " + std::to_string(block::size(views)) + "; was it copied whole?");
    }
}

void checkNumbers(std::span<const unsigned char> bytes) {
    for (std::size_t offset = block::kLeftRectifying; offset < bytes.size(); offset += sizeof(double)) {
        if (!std::isfinite(block::read<double>(bytes.data(), offset))) {
            refuse("damaged calibration: the number at byte " + std::to_string(offset) +
                   " is not finite: copy it again, or calibrate again");
        }
    }
}

void checkCamera(const char* side, const RigCamera& camera) {
    if (!(camera.intrinsics.alpha > 0.0) || !(camera.intrinsics.beta > 0.0)) {
        refuse(std::string("damaged calibration: the ") + side + " camera's " +
               (camera.isParallel() ? "magnification" : "focal length") + "s are not positive");
    }
}

void readCamera(const Zelm2ViewCalib* calib, char side, std::int32_t views, RigCamera& camera) {
    zelm2ViewGetCamIntParam(calib, side, &camera.intrinsics);
    camera.poses.resize(static_cast<std::size_t>(views));
    for (std::int32_t view = 0; view < views; ++view) {
        zelm2ViewGetCamExtParam(calib, side, view, &camera.poses[static_cast<std::size_t>(view)]);
    }
}

void readDots(const Zelm2ViewCalib* calib, char side, RigCamera& camera) {
    camera.dots.resize(camera.poses.size());
    for (std::size_t view = 0; view < camera.dots.size(); ++view) {
        std::int32_t count = 0;
        zelm2ViewGetPtnNum(calib, side, static_cast<std::int32_t>(view), &count);
        camera.dots[view].resize(static_cast<std::size_t>(count));
        zelm2ViewGetPattern(calib, side, static_cast<std::int32_t>(view), camera.dots[view].data());
    }
}

}  // namespace

Matrix3 RigCamera::matrix() const {
    Matrix3 A{};
    std::copy_n(intrinsics.A, 9, A.begin());
    return A;
}

void Rig::requireTriangulation() const {
    if (left.isParallel() && right.isParallel()) {
        refuse("both cameras are parallel and calibrated from view 0 alone: points cannot be triangulated");
    }
}

Motion motionBetween(const RigCamera& from, const RigCamera& to) {
    const ZelmCameraExtrinsics& a = from.pose();
    const ZelmCameraExtrinsics& b = to.pose();
    Motion motion;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            for (std::size_t k = 0; k < 3; ++k) {
                motion.R[3 * i + j] += b.R[3 * i + k] * a.R[3 * j + k];
            }
        }
    }
    const Vector3 moved = times(motion.R, {a.t[0], a.t[1], a.t[2]});
    motion.t = {b.t[0] - moved[0], b.t[1] - moved[1], b.t[2] - moved[2]};
    return motion;
}

Rig rigOfBlock(std::span<const unsigned char> bytes) {
    checkHeader(bytes);
    checkNumbers(bytes);
    Zelm2ViewCalib* calib = nullptr;
    if (zelm2ViewLoadCalibData(static_cast<std::int32_t>(bytes.size()), bytes.data(), &calib) < 0) {
        throw std::bad_alloc();
    }
    Rig rig;
    rig.calib.reset(calib);
    const std::int32_t views = block::views(bytes.data());
    const Zelm2ViewCameraDesc cameras = block::cameras(bytes.data());
    rig.left.model = cameras.leftModel;
    rig.left.width = cameras.leftWidth;
    rig.left.height = cameras.leftHeight;
    rig.right.model = cameras.rightModel;
    rig.right.width = cameras.rightWidth;
    rig.right.height = cameras.rightHeight;
    readCamera(calib, 'L', views, rig.left);
    readCamera(calib, 'R', views, rig.right);
    std::array<double, 18> both{};
    zelm2ViewGetCamFndMat(calib, both.data());
    std::copy_n(both.begin(), rig.fundamental.size(), rig.fundamental.begin());
    checkCamera("left", rig.left);
    checkCamera("right", rig.right);
    return rig;
}

Rig rigOfCalib(const Zelm2ViewCalib* calib) {
    const std::int32_t size = zelm2ViewGetCalibDataSize(calib);
    require(size > 0, "the object holds no calibration");
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
    require(zelm2ViewSaveCalibData(calib, bytes.data()) >= 0, "the object holds no calibration");
    Rig rig = rigOfBlock(bytes);
    readDots(calib, 'L', rig.left);
    readDots(calib, 'R', rig.right);
    return rig;
}

}  // namespace zelm::measure
