#include "lensTerms.h"

#include <algorithm>

namespace zelm::measure {
namespace {

constexpr std::size_t kProducts = 10;

// What the pattern is made of, along x and along y alike: of the second degree the one product that decentring and
// prism leave, and all of the third and fourth degree.
std::array<double, kProducts> products(double x, double y) {
    return {x * y,         x * x * x,     x * x * y,     x * y * y,     y * y * y,
            x * x * x * x, x * x * x * y, x * x * y * y, x * y * y * y, y * y * y * y};
}

}  // namespace

std::array<std::array<double, kLensTerms>, 2> lensTerms(const ProjectionCamera& camera, const Vector3& point) {
    const double w = camera.isParallel ? 1.0 : 1.0 / point[2];
    const double x = point[0] * w;
    const double y = point[1] * w;
    const double r2 = x * x + y * y;
    std::array<std::array<double, kLensTerms>, 2> moves{};
    auto& alongX = moves[0];
    auto& alongY = moves[1];
    const auto set = [&](std::size_t term, double dx, double dy) {
        alongX[term] = dx;
        alongY[term] = dy;
    };
    set(0, r2 * r2 * r2 * x, r2 * r2 * r2 * y);
    set(1, 2.0 * x * y, r2 + 2.0 * y * y);
    set(2, r2 + 2.0 * x * x, 2.0 * x * y);
    set(3, r2, 0.0);
    set(4, 0.0, r2);
    const auto pattern = products(x, y);
    for (std::size_t i = 0; i < kProducts; ++i) {
        set(kLensGroupAt[kPattern] + 2 * i, pattern[i], 0.0);
        set(kLensGroupAt[kPattern] + 2 * i + 1, 0.0, pattern[i]);
    }
    for (std::size_t i = 0; i < kLensTerms; ++i) {
        alongX[i] = camera.p[kFx] * alongX[i] + camera.p[kSkew] * alongY[i];
        alongY[i] *= camera.p[kFy];
    }
    return moves;
}

}  // namespace zelm::measure
