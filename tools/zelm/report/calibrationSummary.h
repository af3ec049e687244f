// What a calibration is told as: the text for people and the JSON for machines.
#ifndef ZELM_TOOL_CALIBRATION_SUMMARY_H
#define ZELM_TOOL_CALIBRATION_SUMMARY_H

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "adjustReport.h"
#include "pairReading.h"
#include "rigFigures.h"
#include "rigFile.h"

namespace zelm::tool {

// A finished calibration with all that is told of it.
struct Calibration {
    Plate plate;
    std::vector<ViewFiles> views;
    std::vector<SkippedView> skipped;
    Rig rig;
    RigFigures figures;
    std::string block;                       // as saved
    std::string covariance;                  // as saved; empty where it is not known
    std::shared_ptr<PictureStore> pictures;  // of the views
    double leftTilt = 0.0;                   // of a parallel camera, of the plate of view 0 against it, radians
    double rightTilt = 0.0;                  //
    std::optional<AdjustReport> adjustment;  // none was asked for
    std::vector<std::string> doubts{};       // what speaks against it, a line each
};

// Of a view and a camera, the name of its image file; empty where there is none.
std::string imageName(const std::filesystem::path& path);

std::string summaryText(const Calibration& calibration);
nlohmann::ordered_json summaryJson(const Calibration& calibration);

}  // namespace zelm::tool

#endif
