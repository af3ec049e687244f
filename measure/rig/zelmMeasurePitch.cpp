// The exported function of a plate's pitches.
#include <cstddef>
#include <vector>

#include "calibObject.h"
#include "pitchRatio.h"
#include "records.h"

using namespace zelm::measure;

namespace {

std::vector<ViewPlaces> placesOf(const Zelm2ViewCalib& calib, bool isLeft) {
    zelm::Zelm2ViewWork* const work = zelm::openedWork(calib);
    require(work != nullptr, "the object was loaded: it holds no dots");
    const Zelm2ViewPtnEntry* const entries = zelm::entriesOf(work, isLeft ? zelm::Camera::left : zelm::Camera::right);
    std::vector<ViewPlaces> views;
    views.reserve(static_cast<std::size_t>(work->views));
    for (std::int32_t i = 0; i < work->views; ++i) {
        const Zelm2ViewPtnEntry& entry = entries[i];
        if (entry.count >= 4) {
            views.push_back({{entry.plane, entry.plane + entry.count}, {entry.image, entry.image + entry.count}});
        }
    }
    return views;
}

}  // namespace

std::int32_t zelmMeasurePitchRatio(const Zelm2ViewCalib* calib, std::int32_t side, ZelmMeasurePitchRatio* ratio) {
    return guarded(nullptr, [&] {
        require(calib != nullptr && calib->data != nullptr && calib->work != nullptr, "the object is NULL");
        require(side == 'L' || side == 'R', "the side is 'L' or 'R'");
        const bool isLeft = side == 'L';
        static_cast<void>(recordOf(ratio));
        const Zelm2ViewCameraDesc cameras = zelm::block::cameras(calib->data);
        const int model = isLeft ? cameras.leftModel : cameras.rightModel;
        const std::vector<ViewPlaces> views = placesOf(*calib, isLeft);
        if (views.size() < 3 || model == ZELM_CAMERA_PARALLEL) {
            refuse("it takes at least 3 views of a perspective camera to tell the ratio of the pitches");
        }
        const PitchRatio found = pitchRatioOf(views, model, isLeft ? cameras.leftWidth : cameras.rightWidth,
                                              isLeft ? cameras.leftHeight : cameras.rightHeight);
        giveRecord({0, found.isDetermined ? 1 : 0, found.ratio, found.error, found.stated.value_or(-1.0)}, ratio);
    });
}
