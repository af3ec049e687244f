// Arguments that cannot be meant: calibrations from points.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "adjustedRigs.h"
#include "measureContract.h"

namespace zelmtest {
namespace {

// The dots of a scene as points.
struct PointArrays {
    std::vector<std::int32_t> view, side, grid;
    std::vector<double> places, pixels;
    ZelmMeasureTargetPoints record{};

    explicit PointArrays(const AdjustScene& scene) {
        using namespace zelm::measure;
        for (std::size_t v = 0; v < scene.views.size(); ++v) {
            for (const Side s : {kLeft, kRight}) {
                for (const DotObservation& dot : scene.views[v].dots[s]) {
                    view.push_back(static_cast<std::int32_t>(v));
                    side.push_back(s == kLeft ? 'L' : 'R');
                    grid.insert(grid.end(), {dot.index.x, dot.index.y});
                    places.insert(places.end(), dot.place.begin(), dot.place.end());
                    pixels.insert(pixels.end(), {dot.pixel.x, dot.pixel.y});
                }
            }
        }
        const ZelmMeasurePointCamera camera{0, kSceneWidth, kSceneHeight, 0};
        record = {sizeof record,
                  static_cast<std::int32_t>(scene.views.size()),
                  static_cast<std::int64_t>(view.size()),
                  view.data(),
                  side.data(),
                  grid.data(),
                  places.data(),
                  pixels.data(),
                  camera,
                  camera};
    }
    PointArrays(const PointArrays&) = delete;
    PointArrays& operator=(const PointArrays&) = delete;
};

AdjustScene smallScene() {
    AdjustSceneOptions options;
    options.views = 4;
    return makeAdjustScene(options);
}

TEST_F(MeasureContract, PointsOfTargets) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const AdjustScene scene = smallScene();
    ZelmMeasureAdjustment* none = nullptr;
    const std::function<void(PointArrays&)> changes[] = {
        [](auto& p) { p.record.views = 0; },
        [](auto& p) { p.record.views = -1; },
        [](auto& p) { p.record.views = std::numeric_limits<std::int32_t>::max(); },
        [](auto& p) { p.record.count = 0; },
        [](auto& p) { p.record.count = -1; },
        [](auto& p) { p.record.view = nullptr; },
        [](auto& p) { p.record.side = nullptr; },
        [](auto& p) { p.record.grid = nullptr; },
        [](auto& p) { p.record.pixels = nullptr; },
        [](auto& p) { p.view[1] = 4; },
        [](auto& p) { p.view[1] = -1; },
        [](auto& p) { p.side[1] = 'X'; },
        [](auto& p) { p.pixels[3] = kNone; },
        [](auto& p) { p.places[3] = kNone; },
        [](auto& p) {
            p.grid[2] = p.grid[0];
            p.grid[3] = p.grid[1];
        },
        [](auto& p) { p.record.left.model = 2; },
        [](auto& p) { p.record.left.model = -1; },
        [](auto& p) { p.record.right.width = -1; },
        [](auto& p) { p.record.right.height = 0; },
        [](auto& p) { p.record.left.width = 40000; },
        [](auto& p) { p.record.left.width = 0; },
        [](auto& p) { p.record.left.width = p.record.right.width = 0; }};
    std::size_t number = 0;
    for (const auto& change : changes) {
        PointArrays wrong(scene);
        change(wrong);
        const std::string what = std::to_string(number++);
        expectParam(what.c_str(), ZELM_CASE(zelmMeasurePointViews)(&wrong.record, out.integers));
        expectParam(what.c_str(), ZELM_CASE(zelmMeasureAdjustOpenPoints)(&wrong.record, nullptr, nullptr, &none));
    }
    PointArrays points(scene);
    expectRecordRefused<ZelmMeasureTargetPoints>(
        "points", [&](auto* r) { return ZELM_CASE(zelmMeasurePointViews)(r, out.integers); });
    expectRecordRefused<ZelmMeasureTargetPoints>(
        "points", [&](auto* r) { return ZELM_CASE(zelmMeasureAdjustOpenPoints)(r, nullptr, nullptr, &none); });
    expectParam("statuses", ZELM_CASE(zelmMeasurePointViews)(&points.record, nullptr));
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustOpenPoints)(&points.record, nullptr, nullptr, nullptr));
    auto options = emptyRecord<ZelmMeasureAdjustOptions>();
    options.estimateDiameters = 1;  // which points have not
    expectParam("options", ZELM_CASE(zelmMeasureAdjustOpenPoints)(&points.record, nullptr, &options, &none));
    options.size = 3;
    expectParam("options", ZELM_CASE(zelmMeasureAdjustOpenPoints)(&points.record, nullptr, &options, &none));
    Zelm2ViewPatternDesc plate = scene.plate;
    plate.d4 = 0.0;
    expectParam("plate", ZELM_CASE(zelmMeasureAdjustOpenPoints)(&points.record, &plate, nullptr, &none));
    points.record.places = nullptr;  // of points of another target than a plate
    expectParam("places", ZELM_CASE(zelmMeasureAdjustOpenPoints)(&points.record, nullptr, nullptr, &none));
    EXPECT_EQ(none, nullptr);
}

TEST_F(MeasureContract, ResultsOfPoints) {
    const AdjustScene scene = smallScene();
    const PointArrays points(scene);
    OpenedAdjustment opened;
    ASSERT_EQ(zelmMeasureAdjustOpenPoints(&points.record, nullptr, nullptr, &opened.handle), ZELM_OK) << opened.error();
    ZelmMeasureAdjustment* const a = opened.handle;
    auto camera = emptyRecord<ZelmMeasureAdjustedCamera>();
    ZelmCameraExtrinsics pose{};
    const ZelmCameraExtrinsics before = pose;
    std::int64_t* const n = out.longs;
    double* const d = out.numbers;
    const auto expectWrongArguments = [&] {
        expectParam("handle", ZELM_CASE(zelmMeasureAdjustCamera)(nullptr, 'L', &camera));
        expectParam("handle", ZELM_CASE(zelmMeasureAdjustPose)(nullptr, 'L', 0, &pose));
        expectParam("handle", ZELM_CASE(zelmMeasureAdjustEpipolar)(nullptr, 0, 40, d, n));
        expectParam("pose", ZELM_CASE(zelmMeasureAdjustPose)(a, 'L', 0, nullptr));
        expectParam("count", ZELM_CASE(zelmMeasureAdjustEpipolar)(a, 0, 40, d, nullptr));
        expectParam("capacity", ZELM_CASE(zelmMeasureAdjustEpipolar)(a, 0, -1, d, n));
        for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
            expectParam("side", ZELM_CASE(zelmMeasureAdjustCamera)(a, side, &camera));
            expectParam("side", ZELM_CASE(zelmMeasureAdjustPose)(a, side, 0, &pose));
        }
        for (const std::int32_t view : {-1, 4, std::numeric_limits<std::int32_t>::max()}) {
            expectParam("view", ZELM_CASE(zelmMeasureAdjustPose)(a, 'L', view, &pose));
            expectParam("view", ZELM_CASE(zelmMeasureAdjustEpipolar)(a, view, 40, d, n));
        }
        expectRecordRefused<ZelmMeasureAdjustedCamera>(
            "camera", [&](auto* r) { return ZELM_CASE(zelmMeasureAdjustCamera)(a, 'L', r); });
    };
    // Wrong arguments are told before and after it is solved.
    expectWrongArguments();
    EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustCamera)(a, 'L', &camera), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustPose)(a, 'L', 0, &pose), ZELM_MEASURE_ERR_DATA);
    EXPECT_EQ(ZELM_CASE(zelmMeasureAdjustEpipolar)(a, 0, 40, d, n), ZELM_MEASURE_ERR_DATA);
    ASSERT_EQ(zelmMeasureAdjustSolve(a), ZELM_OK) << opened.error();
    expectWrongArguments();
    EXPECT_EQ(camera.width, 0);
    EXPECT_EQ(std::memcmp(&pose, &before, sizeof pose), 0);
    EXPECT_TRUE(out.areUntouched());
    ZelmMeasureRig* rig = nullptr;
    expectParam("handle", ZELM_CASE(zelmMeasureAdjustStartRig)(nullptr, &rig));
    expectParam("rig", ZELM_CASE(zelmMeasureAdjustStartRig)(a, nullptr));
    ZelmMeasureRig* live = sound.rig.get();
    expectParam("live", ZELM_CASE(zelmMeasureAdjustStartRig)(a, &live));
    EXPECT_EQ(live, sound.rig.get());
    EXPECT_EQ(rig, nullptr);
}

}  // namespace
}  // namespace zelmtest
