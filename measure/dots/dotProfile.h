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
    if (!(std::fabs(x) < NormalTable::kReach - 1.0 / NormalTable::kNodesPerUnit)) {
        return {x > 0.0 ? 1.0 : 0.0, 0.0};
    }
    const auto k = static_cast<std::size_t>((x + NormalTable::kReach) * NormalTable::kNodesPerUnit + 0.5);
    const NormalTable::Node node = kNormalTable.nodes[k];
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

// A pixel at a signed distance from the outline, positive outside; curvature of the outline, positive for a convex dot;
// blur: standard deviation of point spread and pixel together; fourth: nx^4 + ny^4 of the outline's normal n.
//
// About the foot of the pixel the outline falls away by kappa t^2 / 2 + kappa^3 t^4 / 8. Blurred along the outline, that
// is a random displacement of the edge, whose cumulants join those of the blur across it; Edgeworth's series then gives
// the coverage. The square pixel differs from the normal blur of the same variance by its fourth cumulant.
inline EdgeCoverage edgeCoverage(double distance, double curvature, double blur, double fourth) {
    constexpr double kMaxBend = 0.6;  // blur over radius of curvature, beyond which the series is no use
    const double t = std::min(curvature * blur, kMaxBend);
    const double t2 = t * t;
    const double mean = 0.5 * t * blur * (1.0 + 0.75 * t2);
    const double widening = 1.0 / std::sqrt(1.0 + 0.5 * t2);
    const double inverse = widening / blur;
    const double x = -(distance + mean) * inverse;
    const NormalValue normal = standardNormal(x);
    const double skew = t2 * t * widening * widening * widening;
    const double inverse2 = inverse * inverse;
    const double excess = -fourth * (1.0 / 120.0) * inverse2 * inverse2;
    const double x2 = x * x;
    const double he2 = x2 - 1.0;
    const double he3 = x * (x2 - 3.0);
    const double he4 = x2 * (x2 - 6.0) + 3.0;
    const double value = normal.below - normal.density * (skew * (1.0 / 6.0) * he2 + excess * (1.0 / 24.0) * he3);
    const double slope = normal.density * (1.0 + skew * (1.0 / 6.0) * he3 + excess * (1.0 / 24.0) * he4);
    return {value, -slope * inverse, -slope * (2.0 * mean * inverse + x) / blur};
}

}  // namespace zelm::measure

#endif
