#include "targetMeasurer.h"

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

TargetMeasurer::TargetMeasurer(const Rig& rig, const DenseImage& left, const DenseImage& right, DotPolarity dotPolarity)
    : triangulate(rig),
      cameras{TargetCamera(rig.left), TargetCamera(rig.right)},
      leftImage(left),
      rightImage(right),
      polarity(dotPolarity) {}

std::optional<CircleFit> TargetMeasurer::bestCircle(const std::array<Ellipse2d, 2>& ellipses, Point2d left,
                                                    Point2d right, const Vector3& centre) const {
    const auto leftOutline = seenOutline(leftImage, left, polarity);
    const auto rightOutline = seenOutline(rightImage, right, polarity);
    if (!leftOutline || !rightOutline) {
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

Target TargetMeasurer::operator()(Point2d left, Point2d right) const {
    Target target;
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
    target.status = statusOf(point.status);
    if (target.status != TargetStatus::pointAlone) {
        return target;
    }
    if (const auto fit = bestCircle({*leftEllipse, *rightEllipse}, left, right, centre)) {
        target.status = TargetStatus::ok;
        target.circle = fit->circle;
        target.covariance = fit->covariance;
        target.rms = fit->rms;
    }
    return target;
}

}  // namespace zelm::measure
