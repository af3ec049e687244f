// The weighted residual of a dot, as the solver asks for it.
#ifndef ZELM_MEASURE_DOT_COST_H
#define ZELM_MEASURE_DOT_COST_H

#include <ceres/cost_function.h>
#include <ceres/manifold.h>

#include <array>
#include <cstddef>
#include <vector>

#include "adjustProblem.h"
#include "predictedDot.h"

namespace zelm::measure {

// W with W' W the inverse of a covariance (xx, xy, yy), upper triangular: (0, 0), (0, 1), (1, 1).
std::array<double, 3> weightOf(const std::array<double, 3>& covariance);

// W (predicted - measured) as a function of, in this order: the camera, the pose of the view, the relative pose where
// the camera is not the base, the factor of the diameter and the bow where these are estimated.
class DotCost final : public ceres::CostFunction {
public:
    DotCost(const AdjustState& state, const AdjustOptions& options, Side side, std::size_t view,
            const DotObservation& dot, const std::array<double, 3>& weight);

    bool Evaluate(double const* const* parameters, double* residuals, double** jacobians) const override;

private:
    const AdjustState* state;
    const DotObservation* dot;
    std::array<double, 3> weight;
    Side side;
    std::size_t view;
    int relativeBlock = -1;
    int factorBlock = -1;
    int bowBlock = -1;
};

// Parameters of which only some combinations are free: x + B d, the columns of B orthonormal.
class FreeDirections final : public ceres::Manifold {
public:
    FreeDirections(int size, std::vector<std::vector<double>> columns);

    int AmbientSize() const override { return size; }
    int TangentSize() const override { return static_cast<int>(directions.size()); }
    bool Plus(const double* x, const double* delta, double* result) const override;
    bool PlusJacobian(const double* x, double* jacobian) const override;
    bool Minus(const double* y, const double* x, double* difference) const override;
    bool MinusJacobian(const double* x, double* jacobian) const override;

private:
    int size;
    std::vector<std::vector<double>> directions;
};

// The free combinations of a camera's parameters and of the relative pose.
std::vector<std::vector<double>> freeOfCamera(const AdjustState& state, const AdjustOptions& options, Side side);
std::vector<std::vector<double>> freeOfRelative(const AdjustState& state);

}  // namespace zelm::measure

#endif
