// The options of every subcommand that reads plates.
#ifndef ZELM_TOOL_PLATE_OPTIONS_H
#define ZELM_TOOL_PLATE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "commandLine.h"
#include "plateFile.h"

namespace zelm::tool {

struct PlateOptions {
    std::string file;
    std::optional<int> minDots;
    std::optional<int> minArea;
    std::optional<double> minStrength;
    std::optional<double> temperature;  // degrees Celsius
    std::string positions;              // a file of measured dot positions, which goes before the description's
};

// Adds --plate, --min-dots, --min-area and --min-strength.
void addPlateOptions(Subcommand& sub, PlateOptions& options, bool isRequired = true);

// Adds --temperature.
void addTemperatureOption(Subcommand& sub, PlateOptions& options);

// The plate that the options describe. Throws Failure.
Plate plateOf(const PlateOptions& options);

// The rectangle of an option x,y,width,height, if it was given.
std::optional<ZelmRect> regionOf(const std::vector<int>& region);

}  // namespace zelm::tool

#endif
