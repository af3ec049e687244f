// Targets: round dots of which both cameras see the outline, measured as the circles that they are.
#ifndef ZELM_MEASURE_TARGET_MEASURER_H
#define ZELM_MEASURE_TARGET_MEASURER_H

#include <zelmMeasure.h>

#include <array>
#include <cstdint>
#include <optional>

#include "circleFit.h"
#include "dotCentre.h"
#include "image.h"
#include "rig.h"
#include "targetCamera.h"
#include "triangulator.h"

namespace zelm::measure {

// What became of a target; the interface says what each means.
enum class TargetStatus : std::int32_t {
    ok = ZELM_MEASURE_CIRCLE_OK,
    pointAlone = ZELM_MEASURE_CIRCLE_POINT_ALONE,
    missingLeft = ZELM_MEASURE_CIRCLE_MISSING_LEFT,
    missingRight = ZELM_MEASURE_CIRCLE_MISSING_RIGHT,
    missingBoth = ZELM_MEASURE_CIRCLE_MISSING,
    behind = ZELM_MEASURE_CIRCLE_BEHIND,
    distortion = ZELM_MEASURE_CIRCLE_DISTORTION,
    parallel = ZELM_MEASURE_CIRCLE_PARALLEL,
};

struct Target {
    TargetStatus status = TargetStatus::ok;
    SpaceCircle circle;           // of a point alone the centre only
    Matrix3 covariance{};         // of the centre
    std::array<double, 2> rms{};  // pixels: left, right
    double angle = 0.0;           // between the two rays at the centre, radians

    bool hasCentre() const {
        return status == TargetStatus::ok || status == TargetStatus::pointAlone || status == TargetStatus::behind;
    }
};

class TargetMeasurer {
public:
    // Throws for a rig of two parallel cameras. Rig and images outlive the measurer.
    TargetMeasurer(const Rig& rig, const DenseImage& left, const DenseImage& right, DotPolarity polarity);

    // The target whose dots cover both pixels. Throws when memory runs out; all else ends in the status.
    Target operator()(Point2d left, Point2d right) const;

private:
    std::optional<CircleFit> bestCircle(const std::array<Ellipse2d, 2>& ellipses, Point2d left, Point2d right,
                                        const Vector3& centre) const;

    Triangulator triangulate;
    std::array<TargetCamera, 2> cameras;
    const DenseImage& leftImage;
    const DenseImage& rightImage;
    DotPolarity polarity;
};

}  // namespace zelm::measure

#endif
