// zelm triangulate: 3-D points of pixel pairs.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "cameraPicture.h"
#include "cloudPage.h"
#include "dotPairs.h"
#include "failure.h"
#include "outputFiles.h"
#include "rigFigures.h"
#include "spacePoints.h"
#include "spaceUncertainty.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct TriangulateOptions {
    std::string rig;
    std::string pairs;
    std::string csv;
    std::string ply;
    bool plyBinary = false;
    std::string page;
    DotOptions dots;
    std::optional<double> noise;  // of the pixels; that of the calibration's dots
    bool covariances = false;     // in the CSV, beside standard deviations
};

// What is known of the points beside their place; empty where the rig has no covariance.
using Uncertainties = std::vector<PointUncertainty>;

// What a result is told from at a glance.
struct Summary {
    DistanceFigures left{};   // distances from projections, pixels
    DistanceFigures right{};  //
    double minDegrees = 180.0;
    double maxDegrees = 0.0;
    std::array<std::size_t, kPointStatuses> counts{};

    std::size_t points() const { return static_cast<std::size_t>(left.count); }
};

// Names of files that would take each other's place.
void checkNames(const TriangulateOptions& o) {
    if (o.plyBinary && o.ply.empty()) {
        failUsage("--ply-binary: of no cloud: give --ply FILE too");
    }
    const auto same = [](const std::string& a, const std::string& b) {
        return !a.empty() && !b.empty() && isSameFile(a, b);
    };
    requirePageName(o.page);
    if (same(o.csv, o.ply)) {
        failUsage("{}: given for both CSV and PLY: give two names", o.csv);
    }
    if (same(o.csv, o.page) || same(o.ply, o.page)) {
        failUsage("{}: given for two outputs: give two names", o.page);
    }
    std::vector<std::string> inputs{o.rig, o.pairs};
    inputs.push_back(covarianceFile(o.rig).string());
    inputs.insert(inputs.end(), o.dots.images.begin(), o.dots.images.end());
    for (const std::string& output : {o.csv, o.ply, o.page}) {
        for (const std::string& input : inputs) {
            if (same(output, input)) {
                failUsage("{}: is an input: give the output another name", output);
            }
        }
    }
}

Summary summaryOf(const std::vector<SpacePoint>& points) {
    Summary s;
    s.counts = countStatuses(points);
    std::vector<double> left;
    std::vector<double> right;
    for (const SpacePoint& p : points) {
        if (p.status == PointStatus::ok) {
            left.push_back(p.errorLeft);
            right.push_back(p.errorRight);
            s.minDegrees = std::min(s.minDegrees, p.degrees);
            s.maxDegrees = std::max(s.maxDegrees, p.degrees);
        }
    }
    s.left = figuresOf(left);
    s.right = figuresOf(right);
    return s;
}

// "3 behind, 1 distortion" of the pairs that gave no point.
std::string failuresText(const Summary& s) {
    std::string text;
    for (std::size_t i = 1; i < kPointStatuses; ++i) {
        if (s.counts[i] > 0) {
            text +=
                fmt::format("{}{} {}", text.empty() ? "" : ", ", s.counts[i], statusWord(static_cast<PointStatus>(i)));
        }
    }
    return text;
}

// Of points whose status leaves them without numbers nothing is known.
Uncertainties uncertaintiesOf(const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                              const TriangulateOptions& o, const LoadedRig& rig) {
    if (!rig.rig.covariance) {
        if (o.noise || o.covariances) {
            rig.requireCovariance();
        }
        return {};
    }
    Uncertainties known = uncertaintyOf(rig, pairs, imageNoiseOf(points, o.noise));
    for (std::size_t i = 0; i < points.size(); ++i) {
        const bool isRight = points[i].status == PointStatus::ok || points[i].status == PointStatus::behind;
        known[i].isKnown = known[i].isKnown && isRight;
    }
    return known;
}

// Of a pixel's coordinate; none where neither the user nor the calibration tells it.
std::optional<double> noiseOf(const TriangulateOptions& o, const LoadedRig& rig) {
    return o.noise || !rig.rig.covariance ? o.noise : rig.rig.covariance->noise;
}

std::string uncertaintyText(const Uncertainties& known, const TriangulateOptions& o, const LoadedRig& rig) {
    if (known.empty()) {
        return fmt::format("no covariance beside {}: no standard deviations", o.rig);
    }
    const UncertaintyMedians m = mediansOf(known);
    const auto part = [](const std::array<double, 3>& s) {
        return fmt::format("X {:.2g}, Y {:.2g}, Z {:.2g}", s[0], s[1], s[2]);
    };
    return fmt::format(
        "standard deviations   {} {} (medians)\n  by noise            {}, of {}\n"
        "  by calibration      {}",
        part(m.total), rig.units, part(m.noise), noiseText(o.dots, o.noise, rig), part(m.calibration));
}

void addUncertainty(Json& json, const Uncertainties& known, const TriangulateOptions& o, const LoadedRig& rig) {
    if (!known.empty()) {
        const UncertaintyMedians m = mediansOf(known);
        if (!o.dots.areGiven() || o.noise) {
            json["noise"] = o.noise.value_or(rig.rig.covariance->noise);
        }
        json["sigmaMedian"] = {{"total", m.total}, {"noise", m.noise}, {"calibration", m.calibration}};
    }
}

std::string summaryText(const Summary& s, std::size_t pairs, const TriangulateOptions& o, const std::string& units) {
    std::string files = o.csv;
    for (const std::string& name : {o.ply, o.page}) {
        files += name.empty() ? "" : " and " + name;
    }
    return fmt::format(
        "{} of {} pixel pairs triangulated, in {}; wrote {}\n"
        "reprojection error    left RMS {:.4f}, worst {:.4f} px; right RMS {:.4f}, worst {:.4f} px\n"
        "intersection angle    {:.3f} to {:.3f} deg",
        s.points(), pairs, units, files, s.left.rms, s.left.max, s.right.rms, s.right.max, s.minDegrees, s.maxDegrees);
}

Json summaryJson(const Summary& s, std::size_t pairs, double maxError, const TriangulateOptions& o) {
    Json counts;
    for (std::size_t i = 0; i < kPointStatuses; ++i) {
        counts[std::string(statusWord(static_cast<PointStatus>(i)))] = s.counts[i];
    }
    Json json{{"pairs", pairs}, {"points", s.points()}, {"statuses", counts}, {"maxError", maxError}};
    for (const auto& [name, figures] : {std::pair("left", &s.left), std::pair("right", &s.right)}) {
        json[name] = {{"reprojectionRms", figures->rms}, {"reprojectionWorst", figures->max}};
    }
    json["angleDegrees"] = {s.minDegrees, s.maxDegrees};
    json["csv"] = o.csv;
    if (!o.ply.empty()) {
        json["ply"] = o.ply;
    }
    if (!o.page.empty()) {
        json["page"] = o.page;
    }
    return json;
}

// Every pixel pair with its point, and how well that is known.
Json pointsJson(const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                const Uncertainties& known) {
    Json list = Json::array();
    for (std::size_t i = 0; i < points.size(); ++i) {
        const SpacePoint& p = points[i];
        const PixelPair& pair = pairs[i];
        Json json{{"id", pair.id},
                  {"status", statusWord(p.status)},
                  {"left", {pair.left.x, pair.left.y}},
                  {"right", {pair.right.x, pair.right.y}}};
        if (p.status == PointStatus::ok || p.status == PointStatus::behind) {
            json["position"] = {p.position.x, p.position.y, p.position.z};
            json["errorPx"] = {p.errorLeft, p.errorRight};
            json["angleDegrees"] = p.degrees;
        }
        if (!known.empty() && known[i].isKnown) {
            json["sigma"] = known[i].total();
            json["noiseSigma"] = known[i].ofNoise();
            json["calibrationSigma"] = known[i].ofCalibration();
        }
        list.push_back(std::move(json));
    }
    return list;
}

// The points that are ok, with what is known of each.
Cloud cloudOf(const TriangulateOptions& o, const std::vector<SpacePoint>& points, const Uncertainties& known,
              const std::string& units) {
    Cloud cloud{"Points of pixel pairs",
                fmt::format("{}, triangulated with {}. Positions are in the frame of the plate of view 0; the depth is "
                            "along the left camera's axis.",
                            fs::path(o.pairs).filename().string(), fs::path(o.rig).filename().string()),
                units,
                {},
                {{"reprojection error, left", "px", false, {}}, {"reprojection error, right", "px", false, {}}}};
    if (!known.empty()) {
        cloud.values.push_back({"standard deviation of the position", units, false, {}});
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (points[i].status == PointStatus::ok) {
            cloud.points.push_back(points[i].position);
            cloud.values[0].values.push_back(points[i].errorLeft);
            cloud.values[1].values.push_back(points[i].errorRight);
            if (!known.empty()) {
                const std::array<double, 3> s = known[i].total();
                cloud.values[2].values.push_back(known[i].isKnown ? std::hypot(s[0], s[1], s[2])
                                                                  : std::numeric_limits<double>::quiet_NaN());
            }
        }
    }
    return cloud;
}

void writeFiles(const TriangulateOptions& o, const std::vector<PixelPair>& pairs, const std::vector<SpacePoint>& points,
                const Uncertainties& known, const LoadedRig& rig, const Console& console, OutputFiles& outputs) {
    outputs.add(o.csv, csvOf(pairs, points, known, o.covariances));
    if (!o.ply.empty()) {
        outputs.add(o.ply, o.plyBinary ? binaryPlyOf(points, known, rig.units) : plyOf(points, known, rig.units));
    }
    if (!o.page.empty()) {
        const Provenance provenance{console.command, timeOfReport(),
                                    hashFiles({{"calibration", o.rig}, {"pixel pairs", o.pairs}})};
        outputs.add(o.page, cloudPage(cloudOf(o, points, known, rig.units), rig.rig, provenance));
    }
    outputs.commit();
}

void runTriangulate(const TriangulateOptions& o, const Console& console) {
    checkNames(o);
    const LoadedRig rig = loadRig(o.rig, console);
    std::vector<PixelPair> pairs = readPairFile(o.pairs);
    OutputFiles outputs;
    outputs.prepareFolder(fs::path(o.csv).parent_path());
    for (const std::string& name : {o.ply, o.page}) {
        if (!name.empty()) {
            outputs.prepareFolder(fs::path(name).parent_path());
        }
    }
    const std::vector<SpacePoint> points = pointsOf(pairs, o.dots, noiseOf(o, rig), rig, o.rig);
    const double maxError = maxErrorOf(o.dots, noiseOf(o, rig));
    const std::string mismatch = mismatchText(points, maxError, o.rig);
    const Uncertainties known = uncertaintiesOf(pairs, points, o, rig);
    const Summary summary = summaryOf(points);
    if (summary.points() == 0) {
        failData(
            "{}: none of {} pixel pairs gave a point ({}): {}", o.pairs, pairs.size(), failuresText(summary),
            mismatch.empty() ? "are left and right exchanged, or is this the calibration of other cameras?" : mismatch);
    }
    writeFiles(o, pairs, points, known, rig, console, outputs);
    if (summary.points() < pairs.size()) {
        console.warn(fmt::format("{}: {} of {} pixel pairs gave no point: {} (see the column status)", o.pairs,
                                 pairs.size() - summary.points(), pairs.size(), failuresText(summary)));
    }
    if (!mismatch.empty()) {
        console.warn(fmt::format("{}: {}", o.pairs, mismatch));
    }
    if (o.dots.areGiven()) {
        console.warn(warningOfOneImage(o.dots.images[0], o.dots.images[1]));
    }
    warnOfMisses(o.pairs, pairs, points, {noiseOf(o, rig), o.dots.areGiven()}, console);
    console.say(summaryText(summary, pairs.size(), o, rig.units));
    console.say(uncertaintyText(known, o, rig));
    if (console.json) {
        Json json = summaryJson(summary, pairs.size(), maxError, o);
        json["units"] = rig.units;
        addUncertainty(json, known, o, rig);
        json["list"] = pointsJson(pairs, points, known);
        console.result(json);
    }
}

}  // namespace

void addTriangulate(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("triangulate", "Make 3-D points of pixel pairs",
                                            "zelm triangulate out/rig.zcal pairs.csv -o points.csv --ply points.ply");
    const auto o = std::make_shared<TriangulateOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("pairs", o->pairs,
               "CSV of raw pixel pairs: xL,yL,xR,yR or id,xL,yL,xR,yR, or columns that a header names so")
        .required();
    sub.option("-o,--output", o->csv, "CSV of the points, a line for each pixel pair").required();
    sub.option("--ply", o->ply, "Also write the points as a PLY cloud, with their standard deviations");
    sub.flag("--ply-binary", o->plyBinary, "Write the PLY cloud in binary form, as floats; it is text otherwise");
    sub.option("--page", o->page, "Also write a page that shows the points in 3-D, to turn and measure (.html)");
    addDotOptions(sub, o->dots);
    sub.option("--noise", o->noise,
               "Standard deviation of the pixels' coordinates, pixels; default: that of the calibration's dots")
        .inRange(1e-6, 1000.0);
    sub.flag("--covariance", o->covariances, "Also write both parts of each point's covariance into the CSV");
    sub.does([o, &console] { runTriangulate(*o, console); });
}

}  // namespace zelm::tool
