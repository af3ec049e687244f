// The checks through the interface: counting, records of other sizes, and agreement with the inside.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "dottedPair.h"

namespace zelmtest {
namespace {

// An adjustment of six views, solved.
class ChecksInterface : public testing::Test {
protected:
    void SetUp() override {
        const Zelm2ViewPatternDesc pattern = describe(pair.plate);
        const OpenedRig rig(pair.handle.get());
        ASSERT_EQ(zelmMeasureAdjustOpen(rig.get(), &pattern, nullptr, &adjustment), ZELM_OK);
        ASSERT_EQ(zelmMeasureAdjustSolve(adjustment), ZELM_OK) << zelmMeasureAdjustError(adjustment);
    }
    void TearDown() override { zelmMeasureAdjustClose(&adjustment); }

    DottedPair pair{6};
    ZelmMeasureAdjustment* adjustment = nullptr;
};

TEST_F(ChecksInterface, RecordsOfASoundCalibration) {
    std::int64_t count = 0;
    ASSERT_EQ(zelmMeasureAdjustChecks(adjustment, nullptr, 0, &count), ZELM_OK);
    ASSERT_EQ(count, 8);
    std::vector<ZelmMeasureCheck> checks(8, emptyRecord<ZelmMeasureCheck>());
    ASSERT_EQ(zelmMeasureAdjustChecks(adjustment, checks.data(), 8, &count), ZELM_OK);
    const std::vector<std::int32_t> kinds{ZELM_MEASURE_CHECK_HALVES,       ZELM_MEASURE_CHECK_LENS,
                                          ZELM_MEASURE_CHECK_LENS,         ZELM_MEASURE_CHECK_BOW,
                                          ZELM_MEASURE_CHECK_MOVED,        ZELM_MEASURE_CHECK_PITCH,
                                          ZELM_MEASURE_CHECK_DOT_DIAMETER, ZELM_MEASURE_CHECK_MARKER_DIAMETER};
    for (std::size_t i = 0; i < checks.size(); ++i) {
        const ZelmMeasureCheck& check = checks[i];
        EXPECT_EQ(check.size, static_cast<std::int32_t>(sizeof check));
        EXPECT_EQ(check.kind, kinds[i]);
        EXPECT_EQ(check.side, i == 1 ? 'L' : i == 2 ? 'R' : 0);
        EXPECT_EQ(check.view >= 0, check.kind == ZELM_MEASURE_CHECK_MOVED);
        // The dots' noise of 0.1 pixels is all that is wrong with them.
        EXPECT_EQ(check.verdict, ZELM_MEASURE_CHECK_FINE) << check.text;
        EXPECT_GT(std::strlen(check.text), 20U);
        EXPECT_TRUE(std::isfinite(check.value) && check.deviation > 0.0 && check.p > 0.01) << check.text;
    }
}

TEST_F(ChecksInterface, ShorterAndFewerRecords) {
    std::vector<ZelmMeasureCheck> all(8, emptyRecord<ZelmMeasureCheck>());
    std::int64_t count = 0;
    ASSERT_EQ(zelmMeasureAdjustChecks(adjustment, all.data(), 8, &count), ZELM_OK);
    // An older caller's records, of 40 bytes, three of four places given.
    struct Older {
        std::int32_t size, kind, verdict, view, side, reserved;
        double p, value;
    };
    std::vector<Older> older(4, Older{sizeof(Older), -1, -1, -1, -1, -1, -1.0, -1.0});
    ASSERT_EQ(zelmMeasureAdjustChecks(adjustment, reinterpret_cast<ZelmMeasureCheck*>(older.data()), 3, &count),
              ZELM_OK);
    EXPECT_EQ(count, 8);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(older[i].size, static_cast<std::int32_t>(sizeof(Older)));
        EXPECT_EQ(older[i].kind, all[i].kind);
        EXPECT_EQ(older[i].value, all[i].value);
    }
    EXPECT_EQ(older[3].kind, -1);
}

}  // namespace
}  // namespace zelmtest
