// MATLAB: a struct with the names and conventions of stereoParameters. The first pixel's centre is (1, 1), and vectors
// are rows, so that matrices are transposed.
#include <algorithm>

#include "foreignCameras.h"
#include "matBytes.h"
#include "pairFigures.h"
#include "readers.h"

namespace zelm::measure {
namespace {

constexpr double kFirstPixel = 1.0;  // MATLAB's coordinate of the first pixel's centre, ours is 0

Matrix3 transposed(const Matrix3& m) {
    return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
}

// K with (x + 1, y + 1) for pixels.
Matrix3 oneBased(Matrix3 K) {
    K[2] += kFirstPixel;
    K[5] += kFirstPixel;
    return K;
}

// T with x' = x + 1: F' = T^-T F T^-1.
Matrix3 oneBasedFundamental(const Matrix3& F) {
    const Matrix3 back{1.0, 0.0, -kFirstPixel, 0.0, 1.0, -kFirstPixel, 0.0, 0.0, 1.0};
    return product(transposed(back), product(F, back));
}

MatElement single(double value) {
    return MatElement::numbers(1, std::span(&value, 1));
}

MatElement cameraElement(const CameraFigures& c) {
    const CameraParameters& p = c.p;
    const Matrix3 K = oneBased(c.matrix());
    return MatElement::structure({
        {"IntrinsicMatrix", MatElement::numbers(3, transposed(K))},
        {"K", MatElement::numbers(3, K)},
        {"FocalLength", MatElement::numbers(1, std::array{p[kFx], p[kFy]})},
        {"PrincipalPoint", MatElement::numbers(1, std::array{K[2], K[5]})},
        {"Skew", single(p[kSkew])},
        {"RadialDistortion", MatElement::numbers(1, std::array{p[kK1], p[kK2]})},
        {"TangentialDistortion", MatElement::numbers(1, std::array{0.0, 0.0})},
        {"ImageSize", MatElement::numbers(1, std::array{static_cast<double>(c.height), static_cast<double>(c.width)})},
        // Exact, where adding 1 rounds: the principal point with pixels counted from 0, and the pose of the plate.
        {"ZeroBasedPrincipalPoint", MatElement::numbers(1, std::array{p[kCx], p[kCy]})},
        {"PlateRotation", MatElement::numbers(3, c.pose.R)},
        {"PlateTranslation", MatElement::numbers(1, c.pose.t)},
    });
}

// The principal point of a camera of the file, pixels counted from 0: of ours where it agrees with MATLAB's.
void takePrincipalPoint(ForeignCamera& camera, const NamedArrays& arrays, const std::string& path) {
    camera.cx -= kFirstPixel;
    camera.cy -= kFirstPixel;
    constexpr double kSame = 1e-9;  // pixels
    const NamedArray* const exact = arrays.find({(path + ".ZeroBasedPrincipalPoint").c_str()});
    if (exact != nullptr && exact->values.size() == 2 && std::abs(exact->values[0] - camera.cx) < kSame &&
        std::abs(exact->values[1] - camera.cy) < kSame) {
        camera.cx = exact->values[0];
        camera.cy = exact->values[1];
    }
}

ForeignCamera cameraOf(const NamedArrays& arrays, const std::string& path) {
    const auto name = [&path](const char* field) { return path + "." + field; };
    const std::string matrix = name("IntrinsicMatrix");
    const std::string newMatrix = name("K");
    ForeignCamera camera;
    const bool isTransposed = arrays.find({matrix.c_str()}) != nullptr;
    const Matrix3 given = arrays.matrix3({matrix.c_str(), newMatrix.c_str()});
    takeCameraMatrix(camera, isTransposed ? transposed(given) : given, isTransposed ? matrix : newMatrix);
    takePrincipalPoint(camera, arrays, path);
    const std::vector<double>& radial = arrays.require({name("RadialDistortion").c_str()}).values;
    const NamedArray* const tangential = arrays.find({name("TangentialDistortion").c_str()});
    if (radial.size() < 2 || radial.size() > 3 || (tangential != nullptr && tangential->values.size() != 2)) {
        refuse(path + " has not 2 or 3 radial and 2 tangential distortion coefficients");
    }
    const auto p = tangential != nullptr ? tangential->values : std::vector<double>{0.0, 0.0};
    camera.lens =
        radialTangentialLens(std::array{radial[0], radial[1], p[0], p[1], radial.size() == 3 ? radial[2] : 0.0}, path);
    const NamedArray* const size = arrays.find({name("ImageSize").c_str()});
    if (size != nullptr && size->values.size() == 2) {
        camera.height = static_cast<int>(std::clamp(size->values[0], 0.0, 1e6));
        camera.width = static_cast<int>(std::clamp(size->values[1], 0.0, 1e6));
    }
    return camera;
}

ZelmCameraExtrinsics plateOf(const NamedArrays& arrays, const std::string& path) {
    return poseOfFile(arrays.matrix3({(path + ".PlateRotation").c_str()}),
                      arrays.vector3({(path + ".PlateTranslation").c_str()}), "PlateRotation");
}

std::string structureName(const NamedArrays& arrays) {
    for (const char* const word : {"stereoParams", "stereoParameters", "params", "s"}) {
        std::string name = word;
        if (arrays.find({(name + ".RotationOfCamera2").c_str()}) != nullptr) {
            return name;
        }
    }
    refuse(
        "no struct stereoParams with CameraParameters1, CameraParameters2, RotationOfCamera2 and "
        "TranslationOfCamera2: save stereoParams = toStruct(stereoParams) with save(..., '-v7')");
}

}  // namespace

std::string matlabBytes(const PairFigures& f) {
    const Matrix3& R = f.motion.R;
    std::vector<std::pair<std::string, MatElement>> fields{
        {"CameraParameters1", cameraElement(f.left)},
        {"CameraParameters2", cameraElement(f.right)},
        {"RotationOfCamera2", MatElement::numbers(3, transposed(R))},
        {"TranslationOfCamera2", MatElement::numbers(1, f.motion.t)},
        {"EssentialMatrix", MatElement::numbers(3, f.E)},
        {"FundamentalMatrix", MatElement::numbers(3, oneBasedFundamental(f.F))},
        {"WorldUnits", MatElement::text("plate units")},
    };
    return matFile("stereoParams", MatElement::structure(fields));
}

// [X_right] = [X_left] RotationOfCamera2 + TranslationOfCamera2, of row vectors.
ForeignPair matlabPair(std::string_view file) {
    const NamedArrays arrays = arraysOfMatFile(file);
    const std::string name = structureName(arrays);
    const std::string left = name + ".CameraParameters1";
    const std::string right = name + ".CameraParameters2";
    ForeignPair pair;
    pair.left = cameraOf(arrays, left);
    pair.right = cameraOf(arrays, right);
    pair.leftPose = noMotion();
    pair.rightPose = poseOfFile(transposed(arrays.matrix3({(name + ".RotationOfCamera2").c_str()})),
                                arrays.vector3({(name + ".TranslationOfCamera2").c_str()}), "RotationOfCamera2");
    if (arrays.find({(left + ".PlateRotation").c_str()}) != nullptr) {
        takePlatePoses(pair, plateOf(arrays, left), plateOf(arrays, right));
    }
    return pair;
}

}  // namespace zelm::measure
