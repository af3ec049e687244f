// Every allocation of a call failing in turn: adjustments of plates and of points, and their checks.
#include <gtest/gtest.h>

#include <vector>

#include "dottedPair.h"
#include "measureFaults.h"
#include "patternReading.h"

namespace zelmtest {
namespace {

constexpr std::int32_t kViews = 3;

render::Camera halved(render::Camera camera) {
    camera.width /= 2;
    camera.height /= 2;
    camera.fx *= 0.5;
    camera.fy *= 0.5;
    camera.cx *= 0.5;
    camera.cy *= 0.5;
    return camera;
}

// Three views of a plate of 35 dots, as an object and as points, and the images of one more.
struct SmallPair {
    render::Plate plate = smallPlate();
    Zelm2ViewPatternDesc pattern = describe(plate);
    render::StereoRig rig = render::exampleRig();
    Handle object;
    std::vector<render::Pose> poses;
    std::vector<std::int32_t> view, side, grid;
    std::vector<double> pixels;

    SmallPair() {
        rig.left = halved(rig.left);
        rig.right = halved(rig.right);
        const Zelm2ViewCameraDesc cameras = cameraPair(0, 0, rig.left.width, rig.left.height);
        EXPECT_EQ(zelm2ViewCalibOpen(kViews, &pattern, &cameras, &object.calib), ZELM_OK);
        poses = render::makeViewPoses(plate, rig, kViews + 1, 3);
        for (std::int32_t i = 0; i < kViews; ++i) {
            const auto seed = static_cast<std::uint64_t>(2 * i + 1);
            fillView(object.calib, zelm::Camera::left, i, plate, rig.left, pose('L', i), 0.02, seed);
            fillView(object.calib, zelm::Camera::right, i, plate, rig.right, pose('R', i), 0.02, seed + 1);
            addPoints(i, 'L');
            addPoints(i, 'R');
        }
        Zelm2ViewCalibResult result{};
        EXPECT_EQ(zelm2ViewCalibCameraParam(object.calib, &result), ZELM_OK);
    }
    [[nodiscard]] const render::Camera& camera(char which) const { return which == 'L' ? rig.left : rig.right; }
    [[nodiscard]] render::Pose pose(char which, std::int32_t i) const {
        const render::Pose& left = poses[static_cast<std::size_t>(i)];
        return which == 'L' ? left : render::compose(rig.rightFromLeft, left);
    }
    [[nodiscard]] render::RenderedView image(char which, std::int32_t i) const {
        return render::renderView(plate, camera(which), pose(which, i), {});
    }
    void addPoints(std::int32_t i, char which) {
        for (const auto& dot : render::plateDots(plate)) {
            const auto seen = render::project(camera(which), pose(which, i), dot.centre);
            view.push_back(i);
            side.push_back(which);
            grid.insert(grid.end(), {dot.index.x, dot.index.y});
            pixels.insert(pixels.end(), {seen.pixel.x, seen.pixel.y});
        }
    }
    [[nodiscard]] ZelmMeasureTargetPoints points() const {
        const ZelmMeasurePointCamera size{0, rig.left.width, rig.left.height, 0};
        return {sizeof(ZelmMeasureTargetPoints),
                kViews,
                static_cast<std::int64_t>(view.size()),
                view.data(),
                side.data(),
                grid.data(),
                nullptr,
                pixels.data(),
                size,
                size};
    }
};

ZelmMeasureImage imageOf(const render::RenderedView& view) {
    return {view.image.pixels.data(), view.image.width, view.image.height, view.image.width};
}

// An adjustment that is opened and closed around each call.
class MeasureAdjustMemory : public testing::Test {
protected:
    void open() { ASSERT_EQ(zelmMeasureAdjustOpen(rig.get(), &pair.pattern, nullptr, &adjustment), ZELM_OK); }
    void openAndSolve() {
        open();
        ASSERT_EQ(zelmMeasureAdjustSolve(adjustment), ZELM_OK) << zelmMeasureAdjustError(adjustment);
    }
    void close() { zelmMeasureAdjustClose(&adjustment); }
    // A call on a fresh adjustment that was solved. Where memory failed the adjustment is as it was: the same call
    // then succeeds, and the adjustment can be solved.
    FaultCounts expectTold(const FaultCall& call, bool isSolved, long everyOf, double growth) {
        return expectEveryFailureIsTold({.call = call,
                                         .canDoWithout = true,
                                         .before = [this, isSolved] { isSolved ? openAndSolve() : open(); },
                                         .after =
                                             [this, call] {
                                                 if (hasMetFailure()) {
                                                     FaultOutputs out;
                                                     EXPECT_EQ(call(out), ZELM_OK);
                                                     EXPECT_EQ(zelmMeasureAdjustSolve(adjustment), ZELM_OK)
                                                         << zelmMeasureAdjustError(adjustment);
                                                 }
                                                 close();
                                             },
                                         .everyOf = everyOf,
                                         .growth = growth,
                                         .lost = kLostByCeres});
    }

    SmallPair pair;
    OpenedRig rig{pair.object.get()};
    ZelmMeasureAdjustment* adjustment = nullptr;
};

TEST_F(MeasureAdjustMemory, Opening) {
    const auto open = [&](ZelmMeasureRig* of) {
        return expectEveryFailureIsTold({.call =
                                             [this, of](FaultOutputs&) {
                                                 const std::int32_t status = ZELM_CASE(zelmMeasureAdjustOpen)(
                                                     of, &pair.pattern, nullptr, &adjustment);
                                                 EXPECT_EQ(adjustment == nullptr, status == ZELM_ERR_MEMORY);
                                                 return status;
                                             },
                                         .success = of == rig.get() ? ZELM_OK : ZELM_MEASURE_ERR_DATA,
                                         .after = [this] { close(); },
                                         .growth = 0.1});
    };
    EXPECT_GE(open(rig.get()).own, 20);
    const OpenedRig withoutDots(trueRig().block());
    EXPECT_GE(open(withoutDots.get()).own, 2);
}

TEST_F(MeasureAdjustMemory, Solving) {
    const FaultCounts failures =
        expectTold([this](FaultOutputs&) { return ZELM_CASE(zelmMeasureAdjustSolve)(adjustment); }, false, 40, 0.3);
    EXPECT_GE(failures.own, 40);
}

TEST_F(MeasureAdjustMemory, DotsMeasuredAnew) {
    const render::RenderedView left = pair.image('L', 0);
    const ZelmMeasureImage image = imageOf(left);
    const FaultCounts failures = expectTold(
        [&](FaultOutputs&) {
            WatchedRecord<ZelmMeasureRefined> refined;
            const std::int32_t status = ZELM_CASE(zelmMeasureAdjustRefine)(adjustment, 'L', 0, &image, &refined.record);
            EXPECT_EQ(refined.isUntouched(), status != ZELM_OK);
            return status;
        },
        true, 25, 0.5);
    EXPECT_GE(failures.own, 25);
}

TEST_F(MeasureAdjustMemory, ViewsAdded) {
    const render::RenderedView left = pair.image('L', kViews);
    const render::RenderedView right = pair.image('R', kViews);
    const ZelmMeasureImage leftImage = imageOf(left);
    const ZelmMeasureImage rightImage = imageOf(right);
    const FaultCounts failures = expectTold(
        [&](FaultOutputs& out) {
            return ZELM_CASE(zelmMeasureAdjustAddView)(adjustment, &leftImage, &rightImage, out.integers,
                                                       out.integers + 1);
        },
        true, 10, 1.5);
    EXPECT_GE(failures.own, 12);
    EXPECT_GE(failures.core, 10);
}

TEST_F(MeasureAdjustMemory, ResultsOfAdjustments) {
    openAndSolve();
    expectNoAllocation([&](FaultOutputs&) {
        auto summary = emptyRecord<ZelmMeasureAdjustSummary>();
        return ZELM_CASE(zelmMeasureAdjustSummary)(adjustment, &summary);
    });
    expectNoAllocation([&](FaultOutputs&) {
        const bool isTold = *ZELM_CASE(zelmMeasureAdjustView)(adjustment, 0) == '\0' &&
                            *ZELM_CASE(zelmMeasureAdjustError)(adjustment) == '\0';
        return isTold ? ZELM_OK : ZELM_MEASURE_ERR_DATA;
    });
    const FaultCounts dots = expectEveryFailureIsTold([&](FaultOutputs& out) {
        auto record = emptyRecord<ZelmMeasureAdjustedDots>();
        record.capacity = 30;
        record.grid = out.integers;
        record.centres = out.numbers;
        return ZELM_CASE(zelmMeasureAdjustDots)(adjustment, 'R', 2, &record, out.longs);
    });
    EXPECT_GE(dots.own + dots.core, 0);
    const auto rigOf = [&](auto call) {
        ZelmMeasureRig* made = nullptr;
        return expectEveryFailureIsTold({.call =
                                             [&](FaultOutputs&) {
                                                 const std::int32_t status = call(&made);
                                                 EXPECT_EQ(made == nullptr, status != ZELM_OK);
                                                 return status;
                                             },
                                         .after = [&] { zelmMeasureRigClose(&made); },
                                         .growth = 0.1});
    };
    EXPECT_GE(rigOf([&](ZelmMeasureRig** to) { return ZELM_CASE(zelmMeasureAdjustRig)(adjustment, to); }).own, 10);
    EXPECT_GE(rigOf([&](ZelmMeasureRig** to) { return ZELM_CASE(zelmMeasureAdjustStartRig)(adjustment, to); }).own, 5);
    const FaultCounts camera = expectEveryFailureIsTold([&](FaultOutputs&) {
        WatchedRecord<ZelmMeasureAdjustedCamera> record;
        const std::int32_t status = ZELM_CASE(zelmMeasureAdjustCamera)(adjustment, 'R', &record.record);
        EXPECT_EQ(record.isUntouched(), status != ZELM_OK);
        return status;
    });
    EXPECT_GE(camera.own, 1);
    const FaultCounts poses = expectEveryFailureIsTold([&](FaultOutputs&) {
        ZelmCameraExtrinsics pose{};
        pose.t[0] = -7.0;
        const std::int32_t status = ZELM_CASE(zelmMeasureAdjustPose)(adjustment, 'R', 1, &pose);
        EXPECT_EQ(pose.t[0] == -7.0, status != ZELM_OK);
        return status;
    });
    EXPECT_GE(poses.own, 0);
    const FaultCounts epipolar = expectEveryFailureIsTold({.call =
                                                               [&](FaultOutputs& out) {
                                                                   return ZELM_CASE(zelmMeasureAdjustEpipolar)(
                                                                       adjustment, 1, 100, out.numbers, out.longs);
                                                               },
                                                           .growth = 0.1});
    EXPECT_GE(epipolar.own, 10);
    const FaultCounts checks = expectEveryFailureIsTold({.call =
                                                             [&](FaultOutputs& out) {
                                                                 WatchedRecord<ZelmMeasureCheck> check;
                                                                 const std::int32_t status =
                                                                     ZELM_CASE(zelmMeasureAdjustChecks)(
                                                                         adjustment, &check.record, 1, out.longs);
                                                                 EXPECT_EQ(check.isUntouched(), status != ZELM_OK);
                                                                 return status;
                                                             },
                                                         .growth = 0.1});
    EXPECT_GE(checks.own, 100);
    expectNoAllocation([&](FaultOutputs&) {
        ZELM_CASE(zelmMeasureAdjustClose)(&adjustment);
        return ZELM_OK;
    });
}

TEST_F(MeasureAdjustMemory, AdjustmentsOfPoints) {
    const ZelmMeasureTargetPoints points = pair.points();
    const FaultCounts views = expectEveryFailureIsTold(
        {.call = [&](FaultOutputs& out) { return ZELM_CASE(zelmMeasurePointViews)(&points, out.integers); },
         .growth = 0.1});
    EXPECT_GE(views.own, 10);
    const FaultCounts opening = expectEveryFailureIsTold({.call =
                                                              [&](FaultOutputs&) {
                                                                  const std::int32_t status =
                                                                      ZELM_CASE(zelmMeasureAdjustOpenPoints)(
                                                                          &points, &pair.pattern, nullptr, &adjustment);
                                                                  EXPECT_EQ(adjustment == nullptr, status != ZELM_OK);
                                                                  return status;
                                                              },
                                                          .canDoWithout = true,
                                                          .after = [this] { close(); },
                                                          .everyOf = 100,
                                                          .growth = 0.2});
    EXPECT_GE(opening.own, 40);
    EXPECT_GE(opening.core, 10);
}

}  // namespace
}  // namespace zelmtest
