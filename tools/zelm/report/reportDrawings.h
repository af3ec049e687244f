// The drawings of the report, as inline SVG.
#ifndef ZELM_TOOL_REPORT_DRAWINGS_H
#define ZELM_TOOL_REPORT_DRAWINGS_H

#include <string>
#include <vector>

#include "calibrationSummary.h"
#include "viewPoses.h"

namespace zelm::tool {

// Bars of the RMS reprojection error of every view, left and right side by side.
std::string viewBars(const Calibration& calibration);

// Bars of the RMS distance of every view's dots from each other's epipolar lines; empty where there are none.
std::string epipolarBars(const Calibration& calibration);

// How much errors are magnified, one figure for both cameras, and how long a bar beside them is.
struct ErrorScale {
    double magnification = 1.0;  // of a camera's pixels
    double bar = 1.0;            // pixels of error
    double reach = 1.0;          // pixels of error that hold all of them
};
ErrorScale errorScale(const Calibration& calibration);

// Dots where they stand in the image, each with its error as a magnified line, and the scale bar. Of very many dots
// every n-th is drawn; `every` tells n.
std::string errorField(const RigCamera& camera, const CameraFigures& figures, const ErrorScale& scale,
                       const std::string& name);
std::size_t errorFieldStep(const CameraFigures& figures);

// The errors of all dots about a common origin.
std::string errorScatter(const CameraFigures& figures, const ErrorScale& scale, const std::string& name);

// Where the dots of all views lie in the image; cells without a dot are shaded.
std::string coverage(const RigCamera& camera, const CameraFigures& figures, const std::string& name);
// Share of the cells that hold dots.
double coveredShare(const RigCamera& camera, const CameraFigures& figures);

// Tilts of the plates against both cameras' lines of sight, about the middle.
std::string tiltPlot(const std::vector<ViewPose>& poses);

// Distances of the plates from both cameras, a column a view; empty for parallel cameras.
std::string distancePlot(const std::vector<ViewPose>& poses, const std::string& units);

}  // namespace zelm::tool

#endif
