// Blob labelling in one pass over runs.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "blobLabels.h"
#include "runScan.h"
#include "workBuffer.h"
#include "zelm/bin.h"

namespace zelm {
namespace {

constexpr int32_t kRecords = 1000;  // blob records per allocation

// What is labelled. Cleared edges are not painted in a copy: the scan treats the ring as background.
struct Scene {
    const ZelmImage& image;
    const ZelmRect& region;
    ForegroundTest isForeground;
    bool clearEdge;

    [[nodiscard]] size_t scanRow(int32_t r, Run* runs) const {
        if (clearEdge && (r == 0 || r == region.height - 1)) {
            return 0;
        }
        const uint8_t* const row = image.pixels + (region.y + static_cast<ptrdiff_t>(r)) * image.width + region.x;
        const int32_t ring = clearEdge ? 1 : 0;
        return scanRuns(row, ring, region.width - ring, isForeground, runs);
    }
};

// The runs of a row between two runs that stand for the region's edges, which are labelled as such.
class LabelRow {
public:
    explicit LabelRow(const ZelmRect& region)
        : width(region.width), runs((static_cast<size_t>(region.width) + 1) / 2 + 2) {}

    [[nodiscard]] bool ok() const { return runs.ok(); }
    // As the row above the region: edge all over.
    void fillWithEdge() {
        runs[0] = {-1, width, kEdgeLabel};
        count = 1;
    }
    void scan(const Scene& scene, int32_t r) {
        const size_t found = scene.scanRow(r, runs.data() + 1);
        runs[0] = {-1, -1, kEdgeLabel};
        runs[found + 1] = {width, width, kEdgeLabel};
        count = found + 2;
    }
    [[nodiscard]] std::span<const Run> withEdges() const { return {runs.data(), count}; }
    std::span<Run> inside() { return {runs.data() + 1, count - 2}; }

private:
    int32_t width;
    WorkBuffer<Run> runs;
    size_t count = 0;
};

// The smallest of `next` and what the neighbours stand for. One level of look-up, not a walk to the root: see
// docs/decisions.md#label-one-level.
int32_t chooseLabel(BlobLabels& labels, std::span<const Run> neighbours, int32_t next) {
    int32_t L = next;
    for (const Run& q : neighbours) {
        L = std::min(L, q.label == kEdgeLabel ? kEdgeLabel : labels[q.label].equivalent);
    }
    return L;
}

void labelRun(BlobLabels& labels, std::span<const Run> neighbours, int32_t next, int32_t r, Run& run) {
    const int32_t L = chooseLabel(labels, neighbours, next);
    run.label = L;
    if (L != kEdgeLabel) {
        labels.addRun(L, run.x0, run.x1 - run.x0 + 1, r);
    }
    for (const Run& q : neighbours) {
        if (q.label == kEdgeLabel) {
            continue;
        }
        labels[q.label].equivalent = L;
        if (L != kEdgeLabel && q.label != L && labels[q.label].area != 0) {
            labels.merge(q.label, L);
        }
    }
}

// Labels the runs of `current` from those of the row above. False: no memory for more labels.
bool labelRow(BlobLabels& labels, const LabelRow& previous, int32_t r, LabelRow& current, int32_t& next) {
    const std::span<const Run> above = previous.withEdges();
    size_t first = 0;
    for (Run& run : current.inside()) {
        while (first < above.size() && above[first].x1 < run.x0 - 1) {
            ++first;
        }
        size_t last = first;
        while (last < above.size() && above[last].x0 <= run.x1 + 1) {
            ++last;
        }
        labelRun(labels, above.subspan(first, last - first), next, r, run);
        if (run.label == next) {
            ++next;
            if (next == labels.capacity() && !labels.grow()) {
                return false;
            }
        }
    }
    return true;
}

// What lies on the bottom edge is dropped.
void dropLastRow(BlobLabels& labels, LabelRow& last) {
    for (const Run& run : last.inside()) {
        if (run.label > 0) {
            labels[run.label].equivalent = kEdgeLabel;
        }
    }
}

// Grows or shrinks the array to `records`. False: no memory; the array is freed and *blobs NULL.
bool resize(ZelmBlob** blobs, size_t records) {
    void* const block =
        records <= SIZE_MAX / sizeof(ZelmBlob) ? reallocBytes(*blobs, records * sizeof(ZelmBlob)) : nullptr;
    if (block == nullptr) {
        freeBytes(*blobs);
        *blobs = nullptr;
        return false;
    }
    *blobs = static_cast<ZelmBlob*>(block);
    return true;
}

int32_t report(BlobLabels& labels, int32_t next, int32_t minArea, ZelmBlob** blobs, int32_t* count) {
    size_t records = 0;
    size_t room = kRecords;
    for (int32_t q = 1; q < next; ++q) {
        if (labels[q].equivalent != q || labels[q].area < minArea) {
            continue;
        }
        if (records == room) {
            room += kRecords;
            if (!resize(blobs, room)) {
                return ZELM_ERR_MEMORY;
            }
            std::memset(*blobs + records, 0, kRecords * sizeof(ZelmBlob));
        }
        labels.report(q, *blobs + records);
        ++records;
    }
    if (!resize(blobs, std::max(records, size_t{1}))) {
        return ZELM_ERR_MEMORY;
    }
    *count = static_cast<int32_t>(records);
    return ZELM_OK;
}

int32_t labelBlobs(const Scene& scene, int32_t minArea, ZelmBlob** blobs, int32_t* count) {
    *blobs = static_cast<ZelmBlob*>(allocBytes(kRecords * sizeof(ZelmBlob)));
    if (*blobs == nullptr) {
        return ZELM_ERR_MEMORY;
    }
    std::memset(*blobs, 0, kRecords * sizeof(ZelmBlob));
    LabelRow rows[2] = {LabelRow(scene.region), LabelRow(scene.region)};
    BlobLabels labels(scene.region);
    if (!rows[0].ok() || !rows[1].ok() || !labels.grow()) {
        return ZELM_ERR_MEMORY;
    }

    int32_t next = 1;
    LabelRow* previous = &rows[0];
    LabelRow* current = &rows[1];
    previous->fillWithEdge();
    for (int32_t r = 0; r < scene.region.height; ++r) {
        current->scan(scene, r);
        if (!labelRow(labels, *previous, r, *current, next)) {
            return ZELM_ERR_MEMORY;
        }
        std::swap(previous, current);
    }
    dropLastRow(labels, *previous);
    return report(labels, next, minArea, blobs, count);
}

bool isFlag(int32_t value) {
    return value == 0 || value == 1;
}

}  // namespace
}  // namespace zelm

int32_t zelmBinBlob(const ZelmImage* tImage, const ZelmRect* tRegion, int32_t iThreshold, int32_t iPolarity,
                    int32_t iClearEdge, int32_t iMinArea, ZelmBlob** taBlobs, int32_t* iCount) {
    if (tImage == nullptr || tImage->width < 1 || tRegion == nullptr || tImage->height < 1 || tRegion->width < 1 ||
        taBlobs == nullptr || !zelm::isFlag(iPolarity) || !zelm::isFlag(iClearEdge) || iThreshold < 0 ||
        iThreshold > 255 || tRegion->height < 1 || iCount == nullptr || *taBlobs != nullptr) {
        return ZELM_ERR_PARAM;
    }
    const auto isForeground = zelm::ForegroundTest::of(iThreshold, iPolarity);
    // With threshold 0 and polarity 1 the painted ring would be foreground like all the rest, so nothing is cleared.
    const bool clearEdge = iClearEdge == 1 && isForeground.level != 0;
    return zelm::labelBlobs({*tImage, *tRegion, isForeground, clearEdge}, iMinArea, taBlobs, iCount);
}

void zelmBinFree(ZelmBlob** taBlobs) {
    zelm::freeBytes(*taBlobs);
    *taBlobs = nullptr;
}
