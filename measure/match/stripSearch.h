// One template, one strip: the library's search along an epipolar line that is a row of pixels.
#ifndef ZELM_MEASURE_STRIP_SEARCH_H
#define ZELM_MEASURE_STRIP_SEARCH_H

#include <cstdint>
#include <span>

namespace zelm::measure {

struct StripMatch {
    double score = 0.0;
    double column = 0.0;  // of the strip, where the template's centre comes to lie
};

// The places of the template, side x side pixels with side odd, on the middle row of a strip of width x side pixels:
// at most as many as there is room for, best first. Returns their number; throws when memory runs out.
std::size_t searchStrip(std::uint8_t* pattern, int side, std::uint8_t* strip, int width, double minScore,
                        int minDistance, std::span<StripMatch> matches);

}  // namespace zelm::measure

#endif
