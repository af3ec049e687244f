#include "rigBlock.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "calibBlock.h"
#include "pairCompletion.h"

namespace zelm::measure {
namespace {

constexpr auto kMaxViews = static_cast<std::size_t>((std::numeric_limits<std::int32_t>::max() - block::kFixedBytes) /
                                                    block::kBytesPerView);  // the size is an int32

void writeCamera(unsigned char* data, std::int32_t views, Camera side, const RigCamera& camera) {
    block::write(data, block::intrinsics(side), camera.intrinsics);
    for (std::size_t view = 0; view < camera.poses.size(); ++view) {
        block::write(data, block::pose(views, side, static_cast<std::int32_t>(view)), camera.poses[view]);
    }
}

void requirePoses(const RigCamera& camera, std::size_t views) {
    require(camera.poses.size() == views || (camera.isParallel() && !camera.poses.empty()),
            "a camera has no pose in one of the views");
}

void complete(unsigned char* data) {
    const std::int32_t status = completePair(data);
    requireMemory(status);
    if (status == ZELM_ERR_PARAM) {
        refuse("a parallel right camera needs a parallel left one: swap the cameras");
    }
    if (status == ZELM_ERR_STEREO_GEOMETRY) {
        refuse("the cameras make no pair: are both in the same place?");
    }
    if (status < 0) {
        refuse("the cameras make no pair: status " + std::to_string(status));
    }
}

}  // namespace

ZelmCameraIntrinsics intrinsicsRecord(int model, const CameraParameters& p) {
    ZelmCameraIntrinsics record{};
    record.A[0] = p[kFx];
    record.A[1] = p[kSkew];
    record.A[2] = p[kCx];
    record.A[4] = p[kFy];
    record.A[5] = p[kCy];
    record.A[8] = 1.0;
    record.theta = model == ZELM_CAMERA_TILTED ? std::atan2(p[kSkew], p[kFy]) : 0.0;
    const double cosTheta = std::cos(record.theta);
    record.alpha = p[kFx];
    record.beta = p[kFy] * cosTheta;
    record.gamma = p[kSkew] * cosTheta;
    record.cx = p[kCx];
    record.cy = p[kCy];
    record.k1 = p[kK1];
    record.k2 = p[kK2];
    return record;
}

ZelmCameraExtrinsics poseRecord(const Matrix3& R, const Vector3& t) {
    ZelmCameraExtrinsics record{};
    std::copy(R.begin(), R.end(), record.R);
    std::copy(t.begin(), t.end(), record.t);
    zelmCalibRodrigues(1, record.r, record.R);
    return record;
}

ZelmCameraExtrinsics poseRecordOfVector(const Vector3& rotationVector, const Vector3& t) {
    ZelmCameraExtrinsics record{};
    std::copy(rotationVector.begin(), rotationVector.end(), record.r);
    std::copy(t.begin(), t.end(), record.t);
    zelmCalibRodrigues(0, record.r, record.R);
    return record;
}

std::vector<unsigned char> blockOf(const RigCamera& left, const RigCamera& right) {
    const std::size_t views = std::max(left.poses.size(), right.poses.size());
    require(views > 0 && views <= kMaxViews, "no views, or too many for a calibration");
    requirePoses(left, views);
    requirePoses(right, views);
    const auto count = static_cast<std::int32_t>(views);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(block::size(count)));
    block::write(bytes.data(), block::kViews, count);
    block::write(bytes.data(), block::kCameras,
                 Zelm2ViewCameraDesc{left.model, left.width, left.height, right.model, right.width, right.height});
    writeCamera(bytes.data(), count, Camera::left, left);
    writeCamera(bytes.data(), count, Camera::right, right);
    complete(bytes.data());
    return bytes;
}

Rig rigOfCameras(const RigCamera& left, const RigCamera& right) {
    return rigOfBlock(blockOf(left, right));
}

}  // namespace zelm::measure
