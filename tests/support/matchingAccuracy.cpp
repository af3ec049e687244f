#include "matchingAccuracy.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "random.h"
#include "zelmLib.h"

namespace zelm::accuracy {
namespace {

using zelmtest::Random;

constexpr double kPi = 3.14159265358979323846;
constexpr double kMiddle = 128.0;  // gray level
constexpr int kWaves = 150;
constexpr int kReach = 28;  // pixels on the line before and behind the match

struct Plane {
    int width = 0;
    int height = 0;
    std::vector<double> values;
    double& at(int x, int y) { return values[static_cast<std::size_t>(y * width + x)]; }
    [[nodiscard]] double at(int x, int y) const { return values[static_cast<std::size_t>(y * width + x)]; }
};

// A sum of plane waves whose frequencies are normally distributed, none beyond Nyquist's, so that the texture between
// the pixels is known in closed form and its pixels tell all of it.
class Texture {
public:
    Texture(Random& random, double grain, double contrast) : amplitude(contrast * std::sqrt(2.0 / kWaves)) {
        while (waves.size() < kWaves) {
            const double wx = random.normal() / grain;
            const double wy = random.normal() / grain;
            const double phase = random.uniform(0.0, 2.0 * kPi);
            if (std::hypot(wx, wy) < kPi) {
                waves.push_back({wx, wy, phase});
            }
        }
    }
    // The gray level at (x - x0, y - y0) in every pixel (x, y), or the derivative there along a direction.
    [[nodiscard]] Plane render(int width, int height, double x0, double y0) const {
        Plane plane = empty(width, height);
        for (const Wave& wave : waves) {
            addWave(wave, amplitude, wave.phase - wave.wx * x0 - wave.wy * y0, &plane);
        }
        for (double& value : plane.values) {
            value += kMiddle;
        }
        return plane;
    }
    [[nodiscard]] Plane renderSlope(int width, int height, double x0, double y0, double ux, double uy) const {
        Plane plane = empty(width, height);
        for (const Wave& wave : waves) {
            // d/ds cos(p) = -w sin(p) = w cos(p + pi/2)
            addWave(wave, amplitude * (wave.wx * ux + wave.wy * uy),
                    wave.phase - wave.wx * x0 - wave.wy * y0 + 0.5 * kPi, &plane);
        }
        return plane;
    }

private:
    struct Wave {
        double wx;
        double wy;
        double phase;
    };
    static Plane empty(int width, int height) {
        return {width, height, std::vector<double>(static_cast<std::size_t>(width * height), 0.0)};
    }
    // Adds scale * cos(wx x + wy y + phase), by products of what depends on x and on y alone.
    static void addWave(const Wave& wave, double scale, double phase, Plane* plane) {
        std::vector<double> cosX(static_cast<std::size_t>(plane->width));
        std::vector<double> sinX(cosX.size());
        for (std::size_t x = 0; x < cosX.size(); ++x) {
            cosX[x] = std::cos(wave.wx * static_cast<double>(x));
            sinX[x] = std::sin(wave.wx * static_cast<double>(x));
        }
        for (int y = 0; y < plane->height; ++y) {
            const double c = scale * std::cos(wave.wy * y + phase);
            const double s = scale * std::sin(wave.wy * y + phase);
            double* const row = &plane->at(0, y);
            for (std::size_t x = 0; x < cosX.size(); ++x) {
                row[x] += c * cosX[x] - s * sinX[x];
            }
        }
    }

    double amplitude;
    std::vector<Wave> waves;
};

std::vector<std::uint8_t> digitise(Random& random, const Plane& plane, double noise) {
    std::vector<std::uint8_t> pixels;
    pixels.reserve(plane.values.size());
    for (const double value : plane.values) {
        const double noisy = value + (noise > 0.0 ? noise * random.normal() : 0.0);
        pixels.push_back(static_cast<std::uint8_t>(std::clamp(std::floor(noisy + 0.5), 0.0, 255.0)));
    }
    return pixels;
}

std::vector<std::uint8_t> discMask(int size) {
    std::vector<std::uint8_t> mask;
    const double middle = 0.5 * (size - 1);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            mask.push_back(std::hypot(x - middle, y - middle) <= 0.5 * size ? 1 : 0);
        }
    }
    return mask;
}

std::vector<std::uint8_t> blottedMask(Random& random, int width, int height) {
    std::vector<std::uint8_t> mask(static_cast<std::size_t>(width * height), 1);
    for (int blot = 0; blot < width * height / 160; ++blot) {
        const int x0 = random.integer(0, width - 4);
        const int y0 = random.integer(0, height - 4);
        for (int i = 0; i < 16; ++i) {
            mask[static_cast<std::size_t>((y0 + i / 4) * width + x0 + i % 4)] = 0;
        }
    }
    return mask;
}

// A line through a point that the trial's match is to be found at.
struct Truth {
    double x;
    double y;
    double ux;
    double uy;
    [[nodiscard]] Line2d line() const { return {-uy, ux, uy * x - ux * y}; }
};

Truth drawTruth(Random& random, const MatchingCase& setting, int middle) {
    const double degrees = random.uniform(setting.lowAngleDegrees, setting.highAngleDegrees);
    const double angle = degrees * kPi / 180.0 * (random.integer(0, 1) == 0 ? 1.0 : -1.0);
    const double along = middle + random.uniform(-0.5, 0.5);
    const double across = middle + (setting.through == LineThrough::anywhere ? random.uniform(-0.5, 0.5) : 0.0);
    if (random.integer(0, 1) == 0) {
        return {along, across, std::cos(angle), std::sin(angle)};
    }
    return {across, along, std::sin(angle), std::cos(angle)};
}

double sumOfSquares(const Plane& plane, const std::vector<std::uint8_t>& mask) {
    double sum = 0.0;
    for (std::size_t i = 0; i < plane.values.size(); ++i) {
        sum += mask.empty() || mask[i] != 0 ? plane.values[i] * plane.values[i] : 0.0;
    }
    return sum;
}

struct Trial {
    bool found = false;
    double error = 0.0;         // along the line
    double towardsPixel = 0.0;  // the error, positive when it lies towards the nearest pixel
    double bound = 0.0;
};

Trial runTrial(Random& random, const MatchingCase& setting) {
    const int half = setting.size / 2;
    const int imageSize = 2 * (kReach + half) + 3;
    const Truth truth = drawTruth(random, setting, imageSize / 2);
    const Texture texture(random, setting.grain, setting.contrast);
    auto tmplPixels = digitise(random, texture.render(setting.size, setting.size, half, half), setting.noise);
    auto pixels = digitise(random, texture.render(imageSize, imageSize, truth.x, truth.y), setting.noise);
    auto tmplMask = setting.templateMask ? discMask(setting.size) : std::vector<std::uint8_t>();
    auto mask = setting.searchMask ? blottedMask(random, imageSize, imageSize) : std::vector<std::uint8_t>();

    ZelmCstmRefImg ref{};
    ref.width = ref.height = setting.size;
    ref.pixels = tmplPixels.data();
    ref.mask = tmplMask.empty() ? nullptr : tmplMask.data();
    ref.anchorX = ref.anchorY = half;
    zelmCstmDrovnCalcBasicStatisticsOfRefImg(&ref);
    ZelmCstmSearchPrm prm{};
    prm.width = prm.height = imageSize;
    // Ends of the walk that do not depend on where the match is: they decide where the walk steps aside.
    prm.roiX = random.integer(0, kReach - 4);
    prm.roiY = random.integer(0, kReach - 4);
    prm.roiWidth = imageSize - prm.roiX - random.integer(0, kReach - 4);
    prm.roiHeight = imageSize - prm.roiY - random.integer(0, kReach - 4);
    prm.pixels = pixels.data();
    prm.mask = mask.empty() ? nullptr : mask.data();
    prm.epiLine = truth.line();
    prm.maxResults = 1;
    prm.minDistance = 8;
    prm.mode = setting.mode;
    std::int32_t count = 0;
    ZelmCstmMatch match{};
    const std::int32_t status = zelmCstmDrovnSearchOnEpiLine(&ref, &prm, &count, &match);

    Trial trial;
    const auto slope = texture.renderSlope(setting.size, setting.size, half, half, truth.ux, truth.uy);
    trial.bound = setting.noise * std::sqrt(2.0 / sumOfSquares(slope, tmplMask));
    if (status == ZELM_OK && count == 1) {
        trial.error = (match.x - truth.x) * truth.ux + (match.y - truth.y) * truth.uy;
        trial.found = std::fabs(trial.error) < 1.0;
        const double place = std::fabs(truth.ux) > std::fabs(truth.uy) ? truth.x : truth.y;
        trial.towardsPixel = place > std::floor(place + 0.5) ? -trial.error : trial.error;
    }
    return trial;
}

}  // namespace

MatchingFigures matchTextures(const MatchingCase& setting) {
    Random random(setting.seed);
    MatchingFigures figures;
    double squares = 0.0;
    double bounds = 0.0;
    for (int i = 0; i < setting.trials; ++i) {
        const Trial trial = runTrial(random, setting);
        figures.trials += 1;
        bounds += trial.bound * trial.bound;
        if (trial.found) {
            figures.found += 1;
            figures.bias += trial.towardsPixel;
            squares += trial.error * trial.error;
            figures.worst = std::max(figures.worst, std::fabs(trial.error));
        }
    }
    if (figures.found > 0) {
        figures.bias /= figures.found;
        figures.rms = std::sqrt(squares / figures.found);
    }
    figures.bound = std::sqrt(bounds / std::max(figures.trials, 1));
    return figures;
}

}  // namespace zelm::accuracy
