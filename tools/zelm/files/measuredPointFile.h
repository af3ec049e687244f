// CSV files of points in space, as triangulate writes them.
#ifndef ZELM_TOOL_MEASURED_POINT_FILE_H
#define ZELM_TOOL_MEASURED_POINT_FILE_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace zelm::tool {

struct MeasuredPoints {
    std::string file;
    std::vector<std::string> ids;  // of the points that are there
    std::vector<double> places;    // 3 a point
    std::vector<double> noise;     // 6 a point: covariances by their noise; none: the file has no such columns
    std::unordered_map<std::string, std::size_t> byId;
    std::unordered_map<std::string, std::string> lost;  // ids of rows without a point, with the word of their status

    std::size_t size() const { return ids.size(); }
};

// Reads rows of X,Y,Z or id,X,Y,Z, or columns that a header names, among them status and the covariances noise_XX,
// noise_XY, noise_XZ, noise_YY, noise_YZ, noise_ZZ of triangulate --covariance. Throws Failure, naming file and line,
// for anything else.
MeasuredPoints readMeasuredPoints(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
