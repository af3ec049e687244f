// The page of the calibration of one camera.
#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "cameraSummary.h"
#include "htmlText.h"
#include "reportDrawings.h"
#include "reportHead.h"
#include "reportTables.h"

namespace zelm::tool {
namespace {

ReportVerdict verdictOf(const Calibration& c) {
    const DistanceFigures& d = c.figures.left.distances;
    const std::string fit = fmt::format("{} points lie {:.4f} px RMS from where the camera sees them", d.count, d.rms);
    if (c.verdict.status == VerdictStatus::good) {
        return {"good",
                "Good",
                fmt::format("Nothing speaks against this calibration: {}.", fit),
                {"Its parameters stand below with their standard deviations."}};
    }
    const bool isRefused = c.verdict.status == VerdictStatus::refused;
    return {statusWord(c.verdict.status),
            isRefused ? "Refused" : "Doubtful",
            fmt::format("{}; {}.", c.verdict.doubts.front().text, fit),
            {"Remove the cause, which the warnings below name, and calibrate again."}};
}

std::string parameterTable(const CameraResult& result) {
    std::string html = tableStart("Camera");
    html +=
        "<thead><tr><th scope=\"col\">parameter</th><th scope=\"col\">unit</th><th scope=\"col\" "
        "class=\"number\">value</th><th scope=\"col\">±</th></tr></thead><tbody>\n";
    for (const EstimatedParameter& p : result.parameters()) {
        html += fmt::format(
            "<tr><th scope=\"row\">{}</th><td>{}</td><td class=\"number\">{:.{}f}</td><td "
            "class=\"deviation\">{}</td></tr>\n",
            p.name, p.unit, p.value, p.digits,
            p.deviation > 0.0 ? fmt::format("± {:.{}f}", p.deviation, p.digits) : "held");
    }
    return html + tableEnd() +
           "<p class=\"note\">± is the standard deviation that the residuals leave each parameter.</p>\n";
}

std::string viewTable(const Calibration& c) {
    std::string html = tableStart("All views") + "<thead><tr><th scope=\"col\">view</th><th scope=\"col\">image</th>";
    for (const char* name : {"points", "mean, px", "RMS, px", "worst, px"}) {
        html += fmt::format("<th scope=\"col\" class=\"number\">{}</th>", name);
    }
    html += "</tr></thead><tbody>\n";
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const DistanceFigures& d = c.figures.left.views[i].distances;
        html += fmt::format(
            "<tr><th scope=\"row\">{}</th><td>{}</td><td class=\"number\">{}</td><td class=\"number\">{:.4f}</td><td "
            "class=\"number\">{:.4f}</td><td class=\"number\">{:.4f}</td></tr>\n",
            i, escaped(imageName(c.views[i].left)), d.count, d.mean, d.rms, d.max);
    }
    return html + tableEnd();
}

std::string tiles(const Calibration& c) {
    const DistanceFigures& d = c.figures.left.distances;
    return "<dl class=\"tiles\">" + tile(fmt::format("{}", c.views.size()), "views used") +
           tile(fmt::format("{}", d.count), "points measured") + tile(fmt::format("{:.4f} px", d.mean), "mean error") +
           tile(fmt::format("{:.4f} px", d.rms), "RMS error") + "</dl>\n";
}

std::string errorsHtml(const Calibration& c) {
    const ErrorScale scale = errorScale(c);
    const std::size_t every = errorFieldStep(c.figures.left);
    return "<section id=\"errors\">\n<h2>Reprojection errors</h2>\n<div class=\"two\">\n" +
           figureElement(errorField(c.rig.left, c.figures.left, scale, "Errors over the image"),
                         fmt::format("errors over the image, {:g} times as long as they are{}", scale.magnification,
                                     every > 1 ? fmt::format("; one in {} of the points is drawn", every) : "")) +
           figureElement(errorScatter(c.figures.left, scale, "Errors of all points"),
                         "errors of all points about one origin; circle: RMS. A round cloud is noise.") +
           "</div>\n</section>\n";
}

}  // namespace

std::string cameraPage(const CameraResult& result) {
    const Calibration& c = result.calibration;
    std::string body = fmt::format(
        "<header>\n<h1>Calibration of one camera</h1>\n<p class=\"note\">zelm {}. Lengths in {}, image positions in "
        "pixels.</p>\n</header>\n<main>\n",
        ZELM_VERSION, escaped(c.plate.units));
    body += verdictHtml(verdictOf(c)) + warningsHtml(c) + tiles(c);
    body += "<section id=\"cameras\">\n<h2>Camera</h2>\n" + parameterTable(result) + "</section>\n";
    body += "<section id=\"checks\">\n" + checksTable(*c.adjustment) + "</section>\n" + errorsHtml(c);
    body += "<section id=\"table\">\n<h2>All views in numbers</h2>\n" + viewTable(c) + "</section>\n</main>\n";
    return htmlOf({"Calibration of one camera", body, {"page.css", "report.css"}, {}});
}

}  // namespace zelm::tool
