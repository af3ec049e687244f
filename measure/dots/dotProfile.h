// The coverage of a pixel by a dot whose outline passes near: a curved edge, blurred by a normal point spread and
// averaged over the pixel's square.
#ifndef ZELM_MEASURE_DOT_PROFILE_H
#define ZELM_MEASURE_DOT_PROFILE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

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

struct NormalValue {
    double below;    // probability of less than x
    double density;  // at x
};

// To 1e-8, by Taylor's series about the nearest node.
inline NormalValue standardNormal(double x) {
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

struct EdgeCoverage {
    double value;       // share of the pixel that the dot covers
    double byDistance;  // its derivative by the distance from the outline
    double byBlur;      // and by the blur
};

// A pixel at a signed distance from the outline, positive outside; bend: blur over the outline's radius of curvature,
// positive for a convex dot; blur: standard deviation of point spread and pixel together, and its inverse; fourth:
// nx^4 + ny^4 of the outline's normal n.
//
// About the foot of the pixel the outline falls away by kappa t^2 / 2 + kappa^3 t^4 / 8. Blurred along the outline,
// that is a random displacement of the edge, whose cumulants join those of the blur across it; Edgeworth's series then
// gives the coverage, to 1e-3 up to a bend of 0.25. The square pixel differs from the normal blur of the same variance
// by its fourth cumulant.
inline EdgeCoverage edgeCoverage(double distance, double bend, double blur, double perBlur, double fourth) {
    const double b2 = bend * bend;
    const double mean = 0.5 * bend * blur * (1.0 + 0.75 * b2);
    const double widening = 1.0 - b2 * (0.25 - 0.09375 * b2);  // 1 / sqrt(1 + b2 / 2)
    const double inverse = widening * perBlur;
    const double x = -(distance + mean) * inverse;
    const NormalValue normal = standardNormal(x);
    const double skew = b2 * bend * (1.0 / 6.0);
    const double inverse2 = inverse * inverse;
    const double excess = -fourth * (1.0 / 2880.0) * inverse2 * inverse2;
    const double x2 = x * x;
    const double he2 = x2 - 1.0;
    const double he3 = x * (x2 - 3.0);
    const double he4 = x2 * (x2 - 6.0) + 3.0;
    const double value = normal.below - normal.density * (skew * he2 + excess * he3);
    const double slope = normal.density * (1.0 + skew * he3 + excess * he4);
    return {value, -slope * inverse, -slope * (2.0 * mean * inverse + x) * perBlur};
}

}  // namespace zelm::measure

#endif
