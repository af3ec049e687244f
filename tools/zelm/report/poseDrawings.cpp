// The drawings of how the plates stood.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "numberText.h"
#include "reportDrawings.h"
#include "svgPlot.h"

namespace zelm::tool {
namespace {

constexpr double kWidth = 440.0;
constexpr std::array<const char*, 2> kSides{"left", "right"};

// A disc for the left camera, a square for the right one, so that they are told apart without colours.
std::string mark(std::size_t side, double x, double y, const std::string& title) {
    if (side == 0) {
        return fmt::format("<circle class=\"left\" cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"5.5\"><title>{}</title></circle>", x,
                           y, title);
    }
    return fmt::format(
        "<rect class=\"right hollow\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"10\" height=\"10\"><title>{}</title></rect>",
        x - 5.0, y - 5.0, title);
}

// Degrees that hold all tilts, a multiple of 15.
double tiltReach(const std::vector<ViewPose>& poses) {
    double most = 0.0;
    for (const ViewPose& view : poses) {
        for (const auto& pose : view.cameras) {
            most = pose ? std::max(most, pose->tilt * kDegreesPerRadian) : most;
        }
    }
    return std::clamp(15.0 * std::ceil((most + 1.0) / 15.0), 30.0, 90.0);
}

}  // namespace

std::string tiltPlot(const std::vector<ViewPose>& poses) {
    constexpr double kHeight = 400.0;
    constexpr double kRadius = 160.0;
    constexpr double kX = 0.5 * kWidth;
    constexpr double kY = 0.5 * kHeight;
    const double reach = tiltReach(poses);
    const double scale = kRadius / reach;
    std::string svg;
    svg += fmt::format("<path class=\"grid\" d=\"M{} {}H{}M{} {}V{}\"/>", kX - kRadius, kY, kX + kRadius, kX,
                       kY - kRadius, kY + kRadius);
    for (double ring = 15.0; ring <= reach; ring += 15.0) {
        svg += fmt::format("<circle class=\"grid\" cx=\"{}\" cy=\"{}\" r=\"{:.1f}\"/>", kX, kY, ring * scale);
        svg += svgText(kX + 4.0 + 0.7071 * ring * scale, kY - 3.0 - 0.7071 * ring * scale, "start",
                       fmt::format("{:.0f}°", ring));
    }
    svg += svgText(kX, kY - kRadius - 9.0, "middle", "faces up", "axis");
    svg += svgText(kX, kY + kRadius + 19.0, "middle", "faces down", "axis");
    svg += svgText(kX - kRadius - 6.0, kY - 4.0, "end", "faces", "axis");
    svg += svgText(kX - kRadius - 6.0, kY + 11.0, "end", "left", "axis");
    svg += svgText(kX + kRadius + 6.0, kY - 4.0, "start", "faces", "axis");
    svg += svgText(kX + kRadius + 6.0, kY + 11.0, "start", "right", "axis");
    for (std::size_t i = 0; i < poses.size(); ++i) {
        for (std::size_t side = 0; side < 2; ++side) {
            if (const auto& pose = poses[i].cameras[side]) {
                const double degrees = pose->tilt * kDegreesPerRadian;
                svg += mark(side, kX + degrees * scale * std::cos(pose->azimuth),
                            kY + degrees * scale * std::sin(pose->azimuth),
                            fmt::format("view {}, {} camera: tilted by {:.1f}°", i, kSides[side], degrees));
            }
        }
    }
    return svgElement(kWidth, kHeight, "Tilt of the plate in every view against the lines of sight, degrees", svg);
}

std::string distancePlot(const std::vector<ViewPose>& poses, const std::string& units) {
    constexpr double kHeight = 400.0;
    double least = 0.0;
    double most = 0.0;
    for (const ViewPose& view : poses) {
        for (const auto& pose : view.cameras) {
            if (pose && pose->distance > 0.0) {
                least = most > 0.0 ? std::min(least, pose->distance) : pose->distance;
                most = std::max(most, pose->distance);
            }
        }
    }
    if (!(most > 0.0)) {
        return {};
    }
    const double margin = std::max(0.08 * (most - least), 0.01 * most);
    SvgPlot plot(kWidth, kHeight, {-0.5, static_cast<double>(poses.size()) - 0.5, "view"},
                 {least - margin, most + margin, "distance, " + units});
    plot.ticksY();
    constexpr std::size_t kMaxLabels = 15;
    const std::size_t every = std::max<std::size_t>(1, (poses.size() + kMaxLabels - 1) / kMaxLabels);
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const auto x = static_cast<double>(i);
        if (i % every == 0) {
            plot.tickX(x, fmt::format("{}", i));
        }
        for (std::size_t side = 0; side < 2; ++side) {
            if (const auto& pose = poses[i].cameras[side]; pose && pose->distance > 0.0) {
                plot.add(mark(side, plot.x(x), plot.y(pose->distance),
                              fmt::format("view {}, {} camera: {:.5g}", i, kSides[side], pose->distance)));
            }
        }
    }
    return plot.svg("Distance of the plate from both cameras in every view");
}

}  // namespace zelm::tool
