// How well the search along a line places matches: textures of known shift, over the line's angle, noise, template
// size, masks and sampling mode.
#ifndef ZELM_TEST_MATCHING_ACCURACY_H
#define ZELM_TEST_MATCHING_ACCURACY_H

#include <cstdint>

namespace zelm::accuracy {

enum class LineThrough { pixelCentres, anywhere };

// One setting. A trial has its own texture, whose autocorrelation is exp(-d^2 / (2 grain^2)), place of the match and
// line. Half of the lines run near the x axis, half near the y axis.
struct MatchingCase {
    double grain = 1.5;            // pixels; a texture's smallest details are about three grains apart
    double contrast = 40.0;        // standard deviation of the texture, gray levels
    double noise = 0.0;            // standard deviation in both images, gray levels
    double lowAngleDegrees = 0.0;  // between line and axis, either sense
    double highAngleDegrees = 5.0;
    LineThrough through = LineThrough::anywhere;  // pixelCentres: the match lies on a row (column) of pixels
    int size = 33;                                // of the template, pixels
    bool templateMask = false;                    // a disc
    bool searchMask = false;                      // a tenth of the pixels is masked out, in blots
    int mode = 2;                                 // ZELM_CSTM_...
    int trials = 400;
    std::uint64_t seed = 1;
};

struct MatchingFigures {
    int trials = 0;
    int found = 0;       // best match within one pixel of the truth
    double bias = 0.0;   // mean of the error towards the nearest pixel centre of the truth, pixels
    double rms = 0.0;    // of the error along the line, pixels
    double worst = 0.0;  // pixels
    double bound = 0.0;  // root mean square of noise * sqrt(2 / sum of squared gradients along the line), pixels
};

MatchingFigures matchTextures(const MatchingCase& setting);

}  // namespace zelm::accuracy

#endif
