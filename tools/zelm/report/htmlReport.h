// The report of a calibration: one HTML page that needs nothing else.
#ifndef ZELM_TOOL_HTML_REPORT_H
#define ZELM_TOOL_HTML_REPORT_H

#include <string>

#include "calibrationSummary.h"
#include "console.h"
#include "provenance.h"

namespace zelm::tool {

// The page: the verdict first, then warnings, figures, the rig in 3-D, drawings, tables, the images of all views with
// their dots, and where it all comes from. Pictures that are no longer kept are read again.
std::string htmlReport(const Calibration& calibration, const Provenance& provenance, const Console& console);

}  // namespace zelm::tool

#endif
