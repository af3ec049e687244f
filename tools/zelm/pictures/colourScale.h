// Colours for values: which range of them the colours span, and the colours.
#ifndef ZELM_TOOL_COLOUR_SCALE_H
#define ZELM_TOOL_COLOUR_SCALE_H

#include <array>
#include <vector>

#include "colour.h"

namespace zelm::tool {

// The colours span the bulk of the values, so that a few wrong ones do not take them all; values beyond an end have
// that end's colour.
struct ColourRange {
    double from = 0.0;
    double to = 1.0;
    bool isCutBelow = false;  // there are values below `from`
    bool isCutAbove = false;

    double partOf(double value) const { return (value - from) / (to - from); }
};

// From the 2nd to the 98th percentile, and as far beyond as a twentieth of that where there are values. Values that are
// not finite do not count; without any the range is 0 to 1.
ColourRange colourRange(std::vector<double> values);

// Even steps of lightness, told apart without seeing colours, from the least value to the greatest.
inline constexpr std::array<Colour, 6> kScaleColours{{{0.99, 0.91, 0.15},
                                                      {0.55, 0.83, 0.29},
                                                      {0.13, 0.66, 0.52},
                                                      {0.16, 0.47, 0.56},
                                                      {0.28, 0.25, 0.54},
                                                      {0.30, 0.06, 0.38}}};

// The colour of a part of the range, 0 to 1; beyond it that of the nearer end.
Colour scaleColour(double part);

}  // namespace zelm::tool

#endif
