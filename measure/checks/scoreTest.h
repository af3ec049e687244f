// Tests of parameters that an adjustment does not have, without another adjustment: the first step that it would take
// with them tells their size, and how far it lowers the squares of the residuals tells whether that is chance. This is
// the score test (Rao, 1948), exact to first order.
#ifndef ZELM_MEASURE_SCORE_TEST_H
#define ZELM_MEASURE_SCORE_TEST_H

#include <Eigen/Core>
#include <cstddef>
#include <vector>

#include "checkEquations.h"

namespace zelm::measure {

// Parameters that are tested together: directions of what all views share, or the motion of one view.
struct Candidate {
    std::vector<std::size_t> shared;  // WideParameter
    bool isMotion = false;
    std::size_t view = 0;
    std::vector<double> present;  // their values in the adjustment; empty: all 0
};

struct ScoreResult {
    bool isDone = false;
    double count = 0.0;          // parameters that the observations tell apart
    double p = 1.0;              // of chance alone
    double evidence = 0.0;       // for their being there (Schwarz, 1978)
    double statistic = 0.0;      // sum of squares over the variance of unit weight
    Eigen::VectorXd value;       // of the parameters
    Eigen::MatrixXd covariance;  //
};

// Whether the odd and the even views that take part give the same shared parameters (Chow, 1960).
struct HalvesResult {
    bool isDone = false;
    double p = 1.0;
    Eigen::VectorXd difference;  // kWideParameters
    Eigen::MatrixXd covariance;  // of it
};

// Normal equations without the poses, with some candidates found before among the unknowns.
class ScoreTest {
public:
    // `free`: of freeOfShared().
    ScoreTest(const CheckEquations& equations, const std::vector<std::vector<double>>& free,
              const std::vector<Candidate>& found);

    bool isDetermined() const { return determined; }
    ScoreResult test(const Candidate& candidate) const;
    HalvesResult compareHalves() const;
    // How the unknowns among what all share make up for a candidate of that value that is not among them.
    Eigen::VectorXd absorbed(const Candidate& candidate, const Eigen::VectorXd& value) const;
    // Of the adjustment's own shared parameters, kWideParameters rows and columns.
    Eigen::MatrixXd sharedCovariance() const;
    double unitVariance() const { return squares / freedom; }

private:
    struct ReducedView {
        Eigen::MatrixXd normal;  // the motion and what all share, pose eliminated
        Eigen::VectorXd right;
        double squares = 0.0;     // by which the pose lowers them
        double parameters = 0.0;  //
    };
    ReducedView reduced(const ViewEquations& view) const;
    bool isFreed(std::size_t view) const;
    // The equations of a candidate: its own, those that it has in common with what all share, right side and diagonal.
    struct Block {
        Eigen::MatrixXd own;
        Eigen::MatrixXd mixed;
        Eigen::VectorXd right;
        Eigen::VectorXd scale;
    };
    Block blockOf(const Candidate& candidate) const;

    const CheckEquations& equations;
    std::vector<Candidate> found;
    std::vector<ReducedView> views;
    Eigen::MatrixXd normal;   // of what all share
    Eigen::VectorXd right;    //
    Eigen::VectorXd scale;    // diagonal before the poses were eliminated
    Eigen::MatrixXd free;     // columns: directions that are unknowns
    Eigen::MatrixXd inverse;  // of the normal equations along them
    Eigen::VectorXd rest;     // of `right` along them
    double squares = 0.0;
    double freedom = 0.0;
    bool determined = false;
};

// Pseudo-inverse of a symmetric matrix, and its rank, given what its diagonal would be if all else were known.
struct ScaledInverse {
    Eigen::MatrixXd inverse;
    Index rank = 0;
};
ScaledInverse scaledInverse(const Eigen::MatrixXd& matrix, const Eigen::VectorXd& diagonal);

}  // namespace zelm::measure

#endif
