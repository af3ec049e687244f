#include "importedRig.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "rigBlock.h"

namespace zelm::measure {
namespace {

constexpr int kMaxSide = 1 << 20;  // pixels

void requireSize(const ForeignCamera& camera, const char* side) {
    if (camera.width <= 0 || camera.height <= 0 || camera.width > kMaxSide || camera.height > kMaxSide) {
        refuse(std::string("the size of the ") + side + " images is not in the file: tell it");
    }
}

// Three digits, for people.
std::string shortText(double value) {
    std::array<char, 32> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::general, 3).ptr;
    return {digits.data(), end};
}

void requireLens(const OwnCamera& own, double tolerance, const char* side) {
    if (own.worst > tolerance) {
        refuse(std::string("the ") + side + " camera's lens has terms that k1 and k2 replace to " +
               shortText(own.worst) + " pixels only, RMS " + shortText(own.rms) + ": more than the tolerance of " +
               shortText(tolerance));
    }
}

// The camera with the pose of the frame that was turned for its lens; bit by bit the file's where nothing turned.
RigCamera cameraOf(const ForeignCamera& foreign, const OwnCamera& own, const ZelmCameraExtrinsics& pose) {
    RigCamera camera;
    camera.width = foreign.width;
    camera.height = foreign.height;
    camera.intrinsics = intrinsicsRecord(ZELM_CAMERA_PERSPECTIVE, own.parameters);
    if (foreign.lens.isOwn()) {
        camera.poses = {pose};
    } else {
        Matrix3 R{};
        std::copy_n(pose.R, 9, R.begin());
        camera.poses = {poseRecord(product(own.turn, R), times(own.turn, {pose.t[0], pose.t[1], pose.t[2]}))};
    }
    return camera;
}

}  // namespace

ImportedRig importedRig(const ForeignPair& pair, double tolerance) {
    requireSize(pair.left, "left");
    requireSize(pair.right, "right");
    ImportedRig imported;
    imported.left = ownCamera(pair.left, "left");
    imported.right = ownCamera(pair.right, "right");
    requireLens(imported.left, tolerance, "left");
    requireLens(imported.right, tolerance, "right");
    imported.rig = rigOfCameras(cameraOf(pair.left, imported.left, pair.leftPose),
                                cameraOf(pair.right, imported.right, pair.rightPose));
    return imported;
}

}  // namespace zelm::measure
