// `zelm simulate` end to end: its files describe each other, repeat with their seed, and bad descriptions leave one
// line and no files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "commandRun.h"
#include "renderView.h"

namespace {

using namespace zelm::render;
using zelmtest::CommandResult;
using zelmtest::readFile;
using zelmtest::TemporaryFolder;
using zelmtest::writeFile;
using Json = nlohmann::json;
namespace fs = std::filesystem;

CommandResult simulate(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {ZELM_PROGRAM, "simulate"});
    return zelmtest::runCommand(arguments);
}

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Small images keep this quick.
constexpr const char* kSmallRig = R"({
  "set": "small",
  "plate": {"columns": [-3, 4], "rows": [-2, 3], "dotPitchY": 11.0, "markerColumn": 2, "polarity": "bright",
            "missing": [[1, 1]]},
  "left": {"width": 320, "height": 240, "fx": 422.6, "fy": 422.0, "cx": 160.4, "cy": 119.3},
  "right": {"width": 330, "height": 236, "fx": 423.8, "fy": 423.4, "cx": 164.3, "cy": 118.9},
  "optics": {"noiseSigma": 2.0, "gradientX": 0.1, "falloff": 0.2},
  "views": {"count": 3, "seed": 5}
})";

Camera cameraOf(const Json& j) {
    Camera camera;
    camera.width = j.at("width");
    camera.height = j.at("height");
    camera.fx = j.at("fx");
    camera.fy = j.at("fy");
    camera.skew = j.at("gamma");
    camera.cx = j.at("cx");
    camera.cy = j.at("cy");
    camera.k1 = j.at("k1");
    camera.k2 = j.at("k2");
    return camera;
}

Pose poseOf(const Json& j) {
    Pose pose;
    pose.R = j.at("R").get<std::array<double, 9>>();
    pose.t = j.at("t").get<std::array<double, 3>>();
    return pose;
}

GrayImage readPgm(const fs::path& path) {
    std::istringstream stream(readFile(path));
    std::string magic;
    GrayImage image;
    int most = 0;
    stream >> magic >> image.width >> image.height >> most;
    EXPECT_EQ(magic, "P5");
    stream.get();
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    image.pixels.assign(bytes.begin(), bytes.end());
    return image;
}

TEST(Simulate, TheTruthFileDescribesTheImages) {
    const TemporaryFolder folder;
    writeFile(folder / "rig.json", kSmallRig);
    const std::string out = (folder / "out").string();
    const CommandResult run = simulate({(folder / "rig.json").string(), "-o", out, "--format", "pgm"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(namesIn(out), (std::vector<std::string>{"left_00.pgm", "left_01.pgm", "left_02.pgm", "plate.json",
                                                      "right_00.pgm", "right_01.pgm", "right_02.pgm", "truth.json"}));

    const Json truth = Json::parse(readFile(out + "/truth.json"));
    Plate plate;
    plate.minX = -3, plate.maxX = 4, plate.minY = -2, plate.maxY = 3;
    plate.pitchY = 11.0;
    plate.markerX = 2;
    plate.polarity = Polarity::lightDots;
    plate.missing = {{1, 1}};
    StereoRig rig;
    rig.left = cameraOf(truth.at("cameras").at("left"));
    rig.right = cameraOf(truth.at("cameras").at("right"));
    rig.rightFromLeft = poseOf(truth.at("right_from_left"));
    Optics optics;
    optics.levels = GrayLevels::matching(plate.polarity);
    optics.noiseSigma = truth.at("noise").at("sigma");
    optics.blurSigma = truth.at("psf_sigma_px");
    optics.light = {0.1, 0.0, 0.2};
    const std::uint64_t seed = truth.at("seed");
    ASSERT_EQ(truth.at("views").size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const Json& view = truth.at("views")[i];
        const RenderedPair pair = renderPair(plate, rig, poseOf(view.at("left")), optics, seed + i);
        EXPECT_EQ(readPgm(out + "/" + std::string(view.at("left_image"))).pixels, pair.left.image.pixels);
        EXPECT_EQ(readPgm(out + "/" + std::string(view.at("right_image"))).pixels, pair.right.image.pixels);
        EXPECT_EQ(readPgm(out + "/" + std::string(view.at("right_image"))).width, 330);
        // The file's numbers come back to the last bit, and its right pose is the left one moved over.
        ASSERT_EQ(view.at("left").at("dots").size(), 47U);
        for (std::size_t k = 0; k < 47; ++k) {
            const Json& dot = view.at("right").at("dots")[k];
            EXPECT_EQ(double(dot.at("pixel")[0]), pair.right.dots[k].centre.x);
            EXPECT_EQ(double(dot.at("centroid")[1]), pair.right.dots[k].centroid.y);
            EXPECT_EQ(double(dot.at("ellipse")[2]), pair.right.dots[k].ellipse.a);
            EXPECT_EQ(int(dot.at("grid")[0]), pair.right.dots[k].dot.index.x);
        }
        const Pose right = compose(rig.rightFromLeft, poseOf(view.at("left")));
        EXPECT_EQ(right.t, poseOf(view.at("right")).t);
    }
}

TEST(Simulate, TheTruthFileHasTheFieldsOfAMeasuredSet) {
    const TemporaryFolder folder;
    writeFile(folder / "rig.json", kSmallRig);
    const std::string out = (folder / "out").string();
    ASSERT_EQ(simulate({(folder / "rig.json").string(), "-o", out}).status, 0);
    const Json truth = Json::parse(readFile(out + "/truth.json"));
    for (const char* key : {"set", "image_width", "image_height", "units", "model", "pattern", "noise", "cameras",
                            "right_from_left", "views", "psf_sigma_px"}) {
        EXPECT_TRUE(truth.contains(key)) << key;
    }
    const Json pattern = {{"d0", 80.0},
                          {"d1", 66.0},
                          {"d2", 4.0},
                          {"d3", 7.0},
                          {"d4", 10.0},
                          {"d5", 11.0},
                          {"d6", 20.0},
                          {"d7", 33.0},
                          {"markers", 3},
                          {"polarity", 1},
                          {"grid_x", {-3, 4}},
                          {"grid_y", {-2, 3}},
                          {"plate_size", {94.0, 79.0}}};
    EXPECT_EQ(truth.at("pattern"), pattern);
    for (const char* key : {"width", "height", "fx", "fy", "gamma", "cx", "cy", "theta", "k1", "k2", "K"}) {
        EXPECT_TRUE(truth.at("cameras").at("left").contains(key)) << key;
    }
    for (const char* key : {"R", "t", "note", "baseline"}) {
        EXPECT_TRUE(truth.at("right_from_left").contains(key)) << key;
    }
    for (const char* key : {"R", "t", "r"}) {
        EXPECT_TRUE(truth.at("views")[2].at("right").contains(key)) << key;
    }
}

TEST(Simulate, ThePrintedExampleIsTheDefault) {
    const TemporaryFolder folder;
    const CommandResult example = simulate({"--example"});
    ASSERT_EQ(example.status, 0);
    writeFile(folder / "rig.json", example.output);
    const std::string a = (folder / "a").string(), b = (folder / "b").string();
    ASSERT_EQ(simulate({(folder / "rig.json").string(), "-o", a, "--views", "1"}).status, 0);
    ASSERT_EQ(simulate({"-o", b, "--views", "1"}).status, 0);
    ASSERT_EQ(namesIn(a), (std::vector<std::string>{"left_00.png", "plate.json", "right_00.png", "truth.json"}));
    for (const std::string& name : namesIn(a)) {
        EXPECT_EQ(readFile(a + "/" + name), readFile(b + "/" + name)) << name;
    }
}

TEST(Simulate, ASeedRepeatsAndAnotherDiffers) {
    const TemporaryFolder folder;
    writeFile(folder / "rig.json", kSmallRig);
    const auto imageFor = [&](const std::string& seed, const std::string& name) {
        const std::string out = (folder / name).string();
        EXPECT_EQ(simulate({(folder / "rig.json").string(), "-o", out, "--seed", seed}).status, 0);
        return readFile(out + "/left_01.png");
    };
    const std::string first = imageFor("9", "a");
    EXPECT_EQ(first, imageFor("9", "b"));
    EXPECT_NE(first, imageFor("10", "c"));
}

TEST(Simulate, ListedPosesAreRenderedAsTheyAre) {
    const TemporaryFolder folder;
    writeFile(folder / "rig.json", R"({"views": [{"rotation": [0, 0, 90], "translation": [60, 0, 500]}]})");
    const std::string out = (folder / "out").string();
    const CommandResult run = simulate({(folder / "rig.json").string(), "-o", out, "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(int(Json::parse(run.output).at("views")), 1);
    const Json left = Json::parse(readFile(out + "/truth.json")).at("views")[0].at("left");
    EXPECT_NEAR(double(left.at("r")[2]), std::acos(0.0), 1e-12);
    EXPECT_EQ(double(left.at("t")[2]), 500.0);
}

TEST(Simulate, APlateThatACameraSeesOnlyInPartIsAWarning) {
    const TemporaryFolder folder;
    writeFile(folder / "rig.json", R"({"views": [{"rotation": [0, 0, 0], "translation": [0, 0, 150]}]})");
    const CommandResult run = simulate({(folder / "rig.json").string(), "-o", (folder / "out").string()});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "zelm: warning: view 0: a camera does not see the whole plate from its printed side\n");
}

struct BadDescription {
    const char* text;
    int status;
    const char* line;  // after "zelm: <file>: "
};

TEST(Simulate, BadDescriptionsGiveOneLineAndNoFiles) {
    const BadDescription cases[] = {
        {"{", 2, "not valid JSON at line 1, column 2: correct it there"},
        {"{\"a\": 1e999}", 2, "a number is out of range: correct it"},
        {"[]", 2, "the file: expected an object { ... }"},
        {R"({"left": 3})", 2, "left: expected an object { ... }"},
        {R"({"left": {"fx": "long"}})", 2, "left.fx: expected a number"},
        {R"({"left": {"fx": -5}})", 2, "left: fx and fy must be positive"},
        {R"({"left": {"width": 3.5}})", 2, "left.width: expected a whole number"},
        {R"({"left": {"projection": "fisheye"}})", 2, "left.projection: expected \"perspective\" or \"parallel\""},
        {R"({"plate": {"polarity": 1}})", 2, "plate.polarity: expected a text in quotes"},
        {R"({"plate": {"polarity": "gray"}})", 2, "plate.polarity: expected \"dark\" or \"bright\""},
        {R"({"plate": {"dotPitchX": 0}})", 2, "plate: the pitch along x must be a positive number"},
        {R"({"plate": {"columns": [1]}})", 2, "plate.columns: expected a list of 2 whole numbers"},
        {R"({"plate": {"missing": [[99999999999, 0]]}})", 2,
         "plate.missing: expected a list of pairs of whole numbers"},
        {R"({"plate": {"missing": [[7, 0]]}})", 2, "plate: a dot listed as missing or changed is not on the grid"},
        {R"({"optics": {"blur": 1}})", 2,
         "optics.blur: unknown field; known here are blurSigma, dots, falloff, gradientX, gradientY, ground, "
         "noiseSigma, plate"},
        {R"({"optics": {"blurSigma": 0.001}})", 2, "optics: the blur must be 0 or between 0.02 and 50 pixels"},
        {R"({"plate": {"polarity": "bright"}, "optics": {"dots": 20, "plate": 190}})", 2,
         "optics: dots of level 20 on a plate of level 190 are not bright, as plate.polarity says: change one or the "
         "other"},
        {R"({"optics": {"dots": 191}})", 2,
         "optics: dots of level 191 on a plate of level 190 are not dark, as plate.polarity says: change one or the "
         "other"},
        {R"({"views": []})", 2, "views: expected 1 to 10000 poses"},
        {R"({"views": {"count": 0}})", 2, "views.count: expected 1 to 10000 views"},
        {R"({"views": {"seed": -1}})", 2, "views.seed: expected a whole number from 0 on"},
        {R"({"views": {"maxTilt": 90}})", 2, "views.maxTilt: expected an angle from 0 to less than 90 degrees"},
        {R"({"views": {"largestFill": 1.5}})", 2, "views.largestFill: expected a share up to 1"},
        {R"({"rightFromLeft": {"rotation": [0, 170, 0]}})", 1,
         "no pose was found in which both cameras see the whole plate; check the rig's geometry and the plate's size"},
        {R"({"left": {"projection": "parallel", "fx": 4, "fy": 4}})", 1,
         "no pose was found in which both cameras see the whole plate; check the rig's geometry and the plate's size, "
         "or list the poses one by one: those for a parallel left camera are drawn at z = 1"},
        {R"({"views": [{"rotation": [0, 0, 0], "translation": [60, 0, 500]},
                       {"rotation": [0, 88, 0], "translation": [60, 0, 50]}]})",
         1,
         "view 1: a point of the plate is behind the camera or beyond the reach of the lens model: move the plate or "
         "check k1 and k2"},
        {R"({"left": {"projection": "parallel", "fx": 4, "fy": 4},
            "views": [{"rotation": [0, 0, 0], "translation": [0, 0, 500]}]})",
         1,
         "view 0: a point of the plate is behind the camera or beyond the reach of the lens model: move the plate or "
         "check k1 and k2"},
    };
    const TemporaryFolder folder;
    const std::string file = (folder / "rig.json").string();
    for (const BadDescription& bad : cases) {
        writeFile(file, bad.text);
        const CommandResult run = simulate({file, "-o", (folder / "out").string(), "-q"});
        EXPECT_EQ(run.status, bad.status) << bad.text;
        const std::string line = "zelm: " + file + ": " + bad.line + "\n";
        EXPECT_TRUE(run.errors.ends_with(line)) << run.errors << "instead of\n" << line;
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(namesIn(fs::path(file).parent_path()), std::vector<std::string>{"rig.json"}) << bad.text;
    }
}

TEST(Simulate, WrongUsageIsRefused) {
    const TemporaryFolder folder;
    const std::string missing = (folder / "nothing.json").string();
    const CommandResult absent = simulate({missing, "-o", (folder / "out").string()});
    EXPECT_EQ(absent.status, 1);
    EXPECT_NE(absent.errors.find(missing), std::string::npos);
    EXPECT_EQ(simulate({}).status, 2);
    EXPECT_EQ(simulate({"-o", (folder / "out").string(), "--views", "0"}).status, 2);
    EXPECT_EQ(simulate({"-o", (folder / "out").string(), "--format", "gif"}).status, 2);

    writeFile(folder / "file", "");
    const CommandResult blocked = simulate({"-o", (folder / "file").string(), "--views", "1"});
    EXPECT_EQ(blocked.status, 2);
    EXPECT_NE(blocked.errors.find("cannot make this output folder"), std::string::npos);

    writeFile(folder / "rig.json", R"({"views": [{"translation": [60, 0, 500]}]})");
    const CommandResult both =
        simulate({(folder / "rig.json").string(), "-o", (folder / "out").string(), "--views", "2"});
    EXPECT_EQ(both.status, 2);
    EXPECT_NE(both.errors.find("leave out --views"), std::string::npos);
}

}  // namespace
