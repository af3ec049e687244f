// CSV files of points of a flat target, as any detector found them in the images of one or two cameras.
#ifndef ZELM_TOOL_TARGET_POINT_FILE_H
#define ZELM_TOOL_TARGET_POINT_FILE_H

#include <zelmMeasure.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace zelm::tool {

struct TargetPoint {
    std::size_t line = 0;  // of the file
    std::size_t view = 0;  // place in the list of views
    char side = 'L';
    std::size_t id = 0;  // place in the list of ids
    std::array<double, 3> place{};
    Point2d pixel{};
};

struct TargetPoints {
    std::vector<std::string> views;  // names, in the order in which they come
    std::vector<std::string> ids;
    std::vector<TargetPoint> points;

    bool has(char side) const;
};

// Reads rows of view,camera,id,x,y,X,Y and perhaps Z, separated by commas, semicolons or tabs. A header may name the
// columns in any order, and others beside them; a file without a column of cameras is of one camera. Throws Failure,
// naming file and line, for anything else, for a point that stands twice in an image, and for one whose place on the
// target is not the same everywhere.
TargetPoints readTargetPoints(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
