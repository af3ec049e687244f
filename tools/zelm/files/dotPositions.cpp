#include "dotPositions.h"

#include <array>
#include <cmath>
#include <string_view>

#include "coordinateFile.h"
#include "failure.h"

namespace zelm::tool {

DotPositions readDotPositions(const std::filesystem::path& path) {
    constexpr std::array<std::string_view, 4> kNames{"column", "row", "x", "y"};
    constexpr double kMaxIndex = 1e6;
    DotPositions dots;
    for (const CoordinateRow& row : readCoordinateFile(path, {kNames, "dot positions"})) {
        for (std::size_t i = 0; i < 2; ++i) {
            const double index = row.numbers[i];
            if (index != std::round(index) || std::fabs(index) > kMaxIndex) {
                failData("{}: dot {}: its {} is no whole number: give column,row,x,y, counted from the corner marker",
                         path.string(), row.id, kNames[i]);
            }
            dots.grid.push_back(static_cast<std::int32_t>(index));
        }
        dots.places.insert(dots.places.end(), {row.numbers[2], row.numbers[3], 0.0});
    }
    return dots;
}

}  // namespace zelm::tool
