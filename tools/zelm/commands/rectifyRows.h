// zelm rectify --rows: a pair of images with every point in one row.
#ifndef ZELM_TOOL_RECTIFY_ROWS_H
#define ZELM_TOOL_RECTIFY_ROWS_H

#include <string>

#include "console.h"

namespace zelm::tool {

struct RowsOptions {
    std::string rig;
    std::string left;
    std::string right;
    std::string folder;
    std::string size;    // "width,height"; empty: the images'
    std::string depths;  // "nearest,farthest"; empty: those of the calibration's plates
    double focal = 0.0;  // pixels; 0: the cameras' mean
    bool zeroAtInfinity = false;
    bool writesMaps = false;
};

void rectifyRows(const RowsOptions& options, const Console& console);

}  // namespace zelm::tool

#endif
