#include "arraysPair.h"

#include <algorithm>

#include "foreignCameras.h"

namespace zelm::measure {
namespace {

struct CameraNames {
    NamedArrays::Names matrix, lens, width, height, size, rotation, translation;
};

void takeSize(ForeignCamera& camera, const NamedArrays& arrays, const CameraNames& names) {
    camera.width = arrays.count(names.width);
    camera.height = arrays.count(names.height);
    const NamedArray* const size = arrays.find(names.size);
    if (size != nullptr && size->values.size() == 2) {
        camera.width = static_cast<int>(std::clamp(size->values[0], 0.0, 1e6));
        camera.height = static_cast<int>(std::clamp(size->values[1], 0.0, 1e6));
    }
}

ForeignCamera cameraOf(const NamedArrays& arrays, const CameraNames& names, const std::string& side) {
    ForeignCamera camera;
    takeCameraMatrix(camera, arrays.matrix3(names.matrix), "the " + side + " camera matrix");
    camera.lens = radialTangentialLens(arrays.require(names.lens).values, "the " + side + " camera");
    takeSize(camera, arrays, names);
    return camera;
}

}  // namespace

ForeignPair pairOfArrays(const NamedArrays& arrays) {
    const CameraNames left{
        {"left.camera_matrix", "K_left", "M1", "K1", "cameraMatrix1", "camera_matrix_left"},
        {"left.distortion_coefficients", "D_left", "D1", "distCoeffs1", "distortion_coefficients_left"},
        {"left.image_width", "image_width"},
        {"left.image_height", "image_height"},
        {"size_left", "image_size", "imageSize"},
        {"left.plate_rotation", "R_left"},
        {"left.plate_translation", "t_left"}};
    const CameraNames right{
        {"right.camera_matrix", "K_right", "M2", "K2", "cameraMatrix2", "camera_matrix_right"},
        {"right.distortion_coefficients", "D_right", "D2", "distCoeffs2", "distortion_coefficients_right"},
        {"right.image_width", "image_width"},
        {"right.image_height", "image_height"},
        {"size_right", "image_size", "imageSize"},
        {"right.plate_rotation", "R_right"},
        {"right.plate_translation", "t_right"}};
    ForeignPair pair;
    pair.left = cameraOf(arrays, left, "left");
    pair.right = cameraOf(arrays, right, "right");
    const Matrix3 R = arrays.matrix3({"R"});
    const Vector3 t = arrays.vector3({"T"});
    pair.leftPose = noMotion();
    pair.rightPose = poseOfFile(R, t, "R");
    if (arrays.find(left.rotation) != nullptr && arrays.find(right.rotation) != nullptr) {
        takePlatePoses(pair,
                       poseOfFile(arrays.matrix3(left.rotation), arrays.vector3(left.translation), "the left pose"),
                       poseOfFile(arrays.matrix3(right.rotation), arrays.vector3(right.translation), "the right pose"));
    }
    return pair;
}

}  // namespace zelm::measure
