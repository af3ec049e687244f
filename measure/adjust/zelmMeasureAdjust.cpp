// The exported functions of the adjustment.
#include <zelmMeasure.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "adjustOptions.h"
#include "adjustmentHandle.h"
#include "records.h"

using namespace zelm::measure;

namespace {

Side sideFrom(std::int32_t side) {
    return sideOf(side) == 'L' ? kLeft : kRight;
}

std::size_t viewOf(const Adjustment& adjustment, std::int32_t view) {
    require(view >= 0 && static_cast<std::size_t>(view) < adjustment.views().size(), "the adjustment has no such view");
    return static_cast<std::size_t>(view);
}

// Without arrays there is room for none.
ZelmMeasureAdjustedDots arraysOf(const ZelmMeasureAdjustedDots* given) {
    const ZelmMeasureAdjustedDots arrays = given == nullptr ? ZelmMeasureAdjustedDots{} : recordOf(given);
    require(arrays.capacity >= 0, "the capacity is negative");
    return arrays;
}

// Writes the dots that the caller has room for.
void give(const Adjustment& adjustment, Side side, std::size_t view, const ZelmMeasureAdjustedDots& out) {
    const auto put = [](auto* array, std::size_t i, auto x, auto y) {
        if (array != nullptr) {
            array[2 * i] = x;
            array[2 * i + 1] = y;
        }
    };
    const auto& dots = adjustment.views()[view].dots[side];
    for (std::size_t i = 0; i < dots.size() && i < static_cast<std::size_t>(out.capacity); ++i) {
        const DotObservation& dot = dots[i];
        put(out.grid, i, dot.index.x, dot.index.y);
        put(out.pixels, i, dot.pixel.x, dot.pixel.y);
        const Point2d centre = adjustment.centreOf(side, view, dot);
        put(out.centres, i, centre.x, centre.y);
        put(out.residuals, i, dot.residual.x, dot.residual.y);
        if (out.covariances != nullptr) {
            const auto covariance = covarianceOf(dot, adjustment.summary().noise[side]);
            std::copy(covariance.begin(), covariance.end(), out.covariances + 3 * i);
        }
        if (out.statuses != nullptr) {
            out.statuses[i] = static_cast<std::int32_t>(dot.fate);
        }
    }
}

ZelmMeasureAdjustSummary summaryOf(const Adjustment& adjustment) {
    const AdjustSummary& s = adjustment.summary();
    const AdjustState& state = adjustment.state();
    const auto deviation = [&](std::size_t parameter) {
        return std::sqrt(adjustment.covariance().shared[parameter * kSharedParameters + parameter]);
    };
    ZelmMeasureAdjustSummary r{};
    r.views = static_cast<std::int32_t>(adjustment.views().size());
    r.viewsLeftOut = static_cast<std::int32_t>(s.viewsLeftOut);
    r.parameters = static_cast<std::int32_t>(s.parameters);
    r.dots = static_cast<std::int64_t>(s.observations);
    r.outliers = static_cast<std::int64_t>(s.outliers);
    r.freedom = s.freedom;
    r.chiSquare = s.chiSquare;
    r.leftBefore = s.rmsBefore[kLeft];
    r.rightBefore = s.rmsBefore[kRight];
    r.leftRms = s.rms[kLeft];
    r.rightRms = s.rms[kRight];
    r.leftNoise = s.noise[kLeft];
    r.rightNoise = s.noise[kRight];
    r.dotFactor = state.factors[kPlainDot];
    r.dotFactorSigma = deviation(kSharedFactors);
    r.markerFactor = state.factors[kMarkerDot];
    r.markerFactorSigma = deviation(kSharedFactors + 1);
    for (std::size_t i = 0; i < 3; ++i) {
        r.bow[i] = state.bow.b[i];
        r.bowSigma[i] = deviation(kSharedBow + i);
    }
    r.refinedDots = adjustment.usesRefinedDots() ? 1 : 0;
    return r;
}

}  // namespace

std::int32_t zelmMeasureAdjustOpen(const ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern,
                                   const ZelmMeasureAdjustOptions* options, ZelmMeasureAdjustment** adjustment) {
    if (rig == nullptr || !rig->isOpen || pattern == nullptr || adjustment == nullptr || *adjustment != nullptr) {
        return ZELM_ERR_PARAM;
    }
    return openAdjustment(adjustment, [&] {
        checkPlate(*pattern);
        const ZelmMeasureAdjustOptions given = options == nullptr ? ZelmMeasureAdjustOptions{} : recordOf(options);
        return std::make_unique<Adjustment>(rig->rig, *pattern, optionsOf(given), placesOf(given));
    });
}

void zelmMeasureAdjustClose(ZelmMeasureAdjustment** adjustment) {
    if (adjustment != nullptr) {
        delete *adjustment;
        *adjustment = nullptr;
    }
}

const char* zelmMeasureAdjustError(const ZelmMeasureAdjustment* adjustment) {
    return adjustment == nullptr ? "" : adjustment->error.c_str();
}

std::int32_t zelmMeasureAdjustSolve(ZelmMeasureAdjustment* handle) {
    return withAdjustment(handle, [](Adjustment& adjustment) { adjustment.solve(); });
}

std::int32_t zelmMeasureAdjustRefine(ZelmMeasureAdjustment* handle, std::int32_t side, std::int32_t view,
                                     const ZelmMeasureImage* image, ZelmMeasureRefined* refined) {
    return withAdjustment(handle, [&](Adjustment& adjustment) {
        checkImage(image);
        const Side camera = sideFrom(side);
        const std::size_t index = viewOf(adjustment, view);
        if (refined != nullptr) {
            recordOf(refined);
        }
        const RefinedCounts counts = adjustment.refine(camera, index, DenseImage(*image));
        if (refined != nullptr) {
            giveRecord({0, counts.read, counts.refined, counts.refused, counts.added, 0}, refined);
        }
    });
}

std::int32_t zelmMeasureAdjustAddView(ZelmMeasureAdjustment* handle, const ZelmMeasureImage* left,
                                      const ZelmMeasureImage* right, std::int32_t* leftDots, std::int32_t* rightDots) {
    return withAdjustment(handle, [&](Adjustment& adjustment) {
        checkImage(left);
        checkImage(right);
        require(leftDots != nullptr && rightDots != nullptr, "the numbers' places are NULL");
        const auto counts = adjustment.addView(DenseImage(*left), DenseImage(*right));
        *leftDots = counts[kLeft];
        *rightDots = counts[kRight];
    });
}

std::int32_t zelmMeasureAdjustSummary(ZelmMeasureAdjustment* handle, ZelmMeasureAdjustSummary* summary) {
    return withAdjustment(handle, [&](Adjustment& adjustment) {
        recordOf(summary);
        giveRecord(summaryOf(adjustment), summary);
    });
}

const char* zelmMeasureAdjustView(const ZelmMeasureAdjustment* handle, std::int32_t view) {
    if (handle == nullptr || !handle->adjustment || view < 0 ||
        static_cast<std::size_t>(view) >= handle->adjustment->views().size()) {
        return nullptr;
    }
    return handle->adjustment->views()[static_cast<std::size_t>(view)].leftOut.c_str();
}

std::int32_t zelmMeasureAdjustDots(ZelmMeasureAdjustment* handle, std::int32_t side, std::int32_t view,
                                   const ZelmMeasureAdjustedDots* dots, std::int64_t* count) {
    return withAdjustment(handle, [&](Adjustment& adjustment) {
        require(count != nullptr, "the number's place is NULL");
        const Side camera = sideFrom(side);
        const std::size_t index = viewOf(adjustment, view);
        const ZelmMeasureAdjustedDots arrays = arraysOf(dots);
        adjustment.requireCurrent();
        give(adjustment, camera, index, arrays);
        *count = static_cast<std::int64_t>(adjustment.views()[index].dots[camera].size());
    });
}

std::int32_t zelmMeasureAdjustRig(ZelmMeasureAdjustment* handle, ZelmMeasureRig** rig) {
    return withAdjustment(handle, [&](Adjustment& adjustment) {
        require(rig != nullptr && *rig == nullptr, "the rig's place is NULL, or holds one");
        auto made = std::make_unique<ZelmMeasureRig>();
        made->rig = adjustment.adjustedRig();
        made->isOpen = true;
        *rig = made.release();
    });
}
