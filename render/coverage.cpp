#include "coverage.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zelm::render {
namespace {

constexpr double kReachSigmas = 6.5;  // beyond, the blur's tail is 4e-11 of the step

int toIndex(double value, int low, int high) {
    return static_cast<int>(std::clamp(value, static_cast<double>(low), static_cast<double>(high)));
}

// Integral of the Gaussian up to v.
double cumulative(double v, double sigma) {
    return 0.5 * std::erfc(-v / (sigma * std::numbers::sqrt2));
}

// Integral of `cumulative` up to v.
double secondCumulative(double v, double sigma) {
    const double z = v / sigma;
    const double density = std::exp(-0.5 * z * z) * 0.5 * std::numbers::inv_sqrtpi * std::numbers::sqrt2;
    return v * cumulative(v, sigma) + sigma * density;
}

}  // namespace

Coverage::Coverage(int imageWidth, int imageHeight, double blurSigma)
    : width(imageWidth),
      height(imageHeight),
      sigma(blurSigma),
      reach(0.5 + kReachSigmas * blurSigma),
      changes(static_cast<std::size_t>(imageWidth) * static_cast<std::size_t>(imageHeight)) {}

double* Coverage::rowAt(int row) {
    return changes.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(width);
}

void Coverage::add(const std::vector<OutlineNode>& outline, double level) {
    for (const OutlineNode& node : outline) {
        addNode(node, level);
    }
}

void Coverage::addNode(const OutlineNode& node, double level) {
    const auto [x, y] = node.pixel;
    const int firstRow = toIndex(std::ceil(y - reach), 0, height);
    const int lastRow = toIndex(std::floor(y + reach), -1, height - 1);
    const int left = toIndex(std::ceil(x - reach), 0, width);               // pixels before it take the whole weight
    const int right = toIndex(std::floor(x + reach) + 1.0, -1, width - 1);  // K is 0 from here on
    if (firstRow > lastRow || right < 0) {
        return;
    }
    columnStep.clear();
    double previous = left > 0 ? 1.0 : 0.0;
    double lower = secondCumulative(x - left + 0.5, sigma);
    for (int column = left; column <= right; ++column) {
        const double upper = lower;
        lower = secondCumulative(x - column - 0.5, sigma);
        columnStep.push_back(upper - lower - previous);
        previous = upper - lower;
    }
    double lowerPart = cumulative(y - firstRow + 0.5, sigma);
    for (int row = firstRow; row <= lastRow; ++row) {
        const double upperPart = lowerPart;
        lowerPart = cumulative(y - row - 0.5, sigma);
        const double weight = level * node.dy * (upperPart - lowerPart);
        double* change = rowAt(row);
        if (left > 0) {
            change[0] += weight;
        }
        for (std::size_t i = 0; i < columnStep.size(); ++i) {
            change[static_cast<std::size_t>(left) + i] += weight * columnStep[i];
        }
    }
}

void Coverage::addSharp(const std::vector<Pixel>& polygon, double level) {
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        addSharpEdge(polygon[i], polygon[(i + 1) % polygon.size()], level);
    }
}

// Cuts an edge where it passes from one pixel row to the next.
void Coverage::addSharpEdge(Pixel from, Pixel to, double level) {
    if (from.y > to.y) {
        std::swap(from, to);
        level = -level;
    }
    const int firstRow = toIndex(std::floor(from.y + 0.5), 0, height);
    const int lastRow = toIndex(std::floor(to.y + 0.5), -1, height - 1);
    for (int row = firstRow; row <= lastRow; ++row) {
        const double top = std::max(from.y, row - 0.5);
        const double bottom = std::min(to.y, row + 0.5);
        if (bottom > top) {
            const double slope = (to.x - from.x) / (to.y - from.y);
            addSharpPiece(row, {from.x + slope * (top - from.y), top}, {from.x + slope * (bottom - from.y), bottom},
                          level);
        }
    }
}

// Cuts an edge within a row where it passes from one pixel to the next, and adds the area on its left.
void Coverage::addSharpPiece(int row, Pixel from, Pixel to, double level) {
    const double least = std::min(from.x, to.x);
    const double most = std::max(from.x, to.x);
    const int firstColumn = toIndex(std::floor(least + 0.5), -1, width);
    const int lastColumn = toIndex(std::floor(most + 0.5), -1, width);
    const double wholeWeight = level * (to.y - from.y);
    double* change = rowAt(row);
    for (int column = firstColumn; column <= lastColumn; ++column) {
        // Pixels -1 and `width` stand for everything outside the image.
        const double pieceLeft = column < 0 ? least : std::max(least, column - 0.5);
        const double pieceRight = column >= width ? most : std::min(most, column + 0.5);
        const double share = most > least ? (pieceRight - pieceLeft) / (most - least) : 1.0;
        const double weight = wholeWeight * std::max(share, 0.0);
        if (column < 0) {
            continue;
        }
        change[0] += weight;
        if (column < width) {
            const double inside = 0.5 * (pieceLeft + pieceRight) - (column - 0.5);  // share of the pixel left of it
            change[column] -= weight * (1.0 - inside);
            if (column + 1 < width) {
                change[column + 1] -= weight * inside;
            }
        }
    }
}

std::vector<double> Coverage::finish(double ground) && {
    for (int row = 0; row < height; ++row) {
        double* change = rowAt(row);
        double sum = ground;
        for (int column = 0; column < width; ++column) {
            sum += change[column];
            change[column] = sum;
        }
    }
    return std::move(changes);
}

}  // namespace zelm::render
