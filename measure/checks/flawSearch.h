// Which of the flaws that an adjustment may have it has: the clearest first, each next one with those before among the
// unknowns, so that one does not pass for another.
#ifndef ZELM_MEASURE_FLAW_SEARCH_H
#define ZELM_MEASURE_FLAW_SEARCH_H

#include <vector>

#include "adjustmentChecks.h"
#include "scoreTest.h"

namespace zelm::measure {

constexpr double kFalseAlarms = 0.01;  // of all checks of an adjustment together
constexpr double kChecks = 8.0;        // that share them

struct Flaw {
    explicit Flaw(CheckKind k) : kind(k) {}

    CheckKind kind;
    int side = -1;
    LensGroup group = kRadial;
    Candidate candidate;
    double tries = 1.0;        // of flaws that one check stands for
    bool isEstimated = false;  // among the adjustment's own parameters
    bool isFound = false;
    ScoreResult result;

    // Of chance alone in any check.
    double p() const;
};

// All flaws, with their tests.
std::vector<Flaw> searchFlaws(const CheckEquations& equations, const std::vector<std::vector<double>>& free,
                              const AdjustState& state, const AdjustOptions& options);

}  // namespace zelm::measure

#endif
