// The table of both cameras' parameters: what alpha is called depends on the projection.
#include <gtest/gtest.h>

#include "measureFixtures.h"

namespace zelmtest {
namespace {

std::string infoOf(const TruePair& pair) {
    const TemporaryFolder folder;
    const CommandResult result = zelm({"info", writePair(pair, folder / "rig.zcal")});
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
}

// The line that begins with a name, without it; empty when there is none.
std::string rowOf(const std::string& table, const std::string& name) {
    for (const std::string& line : splitLines(table)) {
        if (line.starts_with(name)) {
            return line.substr(name.size());
        }
    }
    return {};
}

bool holds(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

TEST(MeasureInfo, PerspectiveCamerasHaveFocalLengths) {
    const std::string table = infoOf(makePair(0, 1));
    const std::string row = rowOf(table, "focal length alpha, px");
    EXPECT_TRUE(holds(row, "1688.600") && holds(row, "1694.300")) << table;
    EXPECT_FALSE(holds(table, "magnification")) << table;
}

TEST(MeasureInfo, ParallelCamerasHaveMagnifications) {
    const std::string table = infoOf(makePair(2, 2));
    EXPECT_TRUE(holds(rowOf(table, "magnification alpha, px/plate unit"), "3.000           3.000")) << table;
    EXPECT_TRUE(holds(rowOf(table, "skew gamma, px/plate unit"), "0.0000")) << table;
    EXPECT_TRUE(holds(rowOf(table, "distortion k1"), "-1e-09")) << table;
    EXPECT_FALSE(holds(table, "focal length")) << table;
}

TEST(MeasureInfo, MixedPairsShowEachCameraWhatItHas) {
    const std::string table = infoOf(makePair(2, 0));
    const std::string focal = rowOf(table, "focal length beta, px");
    const std::string magnification = rowOf(table, "magnification beta, px/plate unit");
    EXPECT_TRUE(holds(focal, " -  ") && holds(focal, "1692.900")) << table;
    EXPECT_TRUE(holds(magnification, "3.000  ") && magnification.ends_with(" -")) << table;
}

}  // namespace
}  // namespace zelmtest
