// Epipolar distances of pixel pairs as a function of what the right camera may have moved since the calibration.
#ifndef ZELM_MEASURE_EPIPOLAR_MODEL_H
#define ZELM_MEASURE_EPIPOLAR_MODEL_H

#include <array>
#include <cstddef>
#include <optional>

#include "calibrationCovariance.h"
#include "cholesky.h"
#include "projection.h"
#include "rig.h"

namespace zelm::measure {

constexpr std::size_t kDriftParts = ZELM_MEASURE_DRIFT_PARTS;
// A rotation vector in the right camera's axes, and both shifts.
using Drift = Vector<kDriftParts>;

// A pixel pair in normalised coordinates, with what the raw pixels' coordinates change of them, row-major.
struct RayPair {
    Vector3 left{};
    Vector3 right{};
    std::array<double, 4> byLeft{};
    std::array<double, 4> byRight{};
};

// The epipolar distance to first order (Sampson 1982): raw pixels by which both points together miss a pair that meets,
// so that its standard deviation is the one of a coordinate.
struct SignedDistance {
    double value = 0.0;
    Drift byDrift{};
};

// What the distance depends on of a calibration: all parameters but the place of the plate of view 0.
constexpr std::size_t kEpipolarParameters = kFrameRotation;
using ByCalibration = std::array<double, kEpipolarParameters>;

// The pair of cameras after a drift.
class DriftedPair {
public:
    SignedDistance distance(const RayPair& pair) const;

private:
    friend class EpipolarModel;
    Matrix3 fromLeft{};             // rays of the left camera to the calibrated frame of the right one
    Vector3 t{};                    // of the left camera's centre in that frame
    Matrix3 back{};                 // rays of the turned camera to that frame
    Matrix3 jacobian{};             // of the rotation vector
    std::array<Vector3, 2> shifts;  // directions
};

class EpipolarModel {
public:
    // Throws for a rig with a parallel camera.
    explicit EpipolarModel(const Rig& rig);

    // Nothing when the lens distortion of a pixel cannot be removed.
    std::optional<RayPair> rays(Point2d left, Point2d right) const;
    DriftedPair at(const Drift& drift) const;
    // How the rig's parameters change the distance of a pair, pixels held, when the cameras have not moved.
    ByCalibration byCalibration(const RayPair& pair) const;
    const Vector3& across() const { return shifts[0]; }
    const Vector3& along() const { return shifts[1]; }

private:
    const Rig& rig;
    ProjectionCamera leftCamera;
    ProjectionCamera rightCamera;
    Motion motion;
    std::array<Vector3, 2> shifts;
};

}  // namespace zelm::measure

#endif
