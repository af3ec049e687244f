// zelm match: counterparts of pixels of the left image in the right one, and their 3-D points.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "cameraPicture.h"
#include "cloudPage.h"
#include "depthPicture.h"
#include "failure.h"
#include "imageSet.h"
#include "matchCall.h"
#include "matchFiles.h"
#include "numberText.h"
#include "outputFiles.h"
#include "pointFile.h"
#include "rigFigures.h"
#include "spacePoints.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct MatchOptions {
    std::string rig;
    std::string left;
    std::string right;
    std::string csv;
    std::string ply;
    bool plyText = false;
    std::string picture;
    std::string page;
    std::string points;
    int step = 8;
    bool dense = false;
    std::string depth;
    std::string unit;  // empty: that of the calibration
    ZelmMeasureMatchOptions search = defaultSearch(nullptr);
};

// What a result is told from at a glance.
struct Summary {
    std::array<std::size_t, kMatchStatuses> counts{};
    double nearest = 0.0;  // depths of the points that are ok
    double farthest = 0.0;
    double medianDeviation = 0.0;
    std::optional<double> medianCalibration;  // standard deviation of the depth by the calibration, where it is known
    double medianScore = 0.0;
    double seconds = 0.0;
    double processorSeconds = 0.0;  // of all threads together

    std::size_t of(MatchStatus status) const { return counts[static_cast<std::size_t>(status)]; }
    std::size_t found() const { return of(MatchStatus::ok); }
};

void checkNames(const MatchOptions& o) {
    if (o.plyText && o.ply.empty()) {
        failUsage("--ply-text: of no cloud: give --ply FILE too");
    }
    const std::vector<std::string> outputs{o.csv, o.ply, o.picture, o.page};
    const std::vector<std::string> inputs{o.rig, covarianceFile(o.rig).string(), o.left, o.right, o.points};
    const auto same = [](const std::string& a, const std::string& b) {
        return !a.empty() && !b.empty() && isSameFile(a, b);
    };
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        for (std::size_t k = i + 1; k < outputs.size(); ++k) {
            if (same(outputs[i], outputs[k])) {
                failUsage("{}: given for two outputs: give two names", outputs[i]);
            }
        }
        for (const std::string& input : inputs) {
            if (same(outputs[i], input)) {
                failUsage("{}: is an input: give the output another name", outputs[i]);
            }
        }
    }
    if (!o.picture.empty() && fs::path(o.picture).extension() != ".png") {
        failUsage("{}: depth pictures are PNG files: give the name the ending .png", o.picture);
    }
    requirePageName(o.page);
}

ZelmMeasureDepthLimits depthLimits(const MatchOptions& o, const LoadedRig& rig) {
    if (o.depth.empty()) {
        return defaultSearch(rig.handle.get()).limits;
    }
    const std::vector<double> range = numbersOf(o.depth);
    if (range.size() != 2) {
        failUsage("--depth {}: expected MIN,MAX: two distances in the plate's unit", o.depth);
    }
    if (!(range[0] < range[1])) {
        failUsage("--depth {}: an empty range: MIN must be less than MAX", o.depth);
    }
    if (!rig.rig.left.isParallel() && !(range[0] > 0.0)) {
        failUsage("--depth {}: MIN must be greater than 0, in front of the camera", o.depth);
    }
    const ZelmMeasureDepthLimits any = o.search.limits;
    return {range[0], range[1], any.rightMin, any.rightMax};
}

void checkWindow(const MatchOptions& o, const Rig& rig) {
    if (o.search.window % 2 == 0) {
        failUsage("--window {}: must be odd, so that the point is in its middle", o.search.window);
    }
    for (const char side : {'L', 'R'}) {
        const RigCamera& camera = side == 'L' ? rig.left : rig.right;
        if (o.search.window + 2 >= std::min(camera.width, camera.height)) {
            failUsage("--window {}: larger than the {} image of {} x {} pixels: give a smaller one", o.search.window,
                      sideName(side), camera.width, camera.height);
        }
    }
}

std::vector<ImagePoint> pointsOf(const MatchOptions& o, const Picture& left) {
    if (!o.points.empty()) {
        return readPointFile(o.points);
    }
    const int step = o.dense ? 1 : o.step;
    std::vector<ImagePoint> points;
    for (int y = step / 2; y < left.height; y += step) {
        for (int x = step / 2; x < left.width; x += step) {
            points.push_back({{static_cast<double>(x), static_cast<double>(y)}, std::to_string(points.size() + 1)});
        }
    }
    return points;
}

// The points where no search can begin make a message of their own.
void checkOverlap(const MatchOptions& o, const LoadedRig& rig, const std::vector<double>& pixels) {
    std::int32_t any = 0;
    const auto count = static_cast<std::int64_t>(pixels.size() / 2);
    rig.require(zelmMeasureOverlap(rig.handle.get(), &o.search, count, pixels.data(), &any), o.rig);
    if (any == 0) {
        const ZelmMeasureDepthLimits& l = o.search.limits;
        failData(
            "{}: no epipolar line of any of {} points crosses the right image at depths from {:.6g} to {:.6g}: the "
            "cameras see nothing in common there; give another --depth, or check the calibration and the points",
            o.rig, count, l.leftMin, l.leftMax);
    }
}

Summary summaryOf(const std::vector<MatchedPoint>& points) {
    Summary s;
    s.counts = countStatuses(points);
    std::vector<double> depths;
    std::vector<double> deviations;
    std::vector<double> byCalibration;
    std::vector<double> scores;
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            depths.push_back(p.depth);
            deviations.push_back(p.deviation);
            scores.push_back(p.score);
            if (p.calibrationDeviation) {
                byCalibration.push_back(*p.calibrationDeviation);
            }
        }
    }
    if (!depths.empty()) {
        const auto [least, largest] = std::minmax_element(depths.begin(), depths.end());
        s.nearest = *least;
        s.farthest = *largest;
    }
    s.medianDeviation = figuresOf(deviations).median;
    if (!byCalibration.empty()) {
        s.medianCalibration = figuresOf(byCalibration).median;
    }
    s.medianScore = figuresOf(scores).median;
    return s;
}

std::string countsText(const Summary& s) {
    std::string text;
    for (std::size_t i = 1; i < kMatchStatuses; ++i) {
        if (s.counts[i] > 0) {
            text +=
                fmt::format("{}{} {}", text.empty() ? "" : ", ", s.counts[i], statusWord(static_cast<MatchStatus>(i)));
        }
    }
    return text.empty() ? "none" : text;
}

// `points`: all that were asked for; dense results leave out those without texture.
void checkResult(const MatchOptions& o, const Summary& s, std::size_t matched, std::size_t points) {
    if (s.found() > 0) {
        return;
    }
    if (s.of(MatchStatus::outside) == points) {
        failData(
            "{}: all of {} points, or every place where they could be found, are outside their image or nearer to "
            "its edge than half a window of {} pixels: check the points, --depth, and the order of the images",
            o.points.empty() ? o.left : o.points, points, o.search.window);
    }
    const std::size_t hopeless = s.of(MatchStatus::outside) + s.of(MatchStatus::noTexture);
    if (hopeless == matched) {
        failData(
            "{}: none of {} points has texture that promises {} px, with a window of {} pixels inside the image: is "
            "the "
            "image sharp and bright? A larger --precision or --window asks for less",
            o.left, points, o.search.precision, o.search.window);
    }
    failData("{}: none of {} points was found in {} ({}): do the images belong together, and to this calibration?",
             o.left, points, o.right, countsText(s));
}

// Chance finds matches even in pictures that have nothing to do with each other.
void warnOfChance(const MatchOptions& o, const Summary& s, const Console& console) {
    constexpr std::size_t kMinPoints = 50;  // points below which a share tells little
    constexpr double kMinShare = 0.2;       // found, of the points with texture; of a scene it is half of them and more
    const std::size_t sought =
        s.found() + s.of(MatchStatus::noMatch) + s.of(MatchStatus::ambiguous) + s.of(MatchStatus::inconsistent);
    if (sought >= kMinPoints && static_cast<double>(s.found()) < kMinShare * static_cast<double>(sought)) {
        console.warn(
            fmt::format("{}: only {} of {} points with texture were found in {}, and those may be chance: do "
                        "the images belong together, in this order, and to this calibration?",
                        o.left, s.found(), sought, o.right));
    }
}

std::string summaryText(const MatchOptions& o, const Summary& s, std::size_t points) {
    std::string text = fmt::format("{} of {} points matched; the others: {}\n", s.found(), points, countsText(s));
    text +=
        fmt::format("depth {:.6g} to {:.6g} {}, expected standard deviation {:.2g} (median), score {:.3f} (median)\n",
                    s.nearest, s.farthest, o.unit, s.medianDeviation, s.medianScore);
    if (s.medianCalibration) {
        text += fmt::format("the calibration adds a standard deviation of {:.2g} {} (median), shared by neighbours\n",
                            *s.medianCalibration, o.unit);
    }
    const ZelmMeasureDepthLimits& l = o.search.limits;
    text += fmt::format("looked for at depths from {:.6g} to {:.6g} {}, noise {:.2f} gray levels\n", l.leftMin,
                        l.leftMax, o.unit, o.search.noise);
    text += fmt::format("{:.2f} s; {:.2f} s of processor time, {:.0f} points a second of it\nwrote {}", s.seconds,
                        s.processorSeconds, static_cast<double>(points) / std::max(s.processorSeconds, 1e-6), o.csv);
    for (const std::string& name : {o.ply, o.picture, o.page}) {
        text += name.empty() ? "" : ", " + name;
    }
    return text;
}

Json summaryJson(const MatchOptions& o, const Summary& s, std::size_t points) {
    Json counts;
    for (std::size_t i = 0; i < kMatchStatuses; ++i) {
        counts[std::string(statusWord(static_cast<MatchStatus>(i)))] = s.counts[i];
    }
    Json json{{"points", points},
              {"units", o.unit},
              {"found", s.found()},
              {"statuses", counts},
              {"depth", {s.nearest, s.farthest}},
              {"depthSigmaMedian", s.medianDeviation},
              {"scoreMedian", s.medianScore},
              {"depthLimits", {o.search.limits.leftMin, o.search.limits.leftMax}},
              {"noise", o.search.noise},
              {"seconds", s.seconds},
              {"processorSeconds", s.processorSeconds},
              {"csv", o.csv}};
    if (s.medianCalibration) {
        json["depthSigmaCalibrationMedian"] = *s.medianCalibration;
    }
    if (!o.ply.empty()) {
        json["ply"] = o.ply;
    }
    if (!o.picture.empty()) {
        json["picture"] = o.picture;
    }
    if (!o.page.empty()) {
        json["page"] = o.page;
    }
    return json;
}

// The points that are ok, with what is known of each.
Cloud cloudOf(const MatchOptions& o, const std::vector<MatchedPoint>& points, const Picture& left,
              bool withCalibration) {
    Cloud cloud{
        "Points of a scene",
        fmt::format("{} and {}, matched with {}. Positions are in the frame of the plate of view 0; the depth is "
                    "along the left camera's axis.",
                    fs::path(o.left).filename().string(), fs::path(o.right).filename().string(),
                    fs::path(o.rig).filename().string()),
        o.unit,
        {},
        {{"gray level", "", true, {}},
         {"standard deviation of the depth by noise", o.unit, false, {}},
         {"score of the match", "", false, {}}}};
    if (withCalibration) {
        cloud.values.push_back({"standard deviation of the depth by the calibration", o.unit, false, {}});
    }
    for (const MatchedPoint& p : points) {
        if (p.status == MatchStatus::ok) {
            cloud.points.push_back(p.position);
            cloud.values[0].values.push_back(grayAt(left, p.left));
            cloud.values[1].values.push_back(p.deviation);
            cloud.values[2].values.push_back(p.score);
            if (withCalibration) {
                cloud.values[3].values.push_back(
                    p.calibrationDeviation.value_or(std::numeric_limits<double>::quiet_NaN()));
            }
        }
    }
    return cloud;
}

Provenance provenanceOf(const MatchOptions& o, const Console& console) {
    std::vector<NamedFile> files{{"calibration", o.rig}, {"left image", o.left}, {"right image", o.right}};
    if (!o.points.empty()) {
        files.push_back({"pixels", o.points});
    }
    return {console.command, timeOfReport(), hashFiles(files)};
}

void writeFiles(const MatchOptions& o, const std::vector<MatchedPoint>& points, const Picture& left, const Rig& rig,
                const Console& console, OutputFiles& outputs) {
    const bool withCalibration = rig.covariance.has_value();
    outputs.add(o.csv, matchCsv(points, withCalibration));
    if (!o.ply.empty()) {
        outputs.add(o.ply, matchPly(points, left, withCalibration, o.plyText, o.unit));
    }
    if (!o.picture.empty()) {
        constexpr int kSpotOfAList = 5;  // pixels
        const int spot = o.dense ? 1 : (o.points.empty() ? o.step : kSpotOfAList);
        outputs.add(o.picture, depthPicture(points, left, spot, o.unit));
    }
    if (!o.page.empty()) {
        outputs.add(o.page, cloudPage(cloudOf(o, points, left, withCalibration), rig, provenanceOf(o, console)));
    }
    outputs.commit();
}

// Fills in what follows from rig and pictures.
void completeSearch(MatchOptions& o, const LoadedRig& rig, const Picture& left, const Picture& right) {
    constexpr double kReachWindows = 2.0;
    constexpr double kReachSteps = 2.5;  // of a grid
    ZelmMeasureMatchOptions& search = o.search;
    search.reach = std::max(kReachWindows * search.window, o.points.empty() ? kReachSteps * o.step : 0.0);
    search.limits = depthLimits(o, rig);
    search.noise = search.noise > 0.0 ? search.noise : noiseOf(left, right);
}

void runMatch(MatchOptions o, const Console& console) {
    checkNames(o);
    const LoadedRig rig = loadRig(o.rig, console);
    o.unit = o.unit.empty() ? rig.units : o.unit;
    checkWindow(o, rig.rig);
    static_cast<void>(triangulate(rig, o.rig, {}));  // refuses a rig that cannot triangulate
    const Picture left = readGrayCameraPicture(o.left, rig, 'L');
    const Picture right = readGrayCameraPicture(o.right, rig, 'R');
    const std::vector<ImagePoint> points = pointsOf(o, left);
    completeSearch(o, rig, left, right);
    checkOverlap(o, rig, pixelsOf(points));
    OutputFiles outputs;
    for (const std::string& name : {o.csv, o.ply, o.picture, o.page}) {
        if (!name.empty()) {
            outputs.prepareFolder(fs::path(name).parent_path());
        }
    }
    const auto start = std::chrono::steady_clock::now();
    const std::clock_t processorStart = std::clock();
    const std::vector<MatchedPoint> matched =
        matchedPoints({rig, o.rig, left, right, o.search, o.dense}, points, console);
    Summary summary = summaryOf(matched);
    summary.processorSeconds = static_cast<double>(std::clock() - processorStart) / CLOCKS_PER_SEC;
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    checkResult(o, summary, matched.size(), points.size());
    writeFiles(o, matched, left, rig.rig, console, outputs);
    console.warn(warningOfOneImage(o.left, o.right));
    console.warn(o.picture.empty() ? "" : warningOfGlobs({o.left, o.right}, {o.picture}));
    warnOfChance(o, summary, console);
    console.say(summaryText(o, summary, matched.size()));
    console.result(summaryJson(o, summary, matched.size()));
}

}  // namespace

void addMatch(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand(
        "match", "Match pixels of the left image in the right one and make 3-D points of them",
        "zelm match out/rig.zcal scene_left.png scene_right.png -o out/scene.csv --ply out/scene.ply "
        "--picture out/scene_depth.png");
    const auto o = std::make_shared<MatchOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("left", o->left, "Left raw image, as taken").required();
    sub.option("right", o->right, "Right raw image, as taken").required();
    sub.option("-o,--output", o->csv, "CSV of the points, a line each, in the order of the pixels").required();
    sub.option("--ply", o->ply,
               "Also write the points found as a PLY cloud with their gray levels and the standard deviations of their "
               "depths");
    sub.flag("--ply-text", o->plyText, "Write the PLY cloud as text; it is binary otherwise");
    sub.option("--picture", o->picture, "Also write a picture of the depths (.png)");
    sub.option("--page", o->page, "Also write a page that shows the points in 3-D, to turn and measure (.html)");
    Option points = sub.option("--points", o->points, "CSV of pixels of the left image: x,y or id,x,y");
    Option grid = sub.option("--grid", o->step, "Look for the pixels of a grid with this step, pixels")
                      .inRange(1, 10000)
                      .showDefault();
    Option dense = sub.flag("--dense", o->dense, "Look for every pixel with texture");
    points.excludes(grid).excludes(dense);
    grid.excludes(dense);
    sub.option("--window", o->search.window, "Side of the window that is compared, pixels, odd")
        .inRange(7, 101)
        .showDefault();
    sub.option("--depth", o->depth,
               "MIN,MAX: distances along the left camera's axis to search, in the plate's unit; default: from "
               "half the distance of the nearest plate of the calibration to twice that of the farthest, for "
               "each perspective camera, as far as the right image shows it");
    sub.option("--precision", o->search.precision,
               "Leave out points whose texture promises a larger standard deviation along the line, pixels")
        .inRange(0.001, 10.0)
        .showDefault();
    sub.option("--noise", o->search.noise,
               "Standard deviation of a gray level by noise; default: estimated from both images")
        .inRange(0.01, 100.0);
    sub.option("--min-score", o->search.minScore, "Smallest score of a match: its correlation with the noise taken out")
        .inRange(0.0, 1.0)
        .showDefault();
    sub.option("--return-tolerance", o->search.returnTolerance,
               "Largest distance from the start at which the way back may end, pixels")
        .inRange(0.01, 100.0)
        .showDefault();
    sub.option("--unit", o->unit, "Name of the plate's unit; default: that in rig.json beside the calibration");
    sub.option("--jobs", o->search.threads,
               "Number of threads, at most as many as the machine runs at a time; 0: that many. The result does not "
               "depend on it")
        .inRange(0, 1024)
        .showDefault();
    sub.does([o, &console] { runMatch(*o, console); });
}

}  // namespace zelm::tool
