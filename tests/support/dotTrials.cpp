#include "dotTrials.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "dotShapes.h"
#include "readingViews.h"

namespace zelm::accuracy {
namespace {

constexpr int kTrialsAnImage = 100;
constexpr double kTurn = 2.0 * std::numbers::pi;

struct DrawnView {
    ReadingCase setting;
    ReadingView seen;
    render::LevelImage levels;
    render::GrayImage image;
};

DrawnView drawView(render::RandomSource& random, double maxNoise, double maxFalloff) {
    DrawnView view;
    ReadingCase& c = view.setting;
    c.radius = random.uniform(4.5, 14.0);
    c.blur = random.uniform(0.4, std::min(2.0, 0.25 * c.radius));
    c.noise = random.uniform(0.3, maxNoise);
    c.contrast = random.uniform(70.0, 200.0);
    c.falloff = random.uniform(0.0, maxFalloff);
    c.views = 2;
    c.seed = static_cast<std::uint64_t>(random.uniform(0.0, 1e9));
    render::RandomSource poses(c.seed);
    view.seen = readingView(c, random.uniform() < 0.5 ? 0 : 1, poses);
    view.levels = render::renderLevels(view.seen.plate, view.seen.camera, view.seen.pose, view.seen.optics);
    view.image = render::digitise(view.levels, c.noise, c.seed);
    return view;
}

// Normal spots of many sizes, dark and bright.
render::GrayImage speckles(render::RandomSource& random, int size) {
    const double grain = random.uniform(1.0, 8.0);
    const double contrast = random.uniform(10.0, 60.0);
    std::vector<double> levels(static_cast<std::size_t>(size * size), 128.0);
    const int spots = static_cast<int>(size * size / (4.0 * grain * grain));
    for (int k = 0; k < spots; ++k) {
        const double x = random.uniform(0.0, size);
        const double y = random.uniform(0.0, size);
        const double height = contrast * random.normal();
        const double sigma = grain * random.uniform(0.5, 2.0);
        const int reach = static_cast<int>(3.0 * sigma) + 1;
        for (int v = std::max(0, static_cast<int>(y) - reach); v < std::min(size, static_cast<int>(y) + reach); ++v) {
            for (int u = std::max(0, static_cast<int>(x) - reach); u < std::min(size, static_cast<int>(x) + reach);
                 ++u) {
                const double d2 = (u - x) * (u - x) + (v - y) * (v - y);
                levels[static_cast<std::size_t>(v * size + u)] += height * std::exp(-0.5 * d2 / (sigma * sigma));
            }
        }
    }
    return render::digitise({size, size, levels}, 1.0, 1);
}

const render::DotTruth& anyDot(const ReadingView& seen, render::RandomSource& random) {
    return seen.truths[static_cast<std::size_t>(random.uniform() * static_cast<double>(seen.truths.size()))];
}

struct Prediction {
    measure::DotShape shape;
    measure::DotFitOptions options;
    double radius = 0.0;
};

Prediction predictWrongly(WrongPlace kind, const ReadingView& seen, render::RandomSource& random) {
    const render::DotTruth& dot = anyDot(seen, random);
    render::EllipseTruth e = dot.ellipse;
    double scale = random.uniform(0.9, 1.1);
    double distance = 0.0;
    Prediction p;
    p.options.polarity = zelmtest::polarityOf(seen.plate);
    p.options.neighbour = random.uniform() < 0.5 ? 0.0 : 3.0 * dot.radius;
    if (kind == WrongPlace::beside) {
        distance = random.uniform(std::max(2.0, 0.5 * dot.radius), 2.5 * dot.radius);
    } else if (kind == WrongPlace::anywhere) {
        distance = random.uniform(2.5, 20.0) * dot.radius;
    } else if (kind == WrongPlace::otherPolarity) {
        distance = random.uniform(0.0, 2.5) * dot.radius;
        p.options.polarity = p.options.polarity == measure::DotPolarity::dark ? measure::DotPolarity::bright
                                                                              : measure::DotPolarity::dark;
    } else if (kind == WrongPlace::otherSize) {
        scale = dot.dot.marker ? random.uniform(0.3, 0.6) : random.uniform(1.5, 3.0);
        distance = random.uniform(0.0, dot.radius);
    } else if (kind == WrongPlace::otherShape) {
        const double stretch = std::sqrt(random.uniform(1.5, 3.0));
        e.a *= stretch;
        e.b /= stretch;
    }
    const double direction = random.uniform(0.0, kTurn);
    p.shape = zelmtest::shapeOf(e, distance * std::cos(direction), distance * std::sin(direction), scale);
    if (kind == WrongPlace::speckles) {
        p.shape.centre = {random.uniform(0.0, 200.0), random.uniform(0.0, 200.0)};
    }
    p.radius = scale * std::sqrt(e.a * e.b);
    return p;
}

// Whether a dot of that size is where the fit says that one is.
bool isTrue(const measure::DotFitResult& found, const Prediction& p, const ReadingView& seen) {
    const double spread = std::sqrt(found.covariance[0] + found.covariance[2]);
    return p.options.polarity == zelmtest::polarityOf(seen.plate) &&
           std::any_of(seen.truths.begin(), seen.truths.end(), [&](const render::DotTruth& dot) {
               const double error =
                   std::hypot(found.centre.x - dot.ellipse.centre.x, found.centre.y - dot.ellipse.centre.y);
               return error < 0.05 + 5.0 * spread && std::fabs(found.scale * p.radius / dot.radius - 1.0) < 0.1;
           });
}

// Draws what disturbs a dot over its surroundings, with the blur of the view.
class Disturber {
public:
    Disturber(const DrawnView& drawn, const render::DotTruth& disturbed, render::RandomSource& source)
        : view(drawn), dot(disturbed), random(source), direction(source.uniform(0.0, kTurn)) {
        gray = random.uniform(10.0, 240.0);
        sideways = random.uniform(-0.6, 0.6) * dot.radius;
    }

    // Returns how far from the dot's centre another dot's outline begins, 0 where there is none.
    double choose(Disturbance disturbance, double least, double most) {
        kind = disturbance;
        const double r = dot.radius;
        if (kind == Disturbance::halfPlane) {
            offset = r * std::cos(std::numbers::pi * random.uniform(least, most));
        } else if (kind == Disturbance::bar) {
            offset = random.uniform(0.0, r);
        } else if (kind == Disturbance::highlight) {
            offset = random.uniform(0.1, 0.35) * r;
            gray = 400.0;
        } else if (kind == Disturbance::saturation) {
            const double brightest = *std::max_element(view.levels.levels.begin(), view.levels.levels.end());
            gain = 255.0 / brightest * random.uniform(1.0, 1.6);
        } else if (kind == Disturbance::nearDisc) {
            offset = random.uniform(1.3, 2.0) * r;
            gray = view.levels.at(static_cast<int>(dot.centre.x), static_cast<int>(dot.centre.y));
            return offset;
        }
        return 0.0;
    }

    double levelAt(int x, int y) const {
        const double dx = x - dot.ellipse.centre.x;
        const double dy = y - dot.ellipse.centre.y;
        const double u = dx * std::cos(direction) + dy * std::sin(direction);
        const double v = dy * std::cos(direction) - dx * std::sin(direction);
        const double m = coverage(u, v);
        return gain * ((1.0 - m) * view.levels.at(x, y) + m * gray);
    }

private:
    double side(double distance) const {
        return 0.5 * std::erfc(-distance / (view.setting.blur * std::numbers::sqrt2));
    }
    double coverage(double u, double v) const {
        const double r = dot.radius;
        if (kind == Disturbance::halfPlane) {
            return side(u - offset);
        }
        if (kind == Disturbance::bar) {
            return side(u - offset + 0.15 * r) * side(offset + 0.15 * r - u);
        }
        if (kind == Disturbance::highlight) {
            return side(offset - std::hypot(u - sideways, v));
        }
        return kind == Disturbance::nearDisc ? side(0.8 * r - std::hypot(u - offset - 0.8 * r, v)) : 0.0;
    }

    const DrawnView& view;
    const render::DotTruth& dot;
    render::RandomSource& random;
    Disturbance kind = Disturbance::nothing;
    double direction;
    double gray = 0.0;
    double sideways = 0.0;
    double offset = 0.0;
    double gain = 1.0;
};

render::GrayImage disturbedImage(const DrawnView& view, const render::DotTruth& dot, const Disturber& disturber,
                                 render::RandomSource& random) {
    render::GrayImage image = view.image;
    const int reach = static_cast<int>(3.5 * dot.radius) + 12;
    const int cx = static_cast<int>(dot.ellipse.centre.x);
    const int cy = static_cast<int>(dot.ellipse.centre.y);
    for (int y = std::max(cy - reach, 0); y < std::min(cy + reach, image.height); ++y) {
        for (int x = std::max(cx - reach, 0); x < std::min(cx + reach, image.width); ++x) {
            const double level = disturber.levelAt(x, y) + view.setting.noise * random.normal();
            image.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                         static_cast<std::size_t>(x)] =
                static_cast<std::uint8_t>(std::clamp(std::floor(level + 0.5), 0.0, 255.0));
        }
    }
    return image;
}

unsigned flagOf(Disturbance kind) {
    constexpr std::array<unsigned, kDisturbances> kFlags{0,
                                                         measure::kDotHalfHidden,
                                                         measure::kDotHalfHidden,
                                                         measure::kDotHighlight | measure::kDotHalfHidden,
                                                         measure::kDotSaturated,
                                                         measure::kDotNeighbour};
    return kFlags[static_cast<std::size_t>(kind)];
}

}  // namespace

WrongPlaceFigures tryWrongPlaces(int trials, std::uint64_t seed) {
    render::RandomSource random(seed);
    WrongPlaceFigures figures;
    for (int done = 0; done < trials;) {
        const DrawnView view = drawView(random, 8.0, 0.6);
        const render::GrayImage spots = speckles(random, 200);
        for (int k = 0; k < 2 * kTrialsAnImage && done < trials; ++k, ++done) {
            const auto index = static_cast<std::size_t>(done) % kWrongPlaces;
            const auto kind = static_cast<WrongPlace>(index);
            const Prediction p = predictWrongly(kind, view.seen, random);
            const bool isSpeckled = kind == WrongPlace::speckles;
            const measure::DenseImage image(zelmtest::imageOf(isSpeckled ? spots : view.image));
            const measure::DotFitResult found = measure::fitDot(image, p.shape, p.options);
            ++figures.trials[index];
            if (found.ok) {
                ++(!isSpeckled && isTrue(found, p, view.seen) ? figures.accepted : figures.wrong)[index];
            }
        }
    }
    return figures;
}

DisturbanceFigures tryDisturbed(Disturbance kind, int trials, std::uint64_t seed, double least, double most) {
    render::RandomSource random(seed);
    DisturbanceFigures figures;
    while (figures.trials < trials) {
        const DrawnView view = drawView(random, 4.0, 0.4);
        for (int k = 0; k < kTrialsAnImage && figures.trials < trials; ++k) {
            const render::DotTruth& dot = anyDot(view.seen, random);
            Disturber disturber(view, dot, random);
            const double neighbour = disturber.choose(kind, least, most);
            const render::GrayImage image = disturbedImage(view, dot, disturber, random);
            const auto shape = zelmtest::shapeOf(dot.ellipse, random.uniform(-1.0, 1.0), random.uniform(-1.0, 1.0));
            const measure::DotFitResult found = measure::fitDot(measure::DenseImage(zelmtest::imageOf(image)), shape,
                                                                {zelmtest::polarityOf(view.seen.plate), neighbour});
            ++figures.trials;
            if (!found.ok) {
                continue;
            }
            const double x = found.centre.x - dot.ellipse.centre.x;
            const double y = found.centre.y - dot.ellipse.centre.y;
            const double error = std::hypot(x, y);
            ++figures.accepted;
            figures.flagged += (found.flags & flagOf(kind)) != 0 ? 1 : 0;
            figures.rms += 0.5 * error * error;
            figures.pull += 0.5 * (x * x / found.covariance[0] + y * y / found.covariance[2]);
            figures.worst = std::max(figures.worst, error);
            const double spread = std::sqrt(found.covariance[0] + found.covariance[2]);
            figures.astray += error > 0.05 + 5.0 * spread ? 1 : 0;
        }
    }
    const double n = std::max(figures.accepted, 1);
    figures.rms = std::sqrt(figures.rms / n);
    figures.pull = std::sqrt(figures.pull / n);
    return figures;
}

}  // namespace zelm::accuracy
