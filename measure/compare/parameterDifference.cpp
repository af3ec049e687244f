#include "parameterDifference.h"

#include <Eigen/Dense>
#include <vector>

#include "significance.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kCompared = kFrameRotation;  // parameters of cameras and pair
constexpr double kMinEigenvalue = 1e-10;           // of the scaled covariance: what is below tells nothing

std::array<double, kCompared> differences(const Rig& first, const Rig& second) {
    std::array<double, kCompared> d{};
    for (const auto& [at, side] : {std::pair(kLeftCamera, 'L'), std::pair(kRightCamera, 'R')}) {
        const CameraParameters a = parametersOf(first.camera(side).intrinsics);
        const CameraParameters b = parametersOf(second.camera(side).intrinsics);
        for (std::size_t i = 0; i < kCameraParameters; ++i) {
            d[at + i] = b[i] - a[i];
        }
    }
    const Motion a = motionBetween(first.left, first.right);
    const Motion b = motionBetween(second.left, second.right);
    const Matrix3 back{a.R[0], a.R[3], a.R[6], a.R[1], a.R[4], a.R[7], a.R[2], a.R[5], a.R[8]};
    Matrix3 turn = product(b.R, back);
    zelmCalibRodrigues(1, &d[kRelativeRotation], turn.data());
    for (std::size_t i = 0; i < 3; ++i) {
        d[kRelativeTranslation + i] = b.t[i] - a.t[i];
    }
    return d;
}

double covarianceAt(const Rig& rig, std::size_t row, std::size_t column) {
    return rig.covariance ? rig.covariance->matrix[row * kRigParameters + column] : 0.0;
}

}  // namespace

ParameterDifference parameterDifference(const Rig& first, const Rig& second) {
    if (!first.covariance && !second.covariance) {
        return {};
    }
    // Parameters that both held have no variance, and their difference no scale to be judged by.
    std::vector<std::size_t> estimated;
    estimated.reserve(kCompared);
    for (std::size_t i = 0; i < kCompared; ++i) {
        if (covarianceAt(first, i, i) + covarianceAt(second, i, i) > 0.0) {
            estimated.push_back(i);
        }
    }
    const auto count = static_cast<Eigen::Index>(estimated.size());
    const std::array<double, kCompared> d = differences(first, second);
    Eigen::MatrixXd C(count, count);
    Eigen::VectorXd scaled(count);
    const auto variance = [&](std::size_t i, std::size_t j) {
        return covarianceAt(first, i, j) + covarianceAt(second, i, j);
    };
    for (Eigen::Index i = 0; i < count; ++i) {
        const std::size_t row = estimated[static_cast<std::size_t>(i)];
        scaled(i) = d[row] / std::sqrt(variance(row, row));
        for (Eigen::Index j = 0; j < count; ++j) {
            const std::size_t column = estimated[static_cast<std::size_t>(j)];
            C(i, j) = variance(row, column) / std::sqrt(variance(row, row) * variance(column, column));
        }
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> eigen(C);
    ParameterDifference result;
    for (Eigen::Index i = 0; i < count; ++i) {
        if (eigen.eigenvalues()(i) > kMinEigenvalue) {
            const double along = eigen.eigenvectors().col(i).dot(scaled);
            result.chiSquare += along * along / eigen.eigenvalues()(i);
            result.freedom += 1;
        }
    }
    result.probability = result.freedom > 0 ? chiSquareTail(result.chiSquare, result.freedom) : 1.0;
    return result;
}

}  // namespace zelm::measure
