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

// Likewise, of four.
LaneInts sectorsOf(Lanes x, Lanes y) {
    const Lanes t = y / (sizeOf(x) + sizeOf(y) + 1e-30F);
    const Lanes a = x >= 0.0F ? (y >= 0.0F ? t : 4.0F + t) : 2.0F - t;
    const LaneInts k = __builtin_convertvector(a * (static_cast<float>(kDotSectors) / 4.0F), LaneInts);
    constexpr std::int32_t kLast = static_cast<std::int32_t>(kDotSectors) - 1;
    return k > kLast ? LaneInts{kLast, kLast, kLast, kLast} : k;
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

namespace {

void setWeight(double variance, DotSamples& samples) {
    for (DotQuad& quad : samples.quads) {
        quad.weight = lanesOf(static_cast<float>(1.0 / variance));
    }
}

}  // namespace

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
                to.samples.add(x - place.centre.x, y - place.centre.y, place.image.row(y)[x]);
                to.samples.setFoot(e.x, e.y, k);
            }
        }
    }
    setWeight(variance, to.samples);
}

namespace {

// Columns from first to before end.
struct Columns {
    int first, end;
};

// Where a row of pixels meets ellipses about a centre: x^2 xx + 2 x xy + yy = rho2.
class RowOfEllipses {
public:
    RowOfEllipses(double formXx, double formXy, double formYy, double centreX, const Box& limits)
        : xx(formXx), xy(formXy), yy(formYy), centre(centreX), box(limits) {}

    // The columns within the ellipse; none, about its middle, where the row passes by.
    Columns within(double rho2) const {
        const double root = xy * xy - xx * (yy - rho2);
        const double half = root > 0.0 ? std::sqrt(root) : 0.0;
        const auto clamp = [&](double x) {
            return static_cast<int>(std::clamp(x, static_cast<double>(box.left), static_cast<double>(box.right + 1)));
        };
        const int first = clamp(std::ceil(centre + (-xy - half) / xx));
        return {first, root > 0.0 ? std::max(clamp(std::floor(centre + (-xy + half) / xx) + 1.0), first) : first};
    }

private:
    double xx, xy, yy, centre;
    const Box& box;
};

// Puts the pixels of a band where they belong.
class BandGatherer {
public:
    BandGatherer(const DotPlace& dotPlace, const DotBand& dotBand, DotModel& dotModel, DotPixels& pixels)
        : place(dotPlace),
          at(dotModel.unknowns),
          band(dotBand),
          scale(1.0 + dotModel.unknowns[kGrowth] / dotPlace.outline.radius),
          to(pixels),
          model(dotModel) {}

    DotOutliers gather(double variance) {
        to.samples.clear();
        to.cores = {};
        to.clipped = {};
        putRows();
        model.findFeet(at);
        sortByDistance();
        setWeight(variance, to.samples);
        return outliers;
    }

private:
    static double square(double x) { return x * x; }

    // Row by row, from the outermost ellipse inwards and out again. Pixels at rho times the outline's size are at least
    // (rho - 1) short axes from it; what the blur may reach becomes a sample for now.
    void putRows() {
        const Box box = boxAround(place, at[kShiftX], at[kShiftY], scale, band.outside);
        const double shortAxis = scale * place.outline.shortAxis;
        const double farthest = square(1.0 + band.outside / shortAxis);
        const double outer = square(1.0 + std::min(band.edge, band.outside) / shortAxis);
        const double inner = square(std::max(1.0 - band.edge / shortAxis, 0.0));
        const double deepest = square(std::max(1.0 - band.inside / shortAxis, 0.0));
        const auto& I = place.outline.inverse;
        const double perScale2 = 1.0 / (scale * scale);
        const double xx = (I[0] * I[0] + I[2] * I[2]) * perScale2;
        const double xy = (I[0] * I[1] + I[2] * I[3]) * perScale2;
        const double yy = (I[1] * I[1] + I[3] * I[3]) * perScale2;
        for (int y = box.top; y <= box.bottom; ++y) {
            const double vy = y - place.centre.y - at[kShiftY];
            const RowOfEllipses ellipses(xx, xy * vy, yy * vy * vy, place.centre.x + at[kShiftX], box);
            const Columns ground = ellipses.within(farthest);
            const Columns edge = ellipses.within(outer);
            const Columns inside = ellipses.within(inner);
            const Columns hole = ellipses.within(deepest);
            putCores(y, ground.first, edge.first, 1);
            putSamples(y, edge.first, inside.first);
            putCores(y, inside.first, hole.first, 0);
            putCores(y, hole.end, inside.end, 0);
            putSamples(y, inside.end, edge.end);
            putCores(y, edge.end, ground.end, 1);
        }
    }

    void putSamples(int y, int first, int end) {
        const std::uint8_t* row = place.image.row(y);
        for (int x = first; x < end; ++x) {
            to.samples.add(x - place.centre.x, y - place.centre.y, row[x]);
        }
    }

    void putCores(int y, int first, int end, std::size_t side) {
        const std::uint8_t* row = place.image.row(y);
        const double py = y - place.centre.y;
        for (int x = first; x < end; ++x) {
            putCore(x - place.centre.x, py, row[x], side);
        }
    }

    // Samples that are too far from the outline after all are left out, or summed.
    void sortByDistance() {
        std::size_t kept = 0;
        const std::size_t count = to.samples.count;
        for (std::size_t i = 0; i < count; i += kLanes) {
            DotQuad& quad = to.samples.quads[i / kLanes];
            const Lanes distances = model.distances(quad, at);
            const LaneInts sectors = sectorsOf(quad.footX, quad.footY);
            for (std::size_t k = 0; k < kLanes && i + k < count; ++k) {
                const auto distance = static_cast<double>(distances[k]);
                if (std::fabs(distance) <= band.edge) {
                    quad.sector[k] = static_cast<std::uint8_t>(sectors[k]);
                    if (kept != i + k) {
                        to.samples.moveLane(i + k, kept);
                    }
                    ++kept;
                } else if (distance <= band.outside) {
                    putCore(static_cast<double>(quad.x[k]), static_cast<double>(quad.y[k]),
                            static_cast<double>(quad.gray[k]), distance > 0.0 ? 1 : 0);
                }
            }
        }
        to.samples.shrink(kept);
    }

    void putCore(double px, double py, double gray, std::size_t side) {
        const auto& I = place.outline.inverse;
        const double vx = px - at[kShiftX];
        const double vy = py - at[kShiftY];
        const std::uint32_t sector = sectorOf(I[0] * vx + I[1] * vy, I[2] * vx + I[3] * vy);
        const double u = px * place.outline.perRadius;
        const double v = py * place.outline.perRadius;
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
    DotPixels& to;
    DotModel& model;
    DotOutliers outliers;
};

}  // namespace

DotOutliers gatherBand(const DotPlace& place, const DotBand& band, double variance, DotModel& model, DotPixels& to) {
    return BandGatherer(place, band, model, to).gather(variance);
}

}  // namespace zelm::measure
