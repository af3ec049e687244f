// What an adjustment tells once it is solved, whatever it was opened from.
#ifndef ZELM_TOOL_ADJUST_OUTCOME_H
#define ZELM_TOOL_ADJUST_OUTCOME_H

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "adjustCall.h"
#include "dotPositions.h"

namespace zelm::tool {

struct CloseAdjustment {
    void operator()(ZelmMeasureAdjustment* adjustment) const { zelmMeasureAdjustClose(&adjustment); }
};
using AdjustmentPtr = std::unique_ptr<ZelmMeasureAdjustment, CloseAdjustment>;

// The settings as the measuring library takes them; `positions` must outlive the record.
ZelmMeasureAdjustOptions optionsOf(const AdjustSettings& settings, const DotPositions& positions);

// Throws Failure with the words of the adjustment, after the name of the file at fault.
void requireAdjusted(std::int32_t status, const AdjustmentPtr& adjustment, const std::string& culprit);

// Points that were adjusted, given or measured, of one image.
struct AdjustedPoints {
    explicit AdjustedPoints(ZelmMeasureAdjustment* adjustment, char side, std::int32_t view);

    std::size_t count = 0;
    std::vector<std::int32_t> grid;
    std::vector<double> pixels;
    std::vector<double> centres;    // what the pixels would be without the bias of ellipses
    std::vector<double> residuals;  // measured less predicted
    std::vector<std::int32_t> statuses;

    // What became of the points; `added` is known elsewhere.
    AdjustedImage counts(int added) const;
};

// Fills in the summary, the views left out, the images of both sides and the self-checks. `added`: a view each, of dots
// that the reader had missed; or empty.
void takeOutcome(const AdjustmentPtr& adjustment, const std::vector<std::array<int, 2>>& added,
                 const std::string& culprit, AdjustReport& report);

}  // namespace zelm::tool

#endif
