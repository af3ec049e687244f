#include "reportTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cameraParameters.h"
#include "htmlText.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

// "± 0.0405", with two digits that count; nothing where it is not known.
std::string deviationText(const Rig& rig, int parameter) {
    if (!rig.covariance || parameter < 0) {
        return {};
    }
    const auto i = static_cast<std::size_t>(parameter);
    const double deviation = std::sqrt(rig.covariance->matrix[i * ZELM_MEASURE_PARAMETERS + i]);
    if (!(deviation > 0.0)) {
        return "held";
    }
    const int digits = std::clamp(1 - static_cast<int>(std::floor(std::log10(deviation))), 0, 9);
    return fmt::format("± {:.{}f}", deviation, digits);
}

std::string pairRow(const char* name, const std::string& value) {
    return fmt::format("<div><dt>{}</dt><dd>{}</dd></div>", name, value);
}

// How the right camera stands to the left one.
std::string pairHtml(const Calibration& c) {
    if (!c.rig.pair) {
        return "<p class=\"note\">No baseline: a parallel camera has no centre.</p>\n";
    }
    const PairGeometry& pair = *c.rig.pair;
    const std::string units = escaped(c.plate.units);
    const std::string deviation = c.rig.covariance ? fmt::format(" ± {:.4f}", baselineDeviation(c.rig)) : "";
    std::string html = "<dl class=\"pair\">";
    html += pairRow("baseline", fmt::format("{:.4f}{} {}", pair.baseline, deviation, units));
    html += pairRow("convergence angle", fmt::format("{:.4f}°", pair.convergence * kDegreesPerRadian));
    html += pairRow("from the left to the right camera: t",
                    fmt::format("({:.4f}, {:.4f}, {:.4f}) {}", pair.t[0], pair.t[1], pair.t[2], units));
    return html + "</dl>\n";
}

// Nothing to show, as this page has it.
std::string dashed(const std::string& text) {
    return text == "-" ? "–" : text;
}

std::string imageCells(const std::filesystem::path& path, const char* side, const ImageFigures& image,
                       const std::string& blur, const std::optional<PlatePose>& pose) {
    if (image.dots.empty()) {
        return "<td>–</td><td class=\"number\">–</td><td class=\"number\">–</td><td class=\"number\">–</td>"
               "<td class=\"number\">–</td><td class=\"number\">–</td><td class=\"number\">–</td>";
    }
    const auto number = [](const std::string& text) { return "<td class=\"number\">" + text + "</td>"; };
    std::string cells = fmt::format("<td class=\"{}-ink\">{}</td>", side, escaped(imageName(path)));
    cells += number(fmt::format("{}", image.found)) + number(fmt::format("{:.4f}", image.distances.rms)) +
             number(fmt::format("{:.4f}", image.distances.max)) + number(blur);
    cells += number(pose ? fmt::format("{:.1f}", pose->tilt * kDegreesPerRadian) : "–");
    if (!pose || !(pose->distance > 0.0)) {
        return cells + number("–");
    }
    // Zeros at the end stay, so that a column lines up.
    return cells + number(pose->distance < 1000.0 ? fmt::format("{:#.4g}", pose->distance)
                                                  : fmt::format("{:.4g}", pose->distance));
}

std::string movedTable(const AdjustReport& report, const Calibration& c) {
    std::string html = tableStart("What the adjustment moved") +
                       "<thead><tr><th scope=\"col\">moved by</th><th scope=\"col\" class=\"number\">left</th>"
                       "<th scope=\"col\" class=\"number\">±</th><th scope=\"col\" class=\"number\">right</th>"
                       "<th scope=\"col\" class=\"number\">±</th></tr></thead><tbody>\n";
    for (const MovedParameter& row : movedParameters(report, c.rig, c.plate.units)) {
        html += fmt::format(
            "<tr><th scope=\"row\">{}</th><td class=\"number\">{}</td><td class=\"number\">{}</td>"
            "<td class=\"number\">{}</td><td class=\"number\">{}</td></tr>\n",
            escaped(row.name), row.leftMoved, row.leftDeviation, row.rightMoved, row.rightDeviation);
    }
    html += tableEnd();
    for (const std::string& line : movedPair(report, c.rig, c.plate.units)) {
        html += fmt::format("<p class=\"note\">{}</p>\n", escaped(line));
    }
    return html;
}

}  // namespace

std::string tableStart(const char* name) {
    return fmt::format("<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"{}\"><table>", name);
}

const char* tableEnd() {
    return "</tbody></table></div>\n";
}

std::string checksTable(const AdjustReport& report) {
    std::string html = "<h3>Self-checks</h3>\n" + tableStart("Self-checks") +
                       "<thead><tr><th scope=\"col\">verdict</th><th scope=\"col\" class=\"number\">p</th>"
                       "<th scope=\"col\">finding</th></tr></thead><tbody>\n";
    for (const ZelmMeasureCheck& check : report.checks) {
        const std::string word = verdictWord(check.verdict);
        html += fmt::format(
            "<tr><td><span class=\"chip {}\">{}</span></td><td class=\"number\">{:.2g}</td><td>{}</td></tr>\n",
            check.verdict == ZELM_MEASURE_CHECK_UNDONE ? "none" : word, word, check.p, escaped(check.text));
    }
    return html + tableEnd() +
           "<p class=\"note\">p is the probability that chance alone gives as much in any of the checks; below 0.01 a "
           "finding is no chance. Wrong: it moves points by more than their uncertainty.</p>\n";
}

std::string camerasHtml(const Calibration& c) {
    std::string html = "<section id=\"cameras\">\n<h2>Cameras</h2>\n" + pairHtml(c) + tableStart("Cameras");
    html +=
        "<thead><tr><th scope=\"col\">parameter</th><th scope=\"col\">unit</th>"
        "<th scope=\"col\" colspan=\"2\" class=\"left-ink middle\">left</th>"
        "<th scope=\"col\" colspan=\"2\" class=\"right-ink middle\">right</th></tr></thead><tbody>\n";
    for (const CameraParameter& row : cameraParameters(c.rig, c.plate.units)) {
        const int right = row.parameter < 0 ? -1 : row.parameter + ZELM_MEASURE_RIGHT_FX;
        html += fmt::format(
            "<tr><th scope=\"row\">{}</th><td>{}</td><td class=\"number\">{}</td><td class=\"deviation\">{}</td>"
            "<td class=\"number\">{}</td><td class=\"deviation\">{}</td></tr>\n",
            row.name, escaped(row.unit), row.left, deviationText(c.rig, row.parameter), row.right,
            deviationText(c.rig, right));
    }
    html += tableEnd();
    return html + (c.rig.covariance ? "<p class=\"note\">± is the standard deviation that the residuals leave a "
                                      "parameter. The parameters vary together: the covariance is in rig.zcov.</p>\n"
                                      "</section>\n"
                                    : "<p class=\"note\">Standard deviations are not known.</p>\n</section>\n");
}

std::string viewTableHtml(const Calibration& c, const std::vector<ViewPose>& poses) {
    const std::string units = escaped(c.plate.units);
    std::string html = "<section id=\"table\">\n<h2>All views in numbers</h2>\n" + tableStart("All views") +
                       "<thead><tr><th scope=\"col\">view</th><th scope=\"col\">image</th>";
    for (const std::string& name :
         {std::string("dots"), std::string("RMS, px"), std::string("worst, px"), std::string("blur, px"),
          std::string("tilt, °"), "distance, " + units, std::string("epipolar RMS, px"), "lengths RMS, " + units}) {
        html += "<th scope=\"col\" class=\"number\">" + name + "</th>";
    }
    html += "</tr></thead><tbody>\n";
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const DistanceFigures& epipolar = c.figures.epipolarViews[i];
        html += fmt::format(
            "<tr class=\"first\"><th scope=\"row\" rowspan=\"2\">{}</th>{}<td rowspan=\"2\" class=\"number\">{}</td>"
            "<td rowspan=\"2\" class=\"number\">{}</td></tr>\n<tr>{}</tr>\n",
            i,
            imageCells(c.views[i].left, "left", c.figures.left.views[i], dashed(blurText(c, i, 0)),
                       poses[i].cameras[0]),
            epipolar.count > 0 ? fmt::format("{:.4f}", epipolar.rms) : "–", dashed(lengthText(c, i)),
            imageCells(c.views[i].right, "right", c.figures.right.views[i], dashed(blurText(c, i, 1)),
                       poses[i].cameras[1]));
    }
    return html + tableEnd() +
           "<p class=\"note\">Blur: standard deviation of the edges' spread, the largest over the smallest where they "
           "differ by direction. Lengths: RMS error of distances between the dots.</p>\n</section>\n";
}

std::string adjustmentHtml(const Calibration& c) {
    std::string html = "<section id=\"checks\">\n<h2>Adjustment of both cameras together</h2>\n";
    if (!c.adjustment) {
        return html + "<p class=\"note\">None: the cameras were calibrated one by one.</p>\n</section>\n";
    }
    const AdjustReport& report = *c.adjustment;
    html += fmt::format("<p>{}</p>\n", escaped(adjustLine(report)));
    if (!report.refusal.empty()) {
        return html + "</section>\n";
    }
    if (const std::vector<std::string> remarks = adjustRemarks(report); !remarks.empty()) {
        html += "<ul class=\"remarks\">";
        for (const std::string& remark : remarks) {
            html += fmt::format("<li>{}</li>\n", escaped(remark));
        }
        html += "</ul>\n";
    }
    return html + movedTable(report, c) + checksTable(report) + "</section>\n";
}

}  // namespace zelm::tool
