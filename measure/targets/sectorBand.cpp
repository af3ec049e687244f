#include "sectorBand.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "ellipseFoot.h"

namespace zelm::measure {
namespace {

constexpr double kSectorLength = 3.0;  // pixels of the outline
constexpr double kMinSectors = 12.0;
constexpr double kMaxSectors = 64.0;
constexpr double kReach = 3.5;       // pixels to either side of the outline
constexpr double kReachShare = 0.7;  // at most of the semi-minor axis

std::size_t sectorCount(const Ellipse2d& ellipse) {
    return static_cast<std::size_t>(
        std::clamp(std::round(perimeterOf(ellipse) / kSectorLength), kMinSectors, kMaxSectors));
}

// First and last row or column of the image within `reach` of a centre; none where the last comes before the first.
struct Span {
    int first;
    int last;
};
Span within(double centre, double reach, int size) {
    return {static_cast<int>(std::clamp(std::floor(centre - reach), 0.0, static_cast<double>(size))),
            static_cast<int>(std::clamp(std::ceil(centre + reach), -1.0, size - 1.0))};
}

}  // namespace

std::vector<std::vector<BandPixel>> sectorBands(const DenseImage& image, const Ellipse2d& ellipse) {
    std::vector<std::vector<BandPixel>> bands(sectorCount(ellipse));
    const double perSector = static_cast<double>(bands.size()) / (2.0 * std::numbers::pi);
    const double reach = std::min(kReach, kReachShare * ellipse.b);
    const Span columns = within(ellipse.x, ellipse.a + reach, image.width());
    const Span rows = within(ellipse.y, ellipse.a + reach, image.height());
    for (int y = rows.first; y <= rows.last; ++y) {
        for (int x = columns.first; x <= columns.last; ++x) {
            const double radius = std::hypot(x - ellipse.x, y - ellipse.y);
            if (radius < ellipse.b - reach || radius > ellipse.a + reach) {
                continue;
            }
            const EllipseFoot foot = footOn(ellipse, {static_cast<double>(x), static_cast<double>(y)});
            if (std::fabs(foot.distance) <= reach) {
                const auto sector = std::min(static_cast<std::size_t>(foot.angle * perSector), bands.size() - 1);
                const Point2d normal = placeOn(ellipse, foot.angle).normal;
                bands[sector].push_back(
                    {foot.distance, static_cast<double>(image.row(y)[x]), std::fabs(normal.x), std::fabs(normal.y)});
            }
        }
    }
    return bands;
}

}  // namespace zelm::measure
