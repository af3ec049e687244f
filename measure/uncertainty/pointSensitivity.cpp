#include "pointSensitivity.h"

#include <algorithm>
#include <cmath>

#include "cholesky.h"

namespace zelm::measure {
namespace {

// A camera's two rows of the least-squares problem. The core's triangulation minimises the distances of undistorted
// pixels: the rows are those of the raw pixel, brought there.
struct CameraRows {
    std::array<std::array<double, 2>, 2> undistorting{};  // undistorted pixel by raw pixel
    std::array<Vector3, 2> byPoint{};                     // undistorted, by the point in the left camera's frame
};

CameraRows rowsOf(const ProjectionCamera& camera, const Projection& p, double scale, const Matrix3* rotation) {
    // Without the lens the pixel would move by scale * K with the first two coordinates, K the 2 x 2 camera matrix;
    // with it by the raw derivatives.
    const auto& a = p.byPoint;
    const double determinant = a[0][0] * a[1][1] - a[0][1] * a[1][0];
    const double f = scale / determinant;
    const double fx = camera.p[kFx];
    const double skew = camera.p[kSkew];
    const double fy = camera.p[kFy];
    CameraRows rows;
    rows.undistorting[0] = {f * (fx * a[1][1] - skew * a[1][0]), f * (skew * a[0][0] - fx * a[0][1])};
    rows.undistorting[1] = {-f * fy * a[1][0], f * fy * a[0][0]};
    for (std::size_t i = 0; i < 2; ++i) {
        Vector3 row{};
        for (std::size_t k = 0; k < 3; ++k) {
            row[k] = rows.undistorting[i][0] * a[0][k] + rows.undistorting[i][1] * a[1][k];
        }
        rows.byPoint[i] = rotation != nullptr ? timesTransposed(*rotation, row) : row;
    }
    return rows;
}

// (J'J)^-1 J' of undistorted rows, by raw pixels; false when J'J is singular to rounding.
bool solveFor(const CameraRows& left, const CameraRows& right, PointSensitivity& s) {
    Matrix<3> N{};
    for (const CameraRows* rows : {&left, &right}) {
        for (const Vector3& row : rows->byPoint) {
            for (std::size_t i = 0; i < 3; ++i) {
                for (std::size_t j = i; j < 3; ++j) {
                    N[i][j] += row[i] * row[j];
                }
            }
        }
    }
    if (!factor(N)) {
        return false;
    }
    std::size_t first = 0;
    for (const CameraRows* rows : {&left, &right}) {
        const Vector3 a = solve(N, rows->byPoint[0]);
        const Vector3 b = solve(N, rows->byPoint[1]);
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 2; ++k) {
                s.byPixels[i][first + k] = a[i] * rows->undistorting[0][k] + b[i] * rows->undistorting[1][k];
            }
        }
        first += 2;
    }
    return true;
}

bool isFinite(const PointSensitivity& s) {
    double sum = 0.0;  // NaN and infinity survive sums of products with 0
    for (std::size_t i = 0; i < 3; ++i) {
        for (const double d : s.byPixels[i]) {
            sum += 0.0 * d;
        }
        for (const double d : s.byParameters[i]) {
            sum += 0.0 * d;
        }
    }
    return sum == 0.0;
}

// A change of the parameters that moves a projection by e moves the point as pixels moved by -e would.
void addParameters(const Projection& left, const Projection& right, const Vector3& turned, PointSensitivity& s) {
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& g = s.byPixels[i];
        auto& row = s.byParameters[i];
        for (std::size_t k = 0; k < kCameraParameters; ++k) {
            row[kLeftCamera + k] = -(g[0] * left.byParameters[0][k] + g[1] * left.byParameters[1][k]);
            row[kRightCamera + k] = -(g[2] * right.byParameters[0][k] + g[3] * right.byParameters[1][k]);
        }
        Vector3 byRight{};  // by the point in the right camera's frame
        for (std::size_t k = 0; k < 3; ++k) {
            byRight[k] = g[2] * right.byPoint[0][k] + g[3] * right.byPoint[1][k];
            row[kRelativeTranslation + k] = -byRight[k];
        }
        // exp(d) turns the point by d x turned; byRight . (d x turned) = d . (turned x byRight).
        const Vector3 byRotation = cross(byRight, turned);
        std::copy(byRotation.begin(), byRotation.end(), &row[kRelativeRotation]);
    }
}

double inverseDepth(const ProjectionCamera& camera, const Vector3& point) {
    return camera.isParallel ? 1.0 : 1.0 / point[2];
}

Vector3 moved(const Motion& motion, const Vector3& X) {
    const Vector3 turned = times(motion.R, X);
    return {turned[0] + motion.t[0], turned[1] + motion.t[1], turned[2] + motion.t[2]};
}

// R C R'.
Symmetric3 turned(const Matrix3& R, const Symmetric3& c) {
    std::array<Vector3, 3> half{};  // R C
    for (std::size_t i = 0; i < 3; ++i) {
        const Vector3 row{R[3 * i], R[3 * i + 1], R[3 * i + 2]};
        half[i] = {row[0] * c[0] + row[1] * c[1] + row[2] * c[2], row[0] * c[1] + row[1] * c[3] + row[2] * c[4],
                   row[0] * c[2] + row[1] * c[4] + row[2] * c[5]};
    }
    const auto at = [&](std::size_t i, std::size_t j) {
        return half[i][0] * R[3 * j] + half[i][1] * R[3 * j + 1] + half[i][2] * R[3 * j + 2];
    };
    return {at(0, 0), at(0, 1), at(0, 2), at(1, 1), at(1, 2), at(2, 2)};
}

}  // namespace

SensitivityModel::SensitivityModel(const Rig& rig)
    : left(projectionOf(rig.left)), right(projectionOf(rig.right)), relative(motionBetween(rig.left, rig.right)) {
    const ZelmCameraExtrinsics& pose = rig.left.pose();
    std::copy_n(pose.R, 9, frame.R.begin());
    std::copy_n(pose.t, 3, frame.t.begin());
}

Vector3 SensitivityModel::inLeft(const Point3d& X) const {
    return moved(frame, {X.x, X.y, X.z});
}

std::optional<PointSensitivity> SensitivityModel::at(const Point3d& X) const {
    PointSensitivity s;
    s.point = inLeft(X);
    const Vector3 turned = times(relative.R, s.point);
    const Vector3 inRight = moved(relative, s.point);
    const Projection onLeft = project(left, s.point);
    const Projection onRight = project(right, inRight);
    const CameraRows leftRows = rowsOf(left, onLeft, inverseDepth(left, s.point), nullptr);
    const CameraRows rightRows = rowsOf(right, onRight, inverseDepth(right, inRight), &relative.R);
    if (!solveFor(leftRows, rightRows, s)) {
        return std::nullopt;
    }
    addParameters(onLeft, onRight, turned, s);
    return isFinite(s) ? std::optional(s) : std::nullopt;
}

SensitivityModel::ByParameters SensitivityModel::inPlate(const PointSensitivity& s) const {
    // X_plate = R' exp(-d) (X_left - t): by d it moves as R' (v x d), v = X_left - t.
    const Vector3 v{s.point[0] - frame.t[0], s.point[1] - frame.t[1], s.point[2] - frame.t[2]};
    ByParameters B{};
    for (std::size_t i = 0; i < 3; ++i) {
        const Vector3 axis{frame.R[i], frame.R[3 + i], frame.R[6 + i]};
        for (std::size_t k = 0; k < kPairParameters; ++k) {
            B[i][k] = axis[0] * s.byParameters[0][k] + axis[1] * s.byParameters[1][k] + axis[2] * s.byParameters[2][k];
        }
        const Vector3 byRotation = cross(axis, v);
        for (std::size_t k = 0; k < 3; ++k) {
            B[i][kFrameRotation + k] = byRotation[k];
            B[i][kFrameTranslation + k] = -axis[k];
        }
    }
    return B;
}

Symmetric3 SensitivityModel::inPlate(const Symmetric3& covariance) const {
    const auto& R = frame.R;
    return turned({R[0], R[3], R[6], R[1], R[4], R[7], R[2], R[5], R[8]}, covariance);
}

Symmetric3 SensitivityModel::inLeft(const Symmetric3& covariance) const {
    return turned(frame.R, covariance);
}

Symmetric3 imageCovariance(const PointSensitivity& s, const Symmetric2& left, const Symmetric2& right) {
    std::array<std::array<double, 4>, 3> half{};  // G Sigma
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& g = s.byPixels[i];
        half[i] = {g[0] * left[0] + g[1] * left[1], g[0] * left[1] + g[1] * left[2], g[2] * right[0] + g[3] * right[1],
                   g[2] * right[1] + g[3] * right[2]};
    }
    const auto at = [&](std::size_t i, std::size_t j) {
        const auto& g = s.byPixels[j];
        return half[i][0] * g[0] + half[i][1] * g[1] + half[i][2] * g[2] + half[i][3] * g[3];
    };
    return {at(0, 0), at(0, 1), at(0, 2), at(1, 1), at(1, 2), at(2, 2)};
}

Symmetric3 calibrationCovariance(const SensitivityModel::ByParameters& B, const CalibrationCovariance& covariance) {
    // C = T + T' with T the lower triangle and half the diagonal: B T B' and its transpose. Row by row of T, so that
    // the innermost loops run over what lies together.
    SensitivityModel::ByParameters half{};  // B T
    for (std::size_t k = 0; k < kRigParameters; ++k) {
        const double* const row = &covariance.matrix[kRigParameters * k];
        const double a = B[0][k];
        const double b = B[1][k];
        const double c = B[2][k];
        for (std::size_t j = 0; j < k; ++j) {
            half[0][j] += a * row[j];
            half[1][j] += b * row[j];
            half[2][j] += c * row[j];
        }
        half[0][k] += 0.5 * a * row[k];
        half[1][k] += 0.5 * b * row[k];
        half[2][k] += 0.5 * c * row[k];
    }
    const auto at = [&](std::size_t i, std::size_t j) {
        double sum = 0.0;
        for (std::size_t k = 0; k < kRigParameters; ++k) {
            sum += half[i][k] * B[j][k] + half[j][k] * B[i][k];
        }
        return sum;
    };
    const auto variance = [&](std::size_t i) { return std::max(at(i, i), 0.0); };
    return {variance(0), at(0, 1), at(0, 2), variance(1), at(1, 2), variance(2)};
}

}  // namespace zelm::measure
