// The exported functions of dots in images.
#include <algorithm>
#include <utility>
#include <vector>

#include "dotCentre.h"
#include "figures.h"
#include "plateTraits.h"
#include "records.h"
#include "rigDots.h"

using namespace zelm::measure;

namespace {

// Writes the dots that the caller has room for.
void give(const std::vector<CalibratedDot>& dots, bool withErrors, const ZelmMeasureDots* to) {
    if (to == nullptr) {
        return;
    }
    const ZelmMeasureDots out = recordOf(to);
    require(out.capacity >= 0, "the capacity is negative");
    const auto put = [](auto* array, std::size_t i, auto x, auto y) {
        if (array != nullptr) {
            array[2 * i] = x;
            array[2 * i + 1] = y;
        }
    };
    for (std::size_t i = 0; i < dots.size() && i < static_cast<std::size_t>(out.capacity); ++i) {
        const Dot& dot = dots[i].dot;
        put(out.grid, i, dot.index.x, dot.index.y);
        put(out.plane, i, dot.plane.x, dot.plane.y);
        put(out.pixels, i, dot.pixel.x, dot.pixel.y);
        if (withErrors) {
            put(out.errors, i, dots[i].error.x, dots[i].error.y);
        }
    }
}

std::size_t viewOf(const Rig& rig, std::int32_t view) {
    require(view >= 0 && static_cast<std::size_t>(view) < rig.views(), "the rig has no such view");
    return static_cast<std::size_t>(view);
}

void checkPattern(const Zelm2ViewPatternDesc* pattern) {
    require(pattern != nullptr, "the plate is NULL");
    require(pattern->d4 > 0.0 && pattern->d5 > 0.0 && pattern->polarity >= 0 && pattern->polarity <= 1,
            "the plate's pitches must be greater than 0, its polarity 0 or 1");
}

}  // namespace

std::int32_t zelmMeasureFigures(std::int64_t count, const double* distances, ZelmMeasureFigures* figures) {
    return guarded(nullptr, [&] {
        require(count >= 0 && (distances != nullptr || count == 0), "the distances are NULL, or their number negative");
        std::vector<double> copy(static_cast<std::size_t>(count));
        std::copy_n(distances, copy.size(), copy.begin());
        const Figures f = figuresOf(std::move(copy));
        giveRecord({0, 0, static_cast<std::int64_t>(f.count), f.mean, f.rms, f.max, f.median, f.quantile95}, figures);
    });
}

std::int32_t zelmMeasureRigDots(ZelmMeasureRig* handle, const Zelm2ViewPatternDesc* pattern, std::int32_t side,
                                std::int32_t view, const ZelmMeasureDots* dots, std::int64_t* placed,
                                std::int64_t* found) {
    return withRig(handle, [&](const Rig& rig) {
        checkPattern(pattern);
        require(placed != nullptr, "the number's place is NULL");
        const char camera = sideOf(side);
        const std::size_t index = viewOf(rig, view);
        const std::vector<CalibratedDot> list = calibratedDots(rig, *pattern, camera, index);
        give(list, true, dots);
        *placed = static_cast<std::int64_t>(list.size());
        if (found != nullptr) {
            const auto& views = rig.camera(camera).dots;
            *found = index < views.size() ? static_cast<std::int64_t>(views[index].size()) : 0;
        }
    });
}

std::int32_t zelmMeasureRigEpipolar(ZelmMeasureRig* handle, const Zelm2ViewPatternDesc* pattern, std::int32_t view,
                                    std::int64_t capacity, double* distances, std::int64_t* count) {
    return withRig(handle, [&](const Rig& rig) {
        checkPattern(pattern);
        require(count != nullptr && capacity >= 0, "the number's place is NULL, or the capacity negative");
        const std::vector<double> list = epipolarDistances(rig, *pattern, viewOf(rig, view));
        if (distances != nullptr) {
            std::copy_n(list.begin(), std::min(list.size(), static_cast<std::size_t>(capacity)), distances);
        }
        *count = static_cast<std::int64_t>(list.size());
    });
}

std::int32_t zelmMeasurePlateDots(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                  const ZelmRect* region, const ZelmMeasureDots* dots, std::int64_t* placed,
                                  std::int64_t* found) {
    return guarded(nullptr, [&] {
        checkImage(image);
        checkPattern(pattern);
        require(placed != nullptr, "the number's place is NULL");
        const DenseImage dense(*image);
        const DotReading reading = readDots(dense, *pattern, region);
        if (reading.status < 0) {
            throw Fault(reading.status, "the plate cannot be read");
        }
        std::vector<CalibratedDot> list;
        for (const Dot& dot : indexDots(dense, *pattern, reading.points)) {
            list.push_back({dot, {}});
        }
        give(list, false, dots);
        *placed = static_cast<std::int64_t>(list.size());
        if (found != nullptr) {
            *found = static_cast<std::int64_t>(reading.points.size());
        }
    });
}

std::int32_t zelmMeasurePlateTraits(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                    ZelmMeasurePlateTraits* traits) {
    return guarded(nullptr, [&] {
        checkImage(image);
        checkPattern(pattern);
        const DenseImage dense(*image);
        giveRecord({0, brightLevel(dense), countMarkerSized(dense, *pattern), countOppositeDots(dense, *pattern)},
                   traits);
    });
}

std::int32_t zelmMeasureDotCentres(const ZelmMeasureImage* image, std::int64_t count, const double* seeds,
                                   std::int32_t polarity, double* centres, std::int32_t* statuses) {
    return guarded(nullptr, [&] {
        checkImage(image);
        require(count >= 0, "the number of dots is negative");
        require(polarity == 0 || polarity == 1, "the polarity is 0, dark, or 1, bright");
        if (count == 0) {
            return;
        }
        require(seeds != nullptr && centres != nullptr && statuses != nullptr, "an array is NULL");
        const DenseImage dense(*image);
        std::vector<std::optional<Point2d>> found(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < found.size(); ++i) {
            found[i] = dotCentre(dense, {seeds[2 * i], seeds[2 * i + 1]},
                                 polarity == 1 ? DotPolarity::bright : DotPolarity::dark);
        }
        for (std::size_t i = 0; i < found.size(); ++i) {
            statuses[i] = found[i] ? ZELM_MEASURE_DOT_OK : ZELM_MEASURE_DOT_MISSING;
            if (found[i]) {
                centres[2 * i] = found[i]->x;
                centres[2 * i + 1] = found[i]->y;
            }
        }
    });
}
