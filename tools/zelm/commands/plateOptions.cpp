#include "plateOptions.h"

#include <zelmMeasure.h>

#include <algorithm>

#include "failure.h"

namespace zelm::tool {
namespace {

// The plate's lengths and positions at another temperature than the one they were measured at.
void warmPlate(const PlateOptions& options, Plate& plate) {
    if (!options.temperature) {
        return;
    }
    if (!plate.expansion) {
        failUsage(
            "--temperature {}: {} does not tell how the plate expands: give it expansion (per kelvin) and "
            "temperature (at which its lengths hold), or leave --temperature out",
            *options.temperature, options.file);
    }
    std::vector<double>& places = plate.positions.places;
    if (zelmMeasurePlateExpanded(&plate.pattern, *plate.expansion, *options.temperature - *plate.temperature,
                                 static_cast<std::int64_t>(places.size() / 3), places.data(), &plate.pattern,
                                 places.data(), &plate.growth) < 0) {
        failUsage("--temperature {}: {}: the plate's lengths are none at that temperature", *options.temperature,
                  options.file);
    }
    plate.usedAt = options.temperature;
}

}  // namespace

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

void addTemperatureOption(Subcommand& sub, PlateOptions& options) {
    sub.option("--temperature", options.temperature,
               "Degrees Celsius of the plate in the images, for a plate whose file tells its expansion")
        .inRange(-100.0, 1000.0);
}

Plate plateOf(const PlateOptions& options) {
    Plate plate = readPlate(options.file);
    plate.pattern.minDots = options.minDots.value_or(plate.pattern.minDots);
    plate.pattern.minDotArea = options.minArea.value_or(plate.pattern.minDotArea);
    plate.pattern.minEdgeStrength = options.minStrength.value_or(plate.pattern.minEdgeStrength);
    if (!options.positions.empty()) {
        plate.positions = readDotPositions(options.positions);
        plate.positionsSource = options.positions;
        checkDotPositions(plate.positionsSource, plate.pattern, plate.positions);
    }
    warmPlate(options, plate);
    return plate;
}

std::optional<ZelmRect> regionOf(const std::vector<int>& region) {
    if (region.empty()) {
        return std::nullopt;
    }
    return ZelmRect{region[0], region[1], region[2], region[3]};
}

}  // namespace zelm::tool
