// From standard deviations to intervals that hold the truth at 95 %.
#ifndef ZELM_MEASURE_EXPANDED_UNCERTAINTY_H
#define ZELM_MEASURE_EXPANDED_UNCERTAINTY_H

namespace zelm::measure {

// Half of the interval that holds 95 % of Student's distribution with so many degrees of freedom, rounded down to whole
// ones, at least one; 0 or infinity: of the normal distribution.
double coverageFactor(double freedom);

// A variance, and the degrees of freedom that it was estimated from; 0: it is known.
struct EstimatedVariance {
    double variance = 0.0;
    double freedom = 0.0;
};

// Of the sum of two independent estimates (Satterthwaite, 1946; Welch, 1947); 0: it is known.
double effectiveFreedom(const EstimatedVariance& a, const EstimatedVariance& b);

}  // namespace zelm::measure

#endif
