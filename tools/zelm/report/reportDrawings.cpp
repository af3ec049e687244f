#include "reportDrawings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace zelm::tool {
namespace {

// The smallest of 1, 2, 5, 10, ... times a power of ten that is not below the value.
double roundUp(double value) {
    if (!(value > 0.0)) {
        return 1.0;
    }
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (step * power >= value) {
            return step * power;
        }
    }
    return 10.0 * power;
}

std::string text(double x, double y, const char* anchor, const std::string& words) {
    return fmt::format("<text x='{:.1f}' y='{:.1f}' text-anchor='{}'>{}</text>", x, y, anchor, words);
}

std::string bar(double x, double y, double width, double height, const char* kind, const std::string& title) {
    return fmt::format("<rect class='{}' x='{:.2f}' y='{:.2f}' width='{:.2f}' height='{:.2f}'><title>{}</title></rect>",
                       kind, x, y, width, height, title);
}

}  // namespace

std::string viewBars(const Calibration& c) {
    constexpr double kWidth = 900.0;
    constexpr double kHeight = 240.0;
    constexpr double kLeft = 56.0;
    constexpr double kBottom = 210.0;
    constexpr double kTop = 14.0;
    constexpr std::size_t kMaxLabels = 30;
    double worst = 0.0;
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        worst = std::max({worst, c.figures.left.views[i].distances.rms, c.figures.right.views[i].distances.rms});
    }
    const double top = roundUp(worst);
    const double scale = (kBottom - kTop) / top;
    const double step = (kWidth - kLeft) / static_cast<double>(c.views.size());
    std::string svg =
        fmt::format("<svg viewBox='0 0 {} {}' role='img' aria-label='RMS error of every view'>", kWidth, kHeight);
    constexpr int kGridLines = 4;
    for (int i = 0; i <= kGridLines; ++i) {
        const double y = kBottom - (kBottom - kTop) * i / kGridLines;
        svg += fmt::format("<line class='grid' x1='{}' y1='{:.1f}' x2='{}' y2='{:.1f}'/>", kLeft, y, kWidth, y);
        svg += text(kLeft - 6.0, y + 4.0, "end", fmt::format("{:.3g}", top * i / kGridLines));
    }
    const std::size_t labelEvery = c.views.size() / kMaxLabels + 1;
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const double x = kLeft + step * static_cast<double>(i);
        const double left = c.figures.left.views[i].distances.rms;
        const double right = c.figures.right.views[i].distances.rms;
        svg += bar(x + 0.14 * step, kBottom - scale * left, 0.34 * step, scale * left, "left",
                   fmt::format("view {} left: {:.4f} px", i, left));
        svg += bar(x + 0.52 * step, kBottom - scale * right, 0.34 * step, scale * right, "right",
                   fmt::format("view {} right: {:.4f} px", i, right));
        if (i % labelEvery == 0) {
            svg += text(x + 0.5 * step, kBottom + 16.0, "middle", fmt::format("{}", i));
        }
    }
    return svg + "</svg>";
}

std::string residualField(const RigCamera& camera, const CameraFigures& figures) {
    constexpr double kUsualLength = 0.012;  // of the image's width, for an error of the RMS
    const double width = camera.width;
    const double height = camera.height;
    const double magnification = roundUp(kUsualLength * width / std::max(figures.distances.rms, 1e-12 * width));
    std::string svg = fmt::format(
        "<svg viewBox='0 0 {} {}' role='img' aria-label='Errors over the image'>"
        "<rect class='frame' width='{}' height='{}' vector-effect='non-scaling-stroke'/>",
        width, height, width, height);
    std::string lines;
    std::string dots;
    for (const ImageFigures& view : figures.views) {
        for (std::size_t i = 0; i < view.dots.size(); ++i) {
            const Point2d p = view.dots[i].pixel;
            lines += fmt::format("M{:.1f} {:.1f}l{:.1f} {:.1f}", p.x + 0.5, p.y + 0.5,
                                 magnification * view.dots[i].error.x, magnification * view.dots[i].error.y);
            dots += fmt::format("M{:.1f} {:.1f}h0", p.x + 0.5, p.y + 0.5);
        }
    }
    svg += "<path class='errors' d='" + lines + "'/><path class='dots' d='" + dots + "'/></svg>";
    return svg + fmt::format("<p class='note'>Errors magnified {:g} times.</p>", magnification);
}

std::string residualScatter(const CameraFigures& figures) {
    constexpr double kHalf = 150.0;  // of the drawing's side
    const double reach = roundUp(figures.distances.max);
    const double scale = 0.92 * kHalf / reach;
    std::string svg =
        fmt::format("<svg viewBox='{0} {0} {1} {1}' role='img' aria-label='Errors of all dots'>", -kHalf, 2.0 * kHalf);
    for (const double share : {0.5, 1.0}) {
        svg += fmt::format("<circle class='grid' r='{:.1f}'/>", share * reach * scale);
        svg += text(3.0, -share * reach * scale + 12.0, "start", fmt::format("{:.3g} px", share * reach));
    }
    svg += fmt::format("<path class='grid' d='M{0} 0H{1}M0 {0}V{1}'/>", -kHalf, kHalf);
    std::string dots;
    for (const ImageFigures& view : figures.views) {
        for (const Dot& dot : view.dots) {
            dots += fmt::format("M{:.1f} {:.1f}h0", scale * dot.error.x, scale * dot.error.y);
        }
    }
    return svg + "<path class='scatter' d='" + dots + "'/></svg>";
}

}  // namespace zelm::tool
