#include "planPlate.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr double kMostDots = 170.0;    // of a field, before fewer stand for all
constexpr double kMaxFieldDots = 1e6;  // a field with more is a mistake in the units
constexpr double kEdgePixels = 3.0;    // around a dot, for the search of its edge
constexpr double kUsualShare = 0.5;    // of the field's dots, that an image has to show
constexpr double kLeastDots = 6.0;     // of an image that an adjustment takes

// Places along an axis: dots from -n to n, or fewer that stand for them, each in the middle of an equal share.
std::vector<double> placesAlong(double reach, double pitch, double share) {
    const double all = 2.0 * reach + 1.0;
    const double count = std::max(std::min(all, 5.0), std::ceil(all * share));
    std::vector<double> places;
    for (double i = 0.0; i < count; i += 1.0) {
        places.push_back(pitch * ((i + 0.5) / count - 0.5) * all);
    }
    return places;
}

Vector3 column(const Matrix3& m, std::size_t i) {
    return {m[i], m[3 + i], m[6 + i]};
}

// What of a polygon lies where value(p) >= 0 (Sutherland and Hodgman, 1974).
template <class Value>
std::vector<Point2d> clipped(const std::vector<Point2d>& polygon, Value value) {
    std::vector<Point2d> result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point2d& a = polygon[i];
        const Point2d& b = polygon[(i + 1) % polygon.size()];
        const double va = value(a);
        const double vb = value(b);
        if (va >= 0.0) {
            result.push_back(a);
        }
        if ((va >= 0.0) != (vb >= 0.0)) {
            const double share = va / (va - vb);
            result.push_back({a.x + share * (b.x - a.x), a.y + share * (b.y - a.y)});
        }
    }
    return result;
}

double areaOf(const std::vector<Point2d>& polygon) {
    double twice = 0.0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point2d& a = polygon[i];
        const Point2d& b = polygon[(i + 1) % polygon.size()];
        twice += a.x * b.y - a.y * b.x;
    }
    return 0.5 * std::fabs(twice);
}

}  // namespace

PlanPlate planPlate(const Pattern& p) {
    for (const double length : {p.d0, p.d1, p.d2, p.d3, p.d4, p.d5, p.d6, p.d7}) {
        if (!(length > 0.0) || !std::isfinite(length)) {
            refuse("the plate's lengths must be greater than 0");
        }
    }
    if (p.d2 >= std::min(p.d4, p.d5)) {
        refuse("the plate's dots are wider than their pitch");
    }
    const double reachX = std::floor(0.5 * p.d0 / p.d4 + 1e-9);
    const double reachY = std::floor(0.5 * p.d1 / p.d5 + 1e-9);
    const double all = (2.0 * reachX + 1.0) * (2.0 * reachY + 1.0);
    if (!(all <= kMaxFieldDots)) {
        refuse("the plate's field holds over a million dots: are all lengths in the same units?");
    }
    PlanPlate plate;
    const double share = std::min(1.0, std::sqrt(kMostDots / all));
    const std::vector<double> xs = placesAlong(reachX, p.d4, share);
    const std::vector<double> ys = placesAlong(reachY, p.d5, share);
    plate.dots.reserve(xs.size() * ys.size());
    for (const double y : ys) {
        for (const double x : xs) {
            plate.dots.push_back({x, y, 0.0});
        }
    }
    plate.weight = all / static_cast<double>(plate.dots.size());
    plate.radius = 0.5 * p.d2;
    plate.markers = {Vector3{0.0, 0.0, 0.0}, {p.d6, 0.0, 0.0}, {0.0, p.d7, 0.0}};
    plate.markerRadius = 0.5 * p.d3;
    plate.halfWidth = reachX * p.d4 + plate.radius;
    plate.halfHeight = reachY * p.d5 + plate.radius;
    plate.minDots = std::max(kLeastDots, p.minDots > 0 ? static_cast<double>(p.minDots) : kUsualShare * all);
    plate.minDotArea = std::max(0, p.minDotArea);
    if (plate.minDots > all) {
        refuse("the plate has fewer dots than an image has to show: lower minDots, or take a plate of more dots");
    }
    return plate;
}

Motion motionOf(const MotionParameters& m) {
    return {rotationOf({m[0], m[1], m[2]}), {m[3], m[4], m[5]}};
}

Vector3 moved(const Motion& motion, const Vector3& point) {
    const Vector3 turned = times(motion.R, point);
    return {turned[0] + motion.t[0], turned[1] + motion.t[1], turned[2] + motion.t[2]};
}

double marginOf(const PlanPair& pair, Side side, const Vector3& inLeft, double radius) {
    const double depth = pair.inCamera(side, inLeft)[2];
    return depth > 0.0 ? kEdgePixels + pair.cameras[side].focalLength() * radius / depth : kEdgePixels;
}

PlateSight sightOf(const PlanPair& pair, const PlanPlate& plate, const MotionParameters& pose) {
    const Motion motion = motionOf(pose);
    const Vector3 away = column(motion.R, 2);
    PlateSight sight;
    sight.markers = true;
    for (const Side side : {kLeft, kRight}) {
        for (const Vector3& place : plate.dots) {
            const Vector3 X = moved(motion, place);
            sight.dots[side] += pair.seen(side, X, marginOf(pair, side, X, plate.radius)) ? plate.weight : 0.0;
        }
        for (const Vector3& place : plate.markers) {
            const Vector3 X = moved(motion, place);
            sight.markers = sight.markers && pair.seen(side, X, marginOf(pair, side, X, plate.markerRadius));
        }
        const Vector3 centre = side == kLeft ? Vector3{} : pair.rightCentre();
        const Vector3 line{motion.t[0] - centre[0], motion.t[1] - centre[1], motion.t[2] - centre[2]};
        sight.tilts[side] = angleBetween(away, line);
        const double radius = pair.cameras[side].focalLength() * plate.radius / std::sqrt(dot(line, line));
        const double area = std::numbers::pi * radius * radius * std::cos(sight.tilts[side]);
        sight.dotArea = side == kLeft ? area : std::min(sight.dotArea, area);
    }
    return sight;
}

double fillOf(const PlanPair& pair, const PlanPlate& plate, const MotionParameters& pose, Side side) {
    const Motion motion = motionOf(pose);
    const PlanCamera& camera = pair.cameras[side];
    ProjectionCamera plain = camera.projection;
    plain.p[kK1] = plain.p[kK2] = 0.0;  // outside the image the lens model may fold
    std::vector<Point2d> corners;
    for (const auto& [x, y] : {std::pair(-1.0, -1.0), {1.0, -1.0}, {1.0, 1.0}, {-1.0, 1.0}}) {
        const Vector3 corner = pair.inCamera(side, moved(motion, {x * plate.halfWidth, y * plate.halfHeight, 0.0}));
        if (!(corner[2] > 0.0)) {
            return 0.0;
        }
        corners.push_back(pixelOf(plain, corner));
    }
    const double right = camera.width - 0.5;
    const double bottom = camera.height - 0.5;
    corners = clipped(corners, [](const Point2d& p) { return p.x + 0.5; });
    corners = clipped(corners, [](const Point2d& p) { return p.y + 0.5; });
    corners = clipped(corners, [right](const Point2d& p) { return right - p.x; });
    corners = clipped(corners, [bottom](const Point2d& p) { return bottom - p.y; });
    return areaOf(corners) / (static_cast<double>(camera.width) * camera.height);
}

}  // namespace zelm::measure
