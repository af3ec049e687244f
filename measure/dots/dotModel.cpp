#include "dotModel.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "dotProfile.h"

namespace zelm::measure {
namespace {

constexpr double kWhite = 255.0;
constexpr double kMinTotalBlur = 0.3;      // pixels; the pixel's square alone has 0.289
constexpr double kTie = 0.03;              // of the contrast a radius: how far shading of dot and ground may differ
constexpr double kSlant = 0.5;             // of the contrast a radius: how much of it there may be
constexpr double kMinGrowth = -0.5;        // of the radius
constexpr double kMaxGrowth = 0.7;         //
constexpr double kCentreTolerance = 3e-4;  // pixels a step; steps shrink by a factor of ten or more
constexpr double kShapeTolerance = 3e-3;   // pixels a step, of size and blur
constexpr double kMinFootDivisor = 0.2;    // of the squared derivative
constexpr double kFirstDamping = 1e-4;
constexpr double kMaxDamping = 1e8;

// One Newton step towards the foot of v on the ellipse axes * e * scale.
struct Foot {
    double qx, qy;  // the point of the outline
    double tx, ty;  // its derivative by the parameter
};

Foot footAt(const std::array<double, 4>& U, double scale, double ex, double ey) {
    return {scale * (U[0] * ex + U[1] * ey), scale * (U[2] * ex + U[3] * ey), scale * (U[1] * ex - U[0] * ey),
            scale * (U[3] * ex - U[2] * ey)};
}

// Products of rows, kept as a full matrix in an even number of columns so that they are summed in vectors.
struct RowSums {
    static constexpr std::size_t kColumns = 12;
    double sums[kDotUnknowns][kColumns] = {};

    // The last columns of the row: the residual, and 0.
    void add(const double (&row)[kColumns], double weight) {
        for (std::size_t i = 0; i < kDotUnknowns; ++i) {
            const double a = weight * row[i];
            for (std::size_t j = 0; j < kColumns; ++j) {
                sums[i][j] += a * row[j];
            }
        }
    }
    void giveTo(DotEquations& to) const {
        for (std::size_t i = 0; i < kDotUnknowns; ++i) {
            for (std::size_t j = 0; j < kDotUnknowns; ++j) {
                to.normal[i][j] += sums[i][j];
            }
            to.right[i] += sums[i][kDotUnknowns];
        }
    }
};

void addCore(const CoreSums& s, std::size_t first, double weight, const DotVector& at, DotEquations& to) {
    const double b0 = at[first];
    const double b1 = at[first + 1];
    const double b2 = at[first + 2];
    const double m[3][3] = {{s.n, s.x, s.y}, {s.x, s.xx, s.xy}, {s.y, s.xy, s.yy}};
    const double g[3] = {s.g, s.gx, s.gy};
    const double b[3] = {b0, b1, b2};
    double cost = s.gg;
    for (std::size_t i = 0; i < 3; ++i) {
        const double modelled = m[i][0] * b0 + m[i][1] * b1 + m[i][2] * b2;
        to.right[first + i] += weight * (g[i] - modelled);
        cost += b[i] * (modelled - 2.0 * g[i]);
        for (std::size_t j = 0; j < 3; ++j) {
            to.normal[first + i][first + j] += weight * m[i][j];
        }
    }
    to.cost += weight * std::max(cost, 0.0);
}

}  // namespace

void CoreSums::add(double px, double py, double gray) {
    n += 1.0;
    x += px;
    y += py;
    xx += px * px;
    xy += px * py;
    yy += py * py;
    g += gray;
    gx += gray * px;
    gy += gray * py;
    gg += gray * gray;
}

void CoreSums::add(const CoreSums& o) {
    n += o.n;
    x += o.x;
    y += o.y;
    xx += o.xx;
    xy += o.xy;
    yy += o.yy;
    g += o.g;
    gx += o.gx;
    gy += o.gy;
    gg += o.gg;
}

CoreSums DotModel::coreOf(SectorMask sectors, std::size_t side, const DotVector& at) const {
    const double level = at[side == 0 ? kInside : kOutside];
    const bool clippedCount = level > 0.0 && level < kWhite;
    CoreSums sum;
    for (SectorMask rest = sectors; rest != 0; rest &= rest - 1) {
        const auto k = static_cast<std::size_t>(std::countr_zero(rest));
        sum.add(pixels.cores[side][k]);
        if (clippedCount) {
            sum.add(pixels.clipped[side][k]);
        }
    }
    return sum;
}

SampleView DotModel::look(DotSample& s, const DotVector& at) const {
    const double scale = 1.0 + at[kGrowth] / outline.radius;
    const double vx = s.x - at[kShiftX];
    const double vy = s.y - at[kShiftY];
    Foot foot = footAt(outline.axes, scale, s.footX, s.footY);
    const double wx = vx - foot.qx;
    const double wy = vy - foot.qy;
    const double t2 = foot.tx * foot.tx + foot.ty * foot.ty;
    // Newton's step; within the outline its divisor vanishes at the centre of curvature.
    const double turn =
        (wx * foot.tx + wy * foot.ty) / std::max(t2 + wx * foot.qx + wy * foot.qy, kMinFootDivisor * t2);
    const double ex = s.footX - turn * s.footY;
    const double ey = s.footY + turn * s.footX;
    const double norm = 1.0 / std::sqrt(ex * ex + ey * ey);
    s.footX = ex * norm;
    s.footY = ey * norm;
    foot = footAt(outline.axes, scale, s.footX, s.footY);

    const double inverse = 1.0 / std::sqrt(foot.tx * foot.tx + foot.ty * foot.ty);
    const double outwards = outline.turn * inverse;
    SampleView view;
    view.nx = outwards * foot.ty;
    view.ny = -outwards * foot.tx;
    view.distance = (vx - foot.qx) * view.nx + (vy - foot.qy) * view.ny;
    const double size = scale * outline.radius;
    view.support = (foot.qx * view.nx + foot.qy * view.ny) / size;
    const double nx2 = view.nx * view.nx;
    const double ny2 = view.ny * view.ny;
    const EdgeCoverage edge =
        edgeCoverage(view.distance, size * size * inverse * inverse * inverse, at[kBlur], nx2 * nx2 + ny2 * ny2);
    view.coverage = edge.value;
    view.byDistance = edge.byDistance;
    view.byBlur = edge.byBlur;
    const double u = s.x * outline.perRadius;
    const double v = s.y * outline.perRadius;
    view.inside = at[kInside] + at[kInsideX] * u + at[kInsideY] * v;
    view.outside = at[kOutside] + at[kOutsideX] * u + at[kOutsideY] * v;
    return view;
}

void DotModel::linearise(const DotVector& at, SectorMask sectors, DotEquations& to) const {
    to = DotEquations{};
    RowSums sums;
    for (DotSample& s : pixels.samples) {
        if ((sectors >> s.sector & 1U) == 0) {
            continue;
        }
        const SampleView view = look(s, at);
        const double residual = s.gray - view.gray();
        if (isBeyondClip(s.gray, view.gray())) {
            continue;
        }
        const double slope = view.slope();
        const double u = s.x * outline.perRadius;
        const double v = s.y * outline.perRadius;
        const double m = view.coverage;
        const double row[RowSums::kColumns] = {slope * view.nx,
                                               slope * view.ny,
                                               slope * view.support,
                                               (view.inside - view.outside) * view.byBlur,
                                               m,
                                               m * u,
                                               m * v,
                                               1.0 - m,
                                               (1.0 - m) * u,
                                               (1.0 - m) * v,
                                               residual,
                                               0.0};
        sums.add(row, s.weight);
        to.cost += s.weight * residual * residual;
    }
    sums.giveTo(to);
    addCore(coreOf(sectors, 0, at), kInside, 1.0 / variance.inside, at, to);
    addCore(coreOf(sectors, 1, at), kOutside, 1.0 / variance.outside, at, to);
    addPriors(at, to);
}

// Light that falls off falls off by the same share on dot and ground: levels that small dots or much blur leave open
// obey that nearly. Where pixels tell, they outweigh it.
void DotModel::addPriors(const DotVector& at, DotEquations& to) const {
    const double larger = std::max({std::fabs(at[kInside]), std::fabs(at[kOutside]), 1.0});
    const double tie = 1.0 / (kTie * limits.contrast);
    const double slant = 1.0 / (kSlant * limits.contrast);
    const auto add = [&](std::size_t i, std::size_t j, double a, double b) {
        const double residual = -(a * at[i] + b * at[j]);
        to.cost += residual * residual;
        to.right[i] += a * residual;
        to.right[j] += b * residual;
        to.normal[i][i] += a * a;
        to.normal[i][j] += a * b;
        to.normal[j][i] += a * b;
        to.normal[j][j] += b * b;
    };
    for (const std::size_t k : {std::size_t{0}, std::size_t{1}}) {
        add(kInsideX + k, kOutsideX + k, tie * at[kOutside] / larger, -tie * at[kInside] / larger);
        add(kInsideX + k, kOutsideX + k, slant, 0.0);
        add(kInsideX + k, kOutsideX + k, 0.0, slant);
    }
}

bool DotModel::isAllowed(const DotVector& at) const {
    const bool isFinite = std::all_of(at.begin(), at.end(), [](double x) { return std::isfinite(x); });
    return isFinite && std::hypot(at[kShiftX], at[kShiftY]) <= limits.shift &&
           at[kGrowth] >= kMinGrowth * outline.radius && at[kGrowth] <= kMaxGrowth * outline.radius &&
           at[kBlur] <= limits.maxBlur;
}

bool DotModel::fit(SectorMask sectors, int maxSteps) {
    linearise(unknowns, sectors, equations);
    double damping = kFirstDamping;
    for (int step = 0; step < maxSteps && damping < kMaxDamping; ++step) {
        Matrix<kDotUnknowns> damped = equations.normal;
        for (std::size_t i = 0; i < kDotUnknowns; ++i) {
            damped[i][i] *= 1.0 + damping;
        }
        if (!factor(damped)) {
            damping *= 100.0;
            continue;
        }
        const DotVector change = solve(damped, equations.right);
        DotVector next = unknowns;
        for (std::size_t i = 0; i < kDotUnknowns; ++i) {
            next[i] += change[i];
        }
        next[kBlur] = std::max(next[kBlur], std::max(kMinTotalBlur, 0.4 * unknowns[kBlur]));
        DotEquations trial;
        if (isAllowed(next)) {
            linearise(next, sectors, trial);
        }
        if (!isAllowed(next) || !(trial.cost <= equations.cost * (1.0 + 1e-9))) {
            const bool isTiny = std::hypot(change[kShiftX], change[kShiftY]) < kCentreTolerance;
            if (isTiny) {
                return true;
            }
            damping *= 10.0;
            continue;
        }
        unknowns = next;
        equations = trial;
        damping = std::max(damping * 0.05, 1e-9);
        if (std::hypot(change[kShiftX], change[kShiftY]) < kCentreTolerance &&
            std::fabs(change[kGrowth]) < kShapeTolerance && std::fabs(change[kBlur]) < kShapeTolerance) {
            return true;
        }
    }
    return false;
}

void DotModel::weigh() {
    for (DotSample& s : pixels.samples) {
        s.weight = 1.0 / variance.at(std::clamp(look(s, unknowns).coverage, 0.0, 1.0));
    }
}

}  // namespace zelm::measure
