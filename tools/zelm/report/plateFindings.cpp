#include "plateFindings.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "failure.h"

namespace zelm::tool {
namespace {

using Finding = ZelmMeasurePlateFinding;

std::string distances(const PlateCameras& cameras, const std::string& units) {
    if (cameras.nearest == cameras.farthest) {
        return fmt::format("{:.6g} {}", cameras.nearest, units);
    }
    return fmt::format("{:.6g} to {:.6g} {}", cameras.nearest, cameras.farthest, units);
}

// Of the plate alone.
std::string designText(const Finding& f, const Plate& plate) {
    const std::string& units = plate.units;
    switch (f.flaw) {
        case ZELM_MEASURE_PLATE_MARKER_COUNT:
            return fmt::format("{:.0f} markers: a plate is read by exactly three", f.value);
        case ZELM_MEASURE_PLATE_MARKER_OFF_GRID:
            return fmt::format(
                "a marker stands {:.3g} of a pitch off the grid: marker distances must be whole multiples of the pitch",
                f.value);
        case ZELM_MEASURE_PLATE_MARKER_OUTSIDE:
            return fmt::format(
                "a marker stands {:.0f} pitches from the corner marker, where the field ends after {:.0f}: move it "
                "inwards, or enlarge the field",
                f.value, f.limit);
        case ZELM_MEASURE_PLATE_MARKER_RATIO:
            return fmt::format(
                "markers are only {:.3g} times as wide as the dots{}, from {:.2g} times on they are told apart "
                "reliably: "
                "widen the markers or narrow the dots",
                f.value, f.isFatal != 0 ? " and cannot be told from them" : "", f.limit);
        case ZELM_MEASURE_PLATE_TOUCH:
            return fmt::format(
                "dots touch each other, or a marker its neighbours ({:.3g} {} between them): widen the pitch or narrow "
                "the dots",
                f.value, units);
        case ZELM_MEASURE_PLATE_NEIGHBOUR_IN_REACH:
            return fmt::format(
                "markers are {:.3g} pitches wide, and from {:.3g} on the edges of their neighbours are taken for "
                "theirs: "
                "narrow the markers or widen the pitch",
                f.value, f.limit);
        case ZELM_MEASURE_PLATE_HALF_TURN:
            return "the plate looks the same after half a turn: put two markers inside the field";
        case ZELM_MEASURE_PLATE_MIRROR:
            return "the plate is its own mirror image, so that mirrored images are not noticed: make the field wider "
                   "than high, or one marker distance longer";
        default:
            return fmt::format(
                "the field has only {:.0f} dots, and {:.0f} are needed{}: enlarge it or narrow the pitch", f.value,
                f.limit, f.isFatal != 0 ? " (minDots)" : " for a good place of the plate");
    }
}

// Of the plate before a camera.
std::string sightText(const Finding& f, const Plate& plate, const PlateCameras& cameras) {
    const std::string& units = plate.units;
    const std::string& name = cameras.names[static_cast<std::size_t>(f.camera)];
    const std::string at = fmt::format("{} at {}", name, distances(cameras, units));
    switch (f.flaw) {
        case ZELM_MEASURE_PLATE_DOTS_SMALL:
            return fmt::format(
                "dots have a radius of only {:.2g} pixels in the images of {}, {}: widen dots and pitch, or hold the "
                "plate nearer",
                f.value, at,
                f.isFatal != 0 ? fmt::format("less than minDotArea ({} pixels) lets pass", plate.pattern.minDotArea)
                               : fmt::format("and below {:.2g} some are not found", f.limit));
        case ZELM_MEASURE_PLATE_DOTS_LARGE:
            return fmt::format(
                "dots have a radius of {:.0f} pixels in the images of {}, and {:.0f} are enough: narrow dots and "
                "pitch, and have more of them",
                f.value, at, f.limit);
        case ZELM_MEASURE_PLATE_GAP_SMALL:
            return fmt::format(
                "neighbouring dots, or a marker and its neighbours, are {:.2g} pixels from each other in the images of "
                "{}, and below {:.0f} they run into each other: widen the pitch or narrow the dots",
                f.value, at, f.limit);
        case ZELM_MEASURE_PLATE_AXES_DIFFER:
            return fmt::format(
                "the marker distances differ by {:.0f} pixels in the images of {}, and {:.0f} is the most that is "
                "read: make them more alike",
                f.value, at, f.limit);
        case ZELM_MEASURE_PLATE_FIELD_LARGE:
            return fmt::format(
                "the images of {} show at most {:.0f} % of the field{}: make it smaller, or hold the plate farther "
                "away",
                at, 100.0 * f.value, f.isFatal != 0 ? ", fewer dots than minDots" : "");
        default:
            return fmt::format(
                "the field takes only {:.2g} % of the images of {}{}: enlarge it, or hold the plate nearer",
                100.0 * f.value, at, f.isFatal != 0 ? ", too little for the plate to be found" : "");
    }
}

const char* nameOf(std::int32_t flaw) {
    constexpr const char* kNames[] = {"",          "markerCount",      "markerOffGrid", "markerOutside", "markerRatio",
                                      "touch",     "neighbourInReach", "halfTurn",      "mirror",        "fewDots",
                                      "dotsSmall", "dotsLarge",        "gapSmall",      "axesDiffer",    "fieldLarge",
                                      "fieldSmall"};
    return kNames[flaw];
}

}  // namespace

std::vector<Finding> plateFindings(const Plate& plate, const PlateCameras& cameras) {
    std::int64_t count = 0;
    std::vector<Finding> findings;
    for (int pass = 0; pass < 2; ++pass) {  // the first one counts
        findings.assign(static_cast<std::size_t>(count), Finding{});
        if (count > 0) {
            findings.front().size = sizeof(Finding);
        }
        const std::int32_t status =
            zelmMeasurePlateDesign(&plate.pattern, static_cast<std::int32_t>(cameras.cameras.size()),
                                   cameras.cameras.empty() ? nullptr : cameras.cameras.data(), cameras.nearest,
                                   cameras.farthest, findings.empty() ? nullptr : findings.data(), count, &count);
        if (status < 0) {
            failData("the plate's design cannot be judged: {}",
                     status == ZELM_ERR_MEMORY ? "out of memory" : "a length is out of range");
        }
    }
    return findings;
}

std::string findingText(const Finding& finding, const Plate& plate, const PlateCameras& cameras) {
    return finding.camera < 0 ? designText(finding, plate) : sightText(finding, plate, cameras);
}

nlohmann::ordered_json findingsJson(const std::vector<Finding>& findings, const Plate& plate,
                                    const PlateCameras& cameras) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Finding& f : findings) {
        nlohmann::ordered_json json{{"flaw", nameOf(f.flaw)}, {"value", f.value}, {"limit", f.limit}};
        if (f.camera >= 0) {
            json["camera"] = cameras.names[static_cast<std::size_t>(f.camera)];
        }
        json["text"] = findingText(f, plate, cameras);
        list.push_back(std::move(json));
    }
    return list;
}

}  // namespace zelm::tool
