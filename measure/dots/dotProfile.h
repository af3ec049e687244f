// The coverage of a pixel by a dot whose outline passes near: a curved edge, blurred by a normal point spread and
// averaged over the pixel's square.
#ifndef ZELM_MEASURE_DOT_PROFILE_H
#define ZELM_MEASURE_DOT_PROFILE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "dotLanes.h"

namespace zelm::measure {

// Distribution and density of a standard normal variable at nodes 1/32 apart.
struct NormalTable {
    static constexpr double kReach = 6.5;
    static constexpr int kNodesPerUnit = 32;
    static constexpr std::size_t kNodes = static_cast<std::size_t>(2.0 * kReach * kNodesPerUnit) + 1;
    struct Node {
        double below;
        double density;
    };
    std::array<Node, kNodes> nodes{};

    constexpr NormalTable();
};

extern const NormalTable kNormalTable;

template <class Real>
struct NormalValue {
    Real below;    // probability of less than x
    Real density;  // at x
};

// To 1e-8, by Taylor's series about the nearest node.
inline NormalValue<double> standardNormal(double x) {
    constexpr double kEnd = NormalTable::kReach - 1.0 / NormalTable::kNodesPerUnit;  // where it is 0 or 1 to 1e-10
    x = std::min(std::max(-kEnd, x), kEnd);                                          // NaN becomes -kEnd
    const int k = static_cast<int>((x + NormalTable::kReach) * NormalTable::kNodesPerUnit + 0.5);
    const NormalTable::Node node = kNormalTable.nodes[static_cast<std::size_t>(k)];
    const double a = static_cast<double>(k) * (1.0 / NormalTable::kNodesPerUnit) - NormalTable::kReach;
    const double h = x - a;
    const double second = 0.5 * (a * a - 1.0) * h * h;
    return {node.below + node.density * h * (1.0 - 0.5 * a * h + second * (1.0 / 3.0)),
            node.density * (1.0 - a * h + second - a * (a * a - 3.0) * h * h * h * (1.0 / 6.0))};
}

// To 2e-7, by the density times a polynomial (Abramowitz and Stegun 1964, 26.2.17).
inline NormalValue<Lanes> standardNormal(Lanes x) {
    constexpr float kHalfPerLogarithm = -0.72134752F;  // -0.5 / ln 2
    const Lanes a = smaller(sizeOf(x), lanesOf(static_cast<float>(NormalTable::kReach)));
    const Lanes density = 0.39894228F * powerOfTwo(kHalfPerLogarithm * a * a);
    const Lanes t = 1.0F / (1.0F + 0.2316419F * a);
    const Lanes series =
        t * (0.31938153F + t * (-0.356563782F + t * (1.781477937F + t * (-1.821255978F + t * 1.330274429F))));
    const Lanes beyond = density * series;
    return {x < 0.0F ? beyond : 1.0F - beyond, density};
}

template <class Real>
struct EdgeCoverage {
    Real value;       // share of the pixel that the dot covers
    Real byDistance;  // its derivative by the distance from the outline
    Real byBlur;      // and by the blur
};

// A pixel at a signed distance from the outline, positive outside; bend: blur over the outline's radius of curvature,
// positive for a convex dot; blur: standard deviation of point spread and pixel together, and its inverse; fourth:
// nx^4 + ny^4 of the outline's normal n.
//
// About the foot of the pixel the outline falls away by kappa t^2 / 2 + kappa^3 t^4 / 8. Blurred along the outline,
// that is a random displacement of the edge, whose cumulants join those of the blur across it; Edgeworth's series then
// gives the coverage, to 1e-3 up to a bend of 0.25. The square pixel differs from the normal blur of the same variance
// by its fourth cumulant.
// Of one pixel in doubles, or of several lanes.
template <class Real, class Scalar>
inline EdgeCoverage<Real> edgeCoverage(Real distance, Real bend, Scalar blur, Scalar perBlur, Real fourth) {
    constexpr auto number = [](double x) { return static_cast<Scalar>(x); };
    const Real b2 = bend * bend;
    const Real mean = number(0.5) * blur * bend * (number(1.0) + number(0.75) * b2);
    const Real widening = number(1.0) - b2 * (number(0.25) - number(0.09375) * b2);  // 1 / sqrt(1 + b2 / 2)
    const Real inverse = widening * perBlur;
    const Real x = -(distance + mean) * inverse;
    const NormalValue<Real> normal = standardNormal(x);
    const Real skew = b2 * bend * number(1.0 / 6.0);
    const Real inverse2 = inverse * inverse;
    const Real excess = -fourth * number(1.0 / 2880.0) * inverse2 * inverse2;
    const Real x2 = x * x;
    const Real he2 = x2 - number(1.0);
    const Real he3 = x * (x2 - number(3.0));
    const Real he4 = x2 * (x2 - number(6.0)) + number(3.0);
    const Real value = normal.below - normal.density * (skew * he2 + excess * he3);
    const Real slope = normal.density * (number(1.0) + skew * he3 + excess * he4);
    return {value, -slope * inverse, -slope * (number(2.0) * mean * inverse + x) * perBlur};
}

}  // namespace zelm::measure

#endif
