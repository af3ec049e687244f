// The pair of cameras that a plan is made for, and what they see.
#ifndef ZELM_MEASURE_PLAN_PAIR_H
#define ZELM_MEASURE_PLAN_PAIR_H

#include <zelmMeasure.h>

#include <array>
#include <optional>

#include "adjustProblem.h"
#include "rig.h"

namespace zelm::measure {

// Depths before a camera that are sharp.
struct FocusRange {
    double nearest = 0.0;
    double farthest = 0.0;  // 0: no limit
};

// One camera: its projection, and where that holds.
struct PlanCamera {
    ProjectionCamera projection;
    int width = 0;      // pixels
    int height = 0;     //
    double fold = 0.0;  // squared normalised radius from which on the lens model folds the image

    // The pixel of a point of the camera's frame that lies at least `margin` pixels inside the image.
    std::optional<Point2d> pixelOf(const Vector3& point, double margin) const;
    double focalLength() const;  // the larger of the two, pixels
};

// The frame of the pair has its origin midway between the centres of projection; z is the mean of the optical axes, x
// lies along the mean of the images' x axes.
struct PlanPair {
    std::array<PlanCamera, kSides> cameras;
    Motion relative;                        // from the left camera to the right one
    MotionParameters relativeParameters{};  // the same
    Motion frame;                           // from the frame of the pair to the left camera
    FocusRange focus;

    // Of a point of the left camera's frame.
    Vector3 inCamera(Side side, const Vector3& point) const;
    // The pixel of a point of the left camera's frame that the camera sees sharply.
    std::optional<Point2d> seen(Side side, const Vector3& point, double margin) const;
    bool bothSee(const Vector3& point) const;
    Vector3 fromFrame(const Vector3& point) const;
    Vector3 toFrame(const Vector3& point) const;
    // Of the right camera in the left one's frame.
    Vector3 rightCentre() const;
};

// Throws Fault for numbers that cannot be meant, and for parallel cameras.
PlanPair planPair(const ZelmMeasureCamera& left, const ZelmMeasureCamera& right, const Motion& relative,
                  const FocusRange& focus);
bool isRotation(const Matrix3& R);

}  // namespace zelm::measure

#endif
