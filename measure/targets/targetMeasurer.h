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
    mismatch = ZELM_MEASURE_CIRCLE_MISMATCH,
    hidden = ZELM_MEASURE_CIRCLE_HIDDEN,
};

// Which targets are refused although they have a centre; 0: none.
struct TargetLimits {
    double maxError = 0.0;  // pixels, of the root sum of squares of both errors
    double minShare = 0.0;  // of an outline that is seen
};

struct Target {
    TargetStatus status = TargetStatus::ok;
    bool isCircle = false;                               // else a centre only
    SpaceCircle circle;                                  //
    Matrix3 covariance{};                                // of the centre
    std::array<double, 2> rms{};                         // pixels: left, right
    double angle = 0.0;                                  // between the two rays at the centre, radians
    std::array<std::optional<SeenOutline>, 2> outlines;  // left, right, where a dot was found; without their edges

    bool hasCentre() const {
        return status == TargetStatus::ok || status == TargetStatus::pointAlone || status == TargetStatus::behind ||
               status == TargetStatus::mismatch || status == TargetStatus::hidden;
    }
};

class TargetMeasurer {
public:
    // Throws for a rig of two parallel cameras. Rig and images outlive the measurer.
    TargetMeasurer(const Rig& rig, const DenseImage& left, const DenseImage& right, DotPolarity polarity,
                   const TargetLimits& limits = {});

    // The target whose dots cover both pixels. Throws when memory runs out; all else ends in the status.
    Target operator()(Point2d left, Point2d right) const;

private:
    std::optional<CircleFit> bestCircle(const std::array<std::optional<SeenOutline>, 2>& outlines,
                                        const std::array<Ellipse2d, 2>& ellipses, const Vector3& centre) const;
    TargetStatus statusOf(const Target& target) const;

    Triangulator triangulate;
    std::array<TargetCamera, 2> cameras;
    const DenseImage& leftImage;
    const DenseImage& rightImage;
    DotPolarity polarity;
    TargetLimits limits;
};

}  // namespace zelm::measure

#endif
