#include "dotPixels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zelm::measure {
namespace {

constexpr double kMinShortAxis = 1.5;    // pixels
constexpr double kMaxLongAxis = 2000.0;  // pixels
constexpr double kMaxAxisRatio = 8.0;
constexpr int kStepsPerSide = 4;          // of the sparse lines, along which a pixel is the shortest step
constexpr double kMaxInsideShare = 0.85;  // of the short axis that the sparse lines reach inwards
constexpr int kMinDifferences = 16;
constexpr double kMaxFirstTurn = 0.02;  // radians; the foot is then right to its square

struct Direction {
    double x, y;
};

// Middles of the sectors, by the pseudo-angle of sectorOf().
std::array<Direction, kDotSectors> sectorDirections() {
    std::array<Direction, kDotSectors> directions{};
    for (std::size_t k = 0; k < kDotSectors; ++k) {
        const double a = 4.0 * (static_cast<double>(k) + 0.5) / static_cast<double>(kDotSectors);
        const double y = a < 1.0 ? a : (a < 3.0 ? 2.0 - a : a - 4.0);
        const double x = a < 2.0 ? 1.0 - a : a - 3.0;
        const double norm = 1.0 / std::hypot(x, y);
        directions[k] = {x * norm, y * norm};
    }
    return directions;
}

const std::array<Direction, kDotSectors> kDirections = sectorDirections();

// By the pseudo-angle y / (|x| + |y|), which needs no function and grows as the angle does.
std::uint32_t sectorOf(double x, double y) {
    const double t = y / (std::fabs(x) + std::fabs(y) + 1e-300);
    const double a = x >= 0.0 ? (y >= 0.0 ? t : 4.0 + t) : 2.0 - t;
    return std::min(static_cast<std::uint32_t>(a * (static_cast<double>(kDotSectors) / 4.0)),
                    static_cast<std::uint32_t>(kDotSectors - 1));
}

bool isIn(const DenseImage& image, int x, int y) {
    return x >= 0 && y >= 0 && x < image.width() && y < image.height();
}

struct Box {
    int left, top, right, bottom;
};

// Of the outline and a margin, within the image.
Box boxAround(const DotPlace& place, double dx, double dy, double scale, double margin) {
    const auto& U = place.outline.axes;
    const double hx = scale * std::hypot(U[0], U[1]) + margin;
    const double hy = scale * std::hypot(U[2], U[3]) + margin;
    const double x = place.centre.x + dx;
    const double y = place.centre.y + dy;
    const auto clamp = [](double value, int size) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(size - 1)));
    };
    return {clamp(std::ceil(x - hx), place.image.width()), clamp(std::ceil(y - hy), place.image.height()),
            clamp(std::floor(x + hx), place.image.width()), clamp(std::floor(y + hy), place.image.height())};
}

}  // namespace

std::optional<DotOutline> outlineOf(const std::array<double, 4>& axes) {
    DotOutline outline;
    outline.axes = axes;
    const double det = axes[0] * axes[3] - axes[1] * axes[2];
    const double squares = axes[0] * axes[0] + axes[1] * axes[1] + axes[2] * axes[2] + axes[3] * axes[3];
    if (!std::isfinite(det) || !std::isfinite(squares)) {
        return std::nullopt;
    }
    // The singular values of the axes.
    const double area = std::fabs(det);
    outline.longAxis = 0.5 * (std::sqrt(squares + 2.0 * area) + std::sqrt(std::max(squares - 2.0 * area, 0.0)));
    if (!(outline.longAxis > 0.0 && outline.longAxis <= kMaxLongAxis)) {
        return std::nullopt;
    }
    outline.shortAxis = area / outline.longAxis;
    if (!(outline.shortAxis >= kMinShortAxis && outline.longAxis <= kMaxAxisRatio * outline.shortAxis)) {
        return std::nullopt;
    }
    outline.inverse = {axes[3] / det, -axes[1] / det, -axes[2] / det, axes[0] / det};
    // Direction of the long axis: of the larger eigenvalue of U U'.
    const double xx = axes[0] * axes[0] + axes[1] * axes[1];
    const double xy = axes[0] * axes[2] + axes[1] * axes[3];
    const double yy = axes[2] * axes[2] + axes[3] * axes[3];
    const double angle = 0.5 * std::atan2(2.0 * xy, xx - yy);
    outline.longX = std::cos(angle);
    outline.longY = std::sin(angle);
    outline.maxCurvature = outline.longAxis / (outline.shortAxis * outline.shortAxis);
    outline.radius = std::sqrt(area);
    outline.perRadius = 1.0 / outline.radius;
    outline.turn = det < 0.0 ? -1.0 : 1.0;
    return outline;
}

SectorMask sectorsInImage(const DotPlace& place) {
    const auto& U = place.outline.axes;
    SectorMask mask = 0;
    for (std::size_t k = 0; k < kDotSectors; ++k) {
        const Direction e = kDirections[k];
        const double x = place.centre.x + U[0] * e.x + U[1] * e.y;
        const double y = place.centre.y + U[2] * e.x + U[3] * e.y;
        if (x >= 0.0 && y >= 0.0 && x <= place.image.width() - 1 && y <= place.image.height() - 1) {
            mask |= SectorMask{1} << k;
        }
    }
    return mask;
}

double localNoise(const DotPlace& place) {
    constexpr int kMaxDifference = 4 * 255 / 2;
    constexpr double kPerMedian = 1.0 / (0.6745 * 2.4495);  // of a normal variable that is a second difference
    constexpr double kRounding = 1.0 / 12.0;
    std::array<int, kMaxDifference + 1> counts{};
    const Box box = boxAround(place, 0.0, 0.0, 1.0, std::min(place.outsideLimit, 0.5 * place.outline.radius));
    int total = 0;
    for (int y = box.top; y <= box.bottom; ++y) {
        const std::uint8_t* row = place.image.row(y);
        for (int x = box.left + 1; x < box.right; ++x) {
            ++counts[static_cast<std::size_t>(std::abs(row[x - 1] - 2 * row[x] + row[x + 1]))];
            ++total;
        }
    }
    if (total < kMinDifferences) {
        return std::sqrt(kRounding);
    }
    // The median, as if each count were spread evenly over a level; differences of 0 over half of one.
    double below = 0.0;
    const double half = 0.5 * total;
    for (std::size_t k = 0; k < counts.size(); ++k) {
        const double here = counts[k];
        if (below + here >= half) {
            const double width = k == 0 ? 0.5 : 1.0;
            const double start = k == 0 ? 0.0 : static_cast<double>(k) - 0.5;
            const double median = start + width * (half - below) / here;
            return std::sqrt(std::max(median * median * kPerMedian * kPerMedian, kRounding));
        }
        below += here;
    }
    return std::sqrt(kRounding);
}

void gatherSparse(const DotPlace& place, double reach, double variance, DotPixels& to) {
    to.samples.clear();
    to.cores = {};
    to.clipped = {};
    const auto& U = place.outline.axes;
    const double step = std::max(1.0, reach / kStepsPerSide);
    const int inwards = static_cast<int>(std::min(reach, kMaxInsideShare * place.outline.shortAxis) / step);
    const int outwards = static_cast<int>(std::min(reach, place.outsideLimit) / step);
    for (std::size_t k = 0; k < kDotSectors; ++k) {
        const Direction e = kDirections[k];
        const double qx = U[0] * e.x + U[1] * e.y;
        const double qy = U[2] * e.x + U[3] * e.y;
        double nx = U[3] * e.x - U[2] * e.y;
        double ny = U[0] * e.y - U[1] * e.x;
        const double norm = place.outline.turn / std::hypot(nx, ny);
        nx *= norm;
        ny *= norm;
        for (int j = -inwards; j <= outwards; ++j) {
            const int x = static_cast<int>(std::lround(place.centre.x + qx + j * step * nx));
            const int y = static_cast<int>(std::lround(place.centre.y + qy + j * step * ny));
            if (isIn(place.image, x, y)) {
                DotSample sample{};
                sample.x = x - place.centre.x;
                sample.y = y - place.centre.y;
                sample.gray = place.image.row(y)[x];
                sample.weight = 1.0 / variance;
                sample.footX = e.x;
                sample.footY = e.y;
                sample.sector = static_cast<std::uint32_t>(k);
                to.samples.push_back(sample);
            }
        }
    }
}

namespace {

// Puts the pixels of a band where they belong.
class BandGatherer {
public:
    BandGatherer(const DotPlace& dotPlace, const DotVector& unknowns, const DotBand& dotBand, double variance,
                 DotPixels& pixels)
        : place(dotPlace),
          at(unknowns),
          band(dotBand),
          scale(1.0 + unknowns[kGrowth] / dotPlace.outline.radius),
          weight(1.0 / variance),
          to(pixels),
          model(dotPlace.outline, pixels) {}

    DotOutliers gather() {
        to.samples.clear();
        to.cores = {};
        to.clipped = {};
        const Box box = boxAround(place, at[kShiftX], at[kShiftY], scale, band.outside);
        const auto& I = place.outline.inverse;
        const double centreX = place.centre.x + at[kShiftX];
        const double centreY = place.centre.y + at[kShiftY];
        const double farthest = 1.0 + band.outside / (scale * place.outline.shortAxis);
        const double deepest = std::max(1.0 - band.inside / (scale * place.outline.shortAxis), 0.0);
        for (int y = box.top; y <= box.bottom; ++y) {
            const std::uint8_t* row = place.image.row(y);
            const double vy = y - centreY;
            for (int x = box.left; x <= box.right; ++x) {
                const double vx = x - centreX;
                const double ex = (I[0] * vx + I[1] * vy) / scale;
                const double ey = (I[2] * vx + I[3] * vy) / scale;
                const double rho2 = ex * ex + ey * ey;
                if (rho2 <= farthest * farthest && rho2 >= deepest * deepest) {
                    put(x, y, row[x], ex, ey, rho2);
                }
            }
        }
        return outliers;
    }

private:
    void put(int x, int y, double gray, double ex, double ey, double rho2) {
        const double rho = std::sqrt(rho2);
        // At least so far from the outline.
        const double least = (rho - 1.0) * place.outline.shortAxis * scale;
        const double px = x - place.centre.x;
        const double py = y - place.centre.y;
        const std::uint32_t sector = sectorOf(ex, ey);
        if (std::fabs(least) <= band.edge) {
            const double norm = rho > 1e-6 ? 1.0 / rho : 0.0;
            DotSample sample{};
            sample.x = px;
            sample.y = py;
            sample.gray = gray;
            sample.weight = weight;
            sample.footX = norm > 0.0 ? ex * norm : 1.0;
            sample.footY = ey * norm;
            if (model.moveFoot(sample, at) > kMaxFirstTurn) {
                model.moveFoot(sample, at);
            }
            const double distance = model.distance(sample, at);
            if (std::fabs(distance) <= band.edge) {
                sample.sector = sectorOf(sample.footX, sample.footY);
                to.samples.push_back(sample);
                return;
            }
            if (distance > band.outside) {
                return;
            }
        }
        putCore(px * place.outline.perRadius, py * place.outline.perRadius, gray, sector, least > 0.0 ? 1 : 0);
    }

    void putCore(double u, double v, double gray, std::uint32_t sector, std::size_t side) {
        const std::size_t first = side == 0 ? kInside : kOutside;
        const double level = at[first] + at[first + 1] * u + at[first + 2] * v;
        if (gray - level > band.tolerance) {
            ++outliers.brighter[sector];
            return;
        }
        if (level - gray > band.tolerance) {
            ++outliers.darker[sector];
            return;
        }
        ((gray >= 255.0 || gray <= 0.0) ? to.clipped : to.cores)[side][sector].add(u, v, gray);
    }

    const DotPlace& place;
    const DotVector& at;
    const DotBand& band;
    double scale;
    double weight;
    DotPixels& to;
    DotModel model;
    DotOutliers outliers;
};

}  // namespace

DotOutliers gatherBand(const DotPlace& place, const DotVector& at, const DotBand& band, double variance,
                       DotPixels& to) {
    return BandGatherer(place, at, band, variance, to).gather();
}

}  // namespace zelm::measure
