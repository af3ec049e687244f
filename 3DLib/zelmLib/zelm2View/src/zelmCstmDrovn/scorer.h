// Scores of a template along the pixels of a line.
#ifndef ZELM_SCORER_H
#define ZELM_SCORER_H

#include <cstdint>

#include "corrAlongPoints.h"
#include "maskedPlane.h"

namespace zelm {

// The score of a pixel that has none.
constexpr double kUnscored = -2.0;

inline bool isScored(const CorrScore& entry) {
    return entry.score != kUnscored;
}

struct SearchTemplate {
    MaskedPlane plane;
    const double* mean;   // by pattern: ZELM_CSTM_...
    const double* sigma;  // by pattern
    double anchorX;
    double anchorY;
};

struct LineScorer {
    const SearchTemplate& tmpl;
    const MaskedPlane& image;
    Point2i* lattice;
    CorrScore* scores;  // one a lattice point

    // Scores the lattice points k0 to k1 with a pattern, ZELM_CSTM_...; those that get no score are left alone. Returns
    // how many got one.
    std::int32_t score(std::int32_t pattern, std::int32_t k0, std::int32_t k1) const;
    // The same after marking them unscored, with every pixel.
    std::int32_t rescore(std::int32_t k0, std::int32_t k1) const;

private:
    std::int32_t scoreRows(std::int32_t pattern, std::int32_t k0, std::int32_t k1) const;
};

}  // namespace zelm

#endif
