// Files of row-aligned pairs that OpenCV and NumPy read as they are.
#ifndef ZELM_TOOL_ROW_FILES_H
#define ZELM_TOOL_ROW_FILES_H

#include <zelmMeasure.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zelm::tool {

// For each aligned pixel, row by row, x and y of its raw pixel.
struct RowMap {
    int width = 0;
    int height = 0;
    std::vector<float> positions;
};

// An array of height x width x 2 floats, .npy.
std::string npyOf(const RowMap& map);

// Disparities in whole numbers as OpenCV's block matchers take them.
struct DisparityRange {
    int least = 0;
    int count = 0;  // a multiple of 16; 0: not known
};
DisparityRange disparityRange(const ZelmMeasureRows& rows);

nlohmann::ordered_json rowsJson(const ZelmMeasureRows& rows);
// The same for OpenCV's FileStorage, YAML.
std::string rowsYaml(const ZelmMeasureRows& rows);

}  // namespace zelm::tool

#endif
