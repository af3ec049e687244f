// zelm epiline: where the other image shows what lies at a pixel.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "cameraPicture.h"
#include "canvas.h"
#include "epipolarLine.h"
#include "failure.h"
#include "letterCase.h"
#include "numberText.h"
#include "outputFiles.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct EpilineOptions {
    std::string rig;
    std::vector<std::string> points;  // "x,y" each
    std::string side;
    std::string image;
    std::string picture;
    std::string csv;
};

struct PointLine {
    Point2d point{};
    Zelm2ViewEpiLine line{};
};

std::vector<PointLine> linesOf(const LoadedRig& rig, char target, const std::vector<std::string>& points) {
    std::vector<PointLine> lines;
    for (const std::string& text : points) {
        const std::vector<double> xy = numbersOf(text);
        if (xy.size() != 2) {
            failUsage("--point {}: expected a pixel x,y", text);
        }
        const Point2d point{xy[0], xy[1]};
        lines.push_back({point, epipolarLine(rig, target, point)});
    }
    return lines;
}

std::string linesCsv(const std::vector<PointLine>& lines) {
    std::string csv = "x,y,a,b,c,x0,y0,x1,y1\n";
    for (const auto& [p, l] : lines) {
        csv += fmt::format("{},{},{:.12g},{:.12g},{:.12g},", p.x, p.y, l.a, l.b, l.c);
        csv += isVisible(l) ? fmt::format("{:.6f},{:.6f},{:.6f},{:.6f}\n", l.x0, l.y0, l.x1, l.y1) : ",,,\n";
    }
    return csv;
}

std::string lineText(const PointLine& line) {
    const Zelm2ViewEpiLine& l = line.line;
    const std::string text =
        fmt::format("({}, {}): {:+.9f} x {:+.9f} y {:+.6f} = 0, ", line.point.x, line.point.y, l.a, l.b, l.c);
    return text + (isVisible(l) ? fmt::format("from ({:.3f}, {:.3f}) to ({:.3f}, {:.3f})", l.x0, l.y0, l.x1, l.y1)
                                : std::string("misses the image"));
}

Json linesJson(const std::vector<PointLine>& lines) {
    Json list = Json::array();
    for (const auto& [p, l] : lines) {
        Json line{{"point", {p.x, p.y}}, {"a", l.a}, {"b", l.b}, {"c", l.c}, {"visible", isVisible(l)}};
        if (isVisible(l)) {
            line["from"] = {l.x0, l.y0};
            line["to"] = {l.x1, l.y1};
        }
        list.push_back(line);
    }
    return list;
}

std::string drawLines(const AnyPicture& picture, const std::vector<PointLine>& lines) {
    Canvas canvas(picture);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        drawLine(canvas, lines[i].line, 0.0, lineColour(i));
    }
    return canvas.png();
}

void checkOptions(const EpilineOptions& o) {
    if (o.image.empty() != o.picture.empty()) {
        failUsage("--image and -o go together: the image to draw into, and the picture to write");
    }
    if (!o.picture.empty() && lowerEnding(o.picture) != ".png") {
        failUsage("{}: the picture of lines is a PNG file: give its name the ending .png", o.picture);
    }
}

void runEpiline(const EpilineOptions& o, const Console& console) {
    checkOptions(o);
    const LoadedRig rig = loadRig(o.rig, console);
    const char target = sideOf(o.side) == 'L' ? 'R' : 'L';
    const std::vector<PointLine> lines = linesOf(rig, target, o.points);
    OutputFiles outputs;
    outputs.keep(o.rig);
    outputs.keep(o.image);
    std::string written;
    if (!o.csv.empty()) {
        outputs.prepareFolder(fs::path(o.csv).parent_path());
        outputs.add(o.csv, linesCsv(lines));
        written += "\nwrote " + o.csv;
    }
    if (!o.picture.empty()) {
        outputs.prepareFolder(fs::path(o.picture).parent_path());
        outputs.add(o.picture, drawLines(undistorted(rig, target, readCameraPicture(o.image, rig, target)), lines));
        written += fmt::format("\nwrote {}: {} without its lens distortion, as the lines are straight only there",
                               o.picture, o.image);
    }
    outputs.commit();

    std::string text =
        fmt::format("lines of the undistorted {} image for raw pixels of the {} image", sideName(target), o.side);
    for (const PointLine& line : lines) {
        text += fmt::format("\n{}", lineText(line));
    }
    console.say(text + written);
    console.result({{"image", sideName(target)}, {"undistorted", true}, {"lines", linesJson(lines)}});
}

}  // namespace

void addEpiline(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand(
        "epiline", "Show the line of one image on which a pixel of the other has its counterpart",
        "zelm epiline out/rig.zcal --point 640,480 --in left --image right_00.png -o lines.png");
    const auto o = std::make_shared<EpilineOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("--point", o->points, "A raw pixel x,y; may be given several times").required();
    sub.option("--in", o->side, "The image that the pixels are from; the lines are lines of the other one")
        .required()
        .oneOf({"left", "right"});
    sub.option("--image", o->image, "The other raw image; the tool undistorts it and draws the lines into it");
    sub.option("-o,--output", o->picture, "The picture to write (.png)");
    sub.option("--csv", o->csv, "Also write the lines as CSV");
    sub.does([o, &console] { runEpiline(*o, console); });
}

}  // namespace zelm::tool
