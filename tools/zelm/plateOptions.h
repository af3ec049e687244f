// The options of every subcommand that reads plates.
#ifndef ZELM_TOOL_PLATE_OPTIONS_H
#define ZELM_TOOL_PLATE_OPTIONS_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "plateFile.h"

namespace zelm::tool {

struct PlateOptions {
    std::string file;
    std::optional<int> minDots;
    std::optional<int> minArea;
    std::optional<double> minStrength;
};

// Adds --plate, --min-dots, --min-area and --min-strength.
void addPlateOptions(CLI::App& sub, PlateOptions& options);

// The plate that the options describe. Throws Failure.
Plate plateOf(const PlateOptions& options);

// Adds an option for a rectangle x,y,width,height.
void addRegionOption(CLI::App& sub, const std::string& name, std::vector<int>& region, const std::string& description);

// The rectangle of such an option, if it was given.
std::optional<ZelmRect> regionOf(const std::vector<int>& region);

}  // namespace zelm::tool

#endif
