// How wide the edges of one dot are smeared, in every direction.
#ifndef ZELM_MEASURE_EDGE_SPREAD_H
#define ZELM_MEASURE_EDGE_SPREAD_H

#include <zelmLib.h>

#include <optional>

#include "image.h"

namespace zelm::measure {

// A symmetric 2 x 2 matrix: a variance by direction, or an ellipse.
struct Tensor2 {
    double xx = 0.0;
    double xy = 0.0;
    double yy = 0.0;

    // Along a unit direction.
    double along(double x, double y) const { return x * x * xx + 2.0 * x * y * xy + y * y * yy; }
    double determinant() const { return xx * yy - xy * xy; }
};

struct TensorAxes {
    double largest = 0.0;    // eigenvalue
    double smallest = 0.0;   //
    double direction = 0.0;  // of the largest, radians, -pi/2 to pi/2
};
TensorAxes axesOf(const Tensor2& tensor);

// A spot: its outline is the points p with (p - centre)' shape^-1 (p - centre) = 1, so that shape is the square of its
// half axis along them.
struct SpotEllipse {
    Point2d centre{};
    Tensor2 shape;
};

struct EdgeSpread {
    SpotEllipse outline;  // where the edge is half done
    Tensor2 variance;     // of the point spread without the pixel's own square, square pixels; may be negative a little
    double inside = 0.0;  // gray level
    double outside = 0.0;
    double noise = 0.0;  // root mean square of what the fit leaves, gray levels
};

// Least squares over the pixels about a spot of an edge along an ellipse, between two levels, of which the outer one is
// linear, blurred by a normal point spread that differs by direction (Levenberg 1944, Marquardt 1963). `reach`: pixels
// to which nothing else stands outside the outline. Nothing where no such edge is seen.
std::optional<EdgeSpread> edgeSpread(const DenseImage& image, const SpotEllipse& start, double reach);

}  // namespace zelm::measure

#endif
