#include "calibrationDoubts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>
#include <utility>

#include "fieldDoubts.h"
#include "imageNames.h"
#include "viewQuality.h"

namespace zelm::tool {
namespace {

bool isAdjusted(const Calibration& c) {
    return c.adjustment && c.adjustment->refusal.empty();
}

std::string filesOf(const ViewFiles& view) {
    if (view.left.empty() || view.right.empty() || view.left == view.right) {  // as of points
        return (view.left.empty() ? view.right : view.left).string();
    }
    return fmt::format("{} and {}", view.left.string(), view.right.string());
}

Doubt ofView(const char* cause, const ViewFiles& view, std::string text) {
    return {cause, std::move(text), {view.left, view.right}, false};
}

// The file or files that a self-check is about.
std::string filesOf(const ZelmMeasureCheck& check, const Calibration& c, const std::string& plateFile) {
    switch (check.kind) {
        case ZELM_MEASURE_CHECK_BOW:
        case ZELM_MEASURE_CHECK_PITCH:
        case ZELM_MEASURE_CHECK_DOT_DIAMETER:
        case ZELM_MEASURE_CHECK_MARKER_DIAMETER:
            return plateFile;
        default:
            return filesOf(c.views[check.view < 0 ? 0U : static_cast<std::size_t>(check.view)]) +
                   (check.view < 0 ? " and all other views" : "");
    }
}

std::vector<Doubt> wrongChecks(const Calibration& c, const std::string& plateFile) {
    std::vector<Doubt> lines;
    if (isAdjusted(c)) {
        for (const ZelmMeasureCheck& check : c.adjustment->checks) {
            if (check.verdict == ZELM_MEASURE_CHECK_WRONG) {
                lines.push_back(
                    {"self-check", fmt::format("{}: {}", filesOf(check, c, plateFile), check.text), {}, false});
            }
        }
    }
    return lines;
}

// No check sees a common factor of all distances. But print that bleeds widens all dots by about as much, not by the
// same factor: when dots and markers are off by one factor, the distances are.
std::vector<Doubt> wrongScale(const Calibration& c, const std::string& plateFile) {
    if (!isAdjusted(c)) {
        return {};
    }
    constexpr double kMaxDeviations = 3.0;
    const ZelmMeasureCheck* dots = nullptr;
    const ZelmMeasureCheck* markers = nullptr;
    for (const ZelmMeasureCheck& check : c.adjustment->checks) {
        const bool isWrong = check.verdict == ZELM_MEASURE_CHECK_WRONG;
        dots = isWrong && check.kind == ZELM_MEASURE_CHECK_DOT_DIAMETER ? &check : dots;
        markers = isWrong && check.kind == ZELM_MEASURE_CHECK_MARKER_DIAMETER ? &check : markers;
    }
    if (dots == nullptr || markers == nullptr ||
        std::fabs(dots->value - markers->value) > kMaxDeviations * std::hypot(dots->deviation, markers->deviation)) {
        return {};
    }
    return {{"plate-scale",
             fmt::format("{}: dots and markers are off by the same factor: if their diameters are right, it is the "
                         "field, the pitches and the marker distances that are {:.4g} times the plate's, and with them "
                         "all lengths that are measured",
                         plateFile, 1.0 + dots->value),
             {},
             false}};
}

// Those with an image that is less sharp than the others are told for that.
std::vector<Doubt> leftOutViews(const Calibration& c) {
    std::vector<Doubt> lines;
    std::set<std::size_t> blurred;
    for (const BlurredImage& image : blurredImages(c.sharpness)) {
        blurred.insert(image.view);
    }
    if (isAdjusted(c)) {
        for (std::size_t view = 0; view < c.adjustment->leftOut.size(); ++view) {
            if (const std::string& reason = c.adjustment->leftOut[view]; !reason.empty() && !blurred.contains(view)) {
                lines.push_back(
                    ofView("view-left-out", c.views[view],
                           fmt::format("{}: view {} takes no part: {}", filesOf(c.views[view]), view, reason)));
            }
        }
    }
    return lines;
}

// Dots are read to some hundredths of a pixel. What leaves this much is no noise.
std::vector<Doubt> farDots(const Calibration& c, const std::string& plateFile) {
    constexpr double kMaxRms = 0.5;  // pixels
    const double rms = std::max(c.figures.left.distances.rms, c.figures.right.distances.rms);
    if (rms <= kMaxRms) {
        return {};
    }
    return {{"far-dots",
             fmt::format("{}: the dots lie {:.2f} px RMS from where the calibration puts them, some hundredths are "
                         "usual: is this the file of the plate in the images, and does the camera model fit the lens?",
                         plateFile, rms),
             {},
             false}};
}

// Only a pair taken from view 0 alone can be so far off: each camera fits its dots, both together do not. Where an
// adjustment was tried and failed, that is why.
std::vector<Doubt> farLines(const Calibration& c) {
    constexpr double kMaxRms = 2.0;  // pixels: view 0 places a pair to some tenths over the other views
    if (c.figures.epipolar.rms <= kMaxRms) {
        return {};
    }
    return {{"far-lines",
             fmt::format("{} to {}: the dots of both images lie {:.1f} px RMS from each other's epipolar lines: are "
                         "--left and --right in the same order of views, both images of a view taken at once, and none "
                         "of them mirrored?",
                         c.views.front().left.string(), c.views.back().right.string(), c.figures.epipolar.rms),
             {},
             c.adjustment.has_value() && !isAdjusted(c)}};
}

// Where the right camera stands, along the x axis of the left one. A pair mounted upside down stands so as well: it is
// the names of the images that tell.
std::vector<Doubt> exchangedCameras(const Calibration& c) {
    if (!c.rig.pair || !areNamedExchanged(c.views)) {
        return {};
    }
    const PairGeometry& pair = *c.rig.pair;
    const auto along = [&](int axis) {
        return -(pair.R[axis] * pair.t[0] + pair.R[3 + axis] * pair.t[1] + pair.R[6 + axis] * pair.t[2]);
    };
    if (!(along(0) < -std::fabs(along(1)))) {
        return {};
    }
    return {
        ofView("left-right-exchanged", c.views.front(),
               fmt::format("{}: the right camera stands {:.4g} {} to the left of the left one, and the names of the "
                           "images say so too: exchange --left and --right; if they are named so on purpose, keep "
                           "to it wherever you measure",
                           filesOf(c.views.front()), -along(0), c.plate.units))};
}

// An adjustment that could use both images of fewer than half of the views: the sets of images are not of the same
// plate in the same places.
std::vector<Doubt> disagreement(const Calibration& c, const std::string& plateFile) {
    if (!isAdjusted(c)) {
        return {};
    }
    std::size_t pairs = 0;
    std::size_t agreed = 0;
    const ViewFiles* first = nullptr;  // that does not agree
    for (std::size_t i = 0; i < c.views.size(); ++i) {
        if (c.views[i].left.empty() || c.views[i].right.empty()) {
            continue;  // one image is all that a parallel camera takes
        }
        const bool isAgreed = !c.figures.left.views[i].dots.empty() && !c.figures.right.views[i].dots.empty();
        pairs += 1;
        agreed += isAgreed ? 1U : 0U;
        first = first == nullptr && !isAgreed ? &c.views[i] : first;
    }
    if (2 * agreed >= pairs) {
        return {};
    }
    const std::vector<Doubt> wrong = wrongChecks(c, plateFile);
    Doubt doubt = ofView(
        "disagreement", *first,
        fmt::format("{}: only {} of {} views fit one pair of cameras, this one does not: are --left and --right in the "
                    "same order of views, both images of a view taken at once, none of them mirrored, and is {} the "
                    "plate's file?{}",
                    filesOf(*first), agreed, pairs, plateFile,
                    wrong.empty() ? "" : " The self-checks say of " + wrong.front().text));
    doubt.isFatal = true;
    return {doubt};
}

}  // namespace

std::vector<Doubt> calibrationDoubts(const Calibration& c, const std::string& plateFile) {
    std::vector<Doubt> doubts;
    const bool isParallelPair = c.rig.left.isParallel() && c.rig.right.isParallel();  // which is never adjusted
    if (c.adjustment && !isAdjusted(c) && !isParallelPair) {
        doubts.push_back({"not-adjusted",
                          fmt::format("{}: not adjusted: {}; the result is that of the cameras one by one, and its "
                                      "uncertainty is not known",
                                      plateFile, c.adjustment->refusal),
                          {},
                          false});
    }
    for (const auto& more :
         {disagreement(c, plateFile), leftOutViews(c), wrongChecks(c, plateFile), wrongScale(c, plateFile),
          farDots(c, plateFile), farLines(c), fieldDoubts(c, plateFile), exchangedCameras(c)}) {
        doubts.insert(doubts.end(), more.begin(), more.end());
    }
    return doubts;
}

}  // namespace zelm::tool
