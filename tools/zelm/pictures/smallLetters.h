// Letters of 5 x 7 squares, so that pictures need no fonts on the machine.
#ifndef ZELM_TOOL_SMALL_LETTERS_H
#define ZELM_TOOL_SMALL_LETTERS_H

#include <cairo.h>
#include <zelmLib.h>

#include <string_view>

#include "canvas.h"

namespace zelm::tool {

inline constexpr double kLetterWidth = 6.0;   // squares to the next letter
inline constexpr double kLetterHeight = 7.0;  // squares

// Writes a line with its top left corner there; `square`: of a letter, units of the drawing. Small letters are written
// as capitals, what has no letter as a blank.
void writeLetters(cairo_t* cairo, Point2d at, std::string_view text, double square, Colour colour);

}  // namespace zelm::tool

#endif
