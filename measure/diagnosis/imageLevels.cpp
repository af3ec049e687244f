#include "imageLevels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr double kClipped = 0.002;       // of the pixels at either end
constexpr int kSaturatedLevel = 254;     //
constexpr std::size_t kDirections = 12;  // over half a turn
constexpr double kSteepest = 0.0005;     // of the pixels, whose slope stands for the steepest edges
constexpr int kHalfStep = 2;             // pixels to either side of a slope, means of 3 x 3

// Sums of 3 x 3 pixels along a row of the region, those about its first and last pixel left 0.
void sumRow(const DenseImage& image, const ZelmRect& region, int y, std::vector<int>& sums) {
    const std::uint8_t* const above = image.row(y - 1) + region.x;
    const std::uint8_t* const at = image.row(y) + region.x;
    const std::uint8_t* const below = image.row(y + 1) + region.x;
    for (int x = 1; x + 1 < region.width; ++x) {
        int sum = 0;
        for (int k = x - 1; k <= x + 1; ++k) {
            sum += above[k] + at[k] + below[k];
        }
        sums[static_cast<std::size_t>(x)] = sum;
    }
}

// Calls act(x, y, dx, dy) with the slopes at each pixel of the region but its rim, gray levels a pixel.
template <class Act>
void forSlopes(const DenseImage& image, const ZelmRect& region, Act act) {
    constexpr int kMargin = kHalfStep + 1;
    constexpr double kPerSum = 1.0 / (9.0 * 2.0 * kHalfStep);
    constexpr std::size_t kRows = 2 * kHalfStep + 1;
    std::array<std::vector<int>, kRows> sums;
    sums.fill(std::vector<int>(static_cast<std::size_t>(region.width)));
    for (int y = region.y + 1; y < region.y + region.height - 1; ++y) {
        std::rotate(sums.begin(), sums.begin() + 1, sums.end());
        sumRow(image, region, y, sums.back());
        if (y < region.y + kMargin + kHalfStep) {
            continue;  // the row in the middle of the sums has none above it yet
        }
        const std::vector<int>& middle = sums[kHalfStep];
        for (int column = kMargin; column < region.width - kMargin; ++column) {
            const auto x = static_cast<std::size_t>(column);
            act(region.x + column, y - kHalfStep, kPerSum * (middle[x + kHalfStep] - middle[x - kHalfStep]),
                kPerSum * (sums.back()[x] - sums.front()[x]));
        }
    }
}

// The steepest edges in a direction.
struct Edges {
    double x = 1.0;  // the direction
    double y = 0.0;
    double slope = 0.0;  // the least of them, gray levels a pixel
    double width = 0.0;  // over which that slope takes all the levels, pixels
};

double levelMean(const DenseImage& image, double x, double y) {
    const int column = static_cast<int>(std::lround(x));
    int sum = 0;
    for (int row = static_cast<int>(std::lround(y)) - 1, last = row + 2; row <= last; ++row) {
        const std::uint8_t* const p = image.row(row) + column;
        sum += p[-1] + p[0] + p[1];
    }
    return sum / 9.0;
}

// By how much the levels change from one width before the steepest edges to one behind them, median; 0 where most of
// them have no such room.
double changeAcross(const DenseImage& image, const ZelmRect& region, const Edges& edges) {
    std::vector<double> changes;
    std::size_t all = 0;
    const double wayX = edges.width * edges.x;
    const double wayY = edges.width * edges.y;
    const auto isInside = [&](double x, double y) {
        return x >= region.x + 1 && y >= region.y + 1 && x <= region.x + region.width - 2 &&
               y <= region.y + region.height - 2;
    };
    forSlopes(image, region, [&](int x, int y, double dx, double dy) {
        if (std::fabs(edges.x * dx + edges.y * dy) < edges.slope) {
            return;
        }
        ++all;
        if (isInside(x - wayX, y - wayY) && isInside(x + wayX, y + wayY)) {
            changes.push_back(std::fabs(levelMean(image, x + wayX, y + wayY) - levelMean(image, x - wayX, y - wayY)));
        }
    });
    return 2 * changes.size() < all || changes.empty() ? 0.0 : median(std::move(changes));
}

}  // namespace

int levelOfShare(const std::array<double, 256>& counts, double share) {
    const double total = std::accumulate(counts.begin(), counts.end(), 0.0);
    double sum = 0.0;
    for (int level = 0; level < 256; ++level) {
        sum += counts[static_cast<std::size_t>(level)];
        if (sum > share * total) {
            return level;
        }
    }
    return 255;
}

ImageLevels levelsOf(const DenseImage& image, const ZelmRect& region) {
    std::array<double, 256> counts{};
    for (int y = region.y; y < region.y + region.height; ++y) {
        for (int x = region.x; x < region.x + region.width; ++x) {
            counts[image.row(y)[x]] += 1.0;
        }
    }
    const double total = static_cast<double>(region.width) * region.height;
    ImageLevels levels;
    levels.dark = levelOfShare(counts, kClipped);
    levels.bright = levelOfShare(counts, 1.0 - kClipped);
    levels.saturated = (counts[kSaturatedLevel] + counts[255]) / total;
    return levels;
}

void measureEdges(const DenseImage& image, const ZelmRect& region, ImageLevels& levels) {
    std::array<double, kDirections> cosines{};
    std::array<double, kDirections> sines{};
    for (std::size_t k = 0; k < kDirections; ++k) {
        const double angle = std::numbers::pi * static_cast<double>(k) / static_cast<double>(kDirections);
        cosines[k] = std::cos(angle);
        sines[k] = std::sin(angle);
    }
    // Histograms of the slopes in each direction, in tenths of a gray level a pixel.
    constexpr std::size_t kBins = 1300;
    std::array<std::vector<int>, kDirections> slopes;
    slopes.fill(std::vector<int>(kBins));
    double samples = 0.0;
    forSlopes(image, region, [&](int, int, double dx, double dy) {
        samples += 1.0;
        if (dx * dx + dy * dy < 0.01) {
            return;
        }
        for (std::size_t k = 0; k < kDirections; ++k) {
            const double slope = std::fabs(cosines[k] * dx + sines[k] * dy);
            slopes[k][std::min(static_cast<std::size_t>(10.0 * slope), kBins - 1)] += 1;
        }
    });
    const double range = std::max(levels.bright - levels.dark, 1);
    Edges widest;
    Edges narrowest;
    narrowest.width = HUGE_VAL;
    for (std::size_t k = 0; k < kDirections; ++k) {
        double sum = 0.0;
        std::size_t bin = kBins;
        while (bin > 1 && sum <= kSteepest * samples) {
            sum += slopes[k][--bin];
        }
        const double slope = 0.1 * static_cast<double>(bin);
        const Edges edges{cosines[k], sines[k], slope, range / slope};
        narrowest = edges.width < narrowest.width ? edges : narrowest;
        widest = edges.width > widest.width ? edges : widest;
    }
    levels.widest = widest.width;
    levels.narrowest = narrowest.width;
    levels.direction = std::atan2(widest.y, widest.x);
    if (levels.direction > 0.5 * std::numbers::pi) {
        levels.direction -= std::numbers::pi;
    }
    levels.widestStep = changeAcross(image, region, widest) / range;
    levels.narrowestStep = changeAcross(image, region, narrowest) / range;
}

}  // namespace zelm::measure
