// One dot of known shape, placed by all pixels about its outline.
#ifndef ZELM_MEASURE_DOT_FIT_H
#define ZELM_MEASURE_DOT_FIT_H

#include <zelmMeasure.h>

#include <array>

#include "dotCentre.h"
#include "image.h"

namespace zelm::measure {

// What a camera should see of a dot.
struct DotShape {
    Point2d centre{};              // of the ellipse of its outline, as taken; right to some 2 pixels
    std::array<double, 4> axes{};  // 2 x 2, row-major U: the outline is centre + U (cos, sin), pixels
};

struct DotFitOptions {
    DotPolarity polarity = DotPolarity::dark;
    // Pixels from the centre to the outline of the nearest other dot, in the worst direction; 0: not known.
    double neighbour = 0.0;
};

enum DotFlags : unsigned {
    kDotHalfHidden = ZELM_MEASURE_DOT_HALF_HIDDEN,
    kDotHighlight = ZELM_MEASURE_DOT_HIGHLIGHT,
    kDotSaturated = ZELM_MEASURE_DOT_SATURATED,
    kDotNeighbour = ZELM_MEASURE_DOT_NEIGHBOUR,
    kDotCut = ZELM_MEASURE_DOT_CUT,
    kDotNoDot = ZELM_MEASURE_DOT_ABSENT,
    kDotNotConverged = ZELM_MEASURE_DOT_NOT_CONVERGED,
};

struct DotFitResult {
    bool ok = false;
    unsigned flags = 0;
    Point2d centre{};                    // of the ellipse
    std::array<double, 3> covariance{};  // xx, xy, yy in pixels^2, from the residual noise
    double scale = 0.0;                  // the outline's size over the predicted one
    double blur = 0.0;                   // standard deviation of the point spread without the pixel's square, pixels
    double noise = 0.0;                  // root mean square of the residuals, gray levels
    double inside = 0.0, outside = 0.0;  // gray levels at the centre, of the dot and of its ground
};

// The most likely centre, size, blur and gray levels, which are linear inside and outside, of a dot in normal noise, by
// damped least squares over the pixels about the outline (Levenberg 1944, Marquardt 1963). Not `ok` unless the pixels
// themselves show such a dot along its outline, of which 60 % may do where the rest is hidden or cut off.
DotFitResult fitDot(const DenseImage& image, const DotShape& shape, const DotFitOptions& options);

}  // namespace zelm::measure

#endif
