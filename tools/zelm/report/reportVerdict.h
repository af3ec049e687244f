// What a calibration is worth, in a sentence, and what to do next.
#ifndef ZELM_TOOL_REPORT_VERDICT_H
#define ZELM_TOOL_REPORT_VERDICT_H

#include <string>
#include <vector>

#include "calibrationSummary.h"

namespace zelm::tool {

struct ReportVerdict {
    std::string kind;  // "good", "doubtful", "refused" or "unknown": also the name of its colours
    std::string word;
    std::string sentence;
    std::vector<std::string> next;
};

ReportVerdict reportVerdict(const Calibration& calibration);

}  // namespace zelm::tool

#endif
