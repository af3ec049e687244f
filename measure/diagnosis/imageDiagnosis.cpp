#include "imageDiagnosis.h"

#include <algorithm>
#include <cmath>

namespace zelm::measure {
namespace {

// The figures behind the thresholds are in docs/diagnosis.md: good data on the one side, faulty data on the other.
constexpr double kMinRoundFill = 0.972;      // pixels over those of the ellipse: dots have 0.98 and more, squares 0.96
constexpr double kMinRadius = 4.0;           // pixels, of dots
constexpr double kReadRadius = 5.5;          // of dots that are read whatever else there is
constexpr double kMaxAxisDifference = 95.0;  // pixels: the reader refuses 100
constexpr double kMaxBlur = 0.30;            // of a dot's radius
constexpr double kMinBlur = 1.6;             // pixels: less is taken for blur by small dots alone
constexpr double kMinMotion = 1.35;          // the largest blur over the smallest
constexpr double kWideBlur = 0.35;           // of the radius: dots so blurred run into each other,
constexpr double kMinWideMotion = 1.8;       // and the two blurs are told less surely:
constexpr double kMinWideEdges = 1.5;        // the widest edges of the image over the narrowest have to say the same
constexpr double kMinContrast = 16.0;        // gray levels between dots and ground
constexpr double kMinSignal = 4.0;           // contrast over noise
constexpr int kDarkLevel = 32;               // a plate so dark has hardly the contrast that dots need
constexpr double kMinAxisRatio = 0.42;       // cosine of 65 degrees
constexpr double kMaxSaturated = 0.5;        // share of the pixels
constexpr double kClippedLevel = 250.0;      // of dots or their ground, from which a part is clipped
constexpr double kMaxRatioError = 0.2;       // of the diameter over the pitch
constexpr double kMaxMarkerError = 0.15;     // of a marker's diameter over a dot's
constexpr double kHighlights = 0.1;          // of the places without a dot
constexpr double kMinSeen = 0.88;            // of the described dots, where markers are missing
constexpr double kCoveredShare = 0.08;       // of the places within the bounds
constexpr double kMinFlatRange = 20.0;       // gray levels between dark and bright
constexpr double kMinBlurredEdge = 12.0;     // pixels: width of the steepest edges of an image out of focus,
constexpr double kMaxBlurredEdge = 90.0;     // and of light that just falls off
constexpr double kMinStep = 0.6;             // of all levels, by which they change across the steepest edges of a plate
constexpr double kMaxStep = 1.3;             // out of focus: an even slope goes on, and texture and noise come back
constexpr double kMinEdgeMotion = 2.5;       // of the steepest edges' widths

using enum ZelmMeasureImageCause;

double contrastOf(const ImageEvidence& e) {
    return std::fabs(e.sharpness.outside - e.sharpness.inside);
}

// No dots in rows and columns: the levels, or the steepest edges, say what there is.
ZelmMeasureImageCause causeWithoutDots(const ImageEvidence& e) {
    const ImageLevels& l = e.levels;
    if (l.saturated > kMaxSaturated) {
        return ZELM_MEASURE_IMAGE_SATURATED;
    }
    if (l.bright < kDarkLevel) {
        return ZELM_MEASURE_IMAGE_DARK;
    }
    if (l.bright - l.dark < kMinFlatRange) {
        return ZELM_MEASURE_IMAGE_LOW_CONTRAST;
    }
    const auto isStep = [](double change) { return change > kMinStep && change < kMaxStep; };
    if (l.widest > kMinEdgeMotion * l.narrowest && l.widest > 1.5 * kMinBlurredEdge && isStep(l.widestStep)) {
        return ZELM_MEASURE_IMAGE_MOTION;
    }
    if (l.narrowest > kMinBlurredEdge && l.narrowest < kMaxBlurredEdge && isStep(l.narrowestStep)) {
        return ZELM_MEASURE_IMAGE_OUT_OF_FOCUS;
    }
    return ZELM_MEASURE_IMAGE_NO_PLATE;
}

// Whether dots or their ground are white. White grows over what is dark beside it, and swallows dots that are nearly
// white.
bool isClipped(const ImageEvidence& e) {
    return e.sharpness.dots > 0 && std::max(e.sharpness.inside, e.sharpness.outside) > kClippedLevel;
}

// Diameter over pitch, seen over described, less 1.
double diameterError(const ImageEvidence& e, const Pattern& plate) {
    const double seen = std::sqrt(e.traits.dotRatioX * e.traits.dotRatioY);
    return seen / (plate.d2 / std::sqrt(plate.d4 * plate.d5)) - 1.0;
}

bool isOtherDiameter(const ImageEvidence& e, const Pattern& plate) {
    return std::fabs(diameterError(e, plate)) > kMaxRatioError;
}

// Whether the dots are told well enough for their lattice to be judged.
ZelmMeasureImageCause causeOfDots(const ImageEvidence& e, const Pattern& plate) {
    const double radius = e.sharpness.dots > 0 ? e.sharpness.radius : e.traits.radius;
    const double contrast = contrastOf(e);
    const bool isFaint = e.sharpness.dots > 0 && (contrast < kMinContrast || contrast < kMinSignal * e.sharpness.noise);
    if (isFaint && isClipped(e)) {
        return ZELM_MEASURE_IMAGE_SATURATED;
    }
    if (isFaint) {
        return e.levels.bright < 2 * kDarkLevel ? ZELM_MEASURE_IMAGE_DARK : ZELM_MEASURE_IMAGE_LOW_CONTRAST;
    }
    const bool isSmall = radius < kMinRadius || radius * radius * 3.14 < plate.minDotArea;
    const double blur = e.sharpness.spread.largest;
    const double smallest = e.sharpness.spread.smallest;
    const bool isWide = smallest > kWideBlur * radius;
    const bool isMotion = blur > (isWide ? kMinWideMotion : kMinMotion) * smallest &&
                          (!isWide || e.levels.widest > kMinWideEdges * e.levels.narrowest);
    const auto blurred = isMotion ? ZELM_MEASURE_IMAGE_MOTION : ZELM_MEASURE_IMAGE_OUT_OF_FOCUS;
    if (blur > kMaxBlur * radius && blur > kMinBlur) {
        return blurred;
    }
    if (isClipped(e) && (plate.polarity == 0 ? -1.0 : 1.0) * diameterError(e, plate) > kMaxRatioError) {
        return ZELM_MEASURE_IMAGE_SATURATED;  // white has grown
    }
    if (e.traits.axisRatio < kMinAxisRatio) {
        return ZELM_MEASURE_IMAGE_TILTED;
    }
    if (isSmall) {
        return ZELM_MEASURE_IMAGE_SMALL_DOTS;
    }
    if (blur > kMaxBlur * radius) {
        return blurred;
    }
    return ZELM_MEASURE_IMAGE_FINE;
}

// What is missing from the lattice, or FINE.
ZelmMeasureImageCause causeOfPlaces(const PlaceTraits& places, int least) {
    if (places.outside >= std::max(places.hidden, least)) {
        return ZELM_MEASURE_IMAGE_CUT_OFF;
    }
    if (places.hidden < least) {
        return ZELM_MEASURE_IMAGE_FINE;
    }
    return places.highlights > kHighlights * places.hidden ? ZELM_MEASURE_IMAGE_REFLECTION : ZELM_MEASURE_IMAGE_COVERED;
}

// A clipped plate that has lost dots in white, or whose markers differ from its dots by what white takes or adds.
bool isSwallowed(const ImageEvidence& e, const Pattern& plate) {
    if (!isClipped(e)) {
        return false;
    }
    const PlaceTraits& places = e.traits.places;
    const MarkerTraits& m = e.traits.markers;
    if (places.hidden > 0) {
        return 2 * places.white >= places.hidden;
    }
    const double error = m.ratio / (plate.d3 / plate.d2) - 1.0;
    return m.isFrame && (plate.polarity == 0 ? error : -error) > kMaxMarkerError;
}

bool isOtherFrame(const MarkerTraits& m, const Pattern& plate) {
    return m.isFrame && (m.columns != std::lround(plate.d6 / plate.d4) || m.rows != std::lround(plate.d7 / plate.d5));
}

ZelmMeasureImageCause causeOfMarkers(const ImageEvidence& e, const Pattern& plate) {
    const MarkerTraits& m = e.traits.markers;
    const PlaceTraits& places = e.traits.places;
    if (isSwallowed(e, plate)) {
        return ZELM_MEASURE_IMAGE_SATURATED;
    }
    if (isOtherFrame(m, plate)) {
        return ZELM_MEASURE_IMAGE_MARKER_DISTANCE;
    }
    if (m.isFrame && std::fabs(m.ratio / (plate.d3 / plate.d2) - 1.0) > kMaxMarkerError) {
        return ZELM_MEASURE_IMAGE_OTHER_PLATE;
    }
    if (m.seen >= plate.markers) {
        return m.isFrame ? ZELM_MEASURE_IMAGE_FINE : ZELM_MEASURE_IMAGE_MARKERS;
    }
    if (e.traits.isLevelShared && places.highlights == 0) {
        return ZELM_MEASURE_IMAGE_UNEVEN_LIGHT;  // in the dark, markers are lost
    }
    // What covers dots hides neighbours, and a marker that is missing alone is but one place.
    const int least = places.together >= 2 ? 2 : std::max(2, static_cast<int>(kCoveredShare * places.expected));
    if (const auto cause = causeOfPlaces(places, least); cause != ZELM_MEASURE_IMAGE_FINE) {
        return cause;
    }
    if (static_cast<double>(e.lattice.dots.size()) < kMinSeen * describedDots(plate)) {
        return ZELM_MEASURE_IMAGE_COVERED;  // whole rows, up to a marker
    }
    if (isOtherDiameter(e, plate) || (m.seen == 0 && places.hidden == 0 && places.outside == 0)) {
        return ZELM_MEASURE_IMAGE_OTHER_PLATE;
    }
    return places.hidden > 0 && places.highlights == places.hidden ? ZELM_MEASURE_IMAGE_REFLECTION
                                                                   : ZELM_MEASURE_IMAGE_MARKERS;
}

ZelmMeasureImageCause causeOfFailure(const ImageEvidence& e, const Pattern& plate) {
    const int dots = static_cast<int>(e.lattice.dots.size());
    if (e.oppositeDots > 2 * dots) {
        return e.oppositeFill > kMinRoundFill ? ZELM_MEASURE_IMAGE_POLARITY : ZELM_MEASURE_IMAGE_OTHER_PLATE;
    }
    if (e.levels.saturated > kMaxSaturated && 2 * e.strong < dots) {
        return ZELM_MEASURE_IMAGE_SATURATED;  // what is left of the dots are remains
    }
    if (e.lattice.dots.empty()) {
        return causeWithoutDots(e);
    }
    if (const auto cause = causeOfDots(e, plate); cause != ZELM_MEASURE_IMAGE_FINE) {
        return cause;
    }
    if (3 * e.oppositeDots > dots) {
        return ZELM_MEASURE_IMAGE_OTHER_PLATE;  // squares: what lies between sharp dots is one ground
    }
    if (const auto cause = causeOfMarkers(e, plate); cause != ZELM_MEASURE_IMAGE_FINE) {
        return cause;
    }
    // All markers are in their places.
    if (dots < plate.minDots) {
        const PlaceTraits& places = e.traits.places;
        if (e.traits.isCentred && places.inner == 0 && places.highlights <= kHighlights * places.hidden) {
            return ZELM_MEASURE_IMAGE_OTHER_PLATE;
        }
        return causeOfPlaces(places, 1);
    }
    if (e.traits.isLevelShared) {
        return ZELM_MEASURE_IMAGE_UNEVEN_LIGHT;
    }
    if (e.isReadInRegion) {
        return ZELM_MEASURE_IMAGE_NOT_SEPARATE;
    }
    if (2 * e.strong < dots && edgeStrength(e.sharpness) < 2.0 * plate.minEdgeStrength) {
        return ZELM_MEASURE_IMAGE_LOW_CONTRAST;
    }
    if (isOtherDiameter(e, plate)) {
        return ZELM_MEASURE_IMAGE_OTHER_PLATE;
    }
    if (e.traits.places.inner > 0 && e.traits.places.together >= 2) {
        return causeOfPlaces(e.traits.places, 1);
    }
    if (e.traits.markerLike > 0) {
        return ZELM_MEASURE_IMAGE_PERSPECTIVE;
    }
    if (e.traits.radius < kReadRadius) {
        return ZELM_MEASURE_IMAGE_SMALL_DOTS;
    }
    return e.axisDifference > kMaxAxisDifference ? ZELM_MEASURE_IMAGE_MARKER_AXES : ZELM_MEASURE_IMAGE_UNKNOWN;
}

// Of an image that is read, why some dots are missing: only what is seen for certain.
ZelmMeasureImageCause causeOfGaps(const ImageEvidence& e, const Pattern& plate) {
    const PlaceTraits& places = e.traits.places;
    if (e.lattice.dots.empty() || e.read >= describedDots(plate) || !e.traits.markers.isFrame) {
        return ZELM_MEASURE_IMAGE_FINE;
    }
    if (isOtherFrame(e.traits.markers, plate)) {
        return ZELM_MEASURE_IMAGE_MARKER_DISTANCE;  // read by every second dot, or so, and they at wrong places
    }
    PlaceTraits certain = places;
    certain.hidden = std::max(places.inner, places.highlights);
    return causeOfPlaces(certain, 1);
}

}  // namespace

ZelmMeasureImageCause causeOf(const ImageEvidence& evidence, const Pattern& plate) {
    return evidence.status < 0 ? causeOfFailure(evidence, plate) : causeOfGaps(evidence, plate);
}

}  // namespace zelm::measure
