// A calibrated object whose dots are those that a rendered pair of cameras would see.
#ifndef ZELM_TEST_DOTTED_PAIR_H
#define ZELM_TEST_DOTTED_PAIR_H

#include <vector>

#include "measureRigs.h"
#include "scene.h"

namespace zelmtest {

// Dots of the plate in every view, with normal noise.
struct DottedPair {
    render::Plate plate;
    render::StereoRig rig = render::exampleRig();
    std::vector<render::Pose> poses;  // in the left camera
    Handle handle;

    explicit DottedPair(std::int32_t views, const render::Plate& chosen = {}, double noise = 0.1) : plate(chosen) {
        const Zelm2ViewPatternDesc pattern = describe(plate);
        const Zelm2ViewCameraDesc cameras = cameraPair(0, 0, rig.left.width, rig.left.height);
        EXPECT_EQ(zelm2ViewCalibOpen(views, &pattern, &cameras, &handle.calib), ZELM_OK);
        poses = render::makeViewPoses(plate, rig, views, 3);
        for (std::int32_t view = 0; view < views; ++view) {
            const render::Pose& left = poses[static_cast<std::size_t>(view)];
            const auto seed = static_cast<std::uint64_t>(2 * view + 1);
            fillView(handle.calib, zelm::Camera::left, view, plate, rig.left, left, noise, seed);
            fillView(handle.calib, zelm::Camera::right, view, plate, rig.right,
                     render::compose(rig.rightFromLeft, left), noise, seed + 1);
        }
        Zelm2ViewCalibResult result{};
        EXPECT_EQ(zelm2ViewCalibCameraParam(handle.calib, &result), ZELM_OK);
    }
};

}  // namespace zelmtest

#endif
