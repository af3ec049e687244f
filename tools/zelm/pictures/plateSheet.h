// A plate laid out on a page: what is printed where, in millimetres from the page's upper left corner, y downwards.
#ifndef ZELM_TOOL_PLATE_SHEET_H
#define ZELM_TOOL_PLATE_SHEET_H

#include <optional>
#include <string>
#include <vector>

#include "plateFile.h"

namespace zelm::tool {

struct SheetPoint {
    double x = 0.0;
    double y = 0.0;
};

struct SheetBox {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
};

struct SheetDisc {
    SheetPoint centre;
    double diameter = 0.0;
    bool isMarker = false;
};

struct SheetLine {
    SheetPoint from;
    SheetPoint to;
};

struct SheetText {
    SheetPoint at;  // the line's left end, or its middle
    bool isCentred = false;
    std::string text;
};

struct PlateSheet {
    std::string title;
    double width = 0.0;
    double height = 0.0;
    bool isBright = false;  // bright dots: the ground is printed
    SheetBox plate;         // where to cut
    SheetBox ground;        // the field with the quiet zone around it
    SheetPoint origin;      // centre of the corner marker
    std::vector<SheetDisc> discs;
    std::vector<SheetBox> ruler;  // black; the first one is the bar, kRulerLength long
    std::vector<SheetText> texts;
    double textHeight = 0.0;           // of capitals
    std::vector<SheetLine> cropMarks;  // none where the page has no room for them
};

inline constexpr double kRulerLength = 100.0;
inline constexpr double kCropLineWidth = 0.2;
inline constexpr double kCapitalHeight = 0.72;  // of a font's size

// The size of a page; none: as large as the plate needs.
struct Page {
    std::string name;
    std::optional<SheetPoint> size;
    bool mayTurn = true;  // landscape or portrait, as it fits
};

// A4, A3, ..., letter, legal, tabloid, fit, or WIDTHxHEIGHT in millimetres. Throws Failure for another name.
Page pageOf(const std::string& name, const std::string& orientation);

// Millimetres of a unit of length by its name; none for a name that is not known.
std::optional<double> millimetresOf(const std::string& unit);

// Throws Failure when the plate does not fit the page or is not given in a unit that has millimetres.
PlateSheet layOut(const Plate& plate, const Page& page);

// Whether layOut() would find room, also for crop marks.
bool isRoomFor(const Plate& plate, const Page& page);

}  // namespace zelm::tool

#endif
