#include "outlineEdges.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "ellipseFoot.h"
#include "fault.h"
#include "sectorSteps.h"

namespace zelm::measure {
namespace {

constexpr int kRounds = 2;              // the ellipse through the edges of the first gives the second's sectors
constexpr double kTukey = 3.5;          // robust constant of the ellipse
constexpr double kMaxDeviations = 4.0;  // of an edge from the ellipse
constexpr double kMinDeviation = 0.02;  // pixels that edges are off the ellipse without any noise
constexpr double kEllipseUnknowns = 5.0;
constexpr std::size_t kMinEdges = 8;
constexpr double kMinShare = 0.4;     // of the outline that must be seen
constexpr double kWholeShare = 0.65;  // from which it tells its ellipse better than it was found

// Edges are seen where a step is, near the ellipse; 0.5 pixel is more than any lens bends an outline.
double shareOf(const std::vector<SectorStep>& steps) {
    constexpr double kMaxOffset = 0.5;
    const auto isSeen = [](const SectorStep& step) { return step.sound && std::fabs(step.offset) <= kMaxOffset; };
    return static_cast<double>(std::count_if(steps.begin(), steps.end(), isSeen)) / static_cast<double>(steps.size());
}

// What disturbs a sector reaches into its neighbours.
bool isUndisturbed(const std::vector<SectorStep>& steps, std::size_t i) {
    const std::size_t count = steps.size();
    return steps[i].sound && steps[(i + 1) % count].sound && steps[(i + count - 1) % count].sound;
}

std::vector<OutlineEdge> edgesOf(const std::vector<SectorStep>& steps, const Ellipse2d& ellipse) {
    std::vector<OutlineEdge> edges;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (isUndisturbed(steps, i)) {
            const EllipsePlace place = placeOn(ellipse, steps[i].angle);
            edges.push_back(
                {{place.pixel.x + steps[i].offset * place.normal.x, place.pixel.y + steps[i].offset * place.normal.y},
                 steps[i].deviation});
        }
    }
    return edges;
}

bool fitRobustly(const std::vector<OutlineEdge>& edges, Ellipse2d& ellipse) {
    std::vector<Point2d> points;
    points.reserve(edges.size());
    for (const OutlineEdge& edge : edges) {
        points.push_back(edge.pixel);
    }
    const std::int32_t status =
        zelmFitEllipse(static_cast<std::int32_t>(points.size()), points.data(), 1, kTukey, &ellipse);
    requireMemory(status);
    return status >= 0 && std::isfinite(ellipse.x) && std::isfinite(ellipse.y) && ellipse.b > 1.0 &&
           std::isfinite(ellipse.a) && std::isfinite(ellipse.angle);
}

// Leaves out the edges that are off the ellipse by more than the others and than their own noise: the median of the few
// that a dot has is often small by chance, and without the ends of their spread edges tell too little of it.
void dropStrays(std::vector<OutlineEdge>& edges, const Ellipse2d& ellipse) {
    std::vector<double> distances;
    distances.reserve(edges.size());
    for (const OutlineEdge& edge : edges) {
        distances.push_back(std::fabs(footOn(ellipse, edge.pixel).distance));
    }
    std::vector<double> sorted = distances;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    const auto count = static_cast<double>(edges.size());
    const double usual = 1.4826 * *middle * std::sqrt(count / (count - kEllipseUnknowns));
    std::vector<OutlineEdge> kept;
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (distances[i] <= kMaxDeviations * std::max({usual, edges[i].deviation, kMinDeviation})) {
            kept.push_back(edges[i]);
        }
    }
    edges = std::move(kept);
}

}  // namespace

std::optional<SeenOutline> seenOutline(const DenseImage& image, Point2d near, DotPolarity polarity) {
    const std::optional<Ellipse2d> rough = dotEllipse(image, near, polarity);
    if (!rough) {
        return std::nullopt;
    }
    SeenOutline outline{*rough, {}, 0.0};
    const auto withoutEdges = [&] {
        outline.edges.clear();
        return outline;
    };
    for (int round = 0; round < kRounds; ++round) {
        const std::vector<SectorStep> steps = sectorSteps(image, outline.ellipse, polarity);
        const auto isEnough = [&](double share) {
            return static_cast<double>(outline.edges.size()) >= share * static_cast<double>(steps.size());
        };
        outline.edges = edgesOf(steps, outline.ellipse);
        outline.share = shareOf(steps);
        if (outline.edges.size() < kMinEdges || !isEnough(kMinShare)) {
            return withoutEdges();
        }
        // An arc says little of the rest of its ellipse.
        if (isEnough(kWholeShare) && !fitRobustly(outline.edges, outline.ellipse)) {
            return withoutEdges();
        }
        dropStrays(outline.edges, outline.ellipse);
    }
    return outline.edges.size() < kMinEdges ? withoutEdges() : outline;
}

}  // namespace zelm::measure
