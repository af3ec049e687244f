// CSV files of coordinates: a point, or several that belong together, on each line.
#ifndef ZELM_TOOL_COORDINATE_FILE_H
#define ZELM_TOOL_COORDINATE_FILE_H

#include <array>
#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

constexpr std::size_t kMaxCoordinates = 5;

// What a file holds.
struct CoordinateFormat {
    std::span<const std::string_view> names;  // of the coordinates, at most kMaxCoordinates
    std::string_view what;                    // in words, plural
    std::string_view unit = ", in pixels";    // behind the names in messages
};

struct CoordinateRow {
    std::array<double, kMaxCoordinates> numbers{};  // in the order of the format's names
    std::string id;                                 // the row's number, from 1 on, where the file gives none
};

// Reads rows of the coordinates, perhaps with an id in front, separated by commas, semicolons or tabs. A header may
// name the columns in any order, and others beside them, which are left out; empty lines and lines that begin with #
// are passed over. Throws Failure, naming file and line, for anything else.
std::vector<CoordinateRow> readCoordinateFile(const std::filesystem::path& path, const CoordinateFormat& format);

}  // namespace zelm::tool

#endif
