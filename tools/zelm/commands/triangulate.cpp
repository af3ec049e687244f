// zelm triangulate: 3-D points of pixel pairs.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "cameraPicture.h"
#include "dots.h"
#include "failure.h"
#include "jsonText.h"
#include "outputFiles.h"
#include "rigFigures.h"
#include "spacePoints.h"
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
    std::vector<std::string> dotImages;  // left and right, or none
    std::string polarity = "dark";
};

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
    const auto same = [](const std::string& a, const std::string& b) {
        return !a.empty() && !b.empty() && isSameFile(a, b);
    };
    if (same(o.csv, o.ply)) {
        failUsage("{}: given for both CSV and PLY: give two names", o.csv);
    }
    std::vector<std::string> inputs{o.rig, o.pairs};
    inputs.insert(inputs.end(), o.dotImages.begin(), o.dotImages.end());
    for (const std::string& output : {o.csv, o.ply}) {
        for (const std::string& input : inputs) {
            if (same(output, input)) {
                failUsage("{}: is an input: give the output another name", output);
            }
        }
    }
}

// The centres of the dots that pixels of a picture lie in; tells where there is none.
std::vector<bool> moveToDots(const Picture& picture, const std::string& polarity, std::vector<double>& pixels) {
    const ZelmMeasureImage image = imageOf(picture);
    std::vector<std::int32_t> statuses(pixels.size() / 2);
    if (zelmMeasureDotCentres(&image, static_cast<std::int64_t>(statuses.size()), pixels.data(),
                              polarity == "bright" ? 1 : 0, pixels.data(), statuses.data()) < 0) {
        failData("out of memory while looking for dots: give fewer pairs at a time");
    }
    std::vector<bool> found(statuses.size());
    std::transform(statuses.begin(), statuses.end(), found.begin(),
                   [](std::int32_t status) { return status == ZELM_MEASURE_DOT_OK; });
    return found;
}

// Moves the pixels of the pairs onto the centres of the dots that they lie in; tells where there is none in both
// images.
std::vector<bool> moveToDots(std::vector<PixelPair>& pairs, const TriangulateOptions& o, const LoadedRig& rig) {
    const Picture leftPicture = readGrayCameraPicture(o.dotImages[0], rig, 'L');
    const Picture rightPicture = readGrayCameraPicture(o.dotImages[1], rig, 'R');
    std::vector<double> left;
    std::vector<double> right;
    for (const PixelPair& pair : pairs) {
        left.insert(left.end(), {pair.left.x, pair.left.y});
        right.insert(right.end(), {pair.right.x, pair.right.y});
    }
    std::vector<bool> found = moveToDots(leftPicture, o.polarity, left);
    const std::vector<bool> foundRight = moveToDots(rightPicture, o.polarity, right);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        found[i] = found[i] && foundRight[i];
        if (found[i]) {
            pairs[i].left = {left[2 * i], left[2 * i + 1]};
            pairs[i].right = {right[2 * i], right[2 * i + 1]};
        }
    }
    return found;
}

std::vector<SpacePoint> pointsOf(std::vector<PixelPair>& pairs, const TriangulateOptions& o, const LoadedRig& rig) {
    std::vector<bool> found(pairs.size(), true);
    if (!o.dotImages.empty()) {
        found = moveToDots(pairs, o, rig);
    }
    std::vector<SpacePoint> points = triangulate(rig, o.rig, pairs);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (!found[i]) {
            points[i] = {};
            points[i].status = PointStatus::noDot;
        }
    }
    return points;
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

std::string summaryText(const Summary& s, std::size_t pairs, const TriangulateOptions& o) {
    return fmt::format(
        "{} of {} pixel pairs triangulated; wrote {}{}{}\n"
        "reprojection error    left RMS {:.4f}, worst {:.4f} px; right RMS {:.4f}, worst {:.4f} px\n"
        "intersection angle    {:.3f} to {:.3f} deg",
        s.points(), pairs, o.csv, o.ply.empty() ? "" : " and ", o.ply, s.left.rms, s.left.max, s.right.rms, s.right.max,
        s.minDegrees, s.maxDegrees);
}

Json summaryJson(const Summary& s, std::size_t pairs, const TriangulateOptions& o) {
    Json counts;
    for (std::size_t i = 0; i < kPointStatuses; ++i) {
        counts[std::string(statusWord(static_cast<PointStatus>(i)))] = s.counts[i];
    }
    Json json{{"pairs", pairs}, {"points", s.points()}, {"statuses", counts}};
    for (const auto& [name, figures] : {std::pair("left", &s.left), std::pair("right", &s.right)}) {
        json[name] = {{"reprojectionRms", figures->rms}, {"reprojectionWorst", figures->max}};
    }
    json["angleDegrees"] = {s.minDegrees, s.maxDegrees};
    json["csv"] = o.csv;
    if (!o.ply.empty()) {
        json["ply"] = o.ply;
    }
    return json;
}

void runTriangulate(const TriangulateOptions& o, const Console& console) {
    checkNames(o);
    const LoadedRig rig = loadRig(o.rig);
    std::vector<PixelPair> pairs = readPairFile(o.pairs);
    OutputFiles outputs;
    outputs.prepareFolder(fs::path(o.csv).parent_path());
    if (!o.ply.empty()) {
        outputs.prepareFolder(fs::path(o.ply).parent_path());
    }
    const std::vector<SpacePoint> points = pointsOf(pairs, o, rig);
    const Summary summary = summaryOf(points);
    if (summary.points() == 0) {
        failData(
            "{}: none of {} pixel pairs gave a point ({}): are left and right exchanged, or is this the calibration of "
            "other cameras?",
            o.pairs, pairs.size(), failuresText(summary));
    }
    outputs.add(o.csv, csvOf(pairs, points));
    if (!o.ply.empty()) {
        outputs.add(o.ply, plyOf(points));
    }
    outputs.commit();
    if (summary.points() < pairs.size()) {
        console.warn(fmt::format("{}: {} of {} pixel pairs gave no point: {} (see the column status)", o.pairs,
                                 pairs.size() - summary.points(), pairs.size(), failuresText(summary)));
    }
    console.say(summaryText(summary, pairs.size(), o));
    console.result(jsonText(summaryJson(summary, pairs.size(), o)));
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
    sub.option("--ply", o->ply, "Also write the points as a PLY cloud");
    sub.option("--dots", o->dotImages, "LEFT and RIGHT image: use the centres of the dots in which the pixels lie")
        .takes(2);
    sub.option("--polarity", o->polarity, "Polarity of the dots of --dots").oneOf({"dark", "bright"}).showDefault();
    sub.does([o, &console] { runTriangulate(*o, console); });
}

}  // namespace zelm::tool
