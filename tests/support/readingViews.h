// Rendered views of plates for measuring how well dots are found, and the library's reader of single images.
#ifndef ZELM_TEST_READING_VIEWS_H
#define ZELM_TEST_READING_VIEWS_H

#include <cstdint>
#include <vector>

#include "randomSource.h"
#include "renderView.h"
#include "zelmLib.h"

namespace zelm::accuracy {

// One setting. Views of a plate of 13 x 11 dots with tilts spread from 0 to maxTiltDegrees about random axes, at random
// rolls, through a lens with k1 and k2, dark and light dots in turn.
struct ReadingCase {
    double radius = 10.0;     // of the smallest dot of a view, pixels; the pitch is five radii
    double blur = 1.0;        // standard deviation of the point spread, pixels
    double noise = 0.0;       // gray levels
    double contrast = 120.0;  // between dots and plate where the light is full, gray levels
    double falloff = 0.0;     // share of the light that is lost at the dot farthest out
    double maxTiltDegrees = 40.0;
    double k1 = -0.12;
    double k2 = 0.03;
    int views = 4;
    int noiseDraws = 1;  // images of each view that differ in their noise
    std::uint64_t seed = 1;
};

struct ReadingView {
    render::Plate plate;
    render::Camera camera;
    render::Pose pose;
    render::Optics optics;
    std::vector<render::DotTruth> truths;
};

// One view of a setting; the image is cut down to the plate.
ReadingView readingView(const ReadingCase& setting, int view, render::RandomSource& random);

// Of a view of dark dots at that tilt about a random axis, in the whole image.
std::vector<render::DotTruth> uncroppedTruths(const ReadingCase& setting, double tiltDegrees,
                                              render::RandomSource& random);

// Reads single images of a view's plate.
class PlateReader {
public:
    // Throws std::runtime_error when the library refuses.
    explicit PlateReader(const ReadingView& view);
    ~PlateReader();
    PlateReader(const PlateReader&) = delete;
    PlateReader& operator=(const PlateReader&) = delete;

    // False when the library refuses the image.
    bool read(const render::GrayImage& image, std::vector<Point2d>& dots);

private:
    Zelm2ViewCalib* handle = nullptr;
};

}  // namespace zelm::accuracy

#endif
