// What one view tells of the parameters that all views share.
#ifndef ZELM_MEASURE_PLAN_INFORMATION_H
#define ZELM_MEASURE_PLAN_INFORMATION_H

#include <Eigen/Core>
#include <array>
#include <string>

#include "adjustCovariance.h"
#include "planPlate.h"

namespace zelm::measure {

// Both cameras and their relative pose, in the order of SharedParameter with the left camera as base.
inline constexpr int kPlanParameters = static_cast<int>(kSharedFactors);
inline constexpr int kPlanRight = static_cast<int>(kSharedOther);
inline constexpr int kPlanRelative = static_cast<int>(kSharedRelative);
using PlanMatrix = Eigen::Matrix<double, kPlanParameters, kPlanParameters>;
using PlanVector = Eigen::Matrix<double, kPlanParameters, 1>;

// Which combinations of the parameters an adjustment estimates, in units that each move the image by about a pixel.
class PlanBasis {
public:
    PlanBasis(const PlanPair& pair, double distance, bool holdSkew, bool squarePixels);

    // Of normal equations and of a function's derivatives by the shared parameters. What is held has a diagonal of 0
    // and a derivative of 0.
    PlanMatrix matrix(const PlanMatrix& shared) const { return basis.transpose() * shared * basis; }
    PlanVector gradient(const PlanVector& shared) const { return basis.transpose() * shared; }
    // Back to the shared parameters.
    PlanMatrix covariance(const PlanMatrix& scaled) const { return basis * scaled * basis.transpose(); }
    // 1 for what is held, else 0.
    const PlanVector& held() const { return isHeld; }
    // In words, the parameter that a direction is mostly of.
    std::string nameOf(const PlanVector& direction) const;

private:
    void hold(int parameter);

    PlanMatrix basis = PlanMatrix::Zero();
    PlanVector isHeld = PlanVector::Zero();
};

// In the units of a basis, weighted with the noise.
struct ViewInformation {
    PlanMatrix reduced = PlanMatrix::Zero();  // the view's own pose is eliminated
    PlanVector all = PlanVector::Zero();      // the diagonal if the pose were known
};

// `noise`: standard deviation of a dot's coordinate, pixels.
ViewInformation informationOf(const PlanPair& pair, const PlanPlate& plate, const PlanBasis& basis,
                              const MotionParameters& pose, double noise);

}  // namespace zelm::measure

#endif
