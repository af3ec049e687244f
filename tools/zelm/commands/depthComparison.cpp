#include "depthComparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "cameraPicture.h"
#include "failure.h"
#include "numberText.h"
#include "outputFiles.h"
#include "rigFigures.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// A line of the CSV of matched points.
struct MatchRow {
    Point2d left{};
    double depth = 0.0;
    std::string status;
};

std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = line.find(',');
        fields.push_back(line.substr(0, end));
        if (end == std::string_view::npos) {
            return fields;
        }
        line.remove_prefix(end + 1);
    }
}

std::vector<MatchRow> readMatches(const fs::path& path) {
    const std::string text = readWholeFile(path, "the points of zelm match");
    std::vector<MatchRow> rows;
    // From the back: an id, the first field, may hold commas.
    constexpr std::array<std::string_view, 4> kNames{"xL", "yL", "depth", "status"};
    std::array<std::size_t, 4> fromBack{};
    std::string_view rest = text;
    for (std::size_t number = 1; !rest.empty(); ++number) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::vector<std::string_view> fields = fieldsOf(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (number == 1) {
            for (std::size_t k = 0; k < kNames.size(); ++k) {
                const auto found = std::find(fields.begin(), fields.end(), kNames[k]);
                if (found == fields.end()) {
                    failData("{}: line 1: no column {}: is this a CSV of zelm match?", path.string(), kNames[k]);
                }
                fromBack[k] = static_cast<std::size_t>(fields.end() - found);
            }
            continue;
        }
        const auto field = [&](std::size_t k) {
            return fromBack[k] <= fields.size() ? fields[fields.size() - fromBack[k]] : std::string_view();
        };
        const auto x = numberOf(field(0));
        const auto y = numberOf(field(1));
        const auto depth = numberOf(field(2));
        const bool isFound = field(3) == "ok";
        if (!x || !y || (isFound && !depth)) {
            failData("{}: line {}: not a line of zelm match", path.string(), number);
        }
        rows.push_back({{*x, *y}, isFound ? *depth : 0.0, std::string(field(3))});
    }
    if (rows.empty()) {
        failData("{}: holds no points", path.string());
    }
    return rows;
}

// What is true of the pixels of a list.
struct Truths {
    std::vector<double> depths;  // NaN where none is known
    std::vector<std::int32_t> seenByBoth;
};

Truths truthsOf(const std::vector<MatchRow>& rows, const LoadedRig& rig, const nlohmann::json& truth,
                const fs::path& truthPath) {
    const auto map = truth.find("depth_map");
    if (map == truth.end() || !map->is_object() || !map->contains("file") || !(*map)["file"].is_string() ||
        !map->contains("unit_mm") || !(*map)["unit_mm"].is_number()) {
        failUsage("{}: no object \"depth_map\" with \"file\" and \"unit_mm\": points need the truth of depths",
                  truthPath.string());
    }
    const fs::path path = truthPath.parent_path() / (*map)["file"].get<std::string>();
    const DeepPicture picture = readDeepPicture(path);
    const RigCamera& left = rig.rig.left;
    if (picture.width != left.width || picture.height != left.height) {
        failData("{}: {} x {} pixels, but the left camera was calibrated with {} x {}", path.string(), picture.width,
                 picture.height, left.width, left.height);
    }
    if (left.isParallel() || rig.rig.right.isParallel()) {
        failUsage("{}: true depths are compared for perspective cameras alone", path.string());
    }
    std::vector<double> pixels;
    for (const MatchRow& row : rows) {
        pixels.insert(pixels.end(), {row.left.x, row.left.y});
    }
    Truths truths{std::vector<double>(rows.size()), std::vector<std::int32_t>(rows.size())};
    rig.require(zelmMeasureTrueDepths(rig.handle.get(), picture.pixels.data(), (*map)["unit_mm"].get<double>(),
                                      static_cast<std::int64_t>(rows.size()), pixels.data(), truths.depths.data(),
                                      truths.seenByBoth.data()),
                path.string());
    return truths;
}

// Errors of depths, as magnitudes.
struct DepthErrors {
    std::size_t asked = 0;     // points of this kind
    std::size_t textured = 0;  // of them, with a window and texture
    std::vector<double> errors;
    DistanceFigures figures{};

    void finish() {
        std::sort(errors.begin(), errors.end());
        figures = figuresOf(errors);
    }
    double partWithin(double limit) const {
        const auto count = std::upper_bound(errors.begin(), errors.end(), limit) - errors.begin();
        return errors.empty() ? 0.0 : static_cast<double>(count) / static_cast<double>(errors.size());
    }
    double partFound() const {
        return textured == 0 ? 0.0 : static_cast<double>(errors.size()) / static_cast<double>(textured);
    }
};

Json errorsJson(const DepthErrors& e, double within) {
    const auto known = [&](double figure) { return e.errors.empty() ? Json() : Json(figure); };
    return {{"points", e.asked},
            {"textured", e.textured},
            {"found", e.errors.size()},
            {"partFound", e.partFound()},
            {"within", within},
            {"partWithin", known(e.partWithin(within))},
            {"median", known(e.figures.median)},
            {"quantile95", known(e.figures.quantile95)},
            {"rms", known(e.figures.rms)}};
}

std::string errorsText(const char* name, const DepthErrors& e, double within) {
    if (e.errors.empty()) {
        return fmt::format("\n{:<28}{:>9}{:>9}{:>9}{:>10}{:>11}{:>10}{:>10}", name, e.asked, e.textured, 0, "-", "-",
                           "-", "-");
    }
    return fmt::format("\n{:<28}{:>9}{:>9}{:>9}{:>8.1f} %{:>9.1f} %{:>10.4f}{:>10.4f}", name, e.asked, e.textured,
                       e.errors.size(), 100.0 * e.partFound(), 100.0 * e.partWithin(within), e.figures.median,
                       e.figures.quantile95);
}

}  // namespace

void compareDepths(const LoadedRig& rig, const nlohmann::json& truth, const fs::path& truthPath,
                   const fs::path& pointsPath, double within, const Console& console) {
    const std::vector<MatchRow> rows = readMatches(pointsPath);
    const Truths truths = truthsOf(rows, rig, truth, truthPath);
    DepthErrors both;
    DepthErrors leftOnly;
    std::size_t elsewhere = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const MatchRow& row = rows[i];
        if (std::isnan(truths.depths[i])) {
            elsewhere += row.status == "ok" ? 1U : 0U;
            continue;
        }
        DepthErrors& errors = truths.seenByBoth[i] != 0 ? both : leftOnly;
        errors.asked += 1;
        errors.textured += row.status == "no_texture" || row.status == "outside" ? 0U : 1U;
        if (row.status == "ok") {
            errors.errors.push_back(std::fabs(row.depth - truths.depths[i]));
        }
    }
    both.finish();
    leftOnly.finish();
    std::string text = fmt::format("{:<28}{:>9}{:>9}{:>9}{:>10}{:>11}{:>10}{:>10}", "depths, " + rig.units, "points",
                                   "textured", "found", "found", fmt::format("in {:g}", within), "median", "95 %");
    text += errorsText("seen by both cameras", both, within);
    text += errorsText("seen by the left one alone", leftOnly, within);
    text += fmt::format("\n{} found where no true depth is known", counted(elsewhere, "point"));
    console.say(text);
    console.result({{"units", rig.units},
                    {"seenByBoth", errorsJson(both, within)},
                    {"seenByLeftAlone", errorsJson(leftOnly, within)},
                    {"withoutTruth", elsewhere}});
}

}  // namespace zelm::tool
