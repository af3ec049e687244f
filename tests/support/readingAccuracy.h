// How well rendered plates are read: dots found, and their centres against the truth, over dot radius, blur, noise,
// contrast and light.
#ifndef ZELM_TEST_READING_ACCURACY_H
#define ZELM_TEST_READING_ACCURACY_H

#include "readingViews.h"

namespace zelm::accuracy {

struct ReadingFigures {
    int images = 0;
    int imagesRead = 0;  // without a failure status
    int dots = 0;        // in all images
    int found = 0;
    int wrong = 0;        // read more than half a pixel from every dot, or twice
    double rms = 0.0;     // error of a coordinate against the centre of the ellipse through the outline, pixels
    double worst = 0.0;   // distance
    double bound = 0.0;   // root mean square Cramer-Rao bound of a coordinate, pixels
    double excess = 0.0;  // root mean square of error / (1.5 bound + 0.008 pixel), coordinate by coordinate

    [[nodiscard]] double share() const { return dots > 0 ? static_cast<double>(found) / dots : 0.0; }
    [[nodiscard]] double limit() const { return 1.5 * bound + 0.008; }
};

// Cramer-Rao bound of one coordinate of the centre of a disc whose whole outline is seen in white noise:
// (sigma / C) sqrt(2 s / (sqrt(pi) r)) for contrast C, radius r and edge blur s.
double centreBound(double noise, double contrast, double blur, double radius);

// Throws what the renderer throws.
ReadingFigures readPlates(const ReadingCase& setting);

// What the ellipse centre itself misses: its distance from the image of the dot's centre, over all dots of such views.
struct CentreMiss {
    double rms = 0.0;    // pixels
    double worst = 0.0;  // pixels
};
CentreMiss ellipseCentreMiss(double radius, double tiltDegrees, double k1, double k2, bool markers);

}  // namespace zelm::accuracy

#endif
