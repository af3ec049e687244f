// A score test's statistic is chi-square of as many degrees of freedom as it has parameters, non-central where there is
// a flaw: by the flaw's size squared over the variance that its parameters have when they are estimated besides all
// others. No test of the same level sees small flaws of that kind more often.
#include "checkPower.h"

#include <Eigen/Cholesky>
#include <cmath>
#include <cstdio>
#include <vector>

#include "adjustCovariance.h"
#include "flawSearch.h"
#include "flawedCalibration.h"
#include "significance.h"

namespace {

using zelm::measure::Candidate;
using zelmtest::CalibrationFlaws;
namespace measure = zelm::measure;

constexpr double kPower = 0.9;

// A flaw of unit size as its check has it.
struct UnitFlaw {
    const char* words;
    Candidate candidate;
    std::vector<double> direction;
    double tries = 1.0;
    CalibrationFlaws scene;
};

// Of a non-central chi-square beyond x: a mixture of central ones, by Poisson's law (Patnaik, 1949).
double noncentralTail(double x, double freedom, double noncentrality) {
    double weight = std::exp(-0.5 * noncentrality);
    double tail = 0.0;
    for (int j = 0; j < 400; ++j) {
        tail += weight * measure::chiSquareTail(x, freedom + 2.0 * j);
        weight *= 0.5 * noncentrality / (j + 1.0);
    }
    return tail;
}

double bisect(double low, double high, const auto& isBelow) {
    for (int i = 0; i < 60; ++i) {
        const double middle = 0.5 * (low + high);
        (isBelow(middle) ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

double noncentralityNeeded(double freedom, double level) {
    const double limit = bisect(0.0, 200.0, [&](double x) { return measure::chiSquareTail(x, freedom) > level; });
    return bisect(0.0, 200.0, [&](double n) { return noncentralTail(limit, freedom, n) < kPower; });
}

// Non-centrality of the flaw of unit size.
double unitNoncentrality(const UnitFlaw& flaw, std::uint64_t seed) {
    auto calibration = zelmtest::simulate(flaw.scene, seed);
    calibration.takeTruth(flaw.scene.noise);
    const auto equations = measure::checkEquations(calibration.state, calibration.views, calibration.summary);
    const auto free = measure::freeOfShared(calibration.state, calibration.options, equations.otherSeen);
    const auto result = measure::ScoreTest(equations, free, {}).test(flaw.candidate);
    const Eigen::Map<const Eigen::VectorXd> d(flaw.direction.data(), static_cast<Eigen::Index>(flaw.direction.size()));
    return d.dot(result.covariance.ldlt().solve(d));
}

std::vector<UnitFlaw> flaws() {
    using namespace zelm::measure;
    const auto lens = [](Side side, LensGroup group) {
        Candidate candidate;
        for (std::size_t term = kLensGroupAt[group]; term < kLensGroupAt[group + 1]; ++term) {
            candidate.shared.push_back(kWideLens + side * kLensTerms + term);
        }
        return candidate;
    };
    const auto motion = [](const char* words, std::size_t axis) {
        UnitFlaw flaw{words, {}, std::vector<double>(6, 0.0), 12.0, {}};
        flaw.candidate.isMotion = true;
        flaw.candidate.view = 4;
        flaw.direction[3 + axis] = 1.0;
        return flaw;
    };
    CalibrationFlaws corners;
    corners.reachesCorners = true;
    CalibrationFlaws wide;
    wide.isWide = true;
    return {{"k3, left", lens(kLeft, kRadial), {1.0}, kLensGroups, {}},
            {"k3, left, plates reach the corners", lens(kLeft, kRadial), {1.0}, kLensGroups, corners},
            {"k3, left, lenses of twice the angle", lens(kLeft, kRadial), {1.0}, kLensGroups, wide},
            {"decentring p1, right", lens(kRight, kDecentring), {1.0, 0.0}, kLensGroups, {}},
            {"bow as of a sphere, at half the diagonal",
             {{kSharedBow, kSharedBow + 1, kSharedBow + 2}, false, 0, {}},
             {1.0, 0.0, 1.0},
             1.0,
             {}},
            {"pitch ratio less 1", {{kWideStretch}, false, 0, {}}, {1.0}, 1.0, {}},
            {"factor of all diameters less 1, not measured",
             {{kSharedFactors, kSharedFactors + 1}, false, 0, {}},
             {1.0, 1.0},
             1.0,
             {}},
            motion("a view moved along the right camera's x", 0),
            motion("a view moved along the right camera's y", 1),
            motion("a view moved along the right camera's z", 2)};
}

}  // namespace

void printCheckPower(int draws) {
    std::printf(
        "| flaw | parameters tested | non-centrality found 9 times out of 10 | of a flaw of | so many deviations |\n"
        "|---|---:|---:|---:|---:|\n");
    for (const UnitFlaw& flaw : flaws()) {
        const auto freedom = static_cast<double>(flaw.direction.size());
        const double level = measure::kFalseAlarms / (measure::kChecks * flaw.tries);
        const double needed = noncentralityNeeded(freedom, level);
        double size = 0.0;
        for (int draw = 1; draw <= draws; ++draw) {
            size += std::sqrt(needed / unitNoncentrality(flaw, static_cast<std::uint64_t>(draw))) / draws;
        }
        std::printf("| %s | %.0f | %.1f | %.2g | %.1f |\n", flaw.words, freedom, needed, size, std::sqrt(needed));
        std::fflush(stdout);
    }
}
