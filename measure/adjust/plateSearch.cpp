#include "plateSearch.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace zelm::measure {
namespace {

struct Expected {
    DotObservation dot;
    OutlineEllipse outline;
    double reach = 0.0;  // longest half axis, pixels
};

double longestAxis(const std::array<double, 4>& U) {
    const double sum = U[0] * U[0] + U[1] * U[1] + U[2] * U[2] + U[3] * U[3];
    const double area = U[0] * U[3] - U[1] * U[2];
    return std::sqrt(0.5 * (sum + std::sqrt(std::max(sum * sum - 4.0 * area * area, 0.0))));
}

// Whether the lens still moves points of that radius outwards, so that a projection is one.
bool isBeforeFold(const ProjectionCamera& camera, const Vector3& point) {
    const double w = camera.isParallel ? 1.0 : 1.0 / point[2];
    const double r2 = (point[0] * point[0] + point[1] * point[1]) * w * w;
    const auto slope = [&](double s) { return 1.0 + (3.0 * camera.p[kK1] + 5.0 * camera.p[kK2] * s) * s; };
    return slope(r2) > 0.0 && slope(0.5 * r2) > 0.0;
}

bool isVisible(const ProjectionCamera& camera, const CircleInCamera& circle) {
    if (!camera.isParallel) {
        const double radius = std::sqrt(dot(circle.first, circle.first));
        const Vector3 normal = cross(circle.first, circle.second);
        // Before the camera as a whole, and not seen edge-on.
        if (!(circle.centre[2] > 2.0 * radius) || std::fabs(dot(unit(normal), unit(circle.centre))) < 0.05) {
            return false;
        }
    }
    return isBeforeFold(camera, circle.centre);
}

bool isInside(const DenseImage& image, const Expected& dot) {
    const Point2d c = dot.outline.centre;
    return c.x >= 0.0 && c.y >= 0.0 && c.x <= image.width() - 1 && c.y <= image.height() - 1;
}

std::map<GridIndex, Expected> expectedDots(const PlateSearch& search, const MotionParameters& pose) {
    const Pattern& plate = *search.plate;
    const int columns = static_cast<int>(std::floor(0.5 * plate.d0 / plate.d4 + 0.25));
    const int rows = static_cast<int>(std::floor(0.5 * plate.d1 / plate.d5 + 0.25));
    const AdjustState& state = *search.state;
    std::map<GridIndex, Expected> all;
    for (int y = -rows; y <= rows; ++y) {
        for (int x = -columns; x <= columns; ++x) {
            Expected e;
            e.dot = plateDot(plate, {x, y}, *search.places);
            const ImageParameters image{state.cameras[search.side],
                                        search.side == state.base ? nullptr : state.relative.data(),
                                        pose.data(),
                                        state.factors[e.dot.kind],
                                        state.bow.b.data(),
                                        state.bow.extent};
            const CircleInCamera circle = circleOf(image, e.dot.place, e.dot.radius);
            if (isVisible(image.camera, circle)) {
                e.outline = dotOutline(image.camera, circle);
                e.reach = longestAxis(e.outline.axes);
                if (std::isfinite(e.outline.centre.x + e.outline.centre.y + e.reach)) {
                    all.emplace(e.dot.index, e);
                }
            }
        }
    }
    return all;
}

// From the centre of a dot to the nearest outline of another one.
double roomOf(const std::map<GridIndex, Expected>& all, const Expected& dot) {
    double room = 1e9;
    for (int y = -1; y <= 1; ++y) {
        for (int x = -1; x <= 1; ++x) {
            const auto other = all.find({dot.dot.index.x + x, dot.dot.index.y + y});
            if ((x != 0 || y != 0) && other != all.end()) {
                const Point2d a = dot.outline.centre;
                const Point2d b = other->second.outline.centre;
                room = std::min(room, std::hypot(a.x - b.x, a.y - b.y) - other->second.reach);
            }
        }
    }
    return room < 1e9 ? room : 0.0;
}

}  // namespace

std::vector<PlateSearch::Found> PlateSearch::find(const DenseImage& image, const MotionParameters& pose) const {
    const std::map<GridIndex, Expected> all = expectedDots(*this, pose);
    const DotPolarity polarity = plate->polarity == 1 ? DotPolarity::bright : DotPolarity::dark;
    std::vector<Found> found;
    for (const auto& [index, expected] : all) {
        if (!isInside(image, expected)) {
            continue;
        }
        const DotFitResult fit =
            fitDot(image, {expected.outline.centre, expected.outline.axes}, {polarity, roomOf(all, expected)});
        found.push_back({expected.dot, fit});
        found.back().dot.pixel = fit.centre;
        found.back().dot.covariance = fit.covariance;
    }
    return found;
}

}  // namespace zelm::measure
