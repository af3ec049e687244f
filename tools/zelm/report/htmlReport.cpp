#include "htmlReport.h"

#include <fmt/format.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "cameraParameters.h"
#include "numberText.h"
#include "overlay.h"
#include "reportDrawings.h"

namespace zelm::tool {
namespace {

constexpr int kOverlaySide = 900;  // pixels

constexpr const char* kStyle = R"(
:root { --ink: #1d2430; --soft: #667085; --line: #d9dee7; --left: #2f6fde; --right: #e07b2a; --paper: #fff; }
body { font: 15px/1.5 system-ui, sans-serif; color: var(--ink); background: var(--paper); max-width: 60rem;
  margin: 2rem auto; padding: 0 1rem; }
h1 { font-size: 1.6rem; margin: 0; } h2 { font-size: 1.15rem; margin: 2.2rem 0 .6rem; }
p.note, figcaption { color: var(--soft); font-size: .88rem; margin: .3rem 0; }
.tiles { display: flex; flex-wrap: wrap; gap: .8rem; margin: 1.2rem 0; }
.tile { border: 1px solid var(--line); border-radius: .5rem; padding: .6rem .9rem; min-width: 8.5rem; }
.tile b { display: block; font-size: 1.25rem; font-variant-numeric: tabular-nums; }
.tile span { color: var(--soft); font-size: .85rem; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; font-size: .9rem; }
th, td { text-align: right; padding: .25rem .5rem; border-bottom: 1px solid var(--line); }
th:first-child, td:first-child, .name { text-align: left; }
th { color: var(--soft); font-weight: 600; }
.scroll { overflow-x: auto; }
.two { display: grid; grid-template-columns: 1fr 1fr; gap: 1.2rem; } figure { margin: 0; }
svg { width: 100%; height: auto; display: block; } svg text { font-size: 12px; fill: var(--soft); }
.grid { stroke: var(--line); fill: none; } .frame { fill: none; stroke: var(--line); stroke-width: 2; }
rect.left, .key.left { fill: var(--left); background: var(--left); }
rect.right, .key.right { fill: var(--right); background: var(--right); }
.errors { stroke: #d6334a; stroke-width: 1.6; fill: none; } .dots { stroke: var(--ink); stroke-width: 5;
  stroke-linecap: round; } .scatter { stroke: var(--left); stroke-width: 2.4; stroke-linecap: round; opacity: .55; }
.key { display: inline-block; width: .8rem; height: .8rem; margin: 0 .3rem 0 .8rem; vertical-align: -1px; }
.verdict { font-size: 1.1rem; margin: .6rem 0; } .verdict.good b { color: #1a7f37; }
.verdict.doubtful b { color: #9a6700; } .verdict.refused b { color: #c0182f; }
.warning { border-left: 4px solid #e0a32a; padding: .3rem .8rem; background: #fff8e8; }
img { width: 100%; border: 1px solid var(--line); }
@media (max-width: 40rem) { .two { grid-template-columns: 1fr; } }
)";

std::string escaped(const std::string& text) {
    std::string html;
    for (const char c : text) {
        switch (c) {
            case '<':
                html += "&lt;";
                break;
            case '>':
                html += "&gt;";
                break;
            case '&':
                html += "&amp;";
                break;
            case '"':
                html += "&quot;";
                break;
            default:
                html += c;
        }
    }
    return html;
}

std::string base64(const std::string& bytes) {
    constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            group = group << 8U | (i + j < bytes.size() ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            text += i + j <= bytes.size() ? kDigits[group >> (18U - 6U * j) & 63U] : '=';
        }
    }
    return text;
}

std::string tile(const std::string& value, const char* name) {
    return fmt::format("<div class='tile'><b>{}</b><span>{}</span></div>", value, name);
}

std::string tiles(const Calibration& c) {
    const CameraFigures& l = c.figures.left;
    const CameraFigures& r = c.figures.right;
    std::string html = "<div class='tiles'>";
    html += tile(fmt::format("{}", c.views.size()), "views used");
    html += tile(fmt::format("{}", l.distances.count + r.distances.count), "dots measured");
    html += tile(fmt::format("{:.4f} px", l.distances.mean), "mean error, left");
    html += tile(fmt::format("{:.4f} px", r.distances.mean), "mean error, right");
    html += tile(fmt::format("{:.4f} px", c.figures.epipolar.rms), "epipolar RMS distance");
    if (const auto& pair = c.rig.pair) {
        html += tile(fmt::format("{:.3f} {}", pair->baseline, escaped(c.plate.units)), "baseline");
        html += tile(fmt::format("{:.3f}°", pair->convergence * kDegreesPerRadian), "convergence angle");
    }
    return html + "</div>";
}

// What is known of the plate beside its lengths.
std::string plateNotes(const Plate& plate) {
    std::string html;
    std::istringstream lines(plateText(plate));
    for (std::string line; std::getline(lines, line);) {
        html += fmt::format("<p class='note'>{}</p>", escaped(line));
    }
    return html;
}

std::string warnings(const Calibration& c) {
    std::string html = fmt::format("<p class='verdict {0}'>Verdict: <b>{0}</b></p>", statusWord(c.verdict.status));
    for (const SkippedView& view : c.skipped) {
        if (view.isSetAside) {
            continue;  // a warning below tells why, once for all such views
        }
        html += fmt::format("<p class='warning'>Skipped: {}</p>", escaped(view.reason));
    }
    for (const Doubt& doubt : c.verdict.doubts) {
        html += fmt::format("<p class='warning'>{}</p>", escaped(doubt.text));
    }
    return html;
}

std::string cameraTable(const Calibration& c) {
    std::string html = "<table><tr><th>parameter</th><th class='name'>unit</th><th>left</th><th>right</th></tr>";
    for (const CameraParameter& row : cameraParameters(c.rig, c.plate.units)) {
        html += fmt::format("<tr><td>{}</td><td class='name'>{}</td><td>{}</td><td>{}</td></tr>", row.name,
                            escaped(row.unit), row.left, row.right);
    }
    return html + "</table>";
}

// What the adjustment changed.
std::string adjustment(const Calibration& c) {
    if (!c.adjustment) {
        return {};
    }
    const AdjustReport& report = *c.adjustment;
    std::string html = "<h2>Adjustment of both cameras together</h2>";
    html +=
        fmt::format("<p class='{}'>{}</p>", report.refusal.empty() ? "note" : "warning", escaped(adjustLine(report)));
    if (!report.refusal.empty()) {
        return html;
    }
    for (const std::string& remark : adjustRemarks(report)) {
        html += fmt::format("<p class='warning'>{}</p>", escaped(remark));
    }
    html += "<div class='scroll'><table><tr><th>moved by</th><th>left</th><th>±</th><th>right</th><th>±</th></tr>";
    for (const MovedParameter& row : movedParameters(report, c.rig, c.plate.units)) {
        html += fmt::format("<tr><td>{}</td><td>{}</td><td>{}</td><td>{}</td><td>{}</td></tr>", escaped(row.name),
                            row.leftMoved, row.leftDeviation, row.rightMoved, row.rightDeviation);
    }
    html += "</table></div>";
    for (const std::string& line : movedPair(report, c.rig, c.plate.units)) {
        html += fmt::format("<p class='note'>{}</p>", escaped(line));
    }
    html += "<p class='note'>± is the standard deviation that the residuals leave each parameter.</p>";
    html +=
        "<h2>Self-checks</h2><div class='scroll'><table><tr><th>verdict</th><th>p</th><th class='name'>finding"
        "</th></tr>";
    for (const ZelmMeasureCheck& check : report.checks) {
        html += fmt::format("<tr><td>{}</td><td>{:.2g}</td><td class='name'>{}</td></tr>", verdictWord(check.verdict),
                            check.p, escaped(check.text));
    }
    return html +
           "</table></div><p class='note'>p is the probability that chance alone gives as much in any of the checks; "
           "below 0.01 a finding is no chance. Wrong: it moves points by more than their uncertainty.</p>";
}

std::string imageCells(const std::filesystem::path& path, const ImageFigures& image) {
    if (image.dots.empty()) {
        return "<td class='name'>–</td><td>–</td><td>–</td><td>–</td><td>–</td>";
    }
    const DistanceFigures& d = image.distances;
    return fmt::format("<td class='name'>{}</td><td>{}</td><td>{:.4f}</td><td>{:.4f}</td><td>{:.4f}</td>",
                       escaped(imageName(path)), image.found, d.mean, d.rms, d.max);
}

std::string viewTable(const Calibration& c) {
    std::string html = "<div class='scroll'><table><tr><th>view</th>";
    for (const char* side : {"left", "right"}) {
        html += fmt::format("<th class='name'>{} image</th><th>dots</th><th>mean</th><th>RMS</th><th>worst</th>", side);
    }
    html += fmt::format("<th>epipolar RMS</th><th>blur left</th><th>blur right</th><th>lengths, {}</th></tr>",
                        escaped(c.plate.units));
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const DistanceFigures& epipolar = c.figures.epipolarViews[i];
        html += fmt::format("<tr><td>{}</td>{}{}<td>{}</td><td>{}</td><td>{}</td><td>{}</td></tr>", i,
                            imageCells(c.views[i].left, c.figures.left.views[i]),
                            imageCells(c.views[i].right, c.figures.right.views[i]),
                            epipolar.count > 0 ? fmt::format("{:.4f}", epipolar.rms) : "–", blurText(c, i, 0),
                            blurText(c, i, 1), lengthText(c, i));
    }
    html +=
        "</table></div><p class='note'>Blur: standard deviation in pixels of the edges' spread, the largest over the "
        "smallest where they differ by direction. Lengths: RMS error of distances between the dots.</p>";
    for (const std::string& line : qualityLines(c)) {
        html += fmt::format("<p class='note'>{}</p>", escaped(line));
    }
    return html;
}

std::string overlayFigure(const Calibration& c, const std::filesystem::path& path, const ImageFigures& image) {
    if (path.empty() || image.dots.empty() || !c.pictures) {
        return {};
    }
    const std::string png = drawOverlay(*c.pictures->get(path), c.plate, image.dots, kOverlaySide);
    return fmt::format(
        "<figure><img alt='Dots found in {0}' src='data:image/png;base64,{1}'><figcaption>{0}</figcaption></figure>",
        escaped(imageName(path)), base64(png));
}

std::string figure(const std::string& drawing, const char* caption) {
    return fmt::format("<figure>{}<figcaption>{}</figcaption></figure>", drawing, caption);
}

}  // namespace

const char* reportStyle() {
    return kStyle;
}

std::string htmlText(const std::string& text) {
    return escaped(text);
}

std::string htmlReport(const Calibration& c) {
    const Rig& rig = c.rig;
    const RigFigures& f = c.figures;
    std::string html =
        "<!DOCTYPE html><html lang='en'><head><meta charset='utf-8'>"
        "<meta name='viewport' content='width=device-width, initial-scale=1'><title>Calibration report</title><style>";
    html += kStyle;
    html += "</style></head><body><h1>Calibration report</h1>";
    html += fmt::format("<p class='note'>zelm {}, lengths in {}, image positions in pixels</p>", ZELM_VERSION,
                        escaped(c.plate.units));
    html += plateNotes(c.plate) + tiles(c) + warnings(c);
    html += "<h2>Cameras</h2>" + cameraTable(c) + adjustment(c);
    html +=
        "<h2>Reprojection error of every view</h2><p class='note'>RMS distance in pixels between the dots and their "
        "projections.<span class='key left'></span>left<span class='key right'></span>right</p>";
    html += viewBars(c) + viewTable(c);
    html +=
        "<h2>Errors over the image</h2><p class='note'>Every dot of every view, with its error. Look for areas "
        "without dots, and for errors that point the same way.</p><div class='two'>";
    html += figure(residualField(rig.left, f.left), "left") + figure(residualField(rig.right, f.right), "right");
    html +=
        "</div><h2>Errors of all dots</h2><p class='note'>A round cloud about the centre is noise; anything else has "
        "a cause.</p><div class='two'>";
    html += figure(residualScatter(f.left), "left") + figure(residualScatter(f.right), "right");
    html += "</div><h2>Dots found in view 0</h2><div class='two'>";
    html += overlayFigure(c, c.views[0].left, f.left.views[0]) + overlayFigure(c, c.views[0].right, f.right.views[0]);
    return html + "</div></body></html>\n";
}

}  // namespace zelm::tool
