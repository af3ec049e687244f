// Random plates before random cameras, and the images that they give.
#ifndef ZELM_TEST_TRIAL_STATIONS_H
#define ZELM_TEST_TRIAL_STATIONS_H

#include <zelmMeasure.h>

#include <functional>

#include "randomSource.h"
#include "renderView.h"

namespace zelm::accuracy {

// An image with the description that a user gives of its plate.
struct TrialImage {
    render::GrayImage image;
    Zelm2ViewPatternDesc pattern{};
    double radius = 0.0;     // median of the dots', pixels
    double noise = 0.0;      // gray levels
    double blur = 0.0;       // pixels
    double direction = 0.0;  // of a smear, radians
    int sides = 0;           // ZelmMeasureImageSide, over which the plate hangs
};

// A plate, a camera that sees it, and what the image suffers.
struct Station {
    render::Plate plate;
    render::Camera camera;
    render::Aim aim;
    render::Optics optics;
    double radius = 0.0;  // of the dots, pixels
};

inline int between(render::RandomSource& random, int low, int high) {
    const int drawn = low + static_cast<int>(random.uniform() * (high - low + 1));
    return drawn < high ? drawn : high;
}

inline bool chance(render::RandomSource& random, double share) {
    return random.uniform() < share;
}

// Plates of 5 x 5 to 25 x 19 dots, images 400 to 4000 pixels wide; dots of at least that radius, across their tilt too.
Station randomStation(render::RandomSource& random, double minRadius);

// Half the plate's diagonal, plate units.
double reachOf(const render::Plate& plate);

// Where a dot is seen.
render::Pixel pixelOf(const Station& s, int column, int row);

double& levelOf(render::LevelImage& image, int x, int y);

// Gives each pixel a new level: the function gets column, row and the level.
template <class NewLevel>
void changeLevels(render::LevelImage& image, NewLevel newLevel) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            double& level = levelOf(image, x, y);
            level = newLevel(x, y, level);
        }
    }
}

using Change = std::function<void(render::LevelImage&)>;

// The image that the station's camera takes, its levels changed before noise and rounding.
TrialImage shoot(const Station& s, render::RandomSource& random, const Change& change = {});

}  // namespace zelm::accuracy

#endif
