#include "imageLevels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

namespace zelm::measure {
namespace {

constexpr double kClipped = 0.002;       // of the pixels at either end
constexpr int kSaturatedLevel = 254;     //
constexpr std::size_t kDirections = 12;  // over half a turn
constexpr double kSteepest = 0.0005;     // of the pixels, whose slope stands for the steepest edges
constexpr int kHalfStep = 2;             // pixels to either side of a slope, means of 3 x 3

double levelMean(const DenseImage& image, int x, int y) {
    int sum = 0;
    for (int row = y - 1; row <= y + 1; ++row) {
        const std::uint8_t* const p = image.row(row) + x;
        sum += p[-1] + p[0] + p[1];
    }
    return sum / 9.0;
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

    // Histograms of the slopes in each direction, in tenths of a gray level a pixel.
    constexpr std::size_t kBins = 1300;
    std::array<std::vector<int>, kDirections> slopes;
    slopes.fill(std::vector<int>(kBins));
    std::array<double, kDirections> cosines{};
    std::array<double, kDirections> sines{};
    for (std::size_t k = 0; k < kDirections; ++k) {
        const double angle = std::numbers::pi * static_cast<double>(k) / static_cast<double>(kDirections);
        cosines[k] = std::cos(angle);
        sines[k] = std::sin(angle);
    }
    double samples = 0.0;
    constexpr int kMargin = kHalfStep + 1;
    for (int y = region.y + kMargin; y < region.y + region.height - kMargin; ++y) {
        for (int x = region.x + kMargin; x < region.x + region.width - kMargin; ++x) {
            samples += 1.0;
            const double dx = (levelMean(image, x + kHalfStep, y) - levelMean(image, x - kHalfStep, y)) / 4.0;
            const double dy = (levelMean(image, x, y + kHalfStep) - levelMean(image, x, y - kHalfStep)) / 4.0;
            if (dx * dx + dy * dy < 0.01) {
                continue;
            }
            for (std::size_t k = 0; k < kDirections; ++k) {
                const double slope = std::fabs(cosines[k] * dx + sines[k] * dy);
                slopes[k][std::min(static_cast<std::size_t>(10.0 * slope), kBins - 1)] += 1;
            }
        }
    }
    levels.narrowest = HUGE_VAL;
    const double range = std::max(levels.bright - levels.dark, 1);
    for (std::size_t k = 0; k < kDirections; ++k) {
        double sum = 0.0;
        std::size_t bin = kBins;
        while (bin > 1 && sum <= kSteepest * samples) {
            sum += slopes[k][--bin];
        }
        const double width = range / (0.1 * static_cast<double>(bin));
        levels.narrowest = std::min(levels.narrowest, width);
        if (width > levels.widest) {
            levels.widest = width;
            levels.direction = std::atan2(sines[k], cosines[k]);
        }
    }
    if (levels.direction > 0.5 * std::numbers::pi) {
        levels.direction -= std::numbers::pi;
    }
    return levels;
}

}  // namespace zelm::measure
