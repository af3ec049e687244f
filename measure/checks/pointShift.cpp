#include "pointShift.h"

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>
#include <Eigen/QR>
#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kCoverage = 1.96;       // standard deviations, 95 % of a normal distribution
constexpr double kLeastSight = 1e-10;    // of the squares of a point's derivatives, least over greatest
constexpr std::size_t kLeastPoints = 3;  // that tell a motion of all
constexpr Index kWide = static_cast<Index>(kWideParameters);

// The motions of all points together, orthonormal.
Eigen::MatrixXd rigidMotions(const std::vector<Eigen::Vector3d>& places) {
    Eigen::Vector3d middle = Eigen::Vector3d::Zero();
    for (const Eigen::Vector3d& X : places) {
        middle += X / static_cast<double>(places.size());
    }
    double size = 0.0;
    for (const Eigen::Vector3d& X : places) {
        size = std::max(size, (X - middle).norm());
    }
    Eigen::MatrixXd motions(static_cast<Index>(3 * places.size()), 6);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Eigen::Vector3d X = (places[i] - middle) / (size > 0.0 ? size : 1.0);
        auto rows = motions.middleRows<3>(static_cast<Index>(3 * i));
        rows.leftCols<3>().setIdentity();
        rows.rightCols<3>() << 0.0, X[2], -X[1], -X[2], 0.0, X[0], X[1], -X[0], 0.0;
    }
    const Eigen::ColPivHouseholderQR<Eigen::MatrixXd> qr(motions);
    return qr.householderQ() * Eigen::MatrixXd::Identity(motions.rows(), qr.rank());
}

}  // namespace

ShiftOfPoints::ShiftOfPoints(const CheckEquations& equations, const Eigen::MatrixXd& covariance) {
    std::vector<Eigen::Vector3d> places;
    std::vector<Eigen::Matrix3d> noises;
    Eigen::MatrixXd rows(static_cast<Index>(3 * equations.points.size()), kWide);
    for (const CheckedPoint& point : equations.points) {
        const Eigen::Matrix3d N = point.byPlace.transpose() * point.byPlace;
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> eigen(N);
        if (!point.byOne && !(eigen.eigenvalues()[0] > kLeastSight * eigen.eigenvalues()[2])) {
            continue;
        }
        // One camera moves a point across its line of sight alone: the shortest of all moves.
        const Eigen::Matrix<double, 3, 4> seen =
            point.byOne
                ? Eigen::Matrix<double, 3, 4>(
                      Eigen::Matrix<double, 4, 3>(point.byPlace).completeOrthogonalDecomposition().pseudoInverse())
                : Eigen::Matrix<double, 3, 4>(N.ldlt().solve(point.byPlace.transpose()));
        const Eigen::Vector4d variances(point.variances.data());
        // What the plate is like does not move other things that are measured.
        Eigen::Matrix<double, 4, Eigen::Dynamic> J = point.byShared;
        J.middleCols(static_cast<Index>(kSharedFactors), static_cast<Index>(kSharedParameters - kSharedFactors))
            .setZero();
        J.col(static_cast<Index>(kWideStretch)).setZero();
        rows.middleRows<3>(static_cast<Index>(3 * places.size())) = -seen * J;
        places.push_back(point.place);
        noises.push_back(seen * variances.asDiagonal() * seen.transpose());
    }
    if (places.size() < kLeastPoints) {
        return;
    }
    rows.conservativeResize(static_cast<Index>(3 * places.size()), Eigen::NoChange);
    const Eigen::MatrixXd motions = rigidMotions(places);
    byShared = rows - motions * (motions.transpose() * rows);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Eigen::MatrixXd G = byShared.middleRows<3>(static_cast<Index>(3 * i));
        const Eigen::Matrix3d C = G * covariance * G.transpose() + noises[i];
        const double greatest = Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d>(C).eigenvalues()[2];
        limits.push_back(kCoverage * std::sqrt(std::max(greatest, 0.0)));
    }
}

PointShift ShiftOfPoints::of(const Eigen::VectorXd& change) const {
    PointShift worst;
    if (limits.empty()) {
        return worst;
    }
    const Eigen::VectorXd moves = byShared * change;
    double ratio = -1.0;
    for (std::size_t i = 0; i < limits.size(); ++i) {
        const auto at = static_cast<Index>(3 * i);
        const double shift = moves.segment<3>(at).norm();
        if (limits[i] > 0.0 && shift / limits[i] > ratio) {
            ratio = shift / limits[i];
            worst = {shift, limits[i], byShared.middleRows<3>(at)};
        }
    }
    return worst;
}

}  // namespace zelm::measure
