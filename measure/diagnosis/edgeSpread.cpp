#include "edgeSpread.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "cholesky.h"

namespace zelm::measure {
namespace {

constexpr double kPixelVariance = 1.0 / 12.0;  // square pixels, of a pixel across any direction
constexpr double kMinVariance = 0.03;          // with the pixel's own: keeps the model smooth
constexpr double kMinReach = 1.5;              // pixels outside the outline that an edge needs
constexpr double kMaxReach = 2.0;              // semi-axes: farther pixels tell of the ground alone
constexpr std::size_t kMaxPixels = 500;        // of one dot; of larger ones a part is taken
constexpr std::size_t kMinPixels = 30;         // thrice the unknowns
constexpr int kMaxRounds = 25;
constexpr double kSettled = 1e-3;     // of the cost
constexpr double kMaxMisfit = 0.2;    // of the contrast: what is left when the pixels show no dot
constexpr double kMaxGrowth = 3.0;    // of the half axes while fitting
constexpr double kMinContrast = 1.0;  // gray levels

enum Unknown : std::size_t { kX, kY, kExx, kExy, kEyy, kSxx, kSxy, kSyy, kIn, kOut, kOutX, kOutY, kUnknowns };
using State = Vector<kUnknowns>;

struct Sample {
    double x = 0.0;  // from the start's centre
    double y = 0.0;
    double gray = 0.0;
};

// What a sample sees: the share of the outer level and how it depends on the outline and the spread.
struct Seen {
    double share = 0.0;
    double byDistance = 0.0;
    double bySpread = 0.0;
    double nx = 1.0;
    double ny = 0.0;
    double support = 1.0;
    double spread = 1.0;
};

Seen look(const State& at, const Sample& sample) {
    const double px = sample.x - at[kX];
    const double py = sample.y - at[kY];
    // The normal of the ellipse of the same shape through the pixel stands for that at its foot.
    double nx = at[kEyy] * px - at[kExy] * py;
    double ny = at[kExx] * py - at[kExy] * px;
    const double length = std::hypot(nx, ny);
    nx = length > 0.0 ? nx / length : 1.0;
    ny = length > 0.0 ? ny / length : 0.0;
    Seen seen;
    seen.nx = nx;
    seen.ny = ny;
    seen.support = std::sqrt(Tensor2{at[kExx], at[kExy], at[kEyy]}.along(nx, ny));
    seen.spread = std::sqrt(std::max(Tensor2{at[kSxx], at[kSxy], at[kSyy]}.along(nx, ny), kMinVariance));
    const double t = (nx * px + ny * py - seen.support) / seen.spread;
    seen.share = 0.5 * std::erfc(-t / std::numbers::sqrt2);
    const double density = std::exp(-0.5 * t * t) / std::sqrt(2.0 * std::numbers::pi);
    seen.byDistance = density / seen.spread;
    seen.bySpread = -density * t / seen.spread;
    return seen;
}

double outerLevel(const State& at, const Sample& sample) {
    return at[kOut] + at[kOutX] * sample.x + at[kOutY] * sample.y;
}

double residualOf(const State& at, const Sample& sample) {
    const double share = look(at, sample).share;
    return sample.gray - ((1.0 - share) * at[kIn] + share * outerLevel(at, sample));
}

double costOf(const State& at, const std::vector<Sample>& samples) {
    double cost = 0.0;
    for (const Sample& sample : samples) {
        const double residual = residualOf(at, sample);
        cost += residual * residual;
    }
    return cost;
}

State derivatives(const State& at, const Sample& sample, const Seen& seen) {
    const double contrast = outerLevel(at, sample) - at[kIn];
    const double d = contrast * seen.byDistance;
    const double s = contrast * seen.bySpread;
    const double e = -d / (2.0 * seen.support);
    const double v = s / (2.0 * seen.spread);
    const double xx = seen.nx * seen.nx;
    const double xy = 2.0 * seen.nx * seen.ny;
    const double yy = seen.ny * seen.ny;
    return {-d * seen.nx,
            -d * seen.ny,
            e * xx,
            e * xy,
            e * yy,
            v * xx,
            v * xy,
            v * yy,
            1.0 - seen.share,
            seen.share,
            seen.share * sample.x,
            seen.share * sample.y};
}

bool isAllowed(const State& at, const SpotEllipse& start) {
    const Tensor2 shape{at[kExx], at[kExy], at[kEyy]};
    const double most = kMaxGrowth * kMaxGrowth * (start.shape.xx + start.shape.yy);
    return shape.xx > 0.0 && shape.determinant() > 0.04 * start.shape.determinant() && shape.xx + shape.yy < most &&
           std::hypot(at[kX], at[kY]) < 0.5 * std::sqrt(start.shape.xx + start.shape.yy);
}

struct Fitted {
    State state{};
    double cost = 0.0;
};

Fitted fit(State at, const SpotEllipse& start, const std::vector<Sample>& samples) {
    double cost = costOf(at, samples);
    double damping = 1e-2;
    for (int round = 0; round < kMaxRounds; ++round) {
        Matrix<kUnknowns> normal{};
        State right{};
        for (const Sample& sample : samples) {
            const Seen seen = look(at, sample);
            const State row = derivatives(at, sample, seen);
            const double residual = sample.gray - ((1.0 - seen.share) * at[kIn] + seen.share * outerLevel(at, sample));
            for (std::size_t i = 0; i < kUnknowns; ++i) {
                for (std::size_t j = i; j < kUnknowns; ++j) {
                    normal[i][j] += row[i] * row[j];
                }
                right[i] += row[i] * residual;
            }
        }
        bool improved = false;
        double gain = 0.0;
        for (; damping < 1e6 && !improved; damping *= 10.0) {
            Matrix<kUnknowns> damped = normal;
            for (std::size_t i = 0; i < kUnknowns; ++i) {
                damped[i][i] += damping * normal[i][i] + 1e-9;
            }
            if (!factor(damped)) {
                continue;
            }
            const State step = solve(damped, right);
            State next = at;
            for (std::size_t i = 0; i < kUnknowns; ++i) {
                next[i] += step[i];
            }
            if (!isAllowed(next, start)) {
                continue;
            }
            if (const double less = costOf(next, samples); less < cost) {
                gain = cost - less;
                cost = less;
                at = next;
                improved = true;
                damping *= 0.01;
            }
        }
        if (!improved || gain < kSettled * cost) {
            break;
        }
        damping = std::max(damping, 1e-7);
    }
    return {at, cost};
}

struct Samples {
    std::vector<Sample> list;
    double part = 1.0;  // of the pixels
};

Samples samplesAbout(const DenseImage& image, const SpotEllipse& start, double reach) {
    const double halfX = std::sqrt(start.shape.xx) + reach;
    const double halfY = std::sqrt(start.shape.yy) + reach;
    const int left = std::max(0, static_cast<int>(std::ceil(start.centre.x - halfX)));
    const int right = std::min(image.width() - 1, static_cast<int>(std::floor(start.centre.x + halfX)));
    const int top = std::max(0, static_cast<int>(std::ceil(start.centre.y - halfY)));
    const int bottom = std::min(image.height() - 1, static_cast<int>(std::floor(start.centre.y + halfY)));
    State at{};
    at[kExx] = start.shape.xx;
    at[kExy] = start.shape.xy;
    at[kEyy] = start.shape.yy;
    at[kSxx] = at[kSyy] = 1.0;
    std::vector<Sample> all;
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            const Sample sample{x - start.centre.x, y - start.centre.y, static_cast<double>(image.row(y)[x])};
            const Seen seen = look(at, sample);
            if (seen.nx * sample.x + seen.ny * sample.y - seen.support <= reach) {
                all.push_back(sample);
            }
        }
    }
    if (all.size() <= kMaxPixels) {
        return {std::move(all), 1.0};
    }
    // A step that is no divisor of a row's length takes pixels from all places.
    std::vector<Sample> some;
    const double step = static_cast<double>(all.size()) / static_cast<double>(kMaxPixels);
    some.reserve(kMaxPixels);
    for (std::size_t i = 0; i < kMaxPixels; ++i) {
        some.push_back(all[static_cast<std::size_t>(static_cast<double>(i) * step)]);
    }
    return {std::move(some), 1.0 / step};
}

// Standard deviation of the point spread by how many samples lie in the middle half between the levels.
double startSpread(const State& at, const std::vector<Sample>& samples, double part) {
    constexpr double kMiddleHalf = 1.349;  // standard deviations between a quarter and three quarters of an edge
    const double contrast = at[kOut] - at[kIn];
    const auto between = std::count_if(samples.begin(), samples.end(), [&](const Sample& sample) {
        const double share = (sample.gray - at[kIn]) / contrast;
        return share > 0.25 && share < 0.75;
    });
    const double radius = std::sqrt(std::sqrt(at[kExx] * at[kEyy] - at[kExy] * at[kExy]));
    const double width = static_cast<double>(between) / part / (2.0 * std::numbers::pi * radius);
    return std::clamp(width / kMiddleHalf, 0.4, radius);
}

// Levels from the middle of the spot and the outer half of its surroundings. `part`: of the pixels that are samples.
State startOf(const SpotEllipse& start, const std::vector<Sample>& samples, double reach, double part) {
    State at{};
    at[kExx] = start.shape.xx;
    at[kExy] = start.shape.xy;
    at[kEyy] = start.shape.yy;
    double sums[2] = {};
    double counts[2] = {};
    for (const Sample& sample : samples) {
        const Seen seen = look(at, sample);
        const double distance = seen.nx * sample.x + seen.ny * sample.y - seen.support;
        const bool outer = distance > 0.5 * reach;
        if (outer || distance < -0.5 * seen.support) {
            sums[outer ? 1 : 0] += sample.gray;
            counts[outer ? 1 : 0] += 1.0;
        }
    }
    at[kIn] = sums[0] / std::max(counts[0], 1.0);
    at[kOut] = sums[1] / std::max(counts[1], 1.0);
    const double spread = startSpread(at, samples, part);
    at[kSxx] = at[kSyy] = spread * spread;
    return at;
}

}  // namespace

TensorAxes axesOf(const Tensor2& tensor) {
    const double middle = 0.5 * (tensor.xx + tensor.yy);
    const double half = std::hypot(0.5 * (tensor.xx - tensor.yy), tensor.xy);
    return {middle + half, middle - half, 0.5 * std::atan2(2.0 * tensor.xy, tensor.xx - tensor.yy)};
}

std::optional<EdgeSpread> edgeSpread(const DenseImage& image, const SpotEllipse& start, double reach) {
    const double radius = std::sqrt(std::sqrt(std::max(start.shape.determinant(), 0.0)));
    const double taken = std::min(reach, std::max(kMaxReach * radius, kMinReach));
    if (!(radius > 1.0) || !(taken >= kMinReach)) {
        return std::nullopt;
    }
    const auto [samples, part] = samplesAbout(image, start, taken);
    if (samples.size() < kMinPixels) {
        return std::nullopt;
    }
    const Fitted best = fit(startOf(start, samples, taken, part), start, samples);
    const State& at = best.state;
    EdgeSpread found;
    found.outline = {{start.centre.x + at[kX], start.centre.y + at[kY]}, {at[kExx], at[kExy], at[kEyy]}};
    found.variance = {at[kSxx] - kPixelVariance, at[kSxy], at[kSyy] - kPixelVariance};
    found.inside = at[kIn];
    found.outside = at[kOut];
    found.noise = std::sqrt(best.cost / static_cast<double>(samples.size()));
    const double contrast = std::fabs(found.outside - found.inside);
    if (!(contrast >= kMinContrast) || !(found.noise <= kMaxMisfit * contrast + 1.0)) {
        return std::nullopt;
    }
    return found;
}

}  // namespace zelm::measure
