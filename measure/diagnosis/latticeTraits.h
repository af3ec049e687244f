// What a lattice of dots shows of the plate that it is on, beside what the plate's description says.
#ifndef ZELM_MEASURE_LATTICE_TRAITS_H
#define ZELM_MEASURE_LATTICE_TRAITS_H

#include <vector>

#include "dotLattice.h"
#include "plateBlobs.h"

namespace zelm::measure {

enum ImageSide : unsigned { kLeftSide = 1, kRightSide = 2, kTopSide = 4, kBottomSide = 8 };

struct MarkerTraits {
    int seen = 0;          // dots much larger than the others
    double ratio = 0.0;    // median of their size over that of a dot
    bool isFrame = false;  // three of them at a right angle, along a row and a column
    int columns = 0;       // pitches from the corner marker to the x marker, of a frame
    int rows = 0;          // and to the y marker
    // Lattice places of the corner, and steps along x and y of the plate; of a frame.
    int cornerColumn = 0, cornerRow = 0;
    bool isTurned = false;  // x runs along the lattice's rows' direction, its second axis
    int xSign = 1, ySign = 1;
};

struct PlaceTraits {
    int expected = 0;    // dots of the field, or within the bounds where the markers do not tell it
    int hidden = 0;      // places inside the image without a dot
    int highlights = 0;  // of these, how many are brighter than dots and ground
    int inner = 0;       // of these, how many lie within the bounds of the dots that are seen
    int white = 0;       // of these, how many are at the largest levels
    int together = 0;    // the most hidden places side by side
    int outside = 0;     // places beyond the image's edge
    unsigned sides = 0;  // ImageSide, of these
};

struct LatticeTraits {
    double radius = 0.0;         // median of the dots', pixels
    double axisRatio = 0.0;      // of a circle on the plate, as it is seen: the cosine of the tilt
    int markerLike = 0;          // ordinary dots so near the camera that they look as large as markers
    bool isLevelShared = false;  // some dot is as bright as the ground of some other, or brighter
    bool isCentred = false;      // as many columns and rows on either side of the corner marker, of a frame
    double dotRatioX = 0.0;      // diameter over the pitch along the lattice's first axis
    double dotRatioY = 0.0;
    MarkerTraits markers;
    PlaceTraits places;
};

// Gray levels of dots and of the ground around them.
struct DotLevels {
    double inside = 0.0;
    double outside = 0.0;
};

// Of a plate seen from the side the lattice's two shortest steps need not be its rows and columns: where the dots are
// rounder along other steps, the lattice takes those.
LatticeTraits traitsOf(const DenseImage& image, const std::vector<Spot>& spots, DotLattice& lattice,
                       const Pattern& plate, const DotLevels& levels);

// Size from which a dot is a marker, over that of the dots around it.
double markerSize(const Pattern& plate);

}  // namespace zelm::measure

#endif
