// The tables of the report.
#ifndef ZELM_TOOL_REPORT_TABLES_H
#define ZELM_TOOL_REPORT_TABLES_H

#include <string>
#include <vector>

#include "calibrationSummary.h"
#include "viewPoses.h"

namespace zelm::tool {

// Sections of the page: both cameras with standard deviations and how they stand to each other, the views, and what the
// adjustment changed with its self-checks.
std::string camerasHtml(const Calibration& calibration);
std::string viewTableHtml(const Calibration& calibration, const std::vector<ViewPose>& poses);
std::string adjustmentHtml(const Calibration& calibration);

// The verdicts of the self-checks, under a heading.
std::string checksTable(const AdjustReport& report);

// A table that scrolls where it is too wide; its head and "<tbody>" follow.
std::string tableStart(const char* name);
const char* tableEnd();

}  // namespace zelm::tool

#endif
