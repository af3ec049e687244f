// The normal equations of an adjustment at its solution, widened by what its model lacks.
#ifndef ZELM_MEASURE_CHECK_EQUATIONS_H
#define ZELM_MEASURE_CHECK_EQUATIONS_H

#include <Eigen/Core>
#include <array>
#include <cstddef>
#include <vector>

#include "adjustCovariance.h"
#include "lensTerms.h"

namespace zelm::measure {

// Places of what all views share: an adjustment's own parameters, then what may be missing.
enum WideParameter : std::size_t {
    kWideLens = kSharedParameters,  // terms of the left lens, then of the right one
    kWideStretch = kWideLens + kSides * kLensTerms,
    kWideParameters
};

// Places of what belongs to one view: its pose, and a motion of the other camera that it alone has.
enum ViewParameter : std::size_t { kViewPose = 0, kViewMotion = 6, kViewParameters = 12 };

using Index = Eigen::Index;

// Rows and columns: what belongs to the view, then what all share. Residuals are weighted, measured less predicted.
struct ViewEquations {
    Eigen::MatrixXd normal;
    Eigen::VectorXd right;
    std::size_t rows = 0;
    bool seesBoth = false;
    Vector3 middle{};  // of the view's dots, in the other camera's frame
};

// A dot that both cameras see, and what changes its place when it is triangulated. With one camera alone the rows of
// the other one are zeros, and its place is known across the line of sight.
struct CheckedPoint {
    Eigen::Vector3d place;                              // in the base camera's frame
    Eigen::Matrix<double, 4, 3> byPlace;                // pixels of both cameras
    Eigen::Matrix<double, 4, Eigen::Dynamic> byShared;  // likewise, kWideParameters columns
    std::array<double, 4> variances{};                  // pixels^2
    bool byOne = false;                                 // one camera alone
};

struct CheckEquations {
    std::vector<ViewEquations> views;
    std::vector<CheckedPoint> points;  // a sample of all views
    double squares = 0.0;
    std::size_t rows = 0;
    bool otherSeen = false;
    std::array<double, kSides> sideRows{};      // of each camera
    std::array<double, kSides> sideVariance{};  // of a coordinate, the sum of all, pixels^2
};

CheckEquations checkEquations(const AdjustState& state, const std::vector<AdjustView>& views,
                              const AdjustSummary& summary, bool isPair = true);

}  // namespace zelm::measure

#endif
