#include "surfaceFit.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cholesky.h"

namespace zelm::measure {
namespace {

constexpr double kMaxStep = 2.0;   // pixels along the line that one round may move
constexpr double kMaxDrift = 4.0;  // and all rounds together
constexpr double kMaxSlope = 1.2;  // pixels of movement along the line a pixel
constexpr double kSettledPixels = 3e-3;
constexpr int kMiddle = 3;            // pixels
constexpr std::size_t kUnknowns = 5;  // movement, its two slopes, gain, offset

using Vector5 = Vector<kUnknowns>;
using Matrix5 = Matrix<kUnknowns>;

// The movement of a plane's pixels with rho, seen in the first camera.
struct Direction {
    Point2d unit{};
    double pixelsPerRho = 0.0;
};

Direction directionOf(const Matrix3& H, Point2d at, Point2d motion) {
    const double w = H[6] * at.x + H[7] * at.y + H[8];
    const Point2d q = apply(H, at);
    const double a = (H[0] - H[6] * q.x) / w;
    const double b = (H[1] - H[7] * q.x) / w;
    const double c = (H[3] - H[6] * q.y) / w;
    const double d = (H[4] - H[7] * q.y) / w;
    const double determinant = a * d - b * c;
    const Point2d e{(d * motion.x - b * motion.y) / determinant, (a * motion.y - c * motion.x) / determinant};
    const double length = std::hypot(e.x, e.y);
    return {{e.x / length, e.y / length}, length};
}

// The rounds of a fit: from the middle of the window outwards, and ever stricter about which pixels take part.
struct Stage {
    std::size_t width;  // of the weights
    double tolerance;   // pixels
};
constexpr std::array<double, 3> kWidths{0.3, 0.4, 0.55};  // standard deviation of the weights, in half windows
constexpr std::array<Stage, 5> kStages{{{0, 1e3}, {0, 0.8}, {1, 0.5}, {2, 0.3}, {2, 0.2}}};
constexpr std::size_t kMaxRounds = 9;
constexpr std::size_t kFirstVerdict = 2;  // the round in which a fit is given up
constexpr double kHopeless = 0.25;        // that so little of the window takes part in

struct Equations {
    Matrix5 N{};  // normal matrix, upper triangle
    Vector5 right{};
    double squares = 0.0;  // of the second patch
    double weight = 0.0;
};

// How gray levels of the first patch become those of the second.
struct Tone {
    double gain = 1.0;
    double offset = 0.0;
};

// The part that a pixel takes (Tukey's biweight): none when its residual is larger than noise and a misplacement of
// `tolerance` pixels explain.
double partOf(double residual, double gradientSquares, double noiseSquares, double tolerance) {
    constexpr double kCutSquares = 9.0;
    constexpr double kNoiseReserve = 4.0;  // bright parts are noisier than the smooth, dark ones that tell the noise
    const double u =
        residual * residual / (kCutSquares * (kNoiseReserve * noiseSquares + tolerance * tolerance * gradientSquares));
    return u < 1.0 ? (1.0 - u) * (1.0 - u) : 0.0;
}

struct Patches {
    const std::uint8_t* t;
    const std::uint8_t* s;
    const float* weights;
    int half;
    Point2d direction;
    double noiseSquares;
};

// s = gain t + offset - D (u + slopes . offset of the pixel), D the derivative along the direction, for all pixels.
Equations equationsOf(const Patches& p, const Tone& tone, double tolerance) {
    const std::ptrdiff_t side = 2 * p.half + 3;
    const std::uint8_t* const t = p.t;
    const std::uint8_t* const s = p.s;
    const float* weight = p.weights;
    Equations e;
    for (int row = -p.half; row <= p.half; ++row) {
        const std::ptrdiff_t begin = (row + p.half + 1) * side + p.half + 1;
        for (int column = -p.half; column <= p.half; ++column, ++weight) {
            const std::ptrdiff_t i = begin + column;
            const double gx = 0.25 * (tone.gain * (t[i + 1] - t[i - 1]) + (s[i + 1] - s[i - 1]));
            const double gy = 0.25 * (tone.gain * (t[i + side] - t[i - side]) + (s[i + side] - s[i - side]));
            const double value = s[i];
            const double residual = tone.gain * t[i] + tone.offset - value;
            const double w = *weight * partOf(residual, gx * gx + gy * gy, p.noiseSquares, tolerance);
            if (w <= 0.0) {
                continue;
            }
            const double D = gx * p.direction.x + gy * p.direction.y;
            const Vector5 v{-D, -D * column, -D * row, static_cast<double>(t[i]), 1.0};
            for (std::size_t j = 0; j < kUnknowns; ++j) {
                const double wv = w * v[j];
                for (std::size_t k = j; k < kUnknowns; ++k) {
                    e.N[j][k] += wv * v[k];
                }
                e.right[j] += wv * value;
            }
            e.squares += w * value * value;
            e.weight += w;
        }
    }
    return e;
}

Matrix3 shift(double x, double y) {
    return {1.0, 0.0, x, 0.0, 1.0, y, 0.0, 0.0, 1.0};
}

// The figures of a finished fit.
void finish(FittedSurface& fitted, const Patches& p, const Tone& tone, const Equations& e, const Matrix5& sums,
            const Vector5& x) {
    double explained = 0.0;
    for (std::size_t i = 0; i < kUnknowns; ++i) {
        explained += x[i] * e.right[i];
    }
    const double variance = std::max((e.squares - explained) / e.weight, p.noiseSquares);
    const Vector5 inverseColumn = solve<kUnknowns>(e.N, {1.0, 0.0, 0.0, 0.0, 0.0});
    fitted.deviation = std::sqrt(variance * inverseColumn[0]);
    // Sums of t and s over the pixels that take part: columns 3 (t) and 4 (1) of the equations.
    const double n = e.weight;
    const double varianceT = sums[3][3] / n - (sums[3][4] / n) * (sums[3][4] / n);
    const double meanS = e.right[4] / n;
    const double varianceS = e.squares / n - meanS * meanS;
    const double covariance = e.right[3] / n - sums[3][4] / n * meanS;
    const double noiseVariance = p.noiseSquares / (1.0 + tone.gain * tone.gain);
    const double floorT = std::max(varianceT - noiseVariance, 0.2 * varianceT);
    const double floorS = std::max(varianceS - noiseVariance, 0.2 * varianceS);
    fitted.score = floorT > 0.0 && floorS > 0.0 ? std::min(covariance / std::sqrt(floorT * floorS), 1.0) : 0.0;
    double all = 0.0;
    double middle = 0.0;
    double middlePart = 0.0;
    const std::ptrdiff_t side = 2 * p.half + 3;
    const float* weight = p.weights;
    for (int row = -p.half; row <= p.half; ++row) {
        for (int column = -p.half; column <= p.half; ++column, ++weight) {
            all += *weight;
            if (row * row + column * column <= kMiddle * kMiddle) {
                const std::ptrdiff_t i = (row + p.half + 1) * side + p.half + 1 + column;
                const double gx = 0.5 * (p.s[i + 1] - p.s[i - 1]);
                const double gy = 0.5 * (p.s[i + side] - p.s[i - side]);
                middle += 1.0;
                middlePart += partOf(tone.gain * p.t[i] + tone.offset - p.s[i], gx * gx + gy * gy, p.noiseSquares,
                                     kStages.back().tolerance);
            }
        }
    }
    fitted.share = e.weight / all;
    fitted.centreShare = middlePart / middle;
}

}  // namespace

SurfaceFitter::SurfaceFitter(const CameraView& first, const CameraView& second, const Transfer& firstToSecond,
                             int halfWindow, double deviation)
    : from(first),
      to(second),
      transfer(firstToSecond),
      half(halfWindow),
      side(2 * halfWindow + 3),
      noise(deviation),
      patch(static_cast<std::size_t>(side) * static_cast<std::size_t>(side)),
      counterpart(patch.size()) {
    for (const double width : kWidths) {
        std::vector<float>& table = weights.emplace_back();
        double& sum = weightSums.emplace_back();
        for (int y = -half; y <= half; ++y) {
            for (int x = -half; x <= half; ++x) {
                table.push_back(static_cast<float>(std::exp(-0.5 * (x * x + y * y) / (width * half * width * half))));
                sum += static_cast<double>(table.back());
            }
        }
    }
}

std::optional<FittedSurface> SurfaceFitter::operator()(const Surface& start) {
    const Matrix3 place = shift(start.at.x - half - 1, start.at.y - half - 1);
    if (!from.shows(place, side, side)) {
        return std::nullopt;
    }
    from.warp(place, side, side, patch.data());
    FittedSurface fitted;
    fitted.surface = start;
    Surface& s = fitted.surface;
    Tone tone;
    double drift = 0.0;
    for (std::size_t round = 0;; ++round) {
        const Matrix3 H = transfer.homographyOf(s);
        const Matrix3 toSecond = product(H, place);
        if (!to.shows(toSecond, side, side)) {
            return std::nullopt;
        }
        to.warp(toSecond, side, side, counterpart.data());
        const Direction direction = directionOf(H, s.at, transfer.motionOf(s.at, s.rho));
        const Stage& stage = kStages[std::min(round, kStages.size() - 1)];
        const Patches patches{patch.data(), counterpart.data(), weights[stage.width].data(),
                              half,         direction.unit,     (1.0 + tone.gain * tone.gain) * noise * noise};
        Equations e = equationsOf(patches, tone, stage.tolerance);
        if (round >= kFirstVerdict && e.weight < kHopeless * weightSums[stage.width]) {
            return std::nullopt;
        }
        const Matrix5 sums = e.N;
        if (!factor<kUnknowns>(e.N)) {
            return std::nullopt;
        }
        const Vector5 x = solve<kUnknowns>(e.N, e.right);
        const bool settled = round >= kStages.size() && std::fabs(x[0]) < kSettledPixels;
        if (settled || round == kMaxRounds) {
            fitted.pixelsPerRho = direction.pixelsPerRho;
            finish(fitted, patches, tone, e, sums, x);
            return fitted;
        }
        drift += x[0];
        if (!(std::fabs(x[0]) < kMaxStep && std::fabs(drift) < kMaxDrift)) {
            return std::nullopt;
        }
        s.rho += x[0] / direction.pixelsPerRho;
        s.slopeX += x[1] / direction.pixelsPerRho;
        s.slopeY += x[2] / direction.pixelsPerRho;
        tone = x[3] > 0.2 && x[3] < 5.0 ? Tone{x[3], x[4]} : Tone{};
        if (std::hypot(s.slopeX - start.slopeX, s.slopeY - start.slopeY) * direction.pixelsPerRho > kMaxSlope) {
            return std::nullopt;
        }
    }
}

}  // namespace zelm::measure
