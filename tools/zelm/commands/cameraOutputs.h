// The result of the calibration of one camera, taken from its adjustment and given to the user.
#ifndef ZELM_TOOL_CAMERA_OUTPUTS_H
#define ZELM_TOOL_CAMERA_OUTPUTS_H

#include <filesystem>
#include <string>

#include "adjustOutcome.h"
#include "cameraSummary.h"
#include "outputFiles.h"

namespace zelm::tool {

// The camera of that side, as the only one. `culprit`: the file that failures name.
CameraResult cameraResult(const AdjustmentPtr& adjustment, char side, AdjustReport report, const std::string& culprit);

// Writes camera.json and report.html with what else is in `outputs`, and says what came out. The result has its views
// and what it was made from. Throws Failure for one that is
// not to be trusted, unless it is wanted all the same.
void giveCameraResult(CameraResult& result, const std::string& source, const std::filesystem::path& folder,
                      bool isForced, const Console& console, OutputFiles& outputs);

}  // namespace zelm::tool

#endif
