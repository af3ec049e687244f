#include "driftReport.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

#include "numberText.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kTurns = 3;  // the parts that are turns come first
constexpr std::array<std::string_view, 5> kNames{"turnX", "turnY", "turnZ", "shiftAcross", "shiftAlong"};
constexpr std::array<std::string_view, 5> kWhere{"about its x axis", "about its y axis", "about its z axis",
                                                 "across the baseline and its viewing direction",
                                                 "across the baseline, along its viewing direction"};

bool isTurn(std::size_t part) {
    return part < kTurns;
}

// Degrees of turns.
double toUnits(std::size_t part, double value) {
    return isTurn(part) ? value * kDegreesPerRadian : value;
}

std::string unitOf(const DriftCheck& check, std::size_t part) {
    if (isTurn(part)) {
        return " deg";
    }
    return fmt::format(" {}", check.units.empty() ? "plate units" : check.units.c_str());
}

// "turned by +0.0103 +- 0.0011 deg about its x axis".
std::string moveText(const DriftCheck& check, std::size_t part) {
    const ZelmMeasureDriftSingle& s = check.drift.singles[part];
    return fmt::format("{} by {:+.4f} +- {:.4f}{} {}", isTurn(part) ? "turned" : "shifted", toUnits(part, s.value),
                       toUnits(part, s.deviation), unitOf(check, part), kWhere[part]);
}

std::string allText(const DriftCheck& check) {
    std::string text;
    for (std::size_t part = 0; part < kNames.size(); ++part) {
        text += fmt::format("{}{} {:+.4f} +- {:.4f}{} {}", part == 0 ? "" : ", ", isTurn(part) ? "turned" : "shifted",
                            toUnits(part, check.drift.all[part]), toUnits(part, check.drift.allDeviations[part]),
                            unitOf(check, part), kWhere[part]);
    }
    return text;
}

std::string alternativesText(const DriftCheck& check) {
    std::string text;
    for (std::size_t part = 0; part < kNames.size(); ++part) {
        if ((check.drift.alternatives >> part & 1) != 0) {
            text +=
                fmt::format("\nthe right camera {} would explain these points about as well", moveText(check, part));
        }
    }
    return text;
}

std::string detectableText(const DriftCheck& check) {
    std::string text = "these points show, 9 times out of 10, a right camera that is";
    for (std::size_t part = 0; part < kNames.size(); ++part) {
        text += fmt::format("{}{} {:.2g}{} {}", part == 0 ? " " : ", ", isTurn(part) ? "turned" : "shifted",
                            toUnits(part, check.drift.singles[part].detectable), unitOf(check, part), kWhere[part]);
    }
    return text + "; less than that stays unseen";
}

}  // namespace

std::string driftVerdict(const DriftCheck& check) {
    const ZelmMeasureDrift& d = check.drift;
    if (d.isSingle == 1) {
        return fmt::format("the right camera seems {} since the calibration (p = {:.1g}): calibrate again",
                           moveText(check, static_cast<std::size_t>(d.best)), d.probability);
    }
    return fmt::format(
        "the cameras have moved since the calibration (p = {:.1g}), not by one turn or shift alone; seen from the left "
        "one, the right one seems {}: calibrate again",
        d.probability, allText(check));
}

std::string driftText(const DriftCheck& check) {
    if (!check.refusal.empty()) {
        return fmt::format("drift cannot be told: {}", check.refusal);
    }
    const ZelmMeasureDrift& d = check.drift;
    std::string text = fmt::format(
        "epipolar distances of {} pixel pairs: RMS {:.4f} px, {:.4f} px if the cameras may have moved; noise {:.4f} px "
        "({})",
        d.used, d.rms, d.rmsAll, d.noise, d.freedom > 0.0 ? "estimated" : "given");
    if (d.covariance == 1) {
        text += "\nwhat the errors that the calibration states of itself (rig.zcov) explain counts as chance";
    }
    if (d.wrong > 0 || d.unusable > 0) {
        text += fmt::format("\npixel pairs left out: {} as wrong matches, {} as too far outside", d.wrong, d.unusable);
    }
    if (d.found == 1) {
        text += fmt::format("\n{}{}", driftVerdict(check), d.isSingle == 1 ? alternativesText(check) : std::string());
    } else {
        text += fmt::format("\nno drift of the cameras is seen (p = {:.2g})", d.probability);
    }
    return fmt::format(
        "{}\n{}\npoints alone never show the length of the baseline, which is the scale of all that is measured: known "
        "lengths do",
        text, detectableText(check));
}

Json driftJson(const DriftCheck& check) {
    if (!check.refusal.empty()) {
        return {{"refused", check.refusal}};
    }
    const ZelmMeasureDrift& d = check.drift;
    Json json{{"found", d.found == 1},
              {"probability", d.probability},
              {"used", d.used},
              {"wrong", d.wrong},
              {"unusable", d.unusable},
              {"noise", d.noise},
              {"noiseEstimated", d.freedom > 0.0},
              {"calibrationCovariance", d.covariance == 1},
              {"rms", d.rms},
              {"rmsAll", d.rmsAll}};
    json["best"] = kNames[static_cast<std::size_t>(d.best)];
    json["explainsAlone"] = d.isSingle == 1;
    json["alternatives"] = Json::array();
    for (std::size_t part = 0; part < kNames.size(); ++part) {
        const std::string name(kNames[part]);
        const ZelmMeasureDriftSingle& s = d.singles[part];
        if ((d.alternatives >> part & 1) != 0) {
            json["alternatives"].push_back(name);
        }
        json["alone"][name] = {{"value", toUnits(part, s.value)},
                               {"deviation", toUnits(part, s.deviation)},
                               {"probability", s.probability},
                               {"rms", s.rms},
                               {"detectable", toUnits(part, s.detectable)}};
        json["together"][name] = {{"value", toUnits(part, d.all[part])},
                                  {"deviation", toUnits(part, d.allDeviations[part])}};
    }
    return json;
}

}  // namespace zelm::tool
