#include "sharedErrors.h"

#include <Eigen/Core>
#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

using Square = Eigen::Matrix<double, kEpipolarParameters, kEpipolarParameters>;
using Column = Eigen::Matrix<double, kEpipolarParameters, 1>;

// L with L L' = C. Scaled to a diagonal of ones first, as radians stand beside pixels; parameters that are held have
// rows of zeros.
Square rootOf(const CalibrationCovariance& covariance) {
    Square correlation = Square::Identity();
    Column deviations;
    const auto at = [&](Eigen::Index i, Eigen::Index j) {
        return covariance.matrix[static_cast<std::size_t>(i) * kRigParameters + static_cast<std::size_t>(j)];
    };
    for (Eigen::Index i = 0; i < deviations.size(); ++i) {
        deviations[i] = std::sqrt(std::max(at(i, i), 0.0));
    }
    for (Eigen::Index i = 0; i < deviations.size(); ++i) {
        for (Eigen::Index j = 0; j < i; ++j) {
            const double both = deviations[i] * deviations[j];
            correlation(i, j) = correlation(j, i) = both > 0.0 ? at(i, j) / both : 0.0;
        }
    }
    const Eigen::SelfAdjointEigenSolver<Square> parts(correlation);
    return deviations.asDiagonal() * parts.eigenvectors() * parts.eigenvalues().cwiseMax(0.0).cwiseSqrt().asDiagonal();
}

}  // namespace

// With H = G L and the parts V diag(l) V' of H'H, (s^2 I + H H')^-1 s^2 = I - H V diag(1 / (l + s^2)) V' H'.
SharedErrors sharedErrors(const EpipolarModel& model, const std::vector<RayPair>& pairs,
                          const CalibrationCovariance& covariance, double noise) {
    const Square root = rootOf(covariance);
    SharedErrors rows(pairs.size());
    Square products = Square::Zero();
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        rows[i] = model.byCalibration(pairs[i]);
        Eigen::Map<Column> row(rows[i].data());
        row = (root.transpose() * row).eval();
        products.noalias() += row * row.transpose();
    }
    const Eigen::SelfAdjointEigenSolver<Square> parts(products);
    const Column weights = (parts.eigenvalues().cwiseMax(0.0).array() + noise * noise).rsqrt();
    const Square turn = weights.asDiagonal() * parts.eigenvectors().transpose();
    for (ByCalibration& values : rows) {
        Eigen::Map<Column> row(values.data());
        row = (turn * row).eval();
    }
    return rows;
}

}  // namespace zelm::measure
