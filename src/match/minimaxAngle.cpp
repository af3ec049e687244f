// The minimax angle of a rigid motion: a downhill walk with doubling steps brackets it, golden sections narrow it down
// (Kiefer 1953).

#include <algorithm>
#include <cmath>
#include <utility>

#include "minimaxCost.h"

namespace zelm {
namespace {

constexpr double kFullScale = 100.0;
constexpr double kGoldenShare = 0.38196601125010515;
constexpr double kBracketShare = 1e-09;  // of the ends' magnitudes, below which the bracket is narrow enough
constexpr double kMinBracket = 1e-13;    // degrees; docs/decisions.md#minimax-stop
constexpr double kFullTurn = 360.0;      // degrees, after which a walk that never rises ends

struct Bracket {
    double low;
    double high;
};

class AngleSearch {
public:
    AngleSearch(MinimaxCost& minimaxCost, double startDegrees)
        : cost(minimaxCost), start(startDegrees), best(minimaxCost.at(startDegrees, kFullScale)) {}

    MinimaxProbe run() {
        narrow(walk());
        return best;
    }

private:
    MinimaxProbe at(double degrees) {
        const MinimaxProbe probe = cost.at(degrees, kFullScale);
        if (probe.circle.r < best.circle.r) {
            best = probe;
        }
        return probe;
    }

    Bracket walk() {
        MinimaxProbe lower = best;
        MinimaxProbe behind = at(start + 1.0);
        double step = -1.0;
        if (behind.circle.r < lower.circle.r) {
            std::swap(behind, lower);
            step = 2.0;
        }
        MinimaxProbe ahead = at(lower.degrees + step);
        while (ahead.circle.r < lower.circle.r && std::fabs(ahead.degrees - start) < kFullTurn) {
            behind = lower;
            lower = ahead;
            step *= 2.0;
            ahead = at(lower.degrees + step);
        }
        return {std::min(behind.degrees, ahead.degrees), std::max(behind.degrees, ahead.degrees)};
    }

    void narrow(Bracket bracket) {
        const auto inner = [&bracket] { return kGoldenShare * (bracket.high - bracket.low); };
        MinimaxProbe left = at(bracket.low + inner());
        MinimaxProbe right = at(bracket.high - inner());
        while (!cost.failed() && bracket.high - bracket.low >= narrowEnough(bracket)) {
            if (left.circle.r < right.circle.r) {
                bracket.high = right.degrees;
                right = left;
                left = at(bracket.low + inner());
            } else {
                bracket.low = left.degrees;
                left = right;
                right = at(bracket.high - inner());
            }
        }
    }

    static double narrowEnough(const Bracket& bracket) {
        return std::max((std::fabs(bracket.low) + std::fabs(bracket.high)) * kBracketShare, kMinBracket);
    }

    MinimaxCost& cost;
    double start;
    MinimaxProbe best;
};

}  // namespace

MinimaxProbe minimaxAngle(MinimaxCost& cost, double startDegrees) {
    return AngleSearch(cost, startDegrees).run();
}

}  // namespace zelm
