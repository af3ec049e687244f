// What an adjustment changed, in words, as JSON and for the report.
#ifndef ZELM_TOOL_ADJUST_REPORT_H
#define ZELM_TOOL_ADJUST_REPORT_H

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "rigFile.h"

namespace zelm::tool {

// What became of the dots of one image.
struct AdjustedImage {
    int used = 0;
    int added = 0;         // that the reader had not found
    int outliers = 0;      // too far from where all others put them
    int notConfirmed = 0;  // whose pixels do not show them
};

struct AdjustReport {
    std::string refusal;  // why nothing was adjusted; empty: it was
    ZelmMeasureAdjustSummary summary{};
    bool ofPoints = false;                             // of a target, given by the user; not so: dots of a plate
    bool isPair = true;                                // not so: one camera alone, which stands for the left one
    Rig before;                                        // as the cameras were calibrated one by one
    std::vector<std::array<AdjustedImage, 2>> images;  // of each view, left and right
    std::vector<ZelmMeasureCheck> checks;              // what it tells against itself
    std::vector<std::string> leftOut;                  // of each view why it takes no part; empty: it does
};

// One row of what moved: a parameter, by how much, and its standard deviation.
struct MovedParameter {
    std::string name;  // with its unit
    std::string leftMoved, leftDeviation;
    std::string rightMoved, rightDeviation;
};

std::vector<MovedParameter> movedParameters(const AdjustReport& report, const Rig& rig, const std::string& units);
// Of the pair: "baseline 120.0089 +- 0.0017 mm, moved by +0.0131".
std::vector<std::string> movedPair(const AdjustReport& report, const Rig& rig, const std::string& units);
// Standard deviation of the baseline of a pair whose covariance is known, plate units.
double baselineDeviation(const Rig& rig);
// One line on how it came out, and one for each image or view with something to tell.
std::string adjustLine(const AdjustReport& report);
std::vector<std::string> adjustRemarks(const AdjustReport& report);

// The measuring library says "plate units" of lengths: this says what they are.
void nameUnits(std::vector<ZelmMeasureCheck>& checks, const std::string& units);

// "fine", "notable", "wrong" or "not done".
const char* verdictWord(std::int32_t verdict);
// What the self-checks found, a line each of those that are not fine, after a line on how many are.
std::vector<std::string> checkLines(const AdjustReport& report);

std::string adjustText(const AdjustReport& report, const Rig& rig, const std::string& units);
nlohmann::ordered_json adjustJson(const AdjustReport& report);

}  // namespace zelm::tool

#endif
