// What each view of a calibration is worth: how sharp its images are, and how true lengths between its dots come out.
#ifndef ZELM_TOOL_VIEW_QUALITY_H
#define ZELM_TOOL_VIEW_QUALITY_H

#include <zelmMeasure.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "pairReading.h"
#include "rigFigures.h"
#include "verdict.h"

namespace zelm::tool {

// The view whose plate is the world frame, which is always the first one.
struct ReferenceView {
    std::size_t given = 0;  // its place among the views that were given, from 0
    std::string reason;     // why it is not view 0; empty where it is
};

// How sharp the two images of a view are, left and right; none where too few dots tell.
using ViewSharpness = std::array<std::optional<ZelmMeasureSharpness>, 2>;

// Of views whose dots were read, before they are calibrated.
std::vector<ViewSharpness> sharpnessOf(const PairReading& reading, const Plate& plate, const Console& console);

// An image that is less sharp than the others of its camera.
struct BlurredImage {
    std::size_t view = 0;
    std::size_t side = 0;    // 0 left, 1 right
    bool isSmeared = false;  // along one direction; else out of focus
    double usual = 0.0;      // largest blur of the camera's other images, median, pixels
};
std::vector<BlurredImage> blurredImages(const std::vector<ViewSharpness>& views);

// What is told of it: its figures, and what to do.
std::string blurText(const BlurredImage& blurred, const ZelmMeasureSharpness& sharpness,
                     const std::filesystem::path& file);

// Errors of lengths between the dots of the plate, triangulated with the rig: measured less nominal.
struct PlateLengths {
    std::vector<std::optional<ZelmMeasureLengthFigures>> views;  // none where no lengths could be measured
    ZelmMeasureLengthFigures all{};                              // plate units
    std::size_t measured = 0;                                    // views with lengths
};
PlateLengths plateLengthsOf(const LoadedRig& rig, const Plate& plate, const RigFigures& figures);

// In words, a line each: images that are less sharp than the others, and views whose lengths are much worse. `leftOut`
// says why the adjustment left a view out; empty: it takes part.
std::vector<Doubt> qualityDoubts(const std::vector<ViewFiles>& views, const std::vector<ViewSharpness>& sharpness,
                                 const std::vector<std::string>& leftOut, const PlateLengths& lengths,
                                 const std::string& units);

}  // namespace zelm::tool

#endif
