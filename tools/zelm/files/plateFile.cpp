#include "plateFile.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "failure.h"
#include "jsonFields.h"
#include "outputFiles.h"
#include "plateChecks.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr int kDefaultMarkers = 3;
constexpr int kDefaultMinDotArea = 20;           // pixels: a dot of radius 2.5, below which centres are poor
constexpr double kDefaultMinEdgeStrength = 3.0;  // gray levels a pixel: well below a weak dot, above noise
constexpr double kDefaultShareOfDots = 0.5;      // of the field's dots, that a view must yield

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
// A required length. Reading leaves a missing one at 0, which no length may be.
double lengthAt(JsonFields& fields, const char* name) {
    double value = 0.0;
    fields.read(name, value);
    if (fields.find(name) == nullptr) {
        fields.fail(name, "a length in plate units, but it is missing");
    }
    if (!(value > 0.0) || !std::isfinite(value)) {
        fields.fail(name, fmt::format("a length greater than 0, not {}", value));
    }
    return value;
}

template <typename T>
T positiveAt(JsonFields& fields, const char* name, T fallback) {
    T value = fallback;
    fields.read(name, value);
    if (!(value > T{0})) {
        fields.fail(name, fmt::format("a number greater than 0, not {}", value));
    }
    return value;
}

int polarityAt(JsonFields& fields) {
    const Json* const value = fields.find("polarity");
    if (value == nullptr || *value == "dark" || *value == 0) {
        return 0;
    }
    if (*value == "bright" || *value == 1) {
        return 1;
    }
    fields.fail("polarity", "\"dark\" or \"bright\" (the dots against the plate)");
}

// Dots of the field: the grid indices within half its extent on either side of the corner marker.
double dotsOfField(const Zelm2ViewPatternDesc& p) {
    const auto along = [](double extent, double pitch) { return 2.0 * std::floor(0.5 * extent / pitch + 1e-9) + 1.0; };
    return along(p.d0, p.d4) * along(p.d1, p.d5);
}

}  // namespace

Plate readPlate(const fs::path& path) {
    const Json json = parseCommentedJson(path.string(), readWholeFile(path, "a plate description"));
    const bool isTruth = json.is_object() && json.contains("pattern");
    JsonFields fields(isTruth ? json["pattern"] : json, path.string(), isTruth ? "pattern" : "");
    Plate plate;
    for (const LengthField& length : kLengths) {
        static_cast<void>(fields.find(isTruth ? length.shortName : length.name));  // known, so not misspelt
    }
    for (const LengthField& length : kLengths) {
        plate.pattern.*length.member = lengthAt(fields, isTruth ? length.shortName : length.name);
    }
    checkPlateSizes(path.string(), plate.pattern, isTruth);
    const double share = std::max(4.0, std::floor(kDefaultShareOfDots * dotsOfField(plate.pattern)));
    plate.pattern.markers = positiveAt(fields, "markers", kDefaultMarkers);
    plate.pattern.polarity = polarityAt(fields);
    plate.pattern.minDotArea = positiveAt(fields, "minDotArea", kDefaultMinDotArea);
    plate.pattern.minEdgeStrength = positiveAt(fields, "minEdgeStrength", kDefaultMinEdgeStrength);
    plate.pattern.minDots = positiveAt(fields, "minDots", static_cast<int>(share));
    fields.read("units", plate.units);
    for (const char* const forPeople : {"name", "description", "comment"}) {
        static_cast<void>(fields.find(forPeople));
    }
    if (!isTruth) {
        fields.done();  // a misspelt optional field would be ignored in silence
    }
    return plate;
}

}  // namespace zelm::tool
