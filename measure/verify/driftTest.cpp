#include "driftTest.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

#include "significance.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kMinPairs = 30;
constexpr std::size_t kMinGood = 24;    // of these, left when wrong ones are out
constexpr double kMinSpread = 0.02;     // of the image's diagonal: RMS of the pairs across their narrowest direction
constexpr double kMinAgreeing = 0.5;    // part of the pairs
constexpr double kMaxNoise = 5.0;       // pixels; no match is so bad, but those of another rig are
constexpr double kMinVariance = 1e-18;  // pixels^2; exact pairs
constexpr double kMinNoise = 1e-4;      // pixels, beside a calibration's covariance; less only swamps the sums
constexpr double kTests = 6.0;          // explanations that are tried
constexpr double kLackOfFit = 1e-3;     // probability below which one part alone is too little
constexpr double kAboutAsWell = 16.0;   // variances by which another part's sum of squares may be larger
constexpr std::ptrdiff_t kTurns = 3;    // the parts that are turns come first
constexpr double kPower = 1.2816;       // standard deviations that hold 9 of 10

// Root of the smaller eigenvalue of the scatter of the left pixels.
double spreadOf(const std::vector<PixelPair>& pairs, const std::vector<std::int32_t>& statuses) {
    double n = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (statuses[i] == 1) {
            const Point2d p = pairs[i].left;
            n += 1.0;
            x += p.x;
            y += p.y;
            xx += p.x * p.x;
            xy += p.x * p.y;
            yy += p.y * p.y;
        }
    }
    const double a = xx / n - x * x / (n * n);
    const double b = xy / n - x * y / (n * n);
    const double d = yy / n - y * y / (n * n);
    return std::sqrt(std::max(0.5 * (a + d) - std::hypot(0.5 * (a - d), b), 0.0));
}

std::string rounded(double pixels) {
    return std::to_string(static_cast<long long>(std::lround(std::min(pixels, 1e9))));
}

class DriftTester {
public:
    DriftTester(const Rig& calibrated, const std::vector<PixelPair>& given, const DriftOptions& asked)
        : rig(calibrated), pairs(given), options(asked), model(rig) {
        verdict.statuses.assign(pairs.size(), -1);
    }

    DriftVerdict test() {
        chooseGood();
        refuseNarrow();
        fitAll();
        judge();
        compare();
        return std::move(verdict);
    }

private:
    void chooseGood() {
        std::vector<RayPair> usable;
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            if (const auto rays = model.rays(pairs[i].left, pairs[i].right)) {
                usable.push_back(*rays);
                places.push_back(i);
            }
        }
        requirePairs(usable.size(), usable.size());
        const std::vector<bool> agree = agreeingPairs(model, usable);
        for (std::size_t k = 0; k < usable.size(); ++k) {
            verdict.statuses[places[k]] = agree[k] ? 1 : 0;
            if (agree[k]) {
                good.push_back(usable[k]);
            }
        }
        requirePairs(good.size(), usable.size());
        verdict.drift.used = static_cast<std::int64_t>(good.size());
        verdict.drift.wrong = static_cast<std::int64_t>(usable.size() - good.size());
        verdict.drift.unusable = static_cast<std::int64_t>(pairs.size() - usable.size());
    }

    void requirePairs(std::size_t count, std::size_t usable) const {
        if (static_cast<double>(count) < kMinAgreeing * static_cast<double>(usable)) {
            refuseForeign();
        }
        if (count < kMinGood || usable < kMinPairs) {
            refuse("only " + std::to_string(count) + " of " + std::to_string(pairs.size()) +
                   " pixel pairs can be used, and drift takes " + std::to_string(kMinPairs) +
                   ": give more, from all over the images");
        }
    }

    [[noreturn]] static void refuseForeign() {
        refuse(
            "no turn or shift of a camera explains these pixel pairs: are left and right exchanged, is this the "
            "calibration of other cameras, or are most matches wrong?");
    }

    void refuseNarrow() const {
        const double spread = spreadOf(pairs, verdict.statuses);
        if (!(spread > kMinSpread * std::hypot(rig.left.width, rig.left.height))) {
            refuseNarrow(spread);
        }
    }

    [[noreturn]] static void refuseNarrow(double spread) {
        refuse("the pixel pairs lie in one place or in a row (" + rounded(spread) +
               " pixels across, RMS): give pairs from all over the images");
    }

    void fitAll() {
        const DriftFit plain = fitTogether({});
        const double n = static_cast<double>(good.size());
        const bool isKnown = options.noise > 0.0;
        const double freedom = n - static_cast<double>(kDriftParts);
        ZelmMeasureDrift& d = verdict.drift;
        d.noise = isKnown ? options.noise : std::sqrt(plain.squares / freedom);
        d.freedom = testFreedom = isKnown ? 0.0 : freedom;
        d.rmsAll = std::sqrt(plain.squares / n);
        if (d.rmsAll > kMaxNoise) {
            refuseForeign();
        }
        double noise = d.noise;
        SharedErrors shared;
        if (rig.covariance) {
            noise = std::max(noise, kMinNoise);
            shared = sharedErrors(model, good, *rig.covariance, noise);
            d.covariance = 1;
            if (rig.covariance->freedom > 0.0) {
                testFreedom = isKnown ? rig.covariance->freedom : std::min(freedom, rig.covariance->freedom);
            }
        }
        all = rig.covariance ? fitTogether(shared) : plain;
        none = fitDrift(model, good, {}, shared);
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            DriftMask mask{};
            mask[k] = true;
            singles[k] = fitDrift(model, good, mask, shared);
        }
        d.rms = std::sqrt(none.plainSquares / n);
        // What the stated error adds to the variance of a part of full effect: as if every pair had it.
        variance = std::max(noise * noise + n * options.calibrationError * options.calibrationError, kMinVariance);
    }

    DriftFit fitTogether(const SharedErrors& shared) const {
        const DriftFit fit = fitDrift(model, good, {true, true, true, true, true}, shared);
        if (!fit.isDetermined) {
            refuseNarrow(spreadOf(pairs, verdict.statuses));
        }
        return fit;
    }

    // Probability of a sum of squares that `count` parts take away.
    double probabilityOf(double squares, double count) const {
        return squaresTail(std::max(squares, 0.0) / variance, count, testFreedom);
    }

    void judge() {
        ZelmMeasureDrift& d = verdict.drift;
        const double needed = std::sqrt(squareOfTail(options.level / kTests, testFreedom)) + kPower;
        double least = probabilityOf(none.squares - all.squares, static_cast<double>(kDriftParts));
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            ZelmMeasureDriftSingle& s = d.singles[k];
            s.value = singles[k].drift[k];
            s.deviation = std::sqrt(variance * singles[k].cofactors[k]);
            s.probability = probabilityOf(none.squares - singles[k].squares, 1.0);
            s.rms = std::sqrt(singles[k].plainSquares / static_cast<double>(good.size()));
            s.detectable = needed * s.deviation;
            d.all[k] = all.drift[k];
            d.allDeviations[k] = std::sqrt(variance * all.cofactors[k]);
            least = std::min(least, s.probability);
        }
        d.probability = std::min(1.0, kTests * least);
        d.found = d.probability < options.level ? 1 : 0;
        std::copy(model.across().begin(), model.across().end(), d.across);
        std::copy(model.along().begin(), model.along().end(), d.along);
    }

    void compare() {
        ZelmMeasureDrift& d = verdict.drift;
        const auto isBetter = [](const DriftFit& a, const DriftFit& b) { return a.squares < b.squares; };
        const auto begin = singles.begin();
        // A mount gives way to a turn sooner than to a shift: where both explain the distances, the turn is named.
        const auto turn = std::min_element(begin, begin + kTurns, isBetter);
        const auto any = std::min_element(begin, singles.end(), isBetter);
        const bool isTurn = (turn->squares - any->squares) / variance < kAboutAsWell;
        const auto best = static_cast<std::size_t>((isTurn ? turn : any) - begin);
        d.best = static_cast<std::int32_t>(best);
        const double others = static_cast<double>(kDriftParts - 1);
        d.isSingle = probabilityOf(singles[best].squares - all.squares, others) > kLackOfFit ? 1 : 0;
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            if (k != best && (singles[k].squares - singles[best].squares) / variance < kAboutAsWell) {
                d.alternatives |= 1 << k;
            }
        }
    }

    const Rig& rig;
    const std::vector<PixelPair>& pairs;
    DriftOptions options;
    EpipolarModel model;
    std::vector<RayPair> good;
    DriftFit none;
    DriftFit all;
    std::array<DriftFit, kDriftParts> singles;
    double variance = 0.0;
    double testFreedom = 0.0;  // of the variance: the least of the noise's and the calibration's
    DriftVerdict verdict;
};

}  // namespace

DriftVerdict testDrift(const Rig& rig, const std::vector<PixelPair>& pairs, const DriftOptions& options) {
    return DriftTester(rig, pairs, options).test();
}

}  // namespace zelm::measure
