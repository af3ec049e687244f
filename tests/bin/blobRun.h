// Runs the library's blob labelling and compares results, for the tests of blobs.
#ifndef ZELM_TEST_BLOB_RUN_H
#define ZELM_TEST_BLOB_RUN_H

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "blobModels.h"

namespace zelmtest {

inline std::vector<ZelmBlob> blobsOf(TestImage& image, const BlobRequest& q) {
    const ZelmImage record = image.record();
    ZelmBlob* blobs = nullptr;
    std::int32_t count = -1;
    EXPECT_EQ(zelmBinBlob(&record, &q.region, q.threshold, q.polarity, q.clearEdge, q.minArea, &blobs, &count),
              ZELM_OK);
    std::vector<ZelmBlob> result;
    if (blobs != nullptr && count >= 0) {
        result.assign(blobs, blobs + count);
    }
    zelmBinFree(&blobs);
    return result;
}

// Bit for bit: all sums are integers below 2^53 and the formulas the same.
inline bool same(const ZelmBlob& a, const ZelmBlob& b) {
    return a.area == b.area && a.cx == b.cx && a.cy == b.cy && a.left == b.left && a.top == b.top &&
           a.right == b.right && a.bottom == b.bottom && a.width == b.width && a.height == b.height &&
           a.angle == b.angle;
}

inline bool same(const std::vector<ZelmBlob>& a, const std::vector<ZelmBlob>& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](const ZelmBlob& p, const ZelmBlob& q) { return same(p, q); });
}

}  // namespace zelmtest

#endif
