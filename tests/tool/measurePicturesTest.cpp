// `zelm undistort`, `zelm rectify` and the pictures of `zelm epiline`: pixels are those of the library, corresponding
// features lie on corresponding lines, and lines are drawn where they are.
#include <gtest/gtest.h>

#include <cmath>

#include "imageFile.h"
#include "measureFixtures.h"

namespace zelmtest {
namespace {

using zelm::tool::AnyPicture;
using zelm::tool::ColourPicture;
using zelm::tool::Picture;

constexpr int kWidth = 1280;
constexpr int kHeight = 960;

Picture grayPicture(const fs::path& path) {
    AnyPicture any = zelm::tool::readAnyPicture(path);
    EXPECT_TRUE(std::holds_alternative<Picture>(any)) << path;
    return std::holds_alternative<Picture>(any) ? std::get<Picture>(any) : Picture{};
}

ColourPicture colourPicture(const fs::path& path) {
    AnyPicture any = zelm::tool::readAnyPicture(path);
    EXPECT_TRUE(std::holds_alternative<ColourPicture>(any)) << path;
    return std::holds_alternative<ColourPicture>(any) ? std::get<ColourPicture>(any) : ColourPicture{};
}

// The colour bytes of a picture; alpha is not written to files.
std::vector<std::uint8_t> coloursOf(const std::vector<std::uint8_t>& argb) {
    std::vector<std::uint8_t> colours;
    for (std::size_t i = 0; i < argb.size(); ++i) {
        if (i % 4 != 0) {
            colours.push_back(argb[i]);
        }
    }
    return colours;
}

// A smooth picture in colour of the sample's size, as PPM.
void writeColourPicture(const fs::path& path) {
    std::string ppm = "P6\n1280 960\n255\n";
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            ppm += static_cast<char>(40 + x / 8);
            ppm += static_cast<char>(40 + y / 6);
            ppm += static_cast<char>(250 - x / 10);
        }
    }
    writeFile(path, ppm);
}

vImage_Buffer bufferOf(ColourPicture& picture) {
    return {picture.argb.data(), static_cast<std::size_t>(picture.height), static_cast<std::size_t>(picture.width),
            4 * static_cast<std::size_t>(picture.width)};
}

struct MeasurePictures : ::testing::Test {
    TemporaryFolder folder;
    Handle handle;

    void SetUp() override { loadFile(deskRigFile(), &handle); }
    [[nodiscard]] std::string out(const std::string& name) const { return (folder / name).string(); }
};

TEST_F(MeasurePictures, UndistortedGrayIsTheLibrarys) {
    const CommandResult run =
        zelm({"undistort", deskRigFile(), sampleFile("left_03.png"), sampleFile("right_03.png"), "-o", out("u")});
    ASSERT_EQ(run.status, 0) << run.errors;
    for (const char side : {'L', 'R'}) {
        const std::string name = side == 'L' ? "left_03" : "right_03";
        const Picture source = grayPicture(sampleFile(name + ".png"));
        Picture expected = source;
        ASSERT_EQ(zelm2ViewUnDistortImage(handle.calib, side, source.pixels.data(), expected.pixels.data()), ZELM_OK);
        const Picture found = grayPicture(folder / ("u/" + name + "_undistorted.png"));
        EXPECT_EQ(found.width, kWidth);
        EXPECT_EQ(found.height, kHeight);
        EXPECT_TRUE(found.pixels == expected.pixels) << side;
    }
}

TEST_F(MeasurePictures, ColoursStayColours) {
    writeColourPicture(folder / "scene.ppm");
    ColourPicture source = colourPicture(folder / "scene.ppm");
    ColourPicture expected = source;
    const vImage_Buffer from = bufferOf(source);
    const vImage_Buffer to = bufferOf(expected);

    const CommandResult run = zelm({"undistort", deskRigFile(), out("scene.ppm"), "--camera", "right", "-o", out("u")});
    ASSERT_EQ(run.status, 0) << run.errors;
    ASSERT_EQ(zelm2ViewUnDistortImage_vImageARGB8888(handle.calib, 'R', &from, &to), ZELM_OK);
    EXPECT_TRUE(coloursOf(colourPicture(folder / "u/scene_undistorted.png").argb) == coloursOf(expected.argb));

    const CommandResult rectified =
        zelm({"rectify", deskRigFile(), out("scene.ppm"), out("scene.ppm"), "--reference", "600,500", "-o", out("r")});
    ASSERT_EQ(rectified.status, 0) << rectified.errors;
    const Zelm2ViewHomParam params{600.0, 500.0, 0.0};
    ASSERT_EQ(zelm2ViewMakeHomImage_vImageARGB8888(handle.calib, 'L', &from, &params, &to), ZELM_OK);
    // Both have the same name, so that the sides are told apart.
    EXPECT_TRUE(coloursOf(colourPicture(folder / "r/scene_left_rectified.png").argb) == coloursOf(expected.argb));
    EXPECT_TRUE(fs::exists(folder / "r/scene_right_rectified.png"));
    EXPECT_EQ(colourPicture(folder / "r/scene_pair.png").width, 2 * kWidth);
}

TEST_F(MeasurePictures, CameraIsToldByTheNameOrTheOption) {
    const std::string bytes = readFile(sampleFile("left_00.png"));
    for (const char* name : {"LEFT-7.png", "right.png", "leftover.png", "view_left.png"}) {
        writeFile(folder / name, bytes);
    }
    const CommandResult run = zelm({"undistort", deskRigFile(), out("LEFT-7.png"), out("right.png"), "-o", out("u")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("LEFT-7.png: left camera"), std::string::npos);
    EXPECT_NE(run.output.find("right.png: right camera"), std::string::npos);
    EXPECT_NE(readFile(folder / "u/LEFT-7_undistorted.png"), readFile(folder / "u/right_undistorted.png"));
    for (const char* name : {"leftover.png", "view_left.png"}) {
        expectOneLine(zelm({"undistort", deskRigFile(), out(name), "-o", out("v")}), 2, {name, "--camera"});
    }
    EXPECT_FALSE(fs::exists(folder / "v"));
}

TEST_F(MeasurePictures, RectifiedImagesAreTheLibrarys) {
    const CommandResult run = zelm({"rectify", deskRigFile(), sampleFile("scene_left.png"),
                                    sampleFile("scene_right.png"), "--json", "-o", out("r"), "--depth", "0.01"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output);
    for (const char side : {'L', 'R'}) {
        const Json& part = json.at(side == 'L' ? "left" : "right");
        const Picture source = grayPicture(part.at("image").get<std::string>());
        const Zelm2ViewHomParam params{part.at("reference")[0], part.at("reference")[1], 0.01};
        Picture expected = source;
        ASSERT_EQ(zelm2ViewMakeHomImage(handle.calib, side, source.pixels.data(), &params, expected.pixels.data()),
                  ZELM_OK);
        EXPECT_TRUE(grayPicture(part.at("rectified").get<std::string>()).pixels == expected.pixels) << side;
    }
    const ColourPicture pair = colourPicture(json.at("pair").get<std::string>());
    EXPECT_EQ(pair.width, 2 * kWidth);
    EXPECT_EQ(pair.height, kHeight);
}

TEST_F(MeasurePictures, DefaultReferencesAreOnePointOfTheScene) {
    const CommandResult run = zelm({"rectify", deskRigFile(), sampleFile("scene_left.png"),
                                    sampleFile("scene_right.png"), "--json", "-o", out("r")});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output);
    Point2d raw[2];
    for (const int i : {0, 1}) {
        const Json& reference = json.at(i == 0 ? "left" : "right").at("reference");
        const Point2d ideal{reference[0], reference[1]};
        EXPECT_NEAR(ideal.x, kWidth / 2, 20.0);  // this rig's axes all but meet
        EXPECT_NEAR(ideal.y, kHeight / 2, 20.0);
        ASSERT_EQ(zelm2ViewDistortPoint(handle.calib, i == 0 ? 'L' : 'R', &ideal, &raw[i]), ZELM_OK);
    }
    Point3d X{};
    ASSERT_EQ(zelm2ViewChange2Dto3D(handle.calib, &raw[0], &raw[1], &X), ZELM_OK);
    Point2d seen{};
    ASSERT_EQ(zelm2ViewChange3Dto2D(handle.calib, 'L', &X, &seen), ZELM_OK);
    EXPECT_NEAR(std::hypot(seen.x - raw[0].x, seen.y - raw[0].y), 0.0, 1e-6);
}

TEST_F(MeasurePictures, MatchingFeaturesLieOnMatchingLines) {
    std::ostringstream csv;
    csv.precision(17);
    for (const ScenePair& pair : scenePairs()) {
        csv << pair.left.x << ',' << pair.left.y << ',' << pair.right.x << ',' << pair.right.y << '\n';
    }
    writeFile(folder / "pairs.csv", csv.str());
    const CommandResult run =
        zelm({"rectify", deskRigFile(), sampleFile("scene_left.png"), sampleFile("scene_right.png"), "--pairs",
              out("pairs.csv"), "--json", "-o", out("r")});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output);
    const Json& reference = json.at("left").at("reference");
    const Zelm2ViewHomParam params{reference[0], reference[1], 0.0};
    ASSERT_EQ(json.at("lines").size(), scenePairs().size());
    // True pixels and a calibration from images: its epipolar lines are off by some hundredths of a pixel.
    constexpr double kOffLine = 0.05;
    double moved = 0.0;
    for (std::size_t i = 0; i < scenePairs().size(); ++i) {
        const ScenePair& pair = scenePairs()[i];
        Point2d left{};
        Point2d right{};
        ASSERT_EQ(zelm2ViewCalcHomImgPoint(handle.calib, 'L', &pair.left, &params, &left), ZELM_OK);
        ASSERT_EQ(zelm2ViewUnDistortPoint(handle.calib, 'R', &pair.right, &right), ZELM_OK);
        EXPECT_LE(distanceFrom(json["lines"][i]["left"], left), kOffLine) << i;
        EXPECT_LE(distanceFrom(json["lines"][i]["right"], right), kOffLine) << i;
        moved = std::max(moved, std::fabs(left.x - pair.left.x));
    }
    EXPECT_GT(moved, 10.0);  // the rectified image is another one
}

TEST_F(MeasurePictures, CamerasThatLookPastEachOtherUseThePlate) {
    TruePair pair = makePair(0, 0);
    pair.left.pose = truePose(0.0, 0.1, 0.0, 60.0, 4.0, 455.0);  // the axes part before the cameras
    pair.right.pose = truePose(0.0, -0.1, 0.0, -60.0, -3.0, 448.0);
    const std::string rig = writePair(pair, folder / "rig.zcal");
    const CommandResult run =
        zelm({"rectify", rig, sampleFile("scene_left.png"), sampleFile("scene_right.png"), "-o", out("r")});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("the origin of the first plate"), std::string::npos) << run.output;
}

TEST_F(MeasurePictures, LinesAreDrawnWhereTheyAre) {
    const CommandResult run = zelm({"epiline", deskRigFile(), "--point", "377.246,331.008", "--in", "left", "--image",
                                    sampleFile("scene_right.png"), "-o", out("lines.png"), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json line = Json::parse(run.output).at("lines")[0];
    const ColourPicture drawn = colourPicture(folder / "lines.png");
    ASSERT_EQ(drawn.width, kWidth);
    ASSERT_EQ(drawn.height, kHeight);
    const Picture source = grayPicture(sampleFile("scene_right.png"));
    Picture undistorted = source;
    ASSERT_EQ(zelm2ViewUnDistortImage(handle.calib, 'R', source.pixels.data(), undistorted.pixels.data()), ZELM_OK);
    for (int x = 10; x < kWidth - 10; x += 50) {
        const double y = -(line["a"].get<double>() * x + line["c"].get<double>()) / line["b"].get<double>();
        const auto at = [&](int row) { return static_cast<std::size_t>(row * kWidth + x); };
        const std::uint8_t* const on = drawn.argb.data() + 4 * at(static_cast<int>(std::lround(y)));
        EXPECT_GT(on[1], on[3] + 40) << x;  // red, of which half or more falls into the nearest row
        const std::size_t beside = at(static_cast<int>(std::lround(y)) + 4);
        EXPECT_EQ(drawn.argb[4 * beside + 1], undistorted.pixels[beside]) << x;
    }
}

}  // namespace
}  // namespace zelmtest
