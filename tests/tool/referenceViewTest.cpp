// The view whose plate is the world frame, how sharp the views of a calibration are, and lengths between their dots.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "imageFile.h"
#include "measureFixtures.h"

namespace zelmtest {
namespace {

struct ReferenceView : ::testing::Test {
    TemporaryFolder folder;

    [[nodiscard]] std::string at(const std::string& name) const { return (folder / name).string(); }
    CommandResult run(const std::vector<std::string>& more = {}, const std::string& left = "",
                      const std::string& right = "") const {
        return calibrate(left.empty() ? smallRigFile("left_*.pgm") : left,
                         right.empty() ? smallRigFile("right_*.pgm") : right, at("out"), more);
    }
    [[nodiscard]] Json rig() const { return Json::parse(readFile(folder / "out" / "rig.json")); }
    // The images of the small rig, with those of view 0 other ones.
    void copyWith(const std::string& left, const std::string& right) const {
        for (const std::string side : {"left", "right"}) {
            for (int view = 0; view < 6; ++view) {
                const std::string name = side + "_0" + std::to_string(view) + ".pgm";
                writeFile(folder / name, readFile(smallRig() / name));
            }
            writeFile(folder / (side + "_00.pgm"), side == "left" ? left : right);
        }
    }
};

// An image smeared along its rows, as by a plate that moves evenly while the shutter is open.
std::string smearedRows(const Pgm& sharp, int pixels) {
    Pgm image = sharp;
    for (int y = 0; y < sharp.height; ++y) {
        for (int x = 0; x < sharp.width; ++x) {
            int sum = 0;
            for (int k = -pixels / 2; k <= pixels / 2; ++k) {
                const int from = std::clamp(x + k, 0, sharp.width - 1);
                sum += static_cast<unsigned char>(sharp.pixels[static_cast<std::size_t>(y * sharp.width + from)]);
            }
            image.pixels[static_cast<std::size_t>(y * sharp.width + x)] =
                static_cast<char>(std::lround(static_cast<double>(sum) / (2 * (pixels / 2) + 1)));
        }
    }
    return pgmBytes(image);
}

TEST_F(ReferenceView, IsTheFirstOneUnlessAnotherIsAskedFor) {
    const CommandResult plain = run();
    ASSERT_EQ(plain.status, 0) << plain.errors;
    EXPECT_EQ(plain.errors, "");
    EXPECT_EQ(plain.output.find("the world frame"), std::string::npos) << plain.output;
    const Json first = rig();
    EXPECT_EQ(first.at("reference").at("given"), 0);
    const CommandResult third = run({"--reference", "3"});
    ASSERT_EQ(third.status, 0) << third.errors;
    EXPECT_NE(third.output.find("the world frame is the plate of view 3, left_03.pgm, as --reference 3 asks"),
              std::string::npos)
        << third.output;
    const Json other = rig();
    EXPECT_EQ(other.at("reference").at("given"), 3);
    EXPECT_EQ(other.at("views")[0].at("left").at("image"), smallRigFile("left_03.pgm"));
    // The same cameras, before another plate: the sums are done in another order.
    const double baseline = first.at("pair").at("baseline");
    EXPECT_NEAR(other.at("pair").at("baseline").get<double>(), baseline, 1e-6 * baseline);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(other.at("left").at("poses")[0].at("t")[i].get<double>(),
                    first.at("left").at("poses")[3].at("t")[i].get<double>(), 1e-3);
    }
    expectOneLine(run({"--reference", "6"}), 2, {"--reference 6", "6 views"});
}

TEST_F(ReferenceView, ASkippedOneIsTold) {
    copyWith(withoutMarker(0, "left"), withoutMarker(0, "right"));
    const CommandResult skipped = run({}, at("left_*.pgm"), at("right_*.pgm"));
    ASSERT_EQ(skipped.status, 0) << skipped.errors;
    EXPECT_NE(
        skipped.output.find("the world frame is the plate of view 1, left_01.pgm, as view 0 (left_00.pgm) was skipped"),
        std::string::npos)
        << skipped.output;
    EXPECT_EQ(rig().at("reference").at("given"), 1);
    const CommandResult refused = run({"--reference", "0", "--quiet"}, at("left_*.pgm"), at("right_*.pgm"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.errors.find("--reference 0: the plate of this view cannot be the world frame"), std::string::npos)
        << refused.errors;
}

TEST_F(ReferenceView, ASmearedOneIsReplacedByTheSharpest) {
    constexpr int kSmear = 9;  // pixels
    copyWith(smearedRows(readPgmFile(smallRig() / "left_00.pgm"), kSmear), readFile(smallRig() / "right_00.pgm"));
    const CommandResult smeared = run({}, at("left_*.pgm"), at("right_*.pgm"));
    ASSERT_EQ(smeared.status, 0) << smeared.errors;
    EXPECT_NE(smeared.errors.find(at("left_00.pgm") + ": view"), std::string::npos) << smeared.errors;
    EXPECT_NE(smeared.errors.find("smeared by"), std::string::npos) << smeared.errors;
    EXPECT_NE(smeared.output.find("as view 0 (left_00.pgm) is less sharp than the others"), std::string::npos)
        << smeared.output;
    const Json json = rig();
    EXPECT_NE(json.at("reference").at("given"), 0);
    int count = 0;
    for (const Json& view : json.at("views")) {
        const Json& left = view.at("blur").at("left");
        EXPECT_LT(view.at("blur").at("right").at("smear").get<double>(), 2.0);
        if (const double smear = left.at("smear"); smear > 2.0) {
            count += 1;
            EXPECT_NEAR(smear, kSmear, 0.15 * kSmear);
            EXPECT_NEAR(left.at("direction").get<double>(), 0.0, 0.1);
        }
    }
    EXPECT_EQ(count, 1);
}

TEST_F(ReferenceView, LengthsOnThePlateAreTold) {
    ASSERT_EQ(run().status, 0);
    const Json json = rig();
    const Json& all = json.at("plateLengths");
    // 0.02 pixel at some 85 units a thousand pixels: hundredths of a unit at most.
    EXPECT_GT(all.at("rms").get<double>(), 0.0);
    EXPECT_LT(all.at("rms").get<double>(), 0.05);
    int count = 0;
    double squares = 0.0;
    for (const Json& view : json.at("views")) {
        const Json& own = view.at("lengths");
        count += own.at("count").get<int>();
        squares += own.at("count").get<int>() * std::pow(own.at("rms").get<double>(), 2.0);
        EXPECT_LE(std::fabs(own.at("worst").get<double>()), std::fabs(all.at("worst").get<double>()));
    }
    EXPECT_EQ(all.at("count"), count);
    EXPECT_NEAR(all.at("rms").get<double>(), std::sqrt(squares / count), 1e-9);
}

}  // namespace
}  // namespace zelmtest
