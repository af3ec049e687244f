#include "sharpness.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kMaxSpots = 30;    // enough for a median to a few hundredths
constexpr double kMaxWindow = 120.0;     // pixels to each side of a seed
constexpr double kMinWindow = 4.0;       //
constexpr double kLevelShare = 0.05;     // of a window's pixels beyond its dark and its bright level
constexpr double kLineVariance = 12.0;   // a straight smear's length squared over its variance
constexpr std::size_t kMinSpotArea = 9;  // pixels

// The pixels about a seed.
struct Window {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

Window windowAt(const DenseImage& image, Point2d seed, double half) {
    const int left = std::max(0, static_cast<int>(std::floor(seed.x - half)));
    const int top = std::max(0, static_cast<int>(std::floor(seed.y - half)));
    return {left, top, std::min(image.width() - 1, static_cast<int>(std::ceil(seed.x + half))) - left + 1,
            std::min(image.height() - 1, static_cast<int>(std::ceil(seed.y + half))) - top + 1};
}

// Midway between the levels of a window's dark and bright pixels.
double middleLevel(const DenseImage& image, const Window& window) {
    std::vector<std::uint8_t> levels;
    levels.reserve(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height));
    for (int y = window.top; y < window.top + window.height; ++y) {
        levels.insert(levels.end(), image.row(y) + window.left, image.row(y) + window.left + window.width);
    }
    const auto rank = static_cast<std::ptrdiff_t>(kLevelShare * static_cast<double>(levels.size()));
    std::nth_element(levels.begin(), levels.begin() + rank, levels.end());
    const double dark = levels[static_cast<std::size_t>(rank)];
    std::nth_element(levels.begin(), levels.end() - 1 - rank, levels.end());
    return 0.5 * (dark + levels[levels.size() - 1 - static_cast<std::size_t>(rank)]);
}

// Sums over the pixels of a spot.
struct SpotSums {
    double n = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    bool cut = false;

    SpotEllipse ellipse() const {
        const double mx = x / n;
        const double my = y / n;
        // A filled ellipse's second moments are a quarter of its half axes' squares; each pixel adds its own.
        constexpr double kPixel = 1.0 / 12.0;
        return {{mx, my},
                {4.0 * (xx / n - mx * mx + kPixel), 4.0 * (xy / n - mx * my), 4.0 * (yy / n - my * my + kPixel)}};
    }
};

// The connected pixels on the dots' side of the level that the seed belongs to.
SpotSums spotSums(const DenseImage& image, Point2d seed, const Window& window, int polarity) {
    const double level = middleLevel(image, window);
    const auto belongs = [&](int x, int y) { return (image.row(y)[x] >= level) == (polarity == 1); };
    std::vector<bool> seen(static_cast<std::size_t>(window.width) * static_cast<std::size_t>(window.height));
    std::vector<std::pair<int, int>> stack;
    const auto visit = [&](int x, int y, SpotSums& sums) {
        if (x < window.left || y < window.top || x >= window.left + window.width || y >= window.top + window.height) {
            sums.cut = true;
            return;
        }
        const auto place = static_cast<std::size_t>(y - window.top) * static_cast<std::size_t>(window.width) +
                           static_cast<std::size_t>(x - window.left);
        if (!seen[place] && belongs(x, y)) {
            seen[place] = true;
            stack.emplace_back(x, y);
        }
    };
    SpotSums sums;
    visit(static_cast<int>(std::lround(seed.x)), static_cast<int>(std::lround(seed.y)), sums);
    while (!stack.empty()) {
        const auto [x, y] = stack.back();
        stack.pop_back();
        const double dx = x - seed.x;
        const double dy = y - seed.y;
        sums.n += 1.0;
        sums.x += dx;
        sums.y += dy;
        sums.xx += dx * dx;
        sums.xy += dx * dy;
        sums.yy += dy * dy;
        visit(x - 1, y, sums);
        visit(x + 1, y, sums);
        visit(x, y - 1, sums);
        visit(x, y + 1, sums);
    }
    return sums;
}

double nearestOther(const std::vector<Point2d>& points, std::size_t i) {
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t j = 0; j < points.size(); ++j) {
        if (j != i) {
            nearest = std::min(nearest, std::hypot(points[j].x - points[i].x, points[j].y - points[i].y));
        }
    }
    return nearest;
}

double radiusOf(const Tensor2& shape) {
    return std::sqrt(std::sqrt(std::max(shape.determinant(), 0.0)));
}

template <class Value>
double medianOf(const std::vector<EdgeSpread>& spreads, Value value) {
    std::vector<double> values;
    values.reserve(spreads.size());
    std::transform(spreads.begin(), spreads.end(), std::back_inserter(values), value);
    return median(std::move(values));
}

}  // namespace

std::vector<SharpnessSpot> spotsAt(const DenseImage& image, const std::vector<Point2d>& seeds, int polarity) {
    std::vector<SharpnessSpot> spots;
    spots.reserve(seeds.size());
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        const Point2d seed = seeds[i];
        if (!(seed.x >= 0.0 && seed.y >= 0.0 && seed.x <= image.width() - 1 && seed.y <= image.height() - 1)) {
            continue;
        }
        const double neighbour = nearestOther(seeds, i);
        const double half = std::min(kMaxWindow, 0.62 * neighbour);
        if (half < kMinWindow) {
            continue;
        }
        const SpotSums sums = spotSums(image, seed, windowAt(image, seed, half), polarity);
        if (sums.cut || sums.n < static_cast<double>(kMinSpotArea)) {
            continue;
        }
        SpotEllipse ellipse = sums.ellipse();
        ellipse.centre = {ellipse.centre.x + seed.x, ellipse.centre.y + seed.y};
        const double radius = std::sqrt(axesOf(ellipse.shape).largest);
        spots.push_back({ellipse, std::min(half, neighbour - radius) - radius});
    }
    return spots;
}

Sharpness sharpnessOf(const DenseImage& image, const std::vector<SharpnessSpot>& spots, int polarity) {
    std::vector<EdgeSpread> spreads;
    const std::size_t taken = std::min(spots.size(), kMaxSpots);
    spreads.reserve(taken);
    for (std::size_t k = 0; k < taken; ++k) {
        const SharpnessSpot& spot = spots[k * spots.size() / taken];
        const auto spread = edgeSpread(image, spot.ellipse, spot.reach);
        if (spread && (spread->inside > spread->outside) == (polarity == 1)) {
            spreads.push_back(*spread);
        }
    }
    Sharpness result;
    result.dots = spreads.size();
    if (spreads.empty()) {
        return result;
    }
    const Tensor2 variance{medianOf(spreads, [](const EdgeSpread& s) { return s.variance.xx; }),
                           medianOf(spreads, [](const EdgeSpread& s) { return s.variance.xy; }),
                           medianOf(spreads, [](const EdgeSpread& s) { return s.variance.yy; })};
    const TensorAxes axes = axesOf(variance);
    result.spread = {std::sqrt(std::max(axes.largest, 0.0)), std::sqrt(std::max(axes.smallest, 0.0)), axes.direction};
    result.smear = std::sqrt(kLineVariance * (axes.largest - axes.smallest));
    result.radius = medianOf(spreads, [](const EdgeSpread& s) { return radiusOf(s.outline.shape); });
    result.inside = medianOf(spreads, [](const EdgeSpread& s) { return s.inside; });
    result.outside = medianOf(spreads, [](const EdgeSpread& s) { return s.outside; });
    result.noise = medianOf(spreads, [](const EdgeSpread& s) { return s.noise; });
    return result;
}

}  // namespace zelm::measure
