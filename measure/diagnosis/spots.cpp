#include "spots.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <tuple>
#include <utility>

#include "imageLevels.h"

namespace zelm::measure {
namespace {

constexpr int kEvenLevels = 14;          // thresholds spread evenly over the gray levels that there are,
constexpr int kQuantileLevels = 10;      // and over the pixels
constexpr double kClipped = 0.002;       // of the pixels at either end of the levels that do not count
constexpr double kMinArea = 6.0;         // pixels
constexpr double kMaxShare = 0.04;       // of the region that a dot takes at most
constexpr double kMinFill = 0.88;        // of a spot that is an ellipse; a square has 0.95, a ring or a hook far less
constexpr double kMaxFill = 1.10;        //
constexpr double kMinAxisRatio = 0.1;    // of smeared dots
constexpr double kSameCentre = 0.4;      // radii between the centres of one spot at two thresholds
constexpr double kSameArea = 2.5;        // times
constexpr std::size_t kMaxSpots = 4000;  // of a busy image; each is compared with all others
constexpr double kPixelVariance = 1.0 / 12.0;

// A region's gray levels, each the mean of 3 x 3 pixels: noise makes no spots then.
class SmoothImage {
public:
    SmoothImage(const DenseImage& image, const ZelmRect& region)
        : columns(region.width),
          rows(region.height),
          pixels(static_cast<std::size_t>(region.width) * static_cast<std::size_t>(region.height)) {
        std::vector<int> sums(static_cast<std::size_t>(columns));
        for (int y = 0; y < rows; ++y) {
            const int above = std::max(y - 1, 0);
            const int below = std::min(y + 1, rows - 1);
            for (int x = 0; x < columns; ++x) {
                const auto at = [&](int row) { return static_cast<int>(image.row(region.y + row)[region.x + x]); };
                sums[static_cast<std::size_t>(x)] = at(above) + at(y) + at(below);
            }
            for (int x = 0; x < columns; ++x) {
                const auto sum = [&](int column) { return sums[static_cast<std::size_t>(column)]; };
                const int total = sum(std::max(x - 1, 0)) + sum(x) + sum(std::min(x + 1, columns - 1));
                pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(x)] =
                    static_cast<std::uint8_t>((total + 4) / 9);
            }
        }
    }

    int width() const { return columns; }
    int height() const { return rows; }
    const std::uint8_t* row(int y) const { return pixels.data() + static_cast<std::ptrdiff_t>(y) * columns; }

    std::array<double, 256> histogram() const {
        std::array<double, 256> counts{};
        for (const std::uint8_t pixel : pixels) {
            counts[pixel] += 1.0;
        }
        return counts;
    }

private:
    int columns;
    int rows;
    std::vector<std::uint8_t> pixels;
};

std::vector<int> thresholdsOf(const SmoothImage& image) {
    const std::array<double, 256> counts = image.histogram();
    const int low = levelOfShare(counts, kClipped);
    const int high = levelOfShare(counts, 1.0 - kClipped);
    std::vector<int> levels;
    for (int i = 1; i <= kEvenLevels; ++i) {
        levels.push_back(low + static_cast<int>(std::lround((high - low) * i / (kEvenLevels + 1.0))));
    }
    for (int i = 1; i <= kQuantileLevels; ++i) {
        levels.push_back(levelOfShare(counts, i / (kQuantileLevels + 1.0)));
    }
    std::sort(levels.begin(), levels.end());
    levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
    std::erase_if(levels, [&](int level) { return level <= low || level > high; });
    return levels;
}

// Sums over the pixels of a component.
struct Component {
    double n = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    int left = 0, right = 0, top = 0, bottom = 0;

    void addRun(int row, int first, int last) {
        const double length = last - first + 1;
        const double middle = 0.5 * (first + last);
        const double sum = length * middle;
        if (n == 0.0) {
            left = first;
            right = last;
            top = row;
        }
        left = std::min(left, first);
        right = std::max(right, last);
        top = std::min(top, row);
        bottom = std::max(bottom, row);
        n += length;
        x += sum;
        y += length * row;
        xx += length * middle * middle + length * (length * length - 1.0) / 12.0;
        xy += sum * row;
        yy += length * static_cast<double>(row) * row;
    }
    void add(const Component& other) {
        n += other.n;
        x += other.x;
        y += other.y;
        xx += other.xx;
        xy += other.xy;
        yy += other.yy;
        left = std::min(left, other.left);
        right = std::max(right, other.right);
        top = std::min(top, other.top);
        bottom = std::max(bottom, other.bottom);
    }
};

// Connected components, eight neighbours, of one threshold: runs joined by union and find.
class Labelling {
public:
    std::vector<Component> components(const SmoothImage& image, int threshold, int polarity) {
        parts.clear();
        parents.clear();
        above.clear();
        for (int y = 0; y < image.height(); ++y) {
            current.clear();
            const std::uint8_t* const row = image.row(y);
            std::size_t from = 0;
            for (int x = 0; x < image.width();) {
                if ((row[x] >= threshold) != (polarity == 1)) {
                    ++x;
                    continue;
                }
                const int first = x;
                while (x < image.width() && (row[x] >= threshold) == (polarity == 1)) {
                    ++x;
                }
                addRun(y, first, x - 1, from);
            }
            std::swap(above, current);
        }
        return joined();
    }

private:
    struct Run {
        int first;
        int last;
        std::size_t label;
    };

    std::size_t rootOf(std::size_t label) {
        while (parents[label] != label) {
            parents[label] = parents[parents[label]];
            label = parents[label];
        }
        return label;
    }

    void addRun(int y, int first, int last, std::size_t& from) {
        while (from < above.size() && above[from].last < first - 1) {
            ++from;
        }
        std::size_t label = parents.size();
        bool isNew = true;
        for (std::size_t i = from; i < above.size() && above[i].first <= last + 1; ++i) {
            const std::size_t root = rootOf(above[i].label);
            if (isNew) {
                label = root;
                isNew = false;
            } else {
                parents[std::max(root, label)] = std::min(root, label);
                label = std::min(root, label);
            }
        }
        if (isNew) {
            parents.push_back(label);
            parts.emplace_back();
        }
        parts[label].addRun(y, first, last);
        current.push_back({first, last, label});
    }

    std::vector<Component> joined() {
        std::vector<Component> found;
        for (std::size_t i = parts.size(); i-- > 0;) {
            if (const std::size_t root = rootOf(i); root != i) {
                parts[root].add(parts[i]);
            } else {
                found.push_back(parts[i]);
            }
        }
        return found;
    }

    std::vector<Component> parts;
    std::vector<std::size_t> parents;
    std::vector<Run> above;
    std::vector<Run> current;
};

Spot spotOf(const Component& c, const SmoothImage& image) {
    const double mx = c.x / c.n;
    const double my = c.y / c.n;
    const Tensor2 moments{c.xx / c.n - mx * mx + kPixelVariance, c.xy / c.n - mx * my,
                          c.yy / c.n - my * my + kPixelVariance};
    Spot spot;
    spot.ellipse = {{mx, my}, {4.0 * moments.xx, 4.0 * moments.xy, 4.0 * moments.yy}};
    spot.area = c.n;
    spot.fill = c.n / (std::numbers::pi * std::sqrt(std::max(spot.ellipse.shape.determinant(), 1e-12)));
    spot.left = c.left;
    spot.right = c.right;
    spot.top = c.top;
    spot.bottom = c.bottom;
    spot.isCut = c.left == 0 || c.top == 0 || c.right == image.width() - 1 || c.bottom == image.height() - 1;
    const TensorAxes axes = axesOf(spot.ellipse.shape);
    spot.isOval =
        spot.fill >= kMinFill && spot.fill <= kMaxFill && axes.smallest > kMinAxisRatio * kMinAxisRatio * axes.largest;
    return spot;
}

// One spot through the thresholds.
struct Family {
    std::vector<Spot> members;
    std::vector<int> levels;
};

bool belongs(const Spot& spot, const Spot& last) {
    const double ratio = spot.area / last.area;
    const double distance =
        std::hypot(spot.ellipse.centre.x - last.ellipse.centre.x, spot.ellipse.centre.y - last.ellipse.centre.y);
    return ratio < kSameArea && ratio > 1.0 / kSameArea &&
           distance < kSameCentre * std::min(spot.radius(), last.radius());
}

// Families by the square of the image that their last member's centre lies in.
class FamilyMap {
public:
    FamilyMap(int width, int height)
        : columns(width / kCell + 1),
          rows(height / kCell + 1),
          cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

    void add(const Spot& spot, int level) {
        // Centres of one spot stay together to a part of its radius.
        const int reach = 1 + static_cast<int>(kSameCentre * spot.radius()) / kCell;
        const int cx = static_cast<int>(spot.ellipse.centre.x) / kCell;
        const int cy = static_cast<int>(spot.ellipse.centre.y) / kCell;
        for (int y = std::max(cy - reach, 0); y <= std::min(cy + reach, rows - 1); ++y) {
            for (int x = std::max(cx - reach, 0); x <= std::min(cx + reach, columns - 1); ++x) {
                for (const std::size_t index : cellAt(x, y)) {
                    Family& family = families[index];
                    if (family.levels.back() != level && belongs(spot, family.members.back())) {
                        family.members.push_back(spot);
                        family.levels.push_back(level);
                        return;
                    }
                }
            }
        }
        cellAt(cx, cy).push_back(families.size());
        families.push_back({{spot}, {level}});
    }

    std::vector<Family> families;

private:
    static constexpr int kCell = 16;  // pixels
    std::vector<std::size_t>& cellAt(int x, int y) {
        return cells[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(x)];
    }

    int columns;
    int rows;
    std::vector<std::vector<std::size_t>> cells;
};

// A family's middle member that is oval, or its middle one.
Spot spotOf(const Family& family, const ZelmRect& region) {
    std::vector<std::size_t> oval;
    for (std::size_t i = 0; i < family.members.size(); ++i) {
        if (family.members[i].isOval) {
            oval.push_back(i);
        }
    }
    Spot spot = family.members[oval.empty() ? family.members.size() / 2 : oval[oval.size() / 2]];
    spot.levels = static_cast<int>(family.members.size());
    spot.depth = family.levels.back() - family.levels.front();
    spot.isOval = spot.isOval && 2 * oval.size() >= family.members.size();
    spot.ellipse.centre.x += region.x;
    spot.ellipse.centre.y += region.y;
    spot.left += region.x;
    spot.right += region.x;
    spot.top += region.y;
    spot.bottom += region.y;
    return spot;
}

bool isNear(const Spot& a, const Spot& b) {
    return std::hypot(a.ellipse.centre.x - b.ellipse.centre.x, a.ellipse.centre.y - b.ellipse.centre.y) <
           0.7 * std::max(a.radius(), b.radius());
}

// Kept spots by the square of the image that their centre lies in; the few large ones apart.
class KeptSpots {
public:
    KeptSpots(int width, int height)
        : columns(width / kCell + 1),
          rows(height / kCell + 1),
          cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

    bool hasNear(const Spot& spot) const {
        const auto isTwin = [&](std::size_t i) { return isNear(spot, kept[i]); };
        if (std::any_of(large.begin(), large.end(), isTwin)) {
            return true;
        }
        const int reach = 1 + static_cast<int>(std::max(spot.radius(), kLarge)) / kCell;
        const auto [cx, cy] = cellOf(spot);
        for (int y = std::max(cy - reach, 0); y <= std::min(cy + reach, rows - 1); ++y) {
            for (int x = std::max(cx - reach, 0); x <= std::min(cx + reach, columns - 1); ++x) {
                const auto& cell = cells[indexOf(x, y)];
                if (std::any_of(cell.begin(), cell.end(), isTwin)) {
                    return true;
                }
            }
        }
        return false;
    }

    void add(const Spot& spot) {
        const auto [cx, cy] = cellOf(spot);
        (spot.radius() > kLarge ? large : cells[indexOf(cx, cy)]).push_back(kept.size());
        kept.push_back(spot);
    }

    std::vector<Spot> kept;

private:
    static constexpr int kCell = 16;        // pixels
    static constexpr double kLarge = 24.0;  // pixels
    std::pair<int, int> cellOf(const Spot& spot) const {
        return {std::clamp(static_cast<int>(spot.ellipse.centre.x) / kCell, 0, columns - 1),
                std::clamp(static_cast<int>(spot.ellipse.centre.y) / kCell, 0, rows - 1)};
    }
    std::size_t indexOf(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(x);
    }

    int columns;
    int rows;
    std::vector<std::vector<std::size_t>> cells;
    std::vector<std::size_t> large;
};

// Of spots about one place the one that most thresholds show.
std::vector<Spot> withoutTwins(std::vector<Spot> spots, const ZelmRect& region) {
    std::sort(spots.begin(), spots.end(), [](const Spot& a, const Spot& b) {
        return std::tuple(a.isOval, a.levels, a.area) > std::tuple(b.isOval, b.levels, b.area);
    });
    KeptSpots kept(region.x + region.width, region.y + region.height);
    for (const Spot& spot : spots) {
        if (kept.kept.size() == kMaxSpots) {
            break;
        }
        if (!kept.hasNear(spot)) {
            kept.add(spot);
        }
    }
    return std::move(kept.kept);
}

}  // namespace

double Spot::radius() const {
    return std::sqrt(area / std::numbers::pi);
}

std::vector<Spot> findSpots(const DenseImage& image, const ZelmRect& region, int polarity) {
    const SmoothImage smooth(image, region);
    const double maxArea = kMaxShare * static_cast<double>(region.width) * region.height;
    FamilyMap map(region.width, region.height);
    Labelling labelling;
    for (const int level : thresholdsOf(smooth)) {
        for (const Component& component : labelling.components(smooth, level, polarity)) {
            if (component.n >= kMinArea && component.n <= maxArea) {
                map.add(spotOf(component, smooth), level);
            }
        }
    }
    std::vector<Spot> spots;
    for (const Family& family : map.families) {
        if (family.members.size() >= 2) {
            spots.push_back(spotOf(family, region));
        }
    }
    return withoutTwins(std::move(spots), region);
}

}  // namespace zelm::measure
