// What else makes up a rendered view: gray levels, light, blur and noise; and the stereo rig with poses in which both
// cameras see the whole plate.
#ifndef ZELM_RENDER_SCENE_H
#define ZELM_RENDER_SCENE_H

#include <cstdint>
#include <vector>

#include "camera.h"

namespace zelm::render {

// Gray levels before the light's fall-off. `matching` gives levels that suit the plate's polarity: the ground around
// the plate has the tone of the dots, so that the plate stands out as a whole.
struct GrayLevels {
    double dots = 20.0;
    double plate = 190.0;
    double ground = 10.0;

    static GrayLevels matching(Polarity polarity);
};

// Relative brightness over the image: 1 at the centre, plus or minus the gradients at its edges, and times
// (1 - falloff) in its corners (growing with the square of the distance from the centre).
struct Light {
    double gradientX = 0.0;
    double gradientY = 0.0;
    double falloff = 0.0;

    double at(const Camera& camera, double x, double y) const;
};

struct Optics {
    GrayLevels levels;
    Light light;
    double blurSigma = 0.6;   // Gaussian point spread in pixels, before integration over the pixel: 0, or >= 0.02
    double noiseSigma = 0.0;  // gray levels, Gaussian, independent from pixel to pixel
};

// Throws std::invalid_argument, naming the field, for a blur or noise out of range or a value that is not finite.
void checkOptics(const Optics& optics);

struct StereoRig {
    Camera left;
    Camera right;
    Pose rightFromLeft;  // X_right = R X_left + t
};

// Two slightly different cameras, about 120 plate units apart, whose axes meet about 350 plate units away.
StereoRig exampleRig();

// Limits of the poses that makeViewPoses draws.
struct ViewRange {
    // Of the plate against the left camera, uniformly distributed from 0, and against the right camera unless the angle
    // between the cameras is larger.
    double maxTiltDegrees = 35.0;
    double maxRollDegrees = 180.0;
    double borderPixels = 6.0;  // between the edge of the plate and the edge of either image
    double largestFill = 0.95;  // the plate's apparent size as a share of what would just fit, drawn between these
    double smallestFill = 0.75;
};

// Poses of the plate in the left camera such that both cameras see the whole plate from its printed side; the same
// for the same seed. Throws std::runtime_error when no such pose can be found.
std::vector<Pose> makeViewPoses(const Plate& plate, const StereoRig& rig, int count, std::uint64_t seed,
                                const ViewRange& range = {});

// Whether the camera sees the whole plate from its printed side, at least `border` pixels inside its image.
bool seesWholePlate(const Plate& plate, const Camera& camera, const Pose& pose, double border);

}  // namespace zelm::render

#endif
