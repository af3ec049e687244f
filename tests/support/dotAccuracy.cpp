#include "dotAccuracy.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <numbers>

#include "cholesky.h"
#include "dotShapes.h"
#include "readingAccuracy.h"

namespace zelm::accuracy {
namespace {

constexpr double kPixelVariance = 1.0 / 12.0;  // of the pixel's square along an axis
constexpr double kRounding = 1.0 / 12.0;       // variance of rounding to whole gray levels
constexpr double kReadNear = 0.5;              // pixels; a dot that is read farther from its truth is another one

// The coverage by sums over chords, whose error falls exponentially with their number.
double coverageOf(const render::EllipseTruth& e, double x, double y, double scale, double sigma) {
    const int chords = std::clamp(static_cast<int>(5.0 * e.a * scale / sigma), 24, 400);  // not a blur apart
    const double c = std::cos(e.angle);
    const double s = std::sin(e.angle);
    const double along = x * c + y * s;
    const double across = y * c - x * s;
    double sum = 0.0;
    for (int k = 0; k < chords; ++k) {
        const double t = std::numbers::pi * ((k + 0.5) / chords - 0.5);
        const double d = (along - scale * e.a * std::sin(t)) / sigma;
        const double half = scale * e.b * std::cos(t);
        const double width = scale * e.a * std::cos(t) * std::numbers::pi / chords;
        const double covered = std::erf((across + half) / (sigma * std::numbers::sqrt2)) -
                               std::erf((across - half) / (sigma * std::numbers::sqrt2));
        sum += width * std::exp(-0.5 * d * d) * 0.5 * covered;
    }
    return sum / (sigma * std::sqrt(2.0 * std::numbers::pi));
}

double cpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

double totalNoise(double noise) {
    return std::sqrt(noise * noise + kRounding);
}

// The bound of every dot of a view: that of one of middling size, which goes with contrast and the root of the radius.
class ViewBound {
public:
    ViewBound(const ReadingView& view, const ReadingCase& reading) : seen(view), setting(reading) {
        const render::DotTruth& dot = seen.truths[seen.truths.size() / 4];
        const double blur = std::sqrt(setting.blur * setting.blur + kPixelVariance);
        const double reach = std::min(4.2 * blur + 0.4 + std::max(2.5, 0.25 * dot.radius), 1.8 * dot.radius);
        factor = ellipseBound(dot.ellipse, 1.0, 1.0, setting.blur, reach) / plain(dot, 1.0);
    }
    [[nodiscard]] double of(const render::DotTruth& dot) const {
        return factor * plain(dot, setting.contrast * seen.optics.light.at(seen.camera, dot.centre.x, dot.centre.y)) *
               totalNoise(setting.noise);
    }

private:
    [[nodiscard]] double plain(const render::DotTruth& dot, double contrast) const {
        return centreBound(1.0, contrast, std::sqrt(setting.blur * setting.blur + kPixelVariance), dot.radius);
    }

    const ReadingView& seen;
    const ReadingCase& setting;
    double factor = 1.0;
};

void judgeReader(const ReadingView& seen, const render::GrayImage& image, DotFigures& figures) {
    PlateReader reader(seen);
    std::vector<Point2d> dots;
    if (!reader.read(image, dots)) {
        return;
    }
    for (const Point2d& p : dots) {
        for (const render::DotTruth& truth : seen.truths) {
            const double d = std::hypot(truth.ellipse.centre.x - p.x, truth.ellipse.centre.y - p.y);
            if (d < kReadNear) {
                figures.reader += 0.5 * d * d;
                ++figures.read;
                break;
            }
        }
    }
}

// From the dot's centre to the nearest outline of another one.
double neighbourOf(const ReadingView& seen, std::size_t dot) {
    double least = HUGE_VAL;
    for (std::size_t i = 0; i < seen.truths.size(); ++i) {
        if (i != dot) {
            const render::EllipseTruth& other = seen.truths[i].ellipse;
            least = std::min(least, std::hypot(other.centre.x - seen.truths[dot].ellipse.centre.x,
                                               other.centre.y - seen.truths[dot].ellipse.centre.y) -
                                        other.a);
        }
    }
    return least;
}

}  // namespace

double ellipseBound(const render::EllipseTruth& ellipse, double noise, double contrast, double blur, double reach) {
    const double sigma = std::sqrt(blur * blur + kPixelVariance);
    constexpr double kStep = 1e-3;  // pixels
    const double radius = std::sqrt(ellipse.a * ellipse.b);
    measure::Matrix<10> N{};
    const int half = static_cast<int>(ellipse.a + reach) + 1;
    for (int y = -half; y <= half; ++y) {
        for (int x = -half; x <= half; ++x) {
            // A middling place within the pixel.
            const double px = x + 0.3;
            const double py = y + 0.2;
            const double rho = std::hypot(px, py);
            const double c = std::cos(ellipse.angle);
            const double s = std::sin(ellipse.angle);
            const double edge =
                1.0 / std::hypot((px * c + py * s) / (rho * ellipse.a), (py * c - px * s) / (rho * ellipse.b));
            if (rho > edge + reach) {
                continue;
            }
            const auto cover = [&](double dx, double dy, double grow, double widen) {
                return coverageOf(ellipse, px - dx, py - dy, 1.0 + grow / radius, sigma + widen);
            };
            const bool isFar = std::fabs(rho - edge) > 6.0 * sigma;
            const double m = isFar ? (rho < edge ? 1.0 : 0.0) : cover(0.0, 0.0, 0.0, 0.0);
            const auto by = [&](double dx, double dy, double grow, double widen) {
                return isFar ? 0.0
                             : contrast * (cover(dx, dy, grow, widen) - cover(-dx, -dy, -grow, -widen)) / (2.0 * kStep);
            };
            const std::array<double, 10> row{by(kStep, 0, 0, 0),
                                             by(0, kStep, 0, 0),
                                             by(0, 0, kStep, 0),
                                             by(0, 0, 0, kStep),
                                             m,
                                             m * px / radius,
                                             m * py / radius,
                                             1.0 - m,
                                             (1.0 - m) * px / radius,
                                             (1.0 - m) * py / radius};
            for (std::size_t i = 0; i < 10; ++i) {
                for (std::size_t j = i; j < 10; ++j) {
                    N[i][j] += row[i] * row[j];
                }
            }
        }
    }
    if (!measure::factor(N)) {
        return HUGE_VAL;
    }
    const double xx = measure::solve(N, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0})[0];
    const double yy = measure::solve(N, {0, 1, 0, 0, 0, 0, 0, 0, 0, 0})[1];
    return noise * std::sqrt(0.5 * (xx + yy));
}

DotFigures refinePlates(const ReadingCase& setting, double aside, bool withReader) {
    DotFigures figures;
    render::RandomSource random(setting.seed);
    render::RandomSource predictions(setting.seed + 77);
    double seconds = 0.0;
    for (int view = 0; view < setting.views; ++view) {
        const ReadingView seen = readingView(setting, view, random);
        const render::LevelImage levels = render::renderLevels(seen.plate, seen.camera, seen.pose, seen.optics);
        const ViewBound bound(seen, setting);
        for (int draw = 0; draw < setting.noiseDraws; ++draw) {
            const auto seed = setting.seed + 1000U * static_cast<unsigned>(view) + static_cast<unsigned>(draw);
            const render::GrayImage image = render::digitise(levels, setting.noise, seed);
            const measure::DenseImage dense(zelmtest::imageOf(image));
            for (std::size_t i = 0; i < seen.truths.size(); ++i) {
                const render::DotTruth& truth = seen.truths[i];
                const auto shape =
                    zelmtest::shapeOf(truth.ellipse, predictions.uniform(-aside, aside),
                                      predictions.uniform(-aside, aside), predictions.uniform(0.95, 1.05));
                const measure::DotFitOptions options{zelmtest::polarityOf(seen.plate), neighbourOf(seen, i)};
                const double start = cpuSeconds();
                const measure::DotFitResult dot = measure::fitDot(dense, shape, options);
                seconds += cpuSeconds() - start;
                ++figures.dots;
                if (!dot.ok) {
                    continue;
                }
                const double x = dot.centre.x - truth.ellipse.centre.x;
                const double y = dot.centre.y - truth.ellipse.centre.y;
                ++figures.placed;
                figures.rms += 0.5 * (x * x + y * y);
                figures.biasX += x;
                figures.biasY += y;
                figures.worst = std::max(figures.worst, std::hypot(x, y));
                figures.expected += 0.5 * (dot.covariance[0] + dot.covariance[2]);
                figures.bound += bound.of(truth) * bound.of(truth);
            }
            if (withReader) {
                judgeReader(seen, image, figures);
            }
        }
    }
    const double n = std::max(figures.placed, 1);
    figures.rms = std::sqrt(figures.rms / n);
    figures.biasX /= n;
    figures.biasY /= n;
    figures.expected = std::sqrt(figures.expected / n);
    figures.bound = std::sqrt(figures.bound / n);
    figures.reader = std::sqrt(figures.reader / std::max(figures.read, 1));
    figures.microseconds = 1e6 * seconds / std::max(figures.dots, 1);
    return figures;
}

}  // namespace zelm::accuracy
