#include "checkWords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace zelm::measure {
namespace {

constexpr double kGreatest = 1e9;  // that is written

std::string fixed(double value, int decimals) {
    std::array<char, 48> text{};
    const double bounded = std::isfinite(value) ? std::clamp(value, -kGreatest, kGreatest) : 0.0;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), bounded, std::chars_format::fixed, decimals);
    return {text.data(), end.ptr};
}

// Decimals that show two digits of a number.
int decimalsOf(double number) {
    constexpr int kMost = 9;
    if (!(number > 0.0) || !std::isfinite(number)) {
        return 3;
    }
    return std::clamp(1 - static_cast<int>(std::floor(std::log10(number))), 0, kMost);
}

std::string twoDigits(double number) {
    return fixed(number, decimalsOf(std::fabs(number)));
}

std::string estimate(double value, double deviation) {
    const int decimals = decimalsOf(deviation > 0.0 ? deviation : std::fabs(value));
    return deviation > 0.0 ? fixed(value, decimals) + " +- " + fixed(deviation, decimals) : fixed(value, decimals);
}

std::string units(double value, double deviation) {
    return estimate(std::fabs(value), deviation) + " plate units";
}

// What follows a flaw that does not matter, or one that does.
std::string effect(const Check& check, const std::string& remedy) {
    const std::string moves =
        check.shift > 0.0 ? "moves points by up to " + twoDigits(check.shift) + " plate units" : "";
    if (check.verdict == CheckVerdict::wrong) {
        return " and " + moves + ": " + remedy;
    }
    return moves.empty() ? ": " + remedy
                         : ", which " + moves + ", less than their uncertainty; to be rid of it, " + remedy;
}

std::string halves(const Check& check) {
    const std::string difference = twoDigits(check.value) + " plate units";
    const std::string rig = check.isPair ? "rig" : "camera";
    switch (check.verdict) {
        case CheckVerdict::fine:
            return "two halves of the views give the same " + rig + ": points of the two differ by no more than " +
                   difference + ", as chance makes them";
        case CheckVerdict::undone:
            return "two halves of the views cannot be compared: take at least 6 views, so that three determine a " +
                   rig;
        case CheckVerdict::notable:
            return "two halves of the views give " + rig + "s whose points differ by up to " + difference +
                   ", beyond chance but less than the uncertainty of a point; the other checks may say why";
        case CheckVerdict::wrong:
            break;
    }
    return "two halves of the views give " + rig + "s whose points differ by up to " + difference +
           ", more than the uncertainty of a point: mend what the other checks name; if they name nothing, focus, "
           "temperature or a camera's place changed between the views, so take them anew";
}

std::string lensFlaw(const Check& check) {
    switch (check.group) {
        case kRadial:
            return "radial distortion of higher order, k3 = " + estimate(check.coefficient, check.coefficientSigma);
        case kDecentring:
            return "decentring of the lens elements";
        case kPrism:
            return "a sensor or a plane element that is tilted against the lens";
        default:
            return "a pattern that no usual distortion makes";
    }
}

std::string lensRemedy(LensGroup group) {
    switch (group) {
        case kRadial:
            return "use a lens with less distortion, or measure in the middle of the image alone";
        case kPattern:
            return "check the plate's dots and the light on them, what stands before the lens, and the lens";
        default:
            return "use a better centred lens, mount it straight, or measure in the middle of the image alone";
    }
}

std::string lens(const Check& check) {
    const std::string camera = !check.isPair         ? "the camera"
                               : check.side == kLeft ? "the left camera"
                                                     : "the right camera";
    const std::string size = estimate(check.value, check.deviation) + " px RMS";
    switch (check.verdict) {
        case CheckVerdict::undone:
            return camera + "'s lens model cannot be checked: take views that cover more of the image";
        case CheckVerdict::fine:
            return camera + "'s lens model fits: its residuals show no pattern beyond chance";
        default:
            return camera + "'s lens model does not fit all of the image: its residuals show " + lensFlaw(check) +
                   " (" + size + ")" + effect(check, lensRemedy(check.group));
    }
}

std::string bow(const Check& check) {
    const std::string size = units(check.value, check.deviation);
    switch (check.verdict) {
        case CheckVerdict::undone:
            return "whether the plate is flat cannot be checked: take views that differ more in tilt";
        case CheckVerdict::fine:
            return "the plate is flat: its corners are bent by " + size;
        default:
            break;
    }
    const std::string bent = "the plate is bent by " + size + " at its corners";
    return check.isEstimated
               ? bent + ", which the calibration takes into account"
               : bent + effect(check,
                               "measure where its dots are, estimate the bow along with the calibration, or use "
                               "a stiffer plate");
}

std::string moved(const Check& check) {
    const std::string view = "view " + std::to_string(check.view);
    if (!check.leftOut.empty()) {
        const std::string found = check.value > 0.0 || check.turnDegrees > 0.0
                                      ? " (moved by " + twoDigits(check.value) + " plate units, turned by " +
                                            twoDigits(check.turnDegrees) + " degrees)"
                                      : "";
        return view + " takes no part: " + check.leftOut + found + "; take it anew";
    }
    if (check.verdict == CheckVerdict::undone) {
        return "whether something moved between the exposures of a view cannot be checked: no view has enough dots in "
               "both images";
    }
    const std::string motion = units(check.value, check.deviation) + " and turned by " +
                               estimate(check.turnDegrees, check.turnDeviation) + " degrees";
    if (check.verdict == CheckVerdict::fine) {
        return "nothing moved between the two exposures of a view beyond chance; most in " + view + ", by " + motion;
    }
    return "the plate of " + view + ", or a camera, moved by " + motion + " between its two exposures" +
           effect(check, "take the view anew or leave it out, and expose both cameras at once");
}

std::string pitch(const Check& check) {
    const std::string ratio = estimate(1.0 + check.value, check.deviation);
    const std::string blind = "; a wrong size of the whole plate cannot be seen here, but by a known length alone";
    switch (check.verdict) {
        case CheckVerdict::undone:
            return "the ratio of the plate's pitches cannot be checked: take views with more tilts and rolls" + blind;
        case CheckVerdict::fine:
            return "the plate's pitches have the stated ratio, times " + ratio + blind;
        default:
            return "the ratio of the pitches disagrees with the images by " +
                   twoDigits(100.0 * std::fabs(check.value)) + " %: the plate's pitch along x over that along y is " +
                   ratio + " times the stated one" +
                   effect(check, "measure both pitches and correct the plate's description") + blind;
    }
}

std::string diameter(const Check& check) {
    const std::string dots = check.kind == CheckKind::dotDiameter ? "the plain dots" : "the markers";
    const std::string change = estimate(100.0 * std::fabs(check.value), 100.0 * check.deviation) + " % " +
                               (check.value < 0.0 ? "smaller" : "larger") + " than stated";
    switch (check.verdict) {
        case CheckVerdict::undone:
            return "the diameter of " + dots + " cannot be checked: refine the dots on their images";
        case CheckVerdict::fine:
            return dots + " have the stated diameter: they are " + change;
        default:
            break;
    }
    const std::string found = dots + " are " + change;
    if (check.isEstimated) {
        return found + ", which the calibration takes into account";
    }
    return check.verdict == CheckVerdict::wrong
               ? found +
                     ": correct their diameter in the plate's description, or estimate it along with the calibration"
               : found + ", too little to matter";
}

}  // namespace

std::string wordsOf(const Check& check) {
    switch (check.kind) {
        case CheckKind::halves:
            return halves(check);
        case CheckKind::lens:
            return lens(check);
        case CheckKind::bow:
            return bow(check);
        case CheckKind::moved:
            return moved(check);
        case CheckKind::pitch:
            return pitch(check);
        case CheckKind::dotDiameter:
        case CheckKind::markerDiameter:
            break;
    }
    return diameter(check);
}

}  // namespace zelm::measure
