// The options of `zelm plate` that say how a plate is to be, and before which cameras.
#ifndef ZELM_TOOL_PLATE_CHOICE_H
#define ZELM_TOOL_PLATE_CHOICE_H

#include <optional>
#include <string>
#include <vector>

#include "commandLine.h"
#include "plateFile.h"
#include "plateFindings.h"
#include "plateSheet.h"

namespace zelm::tool {

struct DesignOptions {
    std::string file;  // a description to begin with, or empty
    std::string field;
    std::string pitch;
    std::optional<double> dot;
    std::optional<double> marker;
    std::string markersAt;
    std::string polarity;
    std::string units;
    std::string name;
    std::string maker;
    std::string serial;
};

void addDesignOptions(Subcommand& sub, DesignOptions& options);

// The plate that the options describe. What they leave open is chosen so that the plate fills the page, with markers
// that are told well from the dots. Throws Failure.
struct DesignedPlate {
    Plate plate;
    std::vector<std::string> notes;  // what was changed of what the options say
};
DesignedPlate designPlate(const DesignOptions& options, const Page& page);

struct SightOptions {
    std::string station;  // a description as of `zelm plan`, or empty
    std::optional<double> pixelSize;
    std::optional<double> focalLength;
    std::optional<double> distance;
    std::string image;
};

void addSightOptions(Subcommand& sub, SightOptions& options);

// No cameras where no option gives one. Throws Failure.
PlateCameras camerasOf(const SightOptions& options);

}  // namespace zelm::tool

#endif
