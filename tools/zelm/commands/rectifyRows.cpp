#include "rectifyRows.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <vector>

#include "cameraPicture.h"
#include "failure.h"
#include "jsonText.h"
#include "numberText.h"
#include "outputFiles.h"
#include "rowFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

ZelmMeasureRowOptions libraryOptions(const RowsOptions& o) {
    ZelmMeasureRowOptions options{};
    options.size = sizeof(options);
    options.focal = o.focal;
    options.zeroAtInfinity = o.zeroAtInfinity ? 1 : 0;
    if (!o.size.empty()) {
        const std::vector<double> n = numbersOf(o.size);
        const auto isSide = [](double v) { return v >= 1.0 && v <= 32768.0 && v == static_cast<int>(v); };
        if (n.size() != 2 || !isSide(n[0]) || !isSide(n[1])) {
            failUsage("--size {}: expected width,height in pixels, up to 32768 each", o.size);
        }
        options.width = static_cast<std::int32_t>(n[0]);
        options.height = static_cast<std::int32_t>(n[1]);
    }
    if (!o.depths.empty()) {
        const std::vector<double> n = numbersOf(o.depths);
        if (n.size() != 2 || !(n[0] > 0.0) || !(n[1] > n[0])) {
            failUsage("--depths {}: expected nearest,farthest, above 0 and rising", o.depths);
        }
        options.nearest = n[0];
        options.farthest = n[1];
    }
    return options;
}

RowMap mapOf(const LoadedRig& rig, const ZelmMeasureRowOptions& options, const ZelmMeasureRows& rows, char side) {
    RowMap map{rows.width, rows.height, {}};
    map.positions.resize(2 * static_cast<std::size_t>(rows.width) * static_cast<std::size_t>(rows.height));
    rig.require(zelmMeasureAlignRowsMap(rig.handle.get(), &options, side, map.positions.data()), rig.file.string());
    return map;
}

// One coordinate of every position.
std::vector<float> coordinateOf(const RowMap& map, std::size_t which) {
    std::vector<float> values(map.positions.size() / 2);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = map.positions[2 * i + which];
    }
    return values;
}

Picture remapped(const Picture& from, const RowMap& map) {
    Picture to{map.width, map.height, {}};
    to.pixels.resize(map.positions.size() / 2);
    const std::vector<float> x = coordinateOf(map, 0);
    const std::vector<float> y = coordinateOf(map, 1);
    const auto stride = static_cast<std::int32_t>(static_cast<std::size_t>(map.width) * sizeof(float));
    remapImage_8uC1(from.pixels.data(), from.width, from.width, from.height, to.pixels.data(), to.width, to.width,
                    to.height, x.data(), stride, y.data(), stride, 0, 0, to.width - 1, to.height - 1);
    return to;
}

ColourPicture remapped(const ColourPicture& from, const RowMap& map) {
    ColourPicture to{map.width, map.height, {}};
    to.argb.resize(2 * map.positions.size());
    const std::vector<float> x = coordinateOf(map, 0);
    const std::vector<float> y = coordinateOf(map, 1);
    const auto stride = static_cast<std::int32_t>(static_cast<std::size_t>(map.width) * sizeof(float));
    remapImage_8uC4(from.argb.data(), 4 * from.width, from.width, from.height, to.argb.data(), 4 * to.width, to.width,
                    to.height, x.data(), stride, y.data(), stride, 0, 0, to.width - 1, to.height - 1);
    // What no camera sees is black, not transparent.
    for (std::size_t i = 0; i < to.argb.size(); i += 4) {
        to.argb[i] = 255;
    }
    return to;
}

AnyPicture rowsOf(const AnyPicture& picture, const RowMap& map) {
    return std::visit([&](const auto& from) -> AnyPicture { return remapped(from, map); }, picture);
}

std::string seenText(const std::int32_t* seen) {
    return fmt::format("{} x {} from ({}, {})", seen[2], seen[3], seen[0], seen[1]);
}

std::string disparityText(const ZelmMeasureRows& rows) {
    const DisparityRange range = disparityRange(rows);
    return range.count == 0 ? "disparities: unknown, as no plate tells depths; --depths names them"
                            : fmt::format("disparities: {} from {} on", range.count, range.least);
}

}  // namespace

void rectifyRows(const RowsOptions& o, const Console& console) {
    const ZelmMeasureRowOptions options = libraryOptions(o);
    const LoadedRig rig = loadRig(o.rig, console);
    ZelmMeasureRows rows{};
    rows.size = sizeof(rows);
    rig.require(zelmMeasureAlignRows(rig.handle.get(), &options, &rows), o.rig);
    const AnyPicture left = readCameraPicture(o.left, rig, 'L');
    const AnyPicture right = readCameraPicture(o.right, rig, 'R');
    OutputFiles outputs;
    for (const std::string& input : {o.rig, o.left, o.right}) {
        outputs.keep(input);
    }
    outputs.prepareFolder(o.folder);

    const fs::path folder = o.folder;
    const std::string leftStem = fs::path(o.left).stem().string();
    const std::string rightStem = fs::path(o.right).stem().string();
    const bool isAlike = leftStem == rightStem;
    const fs::path leftPath = folder / (leftStem + (isAlike ? "_left" : "") + "_rows.png");
    const fs::path rightPath = folder / (rightStem + (isAlike ? "_right" : "") + "_rows.png");
    const RowMap leftMap = mapOf(rig, options, rows, 'L');
    const RowMap rightMap = mapOf(rig, options, rows, 'R');
    outputs.add(leftPath, encodePng(rowsOf(left, leftMap)));
    outputs.add(rightPath, encodePng(rowsOf(right, rightMap)));
    Json json = rowsJson(rows);
    json["units"] = rig.units;
    json["left"] = leftPath.filename().string();
    json["right"] = rightPath.filename().string();
    outputs.add(folder / "rows.json", jsonText(json) + "\n");
    outputs.add(folder / "rows.yml", rowsYaml(rows));
    if (o.writesMaps) {
        outputs.add(folder / "left_map.npy", npyOf(leftMap));
        outputs.add(folder / "right_map.npy", npyOf(rightMap));
    }
    outputs.commit();
    console.warn(warningOfOneImage(o.left, o.right));

    console.say(
        fmt::format("{} and {}: every point in one row\nfocal length {:.3f} px, baseline {:.4f} {}, {}\n"
                    "seen by the left camera {}, by the right one {}\nwrote rows.json and rows.yml{} to {}",
                    leftPath.string(), rightPath.string(), rows.P1[0], std::abs(rows.P2[3] / rows.P2[0]), rig.units,
                    disparityText(rows), seenText(rows.leftSeen), seenText(rows.rightSeen),
                    o.writesMaps ? ", left_map.npy and right_map.npy" : "", o.folder));
    console.result(json);
}

}  // namespace zelm::tool
