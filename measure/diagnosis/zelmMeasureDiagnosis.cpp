// The exported functions that tell what is wrong with an image of a plate.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "imageDiagnosis.h"
#include "records.h"
#include "sharpness.h"

using namespace zelm::measure;

namespace {

constexpr std::array kCauseNames{
    "fine",       "no-plate",     "markers",      "cut-off",      "out-of-focus", "motion-blur", "saturated",
    "too-dark",   "low-contrast", "reflection",   "covered",      "polarity",     "other-plate", "marker-distance",
    "small-dots", "tilted",       "not-separate", "uneven-light", "marker-axes",  "perspective", "unknown"};

void checkPlate(const Zelm2ViewPatternDesc* pattern) {
    require(pattern != nullptr, "the plate is NULL");
    require(pattern->d0 > 0.0 && pattern->d1 > 0.0 && pattern->d2 > 0.0 && pattern->d3 > 0.0 && pattern->d4 > 0.0 &&
                pattern->d5 > 0.0 && pattern->d6 > 0.0 && pattern->d7 > 0.0,
            "the plate's lengths must be greater than 0");
    require(pattern->markers > 0 && pattern->polarity >= 0 && pattern->polarity <= 1,
            "the plate's number of markers must be greater than 0, its polarity 0 or 1");
}

ZelmMeasureImageDiagnosis diagnosisOf(const ImageEvidence& e, const Zelm2ViewPatternDesc& plate) {
    ZelmMeasureImageDiagnosis d{};
    d.cause = causeOf(e, plate);
    d.status = e.status;
    d.read = e.read;
    d.spots = static_cast<std::int32_t>(e.spots.size());
    d.dots = static_cast<std::int32_t>(e.lattice.dots.size());
    d.expected = describedDots(plate);
    d.darkLevel = e.levels.dark;
    d.brightLevel = e.levels.bright;
    d.saturated = e.levels.saturated;
    d.oppositeDots = e.oppositeDots;
    if (e.lattice.dots.empty()) {
        constexpr double kWidthOfBlur = 2.5066;  // sqrt(2 pi): width of an edge at its steepest over its blur
        d.largest = e.levels.widest / kWidthOfBlur;
        d.smallest = e.levels.narrowest / kWidthOfBlur;
        d.direction = e.levels.direction;
        d.smear = e.levels.widest;  // of a straight smear the edge is as long as it
        return d;
    }
    const LatticeBounds bounds = e.lattice.bounds();
    const MarkerTraits& m = e.traits.markers;
    const PlaceTraits& places = e.traits.places;
    d.columns = m.isTurned ? bounds.rows() : bounds.columns();
    d.rows = m.isTurned ? bounds.columns() : bounds.rows();
    d.strong = e.strong;
    d.markers = m.seen;
    d.markerColumns = m.columns;
    d.markerRows = m.rows;
    d.sides = static_cast<std::int32_t>(places.sides);
    d.outside = places.outside;
    d.hidden = places.hidden;
    d.highlights = places.highlights;
    d.region = e.dotsRegion;
    d.inside = e.sharpness.inside;
    d.ground = e.sharpness.outside;
    d.noise = e.sharpness.noise;
    d.radius = e.sharpness.dots > 0 ? e.sharpness.radius : e.traits.radius;
    d.axisRatio = e.traits.axisRatio;
    d.largest = e.sharpness.spread.largest;
    d.smallest = e.sharpness.spread.smallest;
    d.direction = e.sharpness.spread.direction;
    d.smear = e.sharpness.smear;
    d.edgeStrength = edgeStrength(e.sharpness);
    d.dotRatio = 0.5 * (e.traits.dotRatioX + e.traits.dotRatioY);
    d.markerRatio = m.ratio;
    return d;
}

std::int32_t verdictOf(const ImageEvidence& e, std::size_t i, const LatticeDot* dot,
                       const Zelm2ViewPatternDesc& plate) {
    const Spot& spot = e.spots[i];
    constexpr double kMaxSize = 2.5;  // radii of the usual dot, beside what markers have
    if (spot.isCut) {
        return ZELM_MEASURE_SPOT_CUT;
    }
    if (spot.area < plate.minDotArea) {
        return ZELM_MEASURE_SPOT_SMALL;
    }
    if (!spot.isOval) {
        return ZELM_MEASURE_SPOT_NO_ELLIPSE;
    }
    if (dot != nullptr) {
        if (e.strengths[i] < plate.minEdgeStrength) {
            return ZELM_MEASURE_SPOT_WEAK_EDGE;
        }
        return dot->size > markerSize(plate) ? ZELM_MEASURE_SPOT_MARKER : ZELM_MEASURE_SPOT_DOT;
    }
    const double radius = e.traits.radius;
    const double most = kMaxSize * std::max(plate.d3 / plate.d2, 1.0) * radius;
    if (radius > 0.0 && (spot.radius() > most || spot.radius() < radius / kMaxSize)) {
        return ZELM_MEASURE_SPOT_OTHER_SIZE;
    }
    return e.strengths[i] < plate.minEdgeStrength ? ZELM_MEASURE_SPOT_WEAK_EDGE : ZELM_MEASURE_SPOT_OFF_LATTICE;
}

struct JudgedSpot {
    std::size_t index;
    std::int32_t verdict;
};

// Dots and markers first.
std::vector<JudgedSpot> judgedSpots(const ImageEvidence& e, const Zelm2ViewPatternDesc& plate) {
    std::vector<const LatticeDot*> dots(e.spots.size(), nullptr);
    for (const LatticeDot& dot : e.lattice.dots) {
        dots[dot.spot] = &dot;
    }
    std::vector<JudgedSpot> list;
    list.reserve(e.spots.size());
    for (std::size_t i = 0; i < e.spots.size(); ++i) {
        list.push_back({i, verdictOf(e, i, dots[i], plate)});
    }
    std::stable_sort(list.begin(), list.end(),
                     [](const JudgedSpot& a, const JudgedSpot& b) { return a.verdict < b.verdict; });
    return list;
}

void give(const ImageEvidence& e, const Zelm2ViewPatternDesc& plate, const ZelmMeasureSpots& out) {
    const std::vector<JudgedSpot> list = judgedSpots(e, plate);
    for (std::size_t i = 0; i < list.size() && i < static_cast<std::size_t>(out.capacity); ++i) {
        const Spot& spot = e.spots[list[i].index];
        if (out.centres != nullptr) {
            out.centres[2 * i] = spot.ellipse.centre.x;
            out.centres[2 * i + 1] = spot.ellipse.centre.y;
        }
        if (out.axes != nullptr) {
            const TensorAxes axes = axesOf(spot.ellipse.shape);
            out.axes[3 * i] = std::sqrt(axes.largest);
            out.axes[3 * i + 1] = std::sqrt(std::max(axes.smallest, 0.0));
            out.axes[3 * i + 2] = axes.direction;
        }
        if (out.strengths != nullptr) {
            out.strengths[i] = e.strengths[list[i].index];
        }
        if (out.verdicts != nullptr) {
            out.verdicts[i] = list[i].verdict;
        }
    }
}

bool isInside(const ZelmRect& region, const DenseImage& image) {
    return region.x >= 0 && region.y >= 0 && region.width >= 1 && region.height >= 1 &&
           region.width <= image.width() - region.x && region.height <= image.height() - region.y;
}

}  // namespace

std::int32_t zelmMeasureSharpness(const ZelmMeasureImage* image, std::int64_t count, const double* seeds,
                                  std::int32_t polarity, ZelmMeasureSharpness* sharpness) {
    return guarded(nullptr, [&] {
        checkImage(image);
        require(count >= 0, "the number of dots is negative");
        require(seeds != nullptr || count == 0, "the dots are NULL");
        require(polarity == 0 || polarity == 1, "the polarity is 0, dark, or 1, bright");
        const DenseImage dense(*image);
        std::vector<Point2d> places(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < places.size(); ++i) {
            places[i] = {seeds[2 * i], seeds[2 * i + 1]};
        }
        const Sharpness s = sharpnessOf(dense, spotsAt(dense, places, polarity), polarity);
        giveRecord({0, static_cast<std::int32_t>(s.dots), s.spread.largest, s.spread.smallest, s.spread.direction,
                    s.smear, s.radius, s.inside, s.outside, s.noise},
                   sharpness);
    });
}

std::int32_t zelmMeasureDiagnoseImage(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                      const ZelmRect* region, ZelmMeasureImageDiagnosis* diagnosis,
                                      const ZelmMeasureSpots* spots) {
    return guarded(nullptr, [&] {
        checkImage(image);
        checkPlate(pattern);
        const DenseImage dense(*image);
        require(region == nullptr || isInside(*region, dense), "the region is not inside the image");
        zelm::measure::recordOf(diagnosis);
        const ZelmMeasureSpots out = spots != nullptr ? zelm::measure::recordOf(spots) : ZelmMeasureSpots{};
        require(out.capacity >= 0, "the capacity is negative");
        const ImageEvidence evidence = evidenceOf(dense, *pattern, region);
        const ZelmMeasureImageDiagnosis record = diagnosisOf(evidence, *pattern);
        give(evidence, *pattern, out);
        giveRecord(record, diagnosis);
    });
}

const char* zelmMeasureImageCauseName(std::int32_t cause) {
    return cause >= 0 && static_cast<std::size_t>(cause) < kCauseNames.size()
               ? kCauseNames[static_cast<std::size_t>(cause)]
               : "unknown";
}
