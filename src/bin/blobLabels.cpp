#include "blobLabels.h"

#include <algorithm>
#include <cmath>

namespace zelm {
namespace {

constexpr int32_t kGrowth = 1000;  // labels per step

}  // namespace

bool BlobLabels::grow() {
    const auto grown = static_cast<size_t>(length) + kGrowth;
    if (length > INT32_MAX - kGrowth || grown > SIZE_MAX / sizeof(BlobLabel)) {
        return false;
    }
    void* const block = reallocBytes(labels, grown * sizeof(BlobLabel));
    if (block == nullptr) {
        return false;
    }
    labels = static_cast<BlobLabel*>(block);
    for (; static_cast<size_t>(length) < grown; ++length) {
        labels[length].equivalent = length;
        clear(&labels[length]);
    }
    return true;
}

void BlobLabels::clear(BlobLabel* label) const {
    *label = {label->equivalent, 0, 0.0, 0.0, 0.0, 0.0, 0.0, region.width, region.height, 0, 0};
}

void BlobLabels::merge(int32_t from, int32_t to) {
    BlobLabel& q = labels[from];
    BlobLabel& into = labels[to];
    into.area = wrapped(static_cast<uint32_t>(into.area) + static_cast<uint32_t>(q.area));
    into.sumX += q.sumX;
    into.sumY += q.sumY;
    into.sumXX += q.sumXX;
    into.sumYY += q.sumYY;
    into.sumXY += q.sumXY;
    into.minX = std::min(into.minX, q.minX);
    into.minY = std::min(into.minY, q.minY);
    into.maxX = std::max(into.maxX, q.maxX);
    into.maxY = std::max(into.maxY, q.maxY);
    clear(&q);
}

void BlobLabels::report(int32_t label, ZelmBlob* blob) const {
    const BlobLabel& q = labels[label];
    const double cx = q.sumX / q.area;
    const double cy = q.sumY / q.area;
    const double mu20 = q.sumXX - 2.0 * cx * q.sumX + cx * cx * q.area;
    const double mu02 = q.sumYY - 2.0 * cy * q.sumY + cy * cy * q.area;
    const double mu11 = q.sumXY - cy * q.sumX - cx * q.sumY + cx * cy * q.area;
    blob->area = q.area;
    blob->cx = cx;
    blob->cy = cy;
    blob->left = region.x + q.minX;
    blob->top = region.y + q.minY;
    blob->right = region.x + q.maxX;
    blob->bottom = region.y + q.maxY;
    blob->width = q.maxX - q.minX + 1;
    blob->height = q.maxY - q.minY + 1;
    blob->angle = 0.5 * std::atan2(2.0 * mu11, mu20 - mu02);
}

}  // namespace zelm
