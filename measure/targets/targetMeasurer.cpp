#include "targetMeasurer.h"

#include <algorithm>
#include <cmath>

#include "circleStart.h"
#include "outlineEdges.h"

namespace zelm::measure {
namespace {

constexpr double kMaxRms = 0.3;  // pixels between the outlines and the images of a circle; more is no circle

// Before the circle is looked for.
TargetStatus statusOf(PointStatus status) {
    switch (status) {
        case PointStatus::ok:
            return TargetStatus::pointAlone;
        case PointStatus::behind:
            return TargetStatus::behind;
        case PointStatus::distortion:
            return TargetStatus::distortion;
        case PointStatus::parallel:
        case PointStatus::mismatch:
        case PointStatus::outside:
            break;
    }
    return TargetStatus::parallel;
}

// The normal's side that the left camera sees.
void turnTowards(const TargetCamera& camera, SpaceCircle& circle) {
    if (dot(circle.normal, camera.towards(circle.centre)) < 0.0) {
        circle.normal = {-circle.normal[0], -circle.normal[1], -circle.normal[2]};
    }
}

}  // namespace

TargetMeasurer::TargetMeasurer(const Rig& rig, const DenseImage& left, const DenseImage& right, DotPolarity dotPolarity,
                               const TargetLimits& targetLimits)
    : triangulate(rig),
      cameras{TargetCamera(rig.left), TargetCamera(rig.right)},
      leftImage(left),
      rightImage(right),
      polarity(dotPolarity),
      limits(targetLimits) {}

std::optional<CircleFit> TargetMeasurer::bestCircle(const std::array<std::optional<SeenOutline>, 2>& outlines,
                                                    const std::array<Ellipse2d, 2>& ellipses,
                                                    const Vector3& centre) const {
    const auto& [leftOutline, rightOutline] = outlines;
    if (!leftOutline || !rightOutline || leftOutline->edges.empty() || rightOutline->edges.empty()) {
        return std::nullopt;
    }
    std::optional<CircleFit> best;
    for (const SpaceCircle& start : startCircles(cameras, ellipses, centre)) {
        auto fit = fitCircle(cameras, {leftOutline->edges, rightOutline->edges}, start);
        if (fit && fit->rms[0] <= kMaxRms && fit->rms[1] <= kMaxRms && (!best || fit->cost < best->cost)) {
            best = fit;
        }
    }
    if (best) {
        turnTowards(cameras[0], best->circle);
    }
    return best;
}

// Of a target with a centre.
TargetStatus TargetMeasurer::statusOf(const Target& target) const {
    const auto isHidden = [&](const std::optional<SeenOutline>& outline) {
        return !outline || outline->share < limits.minShare;
    };
    // A circle is fitted to what is seen of both outlines; an ellipse through part of an outline may be any.
    if (limits.minShare > 0.0 && !target.isCircle &&
        std::any_of(target.outlines.begin(), target.outlines.end(), isHidden)) {
        return TargetStatus::hidden;
    }
    if (limits.maxError > 0.0 && std::hypot(target.rms[0], target.rms[1]) > limits.maxError) {
        return TargetStatus::mismatch;
    }
    return target.isCircle ? TargetStatus::ok : TargetStatus::pointAlone;
}

Target TargetMeasurer::operator()(Point2d left, Point2d right) const {
    Target target;
    target.outlines = {seenOutline(leftImage, left, polarity), seenOutline(rightImage, right, polarity)};
    const auto leftEllipse = dotEllipse(leftImage, left, polarity);
    const auto rightEllipse = dotEllipse(rightImage, right, polarity);
    if (!leftEllipse || !rightEllipse) {
        target.status = leftEllipse    ? TargetStatus::missingRight
                        : rightEllipse ? TargetStatus::missingLeft
                                       : TargetStatus::missingBoth;
        return target;
    }
    const SpacePoint point = triangulate({leftEllipse->x, leftEllipse->y}, {rightEllipse->x, rightEllipse->y});
    const Vector3 centre{point.position.x, point.position.y, point.position.z};
    target.circle.centre = centre;
    target.rms = {point.errorLeft, point.errorRight};
    target.angle = point.angle;
    target.status = measure::statusOf(point.status);
    if (target.status != TargetStatus::pointAlone) {
        return target;
    }
    if (const auto fit = bestCircle(target.outlines, {*leftEllipse, *rightEllipse}, centre)) {
        target.isCircle = true;
        target.circle = fit->circle;
        target.covariance = fit->covariance;
        target.rms = fit->rms;
    }
    target.status = statusOf(target);
    return target;
}

}  // namespace zelm::measure
