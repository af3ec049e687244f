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
constexpr float kMinFootDivisor = 0.2F;   // of the squared derivative
constexpr float kMaxFirstTurn = 0.02F;    // radians; the foot is then right to its square
constexpr double kFirstDamping = 1e-4;
constexpr double kMaxDamping = 1e8;
constexpr double kMinDamping = 1e-9;
constexpr double kMaxFinalDamping = 1e-2;  // steps damped more are short for that reason alone
constexpr double kNoiseOfSteps = 5.0;      // tolerances
constexpr double kMaxSeriesBend = 0.3;     // blur over radius of curvature: the series is then right to 1e-3
constexpr double kMaxStale = 0.01;         // of the radius, by which feet may lag: a distance errs by 5e-5 of it
constexpr double kFrozenStep = 0.15;       // of the blur: after shorter steps the normal matrix stays
constexpr double kMinShrinkage = 0.3;      // of the step before: else it is formed anew

struct Foot {
    Lanes qx, qy;  // the point of the outline
    Lanes tx, ty;  // its derivative by the parameter
};

Foot footAt(const std::array<float, 4>& U, Lanes ex, Lanes ey) {
    return {U[0] * ex + U[1] * ey, U[2] * ex + U[3] * ey, U[1] * ex - U[0] * ey, U[3] * ex - U[2] * ey};
}

std::array<float, 4> floatsOf(const std::array<double, 4>& numbers, double factor = 1.0) {
    std::array<float, 4> floats{};
    std::transform(numbers.begin(), numbers.end(), floats.begin(),
                   [&](double x) { return static_cast<float>(factor * x); });
    return floats;
}

// One step of Newton's towards the foot of a place on the outline with these axes.
// Returns how far it turned, in radians of the parameter.
Lanes turnFoot(DotQuad& s, const std::array<float, 4>& axes, Lanes x, Lanes y) {
    const Foot foot = footAt(axes, s.footX, s.footY);
    const Lanes wx = x - foot.qx;
    const Lanes wy = y - foot.qy;
    const Lanes t2 = foot.tx * foot.tx + foot.ty * foot.ty;
    // Within the outline the step's divisor vanishes at the centre of curvature.
    const Lanes turn = (wx * foot.tx + wy * foot.ty) / larger(t2 + wx * foot.qx + wy * foot.qy, kMinFootDivisor * t2);
    const Lanes ex = s.footX - turn * s.footY;
    const Lanes ey = s.footY + turn * s.footX;
    const Lanes norm = inverseRoot(1.0F + turn * turn);  // the foot is a unit vector
    s.footX = ex * norm;
    s.footY = ey * norm;
    return sizeOf(turn);
}

// Notes what the outline is at the foot.
void describeFoot(DotQuad& s, const std::array<float, 4>& axes, const DotOutline& outline) {
    const Foot foot = footAt(axes, s.footX, s.footY);
    const Lanes inverse = inverseRoot(foot.tx * foot.tx + foot.ty * foot.ty);
    const Lanes turned = static_cast<float>(outline.turn) * inverse;
    s.nx = turned * foot.ty;
    s.ny = -turned * foot.tx;
    s.offset = (s.x - foot.qx) * s.nx + (s.y - foot.qy) * s.ny;
    s.tangent = (foot.qx * s.nx + foot.qy * s.ny) * static_cast<float>(outline.perRadius);
    s.curvature = static_cast<float>(outline.radius * outline.radius) * inverse * inverse * inverse;
    const Lanes nx2 = s.nx * s.nx;
    const Lanes ny2 = s.ny * s.ny;
    s.fourth = nx2 * nx2 + ny2 * ny2;
}

// 1 where the sample counts, 0 where it is clipped and the model lies beyond the clip, so that it says nothing against
// the model.
Lanes countsOf(Lanes gray, Lanes modelled) {
    constexpr auto kWhiteLevel = static_cast<float>(kWhite);
    const LaneInts isBeyond = ((gray >= kWhiteLevel) & (modelled > kWhiteLevel)) | ((gray <= 0.0F) & (modelled < 0.0F));
    return isBeyond ? lanesOf(0.0F) : lanesOf(1.0F);
}

// Rows of derivatives that end with the residual, a column after another, some rows at a time. Their products are
// summed in single precision over these rows, in double over all.
class RowSums {
public:
    static constexpr std::size_t kColumns = kDotUnknowns + 1;

    explicit RowSums(DotEquations& equations, bool withNormal) : to(equations), isWithNormal(withNormal) {}

    bool isFull() const { return count == kQuads; }
    // Of the next four rows.
    void weigh(Lanes weight) { weights[count++] = weight; }
    Lanes& next(std::size_t column) { return columns[column][count]; }
    void flush() {
        addFrom<0>();
        count = 0;
    }

private:
    static constexpr std::size_t kQuads = 32;

    // The columns from i on of row i of the normal matrix, kept in registers, or the residual's alone.
    template <std::size_t i>
    void addFrom() {
        if constexpr (i < kDotUnknowns) {
            if (isWithNormal) {
                constexpr std::size_t n = kColumns - i;
                Lanes sums[n] = {};
                for (std::size_t k = 0; k < count; ++k) {
                    const Lanes a = weights[k] * columns[i][k];
                    for (std::size_t j = 0; j < n; ++j) {
                        sums[j] += a * columns[i + j][k];
                    }
                }
                for (std::size_t j = i; j < kDotUnknowns; ++j) {
                    to.normal[i][j] += sumOf(sums[j - i]);
                }
                to.right[i] += sumOf(sums[n - 1]);
            } else {
                Lanes sum{};
                for (std::size_t k = 0; k < count; ++k) {
                    sum += weights[k] * columns[i][k] * columns[kDotUnknowns][k];
                }
                to.right[i] += sumOf(sum);
            }
            addFrom<i + 1>();
        } else {
            Lanes sum{};
            for (std::size_t k = 0; k < count; ++k) {
                sum += weights[k] * columns[kDotUnknowns][k] * columns[kDotUnknowns][k];
            }
            to.cost += sumOf(sum);
        }
    }

    DotEquations& to;
    bool isWithNormal;
    std::size_t count = 0;
    Lanes weights[kQuads];
    Lanes columns[kColumns][kQuads];
};

void addCore(const CoreSums& s, std::size_t first, double weight, const DotVector& at, bool withNormal,
             DotEquations& to) {
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
        for (std::size_t j = 0; withNormal && j < 3; ++j) {
            to.normal[first + i][first + j] += weight * m[i][j];
        }
    }
    to.cost += weight * std::max(cost, 0.0);
}

}  // namespace

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

void DotSamples::clear() {
    quads.clear();
    count = 0;
}

void DotSamples::addQuad() {
    DotQuad& fresh = quads.emplace_back();
    fresh.footX = lanesOf(1.0F);
    fresh.sector.fill(kNoSector);
}

void DotSamples::setFoot(double footX, double footY, std::size_t sector) {
    const std::size_t lane = (count - 1) % kLanes;
    DotQuad& quad = quads.back();
    quad.footX[lane] = static_cast<float>(footX);
    quad.footY[lane] = static_cast<float>(footY);
    quad.sector[lane] = static_cast<std::uint8_t>(sector);
}

void DotSamples::moveLane(std::size_t from, std::size_t to) {
    constexpr Lanes DotQuad::*kFields[] = {&DotQuad::x,         &DotQuad::y,      &DotQuad::gray,  &DotQuad::footX,
                                           &DotQuad::footY,     &DotQuad::nx,     &DotQuad::ny,    &DotQuad::tangent,
                                           &DotQuad::curvature, &DotQuad::fourth, &DotQuad::offset};
    for (const auto field : kFields) {
        (quads[to / kLanes].*field)[to % kLanes] = (quads[from / kLanes].*field)[from % kLanes];
    }
    quads[to / kLanes].sector[to % kLanes] = quads[from / kLanes].sector[from % kLanes];
}

void DotSamples::shrink(std::size_t newCount) {
    count = newCount;
    quads.resize((count + kLanes - 1) / kLanes);
    for (std::size_t k = count; k < kLanes * quads.size(); ++k) {
        quads.back().sector[k % kLanes] = kNoSector;
    }
}

Lanes DotModel::distances(const DotQuad& s, const DotVector& at) const {
    return s.offset - static_cast<float>(at[kShiftX]) * s.nx - static_cast<float>(at[kShiftY]) * s.ny -
           static_cast<float>(at[kGrowth]) * s.tangent;
}

void DotModel::moveFeet(const DotVector& at) {
    const std::array<float, 4> axes = floatsOf(outline.axes);
    const std::array<float, 4> scaled = floatsOf(outline.axes, 1.0 + at[kGrowth] * outline.perRadius);
    const auto shiftX = static_cast<float>(at[kShiftX]);
    const auto shiftY = static_cast<float>(at[kShiftY]);
    for (DotQuad& s : pixels.samples.quads) {
        turnFoot(s, scaled, s.x - shiftX, s.y - shiftY);
        describeFoot(s, axes, outline);
    }
    feetAt = at;
}

void DotModel::findFeet(const DotVector& at) {
    const std::array<float, 4> axes = floatsOf(outline.axes);
    const std::array<float, 4> scaled = floatsOf(outline.axes, 1.0 + at[kGrowth] * outline.perRadius);
    const std::array<float, 4> inverse = floatsOf(outline.inverse, outline.radius);
    const auto shiftX = static_cast<float>(at[kShiftX]);
    const auto shiftY = static_cast<float>(at[kShiftY]);
    for (DotQuad& s : pixels.samples.quads) {
        const Lanes vx = s.x - shiftX;
        const Lanes vy = s.y - shiftY;
        // The centre's own foot is anywhere.
        const Lanes ex = inverse[0] * vx + inverse[1] * vy + 1e-12F;
        const Lanes ey = inverse[2] * vx + inverse[3] * vy;
        const Lanes norm = inverseRoot(ex * ex + ey * ey);
        s.footX = ex * norm;
        s.footY = ey * norm;
        const Lanes turn = turnFoot(s, scaled, vx, vy);
        if (std::max(std::max(turn[0], turn[1]), std::max(turn[2], turn[3])) > kMaxFirstTurn) {
            turnFoot(s, scaled, vx, vy);
        }
        describeFoot(s, axes, outline);
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
    const double size = 1.0 + at[kGrowth] * outline.perRadius;
    std::transform(at.begin(), at.end(), now.begin(), [](double x) { return static_cast<float>(x); });
    perBlur = static_cast<float>(1.0 / at[kBlur]);
    blurPerScale = static_cast<float>(at[kBlur] / size);
    isSmall = outline.maxCurvature * at[kBlur] / size > kMaxSeriesBend;
    if (isSmall) {
        ellipse.set(outline.longAxis * size, outline.shortAxis * size, outline.longX, outline.longY, size, at[kBlur]);
    }
}

QuadView DotModel::look(const DotQuad& s) const {
    QuadView view;
    const auto perRadius = static_cast<float>(outline.perRadius);
    if (isSmall) {
        for (std::size_t k = 0; k < kLanes; ++k) {
            const BlurredEllipse::Value value =
                ellipse.at(static_cast<double>(s.x[k] - now[kShiftX]), static_cast<double>(s.y[k] - now[kShiftY]));
            view.coverage[k] = static_cast<float>(value.coverage);
            view.byX[k] = static_cast<float>(-value.byX);
            view.byY[k] = static_cast<float>(-value.byY);
            view.byGrowth[k] = static_cast<float>(value.byScale) * perRadius;
            view.byBlur[k] = static_cast<float>(value.byBlur);
        }
    } else {
        const Lanes distance = s.offset - now[kShiftX] * s.nx - now[kShiftY] * s.ny - now[kGrowth] * s.tangent;
        const EdgeCoverage<Lanes> edge =
            edgeCoverage(distance, s.curvature * blurPerScale, now[kBlur], perBlur, s.fourth);
        view.coverage = edge.value;
        view.byX = -edge.byDistance * s.nx;
        view.byY = -edge.byDistance * s.ny;
        view.byGrowth = -edge.byDistance * s.tangent;
        view.byBlur = edge.byBlur;
    }
    const Lanes u = s.x * perRadius;
    const Lanes v = s.y * perRadius;
    view.inside = now[kInside] + now[kInsideX] * u + now[kInsideY] * v;
    view.outside = now[kOutside] + now[kOutsideX] * u + now[kOutsideY] * v;
    return view;
}

void DotModel::useSectors(SectorMask sectors) {
    fitted = sectors;
    for (DotQuad& s : pixels.samples.quads) {
        for (std::size_t k = 0; k < kLanes; ++k) {
            s.fitted[k] = (sectors >> s.sector[k] & 1U) != 0 ? s.weight[k] : 0.0F;
        }
    }
}

void DotModel::linearise(const DotVector& at, Wanted wanted, DotEquations& to) {
    follow(at);
    if (wanted == Wanted::all) {
        to = DotEquations{};
    } else {
        to.right = {};
        to.cost = 0.0;
    }
    sumQuads(wanted, to);
    addCore(coreOf(fitted, 0, at), kInside, 1.0 / variance.inside, at, wanted == Wanted::all, to);
    addCore(coreOf(fitted, 1, at), kOutside, 1.0 / variance.outside, at, wanted == Wanted::all, to);
    addPriors(at, wanted, to);
}

void DotModel::sumQuads(Wanted wanted, DotEquations& to) const {
    RowSums sums(to, wanted == Wanted::all);
    const auto perRadius = static_cast<float>(outline.perRadius);
    for (const DotQuad& s : pixels.samples.quads) {
        if (sums.isFull()) {
            sums.flush();
        }
        const QuadView view = look(s);
        const Lanes gray = view.gray();
        const Lanes contrast = view.inside - view.outside;
        const Lanes u = s.x * perRadius;
        const Lanes v = s.y * perRadius;
        const Lanes m = view.coverage;
        const Lanes rest = 1.0F - m;
        sums.next(kShiftX) = contrast * view.byX;
        sums.next(kShiftY) = contrast * view.byY;
        sums.next(kGrowth) = contrast * view.byGrowth;
        sums.next(kBlur) = contrast * view.byBlur;
        sums.next(kInside) = m;
        sums.next(kInsideX) = m * u;
        sums.next(kInsideY) = m * v;
        sums.next(kOutside) = rest;
        sums.next(kOutsideX) = rest * u;
        sums.next(kOutsideY) = rest * v;
        sums.next(kDotUnknowns) = s.gray - gray;
        sums.weigh(s.fitted * countsOf(s.gray, gray));
    }
    sums.flush();
}

// Light that falls off falls off by the same share on dot and ground: levels that small dots or much blur leave open
// obey that nearly. Where pixels tell, they outweigh it.
void DotModel::addPriors(const DotVector& at, Wanted wanted, DotEquations& to) const {
    const double larger = std::max({std::fabs(at[kInside]), std::fabs(at[kOutside]), 1.0});
    const double tie = 1.0 / (kTie * limits.contrast);
    const double slant = 1.0 / (kSlant * limits.contrast);
    const auto add = [&](std::size_t i, std::size_t j, double a, double b) {
        const double residual = -(a * at[i] + b * at[j]);
        to.cost += residual * residual;
        to.right[i] += a * residual;
        to.right[j] += b * residual;
        if (wanted == Wanted::gradient) {
            return;
        }
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
    useSectors(sectors);
    linearise(unknowns, Wanted::all, equations);
    bool isFresh = true;
    double damping = kFirstDamping;
    double lastLength = HUGE_VAL;
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
        const double shift = std::hypot(change[kShiftX], change[kShiftY]);
        const double reshape = std::fabs(change[kGrowth]) + std::fabs(change[kBlur]);
        if (shift < tolerance && reshape < kShapeTolerance * tolerance && damping < kMaxFinalDamping) {
            unknowns = next;
            return true;
        }
        const double length = shift + reshape;
        const bool isLong = length > kFrozenStep * unknowns[kBlur] || length > kMinShrinkage * lastLength;
        linearise(next, isLong ? Wanted::all : Wanted::gradient, trial);
        if (!(trial.cost <= equations.cost)) {
            if (shift < kNoiseOfSteps * tolerance) {
                return true;  // as low as rounding lets it be
            }
            if (isFresh) {
                damping *= 10.0;
            } else {
                linearise(unknowns, Wanted::all, equations);
                isFresh = true;
            }
            continue;
        }
        unknowns = next;
        lastLength = length;
        isFresh = isLong;
        if (isLong) {
            std::swap(equations, trial);
        } else {
            equations.right = trial.right;
            equations.cost = trial.cost;
        }
        damping = std::max(damping * 0.05, kMinDamping);
    }
    return false;
}

void DotModel::review() {
    follow(unknowns);
    for (DotQuad& s : pixels.samples.quads) {
        const QuadView view = look(s);
        const Lanes gray = view.gray();
        s.coverage = smaller(larger(view.coverage, lanesOf(0.0F)), lanesOf(1.0F));
        s.residual = s.gray - gray;
        s.slope = (view.inside - view.outside) * (view.byX * s.nx + view.byY * s.ny);
        s.counts = countsOf(s.gray, gray);
    }
}

void DotModel::weigh() {
    for (DotQuad& s : pixels.samples.quads) {
        const Lanes m = s.coverage;
        s.weight = 1.0F / (m * static_cast<float>(variance.inside) + (1.0F - m) * static_cast<float>(variance.outside) +
                           4.0F * m * (1.0F - m) * static_cast<float>(variance.edge));
    }
}

}  // namespace zelm::measure
