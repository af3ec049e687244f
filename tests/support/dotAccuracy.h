// How well dots are placed by all their pixels: rendered plates against their truth, beside the library's reader and
// the Cramer-Rao bound.
#ifndef ZELM_TEST_DOT_ACCURACY_H
#define ZELM_TEST_DOT_ACCURACY_H

#include "readingViews.h"

namespace zelm::accuracy {

struct DotFigures {
    int dots = 0;
    int placed = 0;
    double rms = 0.0;                 // error of a coordinate, pixels
    double biasX = 0.0, biasY = 0.0;  // mean errors
    double worst = 0.0;               // distance
    double expected = 0.0;            // by the covariances that the fit gives
    double bound = 0.0;               // root mean square Cramer-Rao bound of a coordinate
    double reader = 0.0;              // error of a coordinate of the library's reader, for the dots that it finds
    int read = 0;                     // by the reader
    double microseconds = 0.0;        // of the processor, a dot
};

// Predictions up to `aside` pixels aside in x and y, and 5 % too small or large.
DotFigures refinePlates(const ReadingCase& setting, double aside, bool withReader);

// Least standard deviation of a coordinate of the centre of an ellipse of whose size, blur and gray levels, linear
// inside and outside, nothing is known beforehand; by the pixels up to `reach` outside its outline.
double ellipseBound(const render::EllipseTruth& ellipse, double noise, double contrast, double blur, double reach);

}  // namespace zelm::accuracy

#endif
