#include "blurredEllipse.h"

#include <cmath>
#include <numbers>

#include "dotProfile.h"

namespace zelm::measure {

void BlurredEllipse::set(double longAxis, double shortAxis, double directionX, double directionY, double scale,
                         double blur) {
    cosine = directionX;
    sine = directionY;
    scaleNow = scale;
    perBlur = 1.0 / blur;
    for (std::size_t k = 0; k < kChords; ++k) {
        const double angle = std::numbers::pi * ((static_cast<double>(k) + 0.5) / kChords - 0.5);
        chords[k] = {longAxis * std::sin(angle) * perBlur, shortAxis * std::cos(angle) * perBlur,
                     longAxis * std::cos(angle) * perBlur * std::numbers::pi / kChords};
    }
}

BlurredEllipse::Value BlurredEllipse::at(double x, double y) const {
    const double along = (x * cosine + y * sine) * perBlur;
    const double across = (y * cosine - x * sine) * perBlur;
    double sum = 0.0, byAlong = 0.0, byAcross = 0.0, laplacian = 0.0;
    for (const Chord& chord : chords) {
        const double d = along - chord.offset;
        const double w = chord.weight * standardNormal(d).density;
        if (w == 0.0) {
            continue;
        }
        const double upper = across + chord.half;
        const double lower = across - chord.half;
        const NormalValue<double> high = standardNormal(upper);
        const NormalValue<double> low = standardNormal(lower);
        const double covered = high.below - low.below;
        sum += w * covered;
        byAlong -= w * d * covered;
        byAcross += w * (high.density - low.density);
        laplacian += w * ((d * d - 1.0) * covered - upper * high.density + lower * low.density);
    }
    // The blurred ellipse obeys the equation of heat; scaling ellipse, blur and place alike changes nothing.
    const double byBlur = laplacian * perBlur;
    const double byScale = -(along * byAlong + across * byAcross + laplacian) / scaleNow;
    return {sum, (byAlong * cosine - byAcross * sine) * perBlur, (byAlong * sine + byAcross * cosine) * perBlur,
            byScale, byBlur};
}

}  // namespace zelm::measure
