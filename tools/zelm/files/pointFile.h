// CSV files of pixels of one image.
#ifndef ZELM_TOOL_POINT_FILE_H
#define ZELM_TOOL_POINT_FILE_H

#include <zelmLib.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zelm::tool {

struct ImagePoint {
    Point2d pixel{};  // raw
    std::string id;   // the row's number, from 1 on, where the file gives none
};

// Reads rows of x,y or id,x,y, as readCoordinateFile does.
std::vector<ImagePoint> readPointFile(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
