// The coverage of pixels by an ellipse not much larger than the blur.
#ifndef ZELM_MEASURE_BLURRED_ELLIPSE_H
#define ZELM_MEASURE_BLURRED_ELLIPSE_H

#include <array>
#include <cstddef>

namespace zelm::measure {

// An ellipse about the origin, blurred by a normal point spread. Across its long axis it is cut into chords, each of
// which is blurred in closed form; placed as Chebyshev's nodes they converge exponentially.
class BlurredEllipse {
public:
    struct Value {
        double coverage;
        double byX, byY;  // derivatives by the place,
        double byScale;   // by the scale of the ellipse
        double byBlur;    // and by the blur
    };

    // Half axes, direction of the long one, and the scale that the half axes contain.
    void set(double longAxis, double shortAxis, double directionX, double directionY, double scale, double blur);
    Value at(double x, double y) const;

private:
    static constexpr std::size_t kChords = 16;
    struct Chord {
        double offset;  // along the long axis, over the blur
        double half;    // half its length, over the blur
        double weight;
    };
    std::array<Chord, kChords> chords{};
    double cosine = 1.0, sine = 0.0;
    double scaleNow = 1.0;
    double perBlur = 1.0;
};

}  // namespace zelm::measure

#endif
