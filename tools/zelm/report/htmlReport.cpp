#include "htmlReport.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "htmlText.h"
#include "reportDrawings.h"
#include "reportHead.h"
#include "reportTables.h"
#include "reportVerdict.h"
#include "rigScene.h"
#include "viewGallery.h"
#include "viewPoses.h"

namespace zelm::tool {
namespace {

std::string headHtml(const Calibration& c, const Provenance& provenance) {
    return fmt::format(
        "<header>\n<h1>Calibration report</h1>\n<p class=\"note\">{}; {} of a plate; zelm {}. Lengths in {}, "
        "image positions in pixels.</p>\n</header>\n",
        escaped(provenance.time), c.views.size() == 1 ? "1 view" : fmt::format("{} views", c.views.size()),
        ZELM_VERSION, escaped(c.plate.units));
}

constexpr const char* kNavigation =
    "<nav aria-label=\"Contents\"><a href=\"#rig\">Rig</a><a href=\"#cameras\">Cameras</a><a href=\"#poses\">Views</a>"
    "<a href=\"#errors\">Errors</a><a href=\"#views\">Images</a><a href=\"#table\">Table</a>"
    "<a href=\"#checks\">Checks</a><a href=\"#origin\">Origin</a></nav>\n";

std::string tiles(const Calibration& c) {
    const CameraFigures& l = c.figures.left;
    const CameraFigures& r = c.figures.right;
    std::string html = "<dl class=\"tiles\">";
    html += tile(fmt::format("{}", c.views.size()), "views used");
    html += tile(fmt::format("{}", l.distances.count + r.distances.count), "dots measured");
    html += tile(fmt::format("{:.4f} px", l.distances.rms), "RMS error, left");
    html += tile(fmt::format("{:.4f} px", r.distances.rms), "RMS error, right");
    html += tile(fmt::format("{:.4f} px", c.figures.epipolar.rms), "RMS epipolar distance");
    if (const auto& pair = c.rig.pair) {
        html += tile(c.rig.covariance ? fmt::format("{:.4f} ± {:.4f} {}", pair->baseline, baselineDeviation(c.rig),
                                                    escaped(c.plate.units))
                                      : fmt::format("{:.4f} {}", pair->baseline, escaped(c.plate.units)),
                     "baseline");
    }
    return html + "</dl>\n";
}

std::string rigHtml(const RigScene& scene) {
    return "<section id=\"rig\">\n<h2>The rig and all plates</h2>\n"
           "<p class=\"note\">Both cameras with a part of their fields of view, and the plate of every view with its "
           "dots.</p>\n<figure class=\"scene\" data-scene=\"rig\">" +
           sceneDrawing(scene) +
           "<figcaption>Seen from the right, from above and from behind.</figcaption></figure>\n</section>\n";
}

std::string posesHtml(const Calibration& c, const std::vector<ViewPose>& poses) {
    std::string html =
        "<section id=\"poses\">\n<h2>Where the plate was shown</h2>\n<p class=\"note\"><span class=\"key left\"></span>"
        "left camera <span class=\"key right hollow\"></span>right camera. Plates tilted to all sides, at several "
        "distances, with dots all over both images determine the cameras best.</p>\n<div class=\"two\">\n";
    html += figureElement(tiltPlot(poses), "Tilt of the plate against the line of sight, and where its face looks to.");
    if (const std::string plot = distancePlot(poses, c.plate.units); !plot.empty()) {
        html += figureElement(plot, "Distance from the cameras to the plate's corner marker.");
    }
    for (const auto& [camera, figures, name] :
         {std::tuple(&c.rig.left, &c.figures.left, "left"), std::tuple(&c.rig.right, &c.figures.right, "right")}) {
        html += figureElement(
            coverage(*camera, *figures, fmt::format("Dots of all views in the {} image", name)),
            fmt::format("<b class=\"{0}-ink\">{0}</b> image: dots of all views lie in {1:.0f} % of its cells; cells "
                        "without a dot are shaded.",
                        name, 100.0 * coveredShare(*camera, *figures)));
    }
    return html + "</div>\n</section>\n";
}

std::string fieldCaption(const CameraFigures& figures, const char* name) {
    const std::size_t every = errorFieldStep(figures);
    return fmt::format("<b class=\"{0}-ink\">{0}</b> image{1}.", name,
                       every > 1 ? fmt::format("; one in {} of the dots is drawn", every) : "");
}

std::string errorsHtml(const Calibration& c, const ErrorScale& scale) {
    std::string html = fmt::format(
        "<section id=\"errors\">\n<h2>Reprojection errors</h2>\n<p class=\"note\">The distance between a measured dot "
        "and the projection of its place on the plate. Both cameras are drawn at one scale: errors over the image are "
        "{:g} times as long as they are. Errors that point the same way over an area have a cause; noise points "
        "anywhere.</p>\n<div class=\"two\">\n",
        scale.magnification);
    html += figureElement(errorField(c.rig.left, c.figures.left, scale, "Errors over the left image"),
                          fieldCaption(c.figures.left, "left"));
    html += figureElement(errorField(c.rig.right, c.figures.right, scale, "Errors over the right image"),
                          fieldCaption(c.figures.right, "right"));
    html += figureElement(errorScatter(c.figures.left, scale, "Errors of all dots of the left camera"),
                          "<b class=\"left-ink\">left</b>: errors of all dots about one origin; circle: RMS.");
    html += figureElement(errorScatter(c.figures.right, scale, "Errors of all dots of the right camera"),
                          "<b class=\"right-ink\">right</b>: a round cloud is noise.");
    html += figureElement(viewBars(c),
                          "<span class=\"key left\"></span>left <span class=\"key right\"></span>right: "
                          "RMS error of every view.");
    if (const std::string bars = epipolarBars(c); !bars.empty()) {
        html += figureElement(bars, "RMS distance of every view's dots from each other's epipolar lines.");
    }
    return html + "</div>\n</section>\n";
}

}  // namespace

std::string htmlReport(const Calibration& c, const Provenance& provenance, const Console& console) {
    const std::vector<ViewPose> poses = viewPoses(c);
    const ErrorScale scale = errorScale(c);
    const RigScene scene = rigScene(c);
    std::string body = headHtml(c, provenance) + "<main>\n";
    body += verdictHtml(reportVerdict(c)) + warningsHtml(c) + tiles(c) + notesHtml(c) + kNavigation;
    body += rigHtml(scene) + camerasHtml(c) + posesHtml(c, poses) + errorsHtml(c, scale);
    body += c.pictures ? viewGallery(c, poses, scale.magnification, console) : std::string();  // none of points
    body += viewTableHtml(c, poses) + adjustmentHtml(c);
    body += provenanceHtml(provenance) + "</main>\n" + jsonElement("rig-data", sceneJson(scene, c));
    return htmlOf({"Calibration report",
                   body,
                   {"page.css", "report.css"},
                   {"threeLicence.js", "three.min.js", "OrbitControls.js", "viewer.js", "rigView.js", "gallery.js"}});
}

}  // namespace zelm::tool
