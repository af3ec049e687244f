// What an adjusted calibration tells against itself.
#ifndef ZELM_MEASURE_ADJUSTMENT_CHECKS_H
#define ZELM_MEASURE_ADJUSTMENT_CHECKS_H

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "adjustProblem.h"
#include "adjuster.h"
#include "lensTerms.h"

namespace zelm::measure {

// ZelmMeasureCheckKind and ZelmMeasureCheckVerdict of the interface.
enum class CheckKind { halves = 1, lens, bow, moved, pitch, dotDiameter, markerDiameter };
enum class CheckVerdict { fine, notable, wrong, undone };

struct Check {
    CheckKind kind = CheckKind::halves;
    CheckVerdict verdict = CheckVerdict::undone;
    int view = -1;
    int side = -1;                  // of Side
    LensGroup group = kRadial;      // of a lens
    bool isEstimated = false;       // the adjustment takes it into account
    double p = 1.0;                 // of chance alone in any check
    double value = 0.0;             // units of ZelmMeasureCheckKind
    double deviation = 0.0;         //
    double limit = 0.0;             // of the value
    double turnDegrees = 0.0;       //
    double turnDeviation = 0.0;     //
    double shift = 0.0;             // plate units
    double coefficient = 0.0;       // k3 of a lens
    double coefficientSigma = 0.0;  //
    std::string leftOut;            // why the view takes no part
    bool isPair = true;             // not so: one camera alone
};

struct CheckedAdjustment {
    const AdjustState* state = nullptr;
    const std::vector<AdjustView>* views = nullptr;
    const AdjustOptions* options = nullptr;  // of what was estimated
    const AdjustSummary* summary = nullptr;
    const std::array<std::vector<double>, kDotKinds>* scales = nullptr;  // measured diameters over the plate's
    bool isPair = true;                                                  // not so: one camera alone
    bool hasPlate = true;                                                // not so: points of another target
};

std::vector<Check> checksOf(const CheckedAdjustment& adjusted);

// What the score tests tell of the adjustment as it is, to first order.
std::vector<Check> firstOrderChecks(const CheckedAdjustment& adjusted);

}  // namespace zelm::measure

#endif
