#include "savedSummary.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <system_error>

#include "console.h"
#include "outputFiles.h"
#include "rigFile.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

Json at(const Json& json, const char* pointer) {
    const Json::json_pointer place(pointer);
    return json.contains(place) ? json.at(place) : Json();
}

// Text of one line; empty where there is none.
std::string textAt(const Json& json, const char* pointer) {
    const Json value = at(json, pointer);
    return value.is_string() ? oneLine(value.get<std::string>()) : std::string();
}

// JSON keeps every bit of a number.
bool isOf(const Json& json, const Rig& rig) {
    const auto holds = [&json](const char* pointer, double parameter) {
        const Json value = at(json, pointer);
        return value.is_number() && value.get<double>() == parameter;
    };
    return holds("/left/alpha", rig.left.intrinsics.alpha) && holds("/right/alpha", rig.right.intrinsics.alpha) &&
           holds("/left/cx", rig.left.intrinsics.cx);
}

}  // namespace

SavedSummary savedSummary(const fs::path& rigFile, const Rig& rig) {
    const fs::path path = fs::path(rigFile).replace_extension(".json");
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return {};
    }
    const Json json = Json::parse(readWholeFile(path, "a summary"), nullptr, false);
    if (!isOf(json, rig)) {
        return {};
    }
    SavedSummary summary;
    summary.file = path.filename().string();
    if (const std::string units = textAt(json, "/units/length"); !units.empty()) {
        summary.units = units;
    }
    summary.verdict = textAt(json, "/verdict/status");
    summary.sentence = textAt(json, "/verdict/sentence");
    return summary;
}

std::string savedVerdictText(const fs::path& rigFile, const SavedSummary& summary) {
    return fmt::format("{}: {} says of this calibration: {}", rigFile.string(), summary.file, summary.sentence);
}

}  // namespace zelm::tool
