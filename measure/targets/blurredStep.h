// What a pixel sees of a straight edge between two levels.
#ifndef ZELM_MEASURE_BLURRED_STEP_H
#define ZELM_MEASURE_BLURRED_STEP_H

namespace zelm::measure {

// The share of the far level in a pixel, and its derivatives.
struct BlurredStep {
    double share = 0.0;
    double byDistance = 0.0;
    double byBlur = 0.0;
};

// Of a pixel whose centre lies `distance` pixels beyond the edge, square to it, when the edge is blurred by a Gaussian
// of the standard deviation `blur` and then integrated over the pixel's square; |cosine| and |sine| of the edge's
// normal against the rows.
BlurredStep blurredStep(double distance, double blur, double cosine, double sine);

}  // namespace zelm::measure

#endif
