// The drawings of the report, as inline SVG.
#ifndef ZELM_TOOL_REPORT_DRAWINGS_H
#define ZELM_TOOL_REPORT_DRAWINGS_H

#include <string>

#include "calibrationSummary.h"

namespace zelm::tool {

// Bars of the RMS reprojection error of every view, left and right side by side.
std::string viewBars(const Calibration& calibration);

// Every dot of every view where it stands in the image, with its error as a magnified line.
std::string residualField(const RigCamera& camera, const CameraFigures& figures);

// The errors of all dots about a common origin.
std::string residualScatter(const CameraFigures& figures);

}  // namespace zelm::tool

#endif
