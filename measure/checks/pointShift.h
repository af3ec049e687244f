// How far a flaw of a calibration moves the points that it measures against one another, beside how well it knows them.
#ifndef ZELM_MEASURE_POINT_SHIFT_H
#define ZELM_MEASURE_POINT_SHIFT_H

#include <Eigen/Core>
#include <vector>

#include "checkEquations.h"

namespace zelm::measure {

// Of the point that is moved furthest, measured by what is known of it.
struct PointShift {
    double shift = 0.0;  // plate units
    double limit = 0.0;  // 1.96 standard deviations in the point's least known direction; 0: there are no points
    Eigen::Matrix<double, 3, Eigen::Dynamic> byShared;  // of the point, kWideParameters columns
    bool matters() const { return shift > limit && limit > 0.0; }
};

class ShiftOfPoints {
public:
    // `covariance`: of the adjustment's shared parameters, kWideParameters rows and columns.
    ShiftOfPoints(const CheckEquations& equations, const Eigen::MatrixXd& covariance);

    // Of a change of the adjustment's shared parameters, in which places of lenses' terms stand for what these do to
    // the images.
    PointShift of(const Eigen::VectorXd& change) const;

private:
    Eigen::MatrixXd byShared;    // three rows a point, what a motion of all points together does taken out
    std::vector<double> limits;  // a point each
};

}  // namespace zelm::measure

#endif
