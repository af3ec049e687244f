#include "troubleText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "numberText.h"

namespace zelm::tool {
namespace {

using Figures = ZelmMeasureImageDiagnosis;

const char* polarityWord(std::int32_t polarity) {
    return polarity == 0 ? "dark" : "bright";
}

std::string sidesText(std::int32_t sides) {
    constexpr std::array<std::pair<std::int32_t, const char*>, 4> kNames{{{ZELM_MEASURE_SIDE_LEFT, "left"},
                                                                          {ZELM_MEASURE_SIDE_RIGHT, "right"},
                                                                          {ZELM_MEASURE_SIDE_TOP, "top"},
                                                                          {ZELM_MEASURE_SIDE_BOTTOM, "bottom"}}};
    std::string text;
    for (const auto& [side, name] : kNames) {
        if ((sides & side) != 0) {
            text += fmt::format("{}{}", text.empty() ? "" : " and ", name);
        }
    }
    return text;
}

std::string noPlateText(const Figures& f, const Plate& plate) {
    const std::int32_t polarity = plate.pattern.polarity;
    return fmt::format(
        "no plate found: {} of {} spots stand in rows and columns: is the plate in view, with {} dots on a {} ground, "
        "and does it fill a twentieth of the image?",
        f.dots, f.spots, polarityWord(polarity), polarityWord(1 - polarity));
}

std::string markersText(const Figures& f, const Plate& plate) {
    if (f.markers < plate.pattern.markers) {
        return fmt::format(
            "only {} of {} markers found among {} dots: is one hidden or outside the image, or the plate file another "
            "plate's?",
            f.markers, plate.pattern.markers, f.dots);
    }
    return fmt::format(
        "{} dots of a marker's size found where {} are described, a corner with one in its row and one in its column: "
        "is something of their size in the image, or the plate file another plate's?",
        f.markers, plate.pattern.markers);
}

std::string focusText(const Figures& f) {
    if (f.dots == 0) {
        return fmt::format(
            "out of focus? No dots are seen, and the sharpest edges are {:.0f} pixels wide: focus the lens, or move "
            "the plate into its range",
            f.smear);
    }
    return fmt::format(
        "out of focus: edges are blurred by {:.1f} pixels (standard deviation) on dots of radius {:.1f}, where {:.1f} "
        "can be read: focus the lens, or move the plate into its range",
        f.largest, f.radius, 0.3 * f.radius);
}

std::string motionText(const Figures& f) {
    return fmt::format(
        "motion blur: smeared over some {:.0f} pixels at {:.0f} degrees (0: along the rows, 90: along the columns): "
        "hold plate and cameras still, or expose shorter with more light",
        f.smear, kDegreesPerRadian * f.direction);
}

std::string contrastText(const Figures& f, const Plate& plate) {
    if (f.dots == 0) {
        return fmt::format("no plate found: the gray levels of the image run from {} to {} only: is the light on?",
                           f.darkLevel, f.brightLevel);
    }
    return fmt::format(
        "too little contrast: dots of gray level {:.0f} on a ground of {:.0f}, noise {:.1f}; {} of {} dots have edges "
        "of {:g} gray levels a pixel all round: give more light, or set minEdgeStrength lower (--min-strength)",
        f.inside, f.ground, f.noise, f.strong, f.dots, plate.pattern.minEdgeStrength);
}

std::string otherPlateText(const Figures& f, const Plate& plate) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    constexpr double kNotable = 0.15;
    const double described = p.d3 / p.d2;
    if (f.markers == 0) {
        return fmt::format(
            "none of {} dots is larger than the others, but the plate file has {} markers of {:.2f} "
            "times their diameter: is it another plate's?",
            f.dots, p.markers, described);
    }
    if (std::fabs(f.markerRatio / described - 1.0) > kNotable) {
        return fmt::format(
            "the markers are {:.2f} times as large as the dots, the plate file says {:.2f}: is it "
            "another plate's?",
            f.markerRatio, described);
    }
    if (f.dots < p.minDots) {
        return fmt::format(
            "{} dots in {} columns and {} rows found, fewer than {} (minDots): is the plate file "
            "another plate's? (--min-dots asks for fewer)",
            f.dots, f.columns, f.rows, p.minDots);
    }
    return fmt::format("the dots are {:.2f} pitches wide, the plate file says {:.2f}: is it another plate's?",
                       f.dotRatio, 0.5 * (p.d2 / p.d4 + p.d2 / p.d5));
}

std::string distanceText(const Figures& f, const Plate& plate) {
    const long columns = std::lround(plate.pattern.d6 / plate.pattern.d4);
    const long rows = std::lround(plate.pattern.d7 / plate.pattern.d5);
    std::string text = fmt::format("{} dots found, but ", f.dots);
    if (f.markerColumns != columns) {
        text += fmt::format("the x marker stands {} pitches away from the corner marker, the plate file says {}",
                            f.markerColumns, columns);
    }
    if (f.markerRows != rows) {
        text += fmt::format("{}the y marker stands {} pitches away from the corner marker, the plate file says {}",
                            f.markerColumns != columns ? "; " : "", f.markerRows, rows);
    }
    return text + (f.markerColumns == rows && f.markerRows == columns
                       ? ": are the two exchanged, or is the image mirrored?"
                       : ": correct markerDistanceX and markerDistanceY, or the pitches");
}

std::string regionText(const ZelmRect& r) {
    return fmt::format("{},{},{},{}", r.x, r.y, r.width, r.height);
}

}  // namespace

std::string troubleText(const Figures& f, const Plate& plate) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    switch (f.cause) {
        case ZELM_MEASURE_IMAGE_NO_PLATE:
            return noPlateText(f, plate);
        case ZELM_MEASURE_IMAGE_MARKERS:
            return markersText(f, plate);
        case ZELM_MEASURE_IMAGE_CUT_OFF:
            return fmt::format(
                "cut off at the {}: {} of {} dots and {} of {} markers found: move the plate wholly into "
                "view",
                sidesText(f.sides), f.dots, f.expected, f.markers, p.markers);
        case ZELM_MEASURE_IMAGE_OUT_OF_FOCUS:
            return focusText(f);
        case ZELM_MEASURE_IMAGE_MOTION:
            return motionText(f);
        case ZELM_MEASURE_IMAGE_SATURATED:
            return fmt::format("overexposed: {:.0f} % of the pixels are at the largest gray level: expose it shorter",
                               100.0 * f.saturated);
        case ZELM_MEASURE_IMAGE_DARK:
            return fmt::format(
                "the image is nearly black, with levels up to {} of 255: expose it longer, or light the plate; if it "
                "was made of 10 or 12 bits in 16, scale its levels up",
                f.brightLevel);
        case ZELM_MEASURE_IMAGE_LOW_CONTRAST:
            return contrastText(f, plate);
        case ZELM_MEASURE_IMAGE_REFLECTION:
            return fmt::format(
                "a reflection hides dots: {} places of dots are bright and empty, {} of {} markers "
                "found: move the light or turn the plate",
                f.hidden, f.markers, p.markers);
        case ZELM_MEASURE_IMAGE_COVERED:
            return fmt::format(
                "partly covered: {} of {} dots and {} of {} markers found, and the others are not beyond "
                "the image's edge: take away what stands before the plate",
                f.dots, f.expected, f.markers, p.markers);
        case ZELM_MEASURE_IMAGE_POLARITY:
            return fmt::format("{} {} dots found, but no {} ones: set \"polarity\" of the plate to \"{}\"",
                               f.oppositeDots, polarityWord(1 - p.polarity), polarityWord(p.polarity),
                               polarityWord(1 - p.polarity));
        case ZELM_MEASURE_IMAGE_OTHER_PLATE:
            return otherPlateText(f, plate);
        case ZELM_MEASURE_IMAGE_MARKER_DISTANCE:
            return distanceText(f, plate);
        case ZELM_MEASURE_IMAGE_SMALL_DOTS:
            return fmt::format(
                "the dots are too small, {:.1f} pixels wide, where 10 are needed: move nearer, or take "
                "a longer lens",
                2.0 * f.radius);
        case ZELM_MEASURE_IMAGE_TILTED:
            return fmt::format("the plate is tilted by some {:.0f} degrees: 50 and less can be read",
                               kDegreesPerRadian * std::acos(std::min(f.axisRatio, 1.0)));
        case ZELM_MEASURE_IMAGE_NOT_SEPARATE:
            return fmt::format(
                "the plate is not told from what surrounds it, though {} dots are seen: --region {} "
                "(of calibrate: --left-region, --right-region) reads it",
                f.dots, regionText(f.region));
        case ZELM_MEASURE_IMAGE_UNEVEN_LIGHT:
            return fmt::format(
                "uneven light: so much brighter on one side of the {} dots than on the other that no one level parts "
                "all {} dots from their ground, or the plate from what is around it: light the plate evenly",
                f.dots, polarityWord(p.polarity));
        case ZELM_MEASURE_IMAGE_MARKER_AXES:
            return "the x and the y marker stand 100 pixels and more nearer to the corner marker than each other: take "
                   "the plate from farther away, or one whose markers are equally far";
        case ZELM_MEASURE_IMAGE_PERSPECTIVE:
            return "the nearest dots look as large as markers: tilt the plate less, or take it from farther away with "
                   "a longer lens";
        default:
            return fmt::format(
                "{} of {} dots have edges of {:g} gray levels a pixel all round, {} of {} markers are "
                "seen, and the plate cannot be read all the same (status {}): take another image",
                f.strong, f.dots, p.minEdgeStrength, f.markers, p.markers, f.status);
    }
}

}  // namespace zelm::tool
