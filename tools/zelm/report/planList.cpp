#include "planList.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string_view>

#include "numberText.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kLevelTilt = 0.5;  // degrees, below which a plate stands straight
constexpr double kMiddle = 0.2;     // of half of the volume, that is still its middle
constexpr double kSameDistance = 1.0 / 3.0;

// By the tilt's direction from right through down, in eighths of a turn.
struct TiltWords {
    std::string_view to;
    std::string_view axis;  // that the plate is turned about
};
constexpr std::array<TiltWords, 8> kTilts{{{"to the right", "the upright axis"},
                                           {"to the lower right", "the diagonal from lower left to upper right"},
                                           {"downwards", "the level axis"},
                                           {"to the lower left", "the diagonal from upper left to lower right"},
                                           {"to the left", "the upright axis"},
                                           {"to the upper left", "the diagonal from lower left to upper right"},
                                           {"upwards", "the level axis"},
                                           {"to the upper right", "the diagonal from upper left to lower right"}}};

constexpr std::string_view kLegend =
    "Left, right, up and down are those of the images. Distances are from midway between the cameras to the\n"
    "plate's corner marker. Tilted to the right: the plate's face looks to the right, its right edge is farther\n"
    "away than its left one; tilted upwards: the face looks up, the upper edge is farther away. Upright: the x\n"
    "marker is to the right of the corner marker; a quarter turn: it is below it. A few degrees and a few per\n"
    "cent of the distance more or less do not matter.";

// From -1 to 1 within the volume.
double within(const PlanList& list, const ZelmMeasurePlanView& view, std::size_t axis) {
    const double half = 0.5 * list.options.extent[axis];
    return half > 0.0 ? (view.position[axis] - list.options.centre[axis]) / half : 0.0;
}

std::string placeWords(const PlanList& list, const ZelmMeasurePlanView& view) {
    const double x = within(list, view, 0);
    const double y = within(list, view, 1);
    const std::string_view across = x < -kMiddle ? "left" : x > kMiddle ? "right" : "";
    const std::string_view up = y < -kMiddle ? "upper" : y > kMiddle ? "lower" : "";
    if (across.empty()) {
        return up.empty() ? "middle" : fmt::format("{} middle", up);
    }
    return up.empty() ? std::string(across) : fmt::format("{} {}", up, across);
}

std::string distanceWords(const PlanList& list, const ZelmMeasurePlanView& view) {
    const double z = within(list, view, 2);
    return z < -kSameDistance ? "near" : z > kSameDistance ? "far" : "halfway";
}

// "55 mm left, 40 mm up, "
std::string offsetWords(const PlanList& list, const ZelmMeasurePlanView& view) {
    std::string text;
    const auto add = [&](double offset, std::string_view less, std::string_view more) {
        if (std::lround(std::fabs(offset)) != 0) {
            text += fmt::format(", {:.0f} {} {}", std::fabs(offset), list.units, offset < 0.0 ? less : more);
        }
    };
    add(view.position[0], "left", "right");
    add(view.position[1], "up", "down");
    return text;
}

std::string tiltWords(const ZelmMeasurePlanView& view) {
    const double degrees = view.tilt * kDegreesPerRadian;
    if (degrees < kLevelTilt) {
        return "straight";
    }
    const long eighth = std::lround(view.azimuth * kDegreesPerRadian / 45.0);
    const TiltWords& words = kTilts[static_cast<std::size_t>(((eighth % 8) + 8) % 8)];
    return fmt::format("tilted by {:.0f} deg {} (about {})", degrees, words.to, words.axis);
}

std::string rollWords(const ZelmMeasurePlanView& view) {
    const double degrees = view.roll * kDegreesPerRadian;
    if (std::fabs(degrees) < kLevelTilt) {
        return "upright";
    }
    if (std::fabs(degrees - 90.0) < kLevelTilt) {
        return "a quarter turn";
    }
    return fmt::format("turned by {:.0f} deg", degrees);
}

std::string fillWords(const ZelmMeasurePlanView& view) {
    return fmt::format("fills {:.0f} % of the left image, {:.0f} % of the right one", 100.0 * view.fill[0],
                       100.0 * view.fill[1]);
}

// Rounding of what would be whole numbers.
double tidy(double value) {
    return std::round(value * 1e9) / 1e9 + 0.0;
}

Json viewJson(const PlanList& list, const ZelmMeasurePlanView& view, std::size_t number) {
    Json json{{"number", number}, {"taken", view.taken != 0}, {"words", pictureWords(list, view)}};
    json["position"] = {tidy(view.position[0]), tidy(view.position[1]), tidy(view.position[2])};
    json["tiltDegrees"] = tidy(view.tilt * kDegreesPerRadian);
    json["directionDegrees"] = tidy(view.azimuth * kDegreesPerRadian);
    json["rollDegrees"] = tidy(view.roll * kDegreesPerRadian);
    for (const auto& [name, side] : {std::pair("left", 0), {"right", 1}}) {
        json[name] = {{"tiltDegrees", tidy(view.tilts[side] * kDegreesPerRadian)},
                      {"fill", tidy(view.fill[side])},
                      {"dots", view.dots[side]}};
    }
    json["pose"] = {{"R", view.pose.R}, {"t", view.pose.t}};
    if (view.worst > 0.0) {
        json["u95"] = {{"worst", view.worst}, {"rms", view.rms}};
    }
    return json;
}

}  // namespace

std::string pictureWords(const PlanList& list, const ZelmMeasurePlanView& view) {
    return fmt::format("{}, {} ({:.0f} {} away{}), {}, {}; {}", placeWords(list, view), distanceWords(list, view),
                       view.position[2], list.units, offsetWords(list, view), tiltWords(view), rollWords(view),
                       fillWords(view));
}

std::string pictureText(const PlanList& list) {
    std::string text;
    for (std::size_t i = 0; i < list.views.size(); ++i) {
        const ZelmMeasurePlanView& view = list.views[i];
        if (view.taken == 0) {
            text += fmt::format("{:3}: {}\n", i + 1, pictureWords(list, view));
        }
    }
    return text + std::string(kLegend);
}

std::string planText(const PlanList& list) {
    const ZelmMeasurePlanFigures& f = list.figures;
    if (!list.determined) {
        return "no U95 yet: " + list.undetermined;
    }
    return fmt::format(
        "{} views{}: U95 of a length of {:.4g} {} in the volume: worst {:.3g}, RMS {:.3g} {}\n"
        "of which the noise of the measured points alone: worst {:.3g}, RMS {:.3g} {}\n"
        "both cameras see {:.0f} % of the volume; {} test lengths",
        f.views, f.taken > 0 ? fmt::format(", {} of them taken", f.taken) : "", f.length, list.units, f.worst, f.rms,
        list.units, f.worstImage, f.rmsImage, list.units, 100.0 * f.seen, f.lengths);
}

Json planJson(const PlanList& list) {
    const ZelmMeasurePlanFigures& f = list.figures;
    Json json{{"units", list.units}, {"views", list.views.size()}};
    if (list.determined) {
        json["taken"] = f.taken;
        json["length"] = f.length;
        json["lengths"] = f.lengths;
        json["seen"] = f.seen;
        json["u95"] = {{"worst", f.worst}, {"rms", f.rms}};
        json["u95OfPoints"] = {{"worst", f.worstImage}, {"rms", f.rmsImage}};
    } else {
        json["undetermined"] = list.undetermined;
    }
    json["pictures"] = Json::array();
    for (std::size_t i = 0; i < list.views.size(); ++i) {
        json["pictures"].push_back(viewJson(list, list.views[i], i + 1));
    }
    return json;
}

}  // namespace zelm::tool
