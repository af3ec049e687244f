// What `zelm calibrate` does with other things than images of a pair.
#ifndef ZELM_TOOL_CALIBRATE_MODES_H
#define ZELM_TOOL_CALIBRATE_MODES_H

#include <string>
#include <vector>

#include "adjustCall.h"
#include "console.h"
#include "plateOptions.h"

namespace zelm::tool {

// Points of a target, by one camera or two.
struct PointCalibration {
    std::string file;
    std::string leftSize;  // WIDTHxHEIGHT, pixels
    std::string rightSize;
    std::string unit = "mm";
    std::string folder;
    int leftModel = 0;
    int rightModel = 0;
    bool strict = false;
    bool force = false;
    AdjustSettings adjust;
};
void calibratePoints(const PointCalibration& options, const Console& console);

// Images of a plate by one camera alone.
struct CameraCalibration {
    PlateOptions plate;
    std::vector<std::string> images;
    std::string folder;
    int model = 0;
    std::vector<int> region;
    bool overlays = false;
    bool strict = false;
    bool force = false;
    AdjustSettings adjust;
};
void calibrateCamera(const CameraCalibration& options, const Console& console);

}  // namespace zelm::tool

#endif
