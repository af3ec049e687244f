#include "rigComparison.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

#include "failure.h"
#include "numberText.h"
#include "rigFile.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMinProbability = 0.001;  // below that chance is no explanation

ZelmMeasureCompareOptions libraryOptions(const std::string& depths) {
    ZelmMeasureCompareOptions options{};
    options.size = sizeof(options);
    if (!depths.empty()) {
        const std::vector<double> n = numbersOf(depths);
        if (n.size() != 2 || !(n[0] > 0.0) || !(n[1] > n[0])) {
            failUsage("--depths {}: expected nearest,farthest, above 0 and rising", depths);
        }
        options.nearest = n[0];
        options.farthest = n[1];
    }
    return options;
}

double lengthOf(const double* v) {
    return std::hypot(v[0], v[1], v[2]);
}

std::string imageText(const char* side, const ZelmMeasureImageDifference& d) {
    return fmt::format("\n{:<12}{:>10.4f}{:>10.4f}  {:<16}{:>12.4f}{:>12.5f}", side, d.rms, d.worst,
                       fmt::format("({:.0f}, {:.0f})", d.worstAt[0], d.worstAt[1]), d.unturned,
                       lengthOf(d.turn) * kDegreesPerRadian);
}

// "1 : 43000"; nothing to speak of when the two agree to rounding.
std::string partText(double part) {
    constexpr double kRounding = 1e-12;
    return std::abs(part) > kRounding ? fmt::format("1 : {:.0f}", 1.0 / std::abs(part)) : "none";
}

std::string volumeText(const ZelmMeasureVolumeDifference& v, const std::string& units) {
    return fmt::format(
        "volume: {} points at depths {:.6g} to {:.6g}, the same pixels by both\n"
        "points               RMS {:.5f}, worst {:.5f} {}\n"
        "  rigid motion out   RMS {:.5f}, worst {:.5f}, at ({:.1f}, {:.1f}, {:.1f}) before the left camera\n"
        "lengths              {:+.1f} ppm in the mean; RMS {}, worst {}",
        v.count, v.nearest, v.farthest, v.rms, v.worst, units, v.alignedRms, v.alignedWorst, v.worstAt[0], v.worstAt[1],
        v.worstAt[2], 1e6 * v.scale, partText(v.lengthRms), partText(v.lengthWorst));
}

std::string covarianceText(const ZelmMeasureComparison& c) {
    if (c.covariances == 0) {
        return "no covariance beside either: whether that is chance is not known";
    }
    return fmt::format("by the covariance of {}: chi-square {:.1f} of {} parameters, p = {:.2g}: {}",
                       c.covariances == 2 ? "both" : "one", c.chiSquare, c.freedom, c.probability,
                       c.probability < kMinProbability ? "more than they tell of independent calibrations"
                                                       : "no more than they tell of independent calibrations");
}

std::string comparisonText(const ZelmMeasureComparison& c, const std::string& units) {
    std::string text = fmt::format("{:<12}{:>10}{:>10}  {:<16}{:>12}{:>12}", "image, px", "RMS", "worst", "at",
                                   "before turn", "turn, deg");
    text += imageText("left", c.left) + imageText("right", c.right);
    text += fmt::format("\nright camera against left one: turned by {:.5f} deg, shifted by {:.5f} {}\n",
                        lengthOf(c.pairTurn) * kDegreesPerRadian, lengthOf(c.pairShift), units);
    text += fmt::format("baseline {:+.5f} {}\n", c.baseline, units);
    return text + volumeText(c.volume, units) + "\n" + covarianceText(c);
}

Json imageJson(const ZelmMeasureImageDifference& d) {
    return {{"rms", d.rms}, {"worst", d.worst}, {"worstAt", d.worstAt}, {"beforeTurn", d.unturned}, {"turn", d.turn}};
}

Json comparisonJson(const ZelmMeasureComparison& c, const std::string& units) {
    const ZelmMeasureVolumeDifference& v = c.volume;
    Json json{{"units", units}, {"left", imageJson(c.left)}, {"right", imageJson(c.right)}};
    json["pair"] = {{"turn", c.pairTurn}, {"shift", c.pairShift}, {"baseline", c.baseline}};
    json["volume"] = {{"points", v.count},
                      {"depths", {v.nearest, v.farthest}},
                      {"rms", v.rms},
                      {"worst", v.worst},
                      {"alignedRms", v.alignedRms},
                      {"alignedWorst", v.alignedWorst},
                      {"alignedWorstAt", v.worstAt},
                      {"scale", v.scale},
                      {"lengthRms", v.lengthRms},
                      {"lengthWorst", v.lengthWorst}};
    json["covariances"] = c.covariances;
    if (c.covariances > 0) {
        json["chiSquare"] = c.chiSquare;
        json["freedom"] = c.freedom;
        json["probability"] = c.probability;
    }
    return json;
}

// The calibrations count in one unit; where one does not tell it, that of the other.
std::string unitsOf(const LoadedRig& a, const LoadedRig& b) {
    if (a.summary.hasUnits() && b.summary.hasUnits() && a.units != b.units) {
        failData("{} and {}: one counts in {}, the other in {}: calibrate both with one unit to compare them",
                 a.file.string(), b.file.string(), a.units, b.units);
    }
    return a.summary.hasUnits() ? a.units : b.units;
}

}  // namespace

bool isCalibrationFile(const std::string& bytes) {
    return bytes.substr(0, 4).find('\0') != std::string::npos;
}

void compareRigs(const std::string& first, const std::string& second, const std::string& depths,
                 const Console& console) {
    const ZelmMeasureCompareOptions options = libraryOptions(depths);
    const LoadedRig a = loadRig(first, console);
    const LoadedRig b = loadRig(second, console);
    const std::string units = unitsOf(a, b);
    ZelmMeasureComparison c{};
    c.size = sizeof(c);
    const std::int32_t status = zelmMeasureCompare(a.handle.get(), b.handle.get(), &options, &c);
    std::string remedy = zelmMeasureRigError(a.handle.get());
    if (status < 0) {
        failData("{} and {}: {}{}", first, second, remedy,
                 remedy.ends_with("so name them") ? " with --depths NEAREST,FARTHEST" : "");
    }
    console.say(fmt::format("{} less {}\n{}", second, first, comparisonText(c, units)));
    console.result(comparisonJson(c, units));
}

}  // namespace zelm::tool
