#include "featureRelation.h"

#include <Eigen/Geometry>
#include <cmath>
#include <numbers>
#include <utility>

namespace zelm::measure {
namespace {

constexpr double kParallel = std::numbers::pi / 180.0;  // radians, below which two directions are one

enum class Role { point, line, plane };

// What a shape is to a distance.
Role distanceRole(const Shape& shape) {
    switch (shape.kind) {
        case FeatureKind::line:
        case FeatureKind::cylinder:
            return Role::line;
        case FeatureKind::plane:
            return Role::plane;
        default:
            return Role::point;
    }
}

// Angle between two lines, 0 to pi / 2, from sine and cosine: exact near both ends.
double angleOf(const Eigen::Vector3d& a, const Eigen::Vector3d& b) {
    return std::atan2(a.cross(b).norm(), std::fabs(a.dot(b)));
}

Relation turnedRound(Relation relation) {
    std::swap(relation.byFirst, relation.bySecond);
    return relation;
}

Relation pointToPoint(const Shape& a, const Shape& b) {
    Relation r;
    const Eigen::Vector3d d = b.location - a.location;
    r.value = d.norm();
    if (r.value > 0.0) {
        r.bySecond.head<3>() = (d / r.value).transpose();
        r.byFirst.head<3>() = -r.bySecond.head<3>();
    }
    return r;
}

// |n . (x - c)| of a plane and any other's location.
Relation planeToLocation(const Shape& plane, const Shape& other) {
    Relation r;
    const Eigen::Vector3d d = other.location - plane.location;
    const double height = plane.direction.dot(d);
    const double sign = height < 0.0 ? -1.0 : 1.0;
    r.value = std::fabs(height);
    r.bySecond.head<3>() = sign * plane.direction.transpose();
    r.byFirst.head<3>() = -r.bySecond.head<3>();
    // The normal stays of unit length: what changes it lies across it.
    r.byFirst.segment<3>(3) = sign * (d - height * plane.direction).transpose();
    return r;
}

Relation lineToLocation(const Shape& line, const Shape& other) {
    Relation r;
    const Eigen::Vector3d d = other.location - line.location;
    const double along = line.direction.dot(d);
    const Eigen::Vector3d across = d - along * line.direction;
    r.value = across.norm();
    if (r.value > 0.0) {
        const Eigen::Vector3d e = across / r.value;
        r.bySecond.head<3>() = e.transpose();
        r.byFirst.head<3>() = -e.transpose();
        r.byFirst.segment<3>(3) = -along * e.transpose();
    }
    return r;
}

// |(b - a) . (u x v)| / |u x v| of two lines that are not parallel.
Relation lineToLine(const Shape& a, const Shape& b) {
    const Eigen::Vector3d cross = a.direction.cross(b.direction);
    const double sine = cross.norm();
    if (sine < std::sin(kParallel)) {
        return lineToLocation(a, b);
    }
    Relation r;
    const Eigen::Vector3d n = cross / sine;
    const Eigen::Vector3d d = b.location - a.location;
    const double height = n.dot(d);
    const double sign = height < 0.0 ? -1.0 : 1.0;
    r.value = std::fabs(height);
    r.bySecond.head<3>() = sign * n.transpose();
    r.byFirst.head<3>() = -r.bySecond.head<3>();
    // d(n . d) = (d - height n) / sine . d(u x v), and w . (du x v) = (v x w) . du.
    const Eigen::Vector3d w = sign * (d - height * n) / sine;
    r.byFirst.segment<3>(3) = b.direction.cross(w).transpose();
    r.bySecond.segment<3>(3) = w.cross(a.direction).transpose();
    return r;
}

Relation distanceBetween(const Shape& a, const Shape& b) {
    const Role first = distanceRole(a);
    const Role second = distanceRole(b);
    if (first == Role::plane) {
        return planeToLocation(a, b);
    }
    if (second == Role::plane) {
        return turnedRound(planeToLocation(b, a));
    }
    if (first == Role::line && second == Role::line) {
        return lineToLine(a, b);
    }
    if (first == Role::line) {
        return lineToLocation(a, b);
    }
    return second == Role::line ? turnedRound(lineToLocation(b, a)) : pointToPoint(a, b);
}

bool isPlane(const Shape& shape) {
    return shape.kind == FeatureKind::plane || shape.kind == FeatureKind::circle;
}

Relation angleBetween(const Shape& a, const Shape& b) {
    Relation r;
    const double angle = angleOf(a.direction, b.direction);
    const double sign = a.direction.dot(b.direction) < 0.0 ? -1.0 : 1.0;
    // Along what each direction turns away from the other.
    const auto away = [](const Eigen::Vector3d& from, const Eigen::Vector3d& other) {
        const Eigen::Vector3d across = other - other.dot(from) * from;
        const double length = across.norm();
        return length > 0.0 ? Eigen::RowVector3d(-across.transpose() / length) : Eigen::RowVector3d::Zero();
    };
    r.byFirst.segment<3>(3) = away(a.direction, sign * b.direction);
    r.bySecond.segment<3>(3) = away(b.direction, sign * a.direction);
    r.value = angle;
    if (isPlane(a) != isPlane(b)) {
        r.value = 0.5 * std::numbers::pi - angle;
        r.byFirst = -r.byFirst;
        r.bySecond = -r.bySecond;
    }
    return r;
}

}  // namespace

Relation relationOf(RelationKind kind, const Shape& first, const Shape& second) {
    return kind == RelationKind::distance ? distanceBetween(first, second) : angleBetween(first, second);
}

}  // namespace zelm::measure
