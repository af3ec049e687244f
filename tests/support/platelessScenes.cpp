#include "platelessScenes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "imageFaults.h"
#include "trialStations.h"

namespace zelm::accuracy {
namespace {

using render::LevelImage;
using render::RandomSource;

LevelImage flat(int width, int height, double level) {
    return {width, height,
            std::vector<double>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), level)};
}

// Edges of images are not sharp to the pixel.
LevelImage softened(const LevelImage& image, RandomSource& random) {
    return zelmtest::smeared(image, 1.2, random.uniform(0.0, 3.0));
}

// Random bright and dark shapes, round and square.
LevelImage clutter(int width, int height, RandomSource& random) {
    LevelImage image = flat(width, height, random.uniform(30.0, 180.0));
    const int shapes = between(random, 6, 25);
    for (int k = 0; k < shapes; ++k) {
        const double x = random.uniform(0.0, width);
        const double y = random.uniform(0.0, height);
        const double a = random.uniform(3.0, 0.2 * width);
        const double b = a * random.uniform(0.2, 1.0);
        const double turn = random.uniform(0.0, 3.14);
        const double gray = random.uniform(10.0, 230.0);
        const bool isRound = chance(random, 0.5);
        changeLevels(image, [&](int px, int py, double level) {
            const double u = ((px - x) * std::cos(turn) + (py - y) * std::sin(turn)) / a;
            const double v = ((py - y) * std::cos(turn) - (px - x) * std::sin(turn)) / b;
            return (isRound ? u * u + v * v < 1.0 : std::max(std::fabs(u), std::fabs(v)) < 1.0) ? gray : level;
        });
    }
    return softened(image, random);
}

LevelImage uniformNoise(int width, int height, RandomSource& random) {
    LevelImage image = flat(width, height, 0.0);
    const double low = random.uniform(0.0, 100.0);
    const double high = low + random.uniform(60.0, 155.0);
    changeLevels(image, [&](int, int, double) { return random.uniform(low, high); });
    return image;
}

LevelImage normalNoise(int width, int height, RandomSource& random) {
    const double sigma = random.uniform(10.0, 60.0);
    LevelImage image = flat(width, height, random.uniform(70.0, 180.0));
    changeLevels(image, [&](int, int, double level) { return level + sigma * random.normal(); });
    return image;
}

LevelImage gradient(int width, int height, RandomSource& random) {
    const double angle = random.uniform(0.0, 6.28);
    const double slope = random.uniform(60.0, 250.0) / std::hypot(width, height);
    LevelImage image = flat(width, height, 128.0);
    changeLevels(image, [&](int x, int y, double level) {
        return level + slope * ((x - 0.5 * width) * std::cos(angle) + (y - 0.5 * height) * std::sin(angle));
    });
    return image;
}

// Octaves of interpolated noise whose amplitude falls with their frequency, as that of photographs does.
LevelImage texture(int width, int height, RandomSource& random) {
    LevelImage image = flat(width, height, 128.0);
    for (int cell = width / 3; cell >= 2; cell = cell * 2 / 3) {
        const int columns = width / cell + 2;
        const int rows = height / cell + 2;
        std::vector<double> knots(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
        std::generate(knots.begin(), knots.end(), [&] { return random.normal(); });
        const double amplitude = 45.0 * std::pow(3.0 * cell / width, 0.7);
        const auto knot = [&](int x, int y) {
            return knots[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(x)];
        };
        changeLevels(image, [&](int x, int y, double level) {
            const double u = static_cast<double>(x % cell) / cell;
            const double v = static_cast<double>(y % cell) / cell;
            const int c = x / cell;
            const int r = y / cell;
            return level + amplitude * ((1 - v) * ((1 - u) * knot(c, r) + u * knot(c + 1, r)) +
                                        v * ((1 - u) * knot(c, r + 1) + u * knot(c + 1, r + 1)));
        });
    }
    return image;
}

// Lines of letters, each of some strokes in a cell of 5 by 7, as on a printed page.
LevelImage text(int width, int height, RandomSource& random) {
    LevelImage image = flat(width, height, random.uniform(180.0, 240.0));
    const double ink = random.uniform(10.0, 60.0);
    const int stroke = std::max(1, static_cast<int>(width * random.uniform(0.0015, 0.005)));
    const int letter = 5 * stroke;
    const auto box = [&](int left, int top, int w, int h) {
        for (int y = std::max(top, 0); y < std::min(top + h, height); ++y) {
            for (int x = std::max(left, 0); x < std::min(left + w, width); ++x) {
                levelOf(image, x, y) = ink;
            }
        }
    };
    for (int y = 4 * stroke; y + 7 * stroke < height; y += 13 * stroke) {
        for (int x = 6 * stroke; x + 6 * letter < width; x += letter + 2 * stroke) {
            if (chance(random, 0.18)) {
                continue;  // between two words
            }
            for (int k = between(random, 2, 4); k > 0; --k) {
                if (chance(random, 0.5)) {
                    box(x + stroke * between(random, 0, 4), y + stroke * between(random, 0, 3), stroke,
                        stroke * between(random, 3, 7));
                } else {
                    box(x, y + stroke * between(random, 0, 6), letter, stroke);
                }
            }
        }
    }
    return softened(image, random);
}

LevelImage stripes(int width, int height, RandomSource& random) {
    const double angle = random.uniform(0.0, 3.14);
    const double period = random.uniform(8.0, 80.0);
    const double amplitude = random.uniform(25.0, 110.0);
    LevelImage image = flat(width, height, 128.0);
    changeLevels(image, [&](int x, int y, double level) {
        const double phase = 6.2832 / period * (x * std::cos(angle) + y * std::sin(angle));
        return level + amplitude * std::clamp(2.0 * std::sin(phase), -1.0, 1.0);
    });
    return image;
}

// Round spots of many sizes anywhere.
LevelImage stars(int width, int height, RandomSource& random) {
    const bool isBright = chance(random, 0.5);
    LevelImage image = flat(width, height, isBright ? 40.0 : 200.0);
    for (int k = between(random, 60, 400); k > 0; --k) {
        const double x = random.uniform(0.0, width);
        const double y = random.uniform(0.0, height);
        const double radius = random.uniform(3.0, 9.0) * width / 640.0;
        const double peak = (isBright ? 1.0 : -1.0) * random.uniform(40.0, 150.0);
        for (int py = std::max(0, static_cast<int>(y - radius - 2)); py < std::min<double>(height, y + radius + 2);
             ++py) {
            for (int px = std::max(0, static_cast<int>(x - radius - 2)); px < std::min<double>(width, x + radius + 2);
                 ++px) {
                levelOf(image, px, py) += peak * std::clamp(radius - std::hypot(px - x, py - y) + 0.5, 0.0, 1.0);
            }
        }
    }
    return image;
}

}  // namespace

const char* sceneName(Scene scene) {
    constexpr std::array<const char*, kScenes> kNames{"clutter", "uniform noise", "normal noise", "gradient",
                                                      "texture", "text",          "stripes",      "round spots"};
    return kNames[static_cast<std::size_t>(scene)];
}

LevelImage platelessScene(Scene scene, int width, int height, RandomSource& random) {
    switch (scene) {
        case Scene::uniformNoise:
            return uniformNoise(width, height, random);
        case Scene::normalNoise:
            return normalNoise(width, height, random);
        case Scene::gradient:
            return gradient(width, height, random);
        case Scene::texture:
            return texture(width, height, random);
        case Scene::text:
            return text(width, height, random);
        case Scene::stripes:
            return stripes(width, height, random);
        case Scene::stars:
            return stars(width, height, random);
        default:
            return clutter(width, height, random);
    }
}

LevelImage checkerboard(int width, int height, RandomSource& random) {
    const double angle = random.uniform(-0.5, 0.5);
    const double square = width * random.uniform(0.03, 0.1);
    const double dark = random.uniform(10.0, 60.0);
    const double bright = random.uniform(130.0, 230.0);
    const int columns = between(random, 6, 9);
    LevelImage image = flat(width, height, bright);
    changeLevels(image, [&](int x, int y, double level) {
        const double u = ((x - 0.5 * width) * std::cos(angle) + (y - 0.5 * height) * std::sin(angle)) / square;
        const double v = ((y - 0.5 * height) * std::cos(angle) - (x - 0.5 * width) * std::sin(angle)) / square;
        const bool isInside = std::fabs(u) < 0.5 * columns && std::fabs(v) < 0.4 * columns;
        const long sum = std::lround(std::floor(u)) + std::lround(std::floor(v));
        return isInside && sum % 2 == 0 ? dark : level;
    });
    return softened(image, random);
}

}  // namespace zelm::accuracy
