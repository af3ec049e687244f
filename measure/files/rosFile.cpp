// ROS camera_info, YAML: a file a camera. How the cameras stand to each other is told by R and P of both. Some of its
// readers take both principal points for the same.
#include <cmath>

#include "digitText.h"
#include "foreignCameras.h"
#include "pairFigures.h"
#include "readers.h"
#include "yamlText.h"

namespace zelm::measure {
namespace {

std::string matrixText(const char* name, std::size_t rows, std::span<const double> values) {
    const std::size_t columns = values.size() / rows;
    return std::string(name) + ":\n  rows: " + std::to_string(rows) + "\n  cols: " + std::to_string(columns) +
           "\n  data: [" + numberList(values, columns, "         ") + "]\n";
}

struct CameraInfo {
    ForeignCamera camera;
    Matrix3 R{};
    std::vector<double> P;
};

std::vector<double> matrixOf(const YAML::Node& map, const char* name, std::size_t count) {
    std::vector<double> values = yamlNumbers(yamlMember(yamlMember(map, name), "data"), name);
    if (values.size() != count) {
        refuse(std::string(name) + " has " + std::to_string(values.size()) + " numbers, not " + std::to_string(count));
    }
    return values;
}

Matrix3 matrix3Of(const YAML::Node& map, const char* name) {
    const std::vector<double> values = matrixOf(map, name, 9);
    Matrix3 matrix{};
    std::copy(values.begin(), values.end(), matrix.begin());
    return matrix;
}

ForeignLens lensOf(const YAML::Node& map) {
    const std::string model = yamlWord(yamlMember(map, "distortion_model"), "distortion_model");
    const std::vector<double> c =
        yamlNumbers(yamlMember(yamlMember(map, "distortion_coefficients"), "data"), "distortion_coefficients");
    if (model == "plumb_bob" || model == "rational_polynomial") {
        return radialTangentialLens(c, "distortion_coefficients");
    }
    if (model == "equidistant" || model == "fisheye") {
        return equidistantLens(c, "distortion_coefficients");
    }
    refuse("distortion_model " + model.substr(0, 40) + ": plumb_bob, rational_polynomial and equidistant are known");
}

CameraInfo infoOf(std::string_view text) {
    const YAML::Node map = yamlMap(text);
    CameraInfo info;
    info.camera.width = yamlCount(yamlMember(map, "image_width"), "image_width");
    info.camera.height = yamlCount(yamlMember(map, "image_height"), "image_height");
    takeCameraMatrix(info.camera, matrix3Of(map, "camera_matrix"), "camera_matrix");
    info.camera.lens = lensOf(map);
    info.R = matrix3Of(map, "rectification_matrix");
    info.P = matrixOf(map, "projection_matrix", 12);
    if (!(info.P[0] > 0.0) || !(info.P[5] > 0.0)) {
        refuse(
            "projection_matrix has no focal lengths: it is empty for a camera that was not calibrated as one of two");
    }
    return info;
}

// Where the camera's centre lies in the rectified frame: minus the last column of P without its focal lengths.
Vector3 shiftOf(const std::vector<double>& P) {
    return {(P[3] - P[2] * P[11]) / P[0], (P[7] - P[6] * P[11]) / P[5], P[11]};
}

}  // namespace

std::string rosText(const PairFigures& f, char side, double metres) {
    if (!f.rowsOfOnePoint) {
        refuse("a camera looks along the baseline: there are no row-aligned images, by which ROS tells a pair");
    }
    const CameraFigures& c = f.camera(side);
    std::array<double, 12> P = f.rowsOfOnePoint->projection(side);
    P[3] = side == 'L' ? 0.0 : f.rowsOfOnePoint->focal * metresOf(f.rowsOfOnePoint->shift, metres);
    return "image_width: " + std::to_string(c.width) + "\nimage_height: " + std::to_string(c.height) +
           "\ncamera_name: " + (side == 'L' ? "left" : "right") + "\n" +
           matrixText("camera_matrix", 3, c.squareMatrix()) + "distortion_model: plumb_bob\n" +
           matrixText("distortion_coefficients", 1, c.lens()) +
           matrixText("rectification_matrix", 3, f.rowsOfOnePoint->rotation(side)) +
           matrixText("projection_matrix", 3, P);
}

// X_rectified = R1 X_left, and R2 X_right = R1 X_left + shift.
ForeignPair rosPair(std::string_view left, std::string_view right, double metres) {
    const CameraInfo l = infoOf(left);
    const CameraInfo r = infoOf(right);
    const ZelmCameraExtrinsics first = poseOfFile(l.R, {0.0, 0.0, 0.0}, "rectification_matrix of the left camera");
    const ZelmCameraExtrinsics second = poseOfFile(r.R, {0.0, 0.0, 0.0}, "rectification_matrix of the right camera");
    Matrix3 R1{};
    Matrix3 R2{};
    std::copy_n(first.R, 9, R1.begin());
    std::copy_n(second.R, 9, R2.begin());
    const Vector3 of = shiftOf(r.P);
    const Vector3 from = shiftOf(l.P);
    const Vector3 shift{lengthOf(of[0] - from[0], metres), lengthOf(of[1] - from[1], metres),
                        lengthOf(of[2] - from[2], metres)};
    const Matrix3 back{R2[0], R2[3], R2[6], R2[1], R2[4], R2[7], R2[2], R2[5], R2[8]};
    ForeignPair pair;
    pair.left = l.camera;
    pair.right = r.camera;
    pair.leftPose = noMotion();
    pair.rightPose = poseOfFile(product(back, R1), timesTransposed(R2, shift), "the right camera's rotation");
    return pair;
}

}  // namespace zelm::measure
