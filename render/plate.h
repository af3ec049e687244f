// The dot plate that the renderer draws: a grid of round dots of which three larger ones, the markers, fix the origin
// and the axes. Plate coordinates: origin at the corner marker, x towards the x marker, y towards the y marker, z away
// from a camera that looks at the printed side; grid index (i, j) stands at (i * pitchX, j * pitchY).
#ifndef ZELM_RENDER_PLATE_H
#define ZELM_RENDER_PLATE_H

#include <vector>

namespace zelm::render {

struct GridIndex {
    int x = 0;
    int y = 0;
    bool operator==(const GridIndex&) const = default;
};

// A point of the plate's plane, plate units.
struct PlanePoint {
    double x = 0.0;
    double y = 0.0;
};

// The values of the polarity flag in a pattern description.
enum class Polarity { darkDots = 0, lightDots = 1 };

// A plate; the defaults are a plate of 13 x 11 dots in millimetres.
struct Plate {
    int minX = -6, maxX = 6;      // grid indices of the outermost columns
    int minY = -5, maxY = 5;      // grid indices of the outermost rows
    double pitchX = 10.0;         // distance of the columns, plate units
    double pitchY = 10.0;         // distance of the rows
    double dotDiameter = 4.0;     //
    double markerDiameter = 7.0;  //
    int markerX = 3;              // the x marker is dot (markerX, 0)
    int markerY = 3;              // the y marker is dot (0, markerY)
    double marginX = 12.0;        // from the outermost dot centres to the edge of the plate
    double marginY = 12.0;        //
    Polarity polarity = Polarity::darkDots;

    // Faults, for trying a reader: dots that are missing, markers printed as ordinary dots, dots printed as markers.
    std::vector<GridIndex> missing;
    std::vector<GridIndex> shrunkMarkers;
    std::vector<GridIndex> extraMarkers;
};

// One printed dot.
struct PlateDot {
    GridIndex index;
    PlanePoint centre;
    double radius = 0.0;
    bool marker = false;
};

// The edges of a rectangle in plate coordinates.
struct PlateBounds {
    double left = 0.0, right = 0.0, top = 0.0, bottom = 0.0;
};

// Throws std::invalid_argument, naming the field, unless every size is positive and finite, the markers are on the
// grid, and the dots neither touch each other nor reach the edge of the plate.
void checkPlate(const Plate& plate);

// The printed dots, row by row from (minX, minY).
std::vector<PlateDot> plateDots(const Plate& plate);

// The edge of the plate.
PlateBounds plateBounds(const Plate& plate);

// Extent of a dot field centred on the corner marker that holds every dot (fields d0 and d1 of a pattern description).
double fieldExtentX(const Plate& plate);
double fieldExtentY(const Plate& plate);

}  // namespace zelm::render

#endif
