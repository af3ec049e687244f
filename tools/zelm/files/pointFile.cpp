#include "pointFile.h"

#include <array>
#include <string_view>
#include <utility>

#include "coordinateFile.h"

namespace zelm::tool {

std::vector<ImagePoint> readPointFile(const std::filesystem::path& path) {
    constexpr std::array<std::string_view, 2> kNames{"x", "y"};
    std::vector<ImagePoint> points;
    for (CoordinateRow& row : readCoordinateFile(path, {kNames, "pixels"})) {
        points.push_back({{row.numbers[0], row.numbers[1]}, std::move(row.id)});
    }
    return points;
}

}  // namespace zelm::tool
