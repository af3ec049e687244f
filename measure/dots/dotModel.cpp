#include "dotModel.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "dotProfile.h"

namespace zelm::measure {
namespace {

constexpr double kWhite = 255.0;
constexpr double kMinTotalBlur = 0.3;     // pixels; the pixel's square alone has 0.289
constexpr double kTie = 0.03;             // of the contrast a radius: how far shading of dot and ground may differ
constexpr double kSlant = 0.1;            // of the contrast a radius: how much of it there may be
constexpr double kMinGrowth = -0.5;       // of the radius
constexpr double kMaxGrowth = 0.7;        //
constexpr double kShapeTolerance = 10.0;  // times the tolerance of the centre, which size and blur touch little
constexpr double kMinFootDivisor = 0.2;   // of the squared derivative
constexpr double kFirstDamping = 1e-4;
constexpr double kMaxDamping = 1e8;
constexpr double kMinDamping = 1e-9;
constexpr double kMaxFinalDamping = 1e-2;  // steps damped more are short for that reason alone
constexpr double kNoiseOfSteps = 5.0;      // tolerances
constexpr double kMaxSeriesBend = 0.3;     // blur over radius of curvature: the series is then right to 1e-3
constexpr double kMaxStale = 0.01;         // of the radius, by which feet may lag: a distance errs by 5e-5 of it

struct Foot {
    double qx, qy;  // the point of the outline
    double tx, ty;  // its derivative by the parameter
};

Foot footAt(const std::array<double, 4>& U, double scale, double ex, double ey) {
    return {scale * (U[0] * ex + U[1] * ey), scale * (U[2] * ex + U[3] * ey), scale * (U[1] * ex - U[0] * ey),
            scale * (U[3] * ex - U[2] * ey)};
}

// Rows of derivatives that end with the residual, some at a time: their products are summed when the next rows no
// longer wait for them.
class RowSums {
public:
    static constexpr std::size_t kColumns = kDotUnknowns + 2;  // residual, and 0 for an even number

    explicit RowSums(DotEquations& equations) : to(equations) {}

    // Where the next row goes, and its weight.
    double* next(double weight) {
        if (count == kRows) {
            flush();
        }
        weights[count] = weight;
        return rows[count++];
    }
    void flush() {
        addFrom<0>();
        count = 0;
    }

private:
    static constexpr std::size_t kRows = 32;

    // The columns from i on of row i of the normal matrix, kept in registers.
    template <std::size_t i>
    void addFrom() {
        if constexpr (i < kDotUnknowns) {
            constexpr std::size_t first = i / 2 * 2;
            double sums[kColumns - first] = {};
            for (std::size_t k = 0; k < count; ++k) {
                const double a = weights[k] * rows[k][i];
                for (std::size_t j = first; j < kColumns; ++j) {
                    sums[j - first] += a * rows[k][j];
                }
            }
            for (std::size_t j = i; j < kDotUnknowns; ++j) {
                to.normal[i][j] += sums[j - first];
            }
            to.right[i] += sums[kDotUnknowns - first];
            addFrom<i + 1>();
        }
    }

    DotEquations& to;
    std::size_t count = 0;
    double weights[kRows];
    alignas(16) double rows[kRows][kColumns];
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

double DotModel::moveFoot(DotSample& s, const DotVector& at) const {
    const double scale = 1.0 + at[kGrowth] * outline.perRadius;
    const double vx = s.x - at[kShiftX];
    const double vy = s.y - at[kShiftY];
    Foot foot = footAt(outline.axes, scale, s.footX, s.footY);
    const double wx = vx - foot.qx;
    const double wy = vy - foot.qy;
    const double t2 = foot.tx * foot.tx + foot.ty * foot.ty;
    // Within the outline the step's divisor vanishes at the centre of curvature.
    const double turn =
        (wx * foot.tx + wy * foot.ty) / std::max(t2 + wx * foot.qx + wy * foot.qy, kMinFootDivisor * t2);
    const double ex = s.footX - turn * s.footY;
    const double ey = s.footY + turn * s.footX;
    const double norm = 1.0 / std::sqrt(ex * ex + ey * ey);
    s.footX = ex * norm;
    s.footY = ey * norm;
    foot = footAt(outline.axes, 1.0, s.footX, s.footY);
    const double inverse = 1.0 / std::sqrt(foot.tx * foot.tx + foot.ty * foot.ty);
    s.nx = outline.turn * inverse * foot.ty;
    s.ny = -outline.turn * inverse * foot.tx;
    s.tangent = foot.qx * s.nx + foot.qy * s.ny;
    s.curvature = outline.radius * outline.radius * inverse * inverse * inverse;
    const double nx2 = s.nx * s.nx;
    const double ny2 = s.ny * s.ny;
    s.fourth = nx2 * nx2 + ny2 * ny2;
    return std::fabs(turn);
}

double DotModel::distance(const DotSample& s, const DotVector& at) const {
    const double scale = 1.0 + at[kGrowth] * outline.perRadius;
    return (s.x - at[kShiftX]) * s.nx + (s.y - at[kShiftY]) * s.ny - scale * s.tangent;
}

SampleView DotModel::look(const DotSample& s, const DotVector& at) const {
    const double vx = s.x - at[kShiftX];
    const double vy = s.y - at[kShiftY];
    SampleView view;
    if (isSmall) {
        const BlurredEllipse::Value value = ellipse.at(vx, vy);
        view.coverage = value.coverage;
        view.byX = -value.byX;
        view.byY = -value.byY;
        view.byGrowth = value.byScale * outline.perRadius;
        view.byBlur = value.byBlur;
    } else {
        const double distance = vx * s.nx + vy * s.ny - size * s.tangent;
        const EdgeCoverage edge = edgeCoverage(distance, s.curvature * blurPerScale, at[kBlur], perBlur, s.fourth);
        view.coverage = edge.value;
        view.byX = -edge.byDistance * s.nx;
        view.byY = -edge.byDistance * s.ny;
        view.byGrowth = -edge.byDistance * s.tangent * outline.perRadius;
        view.byBlur = edge.byBlur;
    }
    const double u = s.x * outline.perRadius;
    const double v = s.y * outline.perRadius;
    view.inside = at[kInside] + at[kInsideX] * u + at[kInsideY] * v;
    view.outside = at[kOutside] + at[kOutsideX] * u + at[kOutsideY] * v;
    return view;
}

void DotModel::moveFeet(const DotVector& at) {
    for (DotSample& s : pixels.samples) {
        moveFoot(s, at);
    }
    feetAt = at;
}

// The feet follow when the outline has moved so far that distances would be wrong; what lags a little is wrong alike on
// opposite sides, and does not move the centre.
void DotModel::follow(const DotVector& at) {
    const double moved = std::fabs(at[kShiftX] - feetAt[kShiftX]) + std::fabs(at[kShiftY] - feetAt[kShiftY]) +
                         0.3 * std::fabs(at[kGrowth] - feetAt[kGrowth]);
    if (moved > kMaxStale * outline.radius) {
        moveFeet(at);
    }
    size = 1.0 + at[kGrowth] * outline.perRadius;
    perBlur = 1.0 / at[kBlur];
    blurPerScale = at[kBlur] / size;
    isSmall = outline.maxCurvature * blurPerScale > kMaxSeriesBend;
    if (isSmall) {
        ellipse.set(outline.longAxis * size, outline.shortAxis * size, outline.longX, outline.longY, size, at[kBlur]);
    }
}

void DotModel::linearise(const DotVector& at, SectorMask sectors, DotEquations& to) {
    follow(at);
    to = DotEquations{};
    RowSums sums(to);
    for (const DotSample& s : pixels.samples) {
        if ((sectors >> s.sector & 1U) == 0) {
            continue;
        }
        const SampleView view = look(s, at);
        const double residual = s.gray - view.gray();
        if (isBeyondClip(s.gray, view.gray())) {
            continue;
        }
        const double contrast = view.inside - view.outside;
        const double u = s.x * outline.perRadius;
        const double v = s.y * outline.perRadius;
        const double m = view.coverage;
        double* row = sums.next(s.weight);
        row[kShiftX] = contrast * view.byX;
        row[kShiftY] = contrast * view.byY;
        row[kGrowth] = contrast * view.byGrowth;
        row[kBlur] = contrast * view.byBlur;
        row[kInside] = m;
        row[kInsideX] = m * u;
        row[kInsideY] = m * v;
        row[kOutside] = 1.0 - m;
        row[kOutsideX] = u - m * u;
        row[kOutsideY] = v - m * v;
        row[kDotUnknowns] = residual;
        row[kDotUnknowns + 1] = 0.0;
        to.cost += s.weight * residual * residual;
    }
    sums.flush();
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
        for (auto* N : {&to.normal, &to.prior}) {
            (*N)[i][i] += a * a;
            (*N)[i][j] += a * b;
            (*N)[j][j] += b * b;
        }
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

bool DotModel::fit(SectorMask sectors, int maxSteps, double tolerance) {
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
        if (!isAllowed(next)) {
            damping *= 10.0;
            continue;
        }
        if (std::hypot(change[kShiftX], change[kShiftY]) < tolerance &&
            std::fabs(change[kGrowth]) + std::fabs(change[kBlur]) < kShapeTolerance * tolerance &&
            damping < kMaxFinalDamping) {
            unknowns = next;
            follow(unknowns);
            return true;
        }
        linearise(next, sectors, trial);
        if (!(trial.cost <= equations.cost)) {
            if (std::hypot(change[kShiftX], change[kShiftY]) < kNoiseOfSteps * tolerance) {
                follow(unknowns);
                return true;  // as low as rounding lets it be
            }
            damping *= 10.0;
            continue;
        }
        unknowns = next;
        std::swap(equations, trial);
        damping = std::max(damping * 0.05, kMinDamping);
    }
    follow(unknowns);
    return false;
}

void DotModel::review() {
    follow(unknowns);
    for (DotSample& s : pixels.samples) {
        const SampleView view = look(s, unknowns);
        s.coverage = std::clamp(view.coverage, 0.0, 1.0);
        s.residual = s.gray - view.gray();
        s.slope = view.slope();
        s.counts = !isBeyondClip(s.gray, view.gray());
    }
}

void DotModel::weigh() {
    for (DotSample& s : pixels.samples) {
        s.weight = 1.0 / variance.at(s.coverage);
    }
}

}  // namespace zelm::measure
