// What a camera should see of a rendered dot, for tests of fitting it.
#ifndef ZELM_TEST_DOT_SHAPES_H
#define ZELM_TEST_DOT_SHAPES_H

#include <cmath>

#include "dotFit.h"
#include "renderView.h"

namespace zelmtest {

// The true ellipse, aside and scaled.
inline zelm::measure::DotShape shapeOf(const zelm::render::EllipseTruth& e, double dx = 0.0, double dy = 0.0,
                                       double scale = 1.0) {
    const double c = std::cos(e.angle);
    const double s = std::sin(e.angle);
    return {{e.centre.x + dx, e.centre.y + dy}, {scale * e.a * c, -scale * e.b * s, scale * e.a * s, scale * e.b * c}};
}

inline ZelmMeasureImage imageOf(const zelm::render::GrayImage& image) {
    return {image.pixels.data(), image.width, image.height, image.width};
}

// Of a view drawn by readingViews.h: every second one has bright dots.
inline zelm::measure::DotPolarity polarityOf(const zelm::render::Plate& plate) {
    return plate.polarity == zelm::render::Polarity::darkDots ? zelm::measure::DotPolarity::dark
                                                              : zelm::measure::DotPolarity::bright;
}

}  // namespace zelmtest

#endif
