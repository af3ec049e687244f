#include "driftFit.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "driftStart.h"
#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr int kMaxSteps = 30;
constexpr int kMaxHalvings = 12;
constexpr double kSmallStep = 1e-5;   // of the change of the distances by a step, root mean square, pixels
constexpr int kReweightings = 20;     // of each kind of weights
constexpr double kTukey = 4.685;      // standard deviations: 95 % efficient (Holland and Welsch 1977)
constexpr double kAgreeing = 4.5;     // standard deviations; noise alone exceeds them once in 150,000 pairs
constexpr double kOfMedian = 1.4826;  // standard deviation of normal noise by the median of magnitudes
constexpr int kRefinements = 3;
constexpr double kMaxLeverages = 6.0;  // of the mean one
constexpr double kMaxLeverage = 0.6;
constexpr double kMinDeviation = 1e-9;  // pixels; distances of exact pairs are rounding
constexpr DriftMask kAllParts{true, true, true, true, true};

struct Normal {
    Matrix<kDriftParts> N{};
    Drift right{};
    double squares = 0.0;
    double plainSquares = 0.0;
};

// Sums of what pairs share: its part of the distances, and of their derivatives.
struct SharedSums {
    ByCalibration value{};
    std::array<ByCalibration, kDriftParts> byDrift{};

    void add(const ByCalibration& q, const SignedDistance& d) {
        for (std::size_t i = 0; i < q.size(); ++i) {
            value[i] += q[i] * d.value;
            for (std::size_t k = 0; k < kDriftParts; ++k) {
                byDrift[k][i] += q[i] * d.byDrift[k];
            }
        }
    }

    void takeFrom(Normal& sums) const {
        const auto product = [](const ByCalibration& a, const ByCalibration& b) {
            return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
        };
        sums.squares = std::max(sums.squares - product(value, value), 0.0);
        for (std::size_t j = 0; j < kDriftParts; ++j) {
            sums.right[j] += product(byDrift[j], value);
            for (std::size_t k = j; k < kDriftParts; ++k) {
                sums.N[j][k] -= product(byDrift[j], byDrift[k]);
            }
        }
    }
};

class DriftSolver {
public:
    // Pairs that share errors have no other weights.
    DriftSolver(const EpipolarModel& used, const std::vector<RayPair>& given, const DriftMask& estimated,
                const SharedErrors& sharedByPairs)
        : model(used),
          pairs(given),
          shared(sharedByPairs),
          residuals(given.size()),
          mask(estimated),
          weights(given.size(), 1.0) {}

    // One step of Gauss and Newton, halved until it helps; false when it changes next to nothing.
    bool step() {
        const Normal here = normal(drift);
        Drift change{};
        if (!solved(here, change)) {
            isDetermined = false;
            return false;
        }
        double gain = 0.0;  // of the squares, as far as they are linear
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            gain += change[k] * here.right[k];
        }
        if (!(gain > kSmallStep * kSmallStep * totalWeight())) {
            return false;
        }
        for (int halving = 0; halving < kMaxHalvings; ++halving) {
            Drift next = drift;
            for (std::size_t k = 0; k < kDriftParts; ++k) {
                next[k] += change[k];
            }
            if (normal(next).squares <= here.squares) {
                drift = next;
                return true;
            }
            for (double& c : change) {
                c *= 0.5;
            }
        }
        return false;
    }

    void converge() {
        for (int i = 0; i < kMaxSteps && step(); ++i) {
        }
    }

    // Steps with Tukey's weights, which are made of the distances anew each time: wrong pairs have none.
    void reweight() {
        for (int i = 0; i < kReweightings; ++i) {
            normal(drift);
            const double limit = kTukey * deviationNow();
            for (std::size_t k = 0; k < pairs.size(); ++k) {
                const double part = residuals[k] / limit;
                weights[k] = std::fabs(part) < 1.0 ? std::pow(1.0 - part * part, 2.0) : 0.0;
            }
            if (!step()) {
                break;
            }
        }
        normal(drift);
    }

    double deviationNow() const {
        std::vector<double> magnitudes(residuals.size());
        std::transform(residuals.begin(), residuals.end(), magnitudes.begin(), [](double r) { return std::fabs(r); });
        const double n = static_cast<double>(pairs.size());
        const double freedom = std::max(n - static_cast<double>(kDriftParts), 1.0);
        return std::max(kOfMedian * median(std::move(magnitudes)) * std::sqrt(n / freedom), kMinDeviation);
    }

    // Least squares over the pairs that agree, which are told anew: those within the limit of their standard deviation
    // whose leverage is not too large. A pair of the latter kind would be believed whatever it says, and a wrong match
    // easily is one, as no other has its depth.
    void refine() {
        std::vector<bool> agree = within(deviationNow());
        for (int pass = 0; pass < kRefinements; ++pass) {
            std::transform(agree.begin(), agree.end(), weights.begin(), [](bool is) { return is ? 1.0 : 0.0; });
            converge();
            const Normal here = normal(drift);
            const double freedom = std::max(totalWeight() - static_cast<double>(kDriftParts), 1.0);
            agree = within(std::max(std::sqrt(here.squares / freedom), kMinDeviation));
            leaveOutLevers(here, agree);
        }
        agreeing = std::move(agree);
    }

    DriftFit result() {
        const Normal end = normal(drift);
        DriftFit fit{drift, end.squares, end.plainSquares, {}, isDetermined};
        Matrix<kDriftParts> U = masked(end.N);
        fit.isDetermined = fit.isDetermined && factor(U);
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            if (mask[k] && fit.isDetermined) {
                Drift e{};
                e[k] = 1.0;
                fit.cofactors[k] = solve(U, e)[k];
            }
        }
        return fit;
    }

    Drift drift{};
    std::vector<bool> agreeing;
    bool isDetermined = true;

private:
    Normal normal(const Drift& at) {
        const DriftedPair drifted = model.at(at);
        Normal sums;
        SharedSums common;
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            const SignedDistance d = drifted.distance(pairs[i]);
            residuals[i] = d.value;
            const double w = weights[i];
            sums.squares += w * d.value * d.value;
            for (std::size_t j = 0; j < kDriftParts; ++j) {
                sums.right[j] -= w * d.byDrift[j] * d.value;
                for (std::size_t k = j; k < kDriftParts; ++k) {
                    sums.N[j][k] += w * d.byDrift[j] * d.byDrift[k];
                }
            }
            if (!shared.empty()) {
                common.add(shared[i], d);
            }
        }
        sums.plainSquares = sums.squares;
        common.takeFrom(sums);
        return sums;
    }

    std::vector<bool> within(double deviation) const {
        std::vector<bool> is(pairs.size());
        std::transform(residuals.begin(), residuals.end(), is.begin(),
                       [&](double r) { return std::fabs(r) <= kAgreeing * deviation; });
        return is;
    }

    void leaveOutLevers(const Normal& here, std::vector<bool>& agree) const {
        Matrix<kDriftParts> U = masked(here.N);
        if (!factor(U)) {
            return;
        }
        const double max = std::min(kMaxLeverages * static_cast<double>(kDriftParts) / totalWeight(), kMaxLeverage);
        const DriftedPair drifted = model.at(drift);
        for (std::size_t i = 0; i < pairs.size(); ++i) {
            const Drift row = drifted.distance(pairs[i]).byDrift;
            const Drift solved = solve(U, row);
            double leverage = 0.0;
            for (std::size_t k = 0; k < kDriftParts; ++k) {
                leverage += row[k] * solved[k];
            }
            leverage = weights[i] > 0.0 ? leverage : leverage / (1.0 + leverage);
            agree[i] = agree[i] && leverage <= max;
        }
    }

    // Rows and columns of parts that are held become those of the unit matrix.
    Matrix<kDriftParts> masked(Matrix<kDriftParts> N) const {
        for (std::size_t j = 0; j < kDriftParts; ++j) {
            for (std::size_t k = j; k < kDriftParts; ++k) {
                if (!mask[j] || !mask[k]) {
                    N[j][k] = j == k ? 1.0 : 0.0;
                }
            }
        }
        return N;
    }

    bool solved(const Normal& sums, Drift& change) const {
        Matrix<kDriftParts> U = masked(sums.N);
        Drift right = sums.right;
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            right[k] = mask[k] ? right[k] : 0.0;
        }
        if (!std::isfinite(sums.squares) || !factor(U)) {
            return false;
        }
        change = solve(U, right);
        return std::all_of(change.begin(), change.end(), [](double c) { return std::isfinite(c); });
    }

    double totalWeight() const {
        double total = 0.0;
        for (const double w : weights) {
            total += w;
        }
        return total;
    }

    const EpipolarModel& model;
    const std::vector<RayPair>& pairs;
    const SharedErrors& shared;
    std::vector<double> residuals;  // of the latest drift that was tried
    DriftMask mask;
    std::vector<double> weights;
};

}  // namespace

DriftFit fitDrift(const EpipolarModel& model, const std::vector<RayPair>& pairs, const DriftMask& mask,
                  const SharedErrors& shared) {
    DriftSolver solver(model, pairs, mask, shared);
    solver.converge();
    return solver.result();
}

std::vector<bool> agreeingPairs(const EpipolarModel& model, const std::vector<RayPair>& pairs) {
    const SharedErrors nothing;
    DriftSolver solver(model, pairs, kAllParts, nothing);
    solver.drift = startDrift(model, pairs);
    solver.reweight();
    solver.refine();
    return std::move(solver.agreeing);
}

}  // namespace zelm::measure
