// The measuring library asked to adjust a calibration.
#ifndef ZELM_TOOL_ADJUST_CALL_H
#define ZELM_TOOL_ADJUST_CALL_H

#include <optional>
#include <string>
#include <vector>

#include "adjustReport.h"
#include "commandLine.h"
#include "console.h"
#include "pairReading.h"
#include "rigFile.h"

namespace zelm::tool {

struct AdjustSettings {
    bool off = false;              // the calibration of the two cameras one by one, byte for byte
    std::string dots = "refined";  // or "reader"
    bool noSkew = false;
    bool squarePixels = false;
    bool dotDiameters = false;
    bool bow = false;
    std::optional<double> noise;  // pixels
    std::string positions;        // file of measured dot positions, or empty
};

// Adds --no-adjust and what belongs to the adjustment.
void addAdjustOptions(Subcommand& sub, AdjustSettings& settings);

struct Adjusted {
    LoadedRig rig;  // none when report.refusal says why
    AdjustReport report;
};

// Adjusts a calibrated rig with its dots. Views that only one camera could read join the reading when the other
// camera's dots can be completed.
Adjusted adjustRig(const LoadedRig& rig, PairReading& reading, const Plate& plate, const AdjustSettings& settings,
                   const Console& console);

}  // namespace zelm::tool

#endif
