#include "flawSearch.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr int kMostFound = 16;

using Directions = std::vector<std::vector<double>>;

std::vector<Flaw> possibleFlaws(const CheckEquations& equations, const AdjustState& state,
                                const AdjustOptions& options) {
    std::vector<Flaw> flaws;
    for (const Side side : {kLeft, kRight}) {
        for (std::size_t group = 0; group < kLensGroups; ++group) {
            Flaw flaw(CheckKind::lens);
            flaw.side = static_cast<int>(side);
            flaw.group = static_cast<LensGroup>(group);
            for (std::size_t term = kLensGroupAt[group]; term < kLensGroupAt[group + 1]; ++term) {
                flaw.candidate.shared.push_back(kWideLens + side * kLensTerms + term);
            }
            flaw.tries = static_cast<double>(kLensGroups);
            flaws.push_back(flaw);
        }
    }
    Flaw bow(CheckKind::bow);
    bow.candidate.shared = {kSharedBow, kSharedBow + 1, kSharedBow + 2};
    bow.isEstimated = options.estimateBow;
    bow.candidate.present.assign(state.bow.b.begin(), state.bow.b.end());
    flaws.push_back(bow);
    Flaw pitch(CheckKind::pitch);
    pitch.candidate.shared = {kWideStretch};
    flaws.push_back(pitch);
    // Both kinds of dots together: the bias of one can pass for the other's.
    Flaw diameters(CheckKind::dotDiameter);
    diameters.candidate.shared = {kSharedFactors, kSharedFactors + 1};
    diameters.candidate.present = {state.factors[kPlainDot] - 1.0, state.factors[kMarkerDot] - 1.0};
    diameters.isEstimated = options.estimateFactors || state.factors != std::array{1.0, 1.0};
    flaws.push_back(diameters);
    const auto views = static_cast<double>(std::count_if(equations.views.begin(), equations.views.end(),
                                                         [](const ViewEquations& view) { return view.seesBoth; }));
    for (std::size_t view = 0; view < equations.views.size(); ++view) {
        if (equations.views[view].seesBoth) {
            Flaw moved(CheckKind::moved);
            moved.candidate.isMotion = true;
            moved.candidate.view = view;
            moved.tries = views;
            flaws.push_back(moved);
        }
    }
    return flaws;
}

std::vector<Candidate> foundBut(const std::vector<Flaw>& flaws, const Flaw* except) {
    std::vector<Candidate> found;
    for (const Flaw& flaw : flaws) {
        if (flaw.isFound && &flaw != except) {
            found.push_back(flaw.candidate);
        }
    }
    return found;
}

// Without the directions that the flaw itself is made of.
Directions without(const Directions& free, const Flaw& flaw) {
    Directions rest;
    for (const auto& direction : free) {
        const bool isOwn = std::any_of(flaw.candidate.shared.begin(), flaw.candidate.shared.end(),
                                       [&](std::size_t i) { return i < direction.size() && direction[i] != 0.0; });
        if (!isOwn) {
            rest.push_back(direction);
        }
    }
    return rest;
}

bool findNext(const CheckEquations& equations, const Directions& free, std::vector<Flaw>& flaws) {
    const ScoreTest tests(equations, free, foundBut(flaws, nullptr));
    Flaw* clearest = nullptr;
    for (Flaw& flaw : flaws) {
        if (flaw.isFound || flaw.isEstimated) {
            continue;
        }
        flaw.result = tests.test(flaw.candidate);
        if (flaw.p() < kFalseAlarms && (clearest == nullptr || flaw.result.evidence > clearest->result.evidence)) {
            clearest = &flaw;
        }
    }
    if (clearest != nullptr) {
        clearest->isFound = true;
    }
    return clearest != nullptr;
}

}  // namespace

double Flaw::p() const {
    return std::min(1.0, result.p * tries * kChecks);
}

std::vector<Flaw> searchFlaws(const CheckEquations& equations, const Directions& free, const AdjustState& state,
                              const AdjustOptions& options) {
    std::vector<Flaw> flaws = possibleFlaws(equations, state, options);
    for (int i = 0; i < kMostFound && findNext(equations, free, flaws); ++i) {
    }
    for (Flaw& flaw : flaws) {
        if (flaw.isFound || flaw.isEstimated) {
            flaw.result = ScoreTest(equations, without(free, flaw), foundBut(flaws, &flaw)).test(flaw.candidate);
        }
    }
    return flaws;
}

}  // namespace zelm::measure
