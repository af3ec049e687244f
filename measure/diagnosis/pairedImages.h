// The images of a set as their dots tell of them: turned and mirrored back, and each camera calibrated by itself.
#ifndef ZELM_MEASURE_PAIRED_IMAGES_H
#define ZELM_MEASURE_PAIRED_IMAGES_H

#include <array>
#include <optional>
#include <vector>

#include "adjustProblem.h"
#include "adjustStart.h"
#include "plateDots.h"

namespace zelm::measure {

// How an image may have been stored: quarter turns, after it was mirrored left to right or not.
struct Storing {
    int quarterTurns = 0;  // 0 to 3, clockwise as seen
    bool isMirrored = false;
    auto operator<=>(const Storing&) const = default;
    bool isPlain() const { return quarterTurns == 0 && !isMirrored; }
};

using ImageDots = std::vector<Dot>;  // none: the image could not be read

struct ImageSize {
    int width = 0;
    int height = 0;
};

struct SetOfImages {
    Pattern plate{};
    std::array<int, kSides> models{};
    std::array<ImageSize, kSides> sizes{};
    std::array<std::vector<ImageDots>, kSides> images;  // a view each, as many on either side

    std::size_t views() const { return images[kLeft].size(); }
};

// Whether a mirrored image of the plate reads like another image of it: x and y marker change places.
bool hasMirroredTwin(const Pattern& plate);

// The dots as the camera saw them, where the image was stored in another way.
ImageDots restored(const SetOfImages& set, Side side, const ImageDots& dots, Storing storing);

// From the plate to a camera.
struct PlatePose {
    Matrix3 R{};
    Vector3 t{};
};
MotionParameters parametersOf(const PlatePose& pose);
PlatePose platePoseOf(const MotionParameters& motion);

// One camera and its plates, from its own images alone.
struct SingleCamera {
    ProjectionCamera camera;
    std::vector<std::optional<PlatePose>> poses;  // an image each; none where it has no dots
    double error = 0.0;                           // mean distance of the dots from where they should be, pixels
};
// Nothing where the images do not determine the camera.
std::optional<SingleCamera> calibratedAlone(const SetOfImages& set, Side side);

// The same by the focal length alone: what images of few and alike views tell, roughly.
std::optional<SingleCamera> roughlyCalibrated(const SetOfImages& set, Side side);

// Dots as an adjustment takes them: so many of an image, spread over all that it shows.
std::vector<DotObservation> observationsOf(const Pattern& plate, const ImageDots& dots);

}  // namespace zelm::measure

#endif
