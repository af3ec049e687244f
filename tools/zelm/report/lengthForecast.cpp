#include "lengthForecast.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

namespace zelm::tool {
namespace {

constexpr std::size_t kMaxViews = 50;  // four points of each, so at most some twenty thousand lengths

struct PixelPairs {
    std::vector<double> left;   // 2 a point
    std::vector<double> right;  //

    std::size_t count() const { return left.size() / 2; }
    void add(Point2d l, Point2d r) {
        left.insert(left.end(), {l.x, l.y});
        right.insert(right.end(), {r.x, r.y});
    }
};

// The dots at the four corners of what both images show.
void addCorners(const ImageFigures& left, const ImageFigures& right, PixelPairs& pairs) {
    std::map<GridIndex, Point2d> others;
    for (const Dot& dot : right.dots) {
        others.emplace(dot.index, dot.pixel);
    }
    std::array<const Dot*, 4> corners{};
    const auto reach = [](const Dot& dot, std::size_t corner) {
        return (corner % 2 == 0 ? dot.index.x : -dot.index.x) + (corner < 2 ? dot.index.y : -dot.index.y);
    };
    for (const Dot& dot : left.dots) {
        for (std::size_t i = 0; i < corners.size() && others.contains(dot.index); ++i) {
            corners[i] = corners[i] == nullptr || reach(dot, i) > reach(*corners[i], i) ? &dot : corners[i];
        }
    }
    for (const Dot* const corner : corners) {
        if (corner != nullptr) {
            pairs.add(corner->pixel, others.at(corner->index));
        }
    }
}

PixelPairs cornersOf(const RigFigures& figures) {
    PixelPairs pairs;
    const std::size_t views = std::min(figures.left.views.size(), figures.right.views.size());
    const std::size_t every = 1 + views / (kMaxViews + 1);
    for (std::size_t i = 0; i < views; i += every) {
        addCorners(figures.left.views[i], figures.right.views[i], pairs);
    }
    return pairs;
}

// Every pair of points.
std::vector<std::int64_t> endsOf(std::size_t points) {
    std::vector<std::int64_t> ends;
    for (std::size_t i = 0; i < points; ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            ends.insert(ends.end(), {static_cast<std::int64_t>(k), static_cast<std::int64_t>(i)});
        }
    }
    return ends;
}

// Of the lengths those that are neither much shorter nor longer than most.
LengthForecast summaryOf(const std::vector<double>& lengths, const std::vector<double>& expanded,
                         const std::vector<std::int32_t>& statuses) {
    std::vector<double> sorted;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        if (statuses[i] == ZELM_MEASURE_LENGTH_OK && std::isfinite(expanded[i])) {
            sorted.push_back(lengths[i]);
        }
    }
    LengthForecast forecast;
    if (sorted.empty()) {
        return forecast;
    }
    std::sort(sorted.begin(), sorted.end());
    forecast.shortest = sorted[sorted.size() / 4];
    forecast.longest = sorted[sorted.size() - 1 - sorted.size() / 4];
    std::vector<double> kept;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        if (statuses[i] == ZELM_MEASURE_LENGTH_OK && std::isfinite(expanded[i]) && lengths[i] >= forecast.shortest &&
            lengths[i] <= forecast.longest) {
            kept.push_back(expanded[i]);
        }
    }
    const DistanceFigures figures = figuresOf(kept);
    forecast.lengths = kept.size();
    forecast.rms = figures.rms;
    forecast.worst = figures.max;
    return forecast;
}

}  // namespace

std::optional<LengthForecast> lengthForecast(const LoadedRig& rig, const RigFigures& figures) {
    if (!rig.rig.covariance) {
        return std::nullopt;
    }
    const PixelPairs pairs = cornersOf(figures);
    const std::vector<std::int64_t> ends = endsOf(pairs.count());
    std::vector<double> lengths(ends.size() / 2);
    std::vector<double> expanded(lengths.size());
    std::vector<std::int32_t> statuses(lengths.size());
    ZelmMeasureLengths arrays{};
    arrays.size = sizeof(arrays);
    arrays.statuses = statuses.data();
    arrays.lengths = lengths.data();
    arrays.expanded = expanded.data();
    if (lengths.empty() || zelmMeasureLengths(rig.handle.get(), static_cast<std::int64_t>(pairs.count()),
                                              pairs.left.data(), pairs.right.data(), nullptr,
                                              static_cast<std::int64_t>(lengths.size()), ends.data(), &arrays) < 0) {
        return std::nullopt;  // the report then says that it is not known
    }
    const LengthForecast forecast = summaryOf(lengths, expanded, statuses);
    return forecast.lengths > 0 ? std::optional(forecast) : std::nullopt;
}

}  // namespace zelm::tool
