#include "sceneComparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cameraPicture.h"
#include "dots.h"
#include "failure.h"
#include "numberText.h"
#include "rigFigures.h"
#include "spacePoints.h"
#include "targets.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct ScenePoint {
    Point3d position{};    // true
    PixelPair pixels;      // true
    Point3d fromPixels{};  // triangulated from them
    bool isTarget = false;
    bool isEvenlyLit = true;
    PixelPair outlines;  // of a target: the centroids of its dot's true outlines
};

// What a target's pixels and points of space are by each way of finding its centre.
struct Target {
    const ScenePoint* truth = nullptr;
    std::optional<Point3d> measured;   // as a circle
    Point3d fromOutlines{};            // triangulated from the centroids of the true outlines,
    std::optional<PixelPair> centres;  // and from the centres of the ellipses in both images
    Point3d fromCentres{};             //
};

// A line of the result: how far some points are from where they should be.
struct Distances {
    std::string name;
    std::string key;
    DistanceFigures figures;  // plate units
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

// Triangulates pairs that must give points.
std::vector<Point3d> positionsOf(const LoadedRig& rig, const std::string& file, const std::vector<PixelPair>& pairs) {
    std::vector<Point3d> positions;
    for (const SpacePoint& point : triangulate(rig, file, pairs)) {
        if (point.status != PointStatus::ok) {
            const PixelPair& pair = pairs[positions.size()];
            failData(
                "left ({:.2f}, {:.2f}), right ({:.2f}, {:.2f}): no point of this pixel pair ({}): is this the right "
                "calibration?",
                pair.left.x, pair.left.y, pair.right.x, pair.right.y, statusWord(point.status));
        }
        positions.push_back(point.position);
    }
    return positions;
}

// The centre of the dark dot at each pixel; none where there is no dot.
std::vector<std::optional<Point2d>> dotCentres(const Picture& picture, const std::vector<Point2d>& seeds) {
    std::vector<double> pixels;
    for (const Point2d& p : seeds) {
        pixels.insert(pixels.end(), {p.x, p.y});
    }
    std::vector<std::int32_t> statuses(seeds.size());
    const ZelmMeasureImage image = imageOf(picture);
    if (zelmMeasureDotCentres(&image, static_cast<std::int64_t>(seeds.size()), pixels.data(), 0, pixels.data(),
                              statuses.data()) < 0) {
        failData("out of memory while looking for dots");
    }
    std::vector<std::optional<Point2d>> centres(seeds.size());
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        if (statuses[i] == ZELM_MEASURE_DOT_OK) {
            centres[i] = Point2d{pixels[2 * i], pixels[2 * i + 1]};
        }
    }
    return centres;
}

std::vector<Target> targetsOf(const std::vector<ScenePoint>& points, const LoadedRig& rig, const std::string& file,
                              const Picture& left, const Picture& right) {
    std::vector<Target> targets;
    std::vector<PixelPair> outlines;
    std::vector<PixelPair> seeds;
    std::vector<Point2d> leftSeeds;
    std::vector<Point2d> rightSeeds;
    for (const ScenePoint& point : points) {
        if (point.isTarget) {
            targets.push_back({&point, {}, {}, {}, {}});
            outlines.push_back(point.outlines);
            seeds.push_back(point.pixels);
            leftSeeds.push_back(point.pixels.left);
            rightSeeds.push_back(point.pixels.right);
        }
    }
    const std::vector<Point3d> fromOutlines = positionsOf(rig, file, outlines);
    const std::vector<SpacePoint> circles = measureTargets(rig, file, left, right, seeds, false, {});
    const auto leftCentres = dotCentres(left, leftSeeds);
    const auto rightCentres = dotCentres(right, rightSeeds);
    for (std::size_t i = 0; i < targets.size(); ++i) {
        targets[i].fromOutlines = fromOutlines[i];
        if (circles[i].status == PointStatus::ok) {
            targets[i].measured = circles[i].position;
        }
        if (leftCentres[i] && rightCentres[i]) {
            targets[i].centres = PixelPair{*leftCentres[i], *rightCentres[i], ""};
            targets[i].fromCentres = positionsOf(rig, file, {*targets[i].centres}).front();
        }
    }
    return targets;
}

template <typename List, typename Use, typename Measure>
Distances distancesOf(const char* name, const char* key, const List& list, Use use, Measure measure) {
    std::vector<double> distances;
    for (const auto& item : list) {
        if (use(item)) {
            distances.push_back(measure(item));
        }
    }
    return {name, key, figuresOf(distances)};
}

std::vector<Distances> allDistances(const std::vector<ScenePoint>& points, const std::vector<Target>& targets) {
    const auto all = [](const auto&) { return true; };
    const auto isMeasured = [](const Target& t) { return t.measured.has_value(); };
    const auto isEven = [&](const Target& t) { return isMeasured(t) && t.truth->isEvenlyLit; };
    const auto isUneven = [&](const Target& t) { return isMeasured(t) && !t.truth->isEvenlyLit; };
    const auto fromPixels = [](const ScenePoint& p) { return distance(p.fromPixels, p.position); };
    const auto hasCentres = [](const Target& t) { return t.centres.has_value(); };
    const auto fromMeasured = [](const Target& t) { return distance(*t.measured, t.truth->position); };
    return {
        distancesOf("all points, from true pixels", "pointsFromTruePixels", points, all, fromPixels),
        distancesOf("targets, measured as circles", "targetsMeasured", targets, isMeasured, fromMeasured),
        distancesOf("  evenly lit ones", "targetsMeasuredEvenlyLit", targets, isEven, fromMeasured),
        distancesOf("  with a shadow edge on the pad", "targetsMeasuredShadowed", targets, isUneven, fromMeasured),
        distancesOf("  of this: calibration", "targetsCalibration", targets, isMeasured,
                    [](const Target& t) { return distance(t.truth->fromPixels, t.truth->position); }),
        distancesOf("  of this: noise and finding the outline", "targetsNoise", targets, isMeasured,
                    [](const Target& t) { return distance(*t.measured, t.truth->fromPixels); }),
        distancesOf("targets, from the ellipses' centres", "targetsFromCentres", targets, hasCentres,
                    [](const Target& t) { return distance(t.fromCentres, t.truth->position); }),
        distancesOf("  of this: centre of the outline", "targetsCentreBias", targets, hasCentres,
                    [](const Target& t) { return distance(t.fromOutlines, t.truth->fromPixels); }),
    };
}

// Distances in pixels between the centres measured and the centroids of the true outlines, both images.
DistanceFigures centreErrors(const std::vector<Target>& targets) {
    std::vector<double> distances;
    for (const Target& t : targets) {
        if (t.centres) {
            const PixelPair& o = t.truth->outlines;
            distances.push_back(std::hypot(t.centres->left.x - o.left.x, t.centres->left.y - o.left.y));
            distances.push_back(std::hypot(t.centres->right.x - o.right.x, t.centres->right.y - o.right.y));
        }
    }
    return figuresOf(distances);
}

// Errors of the distances between points that are far apart, each over its length.
DistanceFigures lengthErrors(const std::vector<ScenePoint>& points) {
    constexpr double kFar = 0.3;  // of the scene
    double extent = 0.0;
    for (const ScenePoint& a : points) {
        for (const ScenePoint& b : points) {
            extent = std::max(extent, distance(a.position, b.position));
        }
    }
    std::vector<double> errors;
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            const double length = distance(points[i].position, points[k].position);
            if (length > kFar * extent) {
                errors.push_back(std::fabs(distance(points[i].fromPixels, points[k].fromPixels) / length - 1.0));
            }
        }
    }
    return figuresOf(errors);
}

std::string textOf(const std::vector<Distances>& list, const DistanceFigures& lengths, std::size_t missed,
                   const DistanceFigures& centres, const std::string& units) {
    std::string text = fmt::format("{:<40}{:>8}{:>12}{:>12}", "3-D distance, " + units, "points", "RMS", "worst");
    for (const Distances& d : list) {
        if (d.figures.count > 0) {
            text +=
                fmt::format("\n{:<40}{:>8}{:>12.5f}{:>12.5f}", d.name, d.figures.count, d.figures.rms, d.figures.max);
        }
    }
    if (lengths.rms > 0.0) {
        text +=
            fmt::format("\nlengths over 30 % of the scene, from true pixels: error RMS 1 : {:.0f}, worst 1 : {:.0f}",
                        1.0 / lengths.rms, 1.0 / lengths.max);
    }
    if (centres.count > 0) {
        text += fmt::format("\nellipses' centres to the true outlines' centroids: RMS {:.4f}, worst {:.4f} px",
                            centres.rms, centres.max);
    }
    if (missed > 0) {
        text += fmt::format("\n{} not found in the images", counted(missed, "target"));
    }
    return text;
}

Json figuresJson(const DistanceFigures& figures) {
    return {{"count", figures.count}, {"rms", figures.rms}, {"worst", figures.max}};
}

}  // namespace

bool isSceneTruth(const nlohmann::json& truth) {
    return truth.is_object() && truth.contains("points") && truth["points"].is_array() && !truth["points"].empty();
}

void compareScene(const LoadedRig& rig, const fs::path& rigPath, const nlohmann::json& truth, const fs::path& truthPath,
                  const Console& console) {
    std::vector<ScenePoint> points;
    bool anyTarget = false;
    for (const nlohmann::json& object : truth["points"]) {
        points.push_back(scenePointOf(object, truthPath));
        anyTarget = anyTarget || points.back().isTarget;
    }
    std::vector<PixelPair> pairs;
    std::transform(points.begin(), points.end(), std::back_inserter(pairs),
                   [](const ScenePoint& p) { return p.pixels; });
    const std::vector<Point3d> positions = positionsOf(rig, rigPath.string(), pairs);
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i].fromPixels = positions[i];
    }
    std::vector<Target> targets;
    if (anyTarget) {
        const Picture left = sceneImage(truth, "left_image", truthPath, rig, 'L');
        const Picture right = sceneImage(truth, "right_image", truthPath, rig, 'R');
        targets = targetsOf(points, rig, rigPath.string(), left, right);
    }
    const std::vector<Distances> list = allDistances(points, targets);
    const DistanceFigures centres = centreErrors(targets);
    const std::size_t missed = targets.size() - static_cast<std::size_t>(list[1].figures.count);
    const DistanceFigures lengths = lengthErrors(points);
    console.say(textOf(list, lengths, missed, centres, rig.units));
    Json json{{"units", rig.units},
              {"targets", targets.size()},
              {"targetsNotFound", missed},
              {"centreErrorPixels", figuresJson(centres)},
              {"relativeLengthErrors", figuresJson(lengths)}};
    for (const Distances& d : list) {
        json[d.key] = figuresJson(d.figures);
    }
    console.result(json);
}

}  // namespace zelm::tool
