#include "plateOptions.h"

namespace zelm::tool {

void addPlateOptions(CLI::App& sub, PlateOptions& options) {
    sub.add_option("--plate", options.file, "Description of the plate (JSON)")->required();
    sub.add_option("--min-dots", options.minDots, "Fewest dots that an image must yield; default: half the plate's")
        ->check(CLI::PositiveNumber);
    sub.add_option("--min-area", options.minArea, "Smallest area of a dot in pixels; default 20")
        ->check(CLI::PositiveNumber);
    sub.add_option("--min-strength", options.minStrength,
                   "Smallest strength of a dot's edge in gray levels a pixel; default 3")
        ->check(CLI::PositiveNumber);
}

Plate plateOf(const PlateOptions& options) {
    Plate plate = readPlate(options.file);
    plate.pattern.minDots = options.minDots.value_or(plate.pattern.minDots);
    plate.pattern.minDotArea = options.minArea.value_or(plate.pattern.minDotArea);
    plate.pattern.minEdgeStrength = options.minStrength.value_or(plate.pattern.minEdgeStrength);
    return plate;
}

void addRegionOption(CLI::App& sub, const std::string& name, std::vector<int>& region, const std::string& description) {
    sub.add_option(name, region, description)->delimiter(',')->expected(4)->type_name("X,Y,WIDTH,HEIGHT");
}

std::optional<ZelmRect> regionOf(const std::vector<int>& region) {
    if (region.empty()) {
        return std::nullopt;
    }
    return ZelmRect{region[0], region[1], region[2], region[3]};
}

}  // namespace zelm::tool
