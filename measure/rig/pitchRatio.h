// The ratio of a plate's pitches, from the dots of one camera's views.
#ifndef ZELM_MEASURE_PITCH_RATIO_H
#define ZELM_MEASURE_PITCH_RATIO_H

#include <zelmLib.h>

#include <optional>
#include <vector>

namespace zelm::measure {

// The dots of one view, in the same order.
struct ViewPlaces {
    std::vector<Point2d> plane;  // as the plate is described
    std::vector<Point2d> image;  // pixels
};

struct PitchRatio {
    bool isDetermined = false;
    double ratio = 0.0;            // true pitch along x over that along y, over the stated ratio; 0: none fits
    double error = 0.0;            // pixels, mean, with this ratio
    std::optional<double> stated;  // with the stated one
};

// Of a perspective camera, model 0 or 1, whose images have this size. Throws when memory runs out.
PitchRatio pitchRatioOf(const std::vector<ViewPlaces>& views, int model, int width, int height);

}  // namespace zelm::measure

#endif
