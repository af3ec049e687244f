// A pair of cameras as files of other programs describe it.
#ifndef ZELM_MEASURE_FOREIGN_PAIR_H
#define ZELM_MEASURE_FOREIGN_PAIR_H

#include <array>
#include <cstddef>

#include "projection.h"
#include "rig.h"

namespace zelm::measure {

// Lenses by their published formulas, from normalised undistorted coordinates to distorted ones.
enum class LensKind {
    radialTangential,  // k1 k2 p1 p2 k3 k4 k5 k6 s1 s2 s3 s4, as OpenCV orders them
    equidistant,       // k1 k2 k3 k4 of the angle: Kannala and Brandt 2006
};
constexpr std::size_t kLensCoefficients = 12;

struct ForeignLens {
    LensKind kind = LensKind::radialTangential;
    std::array<double, kLensCoefficients> c{};

    // Whether it is the library's own.
    bool isOwn() const;
    std::array<double, 2> distorted(double x, double y) const;
    // The direction (x, y, 1) that the lens images at a distorted point; false where there is none.
    bool undistorted(double xd, double yd, std::array<double, 2>& found) const;
};

struct ForeignCamera {
    int width = 0;  // 0: not told
    int height = 0;
    double fx = 0.0;
    double skew = 0.0;
    double fy = 0.0;
    double cx = 0.0;
    double cy = 0.0;
    ForeignLens lens;
};

struct ForeignPair {
    ForeignCamera left;
    ForeignCamera right;
    ZelmCameraExtrinsics leftPose{};   // X_left = R X + t
    ZelmCameraExtrinsics rightPose{};  // X_right = R X + t
    bool isCameraFrame = true;         // X is the left camera's frame
};

// The pose of a camera whose frame is that of the points.
ZelmCameraExtrinsics noMotion();

// A pose from a file; refuses what is no rotation, naming `name`.
ZelmCameraExtrinsics poseOfFile(const Matrix3& R, const Vector3& t, const char* name);

// Gives a pair, whose left camera has no motion, the poses of both cameras against the plate of view 0, as a file has
// them besides. They must agree with how the cameras stand to each other, and are kept bit by bit.
void takePlatePoses(ForeignPair& pair, const ZelmCameraExtrinsics& left, const ZelmCameraExtrinsics& right);
bool isNoMotion(const ZelmCameraExtrinsics& pose);

}  // namespace zelm::measure

#endif
