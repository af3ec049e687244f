#include "dotFit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "dotEvidence.h"
#include "dotPixels.h"

namespace zelm::measure {
namespace {

constexpr double kPixelVariance = 1.0 / 12.0;  // of a pixel's square along an axis
constexpr double kEdgeSigmas = 4.2;            // of the blur, beyond which a pixel is uniform to 1e-5
constexpr double kEdgeMargin = 0.4;            // pixels by which the outline may still move
constexpr double kGround = 2.5;                // pixels of ground beyond the edge, at least
constexpr double kGroundShare = 0.25;          // of the radius
constexpr double kNeighbourSigmas = 2.2;       // of the blur, kept clear of another dot's outline
constexpr double kMinClear = 0.7;              // of the blur that the band needs beyond the outline
constexpr double kUnknownReach = 0.7;          // of the radius that is free where no neighbour is told
constexpr double kFirstBlur = 1.0;             // pixels
constexpr double kMaxBlurShare = 0.75;         // of the short axis
constexpr double kMinContrast = 4.0;           // gray levels
constexpr double kMinSignal = 3.0;             // contrast over noise
constexpr double kMinShiftLimit = 2.0;         // pixels
constexpr double kShiftLimitShare = 0.5;       // of the radius
constexpr double kMinScale = 0.7;
constexpr double kMaxScale = 1.4;
constexpr double kMinArcScale = 0.85;    // where a part of the outline is hidden
constexpr double kMaxArcScale = 1.18;    //
constexpr double kMaxSlant = 0.15;       // of the contrast a radius, of the ground's level
constexpr double kMaxExcess = 1.25;      // residuals over the noise
constexpr double kMaxModelError = 0.03;  // of the contrast, in the residuals of all pixels
constexpr double kMaxLikeness = 0.5;     // of the shifts of neighbouring sectors: their correlation; 0 in noise
constexpr double kMinBend = 0.05;        // pixels, root mean square of the shifts; less are those of printed outlines
constexpr double kMaxError = 0.25;       // pixels, standard deviation of the centre
constexpr int kMinSectors = 14;          // of 24 that are seen whole: 60 % of the outline with parts of two more
constexpr int kMinScattered = 17;        // where more than one arc is hidden: a wrong shape too agrees with some arcs
constexpr int kMinKept = 10;             // after those next to hidden ones are left out too
constexpr int kMinInImage = 20;          // of 24: 80 %
constexpr int kArcSectors = 13;
constexpr int kSparseSteps = 12;
constexpr int kBandSteps = 15;
constexpr int kMaxBands = 4;
constexpr int kMaxRounds = 6;
constexpr double kDisturbedSigmas = 2.0;  // of the blur
constexpr int kMaxDisturbed = 3;
constexpr double kSparseTolerance = 0.05;  // pixels
constexpr double kBandTolerance = 3e-3;    //
constexpr double kFinalTolerance = 1e-3;   //
constexpr double kCoarseTolerance = 0.25;  // of the contrast, of uniform pixels before the levels are known well
constexpr double kFineTolerance = 0.06;    //
constexpr double kToleranceSigmas = 5.0;

// With as many sectors on either side.
SectorMask widened(SectorMask bad, int sectors) {
    for (int k = 0; k < sectors; ++k) {
        bad = (bad | bad << 1 | bad >> 1 | bad << (kDotSectors - 1) | bad >> (kDotSectors - 1)) & kAllSectors;
    }
    return bad;
}

// How many runs of neighbouring sectors there are.
int runsOf(SectorMask sectors) {
    const SectorMask previous = (sectors << 1 | sectors >> (kDotSectors - 1)) & kAllSectors;
    return std::popcount(sectors & ~previous);
}

class DotFitter {
public:
    DotFitter(const DenseImage& image, const DotShape& dotShape, const DotFitOptions& fitOptions,
              const DotOutline& dotOutline)
        : shape(dotShape),
          options(fitOptions),
          outline(dotOutline),
          place{image, outline, shape.centre, 0.0},
          model(outline, pixels) {}

    DotFitResult fit() {
        limitReach();
        visible = sectorsInImage(place);
        if (visible != kAllSectors) {
            result.flags |= kDotCut;
        }
        if (std::popcount(visible) < kMinInImage || place.outsideLimit <= 0.0) {
            return refused(0);
        }
        noise = localNoise(place);
        model.limits.shift = 1.5 * shiftLimit();
        model.limits.maxBlur = std::max(kMaxBlurShare * outline.shortAxis, kFirstBlur);
        pixels.samples.quads.reserve(256);
        if (findOnAllOutline() ? isBent() : !findOnArcs()) {
            return refused(kDotNoDot);
        }
        return judged();
    }

private:
    double shiftLimit() const { return std::max(kMinShiftLimit, kShiftLimitShare * outline.radius); }
    double blur() const { return model.unknowns[kBlur]; }
    double contrast() const { return std::fabs(model.unknowns[kOutside] - model.unknowns[kInside]); }
    double signedContrast() const {
        const double difference = model.unknowns[kOutside] - model.unknowns[kInside];
        return options.polarity == DotPolarity::dark ? difference : -difference;
    }

    DotFitResult refused(unsigned flags) {
        DotFitResult bad;
        bad.flags = result.flags | flags;
        return bad;
    }

    void limitReach() {
        const double known = options.neighbour - outline.longAxis;
        place.outsideLimit = options.neighbour > 0.0 ? known : kUnknownReach * outline.radius + kGround;
        neighbourGap = options.neighbour > 0.0 ? known : HUGE_VAL;
    }

    // The outline roughly, by few pixels of these sectors.
    bool findRoughly(SectorMask sectors) {
        const double reach = std::max(3.0, 1.2 * shiftLimit());
        gatherSparse(place, reach, noise * noise, pixels);
        model.unknowns = DotVector{};
        model.unknowns[kBlur] = std::min(kFirstBlur, model.limits.maxBlur);
        model.moveFeet(model.unknowns);
        double inSum = 0.0, inCount = 0.0, outSum = 0.0, outCount = 0.0;
        for (const DotQuad& s : pixels.samples.quads) {
            const Lanes distances = model.distances(s, model.unknowns);
            for (std::size_t k = 0; k < kLanes; ++k) {
                const auto distance = static_cast<double>(distances[k]);
                if ((sectors >> s.sector[k] & 1U) == 0) {
                    continue;
                }
                if (distance < -0.4 * reach) {
                    inSum += static_cast<double>(s.gray[k]);
                    inCount += 1.0;
                } else if (distance > 0.4 * reach) {
                    outSum += static_cast<double>(s.gray[k]);
                    outCount += 1.0;
                }
            }
        }
        if (inCount < 5.0 || outCount < 5.0) {
            return false;
        }
        model.unknowns[kInside] = inSum / inCount;
        model.unknowns[kOutside] = outSum / outCount;
        model.variance = {noise * noise, noise * noise, 0.0};
        model.limits.contrast = contrast();
        if (!(signedContrast() >= std::max(0.7 * kMinContrast, noise))) {
            return false;
        }
        model.fit(sectors, kSparseSteps, kSparseTolerance);
        return hasContrast();
    }

    bool hasContrast() const { return signedContrast() >= std::max(kMinContrast, kMinSignal * noise); }

    DotBand bandNow(double tolerance) {
        DotBand band;
        band.edge = kEdgeSigmas * blur() + kEdgeMargin;
        band.outside = band.edge + std::max(kGround, kGroundShare * outline.radius);
        if (neighbourGap < HUGE_VAL) {
            const double free = neighbourGap - kNeighbourSigmas * blur();
            if (free < band.edge) {
                result.flags |= kDotNeighbour;
            }
            band.outside = std::min(band.outside, free);
        } else {
            band.outside = std::min(band.outside, std::max(kUnknownReach * outline.radius, 2.5 * blur()));
        }
        band.edge = std::min(band.edge, std::max(band.outside, kEdgeSigmas * blur()));
        band.inside = band.edge + std::max(6.0, 0.4 * outline.radius);
        band.tolerance = std::max(tolerance * contrast(), kToleranceSigmas * noise);
        return band;
    }

    // Fits the band's pixels of these sectors, again where the band has to move with the outline.
    bool fitBand(SectorMask sectors, double tolerance) {
        used = sectors;
        for (int k = 0; k < kMaxBands; ++k) {
            const DotBand band = bandNow(tolerance);
            if (!(band.outside >= kMinClear * blur())) {
                return false;
            }
            const DotVector before = model.unknowns;
            outliers = gatherBand(place, band, noise * noise, model, pixels);
            model.variance = {noise * noise, noise * noise, 0.0};
            model.limits.contrast = std::max(contrast(), 1.0);
            converged = model.fit(sectors, kBandSteps, kBandTolerance);
            if (!hasContrast()) {
                return false;
            }
            const double moved =
                std::hypot(model.unknowns[kShiftX] - before[kShiftX], model.unknowns[kShiftY] - before[kShiftY]) +
                std::fabs(model.unknowns[kGrowth] - before[kGrowth]);
            const bool isSpotty = tolerance > kFineTolerance && countOutliers(sectors) > 0;
            if (moved < kEdgeMargin && kEdgeSigmas * blur() < band.edge + kEdgeMargin && !isSpotty) {
                break;
            }
            tolerance = kFineTolerance;
        }
        return true;
    }

    int countOutliers(SectorMask sectors) const {
        int count = 0;
        for (std::size_t k = 0; k < kDotSectors; ++k) {
            count += (sectors >> k & 1U) != 0 ? outliers.brighter[k] + outliers.darker[k] : 0;
        }
        return count;
    }

    SectorMask agreeing() {
        model.review();
        evidence = evidenceOf(model, pixels, noise);
        return agreeingSectors(evidence, used, {contrast(), noise, outline.radius}) & visible;
    }

    bool findOnAllOutline() {
        return findRoughly(visible) && fitBand(visible, kCoarseTolerance) && settleSectors() && isEvenlyLit() &&
               isExplained(residualOf(model, pixels, used));
    }

    // Whether the levels are as slanted as light may be, rather than as what hides a part would make them.
    bool isEvenlyLit() const {
        const DotVector& at = model.unknowns;
        return std::hypot(at[kOutsideX], at[kOutsideY]) <= kMaxSlant * contrast() &&
               std::hypot(at[kInsideX], at[kInsideY]) <= 2.0 * kMaxSlant * contrast();
    }

    // Whether neighbouring sectors leave the outline alike, as noise does not make them: something as bright as the dot
    // or its ground hides a part, or the shape is another one. Which arc is right cannot be told then.
    bool isBent() const {
        double products = 0.0;
        double squares = 0.0;
        double shifts = 0.0;
        for (std::size_t k = 0; k < kDotSectors; ++k) {
            const std::size_t l = (k + 1) % kDotSectors;
            if ((used >> k & 1U) != 0 && (used >> l & 1U) != 0) {
                const double here = evidence[k].shift / evidence[k].shiftError;
                products += here * evidence[l].shift / evidence[l].shiftError;
                squares += here * here;
                shifts += evidence[k].shift * evidence[k].shift;
            }
        }
        return products > kMaxLikeness * squares && shifts > kMinBend * kMinBend * std::popcount(used);
    }

    // Whether noise and the profile of a real edge are all that the model leaves.
    bool isExplained(const DotResidual& residual) const {
        return residual.rms <= std::hypot(kMaxExcess * noise, kMaxModelError * contrast());
    }

    // Leaves sectors out and takes them in again until those that are used agree with the dot, and the others do not.
    bool settleSectors() {
        for (int k = 0; k < kMaxRounds; ++k) {
            const SectorMask good = agreeing();
            if (std::popcount(good) < (runsOf(visible & ~good) > 1 ? kMinScattered : kMinSectors)) {
                return false;
            }
            const SectorMask next = good & ~widened(visible & ~good, sectorsDisturbed());
            if (next == used || (k > 0 && (used & ~next) == 0)) {
                return true;
            }
            if (std::popcount(next) < kMinKept || !fitBand(next, kFineTolerance)) {
                return false;
            }
        }
        return (used & ~agreeing()) == 0;
    }

    // What hides a part of the outline disturbs its neighbours by its own blurred edge.
    int sectorsDisturbed() const {
        const double width = 2.0 * std::numbers::pi * outline.radius / static_cast<double>(kDotSectors);
        return std::clamp(static_cast<int>(std::ceil(kDisturbedSigmas * blur() / width)), 1, kMaxDisturbed);
    }

    // A dot of which much is hidden: some arc of its outline is not.
    bool findOnArcs() {
        DotVector best{};
        SectorMask bestArc = 0;
        double least = HUGE_VAL;
        for (std::size_t start = 0; start < kDotSectors; start += 2) {
            const SectorMask arc = arcFrom(start) & visible;
            if (!findRoughly(arc)) {
                continue;
            }
            model.review();
            const double cost = residualOf(model, pixels, arc).rms;
            if (cost < least) {
                least = cost;
                best = model.unknowns;
                bestArc = arc;
            }
        }
        if (bestArc == 0) {
            return false;
        }
        model.unknowns = best;
        return fitBand(bestArc, kFineTolerance) && settleSectors();
    }

    static SectorMask arcFrom(std::size_t start) {
        const SectorMask arc = (SectorMask{1} << kArcSectors) - 1;
        return start == 0 ? arc : ((arc << start) | (arc >> (kDotSectors - start))) & kAllSectors;
    }

    // The noise as the residuals show it, and the last steps with weights by it.
    void refineWeights() {
        const DotVariance variance = varianceOf(model, pixels, used, kPixelVariance);
        model.variance = variance;
        model.weigh();
        converged = model.fit(used, kBandSteps, kFinalTolerance) && converged;
    }

    DotFitResult judged() {
        refineWeights();
        const DotVector& at = model.unknowns;
        const bool agrees = (used & ~agreeing()) == 0;
        const DotResidual residual = residualOf(model, pixels, used);
        const double scale = 1.0 + at[kGrowth] / outline.radius;
        setFlags();
        if (!hasContrast() || !isPlausible(scale) || !(std::hypot(at[kShiftX], at[kShiftY]) <= shiftLimit()) ||
            !agrees || !isEvenlyLit() || !isExplained(residual)) {
            return refused(kDotNoDot);
        }
        if (!converged) {
            return refused(kDotNotConverged);
        }
        if (!giveCovariance()) {
            return refused(kDotNoDot);
        }
        result.ok = true;
        result.centre = {shape.centre.x + at[kShiftX], shape.centre.y + at[kShiftY]};
        result.scale = scale;
        result.blur = std::sqrt(std::max(at[kBlur] * at[kBlur] - kPixelVariance, 0.0));
        result.noise = residual.rms;
        const double u = at[kShiftX] * outline.perRadius;
        const double v = at[kShiftY] * outline.perRadius;
        result.inside = at[kInside] + at[kInsideX] * u + at[kInsideY] * v;
        result.outside = at[kOutside] + at[kOutsideX] * u + at[kOutsideY] * v;
        return result;
    }

    bool isPlausible(double scale) const {
        const bool isWhole = used == visible;
        return scale >= (isWhole ? kMinScale : kMinArcScale) && scale <= (isWhole ? kMaxScale : kMaxArcScale);
    }

    // What noise alone does to the centre: what is thought likely of the levels keeps some of it away.
    bool giveCovariance() {
        Matrix<kDotUnknowns> N = model.equations.normal;
        if (!factor(N)) {
            return false;
        }
        const auto column = [&](std::size_t i) {
            DotVector e{};
            e[i] = 1.0;
            return solve(N, e);
        };
        const DotVector x = column(kShiftX);
        const DotVector y = column(kShiftY);
        const auto product = [&](const DotVector& a, const DotVector& b) {
            double sum = 0.0;
            for (std::size_t i = 0; i < kDotUnknowns; ++i) {
                for (std::size_t j = 0; j < kDotUnknowns; ++j) {
                    sum += a[i] * b[j] * model.equations.prior[std::min(i, j)][std::max(i, j)];
                }
            }
            return sum;
        };
        result.covariance = {x[kShiftX] - product(x, x), x[kShiftY] - product(x, y), y[kShiftY] - product(y, y)};
        return x[kShiftX] + y[kShiftY] <= 2.0 * kMaxError * kMaxError && result.covariance[0] > 0.0 &&
               result.covariance[2] > 0.0;
    }

    void setFlags() {
        if ((visible & ~used) != 0) {
            result.flags |= kDotHalfHidden;
        }
        int bright = 0;
        double clipped = 0.0;
        double all = 0.0;
        for (std::size_t k = 0; k < kDotSectors; ++k) {
            bright += (used >> k & 1U) != 0 ? outliers.brighter[k] : 0;
            for (const std::size_t side : {std::size_t{0}, std::size_t{1}}) {
                clipped += pixels.clipped[side][k].n;
                all += pixels.cores[side][k].n;
            }
        }
        if (bright > 2) {
            result.flags |= kDotHighlight;
        }
        if (clipped > 0.02 * (clipped + all)) {
            result.flags |= kDotSaturated;
        }
    }

    const DotShape& shape;
    const DotFitOptions& options;
    const DotOutline& outline;
    DotPlace place;
    DotPixels pixels;
    DotModel model;
    DotFitResult result;
    DotOutliers outliers;
    OutlineEvidence evidence{};  // as of agreeing()
    SectorMask visible = 0;
    SectorMask used = 0;
    double noise = 0.0;  // gray levels
    double neighbourGap = 0.0;
    bool converged = false;
};

}  // namespace

DotFitResult fitDot(const DenseImage& image, const DotShape& shape, const DotFitOptions& options) {
    DotFitResult refused;
    refused.flags = kDotNoDot;
    const auto outline = outlineOf(shape.axes);
    if (!outline || !(options.neighbour >= 0.0)) {
        return refused;
    }
    const double reach = outline->longAxis;
    if (!(shape.centre.x >= -reach && shape.centre.y >= -reach && shape.centre.x <= image.width() + reach &&
          shape.centre.y <= image.height() + reach)) {
        refused.flags = kDotNoDot | kDotCut;
        return refused;
    }
    return DotFitter(image, shape, options, *outline).fit();
}

}  // namespace zelm::measure
