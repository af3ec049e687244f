// Shapes in space, how far points are from them, and what moves that distance.
#ifndef ZELM_MEASURE_FEATURE_SHAPE_H
#define ZELM_MEASURE_FEATURE_SHAPE_H

#include <Eigen/Core>
#include <cstddef>

namespace zelm::measure {

// ZelmMeasureFeatureKind of the interface.
enum class FeatureKind { point, line, plane, circle, sphere, cylinder };

constexpr std::size_t kFeatureKinds = 6;
constexpr Eigen::Index kMostParameters = 6;
constexpr Eigen::Index kMostRows = 3;
constexpr Eigen::Index kShapeNumbers = 7;  // location, direction, radius

using ShapeParameters = Eigen::VectorXd;

struct Shape {
    FeatureKind kind = FeatureKind::point;
    Eigen::Vector3d location = Eigen::Vector3d::Zero();
    Eigen::Vector3d direction = Eigen::Vector3d::Zero();  // unit length, of those that have one
    double radius = 0.0;

    bool hasDirection() const { return kind != FeatureKind::point && kind != FeatureKind::sphere; }
    bool hasRadius() const { return kind >= FeatureKind::circle; }
    // Numbers that a point's distance is made of.
    Eigen::Index rows() const { return kind == FeatureKind::point ? 3 : isCurve() ? 2 : 1; }
    bool isCurve() const { return kind == FeatureKind::line || kind == FeatureKind::circle; }
    Eigen::Index parameters() const;
    // The fewest points that determine it.
    std::size_t minPoints() const;

    // Changed by small parameters: shifts along its own axes and tilts first, the radius last.
    Shape moved(const ShapeParameters& by) const;
    // Derivatives of location, direction and radius by these parameters.
    Eigen::Matrix<double, kShapeNumbers, Eigen::Dynamic> byParameters() const;
};

// The distance of one point: numbers whose squares it is made of, with derivatives.
struct ShapeDistance {
    Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostRows, 1> rows;
    Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostRows, kMostParameters> byParameters;
    Eigen::Matrix<double, Eigen::Dynamic, 3, 0, kMostRows, 3> byPoint;

    // Signed where there are two sides.
    double distance() const { return rows.size() == 1 ? rows[0] : rows.norm(); }
};

ShapeDistance distanceOf(const Shape& shape, const Eigen::Vector3d& point);

// Two directions that stand at right angles to `direction` and each other.
struct CrossAxes {
    explicit CrossAxes(const Eigen::Vector3d& direction);
    Eigen::Vector3d first;
    Eigen::Vector3d second;
};

}  // namespace zelm::measure

#endif
