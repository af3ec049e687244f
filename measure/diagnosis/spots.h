// Spots of an image that could be dots, found at many thresholds so that neither light nor blur hides them.
#ifndef ZELM_MEASURE_SPOTS_H
#define ZELM_MEASURE_SPOTS_H

#include <zelmLib.h>

#include <vector>

#include "edgeSpread.h"
#include "image.h"

namespace zelm::measure {

struct Spot {
    SpotEllipse ellipse;    // of the same area and second moments
    double area = 0.0;      // pixels, at the middle one of its thresholds
    double fill = 0.0;      // area over that of the ellipse of its second moments: 1 of an ellipse
    int left = 0, top = 0;  // of its box
    int right = 0, bottom = 0;
    int levels = 0;       // thresholds at which it stands alone
    double depth = 0.0;   // gray levels between the first and the last of them
    bool isCut = false;   // it touches the edge of the region
    bool isOval = false;  // its pixels fill an ellipse

    double radius() const;  // of the circle of the same area
};

// Of that polarity within the region, which lies inside the image.
std::vector<Spot> findSpots(const DenseImage& image, const ZelmRect& region, int polarity);

}  // namespace zelm::measure

#endif
