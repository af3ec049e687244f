// zelm compare: how far a calibration, or what is measured with it, is from the truth of rendered images.
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <numbers>
#include <vector>

#include "cameraParameters.h"
#include "depthComparison.h"
#include "failure.h"
#include "jsonFields.h"
#include "numberText.h"
#include "outputFiles.h"
#include "rigComparison.h"
#include "rigFile.h"
#include "sceneComparison.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct Comparison {
    std::string quantity;
    std::string unit;
    double calibrated = 0.0;
    double truth = 0.0;
    bool relative = false;  // judged in parts of itself

    double difference() const { return calibrated - truth; }
};

// An object of the truth file, found by its name in an enclosing object.
const nlohmann::json& member(const nlohmann::json& object, const std::string& name, const fs::path& path) {
    if (!object.contains(name) || !object[name].is_object()) {
        failUsage("{}: no object \"{}\": is this the truth of rendered views?", path.string(), name);
    }
    return object[name];
}

double numberAt(const nlohmann::json& object, const std::string& name, const fs::path& path) {
    if (!object.contains(name) || !object[name].is_number()) {
        failUsage("{}: no number \"{}\": is this the truth of rendered views?", path.string(), name);
    }
    return object[name].get<double>();
}

void compareCamera(const std::string& side, const RigCamera& camera, const std::string& units,
                   const nlohmann::json& truth, const fs::path& path, std::vector<Comparison>& list) {
    const auto add = [&](const std::string& name, const std::string& unit, double value, const std::string& key) {
        list.push_back({side + " " + name, unit, value, numberAt(truth, key, path)});
    };
    const ZelmCameraIntrinsics& k = camera.intrinsics;
    const ScaleWords scale = scaleWords(camera.model, units);
    add(scale.name + " x", scale.unit, k.alpha, "fx");
    list.back().relative = true;
    // The truth counts along the rows' normal, beta of a tilted camera along its sheared axis.
    add(scale.name + " y", scale.unit, k.beta / std::cos(k.theta), "fy");
    list.back().relative = true;
    add("principal point x", "px", k.cx, "cx");
    add("principal point y", "px", k.cy, "cy");
    add("distortion k1", "", k.k1, "k1");
    add("distortion k2", "", k.k2, "k2");
}

void comparePair(const PairGeometry& pair, const std::string& units, const nlohmann::json& truth, const fs::path& path,
                 std::vector<Comparison>& list) {
    const auto numbers = [&](const char* name, std::size_t count) {
        if (!truth.contains(name) || !truth[name].is_array() || truth[name].size() != count) {
            failUsage("{}: right_from_left has no list \"{}\" of {} numbers", path.string(), name, count);
        }
        return truth[name].get<std::vector<double>>();
    };
    const std::vector<double> R = numbers("R", 9);
    const std::vector<double> t = numbers("t", 3);
    list.push_back({"baseline", units, pair.baseline, std::hypot(t[0], t[1], t[2]), true});
    list.push_back(
        {"convergence angle", "deg", pair.convergence * kDegreesPerRadian, std::acos(R[8]) * 180.0 / std::numbers::pi});
}

std::vector<Comparison> compare(const LoadedRig& loaded, const nlohmann::json& truth, const fs::path& path) {
    const Rig& rig = loaded.rig;
    std::vector<Comparison> list;
    const nlohmann::json& cameras = member(truth, "cameras", path);
    compareCamera("left", rig.left, loaded.units, member(cameras, "left", path), path, list);
    compareCamera("right", rig.right, loaded.units, member(cameras, "right", path), path, list);
    if (rig.pair) {
        comparePair(*rig.pair, loaded.units, member(truth, "right_from_left", path), path, list);
    }
    return list;
}

std::string comparisonText(const std::vector<Comparison>& list) {
    std::string text =
        fmt::format("{:<26}{:>14}{:>14}{:>12}  {}", "quantity", "calibrated", "truth", "difference", "unit");
    for (const Comparison& c : list) {
        text += fmt::format("\n{:<26}{:>14.5f}{:>14.5f}{:>12.5f}", c.quantity, c.calibrated, c.truth, c.difference());
        text += c.unit.empty() ? "" : fmt::format("  {}", c.unit);
        if (c.relative) {
            text += fmt::format(" ({:+.4f} %)", 100.0 * c.difference() / c.truth);
        }
    }
    return text;
}

// What no calibration of these cameras would be off by, whatever its noise.
void warnOfHopeless(const std::vector<Comparison>& list, const fs::path& rig, const Console& console) {
    constexpr double kMaxRelative = 0.1;
    for (const Comparison& c : list) {
        if (c.relative && !(std::fabs(c.difference()) <= kMaxRelative * std::fabs(c.truth))) {
            console.warn(
                fmt::format("{}: the {} is off by {:.0f} %: this is no calibration of the cameras of this "
                            "truth, or its images did not belong together",
                            rig.string(), c.quantity, 100.0 * c.difference() / c.truth));
            return;
        }
    }
}

struct CompareOptions {
    std::string rig;
    std::string truth;
    std::string points;
    std::string depths;
    double within = 0.2;
};

void runCompare(const CompareOptions& o, const Console& console) {
    const fs::path rigPath = o.rig;
    const fs::path truthPath = o.truth;
    const std::string bytes = readWholeFile(truthPath, "the truth of rendered views, or another calibration");
    if (isCalibrationFile(bytes)) {
        if (!o.points.empty()) {
            failUsage("--points {}: of the truth of a scene alone, and {} is a calibration", o.points, o.truth);
        }
        compareRigs(o.rig, o.truth, o.depths, console);
        return;
    }
    if (!o.depths.empty()) {
        failUsage("--depths {}: of two calibrations alone, and {} is none", o.depths, o.truth);
    }
    const LoadedRig rig = loadRig(rigPath, console);
    if (rig.summary.isDoubtful()) {
        console.warn(savedVerdictText(rigPath, rig.summary));
    }
    const nlohmann::json truth = parseCommentedJson(truthPath.string(), bytes);
    if (!o.points.empty()) {
        compareDepths(rig, truth, truthPath, o.points, o.within, console);
        return;
    }
    if (isSceneTruth(truth)) {
        compareScene(rig, rigPath, truth, truthPath, console);
        return;
    }
    const std::vector<Comparison> list = compare(rig, truth, truthPath);
    warnOfHopeless(list, rigPath, console);
    console.say(comparisonText(list));
    Json json = Json::array();
    for (const Comparison& c : list) {
        json.push_back({{"quantity", c.quantity},
                        {"unit", c.unit},
                        {"calibrated", c.calibrated},
                        {"truth", c.truth},
                        {"difference", c.difference()}});
    }
    console.result({{"comparisons", json}});
}

}  // namespace

void addCompare(CommandLine& commandLine, Console& console) {
    Subcommand sub =
        commandLine.subcommand("compare", "Compare a calibration with another, or with the truth of rendered images",
                               "zelm compare out/rig.zcal samples/desk-rig/truth.json");
    const auto o = std::make_shared<CompareOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("truth", o->truth,
               "The truth of views (truth.json) or of a scene (scene_truth.json), or another calibration")
        .required();
    sub.option("--points", o->points, "CSV of zelm match: compare its depths with the depth map of the scene");
    sub.option("--within", o->within,
               "With --points: count those within this distance of the true depth, in the plate's unit")
        .positive()
        .showDefault();
    sub.option("--depths", o->depths,
               "Of two calibrations: nearest,farthest depth of the volume; default: by the first one's plates");
    sub.does([o, &console] { runCompare(*o, console); });
}

}  // namespace zelm::tool
