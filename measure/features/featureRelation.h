// Distances and angles between shapes, with their derivatives.
#ifndef ZELM_MEASURE_FEATURE_RELATION_H
#define ZELM_MEASURE_FEATURE_RELATION_H

#include <Eigen/Core>

#include "featureShape.h"

namespace zelm::measure {

// ZelmMeasureRelationKind of the interface.
enum class RelationKind { distance = 1, angle };

struct Relation {
    double value = 0.0;
    Eigen::Matrix<double, 1, kShapeNumbers> byFirst = Eigen::Matrix<double, 1, kShapeNumbers>::Zero();
    Eigen::Matrix<double, 1, kShapeNumbers> bySecond = Eigen::Matrix<double, 1, kShapeNumbers>::Zero();
};

// The angle of shapes that have directions.
Relation relationOf(RelationKind kind, const Shape& first, const Shape& second);

}  // namespace zelm::measure

#endif
