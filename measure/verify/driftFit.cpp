#include "driftFit.h"

#include <algorithm>
#include <cmath>

#include "plateBlobs.h"

namespace zelm::measure {
namespace {

constexpr int kMaxSteps = 30;
constexpr int kMaxHalvings = 12;
constexpr double kSmallStep = 1e-6;     // of the change of the distances by a step, root mean square, pixels
constexpr int kReweightings = 20;       // of each kind of weights
constexpr double kTukey = 4.685;        // standard deviations: 95 % efficient (Holland and Welsch 1977)
constexpr double kAgreeing = 4.5;       // standard deviations; noise alone exceeds them once in 150,000 pairs
constexpr double kOfMedian = 1.4826;    // standard deviation of normal noise by the median of magnitudes
constexpr double kMinDeviation = 1e-9;  // pixels; distances of exact pairs are rounding
constexpr DriftMask kAllParts{true, true, true, true, true};

struct Normal {
    Matrix<kDriftParts> N{};
    Drift right{};
    double squares = 0.0;
};

class DriftSolver {
public:
    DriftSolver(const EpipolarModel& used, const std::vector<RayPair>& given, const DriftMask& estimated)
        : residuals(given.size()), model(used), pairs(given), mask(estimated), weights(given.size(), 1.0) {}

    // One step of Gauss and Newton, halved until it helps; false when it changes nothing any more.
    bool step() {
        const Normal here = normal(drift);
        Drift change{};
        if (!solved(here, change)) {
            isDetermined = false;
            return false;
        }
        for (int halving = 0; halving < kMaxHalvings; ++halving) {
            Drift next = drift;
            for (std::size_t k = 0; k < kDriftParts; ++k) {
                next[k] += change[k];
            }
            if (const Normal there = normal(next); there.squares <= here.squares) {
                drift = next;
                return here.squares - there.squares > kSmallStep * kSmallStep * totalWeight();
            }
            for (double& c : change) {
                c *= 0.5;
            }
        }
        normal(drift);
        return false;
    }

    void converge() {
        for (int i = 0; i < kMaxSteps && step(); ++i) {
        }
    }

    // Steps with weights that are made of the distances anew each time.
    template <class WeightOf>
    void reweight(WeightOf weightOf) {
        normal(drift);
        for (int i = 0; i < kReweightings && isDetermined; ++i) {
            const double deviation = deviationNow();
            for (std::size_t k = 0; k < pairs.size(); ++k) {
                weights[k] = weightOf(std::fabs(residuals[k]) / deviation);
            }
            step();
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

    DriftFit result() {
        const Normal end = normal(drift);
        DriftFit fit{drift, end.squares, {}, {}, isDetermined};
        Matrix<kDriftParts> U = masked(end.N);
        fit.isDetermined = fit.isDetermined && factor(U);
        for (std::size_t k = 0; k < kDriftParts; ++k) {
            fit.effect[k] = std::sqrt(end.N[k][k] / static_cast<double>(pairs.size()));
            if (mask[k] && fit.isDetermined) {
                Drift e{};
                e[k] = 1.0;
                fit.cofactors[k] = solve(U, e)[k];
            }
        }
        return fit;
    }

    Drift drift{};
    std::vector<double> residuals;  // of the latest drift that was tried
    bool isDetermined = true;

private:
    Normal normal(const Drift& at) {
        const DriftedPair drifted = model.at(at);
        Normal sums;
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
        }
        return sums;
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
    DriftMask mask;
    std::vector<double> weights;
};

}  // namespace

DriftFit fitDrift(const EpipolarModel& model, const std::vector<RayPair>& pairs, const DriftMask& mask) {
    DriftSolver solver(model, pairs, mask);
    solver.converge();
    return solver.result();
}

std::vector<bool> agreeingPairs(const EpipolarModel& model, const std::vector<RayPair>& pairs) {
    DriftSolver solver(model, pairs, kAllParts);
    // Least absolute distances find the drift among wrong matches; the other weights leave these out.
    solver.reweight([](double r) { return 1.0 / std::max(r, 0.05); });
    solver.reweight([](double r) { return r < kTukey ? std::pow(1.0 - (r / kTukey) * (r / kTukey), 2.0) : 0.0; });
    const double limit = kAgreeing * solver.deviationNow();
    std::vector<bool> agree(pairs.size());
    std::transform(solver.residuals.begin(), solver.residuals.end(), agree.begin(),
                   [&](double r) { return std::fabs(r) <= limit; });
    return agree;
}

}  // namespace zelm::measure
