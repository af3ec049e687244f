#include "dotCost.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace zelm::measure {
namespace {

// The derivatives of both coordinates by one block, weighted, row-major.
template <std::size_t n>
void put(const std::array<double, 3>& W, const Rows2<n>& rows, double* to) {
    // What is not finite would stop the solver, with words on the console.
    const auto finite = [](double value) { return std::isfinite(value) ? value : 0.0; };
    for (std::size_t i = 0; i < n; ++i) {
        to[i] = finite(W[0] * rows[0][i] + W[1] * rows[1][i]);
        to[n + i] = finite(W[2] * rows[1][i]);
    }
}

std::vector<double> unitVector(std::size_t size, std::size_t i) {
    std::vector<double> v(size, 0.0);
    v[i] = 1.0;
    return v;
}

}  // namespace

std::array<double, 3> weightOf(const std::array<double, 3>& covariance) {
    const auto& [xx, xy, yy] = covariance;
    const double w11 = 1.0 / std::sqrt(yy);
    const double left = std::sqrt(xx - xy * xy / yy);
    return {1.0 / left, -xy / yy / left, w11};
}

DotCost::DotCost(const AdjustState& s, const AdjustOptions& options, Side imageSide, std::size_t imageView,
                 const DotObservation& observation, const std::array<double, 3>& W)
    : state(&s), dot(&observation), weight(W), side(imageSide), view(imageView) {
    set_num_residuals(2);
    auto* const sizes = mutable_parameter_block_sizes();
    sizes->assign({static_cast<int>(kCameraParameters), 6});
    const auto add = [sizes](int size) {
        sizes->push_back(size);
        return static_cast<int>(sizes->size()) - 1;
    };
    if (side != s.base) {
        relativeBlock = add(6);
    }
    if (options.estimateFactors) {
        factorBlock = add(1);
    }
    if (options.estimateBow) {
        bowBlock = add(3);
    }
}

bool DotCost::Evaluate(double const* const* parameters, double* residuals, double** jacobians) const {
    ImageParameters image = imageParameters(*state, side, view, dot->kind);
    std::copy_n(parameters[0], kCameraParameters, image.camera.p.begin());
    image.pose = parameters[1];
    if (relativeBlock >= 0) {
        image.relative = parameters[relativeBlock];
    }
    if (factorBlock >= 0) {
        image.factor = *parameters[factorBlock];
    }
    if (bowBlock >= 0) {
        image.bow = parameters[bowBlock];
    }
    if (jacobians == nullptr) {
        const Point2d centre = dotOutline(image.camera, circleOf(image, dot->place, dot->radius)).centre;
        residuals[1] = centre.y - dot->pixel.y;
        residuals[0] = weight[0] * (centre.x - dot->pixel.x) + weight[1] * residuals[1];
        residuals[1] *= weight[2];
        return std::isfinite(residuals[0]) && std::isfinite(residuals[1]);
    }
    const PredictedDot model = predictDot(image, dot->place, dot->radius, RotationDerivative::byVector);
    const double dx = model.centre.x - dot->pixel.x;
    const double dy = model.centre.y - dot->pixel.y;
    residuals[0] = weight[0] * dx + weight[1] * dy;
    residuals[1] = weight[2] * dy;
    const auto give = [&](int block, const auto& rows) {
        if (block >= 0 && jacobians[block] != nullptr) {
            put(weight, rows, jacobians[block]);
        }
    };
    give(0, model.byCamera);
    give(1, model.byPose);
    give(relativeBlock, model.byRelative);
    give(factorBlock, model.byFactor);
    give(bowBlock, model.byBow);
    return std::isfinite(residuals[0]) && std::isfinite(residuals[1]);
}

FreeDirections::FreeDirections(int ambient, std::vector<std::vector<double>> columns)
    : size(ambient), directions(std::move(columns)) {}

bool FreeDirections::Plus(const double* x, const double* delta, double* result) const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
        result[i] = x[i];
        for (std::size_t k = 0; k < directions.size(); ++k) {
            result[i] += directions[k][i] * delta[k];
        }
    }
    return true;
}

bool FreeDirections::PlusJacobian(const double* /*x*/, double* jacobian) const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
        for (const auto& direction : directions) {
            *jacobian++ = direction[i];
        }
    }
    return true;
}

bool FreeDirections::Minus(const double* y, const double* x, double* difference) const {
    for (std::size_t k = 0; k < directions.size(); ++k) {
        difference[k] = 0.0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
            difference[k] += directions[k][i] * (y[i] - x[i]);
        }
    }
    return true;
}

bool FreeDirections::MinusJacobian(const double* /*x*/, double* jacobian) const {
    for (const auto& direction : directions) {
        jacobian = std::copy(direction.begin(), direction.end(), jacobian);
    }
    return true;
}

std::vector<std::vector<double>> freeOfCamera(const AdjustState& state, const AdjustOptions& options, Side side) {
    std::vector<std::vector<double>> free;
    if (options.squarePixels) {
        std::vector<double> both(kCameraParameters, 0.0);
        both[kFx] = both[kFy] = 1.0 / std::numbers::sqrt2;
        free.push_back(both);
    } else {
        free.push_back(unitVector(kCameraParameters, kFx));
        free.push_back(unitVector(kCameraParameters, kFy));
    }
    const bool isParallel = state.cameras[side].isParallel;
    if (!options.holdSkew && !(isParallel && state.isTiltHeld)) {
        free.push_back(unitVector(kCameraParameters, kSkew));
    }
    if (!isParallel) {
        // Of a parallel camera the place of the image's centre is a shift of the camera.
        free.push_back(unitVector(kCameraParameters, kCx));
        free.push_back(unitVector(kCameraParameters, kCy));
    }
    free.push_back(unitVector(kCameraParameters, kK1));
    free.push_back(unitVector(kCameraParameters, kK2));
    return free;
}

std::vector<std::vector<double>> freeOfRelative(const AdjustState& state) {
    std::vector<std::vector<double>> free;
    if (state.isTiltHeld) {
        // The camera turns about its axis alone: the change of the rotation vector that makes such a turn.
        const Matrix3 J = leftJacobian({state.relative[0], state.relative[1], state.relative[2]});
        const Vector3 turn = unit(times(*inverse(J), {0.0, 0.0, 1.0}));
        free.push_back({turn[0], turn[1], turn[2], 0.0, 0.0, 0.0});
    } else {
        for (std::size_t i = 0; i < 3; ++i) {
            free.push_back(unitVector(6, i));
        }
    }
    // A parallel camera sees no distance.
    for (std::size_t i = 3; i < (state.cameras[state.other()].isParallel ? 5U : 6U); ++i) {
        free.push_back(unitVector(6, i));
    }
    return free;
}

}  // namespace zelm::measure
