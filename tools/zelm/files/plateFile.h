// The description of a dot plate in a JSON file.
#ifndef ZELM_TOOL_PLATE_FILE_H
#define ZELM_TOOL_PLATE_FILE_H

#include <zelmLib.h>

#include <filesystem>
#include <string>

namespace zelm::tool {

struct Plate {
    Zelm2ViewPatternDesc pattern{};
    std::string units = "mm";
};

// Reads a plate description: an object with named fields (dotPitchX, markerDiameter, ...), or any JSON file with an
// object "pattern" of d0..d7, markers and polarity, as the truth of rendered views has it. Throws Failure that names
// the file and the field.
Plate readPlate(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
