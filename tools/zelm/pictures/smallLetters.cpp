#include "smallLetters.h"

#include <array>
#include <cstdint>

namespace zelm::tool {
namespace {

// Seven rows of five squares, the left one the highest bit.
struct Letter {
    char name;
    std::array<std::uint8_t, 7> rows;
};

constexpr std::array<Letter, 40> kLetters{
    {{'A', {14, 17, 17, 31, 17, 17, 17}}, {'B', {30, 17, 17, 30, 17, 17, 30}}, {'C', {14, 17, 16, 16, 16, 17, 14}},
     {'D', {30, 17, 17, 17, 17, 17, 30}}, {'E', {31, 16, 16, 30, 16, 16, 31}}, {'F', {31, 16, 16, 30, 16, 16, 16}},
     {'G', {14, 17, 16, 23, 17, 17, 15}}, {'H', {17, 17, 17, 31, 17, 17, 17}}, {'I', {14, 4, 4, 4, 4, 4, 14}},
     {'J', {7, 2, 2, 2, 2, 18, 12}},      {'K', {17, 18, 20, 24, 20, 18, 17}}, {'L', {16, 16, 16, 16, 16, 16, 31}},
     {'M', {17, 27, 21, 21, 17, 17, 17}}, {'N', {17, 25, 21, 19, 17, 17, 17}}, {'O', {14, 17, 17, 17, 17, 17, 14}},
     {'P', {30, 17, 17, 30, 16, 16, 16}}, {'Q', {14, 17, 17, 17, 21, 18, 13}}, {'R', {30, 17, 17, 30, 20, 18, 17}},
     {'S', {15, 16, 16, 14, 1, 1, 30}},   {'T', {31, 4, 4, 4, 4, 4, 4}},       {'U', {17, 17, 17, 17, 17, 17, 14}},
     {'V', {17, 17, 17, 17, 17, 10, 4}},  {'W', {17, 17, 17, 21, 21, 21, 10}}, {'X', {17, 17, 10, 4, 10, 17, 17}},
     {'Y', {17, 17, 10, 4, 4, 4, 4}},     {'Z', {31, 1, 2, 4, 8, 16, 31}},     {'0', {14, 17, 19, 21, 25, 17, 14}},
     {'1', {4, 12, 4, 4, 4, 4, 14}},      {'2', {14, 17, 1, 2, 4, 8, 31}},     {'3', {30, 1, 1, 14, 1, 1, 30}},
     {'4', {2, 6, 10, 18, 31, 2, 2}},     {'5', {31, 16, 30, 1, 1, 17, 14}},   {'6', {6, 8, 16, 30, 17, 17, 14}},
     {'7', {31, 1, 2, 4, 8, 8, 8}},       {'8', {14, 17, 17, 14, 17, 17, 14}}, {'9', {14, 17, 17, 15, 1, 2, 12}},
     {'-', {0, 0, 0, 31, 0, 0, 0}},       {'.', {0, 0, 0, 0, 0, 12, 12}},      {',', {0, 0, 0, 0, 12, 4, 8}},
     {':', {0, 12, 12, 0, 12, 12, 0}}}};

}  // namespace

void writeLetters(cairo_t* cairo, Point2d at, std::string_view text, double square, Colour colour) {
    cairo_set_source_rgb(cairo, colour.red, colour.green, colour.blue);
    double left = at.x;
    for (const char c : text) {
        const char name = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        for (const Letter& letter : kLetters) {
            if (letter.name != name) {
                continue;
            }
            for (int row = 0; row < 7; ++row) {
                for (int column = 0; column < 5; ++column) {
                    if ((letter.rows[static_cast<std::size_t>(row)] >> (4 - column) & 1) != 0) {
                        cairo_rectangle(cairo, left + column * square, at.y + row * square, square, square);
                    }
                }
            }
        }
        left += kLetterWidth * square;
    }
    cairo_fill(cairo);
}

}  // namespace zelm::tool
