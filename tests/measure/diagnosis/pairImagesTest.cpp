// Sets of images through the interface: records, refusals, untouched outputs.
#include <gtest/gtest.h>
#include <zelmMeasure.h>

#include <cstring>
#include <vector>

#include "imageSetTrials.h"

namespace zelmtest {
namespace {

// A set in the arrays of the interface.
struct SetArrays {
    explicit SetArrays(const SetTrial& trial) : pattern(trial.set.plate) {
        const auto& sizes = trial.set.sizes;
        cameras = {0, sizes[0].width, sizes[0].height, 0, sizes[1].width, sizes[1].height};
        for (const std::size_t side : {0U, 1U}) {
            for (const auto& image : trial.set.images[side]) {
                counts[side].push_back(static_cast<std::int64_t>(image.size()));
                for (const auto& dot : image) {
                    plane[side].insert(plane[side].end(), {dot.plane.x, dot.plane.y});
                    pixels[side].insert(pixels[side].end(), {dot.pixel.x, dot.pixel.y});
                }
            }
        }
        record = {sizeof(record),   static_cast<std::int32_t>(counts[0].size()),
                  &pattern,         &cameras,
                  counts[0].data(), plane[0].data(),
                  pixels[0].data(), counts[1].data(),
                  plane[1].data(),  pixels[1].data()};
    }

    Zelm2ViewPatternDesc pattern;
    Zelm2ViewCameraDesc cameras{};
    std::vector<std::int64_t> counts[2];
    std::vector<double> plane[2];
    std::vector<double> pixels[2];
    ZelmMeasureImageSet record{};
};

struct Outputs {
    explicit Outputs(std::size_t count) : views(count) {
        views.front().size = sizeof(ZelmMeasurePairedView);
        causes.front().size = sizeof(ZelmMeasureSetCause);
        pairing.size = sizeof(pairing);
    }
    std::int32_t judge(const ZelmMeasureImageSet& set) {
        return zelmMeasurePairImages(&set, views.data(), causes.data(), static_cast<std::int64_t>(causes.size()),
                                     &pairing);
    }

    std::vector<ZelmMeasurePairedView> views;
    std::vector<ZelmMeasureSetCause> causes = std::vector<ZelmMeasureSetCause>(8);
    ZelmMeasurePairing pairing{};
};

TEST(PairImages, TellsAnExchange) {
    const SetTrial trial = makeSetTrial(SetFault::exchangedViews, 3, 7);
    const SetArrays set(trial);
    Outputs out(7);
    ASSERT_EQ(out.judge(set.record), ZELM_OK);
    ASSERT_EQ(out.pairing.causes, 1);
    EXPECT_EQ(out.pairing.agreeing, 7);
    EXPECT_EQ(out.pairing.isDetermined, 1);
    EXPECT_GT(out.pairing.limit, out.pairing.noise);
    EXPECT_EQ(out.causes[0].kind, ZELM_MEASURE_SET_EXCHANGED_VIEWS);
    EXPECT_EQ(out.causes[0].views, 2);
    for (std::size_t i = 0; i < 7; ++i) {
        const bool isNamed = i == trial.views[0] || i == trial.views[1];
        EXPECT_EQ(out.views[i].size, static_cast<std::int32_t>(sizeof(ZelmMeasurePairedView)));
        EXPECT_EQ(out.views[i].fate, isNamed ? ZELM_MEASURE_VIEW_OTHER_IMAGE : ZELM_MEASURE_VIEW_FITS);
        EXPECT_EQ(out.views[i].cause, isNamed ? 0 : -1);
        EXPECT_GE(out.views[i].leftTilt, 0.0);
        EXPECT_LT(out.views[i].rightTilt, 1.6);
    }
    const auto a = static_cast<std::int32_t>(trial.views[0]);
    const auto b = static_cast<std::int32_t>(trial.views[1]);
    EXPECT_EQ(out.views[trial.views[0]].rightFits, b);
    EXPECT_EQ(out.views[trial.views[1]].leftFits, a);
}

TEST(PairImages, OutputsAreOptionalAndMayBeShort) {
    const SetTrial trial = makeSetTrial(SetFault::exchangedViews, 3, 7);
    const SetArrays set(trial);
    struct Older {
        std::int32_t size, causes;
    } older{sizeof(Older), -1};
    ASSERT_EQ(zelmMeasurePairImages(&set.record, nullptr, nullptr, 0, reinterpret_cast<ZelmMeasurePairing*>(&older)),
              ZELM_OK);
    EXPECT_EQ(older.causes, 1);
    EXPECT_EQ(older.size, static_cast<std::int32_t>(sizeof(Older)));
}

TEST(PairImages, RefusesWhatCannotBeMeant) {
    const SetTrial trial = makeSetTrial(SetFault::none, 3, 4);
    SetArrays set(trial);
    Outputs out(4);
    out.pairing.causes = 77;
    const auto expectParam = [&](const ZelmMeasureImageSet& record) {
        EXPECT_EQ(out.judge(record), ZELM_ERR_PARAM);
        EXPECT_EQ(out.pairing.causes, 77);
        EXPECT_EQ(out.views[0].fate, 0);
    };
    EXPECT_EQ(zelmMeasurePairImages(nullptr, nullptr, nullptr, 0, &out.pairing), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePairImages(&set.record, nullptr, nullptr, 0, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasurePairImages(&set.record, nullptr, out.causes.data(), -1, &out.pairing), ZELM_ERR_PARAM);
    ZelmMeasureImageSet record = set.record;
    record.pattern = nullptr;
    expectParam(record);
    record = set.record;
    record.leftCounts = nullptr;
    expectParam(record);
    record = set.record;
    record.rightPixels = nullptr;
    expectParam(record);
    record = set.record;
    record.views = -1;
    expectParam(record);
    set.cameras.leftModel = ZELM_CAMERA_PARALLEL;
    expectParam(set.record);
    set.cameras.leftModel = 0;
    set.counts[1][2] = -1;
    expectParam(set.record);
    set.counts[1][2] = 0;
    set.pattern.d4 = 0.0;
    expectParam(set.record);
}

// Without a single view there is nothing to say.
TEST(PairImages, NoViews) {
    SetArrays set(makeSetTrial(SetFault::none, 3, 4));
    set.record.views = 0;
    Outputs out(1);
    ASSERT_EQ(zelmMeasurePairImages(&set.record, nullptr, nullptr, 0, &out.pairing), ZELM_OK);
    EXPECT_EQ(out.pairing.causes, 0);
    EXPECT_EQ(out.pairing.isDetermined, 0);
}

TEST(ReadDots, OfAnOpenedObject) {
    Zelm2ViewPatternDesc pattern = makeSetTrial(SetFault::none, 1, 3).set.plate;
    pattern.markers = 3;
    const Zelm2ViewCameraDesc cameras{0, 640, 480, 0, 640, 480};
    Zelm2ViewCalib* calib = nullptr;
    ASSERT_EQ(zelm2ViewCalibOpen(3, &pattern, &cameras, &calib), ZELM_OK);
    std::int64_t count = -1;
    EXPECT_EQ(zelmMeasureReadDots(calib, 'L', 2, nullptr, &count), ZELM_OK);
    EXPECT_EQ(count, 0);  // nothing was read
    EXPECT_EQ(zelmMeasureReadDots(calib, 'X', 2, nullptr, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureReadDots(calib, 'R', 3, nullptr, &count), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureReadDots(calib, 'R', 0, nullptr, nullptr), ZELM_ERR_PARAM);
    EXPECT_EQ(zelmMeasureReadDots(nullptr, 'R', 0, nullptr, &count), ZELM_ERR_PARAM);
    zelm2ViewCalibClose(&calib);
}

}  // namespace
}  // namespace zelmtest
