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
using Pattern = Zelm2ViewPatternDesc;

constexpr int kDefaultMarkers = 3;
constexpr int kDefaultMinDotArea = 20;           // pixels: a dot of radius 2.5, below which centres are poor
constexpr double kDefaultMinEdgeStrength = 3.0;  // gray levels a pixel: well below a weak dot, above noise
constexpr double kDefaultShareOfDots = 0.5;      // of the field's dots, that a view must yield
constexpr double kMaxExpansion = 1e-3;           // per kelvin: ten times that of plastics; a larger one is a mistake
constexpr double kLeastTemperature = -100.0;     // degrees Celsius
constexpr double kMostTemperature = 1000.0;      //

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
        fields.fail(name, "a length in the plate's unit, but it is missing");
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

// Columns or rows on either side of the corner marker.
double reachAlong(double extent, double pitch) {
    return std::floor(0.5 * extent / pitch + 1e-9);
}

double dotsOfField(const Pattern& p) {
    return (2.0 * reachAlong(p.d0, p.d4) + 1.0) * (2.0 * reachAlong(p.d1, p.d5) + 1.0);
}

// A text of one line for people; empty when there is none.
std::string lineAt(JsonFields& fields, const char* name) {
    std::string text;
    fields.read(name, text);
    if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; })) {
        fields.fail(name, "a text of one line");
    }
    return text;
}

std::optional<double> numberAt(JsonFields& fields, const char* name, double least, double most, const char* expected) {
    if (fields.find(name) == nullptr) {
        return std::nullopt;
    }
    double value = 0.0;
    fields.read(name, value);
    if (!(value >= least && value <= most)) {
        fields.fail(name, fmt::format("{}, not {}", expected, value));
    }
    return value;
}

// Rows [column, row, x, y] or [column, row, x, y, z].
DotPositions inlinePositions(const JsonFields& fields, const Json& rows) {
    const auto fail = [&fields](std::size_t row) {
        fields.fail("positions", fmt::format("rows [column, row, x, y] or [column, row, x, y, z], the first two whole "
                                             "numbers counted from the corner marker: row {} is none",
                                             row + 1));
    };
    DotPositions positions;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Json& row = rows[i];
        if (!row.is_array() || (row.size() != 4 && row.size() != 5) ||
            !std::all_of(row.begin(), row.end(), [](const Json& item) { return item.is_number(); })) {
            fail(i);
        }
        for (std::size_t j = 0; j < 2; ++j) {
            const auto index = row[j].get<double>();
            if (index != std::round(index) || std::fabs(index) > kMaxDotIndex) {
                fail(i);
            }
            positions.grid.push_back(static_cast<std::int32_t>(index));
        }
        for (std::size_t j = 2; j < 5; ++j) {
            positions.places.push_back(j < row.size() ? row[j].get<double>() : 0.0);
        }
    }
    return positions;
}

// The positions that the field holds, or that the file beside the plate's holds.
void readPositions(const fs::path& plateFile, JsonFields& fields, Plate& plate) {
    const Json* const value = fields.find("positions");
    if (value == nullptr) {
        return;
    }
    if (value->is_string()) {
        const fs::path path = plateFile.parent_path() / value->get<std::string>();
        plate.positions = readDotPositions(path);
        plate.positionsSource = path.string();
    } else if (value->is_array() && !value->empty()) {
        plate.positions = inlinePositions(fields, *value);
        plate.positionsSource = plateFile.string();
    } else {
        fields.fail("positions", "the name of a CSV file (column,row,x,y), or a list of rows [column, row, x, y]");
    }
    checkDotPositions(plate.positionsSource, plate.pattern, plate.positions);
}

void readIdentity(JsonFields& fields, Plate& plate) {
    plate.name = lineAt(fields, "name");
    plate.maker = lineAt(fields, "maker");
    plate.serial = lineAt(fields, "serial");
    plate.date = lineAt(fields, "date");
    plate.certificate = lineAt(fields, "certificate");
}

void readThermal(JsonFields& fields, Plate& plate) {
    plate.expansion = numberAt(fields, "expansion", 0.0, kMaxExpansion,
                               "what lengths grow by per kelvin, such as 8.5e-6, from 0 to 0.001");
    plate.temperature = numberAt(fields, "temperature", kLeastTemperature, kMostTemperature,
                                 "degrees Celsius at which the lengths hold, from -100 to 1000");
    if (plate.expansion && !plate.temperature) {
        fields.fail("temperature", "the temperature at which the lengths hold, beside expansion, but it is missing");
    }
}

void addText(nlohmann::ordered_json& json, const char* key, const std::string& text) {
    if (!text.empty()) {
        json[key] = text;
    }
}

nlohmann::ordered_json positionsJson(const DotPositions& positions) {
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (std::size_t i = 0; 2 * i < positions.grid.size(); ++i) {
        const double* const place = positions.places.data() + 3 * i;
        nlohmann::ordered_json row{positions.grid[2 * i], positions.grid[2 * i + 1], place[0], place[1]};
        if (place[2] != 0.0) {
            row.push_back(place[2]);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace

int usualMinDots(const Pattern& pattern) {
    return static_cast<int>(std::max(4.0, std::floor(kDefaultShareOfDots * dotsOfField(pattern))));
}

FieldReach reachOf(const Zelm2ViewPatternDesc& p) {
    return {static_cast<int>(reachAlong(p.d0, p.d4)), static_cast<int>(reachAlong(p.d1, p.d5))};
}

Plate emptyPlate() {
    Plate plate;
    plate.pattern.markers = kDefaultMarkers;
    plate.pattern.minDotArea = kDefaultMinDotArea;
    plate.pattern.minEdgeStrength = kDefaultMinEdgeStrength;
    return plate;
}

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
    plate.pattern.markers = positiveAt(fields, "markers", kDefaultMarkers);
    plate.pattern.polarity = polarityAt(fields);
    plate.pattern.minDotArea = positiveAt(fields, "minDotArea", kDefaultMinDotArea);
    plate.pattern.minEdgeStrength = positiveAt(fields, "minEdgeStrength", kDefaultMinEdgeStrength);
    plate.pattern.minDots = positiveAt(fields, "minDots", usualMinDots(plate.pattern));
    plate.units = fields.find("units") == nullptr ? plate.units : lineAt(fields, "units");
    readIdentity(fields, plate);
    readThermal(fields, plate);
    readPositions(path, fields, plate);
    for (const char* const forPeople : {"description", "comment"}) {
        static_cast<void>(fields.find(forPeople));
    }
    if (!isTruth) {
        fields.done();  // a misspelt optional field would be ignored in silence
    }
    return plate;
}

nlohmann::ordered_json plateFileJson(const Plate& plate) {
    nlohmann::ordered_json json;
    const Pattern& p = plate.pattern;
    addText(json, "name", plate.name);
    for (const LengthField& length : kLengths) {
        json[length.name] = p.*length.member;
    }
    json["markers"] = p.markers;
    json["polarity"] = p.polarity == 1 ? "bright" : "dark";
    json["units"] = plate.units;
    if (p.minDots > 0 && p.minDots != usualMinDots(p)) {
        json["minDots"] = p.minDots;
    }
    if (p.minDotArea != kDefaultMinDotArea) {
        json["minDotArea"] = p.minDotArea;
    }
    if (p.minEdgeStrength != kDefaultMinEdgeStrength) {
        json["minEdgeStrength"] = p.minEdgeStrength;
    }
    addText(json, "maker", plate.maker);
    addText(json, "serial", plate.serial);
    addText(json, "date", plate.date);
    addText(json, "certificate", plate.certificate);
    if (plate.expansion) {
        json["expansion"] = *plate.expansion;
    }
    if (plate.temperature) {
        json["temperature"] = *plate.temperature;
    }
    if (!plate.positions.grid.empty()) {
        json["positions"] = positionsJson(plate.positions);
    }
    return json;
}

}  // namespace zelm::tool
