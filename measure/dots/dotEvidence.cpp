#include "dotEvidence.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kMinSectorSamples = 3.0;
constexpr double kNoiseExcess = 2.0;        // root mean square of a sector's residuals over the noise
constexpr double kFinerModelError = 0.03;   // where most sectors show that it does
constexpr double kMaxOverMedian = 3.0;      // mean square of a sector's residuals over the median of all
constexpr double kMaxExcess = 4.0;          // of the spread of shifts and contrasts over what noise explains
constexpr double kMaxArcExcess = 1.5;       // where a part of the outline is left out
constexpr double kFinerContrast = 0.08;     // of the contrast
constexpr double kFinerShift = 0.03;        // pixels
constexpr double kModelError = 0.07;        // of the contrast, that the profile of a real edge may differ
constexpr double kSureness = 4.0;           // standard deviations
constexpr double kShiftTolerance = 0.15;    // pixels by which a real outline may leave its ellipse
constexpr double kShiftShare = 0.02;        // and of the radius
constexpr double kContrastTolerance = 0.3;  // of the contrast

double squaresOf(const CoreSums& s, const DotVector& at, std::size_t first) {
    const double a = at[first];
    const double b = at[first + 1];
    const double c = at[first + 2];
    return std::max(s.gg - 2.0 * (a * s.g + b * s.gx + c * s.gy) + a * a * s.n + b * b * s.xx + c * c * s.yy +
                        2.0 * (a * b * s.x + a * c * s.y + b * c * s.xy),
                    0.0);
}

// Gives the function coverage and residual of the samples of these sectors.
template <class Function>
void forEachThatCounts(const DotSamples& samples, SectorMask sectors, Function function) {
    for (const DotQuad& s : samples.quads) {
        for (std::size_t k = 0; k < kLanes; ++k) {
            if ((sectors >> s.sector[k] & 1U) != 0 && s.counts[k] != 0.0F) {
                function(static_cast<double>(s.coverage[k]), static_cast<double>(s.residual[k]));
            }
        }
    }
}

}  // namespace

OutlineEvidence evidenceOf(const DotModel& model, const DotPixels& pixels, double noise) {
    const double contrast = model.unknowns[kInside] - model.unknowns[kOutside];
    struct Sums {
        double count = 0, squares = 0, es = 0, ss = 0, ec = 0, cc = 0;
    };
    std::array<Sums, DotSamples::kNoSector + 1> sums{};
    for (const DotQuad& s : pixels.samples.quads) {
        for (std::size_t k = 0; k < kLanes; ++k) {
            Sums& sum = sums[s.sector[k]];
            if (s.counts[k] == 0.0F) {
                continue;
            }
            const auto residual = static_cast<double>(s.residual[k]);
            const auto slope = static_cast<double>(s.slope[k]);
            const double step = contrast * (static_cast<double>(s.coverage[k]) - 0.5);
            sum.count += 1.0;
            sum.squares += residual * residual;
            sum.es += residual * slope;
            sum.ss += slope * slope;
            sum.ec += residual * step;
            sum.cc += step * step;
        }
    }
    OutlineEvidence evidence{};
    for (std::size_t k = 0; k < kDotSectors; ++k) {
        const Sums& s = sums[k];
        if (s.ss > 0.0 && s.cc > 0.0) {
            evidence[k] = {
                s.count, s.squares, s.es / s.ss, noise / std::sqrt(s.ss), 1.0 + s.ec / s.cc, noise / std::sqrt(s.cc)};
        }
    }
    return evidence;
}

namespace {

// Of the sectors with samples; nothing much of fewer than three.
template <class Figure>
double medianOver(const OutlineEvidence& evidence, SectorMask sectors, Figure figure) {
    std::array<double, kDotSectors> values{};
    std::size_t n = 0;
    for (std::size_t k = 0; k < kDotSectors; ++k) {
        if ((sectors >> k & 1U) != 0 && evidence[k].count >= kMinSectorSamples) {
            values[n++] = figure(evidence[k]);
        }
    }
    if (n == 0) {
        return 0.0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(n / 2);
    std::nth_element(values.begin(), middle, values.begin() + static_cast<std::ptrdiff_t>(n));
    return *middle;
}

}  // namespace

SectorMask agreeingSectors(const OutlineEvidence& evidence, SectorMask fitted, const DotTolerance& tolerance) {
    constexpr double kPerMedian = 1.4826;  // standard deviation of a normal variable over the median of its size
    const double noise = tolerance.noise;
    // The fewer sectors show a dot, the stricter they are taken.
    const double maxExcess = fitted == kAllSectors ? kMaxExcess : kMaxArcExcess;
    const double modelError = kModelError * tolerance.contrast;
    const double finerError = kFinerModelError * tolerance.contrast;
    const double usual = medianOver(evidence, fitted, [](const SectorEvidence& e) { return e.squares / e.count; });
    const double maxSquare = std::min(kNoiseExcess * kNoiseExcess * noise * noise + modelError * modelError,
                                      kMaxOverMedian * std::max(usual, noise * noise) + finerError * finerError);
    // Real edges have more noise than their ground, and printed outlines are not quite ellipses: as most sectors show.
    const double excess =
        std::clamp(kPerMedian * medianOver(evidence, fitted,
                                           [](const SectorEvidence& e) { return std::fabs(e.shift) / e.shiftError; }),
                   1.0, maxExcess);
    const double contrastExcess = std::clamp(
        kPerMedian * medianOver(evidence, fitted,
                                [](const SectorEvidence& e) { return std::fabs(e.contrast - 1.0) / e.contrastError; }),
        1.0, maxExcess);
    SectorMask mask = 0;
    for (std::size_t k = 0; k < kDotSectors; ++k) {
        const SectorEvidence& e = evidence[k];
        const double shift = std::fabs(e.shift);
        const bool agrees =
            e.count >= kMinSectorSamples && e.squares <= maxSquare * e.count &&
            shift <= kShiftTolerance + kShiftShare * tolerance.radius + kSureness * e.shiftError &&
            shift <= kFinerShift + kSureness * excess * e.shiftError &&
            std::fabs(e.contrast - 1.0) <= kContrastTolerance + kSureness * e.contrastError &&
            std::fabs(e.contrast - 1.0) <= kFinerContrast + kSureness * contrastExcess * e.contrastError;
        mask |= agrees ? SectorMask{1} << k : 0U;
    }
    return mask;
}

DotResidual residualOf(const DotModel& model, const DotPixels& pixels, SectorMask sectors) {
    double squares = 0.0;
    double count = 0.0;
    forEachThatCounts(pixels.samples, sectors, [&](double, double residual) {
        squares += residual * residual;
        count += 1.0;
    });
    for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
        const CoreSums core = model.coreOf(sectors, side, model.unknowns);
        squares += squaresOf(core, model.unknowns, side == 0 ? kInside : kOutside);
        count += core.n;
    }
    return {std::sqrt(squares / std::max(count - static_cast<double>(kDotUnknowns), 1.0)), count};
}

DotVariance varianceOf(const DotModel& model, const DotPixels& pixels, SectorMask sectors, double floor) {
    // Of either side, from its uniform pixels and the samples nearly on it.
    std::array<double, 2> squares{};
    std::array<double, 2> counts{};
    for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
        const CoreSums core = model.coreOf(sectors, side, model.unknowns);
        squares[side] = squaresOf(core, model.unknowns, side == 0 ? kInside : kOutside);
        counts[side] = core.n;
    }
    constexpr double kNearlyAll = 0.98;
    double eh = 0.0;
    double hh = 0.0;
    double hIn = 0.0;
    double hOut = 0.0;
    forEachThatCounts(pixels.samples, sectors, [&](double m, double residual) {
        const double e2 = residual * residual;
        if (m > kNearlyAll || m < 1.0 - kNearlyAll) {
            const std::size_t side = m > kNearlyAll ? 0 : 1;
            squares[side] += e2;
            counts[side] += 1.0;
            return;
        }
        const double h = 4.0 * m * (1.0 - m);
        eh += e2 * h;
        hh += h * h;
        hIn += m * h;
        hOut += (1.0 - m) * h;
    });
    constexpr double kMinCount = 20.0;
    constexpr double kLost = 3.0;  // unknowns of the levels of one side
    const double both = (squares[0] + squares[1] + eh) / std::max(counts[0] + counts[1] + hh - 10.0, 1.0);
    const auto of = [&](std::size_t side) {
        return std::max(counts[side] >= kMinCount ? squares[side] / (counts[side] - kLost) : both, floor);
    };
    DotVariance v;
    v.inside = of(0);
    v.outside = of(1);
    v.edge = hh > 0.0 ? (eh - v.inside * hIn - v.outside * hOut) / hh : 0.0;
    // Less its standard deviation: what may be chance is none.
    const double mean = 0.5 * (v.inside + v.outside);
    v.edge = std::max(v.edge - mean * std::sqrt(2.0 / std::max(hh, 1.0)), 0.0);
    return v;
}

}  // namespace zelm::measure
