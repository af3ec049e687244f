// zelm rectify: each image of a pair as the other camera would see it.
#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "cameraPicture.h"
#include "canvas.h"
#include "epipolarLine.h"
#include "failure.h"
#include "imageSet.h"
#include "numberText.h"
#include "outputFiles.h"
#include "pairFile.h"
#include "rectifyRows.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct RectifyOptions {
    std::string rig;
    std::string left;
    std::string right;
    std::string folder = ".";
    std::string reference;
    double depth = 0.0;
    std::size_t lines = 15;
    std::string pairs;
    bool asRows = false;
    RowsOptions rows;
};

// The undistorted pixels that land on the centres of the rectified images.
struct References {
    Point2d left{};
    Point2d right{};
    std::string origin;  // where they come from, in words
};

// One line in both halves of the picture of the pair.
struct LinePair {
    Zelm2ViewEpiLine left{};   // of the rectified left image
    Zelm2ViewEpiLine right{};  // of the undistorted right image
};

// Where both halves show the point of a pair of raw pixels.
struct PointPair {
    Point2d left{};   // rectified
    Point2d right{};  // undistorted
};

// So that the field of view that both cameras share stays in sight.
References defaultReferences(const LoadedRig& rig) {
    constexpr std::array<const char*, 3> kOrigins{"the point that both cameras look at",
                                                  "the origin of the first plate", "the image centres"};
    std::array<double, 2> left{};
    std::array<double, 2> right{};
    std::int32_t origin = 0;
    zelmMeasureRigCentre(rig.handle.get(), left.data(), right.data(), &origin);
    return {{left[0], left[1]}, {right[0], right[1]}, kOrigins[static_cast<std::size_t>(origin)]};
}

References referencesOf(const RectifyOptions& o, const LoadedRig& rig) {
    if (o.reference.empty()) {
        return defaultReferences(rig);
    }
    const std::vector<double> r = numbersOf(o.reference);
    if (r.size() != 2 && r.size() != 4) {
        failUsage("--reference {}: expected x,y for both images or xL,yL,xR,yR", o.reference);
    }
    return {{r[0], r[1]}, {r[r.size() - 2], r[r.size() - 1]}, "given"};
}

// The line of both halves on which raw pixels of the right image have their counterparts; nothing when one half does
// not show it.
std::optional<LinePair> linePairOf(const LoadedRig& rig, const Zelm2ViewHomParam& params,
                                   const Zelm2ViewEpiLine& rightLine) {
    const Point2d middle{0.5 * (rightLine.x0 + rightLine.x1), 0.5 * (rightLine.y0 + rightLine.y1)};
    Point2d raw{};
    if (!isVisible(rightLine) || zelm2ViewDistortPoint(rig.calib(), 'R', &middle, &raw) < 0) {
        return std::nullopt;
    }
    const Zelm2ViewEpiLine unrectified = epipolarLine(rig, 'L', raw);
    const double abc[3] = {unrectified.a, unrectified.b, unrectified.c};
    LinePair lines{{}, rightLine};
    if (zelm2ViewChangeHomEpiLine(rig.calib(), 'L', &params, abc, &lines.left) < 0 || !isVisible(lines.left)) {
        return std::nullopt;
    }
    return lines;
}

// Lines through left pixels one below the other, in the column of the reference.
std::vector<LinePair> evenLines(const LoadedRig& rig, const Zelm2ViewHomParam& params, std::size_t count) {
    std::vector<LinePair> lines;
    const double height = rig.rig.left.height;
    for (std::size_t i = 0; i < count; ++i) {
        const Point2d pixel{params.px, (static_cast<double>(i) + 0.5) * height / static_cast<double>(count)};
        if (const auto line = linePairOf(rig, params, epipolarLine(rig, 'R', pixel))) {
            lines.push_back(*line);
        }
    }
    return lines;
}

PointPair pointPairOf(const LoadedRig& rig, const Zelm2ViewHomParam& params, const PixelPair& pair) {
    PointPair points;
    if (zelm2ViewCalcHomImgPoint(rig.calib(), 'L', &pair.left, &params, &points.left) < 0 ||
        zelm2ViewUnDistortPoint(rig.calib(), 'R', &pair.right, &points.right) < 0) {
        failData("pair {}: a pixel is so far outside its image that the lens distortion cannot be removed", pair.id);
    }
    return points;
}

// What is drawn over the two halves: lines, and the points of the pairs given.
struct Drawing {
    std::vector<LinePair> lines;
    std::vector<PointPair> points;
};

Drawing drawingOf(const RectifyOptions& o, const LoadedRig& rig, const Zelm2ViewHomParam& params) {
    Drawing drawing;
    if (o.pairs.empty()) {
        drawing.lines = evenLines(rig, params, o.lines);
        return drawing;
    }
    for (const PixelPair& pair : readPairFile(o.pairs)) {
        drawing.points.push_back(pointPairOf(rig, params, pair));
        if (const auto line = linePairOf(rig, params, epipolarLine(rig, 'R', pair.left))) {
            drawing.lines.push_back(*line);
        }
    }
    return drawing;
}

std::string drawPair(const AnyPicture& rectifiedLeft, const AnyPicture& undistortedRight, const Drawing& drawing,
                     double seam) {
    Canvas canvas(rectifiedLeft, undistortedRight);
    for (std::size_t i = 0; i < drawing.lines.size(); ++i) {
        drawLine(canvas, drawing.lines[i].left, 0.0, lineColour(i));
        drawLine(canvas, drawing.lines[i].right, seam, lineColour(i));
    }
    for (std::size_t i = 0; i < drawing.points.size(); ++i) {
        const auto& [left, right] = drawing.points[i];
        if (left.x < seam) {
            canvas.cross(left, lineColour(i));
        }
        canvas.cross({right.x + seam, right.y}, lineColour(i));
    }
    return canvas.png();
}

struct Names {
    fs::path left, right, pair;
};

Names namesOf(const RectifyOptions& o) {
    const fs::path folder = o.folder;
    std::string left = fs::path(o.left).stem().string();
    std::string right = fs::path(o.right).stem().string();
    const std::string pair = left + "_pair.png";
    if (left == right) {
        left += "_left";
        right += "_right";
    }
    return {folder / (left + "_rectified.png"), folder / (right + "_rectified.png"), folder / pair};
}

Json lineJson(const Zelm2ViewEpiLine& l) {
    return {{"a", l.a}, {"b", l.b}, {"c", l.c}, {"from", {l.x0, l.y0}}, {"to", {l.x1, l.y1}}};
}

Json resultJson(const RectifyOptions& o, const References& references, const Names& names, const Drawing& drawing) {
    Json json{{"left", {{"image", o.left}, {"rectified", names.left.string()}}},
              {"right", {{"image", o.right}, {"rectified", names.right.string()}}},
              {"pair", names.pair.string()},
              {"depth", o.depth}};
    json["left"]["reference"] = {references.left.x, references.left.y};
    json["right"]["reference"] = {references.right.x, references.right.y};
    json["lines"] = Json::array();
    for (const LinePair& lines : drawing.lines) {
        json["lines"].push_back({{"left", lineJson(lines.left)}, {"right", lineJson(lines.right)}});
    }
    return json;
}

void runRectify(const RectifyOptions& o, const Console& console) {
    const LoadedRig rig = loadRig(o.rig, console);
    const AnyPicture left = readCameraPicture(o.left, rig, 'L');
    const AnyPicture right = readCameraPicture(o.right, rig, 'R');
    const References references = referencesOf(o, rig);
    const Zelm2ViewHomParam leftParams{references.left.x, references.left.y, o.depth};
    const Zelm2ViewHomParam rightParams{references.right.x, references.right.y, o.depth};
    OutputFiles outputs;
    outputs.keep(o.rig);
    outputs.keep(o.left);
    outputs.keep(o.right);
    outputs.keep(o.pairs);
    outputs.prepareFolder(o.folder);

    const AnyPicture rectifiedLeft = rectified(rig, 'L', left, leftParams);
    const AnyPicture rectifiedRight = rectified(rig, 'R', right, rightParams);
    const Drawing drawing = drawingOf(o, rig, leftParams);
    const Names names = namesOf(o);
    outputs.add(names.left, encodePng(rectifiedLeft));
    outputs.add(names.right, encodePng(rectifiedRight));
    outputs.add(names.pair, drawPair(rectifiedLeft, undistorted(rig, 'R', right), drawing, rig.rig.left.width));
    outputs.commit();
    console.warn(warningOfOneImage(o.left, o.right));
    console.warn(warningOfGlobs({o.left, o.right}, {names.left, names.right, names.pair}));

    console.say(fmt::format(
        "{}: the left image as the right camera would see it\n{}: the right image as the left camera would see it\n"
        "{}: the rectified left image beside the undistorted right one, with {} epipolar lines in both\n"
        "reference pixels: left ({:.3f}, {:.3f}), right ({:.3f}, {:.3f}): {}",
        names.left.string(), names.right.string(), names.pair.string(), drawing.lines.size(), references.left.x,
        references.left.y, references.right.x, references.right.y, references.origin));
    console.result(resultJson(o, references, names, drawing));
}

void runAny(const RectifyOptions& o, const Console& console) {
    if (!o.asRows) {
        const bool hasRowOption = !o.rows.size.empty() || !o.rows.depths.empty() || o.rows.focal > 0.0 ||
                                  o.rows.zeroAtInfinity || o.rows.writesMaps;
        if (hasRowOption) {
            failUsage(
                "--size, --depths, --focal, --zero-at-infinity and --maps are of row-aligned images: give --rows");
        }
        runRectify(o, console);
        return;
    }
    if (!o.reference.empty() || !o.pairs.empty() || o.depth != 0.0) {
        failUsage("--reference, --pairs and --depth are not of row-aligned images: leave them or --rows out");
    }
    RowsOptions rows = o.rows;
    rows.rig = o.rig;
    rows.left = o.left;
    rows.right = o.right;
    rows.folder = o.folder;
    rectifyRows(rows, console);
}

}  // namespace

void addRectify(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("rectify", "Turn each image of a view into what the other camera would see",
                                            "zelm rectify out/rig.zcal left_00.png right_00.png -o out/rectified");
    const auto o = std::make_shared<RectifyOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("left", o->left, "Left raw image, as taken").required();
    sub.option("right", o->right, "Right raw image, as taken").required();
    sub.option("-o,--output", o->folder, "Folder for LEFT_rectified.png, RIGHT_rectified.png and LEFT_pair.png")
        .showDefault();
    sub.option("--reference", o->reference,
               "Undistorted pixel x,y (of both images) or xL,yL,xR,yR that lands on the centre of the rectified "
               "image; default: the point that both cameras look at");
    sub.option("--depth", o->depth,
               "With a parallel camera: height of the plane on which the rectified images agree, in the plate's unit; "
               "it changes "
               "nothing between perspective cameras")
        .showDefault();
    sub.option("--lines", o->lines, "Number of epipolar lines in the picture").inRange(0, 200).showDefault();
    sub.option("--pairs", o->pairs, "CSV of pixel pairs: draw these points and their lines instead");
    sub.flag(
        "--rows", o->asRows,
        "Instead turn both so that every point lies in one row: LEFT_rows.png, RIGHT_rows.png, rows.json, rows.yml");
    sub.option("--size", o->rows.size, "With --rows: width,height; default: the images'");
    sub.option("--focal", o->rows.focal, "With --rows: focal length, pixels; default: the mean of the cameras'")
        .positive();
    sub.flag("--zero-at-infinity", o->rows.zeroAtInfinity, "With --rows: disparity 0 at infinity, not in the scene");
    sub.option("--depths", o->rows.depths,
               "With --rows: nearest,farthest depth to tell disparities of; default: by the calibration's plates");
    sub.flag("--maps", o->rows.writesMaps, "With --rows: also left_map.npy and right_map.npy, the pixels' places");
    sub.does([o, &console] { runAny(*o, console); });
}

}  // namespace zelm::tool
