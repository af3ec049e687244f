#include "lensFit.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "cholesky.h"
#include "lensReach.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kUnknowns = 9;  // fx, fy, cx, cy, k1, k2 and a small turn; the skew is the file's
constexpr int kGrid = 41;             // pixels a side that the fit and its figures are taken at
constexpr int kMaxSteps = 100;
constexpr double kSettled = 1e-13;      // of the sum of squares
constexpr double kFirstDamping = 1e-6;  // of the diagonal; some unknowns are all but one where the view is narrow
constexpr double kMinDamping = 1e-12;
constexpr double kMaxDamping = 1e6;
constexpr std::array<std::size_t, 6> kFitted{kFx, kFy, kCx, kCy, kK1, kK2};

// A pixel and the direction that the foreign camera sees there.
struct Sight {
    Point2d pixel{};
    Vector3 ray{};
};

std::vector<Sight> sightsOf(const ForeignCamera& camera, const char* side) {
    std::vector<Sight> sights;
    sights.reserve(static_cast<std::size_t>(kGrid) * kGrid);
    for (int row = 0; row < kGrid; ++row) {
        for (int column = 0; column < kGrid; ++column) {
            const Point2d pixel{(camera.width - 1) * column / (kGrid - 1.0), (camera.height - 1) * row / (kGrid - 1.0)};
            const double yd = (pixel.y - camera.cy) / camera.fy;
            const double xd = (pixel.x - camera.cx - camera.skew * yd) / camera.fx;
            std::array<double, 2> found{};
            if (!camera.lens.undistorted(xd, yd, found)) {
                refuse(std::string("the ") + side + " camera's lens cannot be inverted at pixel (" +
                       std::to_string(std::lround(pixel.x)) + ", " + std::to_string(std::lround(pixel.y)) +
                       "): it folds the image there, or sees more than half of space");
            }
            sights.push_back({pixel, {found[0], found[1], 1.0}});
        }
    }
    return sights;
}

double sumOfSquares(const OwnCamera& own, const std::vector<Sight>& sights) {
    double sum = 0.0;
    for (const Sight& s : sights) {
        const Point2d p = pixelOf({false, own.parameters}, times(own.turn, s.ray));
        sum += (p.x - s.pixel.x) * (p.x - s.pixel.x) + (p.y - s.pixel.y) * (p.y - s.pixel.y);
    }
    return sum;
}

// Normal equations of a step: the upper triangle, and the right-hand side.
void equationsOf(const OwnCamera& own, const std::vector<Sight>& sights, Matrix<kUnknowns>& N, Vector<kUnknowns>& b) {
    N = {};
    b = {};
    for (const Sight& s : sights) {
        const Vector3 v = times(own.turn, s.ray);
        const Projection at = project({false, own.parameters}, v);
        const std::array<double, 2> error{s.pixel.x - at.pixel.x, s.pixel.y - at.pixel.y};
        for (std::size_t row = 0; row < 2; ++row) {
            Vector<kUnknowns> slope{};
            for (std::size_t i = 0; i < kFitted.size(); ++i) {
                slope[i] = at.byParameters[row][kFitted[i]];
            }
            // exp(d) v = v + d x v to first order.
            const auto& g = at.byPoint[row];
            const Vector3 byTurn = cross(v, {g[0], g[1], g[2]});
            std::copy(byTurn.begin(), byTurn.end(), slope.begin() + kFitted.size());
            for (std::size_t i = 0; i < kUnknowns; ++i) {
                b[i] += slope[i] * error[row];
                for (std::size_t j = i; j < kUnknowns; ++j) {
                    N[i][j] += slope[i] * slope[j];
                }
            }
        }
    }
}

OwnCamera moved(const OwnCamera& from, const Vector<kUnknowns>& step) {
    OwnCamera to = from;
    for (std::size_t i = 0; i < kFitted.size(); ++i) {
        to.parameters[kFitted[i]] += step[i];
    }
    to.turn = product(rotationOf({step[6], step[7], step[8]}), from.turn);
    return to;
}

// Levenberg (1944), Marquardt (1963).
OwnCamera closest(OwnCamera own, const std::vector<Sight>& sights) {
    double sum = sumOfSquares(own, sights);
    double damping = kFirstDamping;
    for (int step = 0; step < kMaxSteps && damping < kMaxDamping; ++step) {
        Matrix<kUnknowns> N{};
        Vector<kUnknowns> b{};
        equationsOf(own, sights, N, b);
        for (std::size_t i = 0; i < kUnknowns; ++i) {
            N[i][i] *= 1.0 + damping;
        }
        if (!factor(N)) {
            damping *= 10.0;
            continue;
        }
        const OwnCamera next = moved(own, solve(N, b));
        const double nextSum = sumOfSquares(next, sights);
        if (!(nextSum < sum)) {
            damping *= 10.0;
            continue;
        }
        const bool isSettled = sum - nextSum <= kSettled * sum;
        own = next;
        sum = nextSum;
        damping = std::max(kMinDamping, 0.1 * damping);
        if (isSettled) {
            break;
        }
    }
    return own;
}

void judge(OwnCamera& own, const std::vector<Sight>& sights, const char* side) {
    const double fold = foldOf(own.parameters);
    double sum = 0.0;
    for (const Sight& s : sights) {
        const Vector3 v = times(own.turn, s.ray);
        if (!(v[2] > 0.0) || !(v[0] * v[0] + v[1] * v[1] < fold * v[2] * v[2])) {
            refuse(std::string("the ") + side + " camera's lens cannot be described by k1 and k2 over its whole image");
        }
        const Point2d p = pixelOf({false, own.parameters}, v);
        const double distance = std::hypot(p.x - s.pixel.x, p.y - s.pixel.y);
        own.worst = std::max(own.worst, distance);
        sum += distance * distance;
    }
    own.rms = std::sqrt(sum / static_cast<double>(sights.size()));
}

}  // namespace

OwnCamera ownCamera(const ForeignCamera& camera, const char* side) {
    OwnCamera own;
    own.parameters = {camera.fx, camera.skew, camera.fy, camera.cx, camera.cy, 0.0, 0.0};
    if (camera.lens.isOwn()) {
        own.parameters[kK1] = camera.lens.c[0];
        own.parameters[kK2] = camera.lens.c[1];
        sightsOf(camera, side);  // refuses a lens that folds the image
        return own;
    }
    const std::vector<Sight> sights = sightsOf(camera, side);
    own = closest(own, sights);
    judge(own, sights, side);
    return own;
}

}  // namespace zelm::measure
