// Maps of row-aligned images, and what of them the cameras see.
#ifndef ZELM_MEASURE_ROW_MAPS_H
#define ZELM_MEASURE_ROW_MAPS_H

#include <span>

#include "rowAlignment.h"

namespace zelm::measure {

struct PixelRectangle {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

constexpr float kNowhere = -1.0F;  // both coordinates of a pixel that the camera does not see

// For each aligned pixel, row by row, the raw pixel x, y that it is taken from.
void fillRowMap(const RigCamera& camera, const RowAlignment& alignment, char side, std::span<float> map);

// The largest rectangle of aligned pixels that the camera all sees; of size 0 where it sees none.
PixelRectangle seenRectangle(const RigCamera& camera, const RowAlignment& alignment, char side);

// Where raw pixels lie in an aligned image. Throws nothing; false for one too far outside for its lens to be undone.
bool alignedOf(const Rig& rig, const RowAlignment& alignment, char side, Point2d raw, Point2d& aligned);

}  // namespace zelm::measure

#endif
