// The labels of one blob labelling: for each the label that it stands for and the pixels gathered so far.
#ifndef ZELM_BLOB_LABELS_H
#define ZELM_BLOB_LABELS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "alloc.h"
#include "zelm/bin.h"

namespace zelm {

constexpr int32_t kEdgeLabel = -1;  // of what touches the region's edge

struct BlobLabel {
    int32_t equivalent;  // the label this one was last seen to be one with; itself while it stands alone
    int32_t area;
    double sumX;
    double sumY;
    double sumXX;
    double sumYY;
    double sumXY;
    int32_t minX;  // the box is relative to the region
    int32_t minY;
    int32_t maxX;
    int32_t maxY;
};

// The terms of a run are signed 32-bit and wrap around (docs/decisions.md#moments-wrap), so second moments are right
// only while x^2 * n, y^2 * n and n^3 / 3 stay below 2^31. Unsigned arithmetic gives that result without undefined
// overflow; the conversion back is modular.
inline int32_t wrapped(uint32_t value) {
    return static_cast<int32_t>(value);
}

// A table that grows by a fixed step and frees itself. Labels start at 1; entry 0 is background.
class BlobLabels {
public:
    explicit BlobLabels(const ZelmRect& blobRegion) : region(blobRegion) {}
    BlobLabels(const BlobLabels&) = delete;
    BlobLabels& operator=(const BlobLabels&) = delete;
    ~BlobLabels() { freeBytes(labels); }

    // Makes room for one more step of labels, each standing for itself and empty. False: no memory; nothing changed.
    [[nodiscard]] bool grow();
    [[nodiscard]] int32_t capacity() const { return length; }
    BlobLabel& operator[](int32_t label) { return labels[label]; }

    // Adds the run of n pixels that starts at region column x0 in region row r.
    void addRun(int32_t label, int32_t x0, int32_t n, int32_t r);
    // Moves what `from` gathered to `to`.
    void merge(int32_t from, int32_t to);
    // Writes the fields of a label's blob; its area must not be 0.
    void report(int32_t label, ZelmBlob* blob) const;

private:
    void clear(BlobLabel* label) const;

    ZelmRect region;
    BlobLabel* labels = nullptr;
    int32_t length = 0;
};

inline void BlobLabels::addRun(int32_t label, int32_t x0, int32_t n, int32_t r) {
    const auto X = static_cast<uint32_t>(region.x) + static_cast<uint32_t>(x0);
    const auto Y = static_cast<uint32_t>(region.y) + static_cast<uint32_t>(r);
    const auto N = static_cast<uint32_t>(n);
    const int32_t pairs = wrapped(N * (N - 1));  // twice the sum of 0..n-1
    const int32_t squares = wrapped((2 * N - 1) * (N - 1) * N) / 6;
    const uint32_t columns = X * N + static_cast<uint32_t>(pairs / 2);

    BlobLabel& into = labels[label];
    into.area = wrapped(static_cast<uint32_t>(into.area) + N);
    into.sumX += wrapped(columns);
    into.sumY += wrapped(Y * N);
    into.sumXX += wrapped(X * (X * N + static_cast<uint32_t>(pairs)) + static_cast<uint32_t>(squares));
    into.sumYY += wrapped(Y * Y * N);
    into.sumXY += wrapped(Y * columns);
    into.minX = std::min(into.minX, x0);
    into.maxX = std::max(into.maxX, x0 + n - 1);
    into.minY = std::min(into.minY, r);
    into.maxY = std::max(into.maxY, r);
}

}  // namespace zelm

#endif
