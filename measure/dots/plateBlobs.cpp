#include "plateBlobs.h"

#include <memory>

namespace zelm::measure {
namespace {

struct FreeBlobs {
    void operator()(ZelmBlob* blobs) const { zelmBinFree(&blobs); }
};

}  // namespace

std::vector<ZelmBlob> blobsOf(const DenseImage& image, const Pattern& plate, const ZelmRect& region) {
    const ZelmImage record = image.record();
    ZelmBlob* blobs = nullptr;
    std::int32_t count = 0;
    const std::int32_t threshold = zelmBinOtsuThresholdImage(&record, &region);
    const std::int32_t status =
        zelmBinBlob(&record, &region, threshold, plate.polarity, 0, plate.minDotArea, &blobs, &count);
    std::vector<ZelmBlob> found;
    const std::unique_ptr<ZelmBlob, FreeBlobs> owner(blobs);
    requireMemory(status);
    if (status >= 0 && blobs != nullptr) {
        found.assign(blobs, blobs + count);
    }
    return found;
}

}  // namespace zelm::measure
