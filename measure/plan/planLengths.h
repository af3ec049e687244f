// How well the lengths of a volume are known, by what is known of the cameras.
#ifndef ZELM_MEASURE_PLAN_LENGTHS_H
#define ZELM_MEASURE_PLAN_LENGTHS_H

#include <Eigen/Core>
#include <optional>

#include "planInformation.h"

namespace zelm::measure {

// A box in the frame of the pair.
struct PlanVolume {
    Vector3 centre{};
    Vector3 extent{};

    // Coordinates from -1 to 1 within the box.
    Vector3 at(double x, double y, double z) const {
        return {centre[0] + 0.5 * extent[0] * x, centre[1] + 0.5 * extent[1] * y, centre[2] + 0.5 * extent[2] * z};
    }
};

// Half widths of intervals that hold 95 % of the errors, plate units.
struct LengthScore {
    double worst = 0.0;
    double rms = 0.0;
};

// Lengths along the box's edges and space diagonals, all over it.
class TestLengths {
public:
    // `length` 0: 30 % of the diagonal. Throws Fault where the volume holds no such length that both cameras see.
    TestLengths(const PlanPair& pair, const PlanVolume& volume, const PlanBasis& basis, double length,
                double pointNoise);

    // By the information about the parameters, which is positive definite and has a diagonal greater than 0 where
    // parameters are held. Nothing where it is not.
    std::optional<LengthScore> score(const PlanMatrix& information) const;
    // The rms alone, an eighth of the work.
    std::optional<double> rms(const PlanMatrix& information) const;
    // With a perfect calibration.
    LengthScore imageScore() const;

    int count() const { return static_cast<int>(imageVariance.size()); }
    double length() const { return each; }
    double seen() const { return share; }
    // The derivatives of length i, in the units of the basis.
    PlanVector gradient(int i) const { return gradients.col(i); }
    double imageVarianceOf(int i) const { return imageVariance[i]; }

private:
    double each = 0.0;
    double share = 0.0;  // of the volume that both cameras see
    Eigen::Matrix<double, kPlanParameters, Eigen::Dynamic> gradients;
    Eigen::VectorXd imageVariance;
    PlanMatrix root;  // root root' is the mean of the gradients' squares
};

}  // namespace zelm::measure

#endif
