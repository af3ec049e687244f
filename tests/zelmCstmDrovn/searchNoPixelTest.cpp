// The positive result of a search whose segment has no pixel. The rasteriser always yields one, so this program puts
// another in its place (linked with --wrap).
#include <gtest/gtest.h>

#include "faultAlloc.h"
#include "searchScene.h"
#include "zelm/misc.h"

namespace {

std::int32_t rasteriserResult = 0;

using namespace zelmtest;

TEST(SearchNoPixel, ReturnsTheNumberOfCrossingsAndWritesNothing) {
    for (const std::int32_t result : {0, -2}) {
        rasteriserResult = result;
        SearchScene scene = texturedScene(5, 31, 28);
        const long before = allocCounters().live;
        EXPECT_EQ(scene.run(), 2);
        EXPECT_EQ(scene.count, -77);
        EXPECT_EQ(scene.matches[0].score, 77.0);
        EXPECT_EQ(allocCounters().live, before);
        scene.prm.epiLine = {0.0, 1.0, 9.0};  // the clipping comes first
        EXPECT_EQ(scene.search(), ZELM_ERR_DEGENERATE);
    }
}

// The replacement is in effect, and one pixel is enough for a status.
TEST(SearchNoPixel, IsNotReturnedForOnePixel) {
    rasteriserResult = 1;
    SearchScene scene = texturedScene(5, 31, 28);
    EXPECT_EQ(scene.run(), ZELM_OK);
    EXPECT_EQ(scene.count, 0);
}

}  // namespace

extern "C" std::int32_t __wrap_zelmMiscPlotPointsOfLine(const Point2i* tP0, const Point2i*, Point2i* taPoints) {
    taPoints[0] = *tP0;
    return rasteriserResult;
}
