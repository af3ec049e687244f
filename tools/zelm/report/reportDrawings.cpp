#include "reportDrawings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "svgPlot.h"

namespace zelm::tool {
namespace {

constexpr double kWidth = 440.0;          // of every drawing, so that its text can be read on a narrow screen too
constexpr std::size_t kMaxLabels = 15;    // of views along an axis
constexpr std::size_t kMaxErrors = 4000;  // lines of errors in one drawing

std::string bar(const SvgPlot& plot, double x, double width, double value, const char* side, const std::string& title) {
    return fmt::format(
        "<rect class=\"{}\" x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\"><title>{}</title></rect>",
        side, x, plot.y(value), width, plot.y(0.0) - plot.y(value), title);
}

// Labels of views below a plot, as many as there is room for.
void labelViews(SvgPlot& plot, std::size_t views) {
    const std::size_t every = (views + kMaxLabels - 1) / kMaxLabels;
    for (std::size_t i = 0; i < views; i += std::max<std::size_t>(every, 1)) {
        plot.tickX(static_cast<double>(i), fmt::format("{}", i));
    }
}

double heightFor(const RigCamera& camera) {
    const double across = kWidth - SvgPlot::kLeft - SvgPlot::kMargin;
    return SvgPlot::kMargin + SvgPlot::kBelow + across * camera.height / camera.width;
}

// A plot whose area is the camera's image; y points down.
SvgPlot imagePlot(const RigCamera& camera) {
    SvgPlot plot(kWidth, heightFor(camera), {-0.5, camera.width - 0.5, "x, px"}, {camera.height - 0.5, -0.5, "y, px"});
    plot.ticksX();
    plot.ticksY();
    plot.add(fmt::format("<rect class=\"frame\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\"/>",
                         SvgPlot::kLeft, SvgPlot::kMargin, camera.width * plot.scale(), camera.height * plot.scale()));
    return plot;
}

template <class Use>
void forEachDot(const CameraFigures& figures, Use use) {
    for (const ImageFigures& view : figures.views) {
        for (const Dot& dot : view.dots) {
            use(dot);
        }
    }
}

std::size_t dotCount(const CameraFigures& figures) {
    std::size_t count = 0;
    for (const ImageFigures& view : figures.views) {
        count += view.dots.size();
    }
    return count;
}

// Lies at the foot of an image plot, on a ground of its own.
std::string scaleBar(const SvgPlot& plot, const RigCamera& camera, double length, const std::string& words) {
    const double width = std::max(length, 7.0 * static_cast<double>(words.size())) + 16.0;
    const double right = plot.x(camera.width - 0.5) - 6.0;
    const double foot = plot.y(camera.height - 0.5) - 6.0;
    const double middle = right - 0.5 * width;
    return fmt::format(
               "<g class=\"scale\"><rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"32\" rx=\"4\"/>"
               "<path d=\"M{:.1f} {:.1f}v-6m0 3h{:.1f}m0 -3v6\"/>",
               right - width, foot - 32.0, width, middle - 0.5 * length, foot - 5.0, length) +
           svgText(middle, foot - 17.0, "middle", words) + "</g>";
}

// Cells of nearly square shape over an image, and which of them hold dots.
struct Cells {
    static constexpr int kAcross = 12;
    int columns = kAcross;
    int rows = kAcross;
    std::vector<bool> held;

    Cells(const RigCamera& camera, const CameraFigures& figures)
        : rows(std::max(1, static_cast<int>(std::lround(kAcross * static_cast<double>(camera.height) / camera.width)))),
          held(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {
        forEachDot(figures, [&](const Dot& dot) {
            const int column = static_cast<int>((dot.pixel.x + 0.5) / camera.width * columns);
            const int row = static_cast<int>((dot.pixel.y + 0.5) / camera.height * rows);
            held[static_cast<std::size_t>(std::clamp(row, 0, rows - 1) * columns +
                                          std::clamp(column, 0, columns - 1))] = true;
        });
    }
};

}  // namespace

std::string viewBars(const Calibration& c) {
    constexpr double kHeight = 260.0;
    double worst = 0.0;
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        worst = std::max({worst, c.figures.left.views[i].distances.rms, c.figures.right.views[i].distances.rms});
    }
    SvgPlot plot(kWidth, kHeight, {-0.5, static_cast<double>(c.views.size()) - 0.5, "view"},
                 {0.0, 1.05 * std::max(worst, 1e-6), "RMS error, px"});
    plot.ticksY();
    labelViews(plot, c.views.size());
    const double step = plot.scale();
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        const double x = plot.x(static_cast<double>(i));
        const double left = c.figures.left.views[i].distances.rms;
        const double right = c.figures.right.views[i].distances.rms;
        plot.add(
            bar(plot, x - 0.38 * step, 0.36 * step, left, "left", fmt::format("view {} left: {:.4f} px", i, left)));
        plot.add(
            bar(plot, x + 0.02 * step, 0.36 * step, right, "right", fmt::format("view {} right: {:.4f} px", i, right)));
    }
    return plot.svg("RMS reprojection error of every view, pixels");
}

std::string epipolarBars(const Calibration& c) {
    constexpr double kHeight = 260.0;
    double worst = 0.0;
    for (const DistanceFigures& view : c.figures.epipolarViews) {
        worst = std::max(worst, view.count > 0 ? view.rms : 0.0);
    }
    if (!(worst > 0.0)) {
        return {};
    }
    SvgPlot plot(kWidth, kHeight, {-0.5, static_cast<double>(c.views.size()) - 0.5, "view"},
                 {0.0, 1.05 * worst, "RMS distance, px"});
    plot.ticksY();
    labelViews(plot, c.views.size());
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        if (const DistanceFigures& view = c.figures.epipolarViews[i]; view.count > 0) {
            plot.add(bar(plot, plot.x(static_cast<double>(i)) - 0.3 * plot.scale(), 0.6 * plot.scale(), view.rms,
                         "both", fmt::format("view {}: {:.4f} px", i, view.rms)));
        }
    }
    return plot.svg("RMS epipolar distance of every view, pixels");
}

ErrorScale errorScale(const Calibration& c) {
    constexpr double kUsualLength = 0.01;  // of the image's width, for an error of the RMS
    const double rms = std::max({c.figures.left.distances.rms, c.figures.right.distances.rms, 1e-9});
    const double width = std::min(c.rig.left.width, c.rig.right.width);
    ErrorScale scale;
    scale.magnification = roundUp(kUsualLength * width / rms);
    scale.bar = roundUp(0.08 * width / scale.magnification);
    scale.reach = roundUp(std::max({c.figures.left.distances.max, c.figures.right.distances.max, 1e-9}));
    return scale;
}

std::size_t errorFieldStep(const CameraFigures& figures) {
    return std::max<std::size_t>(1, (dotCount(figures) + kMaxErrors - 1) / kMaxErrors);
}

std::string errorField(const RigCamera& camera, const CameraFigures& figures, const ErrorScale& scale,
                       const std::string& name) {
    SvgPlot plot = imagePlot(camera);
    const double magnified = scale.magnification * plot.scale();
    const std::size_t every = errorFieldStep(figures);
    std::size_t number = 0;
    std::string lines;
    std::string dots;
    forEachDot(figures, [&](const Dot& dot) {
        if (number++ % every == 0) {
            const double x = plot.x(dot.pixel.x);
            const double y = plot.y(dot.pixel.y);
            lines +=
                fmt::format("M{:.1f} {:.1f}l{:.1f} {:.1f}", x, y, magnified * dot.error.x, magnified * dot.error.y);
            dots += fmt::format("M{:.1f} {:.1f}h0", x, y);
        }
    });
    plot.add("<path class=\"errors\" d=\"" + lines + "\"/><path class=\"dots\" d=\"" + dots + "\"/>");
    plot.add(scaleBar(plot, camera, scale.bar * magnified, fmt::format("{:g} px", scale.bar)));
    return plot.svg(name);
}

std::string errorScatter(const CameraFigures& figures, const ErrorScale& scale, const std::string& name) {
    const double square = kWidth - SvgPlot::kLeft + SvgPlot::kBelow;
    SvgPlot plot(kWidth, square, {-scale.reach, scale.reach, "error in x, px"},
                 {scale.reach, -scale.reach, "error in y, px"});
    plot.ticksX();
    plot.ticksY();
    const std::size_t every = errorFieldStep(figures);
    std::size_t number = 0;
    std::string dots;
    forEachDot(figures, [&](const Dot& dot) {
        if (number++ % every == 0) {
            dots += fmt::format("M{:.1f} {:.1f}h0", plot.x(dot.error.x), plot.y(dot.error.y));
        }
    });
    plot.add(fmt::format("<circle class=\"rms\" cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"{:.1f}\"/>", plot.x(0.0), plot.y(0.0),
                         figures.distances.rms * plot.scale()));
    plot.add("<path class=\"scatter\" d=\"" + dots + "\"/>");
    return plot.svg(name);
}

std::string coverage(const RigCamera& camera, const CameraFigures& figures, const std::string& name) {
    SvgPlot plot = imagePlot(camera);
    const Cells cells(camera, figures);
    const double side = camera.width * plot.scale() / cells.columns;
    const double height = camera.height * plot.scale() / cells.rows;
    std::string empty;
    for (std::size_t i = 0; i < cells.held.size(); ++i) {
        if (!cells.held[i]) {
            const auto columns = static_cast<std::size_t>(cells.columns);
            empty += fmt::format("M{:.1f} {:.1f}h{:.2f}v{:.2f}h-{:.2f}z",
                                 SvgPlot::kLeft + static_cast<double>(i % columns) * side,
                                 SvgPlot::kMargin + static_cast<double>(i / columns) * height, side, height, side);
        }
    }
    std::string dots;
    forEachDot(figures, [&](const Dot& dot) {
        dots += fmt::format("M{:.1f} {:.1f}h0", plot.x(dot.pixel.x), plot.y(dot.pixel.y));
    });
    plot.add("<path class=\"empty\" d=\"" + empty + "\"/><path class=\"covered\" d=\"" + dots + "\"/>");
    return plot.svg(name);
}

double coveredShare(const RigCamera& camera, const CameraFigures& figures) {
    const Cells cells(camera, figures);
    return static_cast<double>(std::count(cells.held.begin(), cells.held.end(), true)) /
           static_cast<double>(cells.held.size());
}

}  // namespace zelm::tool
