// The pixels by which one dot is placed.
#ifndef ZELM_MEASURE_DOT_PIXELS_H
#define ZELM_MEASURE_DOT_PIXELS_H

#include <optional>

#include "dotModel.h"
#include "image.h"

namespace zelm::measure {

// With what is computed of an outline once; nothing for axes that cannot be meant.
std::optional<DotOutline> outlineOf(const std::array<double, 4>& axes);

// Where to look in which image.
struct DotPlace {
    const DenseImage& image;
    const DotOutline& outline;
    Point2d centre;       // predicted
    double outsideLimit;  // no pixel is farther outside the outline, pixels
};

// Sectors whose part of the outline lies in the image.
SectorMask sectorsInImage(const DotPlace& place);

// Standard deviation of the noise about the dot, by second differences along the rows, of which most see no outline.
double localNoise(const DotPlace& place);

// A few pixels along lines across the outline, up to the reach, enough to find a dot that is some pixels aside.
void gatherSparse(const DotPlace& place, double reach, double variance, DotPixels& to);

// Which pixels are taken.
struct DotBand {
    double edge = 0.0;       // pixels that the blur of the outline reaches are samples; others are summed
    double inside = 0.0;     // those deeper inside are left out
    double outside = 0.0;    // and those farther outside
    double tolerance = 0.0;  // pixels of uniform ground that differ from their level by more are left out
};

// Pixels left out by the tolerance, by sector.
struct DotOutliers {
    std::array<int, kDotSectors> brighter{};
    std::array<int, kDotSectors> darker{};
};

// All pixels of the band about the outline as it is at the model's unknowns; the model is that of these pixels.
DotOutliers gatherBand(const DotPlace& place, const DotBand& band, double variance, DotModel& model, DotPixels& to);

}  // namespace zelm::measure

#endif
