#include "cloudPage.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <numeric>
#include <random>

#include "colourScale.h"
#include "failure.h"
#include "htmlText.h"
#include "letterCase.h"
#include "svgPlot.h"
#include "viewPoses.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMaxPoints = 200000;  // in the page, some 5 MB
constexpr std::size_t kMaxDrawn = 4000;     // in the still picture

// Numbers of `most` of the points, in order; of all when there are no more.
std::vector<std::size_t> drawn(std::size_t points, std::size_t most) {
    std::vector<std::size_t> all(points);
    std::iota(all.begin(), all.end(), std::size_t{0});
    if (points <= most) {
        return all;
    }
    std::vector<std::size_t> chosen;
    chosen.reserve(most);
    std::sample(all.begin(), all.end(), std::back_inserter(chosen), most, std::mt19937_64(1));
    return chosen;
}

// Four bytes or two, lowest first, whatever the machine.
template <class Number>
void append(std::string& bytes, Number value) {
    for (unsigned shift = 0; shift < 8 * sizeof(Number); shift += 8) {
        bytes += static_cast<char>(value >> shift & 0xffU);
    }
}

std::string positionBytes(const Cloud& cloud, const std::vector<std::size_t>& chosen) {
    std::string bytes;
    bytes.reserve(12 * chosen.size());
    for (const std::size_t i : chosen) {
        const Point3d& p = cloud.points[i];
        for (const double value : {p.x, p.y, p.z}) {
            append(bytes, std::bit_cast<std::uint32_t>(static_cast<float>(value)));
        }
    }
    return bytes;
}

Json rangeJson(const ColourRange& range) {
    return {{"from", range.from}, {"to", range.to}, {"below", range.isCutBelow}, {"above", range.isCutAbove}};
}

// Values as 16 bits between the least and the greatest; 65535 is one that is not known.
Json valueJson(const CloudValue& value, const std::vector<std::size_t>& chosen) {
    constexpr double kSteps = 65534.0;
    constexpr std::uint16_t kUnknown = 65535;
    std::vector<double> kept;
    kept.reserve(chosen.size());
    for (const std::size_t i : chosen) {
        kept.push_back(value.values[i]);
    }
    double least = 0.0;
    double most = 0.0;
    bool isFirst = true;
    for (const double v : kept) {
        if (std::isfinite(v)) {
            least = isFirst ? v : std::min(least, v);
            most = isFirst ? v : std::max(most, v);
            isFirst = false;
        }
    }
    std::string bytes;
    for (const double v : kept) {
        const double part = most > least ? (v - least) / (most - least) : 0.0;
        append(bytes, std::isfinite(v) ? static_cast<std::uint16_t>(std::lround(kSteps * part)) : kUnknown);
    }
    Json json{{"name", value.name}, {"unit", value.unit}, {"gray", value.isGray},
              {"least", least},     {"most", most},       {"bytes", base64(bytes)}};
    json["range"] = value.isGray ? rangeJson({0.0, 255.0}) : rangeJson(colourRange(kept));
    return json;
}

std::vector<double> depthsOf(const Cloud& cloud, const Motion& toCamera) {
    std::vector<double> depths;
    depths.reserve(cloud.points.size());
    for (const Point3d& p : cloud.points) {
        depths.push_back(toCamera({p.x, p.y, p.z})[2]);
    }
    return depths;
}

Json cloudJson(const Cloud& cloud, const Motion& toCamera, const std::vector<std::size_t>& chosen) {
    Json colours = Json::array();
    for (const Colour& c : kScaleColours) {
        colours.push_back({c.red, c.green, c.blue});
    }
    Json values = Json::array();
    for (const CloudValue& value : cloud.values) {
        values.push_back(valueJson(value, chosen));
    }
    return {{"units", cloud.units},
            {"count", chosen.size()},
            {"R", toCamera.R},
            {"t", toCamera.t},
            {"colours", colours},
            {"depthRange", rangeJson(colourRange(depthsOf(cloud, toCamera)))},
            {"positions", base64(positionBytes(cloud, chosen))},
            {"values", values}};
}

// The points as the left camera sees them, in the colours of their depths.
std::string stillPicture(const Cloud& cloud, const Rig& rig, const Motion& toCamera) {
    constexpr double kWidth = 760.0;
    const double scale = kWidth / rig.left.width;
    const std::vector<double> depths = depthsOf(cloud, toCamera);
    const ColourRange range = colourRange(depths);
    constexpr std::size_t kClasses = 12;
    std::array<std::string, kClasses> paths;
    const ZelmCameraIntrinsics& k = rig.left.intrinsics;
    for (const std::size_t i : drawn(cloud.points.size(), kMaxDrawn)) {
        const Point3 p = toCamera({cloud.points[i].x, cloud.points[i].y, cloud.points[i].z});
        const double z = rig.left.isParallel() ? 1.0 : p[2];
        const double part = std::clamp(range.partOf(depths[i]), 0.0, 0.999);
        paths[static_cast<std::size_t>(part * kClasses)] +=
            fmt::format("M{:.1f} {:.1f}h0", scale * (k.A[0] * p[0] / z + k.cx), scale * (k.A[4] * p[1] / z + k.cy));
    }
    std::string svg;
    for (std::size_t i = 0; i < kClasses; ++i) {
        const Colour c = scaleColour((static_cast<double>(i) + 0.5) / kClasses);
        svg += fmt::format("<path class=\"points\" stroke=\"rgb({:.0f} {:.0f} {:.0f})\" d=\"{}\"/>", 255.0 * c.red,
                           255.0 * c.green, 255.0 * c.blue, paths[i]);
    }
    return svgElement(kWidth, scale * rig.left.height, "The points as the left camera sees them, in colours of depth",
                      svg);
}

constexpr const char* kPanel = R"(<div class="cloud-panel" hidden>
<div><label>Colour by <select class="colour-by"></select></label>
<label>Size of points <input class="size" type="range" min="1" max="8" step="0.5" value="3"></label></div>
<div class="legend" role="img"><span class="low"></span><span class="bar"></span><span class="high"></span></div>
</div>
)";

}  // namespace

std::string cloudPage(const Cloud& cloud, const Rig& rig, const Provenance& provenance) {
    const Motion toCamera = motionOf(rig.left.poses.front());
    const std::vector<std::size_t> chosen = drawn(cloud.points.size(), kMaxPoints);
    std::string body = fmt::format("<header>\n<h1>{}</h1>\n<p class=\"note\">{}</p>\n</header>\n<main>\n",
                                   escaped(cloud.title), escaped(cloud.note));
    if (chosen.size() < cloud.points.size()) {
        body +=
            fmt::format("<p class=\"note\">Shown are {} of {} points, drawn at random, evenly over the cloud.</p>\n",
                        chosen.size(), cloud.points.size());
    } else {
        body += fmt::format("<p class=\"note\">{} points.</p>\n", cloud.points.size());
    }
    body += kPanel;
    body += "<figure class=\"scene\" data-scene=\"cloud\">" + stillPicture(cloud, rig, toCamera) +
            "<figcaption>The points as the left camera sees them, near ones yellow, far ones violet.</figcaption>"
            "</figure>\n";
    body += provenanceHtml(provenance) + "</main>\n" + jsonElement("cloud-data", cloudJson(cloud, toCamera, chosen));
    return htmlOf({cloud.title,
                   body,
                   {"page.css", "cloud.css"},
                   {"threeLicence.js", "three.min.js", "OrbitControls.js", "viewer.js", "cloudView.js"}});
}

void requirePageName(const std::string& name) {
    if (!name.empty() && lowerEnding(name) != ".html") {
        failUsage("{}: the page of points is an HTML file: give the name the ending .html", name);
    }
}

}  // namespace zelm::tool
