// How well the predicted centre of a dot's outline is that of the ellipse through the outline, and what the reader
// measures.
#ifndef ZELM_TEST_OUTLINE_ACCURACY_H
#define ZELM_TEST_OUTLINE_ACCURACY_H

#include <zelmLib.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "dotOutline.h"
#include "random.h"

namespace zelmtest {

struct OutlineErrors {
    std::size_t count = 0;
    double squares = 0.0;
    double worst = 0.0;  // pixels

    void add(double error) {
        ++count;
        squares += error * error;
        worst = std::max(worst, error);
    }
    void add(const OutlineErrors& other) {
        count += other.count;
        squares += other.squares;
        worst = std::max(worst, other.worst);
    }
    // Of a coordinate, pixels.
    [[nodiscard]] double rms() const { return std::sqrt(squares / (2.0 * static_cast<double>(count))); }
};

struct OutlineCase {
    zelm::measure::ProjectionCamera camera;
    zelm::measure::CircleInCamera circle;
};

// A circle anywhere in an image of 1280 x 960 pixels of a rather wide lens, f = 1100 pixels, of such a radius there.
// k1 is drawn from -0.3 to 0.1 unless it is given.
OutlineCase randomOutline(int model, double radiusPixels, double tiltDegrees, Random& random);
OutlineCase outlineWith(int model, double radiusPixels, double tiltDegrees, double k1, Random& random);

// Points of the outline, evenly spaced in its length.
std::vector<Point2d> sampledOutline(const OutlineCase& one, int count);

// Distance of the predicted centre from that of the least-squares ellipse through 2000 points, pixels.
double outlineError(const OutlineCase& one);

// Distances of predicted centres from what the reader measures in a noise-free rendered image of a plate.
OutlineErrors readerErrors(int model, double radiusPixels, double tiltDegrees, double k1);

}  // namespace zelmtest

#endif
