#include "sceneComparison.h"

#include <fmt/format.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cameraPicture.h"
#include "dotCentre.h"
#include "failure.h"
#include "jsonText.h"
#include "rigFigures.h"
#include "spacePoints.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct ScenePoint {
    Point3d position{};  // true
    PixelPair pixels;    // true
    bool isTarget = false;
    bool isEvenlyLit = true;
    PixelPair outlines;  // of a target: the centroids of its dot's true outlines
};

// What a target's pixels and points of space are by each way of finding its centre.
struct Target {
    const ScenePoint* truth = nullptr;
    std::optional<PixelPair> measured;
    Point3d fromTruth{};     // triangulated from the true pixels,
    Point3d fromOutlines{};  // from the centroids of the true outlines,
    Point3d fromMeasured{};  // and from the centres measured
};

// A line of the result: how far some points are from where they should be.
struct Distances {
    std::string name;
    std::string key;
    DistanceFigures figures;  // plane units
};

std::vector<double> numbersAt(const nlohmann::json& object, const char* key, std::size_t count, const fs::path& path) {
    if (!object.is_object() || !object.contains(key) || !object[key].is_array() || object[key].size() != count) {
        failUsage("{}: a point has no list \"{}\" of {} numbers: is this the truth of a scene?", path.string(), key,
                  count);
    }
    for (const nlohmann::json& number : object[key]) {
        if (!number.is_number()) {
            failUsage("{}: \"{}\" of a point holds something that is not a number", path.string(), key);
        }
    }
    return object[key].get<std::vector<double>>();
}

Point2d pixelAt(const nlohmann::json& object, const char* key, const fs::path& path) {
    const std::vector<double> xy = numbersAt(object, key, 2, path);
    return {xy[0], xy[1]};
}

ScenePoint scenePointOf(const nlohmann::json& object, const fs::path& path) {
    const std::vector<double> world = numbersAt(object, "world", 3, path);
    ScenePoint point;
    point.position = {world[0], world[1], world[2]};
    for (const char* side : {"left", "right"}) {
        if (!object.contains(side)) {
            failUsage("{}: a point has no object \"{}\": is this the truth of a scene?", path.string(), side);
        }
    }
    point.pixels = {pixelAt(object["left"], "pixel", path), pixelAt(object["right"], "pixel", path), ""};
    point.isTarget = object.contains("dot_outline_centroid_left");
    if (point.isTarget) {
        point.outlines = {pixelAt(object, "dot_outline_centroid_left", path),
                          pixelAt(object, "dot_outline_centroid_right", path), ""};
        const auto lit = object.find("pad_evenly_lit");
        point.isEvenlyLit = lit == object.end() || !lit->is_boolean() || lit->get<bool>();
    }
    return point;
}

Picture sceneImage(const nlohmann::json& truth, const char* key, const fs::path& path, const LoadedRig& rig,
                   char side) {
    if (!truth.contains(key) || !truth[key].is_string()) {
        failUsage("{}: no name \"{}\" of an image: is this the truth of a scene?", path.string(), key);
    }
    return readGrayCameraPicture(path.parent_path() / truth[key].get<std::string>(), rig, side);
}

double distance(const Point3d& a, const Point3d& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

Point3d positionOf(const Triangulator& triangulate, const PixelPair& pair) {
    const SpacePoint point = triangulate(pair);
    if (point.status != PointStatus::ok) {
        failData("left ({:.2f}, {:.2f}), right ({:.2f}, {:.2f}): no point of this pair ({}): is this the right rig?",
                 pair.left.x, pair.left.y, pair.right.x, pair.right.y, statusWord(point.status));
    }
    return point.position;
}

std::vector<Target> measureTargets(const std::vector<ScenePoint>& points, const Triangulator& triangulate,
                                   const Picture& left, const Picture& right) {
    std::vector<Target> targets;
    for (const ScenePoint& point : points) {
        if (!point.isTarget) {
            continue;
        }
        Target target{&point, {}, positionOf(triangulate, point.pixels), positionOf(triangulate, point.outlines), {}};
        const auto leftCentre = dotCentre(left, point.pixels.left, DotPolarity::dark);
        const auto rightCentre = dotCentre(right, point.pixels.right, DotPolarity::dark);
        if (leftCentre && rightCentre) {
            target.measured = PixelPair{*leftCentre, *rightCentre, ""};
            target.fromMeasured = positionOf(triangulate, *target.measured);
        }
        targets.push_back(target);
    }
    return targets;
}

template <typename List, typename Use, typename Measure>
Distances distancesOf(const char* name, const char* key, const List& list, Use use, Measure measure) {
    Distances result{name, key, {}};
    for (const auto& item : list) {
        if (use(item)) {
            result.figures.add(measure(item));
        }
    }
    result.figures.finish();
    return result;
}

std::vector<Distances> allDistances(const std::vector<ScenePoint>& points, const std::vector<Target>& targets,
                                    const Triangulator& triangulate) {
    const auto all = [](const auto&) { return true; };
    const auto isMeasured = [](const Target& t) { return t.measured.has_value(); };
    const auto isEven = [&](const Target& t) { return isMeasured(t) && t.truth->isEvenlyLit; };
    const auto isUneven = [&](const Target& t) { return isMeasured(t) && !t.truth->isEvenlyLit; };
    const auto fromPixels = [&](const ScenePoint& p) {
        return distance(positionOf(triangulate, p.pixels), p.position);
    };
    const auto fromMeasured = [](const Target& t) { return distance(t.fromMeasured, t.truth->position); };
    return {
        distancesOf("all points, from true pixels", "pointsFromTruePixels", points, all, fromPixels),
        distancesOf("targets, from measured centres", "targetsMeasured", targets, isMeasured, fromMeasured),
        distancesOf("  evenly lit ones", "targetsMeasuredEvenlyLit", targets, isEven, fromMeasured),
        distancesOf("  with a shadow edge on the pad", "targetsMeasuredShadowed", targets, isUneven, fromMeasured),
        distancesOf("  of this: calibration", "targetsCalibration", targets, isMeasured,
                    [](const Target& t) { return distance(t.fromTruth, t.truth->position); }),
        distancesOf("  of this: outline not projected centre", "targetsCentreBias", targets, isMeasured,
                    [](const Target& t) { return distance(t.fromOutlines, t.fromTruth); }),
        distancesOf("  of this: noise and outline finding", "targetsNoise", targets, isMeasured,
                    [](const Target& t) { return distance(t.fromMeasured, t.fromOutlines); }),
    };
}

// Distances in pixels between the centres measured and the centroids of the true outlines, both images.
DistanceFigures centreErrors(const std::vector<Target>& targets) {
    DistanceFigures figures;
    for (const Target& t : targets) {
        if (t.measured) {
            const PixelPair& o = t.truth->outlines;
            figures.add(std::hypot(t.measured->left.x - o.left.x, t.measured->left.y - o.left.y));
            figures.add(std::hypot(t.measured->right.x - o.right.x, t.measured->right.y - o.right.y));
        }
    }
    figures.finish();
    return figures;
}

std::string textOf(const std::vector<Distances>& list, std::size_t missed, const DistanceFigures& centres) {
    std::string text = fmt::format("{:<40}{:>8}{:>12}{:>12}", "3-D distance, plane units", "points", "RMS", "worst");
    for (const Distances& d : list) {
        if (d.figures.count > 0) {
            text +=
                fmt::format("\n{:<40}{:>8}{:>12.5f}{:>12.5f}", d.name, d.figures.count, d.figures.rms, d.figures.worst);
        }
    }
    if (centres.count > 0) {
        text += fmt::format("\ncentres measured to the true outlines' centroids: RMS {:.4f}, worst {:.4f} px",
                            centres.rms, centres.worst);
    }
    if (missed > 0) {
        text += fmt::format("\n{} targets not found in the images", missed);
    }
    return text;
}

Json figuresJson(const DistanceFigures& figures) {
    return {{"count", figures.count}, {"rms", figures.rms}, {"worst", figures.worst}};
}

}  // namespace

bool isSceneTruth(const nlohmann::json& truth) {
    return truth.is_object() && truth.contains("points") && truth["points"].is_array() && !truth["points"].empty();
}

void compareScene(const LoadedRig& rig, const fs::path& rigPath, const nlohmann::json& truth, const fs::path& truthPath,
                  const Console& console) {
    const Triangulator triangulate(rig, rigPath.string());
    std::vector<ScenePoint> points;
    bool anyTarget = false;
    for (const nlohmann::json& object : truth["points"]) {
        points.push_back(scenePointOf(object, truthPath));
        anyTarget = anyTarget || points.back().isTarget;
    }
    std::vector<Target> targets;
    if (anyTarget) {
        const Picture left = sceneImage(truth, "left_image", truthPath, rig, 'L');
        const Picture right = sceneImage(truth, "right_image", truthPath, rig, 'R');
        targets = measureTargets(points, triangulate, left, right);
    }
    const std::vector<Distances> list = allDistances(points, targets, triangulate);
    const DistanceFigures centres = centreErrors(targets);
    const std::size_t missed = targets.size() - list[1].figures.count;
    console.say(textOf(list, missed, centres));
    Json json{{"targets", targets.size()}, {"targetsNotFound", missed}, {"centreErrorPixels", figuresJson(centres)}};
    for (const Distances& d : list) {
        json[d.key] = figuresJson(d.figures);
    }
    console.result(jsonText(json));
}

}  // namespace zelm::tool
