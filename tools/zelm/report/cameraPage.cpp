// The page of the calibration of one camera.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cameraSummary.h"
#include "htmlReport.h"

namespace zelm::tool {
namespace {

std::string tile(const std::string& value, const char* name) {
    return fmt::format("<div class='tile'><b>{}</b><span>{}</span></div>", value, name);
}

std::string warnings(const Calibration& c) {
    std::string html;
    for (const SkippedView& view : c.skipped) {
        html += fmt::format("<p class='warning'>Skipped: {}</p>", htmlText(view.reason));
    }
    for (const Doubt& doubt : c.verdict.doubts) {
        html += fmt::format("<p class='warning'>{}</p>", htmlText(doubt.text));
    }
    return html;
}

std::string parameterTable(const CameraResult& result) {
    std::string html = "<table><tr><th>parameter</th><th class='name'>unit</th><th>value</th><th>±</th></tr>";
    for (const EstimatedParameter& p : result.parameters()) {
        html +=
            fmt::format("<tr><td>{}</td><td class='name'>{}</td><td>{:.{}f}</td><td>{}</td></tr>", p.name, p.unit,
                        p.value, p.digits, p.deviation > 0.0 ? fmt::format("{:.{}f}", p.deviation, p.digits) : "held");
    }
    return html + "</table><p class='note'>± is the standard deviation that the residuals leave each parameter.</p>";
}

std::string checkTable(const AdjustReport& report) {
    std::string html = "<div class='scroll'><table><tr><th>verdict</th><th>p</th><th class='name'>finding</th></tr>";
    for (const ZelmMeasureCheck& check : report.checks) {
        html += fmt::format("<tr><td>{}</td><td>{:.2g}</td><td class='name'>{}</td></tr>", verdictWord(check.verdict),
                            check.p, htmlText(check.text));
    }
    return html +
           "</table></div><p class='note'>p is the probability that chance alone gives as much in any of the checks; "
           "below 0.01 a finding is no chance. Wrong: it moves points by more than their uncertainty.</p>";
}

std::string viewTable(const Calibration& c) {
    std::string html =
        "<div class='scroll'><table><tr><th>view</th><th class='name'>image</th><th>dots</th><th>mean</th><th>RMS</th>"
        "<th>worst</th></tr>";
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const DistanceFigures& d = c.figures.left.views[i].distances;
        html += fmt::format(
            "<tr><td>{}</td><td class='name'>{}</td><td>{}</td><td>{:.4f}</td><td>{:.4f}</td><td>{:.4f}</td></tr>", i,
            htmlText(imageName(c.views[i].left)), d.count, d.mean, d.rms, d.max);
    }
    return html + "</table></div>";
}

// Every point where it stands in the image, with its error as a magnified line.
std::string errorField(const Calibration& c) {
    const RigCamera& camera = c.rig.left;
    // The RMS error becomes a fiftieth of the image's width.
    constexpr double kShare = 0.02;
    const double rms = c.figures.left.distances.rms;
    const double scale = rms > 0.0 ? kShare * camera.width / rms : 1.0;
    std::string dots;
    std::string errors;
    for (const ImageFigures& image : c.figures.left.views) {
        for (const Dot& dot : image.dots) {
            fmt::format_to(std::back_inserter(dots), "M{:.1f} {:.1f}h0", dot.pixel.x, dot.pixel.y);
            fmt::format_to(std::back_inserter(errors), "M{:.1f} {:.1f}l{:.1f} {:.1f}", dot.pixel.x, dot.pixel.y,
                           scale * dot.error.x, scale * dot.error.y);
        }
    }
    return fmt::format(
        "<figure><svg viewBox='-1 -1 {} {}'><rect class='frame' x='-0.5' y='-0.5' width='{}' height='{}'/><path "
        "class='errors' d='{}'/><path class='dots' d='{}'/></svg><figcaption>every point of every view, its error "
        "{:.0f} "
        "times as long</figcaption></figure>",
        camera.width + 1, camera.height + 1, camera.width, camera.height, errors, dots, scale);
}

}  // namespace

std::string cameraPage(const CameraResult& result) {
    const Calibration& c = result.calibration;
    const DistanceFigures& d = c.figures.left.distances;
    std::string html =
        "<!DOCTYPE html><html lang='en'><head><meta charset='utf-8'><meta name='viewport' "
        "content='width=device-width, initial-scale=1'><title>Calibration of one camera</title><style>";
    html += reportStyle();
    html += "</style></head><body><h1>Calibration of one camera</h1>";
    html += fmt::format("<p class='note'>zelm {}, lengths in {}, image positions in pixels</p><div class='tiles'>",
                        ZELM_VERSION, htmlText(c.plate.units));
    html += tile(fmt::format("{}", c.views.size()), "views used") + tile(fmt::format("{}", d.count), "points measured");
    html += tile(fmt::format("{:.4f} px", d.mean), "mean error") + tile(fmt::format("{:.4f} px", d.rms), "RMS error");
    html += "</div>" + warnings(c) + "<h2>Camera</h2>" + parameterTable(result);
    html += "<h2>Self-checks</h2>" + checkTable(*c.adjustment);
    html += "<h2>Reprojection error of every view</h2>" + viewTable(c) + "<h2>Errors over the image</h2>";
    return html + errorField(c) + "</body></html>\n";
}

}  // namespace zelm::tool
