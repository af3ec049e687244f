#include "patternReader.h"

#include <cstddef>
#include <span>

#include "alloc.h"
#include "calibObject.h"
#include "patternBlobs.h"
#include "patternDots.h"
#include "patternGrid.h"
#include "patternMarkers.h"
#include "patternOutliers.h"
#include "patternPlate.h"

namespace zelm {
namespace {

// Fewer dots than a count that may be zero or negative: then never.
bool isFewer(std::size_t dots, std::int32_t required) {
    return static_cast<std::int64_t>(dots) < required;
}

// New arrays with room for so many dots in place of the entry's own, which are freed first.
std::int32_t replaceArrays(std::size_t most, Zelm2ViewPtnEntry* entry) {
    emptyEntry(entry);
    WorkBuffer<Point2d> plane(most);
    WorkBuffer<Point2d> image(most);
    if (!plane.ok() || !image.ok()) {
        return ZELM_ERR_MEMORY;
    }
    entry->plane = plane.release();
    entry->image = image.release();
    return ZELM_OK;
}

bool shrinkArray(std::size_t count, Point2d** points) {
    auto* const shrunk = static_cast<Point2d*>(reallocBytes(*points, count * sizeof(Point2d)));
    if (shrunk == nullptr) {
        return false;
    }
    *points = shrunk;
    return true;
}

// Shrinks both arrays to the count; an entry without dots holds no arrays.
std::int32_t shrinkArrays(Zelm2ViewPtnEntry* entry) {
    if (entry->count == 0) {
        emptyEntry(entry);
        return ZELM_OK;
    }
    const auto count = static_cast<std::size_t>(entry->count);
    if (!shrinkArray(count, &entry->plane) || !shrinkArray(count, &entry->image)) {
        return ZELM_ERR_MEMORY;
    }
    return ZELM_OK;
}

// From labelled blobs to dots on the grid, in the entry's new arrays.
std::int32_t locateDots(const ZelmImage& image, const Zelm2ViewPatternDesc& pattern, std::span<const ZelmBlob> blobs,
                        Zelm2ViewPtnEntry* entry) {
    DotList dots;
    if (const auto s = measurePatternDots(image, pattern, blobs, &dots); s < 0) {
        return s;
    }
    if (const auto s = rejectOutlierDots(&dots); s < 0) {
        return s;
    }
    if (isFewer(dots.size(), pattern.minDots)) {
        return ZELM_ERR_PATTERN;
    }
    DotList markers;
    if (const auto s = pickMarkers(dots.span(), pattern, &markers); s < 0) {
        return s;
    }
    MarkerFrame frame{};
    if (const auto s = findMarkerFrame(markers.span(), dots.span(), &frame); s < 0) {
        return s;
    }
    double G[9];
    if (const auto s = estimateGridMap(dots.span(), frame, pattern, G); s < 0) {
        return s;
    }
    assignGrid(dots.span(), frame.corner, pattern, G, entry);
    return ZELM_OK;
}

}  // namespace

std::int32_t innerReadPattern(const ZelmImage& image, const ZelmRect* region, const Zelm2ViewPatternDesc& pattern,
                              Zelm2ViewPtnEntry* entry) {
    ZelmRect field{};
    if (region != nullptr) {
        field = *region;
    } else if (const auto s = findPatternPlate(image, pattern.polarity, &field); s < 0) {
        return s;
    }
    PatternBlobs blobs;
    if (const auto s = blobs.find(image, field, pattern.polarity, 0, pattern.minDotArea); s < 0) {
        return s;
    }
    if (isFewer(blobs.span().size(), pattern.minDots)) {
        return ZELM_ERR_PATTERN;
    }
    if (const auto s = replaceArrays(blobs.span().size(), entry); s < 0) {
        return s;
    }
    auto status = locateDots(image, pattern, blobs.span(), entry);
    if (status >= 0) {
        status = shrinkArrays(entry);
    }
    if (status < 0) {
        emptyEntry(entry);
        return status;
    }
    return entry->count < pattern.minDots ? ZELM_ERR_PATTERN : ZELM_OK;
}

}  // namespace zelm
