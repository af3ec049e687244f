#include "adjustCovariance.h"

#include <Eigen/Cholesky>
#include <Eigen/Core>
#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <optional>

#include "dotCost.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kUndetermined = 1e-12;  // of the normal equations' least eigenvalue, scaled to a unit diagonal

using Eigen::Index;
using Shared = Eigen::Matrix<double, kSharedParameters, kSharedParameters>;
using Mixed = Eigen::Matrix<double, 6, kSharedParameters>;
using Pose = Eigen::Matrix<double, 6, 6>;
using RigMatrix = Eigen::Matrix<double, kRigParameters, kRigParameters, Eigen::RowMajor>;

// The normal equations of one view: of its pose, and of its pose with what all share.
struct ViewPart {
    Pose own = Pose::Zero();
    Mixed mixed = Mixed::Zero();
    bool seen = false;
};

struct Normal {
    Shared shared = Shared::Zero();
    std::vector<ViewPart> views;
};

void addDot(const AdjustState& state, Side side, std::size_t view, const DotObservation& dot, double noise,
            Normal& normal) {
    const ImageParameters image = imageParameters(state, side, view, dot.kind);
    const PredictedDot model = predictDot(image, dot.place, dot.radius, RotationDerivative::byTurn);
    const auto W = weightOf(covarianceOf(dot, noise));
    Eigen::Matrix<double, 2, 2> weight;
    weight << W[0], W[1], 0.0, W[2];
    Eigen::Matrix<double, 2, kSharedParameters> J = Eigen::Matrix<double, 2, kSharedParameters>::Zero();
    Eigen::Matrix<double, 2, 6> P;
    const std::size_t camera = side == state.base ? kSharedBase : kSharedOther;
    for (std::size_t row = 0; row < 2; ++row) {
        const auto put = [&](std::size_t at, const auto& values) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                J(static_cast<Index>(row), static_cast<Index>(at + i)) = values[i];
            }
        };
        put(camera, model.byCamera[row]);
        if (side != state.base) {
            put(kSharedRelative, model.byRelative[row]);
        }
        put(static_cast<std::size_t>(kSharedFactors) + dot.kind, model.byFactor[row]);
        put(kSharedBow, model.byBow[row]);
        for (std::size_t i = 0; i < 6; ++i) {
            P(static_cast<Index>(row), static_cast<Index>(i)) = model.byPose[row][i];
        }
    }
    J = weight * J;
    P = weight * P;
    normal.shared.noalias() += J.transpose() * J;
    normal.views[view].own.noalias() += P.transpose() * P;
    normal.views[view].mixed.noalias() += P.transpose() * J;
    normal.views[view].seen = true;
}

Eigen::MatrixXd matrixOf(const std::vector<std::vector<double>>& columns) {
    Eigen::MatrixXd B(static_cast<Index>(kSharedParameters), static_cast<Index>(columns.size()));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        B.col(static_cast<Index>(i)) = Eigen::Map<const Eigen::VectorXd>(columns[i].data(), B.rows());
    }
    return B;
}

std::string nameOf(const AdjustState& state, std::size_t parameter) {
    static constexpr std::array kCameraNames{
        "horizontal focal length", "skew",          "vertical focal length", "principal point's x",
        "principal point's y",     "distortion k1", "distortion k2"};
    const auto camera = [&](std::size_t i, Side side) {
        return std::string("the ") + (side == kLeft ? "left" : "right") + " camera's " + kCameraNames[i];
    };
    if (parameter < kSharedOther) {
        return camera(parameter, state.base);
    }
    if (parameter < kSharedRelative) {
        return camera(parameter - kSharedOther, state.other());
    }
    if (parameter < kSharedFactors) {
        return parameter < kSharedRelative + 3 ? "the rotation between the cameras" : "the shift between the cameras";
    }
    return parameter < kSharedBow ? "the dots' diameter" : "the plate's bow";
}

// The inverse of the shared normal equations, the poses eliminated.
Shared sharedCovariance(const AdjustState& state, const Normal& normal, const Eigen::MatrixXd& B,
                        AdjustCovariance& result) {
    Shared reduced = normal.shared;
    for (const ViewPart& view : normal.views) {
        if (view.seen) {
            reduced.noalias() -= view.mixed.transpose() * view.own.ldlt().solve(view.mixed);
        }
    }
    const Eigen::MatrixXd N = B.transpose() * reduced * B;
    // Scaled by what the observations would tell if all else were known, so that the units do not matter.
    const Eigen::VectorXd all = (B.transpose() * normal.shared * B).diagonal();
    for (Index i = 0; i < all.size(); ++i) {
        if (!(all[i] > 0.0) || !std::isfinite(all[i])) {
            Index largest = 0;
            B.col(i).cwiseAbs().maxCoeff(&largest);
            refuse(nameOf(state, static_cast<std::size_t>(largest)) +
                   " is not determined by these views: take views that differ more in tilt and place");
        }
    }
    const Eigen::VectorXd scale = all.cwiseSqrt().cwiseInverse();
    const Eigen::MatrixXd scaled = scale.asDiagonal() * N * scale.asDiagonal();
    const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> eigen(scaled);
    Index weakest = 0;
    eigen.eigenvectors().col(0).cwiseAbs().maxCoeff(&weakest);
    Index largest = 0;
    B.col(weakest).cwiseAbs().maxCoeff(&largest);
    result.weakest = nameOf(state, static_cast<std::size_t>(largest));
    result.condition = eigen.eigenvalues()[0] / eigen.eigenvalues()[eigen.eigenvalues().size() - 1];
    if (!(eigen.eigenvalues()[0] > kUndetermined)) {
        refuse(result.weakest + " is not determined by these views: take views that differ more in tilt and place");
    }
    const Eigen::MatrixXd inverse = scale.asDiagonal() * eigen.eigenvectors() *
                                    eigen.eigenvalues().cwiseInverse().asDiagonal() * eigen.eigenvectors().transpose() *
                                    scale.asDiagonal();
    return B * inverse * B.transpose();
}

Eigen::Matrix3d toEigen(const Matrix3& m) {
    return Eigen::Map<const Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(m.data());
}

Eigen::Matrix3d crossMatrix(const Eigen::Vector3d& v) {
    Eigen::Matrix3d X;
    X << 0.0, -v[2], v[1], v[2], 0.0, -v[0], -v[1], v[0], 0.0;
    return X;
}

// From the shared parameters and the pose of view 0 to the parameters of a rig, whose frame is the left camera's.
Eigen::MatrixXd toRig(const AdjustState& state) {
    constexpr Index kPose = kSharedParameters;
    Eigen::MatrixXd T = Eigen::MatrixXd::Zero(kRigParameters, kPose + 6);
    const auto identity = [&T](std::size_t to, Index from, Index size) {
        T.block(static_cast<Index>(to), from, size, size).setIdentity();
    };
    const bool isLeftBase = state.base == kLeft;
    identity(isLeftBase ? kLeftCamera : kRightCamera, kSharedBase, kCameraParameters);
    identity(isLeftBase ? kRightCamera : kLeftCamera, kSharedOther, kCameraParameters);
    if (isLeftBase) {
        identity(kRelativeRotation, kSharedRelative, 6);
        identity(kFrameRotation, kPose, 6);
        return T;
    }
    // X_left = Q X_right + q. Turned round: R = Q', t = -Q' q; the frame: exp(d) Q R_right, Q t_right + q.
    const Eigen::Matrix3d Q = toEigen(rotationOf({state.relative[0], state.relative[1], state.relative[2]}));
    const Eigen::Vector3d q(state.relative[3], state.relative[4], state.relative[5]);
    const MotionParameters& pose = state.poses.front();
    const Eigen::Vector3d moved = Q * Eigen::Vector3d(pose[3], pose[4], pose[5]);
    const auto block = [&T](std::size_t row, std::size_t column) {
        return T.block<3, 3>(static_cast<Index>(row), static_cast<Index>(column));
    };
    block(kRelativeRotation, kSharedRelative) = -Q.transpose();
    block(kRelativeTranslation, kSharedRelative) = -Q.transpose() * crossMatrix(q);
    block(kRelativeTranslation, kSharedRelative + 3) = -Q.transpose();
    block(kFrameRotation, kSharedRelative).setIdentity();
    block(kFrameRotation, kPose) = Q;
    block(kFrameTranslation, kSharedRelative) = -crossMatrix(moved);
    block(kFrameTranslation, kSharedRelative + 3).setIdentity();
    block(kFrameTranslation, kPose + 3) = Q;
    return T;
}

RigMatrix rigMatrix(const AdjustState& state, const Shared& shared, const ViewPart& first) {
    constexpr Index kShared = kSharedParameters;
    Eigen::MatrixXd joint = Eigen::MatrixXd::Zero(kShared + 6, kShared + 6);
    joint.topLeftCorner<kShared, kShared>() = shared;
    if (first.seen) {  // else its plate defines the frame, whatever is known of it
        const Pose own = first.own.ldlt().solve(Pose::Identity());
        const Mixed gain = own * first.mixed;
        joint.bottomLeftCorner<6, kShared>() = -gain * shared;
        joint.topRightCorner<kShared, 6>() = joint.bottomLeftCorner<6, kShared>().transpose();
        joint.bottomRightCorner<6, 6>() = own + gain * shared * gain.transpose();
    }
    const Eigen::MatrixXd T = toRig(state);
    const RigMatrix C = T * joint * T.transpose();
    return 0.5 * (C + C.transpose());
}

}  // namespace

std::vector<std::vector<double>> freeOfShared(const AdjustState& state, const AdjustOptions& options, bool otherSeen) {
    std::vector<std::vector<double>> columns;
    const auto add = [&columns](std::size_t at, const std::vector<double>& direction) {
        columns.emplace_back(kSharedParameters, 0.0);
        std::copy(direction.begin(), direction.end(), columns.back().begin() + static_cast<std::ptrdiff_t>(at));
    };
    for (const auto& direction : freeOfCamera(state, options, state.base)) {
        add(kSharedBase, direction);
    }
    if (otherSeen) {
        for (const auto& direction : freeOfCamera(state, options, state.other())) {
            add(kSharedOther, direction);
        }
        const Matrix3 J = leftJacobian({state.relative[0], state.relative[1], state.relative[2]});
        for (const auto& direction : freeOfRelative(state)) {
            const Vector3 turn = times(J, {direction[0], direction[1], direction[2]});
            add(kSharedRelative, {turn[0], turn[1], turn[2], direction[3], direction[4], direction[5]});
        }
    }
    if (options.estimateFactors) {
        add(kSharedFactors, {1.0, 0.0});
        add(kSharedFactors, {0.0, 1.0});
    }
    if (options.estimateBow) {
        for (std::size_t i = 0; i < 3; ++i) {
            add(kSharedBow + i, {1.0});
        }
    }
    return columns;
}

AdjustCovariance covarianceOf(const AdjustState& state, const std::vector<AdjustView>& views,
                              const AdjustOptions& options, const AdjustSummary& summary) {
    Normal normal;
    normal.views.resize(views.size());
    bool otherSeen = false;
    for (std::size_t view = 0; view < views.size(); ++view) {
        for (const Side side : {kLeft, kRight}) {
            for (const DotObservation& dot : views[view].dots[side]) {
                if (dot.fate == DotFate::used) {
                    addDot(state, side, view, dot, summary.noise[side], normal);
                    otherSeen = otherSeen || side == state.other();
                }
            }
        }
    }
    AdjustCovariance result;
    const Shared shared = sharedCovariance(state, normal, matrixOf(freeOfShared(state, options, otherSeen)), result);
    Eigen::Map<Eigen::Matrix<double, kSharedParameters, kSharedParameters, Eigen::RowMajor>>(result.shared.data()) =
        shared;
    for (const ViewPart& view : normal.views) {
        SquareMatrix<6> pose{};
        if (view.seen) {
            const Pose own = view.own.ldlt().solve(Pose::Identity());
            const Mixed gain = own * view.mixed;
            Eigen::Map<Eigen::Matrix<double, 6, 6, Eigen::RowMajor>>(pose.data()) =
                own + gain * shared * gain.transpose();
        }
        result.poses.push_back(pose);
    }
    Eigen::Map<RigMatrix>(result.rig.matrix.data()) = rigMatrix(state, shared, normal.views.front());
    result.rig.noise = options.knownNoise > 0.0 ? options.knownNoise : summary.deviation();
    result.rig.freedom = options.knownNoise > 0.0 ? 0.0 : summary.freedom;
    return result;
}

}  // namespace zelm::measure
