#include "calibrationSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "numberText.h"
#include "rigReport.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

std::string imageCells(const std::filesystem::path& path, const ImageFigures& image, std::size_t nameWidth) {
    if (image.dots.empty()) {
        return fmt::format("{:<{}}  {:>4}  {:>6}  {:>6}  {:>6}", "-", nameWidth, "-", "-", "-", "-");
    }
    const DistanceFigures& d = image.distances;
    return fmt::format("{:<{}}  {:>4}  {:>6.4f}  {:>6.4f}  {:>6.4f}", imageName(path), nameWidth, image.found, d.mean,
                       d.rms, d.max);
}

std::string viewTable(const Calibration& c) {
    constexpr std::size_t kMinNameWidth = 5;
    std::size_t leftWidth = kMinNameWidth;
    std::size_t rightWidth = kMinNameWidth;
    for (const ViewFiles& view : c.views) {
        leftWidth = std::max(leftWidth, imageName(view.left).size());
        rightWidth = std::max(rightWidth, imageName(view.right).size());
    }
    std::string text = "reprojection error in pixels\n";
    text += fmt::format(
        "view  {:<{}}  dots    mean     rms   worst  {:<{}}  dots    mean     rms   worst  epipolar  blur left  blur "
        "right  lengths\n",
        "left", leftWidth, "right", rightWidth);
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const DistanceFigures& epipolar = c.figures.epipolarViews[i];
        text += fmt::format("{:>4}  {}  {}  {:>8}  {:>9}  {:>10}  {:>7}\n", i,
                            imageCells(c.views[i].left, c.figures.left.views[i], leftWidth),
                            imageCells(c.views[i].right, c.figures.right.views[i], rightWidth),
                            epipolar.count > 0 ? fmt::format("{:.4f}", epipolar.rms) : "-", blurText(c, i, 0),
                            blurText(c, i, 1), lengthText(c, i));
    }
    const auto total = [](const DistanceFigures& d, std::size_t width) {
        return fmt::format("{:<{}}  {:>4}  {:>6.4f}  {:>6.4f}  {:>6.4f}", "", width, d.count, d.mean, d.rms, d.max);
    };
    text += fmt::format("all   {}  {}  {:>8.4f}  {:>9}  {:>10}  {:>7}\n", total(c.figures.left.distances, leftWidth),
                        total(c.figures.right.distances, rightWidth), c.figures.epipolar.rms, "", "",
                        c.lengths.all.count > 0 ? fmt::format("{:.2g}", c.lengths.all.rms) : "-");
    return text;
}

Json distancesJson(const DistanceFigures& d) {
    return {{"mean", d.mean}, {"rms", d.rms}, {"worst", d.max}};
}

Json imageJson(const std::filesystem::path& path, const ImageFigures& image) {
    if (image.dots.empty()) {
        return nullptr;
    }
    Json json{{"image", path.string()}, {"dots", image.found}};
    json["reprojection"] = distancesJson(image.distances);
    return json;
}

Json lengthsJson(const ZelmMeasureLengthFigures& f) {
    return {{"count", f.count}, {"rms", f.rms}, {"mean", f.mean}, {"worst", f.worst}};
}

Json blurJson(const ZelmMeasureSharpness& s) {
    return {{"largest", s.largest}, {"smallest", s.smallest}, {"direction", s.direction}, {"smear", s.smear}};
}

// Adds how sharp a view's images are, and its lengths on the plate.
void addQuality(const Calibration& c, std::size_t i, Json& view) {
    constexpr const char* kSides[] = {"left", "right"};
    for (std::size_t side = 0; side < 2; ++side) {
        if (i < c.sharpness.size() && c.sharpness[i][side]) {
            view["blur"][kSides[side]] = blurJson(*c.sharpness[i][side]);
        }
    }
    if (i < c.lengths.views.size() && c.lengths.views[i]) {
        view["lengths"] = lengthsJson(*c.lengths.views[i]);
    }
}

Json referenceJson(const Calibration& c) {
    const ViewFiles& view = c.views.front();
    Json json{{"view", 0}, {"given", c.reference.given}, {"left", view.left.string()}, {"right", view.right.string()}};
    if (!c.reference.reason.empty()) {
        json["reason"] = c.reference.reason;
    }
    return json;
}

Json viewsJson(const Calibration& c) {
    Json views = Json::array();
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        Json view{{"view", i},
                  {"left", imageJson(c.views[i].left, c.figures.left.views[i])},
                  {"right", imageJson(c.views[i].right, c.figures.right.views[i])}};
        if (c.figures.epipolarViews[i].count > 0) {
            view["epipolarRms"] = c.figures.epipolarViews[i].rms;
        }
        addQuality(c, i, view);
        views.push_back(view);
    }
    return views;
}

Json skippedJson(const Calibration& c) {
    Json skipped = Json::array();
    for (const SkippedView& view : c.skipped) {
        skipped.push_back(
            {{"left", view.files.left.string()}, {"right", view.files.right.string()}, {"reason", view.reason}});
    }
    return skipped;
}

// What is known of the plate itself; of a plate at another temperature the lengths beside are those of that one.
void addIdentity(const Plate& plate, Json& json) {
    for (const auto& [key, text] : {std::pair("name", &plate.name),
                                    {"maker", &plate.maker},
                                    {"serial", &plate.serial},
                                    {"date", &plate.date},
                                    {"certificate", &plate.certificate}}) {
        if (!text->empty()) {
            json[key] = *text;
        }
    }
    if (plate.expansion) {
        json["expansion"] = *plate.expansion;
        json["temperature"] = plate.usedAt.value_or(*plate.temperature);
        json["measuredAt"] = *plate.temperature;
        json["growth"] = plate.growth;
    }
    if (!plate.positions.grid.empty()) {
        json["measuredPositions"] = plate.positions.grid.size() / 2;
    }
}

}  // namespace

Json warningsJson(const Calibration& c) {
    Json warnings = Json::array();
    for (const Doubt& doubt : c.verdict.doubts) {
        warnings.push_back(doubt.text);
    }
    return warnings;
}

std::string imageName(const std::filesystem::path& path) {
    return path.filename().string();
}

// U95 of lengths, plate units; null where it is not known.
Json forecastJson(const Calibration& c) {
    if (!c.forecast) {
        return nullptr;
    }
    const LengthForecast& f = *c.forecast;
    return {{"u95Rms", f.rms}, {"u95Worst", f.worst}, {"lengths", f.lengths}, {"from", f.shortest}, {"to", f.longest}};
}

Json plateJson(const Plate& plate) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    Json json{{"fieldWidth", p.d0},
              {"fieldHeight", p.d1},
              {"dotDiameter", p.d2},
              {"markerDiameter", p.d3},
              {"dotPitchX", p.d4},
              {"dotPitchY", p.d5},
              {"markerDistanceX", p.d6},
              {"markerDistanceY", p.d7},
              {"markers", p.markers},
              {"polarity", p.polarity == 0 ? "dark" : "bright"},
              {"units", plate.units},
              {"minDotArea", p.minDotArea},
              {"minEdgeStrength", p.minEdgeStrength},
              {"minDots", p.minDots}};
    addIdentity(plate, json);
    return json;
}

std::string blurText(const Calibration& c, std::size_t view, std::size_t side) {
    constexpr double kMinElongation = 1.25;  // less is how the plate is tilted
    if (view >= c.sharpness.size() || !c.sharpness[view][side]) {
        return "-";
    }
    const ZelmMeasureSharpness& s = *c.sharpness[view][side];
    return s.largest > kMinElongation * s.smallest ? fmt::format("{:.2f}/{:.2f}", s.largest, s.smallest)
                                                   : fmt::format("{:.2f}", s.largest);
}

std::string lengthText(const Calibration& c, std::size_t view) {
    return view < c.lengths.views.size() && c.lengths.views[view] ? fmt::format("{:.2g}", c.lengths.views[view]->rms)
                                                                  : "-";
}

std::vector<std::string> qualityLines(const Calibration& c) {
    std::vector<std::string> lines;
    if (const ZelmMeasureLengthFigures& f = c.lengths.all; f.count > 0) {
        lines.push_back(fmt::format("lengths on the plate: RMS {:.2g} {}, worst {:+.2g} {} over {} views", f.rms,
                                    c.plate.units, f.worst, c.plate.units, c.lengths.measured));
    }
    if (!c.reference.reason.empty()) {
        const ViewFiles& view = c.views.front();
        lines.push_back(fmt::format("the world frame is the plate of view {}, {}, {}; here it is view 0",
                                    c.reference.given, imageName(view.left.empty() ? view.right : view.left),
                                    c.reference.reason));
    }
    return lines;
}

std::string plateText(const Plate& plate) {
    constexpr double kPerMillion = 1e6;
    std::string text;
    for (const std::string* const word : {&plate.name, &plate.maker, &plate.serial, &plate.date, &plate.certificate}) {
        if (!word->empty()) {
            text += fmt::format("{}{}", text.empty() ? "plate " : ", ", *word);
        }
    }
    text += text.empty() ? "" : "\n";
    if (plate.usedAt) {
        text += fmt::format("plate at {:g} deg C: its lengths are {:+.1f} ppm from those at {:g} deg C\n",
                            *plate.usedAt, kPerMillion * (plate.growth - 1.0), *plate.temperature);
    } else if (plate.expansion) {
        text +=
            fmt::format("plate taken to be at {:g} deg C, where its lengths hold (--temperature tells another one)\n",
                        *plate.temperature);
    }
    if (!plate.positions.grid.empty()) {
        text += fmt::format("measured positions of {} from {}\n", counted(plate.positions.grid.size() / 2, "dot"),
                            plate.positionsSource);
    }
    return text;
}

std::string summaryText(const Calibration& c) {
    std::string text = viewTable(c);
    if (!c.skipped.empty()) {
        text += fmt::format("{} of {} views skipped\n", c.skipped.size(), c.skipped.size() + c.views.size());
    }
    text += fmt::format("\n{}{}\n", plateText(c.plate), rigText(c.rig, c.plate.units));
    if (c.adjustment) {
        text += fmt::format("\n{}", adjustText(*c.adjustment, c.rig, c.plate.units));
    }
    text += fmt::format("epipolar RMS distance {:.4f} px over {} dot pairs of {} views (worst {:.4f} px)",
                        c.figures.epipolar.rms, c.figures.dotPairs, c.views.size(), c.figures.epipolar.max);
    for (const std::string& line : qualityLines(c)) {
        text += "\n" + line;
    }
    return text;
}

Json summaryJson(const Calibration& c) {
    const Json rig = rigJson(c.rig);
    Json json{
        {"program", "zelm " ZELM_VERSION},
        {"units", {{"length", c.plate.units}, {"image", "pixel"}, {"angle", "radian unless named otherwise"}}},
        c.pointFile.empty() ? Json::object_t::value_type{"plate", plateJson(c.plate)}
                            : Json::object_t::value_type{"points", c.pointFile},
        {"views", viewsJson(c)},
        {"skipped", skippedJson(c)},
        {"reference", referenceJson(c)},
        {"verdict", verdictJson(c.verdict)},
        {"warnings", warningsJson(c)},
        {"expectedLengthError", forecastJson(c)},
        {"reprojection",
         {{"left", distancesJson(c.figures.left.distances)}, {"right", distancesJson(c.figures.right.distances)}}},
        {"epipolar",
         {{"rms", c.figures.epipolar.rms},
          {"mean", c.figures.epipolar.mean},
          {"worst", c.figures.epipolar.max},
          {"dotPairs", c.figures.dotPairs}}},
        {"left", rig["left"]},
        {"right", rig["right"]}};
    if (rig.contains("pair")) {
        json["pair"] = rig["pair"];
    }
    if (c.lengths.all.count > 0) {
        json["plateLengths"] = lengthsJson(c.lengths.all);
    }
    json["fundamental"] = rig["fundamental"];
    if (c.adjustment) {
        json["adjustment"] = adjustJson(*c.adjustment);
    }
    if (rig.contains("covariance")) {
        json["covariance"] = rig["covariance"];
    }
    return json;
}

}  // namespace zelm::tool
