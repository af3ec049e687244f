#include "featureShape.h"

#include <Eigen/Geometry>
#include <cmath>

namespace zelm::measure {

CrossAxes::CrossAxes(const Eigen::Vector3d& direction) {
    Eigen::Index least = 0;
    direction.cwiseAbs().minCoeff(&least);
    first = direction.cross(Eigen::Vector3d::Unit(least)).normalized();
    second = direction.cross(first);
}

Eigen::Index Shape::parameters() const {
    constexpr Eigen::Index kCounts[kFeatureKinds] = {3, 4, 3, 6, 4, 5};
    return kCounts[static_cast<std::size_t>(kind)];
}

std::size_t Shape::minPoints() const {
    constexpr std::size_t kCounts[kFeatureKinds] = {1, 2, 3, 3, 4, 5};
    return kCounts[static_cast<std::size_t>(kind)];
}

Eigen::Matrix<double, kShapeNumbers, Eigen::Dynamic> Shape::byParameters() const {
    Eigen::Matrix<double, kShapeNumbers, Eigen::Dynamic> D(kShapeNumbers, parameters());
    D.setZero();
    const auto place = [&](Eigen::Index column, const Eigen::Vector3d& along) { D.block<3, 1>(0, column) = along; };
    const auto tilts = [&](Eigen::Index column, const CrossAxes& axes) {
        D.block<3, 1>(3, column) = axes.first;
        D.block<3, 1>(3, column + 1) = axes.second;
    };
    if (kind == FeatureKind::point || kind == FeatureKind::sphere) {
        D.topLeftCorner<3, 3>().setIdentity();
    } else {
        const CrossAxes axes(direction);
        Eigen::Index next = 0;
        if (kind != FeatureKind::plane) {
            place(next++, axes.first);
            place(next++, axes.second);
        }
        if (kind == FeatureKind::plane || kind == FeatureKind::circle) {
            place(next++, direction);
        }
        tilts(next, axes);
    }
    if (hasRadius()) {
        D(6, parameters() - 1) = 1.0;
    }
    return D;
}

Shape Shape::moved(const ShapeParameters& by) const {
    const Eigen::Matrix<double, kShapeNumbers, 1> change = byParameters() * by;
    Shape result = *this;
    result.location += change.head<3>();
    if (hasDirection()) {
        result.direction = (direction + change.segment<3>(3)).normalized();
    }
    result.radius += change[6];
    return result;
}

namespace {

void ofPoint(const Eigen::Vector3d& p, ShapeDistance& d) {
    d.rows = p;
    d.byParameters = -Eigen::Matrix3d::Identity();
    d.byPoint = Eigen::Matrix3d::Identity();
}

void ofPlane(const Shape& s, const Eigen::Vector3d& p, ShapeDistance& d) {
    const CrossAxes axes(s.direction);
    d.rows << s.direction.dot(p);
    d.byParameters << -1.0, axes.first.dot(p), axes.second.dot(p);
    d.byPoint = s.direction.transpose();
}

void ofSphere(const Shape& s, const Eigen::Vector3d& p, ShapeDistance& d) {
    const double length = p.norm();
    const Eigen::Vector3d out = length > 0.0 ? Eigen::Vector3d(p / length) : Eigen::Vector3d::UnitX();
    d.rows << length - s.radius;
    d.byParameters << -out.transpose(), -1.0;
    d.byPoint = out.transpose();
}

// When the direction tilts towards an axis, that axis tilts back: a point's coordinate along it loses what the point
// has along the direction.
void ofLine(const Shape& s, const Eigen::Vector3d& p, ShapeDistance& d) {
    const CrossAxes axes(s.direction);
    const double along = s.direction.dot(p);
    d.rows << axes.first.dot(p), axes.second.dot(p);
    d.byParameters << -1.0, 0.0, -along, 0.0, 0.0, -1.0, 0.0, -along;
    d.byPoint << axes.first.transpose(), axes.second.transpose();
}

void ofCylinder(const Shape& s, const Eigen::Vector3d& p, ShapeDistance& d) {
    const CrossAxes axes(s.direction);
    const double along = s.direction.dot(p);
    const Eigen::Vector2d q(axes.first.dot(p), axes.second.dot(p));
    const double length = q.norm();
    const Eigen::Vector2d out = length > 0.0 ? Eigen::Vector2d(q / length) : Eigen::Vector2d::UnitX();
    d.rows << length - s.radius;
    d.byParameters << -out[0], -out[1], -along * out[0], -along * out[1], -1.0;
    d.byPoint = (out[0] * axes.first + out[1] * axes.second).transpose();
}

void ofCircle(const Shape& s, const Eigen::Vector3d& p, ShapeDistance& d) {
    const CrossAxes axes(s.direction);
    const double above = s.direction.dot(p);
    const Eigen::Vector2d q(axes.first.dot(p), axes.second.dot(p));
    const double length = q.norm();
    const Eigen::Vector2d out = length > 0.0 ? Eigen::Vector2d(q / length) : Eigen::Vector2d::UnitX();
    d.rows << length - s.radius, above;
    d.byParameters << -out[0], -out[1], 0.0, -above * out[0], -above * out[1], -1.0,  //
        0.0, 0.0, -1.0, q[0], q[1], 0.0;
    d.byPoint << (out[0] * axes.first + out[1] * axes.second).transpose(), s.direction.transpose();
}

}  // namespace

ShapeDistance distanceOf(const Shape& shape, const Eigen::Vector3d& point) {
    ShapeDistance d;
    d.rows.resize(shape.rows());
    d.byParameters.resize(shape.rows(), shape.parameters());
    d.byPoint.resize(shape.rows(), 3);
    const Eigen::Vector3d p = point - shape.location;
    switch (shape.kind) {
        case FeatureKind::point:
            ofPoint(p, d);
            break;
        case FeatureKind::line:
            ofLine(shape, p, d);
            break;
        case FeatureKind::plane:
            ofPlane(shape, p, d);
            break;
        case FeatureKind::circle:
            ofCircle(shape, p, d);
            break;
        case FeatureKind::sphere:
            ofSphere(shape, p, d);
            break;
        case FeatureKind::cylinder:
            ofCylinder(shape, p, d);
            break;
    }
    return d;
}

}  // namespace zelm::measure
