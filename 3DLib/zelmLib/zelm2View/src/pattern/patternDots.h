// The dots of a pattern, measured to sub-pixel precision.
#ifndef ZELM_PATTERN_DOTS_H
#define ZELM_PATTERN_DOTS_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "workBuffer.h"
#include "zelm/bin.h"
#include "zelm/twoView.h"

namespace zelm {

// How a dot's outline is foreshortened: by the factor 1 + stretch along the direction phi, that of the minor axis.
struct DotTilt {
    double x;    // stretch * cos(phi)
    double y;    // stretch * sin(phi)
    double phi;  // radians
};

struct PatternDot {
    Point2d centre;       // of the fitted ellipse, pixels
    double eccentricity;  // of the ellipse
    double ellipseArea;   // pixels
    double blobArea;      // pixels
    DotTilt tilt;
};

// The dots found so far, in the order of their blobs.
class DotList {
public:
    // Room for so many; false if it cannot be had.
    bool acquire(std::size_t most) {
        dots = WorkBuffer<PatternDot>(most);
        count = 0;
        return dots.ok();
    }
    void add(const PatternDot& dot) { dots[count++] = dot; }
    [[nodiscard]] std::size_t size() const { return count; }
    [[nodiscard]] std::span<const PatternDot> span() const { return {dots.data(), count}; }

    // Drops the dots that fail the test and keeps the order of the others.
    template <class Test>
    void keepIf(Test test) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (test(dots[i])) {
                dots[kept++] = dots[i];
            }
        }
        count = kept;
    }

private:
    WorkBuffer<PatternDot> dots;
    std::size_t count = 0;
};

// Measures each blob: 20 rays from its centroid find the outline, an ellipse through them gives the dot. A blob whose
// outline is not found all round, or is no ellipse, is dropped. Fails for want of memory alone.
std::int32_t measurePatternDots(const ZelmImage& image, const Zelm2ViewPatternDesc& pattern,
                                std::span<const ZelmBlob> blobs, DotList* dots);

}  // namespace zelm

#endif
