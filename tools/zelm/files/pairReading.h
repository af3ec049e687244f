// Reads the plate in every image pair of a calibration.
#ifndef ZELM_TOOL_PAIR_READING_H
#define ZELM_TOOL_PAIR_READING_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "console.h"
#include "imageFile.h"
#include "pictureStore.h"
#include "plateFile.h"
#include "rigFile.h"
#include "skippedViews.h"

namespace zelm::tool {

struct PairSettings {
    Plate plate;
    int leftModel = 0;
    int rightModel = 0;
    std::optional<ZelmRect> leftRegion;
    std::optional<ZelmRect> rightRegion;
    bool strict = false;  // one view that cannot be read ends it all
};

struct PairReading {
    CalibPtr calib;  // holds the dots of the used views, in their order
    Zelm2ViewCameraDesc cameras{};
    std::vector<ViewFiles> used;
    std::vector<SkippedView> skipped;
    std::shared_ptr<PictureStore> pictures;  // of all views
};

inline constexpr std::size_t kMinViews = 3;

// Pairs the images. Throws Failure when the numbers do not fit together or are too small.
std::vector<ViewFiles> pairImages(const std::vector<std::filesystem::path>& left,
                                  const std::vector<std::filesystem::path>& right, const PairSettings& settings);

// Reads the views one after the other, leaving out those that cannot be read. Throws Failure when too few are left,
// when one fails and `strict` is set, or when images of a camera differ in size.
PairReading readPairs(const std::vector<ViewFiles>& views, const PairSettings& settings, const Console& console);

}  // namespace zelm::tool

#endif
