// Fits that begin with what the majority of the points tells.
#include <algorithm>
#include <cmath>
#include <random>

#include "featureFit.h"

namespace zelm::measure {
namespace {

constexpr int kTries = 300;  // of few points: one in 10^8 draws has none without a wrong point, half of all being wrong
constexpr int kMaxRounds = 30;
constexpr std::size_t kCylinderPoints = 7;  // of a try: five leave several cylinders
// Square roots of chi-square's medians and of its quantiles as rare as 3.5 standard deviations of one coordinate, by
// the number of coordinates that a distance is made of.
constexpr double kMedians[] = {0.6745, 1.1774, 1.5382};
constexpr double kCutoffs[] = {3.5, 3.9175, 4.2110};
constexpr double kSmallest = 1e-9;  // of the extent: less is rounding

// Distances in standard deviations where these are known.
std::vector<double> distancesFrom(const Shape& shape, const FeatureTask& task, const FeaturePoints& points,
                                  const PointIndices& indices) {
    std::vector<double> distances;
    distances.reserve(indices.size());
    for (const std::size_t i : indices) {
        const ShapeDistance d = distanceOf(shape, points.points[i]);
        const double squares = d.rows.dot(weightOf(d, points, i, task.weighted) * d.rows);
        distances.push_back(std::sqrt(std::max(squares, 0.0)));
    }
    return distances;
}

double medianOf(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::size_t triedPoints(FeatureKind kind, std::size_t count) {
    Shape shape;
    shape.kind = kind;
    return std::min(count, kind == FeatureKind::cylinder ? kCylinderPoints : shape.minPoints());
}

// The shape of few points from which the median distance of all is least (Rousseeuw, 1984). The draws are the same
// every time.
std::optional<Shape> likeliest(const FeatureTask& task, const FeaturePoints& points, const PointIndices& indices) {
    std::mt19937 random(1);
    const std::size_t size = triedPoints(task.kind, indices.size());
    std::optional<Shape> best;
    double least = HUGE_VAL;
    PointIndices drawn = indices;
    for (int i = 0; i < kTries; ++i) {
        for (std::size_t k = 0; k < size; ++k) {
            std::swap(drawn[k], drawn[k + random() % (drawn.size() - k)]);
        }
        const auto shape = startOf(task.kind, points, std::span(drawn.data(), size));
        if (!shape) {
            continue;
        }
        if (const double middle = medianOf(distancesFrom(*shape, task, points, indices)); middle < least) {
            least = middle;
            best = shape;
        }
    }
    return best;
}

double extentOf(const FeaturePoints& points, const PointIndices& indices) {
    double extent = 0.0;
    for (const std::size_t i : indices) {
        extent = std::max(extent, (points.points[i] - points.points[indices.front()]).norm());
    }
    return extent;
}

}  // namespace

FeatureFit fitRobust(const FeatureTask& task, const FeaturePoints& points, const PointIndices& indices) {
    FeatureFit fit;
    fit.shape.kind = task.kind;
    fit.used = indices;
    if (indices.size() <= fit.shape.minPoints() || task.kind == FeatureKind::point) {
        return fitAll(task, points, indices);  // none can be left out
    }
    const auto start = likeliest(task, points, indices);
    if (!start) {
        fit.status = FeatureStatus::undetermined;
        return fit;
    }
    fit.shape = *start;
    const bool isKnown = task.weighted && points.isKnown();
    const auto rows = static_cast<std::size_t>(fit.shape.rows() - 1);
    const double spare = static_cast<double>(indices.size()) - static_cast<double>(fit.shape.minPoints());
    const double smallest = isKnown ? 1.0 : kSmallest * extentOf(points, indices);
    for (int round = 0; round < kMaxRounds; ++round) {
        const std::vector<double> distances = distancesFrom(fit.shape, task, points, indices);
        // 5 / n: what few points lack (Rousseeuw and Leroy, 1987). Noise that is stated leaves no point out.
        const double scale = std::max((1.0 + 5.0 / spare) * medianOf(distances) / kMedians[rows], smallest);
        PointIndices near;
        near.reserve(indices.size());
        for (std::size_t k = 0; k < indices.size(); ++k) {
            if (distances[k] <= kCutoffs[rows] * scale) {
                near.push_back(indices[k]);
            }
        }
        if (2 * near.size() <= indices.size() || near.size() < fit.shape.minPoints()) {
            fit.status = FeatureStatus::noMajority;
            return fit;
        }
        const bool isSame = round > 0 && near == fit.used;
        fit.used = std::move(near);
        if (isSame) {
            break;
        }
        fit.status = improve(fit.shape, points, fit.used, task.weighted);
        if (fit.status != FeatureStatus::ok) {
            return fit;
        }
    }
    fit.leftOut = indices.size() - fit.used.size();
    return fit;
}

}  // namespace zelm::measure
