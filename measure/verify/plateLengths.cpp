#include "plateLengths.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

namespace zelm::measure {
namespace {

constexpr std::size_t kLinesOfDirection = 3;
constexpr std::size_t kLengthsOfLine = 5;  // VDI/VDE 2634 part 1: at least five on each of seven lines
constexpr std::size_t kMinDotsOfLine = 3;

using Line = std::vector<std::size_t>;  // dots in order

class LengthChooser {
public:
    LengthChooser(const Pattern& pattern, const std::vector<GridIndex>& list) : plate(pattern), dots(list) {}

    std::vector<PlateLength> choose() {
        addLines(linesOf([](GridIndex i) { return std::pair<std::int64_t, std::int64_t>(i.y, i.x); }), 0.0);
        addLines(linesOf([](GridIndex i) { return std::pair<std::int64_t, std::int64_t>(i.x, i.y); }), 0.0);
        // The outermost diagonals are single dots: those at a quarter and three quarters are taken instead.
        addLines(linesOf([](GridIndex i) { return std::pair(std::int64_t{i.x} - i.y, std::int64_t{i.x}); }), 0.25);
        addLines(linesOf([](GridIndex i) { return std::pair(std::int64_t{i.x} + i.y, std::int64_t{i.x}); }), 0.25);
        addCorners();
        return std::move(lengths);
    }

private:
    // Lines of a direction from one side of the plate to the other; keyOf gives a dot's line and its place on it.
    template <class KeyOf>
    std::vector<Line> linesOf(KeyOf keyOf) const {
        std::map<std::int64_t, std::vector<std::pair<std::int64_t, std::size_t>>> sorted;
        for (std::size_t i = 0; i < dots.size(); ++i) {
            const auto [line, place] = keyOf(dots[i]);
            sorted[line].emplace_back(place, i);
        }
        std::vector<Line> lines;
        for (auto& [key, list] : sorted) {
            if (list.size() < kMinDotsOfLine) {
                continue;
            }
            std::sort(list.begin(), list.end());
            Line& line = lines.emplace_back();
            for (const auto& [place, dot] : list) {
                line.push_back(dot);
            }
        }
        return lines;
    }

    // Of the first, the middle and the last line, these moved inwards by a part of all.
    void addLines(const std::vector<Line>& lines, double margin) {
        std::set<std::size_t> taken;
        for (std::size_t k = 0; k < kLinesOfDirection && !lines.empty(); ++k) {
            const double part = margin + (1.0 - 2.0 * margin) * static_cast<double>(k) / (kLinesOfDirection - 1);
            taken.insert(static_cast<std::size_t>(std::lround(part * static_cast<double>(lines.size() - 1))));
        }
        for (const std::size_t i : taken) {
            addLengths(lines[i]);
        }
    }

    // From both ends in turn, so that no dot's error is in all.
    void addLengths(const Line& line) {
        const std::size_t last = line.size() - 1;
        const std::size_t count = std::min(kLengthsOfLine, last);
        for (std::size_t k = 1; k <= count; ++k) {
            const std::size_t steps = (k * last + count / 2) / count;
            const bool isFromFirst = k % 2 == 1;
            add(line[isFromFirst ? 0 : last - steps], line[isFromFirst ? steps : last]);
        }
    }

    void addCorners() {
        for (const int sign : {1, -1}) {
            std::size_t low = 0;
            std::size_t high = 0;
            const auto key = [&](std::size_t i) { return plate.d4 * dots[i].x + sign * plate.d5 * dots[i].y; };
            for (std::size_t i = 0; i < dots.size(); ++i) {
                low = key(i) < key(low) ? i : low;
                high = key(i) > key(high) ? i : high;
            }
            if (low != high) {
                add(low, high);
            }
        }
    }

    void add(std::size_t from, std::size_t to) {
        if (!known.insert(std::minmax(from, to)).second) {
            return;
        }
        const double x = (static_cast<double>(dots[to].x) - dots[from].x) * plate.d4;
        const double y = (static_cast<double>(dots[to].y) - dots[from].y) * plate.d5;
        lengths.push_back({from, to, std::hypot(x, y)});
    }

    const Pattern& plate;
    const std::vector<GridIndex>& dots;
    std::set<std::pair<std::size_t, std::size_t>> known;
    std::vector<PlateLength> lengths;
};

}  // namespace

std::vector<PlateLength> plateLengths(const Pattern& plate, const std::vector<GridIndex>& dots) {
    return dots.empty() ? std::vector<PlateLength>{} : LengthChooser(plate, dots).choose();
}

}  // namespace zelm::measure
