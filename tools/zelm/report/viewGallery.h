// The images of every view with what was found in them, for the report.
#ifndef ZELM_TOOL_VIEW_GALLERY_H
#define ZELM_TOOL_VIEW_GALLERY_H

#include <string>
#include <vector>

#include "calibrationSummary.h"
#include "console.h"
#include "viewPoses.h"

namespace zelm::tool {

// A section with an article for each view: both images, reduced, with their dots, markers, axes and errors as drawings
// over them. A script of the page shows one at a time; without it, and on paper, there are all.
std::string viewGallery(const Calibration& calibration, const std::vector<ViewPose>& poses, double magnification,
                        const Console& console);

}  // namespace zelm::tool

#endif
