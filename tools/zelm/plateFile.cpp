#include "plateFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "failure.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr int kDefaultMarkers = 3;
constexpr int kDefaultMinDotArea = 20;           // pixels: a dot of radius 2.5, below which centres are poor
constexpr double kDefaultMinEdgeStrength = 3.0;  // gray levels a pixel: well below a weak dot, above noise
constexpr double kDefaultShareOfDots = 0.5;      // of the field's dots, that a view must yield
constexpr double kMostGridDots = 1e6;            // a field with more dots is a mistake in the units

struct LengthField {
    const char* name;
    const char* shortName;  // in the object "pattern"
    double Zelm2ViewPatternDesc::*member;
};
constexpr std::array<LengthField, 8> kLengths{{{"fieldWidth", "d0", &Zelm2ViewPatternDesc::d0},
                                               {"fieldHeight", "d1", &Zelm2ViewPatternDesc::d1},
                                               {"dotDiameter", "d2", &Zelm2ViewPatternDesc::d2},
                                               {"markerDiameter", "d3", &Zelm2ViewPatternDesc::d3},
                                               {"dotPitchX", "d4", &Zelm2ViewPatternDesc::d4},
                                               {"dotPitchY", "d5", &Zelm2ViewPatternDesc::d5},
                                               {"markerDistanceX", "d6", &Zelm2ViewPatternDesc::d6},
                                               {"markerDistanceY", "d7", &Zelm2ViewPatternDesc::d7}}};
constexpr std::array kOtherFields{"markers", "polarity", "units",       "minDotArea", "minEdgeStrength",
                                  "minDots", "name",     "description", "comment"};

// One JSON object of one file, whose fields are asked for by name.
class Fields {
public:
    Fields(const fs::path& path, const Json& object) : file(path.string()), fields(object) {}

    double length(const char* name) const {
        const auto value = number(name);
        if (!value) {
            failUsage("{}: field \"{}\" is missing: give the length in plane units", file, name);
        }
        requirePositive(name, *value);
        return *value;
    }

    double positiveNumber(const char* name, double fallback) const {
        const double value = number(name).value_or(fallback);
        requirePositive(name, value);
        return value;
    }

    int positiveCount(const char* name, int fallback) const {
        const double value = positiveNumber(name, fallback);
        if (value != std::floor(value) || value > 1e9) {
            failUsage("{}: field \"{}\" must be a whole number, not {}", file, name, value);
        }
        return static_cast<int>(value);
    }

    std::string text(const char* name, const std::string& fallback) const {
        if (!fields.contains(name)) {
            return fallback;
        }
        if (!fields[name].is_string()) {
            failUsage("{}: field \"{}\" must be a text", file, name);
        }
        return fields[name].get<std::string>();
    }

    int polarity() const {
        if (!fields.contains("polarity")) {
            return 0;
        }
        const Json& value = fields["polarity"];
        if (value == "dark" || value == 0) {
            return 0;
        }
        if (value == "bright" || value == 1) {
            return 1;
        }
        failUsage("{}: field \"polarity\" must be \"dark\" or \"bright\" (dots against the plate)", file);
    }

private:
    std::optional<double> number(const char* name) const {
        if (!fields.contains(name)) {
            return std::nullopt;
        }
        if (!fields[name].is_number()) {
            failUsage("{}: field \"{}\" must be a number", file, name);
        }
        return fields[name].get<double>();
    }

    void requirePositive(const char* name, double value) const {
        if (!(value > 0.0) || !std::isfinite(value)) {
            failUsage("{}: field \"{}\" must be greater than 0, not {}", file, name, value);
        }
    }

    std::string file;
    const Json& fields;
};

// A misspelt optional field would be ignored in silence.
void refuseUnknownFields(const fs::path& path, const Json& object) {
    for (const auto& [key, value] : object.items()) {
        const auto isKey = [&name = key](const char* known) { return name == known; };
        if (std::none_of(kOtherFields.begin(), kOtherFields.end(), isKey) &&
            std::none_of(kLengths.begin(), kLengths.end(), [&](const LengthField& f) { return isKey(f.name); })) {
            failUsage("{}: unknown field \"{}\": is it misspelt?", path.string(), key);
        }
    }
}

void checkSizes(const fs::path& path, const Zelm2ViewPatternDesc& p) {
    const std::string file = path.string();
    if (p.d3 <= p.d2) {
        failUsage("{}: markerDiameter {} must be larger than dotDiameter {}", file, p.d3, p.d2);
    }
    if (p.d2 >= std::min(p.d4, p.d5)) {
        failUsage("{}: dotDiameter {} must be smaller than the dot pitch {}", file, p.d2, std::min(p.d4, p.d5));
    }
    if (p.d6 < 0.5 * p.d4 || p.d7 < 0.5 * p.d5) {
        failUsage("{}: markerDistanceX and markerDistanceY must be at least one dot pitch", file);
    }
    if ((p.d0 / p.d4 + 1.0) * (p.d1 / p.d5 + 1.0) > kMostGridDots) {
        failUsage("{}: fieldWidth and fieldHeight hold over a million dots: are all lengths in the same units?", file);
    }
}

// Dots of the field: the grid indices within half its extent on either side of the corner marker.
double dotsOfField(const Zelm2ViewPatternDesc& p) {
    const auto along = [](double extent, double pitch) { return 2.0 * std::floor(0.5 * extent / pitch + 1e-9) + 1.0; };
    return along(p.d0, p.d4) * along(p.d1, p.d5);
}

}  // namespace

Json parseJson(const fs::path& path, const std::string& text) {
    Json json = Json::parse(text, nullptr, false);
    if (json.is_discarded()) {
        failUsage("{}: not valid JSON: was it written or copied whole?", path.string());
    }
    if (!json.is_object()) {
        failUsage("{}: must hold a JSON object {{...}}", path.string());
    }
    return json;
}

Plate readPlate(const fs::path& path) {
    const Json json = parseJson(path, readWholeFile(path, "a plate description"));
    const bool isTruth = json.contains("pattern") && json["pattern"].is_object();
    if (!isTruth) {
        refuseUnknownFields(path, json);
    }
    const Fields fields(path, isTruth ? json["pattern"] : json);
    Plate plate;
    for (const LengthField& length : kLengths) {
        plate.pattern.*length.member = fields.length(isTruth ? length.shortName : length.name);
    }
    checkSizes(path, plate.pattern);
    plate.units = isTruth ? plate.units : fields.text("units", plate.units);
    plate.pattern.markers = fields.positiveCount("markers", kDefaultMarkers);
    plate.pattern.polarity = fields.polarity();
    plate.pattern.minDotArea = fields.positiveCount("minDotArea", kDefaultMinDotArea);
    plate.pattern.minEdgeStrength = fields.positiveNumber("minEdgeStrength", kDefaultMinEdgeStrength);
    const double share = std::max(4.0, std::floor(kDefaultShareOfDots * dotsOfField(plate.pattern)));
    plate.pattern.minDots = fields.positiveCount("minDots", static_cast<int>(share));
    return plate;
}

}  // namespace zelm::tool
