// The dots that both images of a view show, taken with a rig that is calibrated.
#ifndef ZELM_TOOL_VIEW_DOTS_H
#define ZELM_TOOL_VIEW_DOTS_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "console.h"
#include "plateFile.h"
#include "rigFile.h"
#include "skippedViews.h"

namespace zelm::tool {

struct ViewImages {
    std::vector<std::filesystem::path> left;
    std::vector<std::filesystem::path> right;  // in the same order
    std::optional<ZelmRect> leftRegion;
    std::optional<ZelmRect> rightRegion;
    bool areRefined = true;  // the dots are measured anew on their pixels
};

struct ViewDots {
    std::filesystem::path left;
    std::filesystem::path right;
    std::vector<std::int32_t> grid;   // 2 a dot
    std::vector<double> leftPixels;   // 2 a dot: centres of the ellipses
    std::vector<double> rightPixels;  //
    std::size_t refused = 0;          // dots that were read, and that their pixels do not confirm

    std::size_t count() const { return grid.size() / 2; }
};

struct ViewDotsReading {
    std::vector<ViewDots> views;
    std::vector<SkippedView> skipped;
};

// Reads the views one after the other; those that cannot be read are told as warnings. Throws ImageFailure when none
// can, and Failure for images of another size than the rig's.
ViewDotsReading readViewDots(const ViewImages& images, const Plate& plate, const LoadedRig& rig,
                             const Console& console);

}  // namespace zelm::tool

#endif
