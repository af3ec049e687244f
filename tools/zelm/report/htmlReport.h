// The report of a calibration: one HTML page that needs nothing else.
#ifndef ZELM_TOOL_HTML_REPORT_H
#define ZELM_TOOL_HTML_REPORT_H

#include <string>

#include "calibrationSummary.h"

namespace zelm::tool {

// The page: figures, tables, residuals of every view as drawings, and the dots found in the first view's images, which
// are read again for that.
std::string htmlReport(const Calibration& calibration);

// What pages of reports have in common: their style sheet, and text with nothing that HTML takes for its own.
const char* reportStyle();
std::string htmlText(const std::string& text);

}  // namespace zelm::tool

#endif
