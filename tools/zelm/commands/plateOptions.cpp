#include "plateOptions.h"

namespace zelm::tool {

void addPlateOptions(Subcommand& sub, PlateOptions& options, bool isRequired) {
    Option plate = sub.option("--plate", options.file, "Description of the plate (JSON)");
    if (isRequired) {
        plate.required();
    }
    sub.option("--min-dots", options.minDots,
               "Smallest number of dots that an image must yield; default: half the plate's")
        .positive();
    sub.option("--min-area", options.minArea, "Smallest area of a dot in pixels; default 20").positive();
    sub.option("--min-strength", options.minStrength,
               "Smallest strength of a dot's edge in gray levels a pixel; default 3")
        .positive();
}

Plate plateOf(const PlateOptions& options) {
    Plate plate = readPlate(options.file);
    plate.pattern.minDots = options.minDots.value_or(plate.pattern.minDots);
    plate.pattern.minDotArea = options.minArea.value_or(plate.pattern.minDotArea);
    plate.pattern.minEdgeStrength = options.minStrength.value_or(plate.pattern.minEdgeStrength);
    return plate;
}

std::optional<ZelmRect> regionOf(const std::vector<int>& region) {
    if (region.empty()) {
        return std::nullopt;
    }
    return ZelmRect{region[0], region[1], region[2], region[3]};
}

}  // namespace zelm::tool
