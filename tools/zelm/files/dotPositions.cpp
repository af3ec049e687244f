#include "dotPositions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "coordinateFile.h"
#include "failure.h"
#include "letterCase.h"
#include "tableFile.h"

namespace zelm::tool {
namespace {

constexpr std::array<std::string_view, 5> kNames{"column", "row", "x", "y", "z"};
constexpr const char* kWhat = "dot positions";

// Of a pitch: farther from its place on the grid a position is another dot's, or in another frame.
constexpr double kMaxDisplacement = 0.25;

// Whether the rows have a height: a header that names it, or a fifth number.
bool hasHeight(const std::filesystem::path& path) {
    TableReader table(path, kWhat, Separator::ofFirstRow);
    if (!table.next()) {
        return false;
    }
    const auto& fields = table.fields();
    const auto isNamed = [&fields](std::string_view name) {
        return std::any_of(fields.begin(), fields.end(),
                           [name](std::string_view field) { return lowerCase(std::string(field)) == name; });
    };
    return isNamed("z") || (!isNamed("id") && !isNamed("x") && fields.size() == kNames.size());
}

}  // namespace

DotPositions readDotPositions(const std::filesystem::path& path) {
    const std::span<const std::string_view> names(kNames.data(), hasHeight(path) ? 5 : 4);
    DotPositions dots;
    for (const CoordinateRow& row : readCoordinateFile(path, {names, kWhat, ""})) {
        for (std::size_t i = 0; i < 2; ++i) {
            const double index = row.numbers[i];
            if (index != std::round(index) || std::fabs(index) > kMaxDotIndex) {
                failData("{}: dot {}: its {} is no whole number: give column,row,x,y, counted from the corner marker",
                         path.string(), row.id, kNames[i]);
            }
            dots.grid.push_back(static_cast<std::int32_t>(index));
        }
        dots.places.insert(dots.places.end(), row.numbers.begin() + 2, row.numbers.begin() + 5);
    }
    return dots;
}

void checkDotPositions(const std::string& source, const Zelm2ViewPatternDesc& pattern, const DotPositions& positions) {
    std::set<std::pair<int, int>> seen;
    for (std::size_t i = 0; 2 * i < positions.grid.size(); ++i) {
        const std::int32_t column = positions.grid[2 * i];
        const std::int32_t row = positions.grid[2 * i + 1];
        const double* const place = positions.places.data() + 3 * i;
        if (!seen.insert({column, row}).second) {
            failData("{}: two positions of the dot {}/{}: leave one out", source, column, row);
        }
        if (std::fabs(place[0] - column * pattern.d4) > kMaxDisplacement * pattern.d4 ||
            std::fabs(place[1] - row * pattern.d5) > kMaxDisplacement * pattern.d5) {
            failData(
                "{}: dot {}/{}: its position {}, {} is far from {}, {}, where the plate's pitch puts it: give "
                "positions "
                "in the plate's frame (origin at the corner marker) and unit",
                source, column, row, place[0], place[1], column * pattern.d4, row * pattern.d5);
        }
    }
}

}  // namespace zelm::tool
