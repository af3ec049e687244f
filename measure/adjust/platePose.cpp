#include "platePose.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "adjustStart.h"
#include "cholesky.h"
#include "coreStatus.h"
#include "fault.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kFewestDots = 6;
constexpr int kMaxSteps = 50;
constexpr double kSmallStep = 1e-12;      // of rotations in radians and of shifts over the distance
constexpr double kRobust = 3.5;           // homography's and weights' cut-off, robust deviations
constexpr double kDeviation = 1.4826;     // of a median
constexpr double kLeastDeviation = 1e-6;  // pixels

// A pixel without the lens, in the camera's normalised coordinates.
std::optional<Point2d> normalised(const ProjectionCamera& camera, Point2d pixel) {
    const auto& p = camera.p;
    const double yd = (pixel.y - p[kCy]) / p[kFy];
    const double xd = (pixel.x - p[kCx] - p[kSkew] * yd) / p[kFx];
    // The lens moves a point along its radius r: r (1 + k1 r^2 + k2 r^4) = rd.
    const double rd = std::hypot(xd, yd);
    double r = rd;
    for (int step = 0; step < kMaxSteps; ++step) {
        const double r2 = r * r;
        const double slope = 1.0 + (3.0 * p[kK1] + 5.0 * p[kK2] * r2) * r2;
        const double change = (r * (1.0 + (p[kK1] + p[kK2] * r2) * r2) - rd) / slope;
        if (!(slope > 0.0) || !std::isfinite(change)) {
            return std::nullopt;
        }
        r -= change;
        if (std::fabs(change) <= 1e-14 * (1.0 + rd)) {
            const double scale = rd > 0.0 ? r / rd : 1.0;
            return Point2d{xd * scale, yd * scale};
        }
    }
    return std::nullopt;
}

// From the plane's homography in normalised coordinates: its columns are r1, r2 and t up to a factor.
std::optional<MotionParameters> startOf(const ProjectionCamera& camera, std::span<const DotObservation> dots) {
    std::vector<Point2d> plane;
    std::vector<Point2d> image;
    for (const DotObservation& dot : dots) {
        if (const auto ideal = normalised(camera, dot.pixel)) {
            plane.push_back({dot.place[0], dot.place[1]});
            image.push_back(*ideal);
        }
    }
    Matrix3 H{};
    const std::int32_t status = statusOfCore(ZELM_ERR_CALIB_NOT_CONVERGED, [&] {
        return zelmCalibCalcHomography(static_cast<std::int32_t>(plane.size()), plane.data(), image.data(), kRobust,
                                       H.data());
    });
    if (plane.size() < kFewestDots || status < 0) {
        return std::nullopt;
    }
    Vector3 first{H[0], H[3], H[6]};
    Vector3 second{H[1], H[4], H[7]};
    const double length = std::sqrt(std::sqrt(dot(first, first) * dot(second, second)));
    const double factor = (H[8] < 0.0 ? -1.0 : 1.0) / length;
    for (std::size_t i = 0; i < 3; ++i) {
        first[i] *= factor;
        second[i] *= factor;
    }
    const Vector3 x = unit(first);
    const Vector3 z = unit(cross(first, second));
    const Vector3 y = cross(z, x);
    const Vector3 t{H[2] * factor, H[5] * factor, H[8] * factor};
    return motionParameters({x[0], y[0], z[0], x[1], y[1], z[1], x[2], y[2], z[2]}, t);
}

// Robust deviation of the dots' distances from their predictions.
double deviationOf(const AdjustState& state, ImageParameters image, std::span<const DotObservation> dots) {
    std::vector<double> distances;
    for (const DotObservation& dot : dots) {
        image.factor = state.factors[dot.kind];
        const Point2d centre = dotOutline(image.camera, circleOf(image, dot.place, dot.radius)).centre;
        distances.push_back(std::hypot(dot.pixel.x - centre.x, dot.pixel.y - centre.y));
    }
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    return std::max(kDeviation * *middle, kLeastDeviation);
}

// One step of weighted least squares (Tukey's biweight); whether it was small. Nothing when it is not determined.
std::optional<bool> step(const AdjustState& state, ImageParameters image, std::span<const DotObservation> dots,
                         MotionParameters& pose) {
    image.pose = pose.data();
    const double cutoff = kRobust * deviationOf(state, image, dots);
    Matrix<6> N{};
    Vector<6> b{};
    for (const DotObservation& dot : dots) {
        image.factor = state.factors[dot.kind];
        const PredictedDot model = predictDot(image, dot.place, dot.radius, RotationDerivative::byVector);
        const double residual[2] = {dot.pixel.x - model.centre.x, dot.pixel.y - model.centre.y};
        const double distance = std::hypot(residual[0], residual[1]) / cutoff;
        if (!(distance < 1.0)) {
            continue;
        }
        const double weight = (1.0 - distance * distance) * (1.0 - distance * distance);
        for (std::size_t row = 0; row < 2; ++row) {
            const auto& g = model.byPose[row];
            for (std::size_t i = 0; i < 6; ++i) {
                b[i] += weight * g[i] * residual[row];
                for (std::size_t j = i; j < 6; ++j) {
                    N[i][j] += weight * g[i] * g[j];
                }
            }
        }
    }
    if (!factor(N)) {
        return std::nullopt;
    }
    const Vector<6> change = solve(N, b);
    double largest = 0.0;
    for (std::size_t i = 0; i < 6; ++i) {
        pose[i] += change[i];
        largest = std::max(largest, std::fabs(change[i]) / (i < 3 ? 1.0 : std::fabs(pose[5])));
    }
    return largest <= kSmallStep;
}

}  // namespace

std::optional<MotionParameters> posedPlate(const AdjustState& state, Side side, std::span<const DotObservation> dots) {
    const ProjectionCamera& camera = state.cameras[side];
    if (camera.isParallel || dots.size() < kFewestDots) {
        return std::nullopt;
    }
    auto pose = startOf(camera, dots);
    ImageParameters image{camera, nullptr, nullptr, 1.0, state.bow.b.data(), state.bow.extent};
    for (int i = 0; pose && i < kMaxSteps; ++i) {
        const auto small = step(state, image, dots, *pose);
        if (!small || !std::isfinite((*pose)[0] + (*pose)[5])) {
            return std::nullopt;
        }
        if (*small) {
            break;
        }
    }
    return pose;
}

}  // namespace zelm::measure
