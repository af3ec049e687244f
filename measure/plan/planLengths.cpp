#include "planLengths.h"

#include <Eigen/Cholesky>
#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <vector>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kCoverage = 1.959964;         // standard deviations that hold 95 % of a normal distribution
constexpr double kUsualLength = 0.3;           // of the volume's diagonal
constexpr double kMinSeen = 0.5;               // of the volume, by both cameras
constexpr int kSteps = 7;                      // along an axis, when the volume's share is counted
constexpr std::array kPlaces{-1.0, 0.0, 1.0};  // of lengths along an axis, within what holds them

// A point that both cameras measure.
struct MeasuredPoint {
    Eigen::Matrix<double, 3, kPlanParameters> byParameters;
    Eigen::Matrix3d byPixels;  // covariance for a noise of one pixel
};

// Two rays that meet in the least squares of the four pixel coordinates: their normal equations, differentiated
// implicitly. In the left camera's frame.
MeasuredPoint measuredPoint(const PlanPair& pair, const Vector3& X) {
    Eigen::Matrix<double, 4, 3> J;
    Eigen::Matrix<double, 4, kPlanParameters> K = Eigen::Matrix<double, 4, kPlanParameters>::Zero();
    const Matrix3& R = pair.relative.R;
    const Vector3 turned = times(R, X);
    for (const Side side : {kLeft, kRight}) {
        const Projection p = project(pair.cameras[side].projection, pair.inCamera(side, X));
        for (std::size_t row = 0; row < 2; ++row) {
            const Vector3& g = p.byPoint[row];
            const auto at = static_cast<Eigen::Index>(2 * side + row);
            const Vector3 byPoint = side == kLeft ? g : timesTransposed(R, g);
            J.row(at) << byPoint[0], byPoint[1], byPoint[2];
            for (std::size_t i = 0; i < kCameraParameters; ++i) {
                K(at, static_cast<Eigen::Index>((side == kLeft ? kSharedBase : kSharedOther) + i)) =
                    p.byParameters[row][i];
            }
            if (side == kRight) {
                const Vector3 byTurn = cross(turned, g);
                K.row(at).segment<6>(kSharedRelative) << byTurn[0], byTurn[1], byTurn[2], g[0], g[1], g[2];
            }
        }
    }
    const Eigen::Matrix3d N = J.transpose() * J;
    const Eigen::LDLT<Eigen::Matrix3d> solver(N);
    return {-solver.solve(J.transpose() * K), solver.solve(Eigen::Matrix3d::Identity())};
}

double shareSeen(const PlanPair& pair, const PlanVolume& volume) {
    int seen = 0;
    const auto step = [](int i) { return (i + 0.5) * 2.0 / kSteps - 1.0; };
    for (int i = 0; i < kSteps * kSteps * kSteps; ++i) {
        const Vector3 place = volume.at(step(i % kSteps), step(i / kSteps % kSteps), step(i / (kSteps * kSteps)));
        seen += pair.bothSee(pair.fromFrame(place)) ? 1 : 0;
    }
    return seen / static_cast<double>(kSteps * kSteps * kSteps);
}

// Edges and space diagonals of a box, as steps of a length.
std::vector<Vector3> directionsOf(const PlanVolume& volume, double length) {
    std::vector<Vector3> directions;
    directions.reserve(7);
    const Vector3& e = volume.extent;
    const double diagonal = std::sqrt(dot(e, e));
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Vector3 d{};
        d[axis] = length;
        directions.push_back(d);
    }
    for (const auto& [x, y] : {std::pair(1.0, 1.0), {1.0, -1.0}, {-1.0, 1.0}, {-1.0, -1.0}}) {
        directions.push_back({x * e[0] * length / diagonal, y * e[1] * length / diagonal, e[2] * length / diagonal});
    }
    return directions;
}

// A test length, in the left camera's frame.
struct Span {
    Vector3 from{};
    Vector3 to{};
};

// Those along one direction that lie in the volume and are seen by both cameras.
void addSpans(const PlanPair& pair, const PlanVolume& volume, const Vector3& d, std::vector<Span>& spans) {
    const Vector3& e = volume.extent;
    Vector3 room{};
    for (std::size_t i = 0; i < 3; ++i) {
        room[i] = 0.5 * (e[i] - std::fabs(d[i]));
        if (room[i] < -1e-9 * std::sqrt(dot(e, e))) {
            return;
        }
        room[i] = std::max(room[i], 0.0);
    }
    for (const double z : kPlaces) {
        for (const double y : kPlaces) {
            for (const double x : kPlaces) {
                const Vector3& c = volume.centre;
                const Vector3 middle{c[0] + room[0] * x, c[1] + room[1] * y, c[2] + room[2] * z};
                const auto end = [&](double half) {
                    return pair.fromFrame({middle[0] + half * d[0], middle[1] + half * d[1], middle[2] + half * d[2]});
                };
                const Span span{end(-0.5), end(0.5)};
                if (pair.bothSee(span.from) && pair.bothSee(span.to)) {
                    spans.push_back(span);
                }
            }
        }
    }
}

std::vector<Span> spansOf(const PlanPair& pair, const PlanVolume& volume, double length) {
    const std::vector<Vector3> directions = directionsOf(volume, length);
    std::vector<Span> spans;
    spans.reserve(directions.size() * kPlaces.size() * kPlaces.size() * kPlaces.size());
    for (const Vector3& direction : directions) {
        addSpans(pair, volume, direction, spans);
    }
    if (spans.empty()) {
        refuse("nowhere in the volume do both cameras see both ends of a length: give a shorter length");
    }
    return spans;
}

}  // namespace

TestLengths::TestLengths(const PlanPair& pair, const PlanVolume& volume, const PlanBasis& basis, double length,
                         double pointNoise) {
    const double diagonal = std::sqrt(dot(volume.extent, volume.extent));
    each = length > 0.0 ? length : kUsualLength * diagonal;
    if (each > diagonal) {
        refuse("the test lengths are longer than the volume's diagonal: give a shorter length");
    }
    share = shareSeen(pair, volume);
    if (share < kMinSeen) {
        refuse("both cameras see only " + std::to_string(std::lround(100.0 * share)) +
               " % of the volume, sharp: make it smaller, move it to where the cameras look, or change their angle");
    }
    const std::vector<Span> spans = spansOf(pair, volume, each);
    const auto count = static_cast<Eigen::Index>(spans.size());
    gradients.resize(kPlanParameters, count);
    imageVariance.resize(count);
    for (Eigen::Index i = 0; i < count; ++i) {
        const auto& [P, Q] = spans[static_cast<std::size_t>(i)];
        const MeasuredPoint p = measuredPoint(pair, P);
        const MeasuredPoint q = measuredPoint(pair, Q);
        const Eigen::Vector3d u = Eigen::Vector3d(Q[0] - P[0], Q[1] - P[1], Q[2] - P[2]).normalized();
        gradients.col(i) = basis.gradient((u.transpose() * (q.byParameters - p.byParameters)).transpose());
        imageVariance[i] = pointNoise * pointNoise * u.dot((p.byPixels + q.byPixels) * u);
    }
    if (!gradients.allFinite() || !imageVariance.allFinite()) {
        refuse("the rays of the cameras run side by side in the volume: give a greater baseline");
    }
    const PlanMatrix mean = gradients * gradients.transpose() / static_cast<double>(count);
    const Eigen::SelfAdjointEigenSolver<PlanMatrix> eigen(mean);
    root = eigen.eigenvectors() * eigen.eigenvalues().cwiseMax(0.0).cwiseSqrt().asDiagonal();
}

std::optional<LengthScore> TestLengths::score(const PlanMatrix& information) const {
    const Eigen::LLT<PlanMatrix> factor(information);
    if (factor.info() != Eigen::Success) {
        return std::nullopt;
    }
    const Eigen::VectorXd variance =
        imageVariance + factor.matrixL().solve(gradients).colwise().squaredNorm().transpose();
    const LengthScore result{kCoverage * std::sqrt(variance.maxCoeff()), kCoverage * std::sqrt(variance.mean())};
    return std::isfinite(result.worst) ? std::optional(result) : std::nullopt;
}

std::optional<double> TestLengths::rms(const PlanMatrix& information) const {
    const Eigen::LLT<PlanMatrix> factor(information);
    if (factor.info() != Eigen::Success) {
        return std::nullopt;
    }
    const PlanMatrix part = factor.matrixL().solve(root);
    const double result = kCoverage * std::sqrt(imageVariance.mean() + part.squaredNorm());
    return std::isfinite(result) ? std::optional(result) : std::nullopt;
}

LengthScore TestLengths::imageScore() const {
    return {kCoverage * std::sqrt(imageVariance.maxCoeff()), kCoverage * std::sqrt(imageVariance.mean())};
}

}  // namespace zelm::measure
