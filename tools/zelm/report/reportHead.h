// What pages of calibrations begin with.
#ifndef ZELM_TOOL_REPORT_HEAD_H
#define ZELM_TOOL_REPORT_HEAD_H

#include <string>

#include "calibrationSummary.h"
#include "reportVerdict.h"

namespace zelm::tool {

std::string verdictHtml(const ReportVerdict& verdict);

// What speaks against the calibration, and views that were skipped; empty where there is nothing.
std::string warningsHtml(const Calibration& calibration);

// A figure with its name, for a list of class "tiles".
std::string tile(const std::string& value, const std::string& name);

// What lengths on the plate are worth, which view is the world frame, and what is known of the plate.
std::string notesHtml(const Calibration& calibration);

}  // namespace zelm::tool

#endif
