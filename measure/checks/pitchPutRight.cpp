// The checks once a wrong ratio of the plate's pitches is put right.
//
// The score tests are of first order. A ratio that is wrong by parts in a thousand leaves residuals of second order,
// which pass for flaws of lenses and motions of plates. So all is adjusted anew with the ratio that the images tell,
// and the other flaws are looked for there.
#include <algorithm>

#include "adjustmentChecks.h"
#include "fault.h"
#include "flawSearch.h"

namespace zelm::measure {
namespace {

bool isPitch(const Check& check) {
    return check.kind == CheckKind::pitch;
}

bool isHalves(const Check& check) {
    return check.kind == CheckKind::halves;
}

bool isPitchFound(const Check& check) {
    return isPitch(check) && check.verdict != CheckVerdict::undone && check.p < kFalseAlarms;
}

// The adjustment with the pitches that the images tell.
class Restretched {
public:
    explicit Restretched(const CheckedAdjustment& given)
        : adjusted(given), state(*given.state), views(*given.views), summary(*given.summary) {
        adjusted.state = &state;
        adjusted.views = &views;
        adjusted.summary = &summary;
    }

    // The checks when the ratio is right to first order of what is left, which the third time is nothing.
    std::vector<Check> checks(const Check& found) {
        constexpr int kMostTimes = 3;
        Check pitch = found;
        std::vector<Check> list;
        for (int i = 0; i < kMostTimes && isPitchFound(pitch); ++i) {
            stretch(pitch);
            summary = adjust(state, views, *adjusted.options);
            list = firstOrderChecks(adjusted);
            pitch = *std::find_if(list.begin(), list.end(), isPitch);
        }
        ratioOfPitches *= factorOf(pitch.value);
        return list;
    }
    double ratio() const { return ratioOfPitches; }  // along x over along y, times the stated one
    double deviation() const { return deviationOfRatio; }

private:
    // Half of it in each direction, as the equations have it.
    static double factorOf(double value) { return (1.0 + 0.5 * value) / (1.0 - 0.5 * value); }

    void stretch(const Check& pitch) {
        ratioOfPitches *= factorOf(pitch.value);
        deviationOfRatio = pitch.deviation;
        for (AdjustView& view : views) {
            for (auto& list : view.dots) {
                for (DotObservation& dot : list) {
                    dot.place[0] *= 1.0 + 0.5 * pitch.value;
                    dot.place[1] *= 1.0 - 0.5 * pitch.value;
                }
            }
        }
    }

    CheckedAdjustment adjusted;
    AdjustState state;
    std::vector<AdjustView> views;
    AdjustSummary summary;
    double ratioOfPitches = 1.0;
    double deviationOfRatio = 0.0;
};

}  // namespace

std::vector<Check> checksOf(const CheckedAdjustment& adjusted) {
    std::vector<Check> checks = firstOrderChecks(adjusted);
    const auto stated = std::find_if(checks.begin(), checks.end(), isPitchFound);
    if (stated == checks.end()) {
        return checks;
    }
    try {
        Restretched again(adjusted);
        std::vector<Check> others = again.checks(*stated);
        Check pitch = *stated;
        pitch.value = again.ratio() - 1.0;
        pitch.deviation = again.deviation();
        std::replace_if(others.begin(), others.end(), isPitch, pitch);
        // The halves are those of the calibration that is given to the user.
        std::replace_if(others.begin(), others.end(), isHalves, *std::find_if(checks.begin(), checks.end(), isHalves));
        return others;
    } catch (const Fault&) {
        return checks;  // it cannot be adjusted so: what was seen at first stands
    }
}

}  // namespace zelm::measure
