#include "foreignPair.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "rigBlock.h"

namespace zelm::measure {
namespace {

constexpr double kMaxNotSquare = 1e-4;      // of a rotation matrix's products of rows: text of five digits and more
constexpr double kRounding = 1e-13;         // likewise: what is left when all digits were written
constexpr double kMaxContradiction = 1e-6;  // between two descriptions of a motion: of a rotation, of the baseline
constexpr int kMaxSteps = 60;               // of Newton's method; it takes 5 to 10
constexpr double kSettled = 1e-14;          // of normalised coordinates
constexpr double kDifference = 1e-6;        // of normalised coordinates, for derivatives

double notSquare(const Matrix3& R) {
    double worst = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            const double product = R[3 * i] * R[3 * j] + R[3 * i + 1] * R[3 * j + 1] + R[3 * i + 2] * R[3 * j + 2];
            worst = std::max(worst, std::abs(product - (i == j ? 1.0 : 0.0)));
        }
    }
    return worst;
}

double determinant(const Matrix3& R) {
    const Vector3 c = cross({R[0], R[1], R[2]}, {R[3], R[4], R[5]});
    return dot(c, {R[6], R[7], R[8]});
}

}  // namespace

bool ForeignLens::isOwn() const {
    return kind == LensKind::radialTangential && std::all_of(c.begin() + 2, c.end(), [](double v) { return v == 0.0; });
}

std::array<double, 2> ForeignLens::distorted(double x, double y) const {
    const double r2 = x * x + y * y;
    if (kind == LensKind::equidistant) {
        const double r = std::sqrt(r2);
        const double angle = std::atan(r);
        const double a2 = angle * angle;
        const double bent = angle * (1.0 + a2 * (c[0] + a2 * (c[1] + a2 * (c[2] + a2 * c[3]))));
        const double scale = r > 0.0 ? bent / r : 1.0;
        return {scale * x, scale * y};
    }
    const double radial = (1.0 + r2 * (c[0] + r2 * (c[1] + r2 * c[4]))) / (1.0 + r2 * (c[5] + r2 * (c[6] + r2 * c[7])));
    return {x * radial + 2.0 * c[2] * x * y + c[3] * (r2 + 2.0 * x * x) + r2 * (c[8] + r2 * c[9]),
            y * radial + c[2] * (r2 + 2.0 * y * y) + 2.0 * c[3] * x * y + r2 * (c[10] + r2 * c[11])};
}

bool ForeignLens::undistorted(double xd, double yd, std::array<double, 2>& found) const {
    double x = xd;
    double y = yd;
    for (int step = 0; step < kMaxSteps; ++step) {
        const auto at = distorted(x, y);
        const auto right = distorted(x + kDifference, y);
        const auto left = distorted(x - kDifference, y);
        const auto down = distorted(x, y + kDifference);
        const auto up = distorted(x, y - kDifference);
        const double a = (right[0] - left[0]) / (2.0 * kDifference);
        const double b = (down[0] - up[0]) / (2.0 * kDifference);
        const double d = (right[1] - left[1]) / (2.0 * kDifference);
        const double e = (down[1] - up[1]) / (2.0 * kDifference);
        const double determinant = a * e - b * d;
        if (!(determinant > 0.0)) {
            return false;  // beyond the fold
        }
        const double dx = (e * (xd - at[0]) - b * (yd - at[1])) / determinant;
        const double dy = (a * (yd - at[1]) - d * (xd - at[0])) / determinant;
        x += dx;
        y += dy;
        if (std::abs(dx) <= kSettled * (1.0 + std::abs(x)) && std::abs(dy) <= kSettled * (1.0 + std::abs(y))) {
            found = {x, y};
            return true;
        }
    }
    // The last digits may never settle.
    const auto at = distorted(x, y);
    found = {x, y};
    return std::hypot(at[0] - xd, at[1] - yd) < 1e-12;
}

ZelmCameraExtrinsics noMotion() {
    return poseRecord({1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}, {0.0, 0.0, 0.0});
}

ZelmCameraExtrinsics poseOfFile(const Matrix3& R, const Vector3& t, const char* name) {
    const double error = notSquare(R);
    if (!(error <= kMaxNotSquare) || determinant(R) < 0.0) {
        refuse(std::string(name) +
               " is no rotation: its rows are not square to each other, of length 1 and right-handed");
    }
    const ZelmCameraExtrinsics pose = poseRecord(R, t);
    return error <= kRounding ? pose : poseRecordOfVector({pose.r[0], pose.r[1], pose.r[2]}, t);
}

bool isNoMotion(const ZelmCameraExtrinsics& pose) {
    const auto isZero = [](double v) { return v == 0.0; };
    return std::all_of(pose.r, pose.r + 3, isZero) && std::all_of(pose.t, pose.t + 3, isZero);
}

void takePlatePoses(ForeignPair& pair, const ZelmCameraExtrinsics& left, const ZelmCameraExtrinsics& right) {
    RigCamera first;
    RigCamera second;
    first.poses = {left};
    second.poses = {right};
    const Motion motion = motionBetween(first, second);
    const ZelmCameraExtrinsics& told = pair.rightPose;
    double turned = 0.0;
    for (std::size_t i = 0; i < 9; ++i) {
        turned = std::max(turned, std::abs(motion.R[i] - told.R[i]));
    }
    const double moved = std::hypot(motion.t[0] - told.t[0], motion.t[1] - told.t[1], motion.t[2] - told.t[2]);
    if (turned > kMaxContradiction || moved > kMaxContradiction * std::hypot(told.t[0], told.t[1], told.t[2])) {
        refuse("the cameras' poses against the plate contradict how they stand to each other: take the poses out");
    }
    pair.leftPose = left;
    pair.rightPose = right;
    pair.isCameraFrame = isNoMotion(left);
}

}  // namespace zelm::measure
