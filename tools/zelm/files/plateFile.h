// The description of a dot plate in a JSON file.
#ifndef ZELM_TOOL_PLATE_FILE_H
#define ZELM_TOOL_PLATE_FILE_H

#include <zelmLib.h>

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "dotPositions.h"

namespace zelm::tool {

struct Plate {
    Zelm2ViewPatternDesc pattern{};
    std::string units = "mm";
    std::string name;
    std::string maker;
    std::string serial;
    std::string date;                   // of the measurement, as people write it
    std::string certificate;            //
    DotPositions positions;             // measured ones; none: all dots stand on the grid
    std::string positionsSource;        // the file that they come from, or empty
    std::optional<double> expansion;    // of lengths, per kelvin
    std::optional<double> temperature;  // degrees Celsius, at which the lengths hold
    std::optional<double> usedAt;       // degrees Celsius: the lengths are those of this temperature
    double growth = 1.0;                // of all lengths, from the one temperature to the other
};

// Reads a plate description: an object with named fields (dotPitchX, markerDiameter, ...), or any JSON file with an
// object "pattern" of d0..d7, markers and polarity, as the truth of rendered views has it. A file of positions that it
// names is looked for beside it. Throws Failure that names the file and the field.
Plate readPlate(const std::filesystem::path& path);

// The description with all that is known, positions inline. minDots and what else has a default stands there only
// where it differs.
nlohmann::ordered_json plateFileJson(const Plate& plate);

// A plate whose fields are at their defaults, for lengths that are to be set.
Plate emptyPlate();

// The number of dots that an image must yield unless the description says otherwise.
int usualMinDots(const Zelm2ViewPatternDesc& pattern);

// Dots of half the field on either side of the corner marker.
struct FieldReach {
    int x = 0;
    int y = 0;

    int dots() const { return (2 * x + 1) * (2 * y + 1); }
};
FieldReach reachOf(const Zelm2ViewPatternDesc& pattern);

}  // namespace zelm::tool

#endif
