#include "imageDifference.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "cholesky.h"

namespace zelm::measure {
namespace {

constexpr int kGrid = 41;           // pixels a side that the image is compared at
constexpr int kMaxSteps = 30;       // it takes 3 to 5
constexpr double kSettled = 1e-14;  // radians

struct Sight {
    Point2d pixel{};
    Vector3 ray{};
};

std::vector<Sight> sightsOf(const Rig& rig, char side) {
    const RigCamera& camera = rig.camera(side);
    std::vector<Sight> sights;
    sights.reserve(static_cast<std::size_t>(kGrid) * kGrid);
    for (int row = 0; row < kGrid; ++row) {
        for (int column = 0; column < kGrid; ++column) {
            const Point2d pixel{(camera.width - 1) * column / (kGrid - 1.0), (camera.height - 1) * row / (kGrid - 1.0)};
            if (const auto ray = sightOf(rig, side, pixel)) {
                sights.push_back({pixel, *ray});
            }
        }
    }
    if (sights.size() < static_cast<std::size_t>(kGrid) * kGrid / 2) {
        refuse("the lens of a camera cannot be undone over half of its image");
    }
    return sights;
}

// One step of Gauss and Newton's towards the turn of least squares.
Vector3 stepOf(const std::vector<Sight>& sights, const ProjectionCamera& camera, const Matrix3& turn) {
    Matrix<3> N{};
    Vector<3> b{};
    for (const Sight& s : sights) {
        const Vector3 v = times(turn, s.ray);
        const Projection at = project(camera, v);
        const std::array<double, 2> error{s.pixel.x - at.pixel.x, s.pixel.y - at.pixel.y};
        for (std::size_t row = 0; row < 2; ++row) {
            const auto& g = at.byPoint[row];
            const Vector3 slope = cross(v, {g[0], g[1], g[2]});  // exp(d) v = v + d x v to first order
            for (std::size_t i = 0; i < 3; ++i) {
                b[i] += slope[i] * error[row];
                for (std::size_t j = i; j < 3; ++j) {
                    N[i][j] += slope[i] * slope[j];
                }
            }
        }
    }
    if (!factor(N)) {
        refuse("the cameras' images do not tell how they are turned: are these calibrations of the same camera?");
    }
    return solve(N, b);
}

double rmsOf(const std::vector<Sight>& sights, const ProjectionCamera& camera, const Matrix3& turn,
             ImageDifference* worst) {
    double sum = 0.0;
    for (const Sight& s : sights) {
        const Point2d p = pixelOf(camera, times(turn, s.ray));
        const double distance = std::hypot(p.x - s.pixel.x, p.y - s.pixel.y);
        sum += distance * distance;
        if (worst != nullptr && distance > worst->worst) {
            worst->worst = distance;
            worst->worstAt = s.pixel;
        }
    }
    return std::sqrt(sum / static_cast<double>(sights.size()));
}

}  // namespace

std::optional<Vector3> sightOf(const Rig& rig, char side, Point2d raw) {
    Point2d ideal{};
    if (zelm2ViewUnDistortPoint(rig.calib.get(), side, &raw, &ideal) < 0) {
        return std::nullopt;
    }
    const CameraParameters p = parametersOf(rig.camera(side).intrinsics);
    const double y = (ideal.y - p[kCy]) / p[kFy];
    return Vector3{(ideal.x - p[kCx] - p[kSkew] * y) / p[kFx], y, 1.0};
}

ImageDifference imageDifference(const Rig& first, const Rig& second, char side) {
    const std::vector<Sight> sights = sightsOf(first, side);
    const ProjectionCamera camera = projectionOf(second.camera(side));
    Matrix3 turn{1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
    ImageDifference d;
    d.unturned = rmsOf(sights, camera, turn, nullptr);
    for (int step = 0; step < kMaxSteps; ++step) {
        const Vector3 by = stepOf(sights, camera, turn);
        turn = product(rotationOf(by), turn);
        if (!(std::hypot(by[0], by[1], by[2]) > kSettled)) {
            break;
        }
    }
    d.rms = rmsOf(sights, camera, turn, &d);
    zelmCalibRodrigues(1, d.turn.data(), turn.data());
    return d;
}

}  // namespace zelm::measure
