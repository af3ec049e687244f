// How likely chance alone makes a test's statistic so large.
#ifndef ZELM_MEASURE_SIGNIFICANCE_H
#define ZELM_MEASURE_SIGNIFICANCE_H

namespace zelm::measure {

// Of chi-square with `freedom` degrees of freedom beyond x.
double chiSquareTail(double x, double freedom);
// Of Fisher's F with that many degrees of freedom above and below the line, beyond x.
double fisherTail(double x, double above, double below);
// Of a sum of `count` squares over the variance that `freedom` degrees of freedom estimated; freedom 0: it is known.
double squaresTail(double sumOverVariance, double count, double freedom);
// The sum of one square that has the tail; 0 < tail < 1.
double squareOfTail(double tail, double freedom);

}  // namespace zelm::measure

#endif
