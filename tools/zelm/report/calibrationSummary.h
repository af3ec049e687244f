// What a calibration is told as: the text for people and the JSON for machines.
#ifndef ZELM_TOOL_CALIBRATION_SUMMARY_H
#define ZELM_TOOL_CALIBRATION_SUMMARY_H

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "adjustReport.h"
#include "lengthForecast.h"
#include "pairReading.h"
#include "rigFigures.h"
#include "rigFile.h"
#include "verdict.h"
#include "viewQuality.h"

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
    Verdict verdict{};                       // whether it is to be trusted, and what speaks against it
    ReferenceView reference{};
    std::vector<ViewSharpness> sharpness{};    // of the views; those that were completed later have none
    PlateLengths lengths{};                    // between the dots, measured with the rig
    std::string pointFile{};                   // of a target's points that stand for images of a plate; or empty
    std::optional<LengthForecast> forecast{};  // none where its covariance is not known
};

// Of a view and a camera, the name of its image file; empty where there is none.
std::string imageName(const std::filesystem::path& path);

// What speaks against the calibration, a text each.
nlohmann::ordered_json warningsJson(const Calibration& calibration);

// The plate as JSON.
nlohmann::ordered_json plateJson(const Plate& plate);

// Of an image that is blurred alike in all directions "0.62", else its largest and smallest blur, "4.11/0.62"; "-" for
// none.
std::string blurText(const Calibration& calibration, std::size_t view, std::size_t side);

// RMS error of a view's lengths on the plate; "-" for none.
std::string lengthText(const Calibration& calibration, std::size_t view);

// What lengths between the dots of the plate are worth, and which view's plate is the world frame; empty lines are
// left out.
std::vector<std::string> qualityLines(const Calibration& calibration);

// What is known of the plate beside its lengths, a line each: who made it, its temperature, measured positions.
std::string plateText(const Plate& plate);

std::string summaryText(const Calibration& calibration);
nlohmann::ordered_json summaryJson(const Calibration& calibration);

}  // namespace zelm::tool

#endif
