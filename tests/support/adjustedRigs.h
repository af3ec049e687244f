// Adjustments through the interface, of simulated dots that the core was calibrated from.
#ifndef ZELM_TEST_ADJUSTED_RIGS_H
#define ZELM_TEST_ADJUSTED_RIGS_H

#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <string>
#include <vector>

#include "adjustScene.h"
#include "rigFixtures.h"

namespace zelmtest {

// The dots in an object of the core's, calibrated by it. Parallel cameras see all views.
inline void calibrateScene(const AdjustScene& scene, const std::vector<zelm::measure::AdjustView>& views,
                           Handle& handle) {
    using namespace zelm::measure;
    const auto count = static_cast<std::int32_t>(views.size());
    const Zelm2ViewCameraDesc cameras = cameraPair(scene.models[0], scene.models[1], kSceneWidth, kSceneHeight);
    ASSERT_EQ(zelm2ViewCalibOpen(count, &scene.plate, &cameras, &handle.calib), ZELM_OK);
    for (const Side side : {kLeft, kRight}) {
        for (std::int32_t view = 0; view < count; ++view) {
            std::vector<Point2d> plane;
            std::vector<Point2d> image;
            for (const DotObservation& dot : views[static_cast<std::size_t>(view)].dots[side]) {
                plane.push_back({dot.index.x * scene.plate.d4, dot.index.y * scene.plate.d5});
                image.push_back(dot.pixel);
            }
            fillEntry(handle.calib, side == kLeft ? zelm::Camera::left : zelm::Camera::right, view, plane, image);
        }
    }
    Zelm2ViewCalibResult result{};
    ASSERT_EQ(zelm2ViewCalibCameraParam(handle.calib, &result), ZELM_OK);
}

// Closes both at the end of a test.
struct OpenedAdjustment {
    ZelmMeasureAdjustment* handle = nullptr;
    ZelmMeasureRig* rig = nullptr;

    OpenedAdjustment() = default;
    OpenedAdjustment(const OpenedAdjustment&) = delete;
    OpenedAdjustment& operator=(const OpenedAdjustment&) = delete;
    ~OpenedAdjustment() {
        zelmMeasureAdjustClose(&handle);
        zelmMeasureRigClose(&rig);
    }
    // Of an object that the core calibrated.
    std::int32_t open(const Zelm2ViewCalib* calib, const Zelm2ViewPatternDesc& plate,
                      const ZelmMeasureAdjustOptions* options = nullptr) {
        EXPECT_EQ(zelmMeasureRigOfCalib(calib, &rig), ZELM_OK) << zelmMeasureRigError(rig);
        return zelmMeasureAdjustOpen(rig, &plate, options, &handle);
    }
    [[nodiscard]] std::string error() const { return zelmMeasureAdjustError(handle); }
};

}  // namespace zelmtest

#endif
