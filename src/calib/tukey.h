// Robust weights by Tukey's biweight (Beaton and Tukey 1974), of squared distances in normalised units.
#ifndef ZELM_TUKEY_H
#define ZELM_TUKEY_H

#include <cstdint>

namespace zelm {

// The squared cut-off: (k * 1.4826)^2 times the median of the n squared distances, at least 1e-10. Reorders them.
double innerSquaredCutOff(std::int32_t n, double* squares, double k);

// (1 - e2 / cutOff2)^2 within the cut-off, else 0.
inline double biweight(double e2, double cutOff2) {
    if (!(e2 < cutOff2)) {
        return 0.0;
    }
    const double u = 1.0 - e2 / cutOff2;
    return u * u;
}

}  // namespace zelm

#endif
