// zelm detect, calibrate, info and compare on good data: what they write, against truth and against the library.
#include <cmath>
#include <cstring>
#include <map>
#include <numbers>

#include "toolFixtures.h"
#include "zelmLib.h"

using namespace zelmtest;

namespace {

Json calibratedJson() {
    return Json::parse(readFile(calibratedSmallRig() / "rig.json"));
}

struct CsvDot {
    double planeX, planeY, x, y;
};

std::map<std::pair<int, int>, CsvDot> readDotsCsv(const fs::path& path) {
    std::map<std::pair<int, int>, CsvDot> dots;
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line, "grid_x,grid_y,plane_x,plane_y,pixel_x,pixel_y");
    while (std::getline(file, line)) {
        int i = 0;
        int j = 0;
        CsvDot dot{};
        EXPECT_EQ(std::sscanf(line.c_str(), "%d,%d,%lf,%lf,%lf,%lf", &i, &j, &dot.planeX, &dot.planeY, &dot.x, &dot.y),
                  6);
        dots[{i, j}] = dot;
    }
    return dots;
}

TEST(ToolDetect, EveryDotHasItsTrueIndexAndPlace) {
    // Noise of 1.5 gray levels at a contrast of 170 moves a centre by under 0.01 px; perspective and lens add what
    // the centre of an ellipse misses. A wrong index is off by 30 px.
    constexpr double kTolerance = 0.15;
    const TemporaryFolder out;
    const Json truth = Json::parse(readFile(smallRig() / "truth.json"));
    for (const std::string side : {"left", "right"}) {
        for (int view = 0; view < 6; ++view) {
            const std::string stem = side + "_0" + std::to_string(view);
            const CommandResult result = zelm({"detect", smallRigFile(stem + ".pgm"), "--plate",
                                               smallRigFile("plate.json"), "-o", (out / "o").string()});
            ASSERT_EQ(result.status, 0) << result.errors;
            const auto dots = readDotsCsv(out / "o" / (stem + "_dots.csv"));
            EXPECT_GE(dots.size(), 40U) << stem;
            std::size_t matched = 0;
            for (const Json& dot : truth["views"][static_cast<std::size_t>(view)][side]["dots"]) {
                const auto found = dots.find({dot["grid"][0], dot["grid"][1]});
                if (found != dots.end()) {
                    ++matched;
                    EXPECT_EQ(found->second.planeX, dot["plane"][0]);
                    EXPECT_EQ(found->second.planeY, dot["plane"][1]);
                    EXPECT_NEAR(found->second.x, dot["pixel"][0], kTolerance) << stem;
                    EXPECT_NEAR(found->second.y, dot["pixel"][1], kTolerance) << stem;
                }
            }
            EXPECT_EQ(matched, dots.size()) << stem;
        }
    }
}

TEST(ToolDetect, OverlayShowsDotsMarkersAndAxes) {
    const TemporaryFolder out;
    ASSERT_EQ(
        zelm({"detect", smallRigFile("left_00.pgm"), "--plate", smallRigFile("plate.json"), "-o", (out / "o").string()})
            .status,
        0);
    const std::string png = readFile(out / "o" / "left_00_dots.png");
    EXPECT_EQ(png.rfind("\x89PNG", 0), 0U);
    // The picture's size stands in the header, big-endian.
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\x80\0\0\x01\xe0", 8));
}

TEST(ToolDetect, RegionLimitsTheSearch) {
    const TemporaryFolder out;
    const CommandResult result = zelm({"detect", smallRigFile("left_00.pgm"), "--plate", smallRigFile("plate.json"),
                                       "-o", (out / "o").string(), "--region", "0,0,640,480", "--json"});
    // The whole image is no plate: its dark surroundings are no dots, but the dots are found all the same.
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(Json::parse(result.output)["dots"].size(), 63U);
}

TEST(ToolCalibrate, WithoutAdjustmentTheBlockIsTheLibrarysByteForByte) {
    const Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    Zelm2ViewPatternDesc pattern{};
    pattern.d0 = plate["fieldWidth"];
    pattern.d1 = plate["fieldHeight"];
    pattern.d2 = plate["dotDiameter"];
    pattern.d3 = plate["markerDiameter"];
    pattern.d4 = plate["dotPitchX"];
    pattern.d5 = plate["dotPitchY"];
    pattern.d6 = plate["markerDistanceX"];
    pattern.d7 = plate["markerDistanceY"];
    pattern.markers = 3;
    pattern.minDotArea = 20;
    pattern.minEdgeStrength = 3.0;
    pattern.minDots = 31;
    const Zelm2ViewCameraDesc cameras{0, 640, 480, 0, 640, 480};
    Zelm2ViewCalib* handle = nullptr;
    ASSERT_EQ(zelm2ViewCalibOpen(6, &pattern, &cameras, &handle), ZELM_OK);
    for (int view = 0; view < 6; ++view) {
        const Pgm left = readPgmFile(smallRig() / ("left_0" + std::to_string(view) + ".pgm"));
        const Pgm right = readPgmFile(smallRig() / ("right_0" + std::to_string(view) + ".pgm"));
        const unsigned char* const images[2] = {reinterpret_cast<const unsigned char*>(left.pixels.data()),
                                                reinterpret_cast<const unsigned char*>(right.pixels.data())};
        ASSERT_EQ(zelm2ViewReadPtnImg(handle, view, images, nullptr, nullptr), ZELM_OK);
    }
    Zelm2ViewCalibResult result{};
    ASSERT_EQ(zelm2ViewCalibCameraParam(handle, &result), ZELM_OK);
    std::string block(static_cast<std::size_t>(zelm2ViewGetCalibDataSize(handle)), '\0');
    ASSERT_EQ(zelm2ViewSaveCalibData(handle, reinterpret_cast<unsigned char*>(block.data())), ZELM_OK);
    zelm2ViewCalibClose(&handle);

    EXPECT_EQ(block.size(), 6U * 240U + 812U);
    const TemporaryFolder out;
    const CommandResult made = calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), (out / "o").string(),
                                         {"--no-adjust", "--json"});
    ASSERT_EQ(made.status, 0) << made.errors;
    EXPECT_EQ(readFile(out / "o" / "rig.zcal"), block);
    EXPECT_FALSE(fs::exists(out / "o" / "rig.zcov"));
    // The library's own mean distance is the one that the summary tells.
    const Json json = Json::parse(made.output);
    EXPECT_FALSE(json.contains("adjustment"));
    constexpr double kRounding = 1e-9;  // pixels: the same sum in another order
    EXPECT_NEAR(json["reprojection"]["left"]["mean"], result.errorL, kRounding);
    EXPECT_NEAR(json["reprojection"]["right"]["mean"], result.errorR, kRounding);
}

TEST(ToolCalibrate, AnotherProcessReadsTheSameCalibration) {
    const CommandResult info = zelm({"info", (calibratedSmallRig() / "rig.zcal").string(), "--json"});
    ASSERT_EQ(info.status, 0) << info.errors;
    const Json read = Json::parse(info.output);
    const Json written = calibratedJson();
    EXPECT_EQ(read["views"], 6);
    for (const char* part : {"left", "right", "pair", "fundamental"}) {
        EXPECT_EQ(read[part], written[part]) << part;
    }
    EXPECT_EQ(read["left"]["poses"].size(), 6U);
}

TEST(ToolCalibrate, FiguresAreThoseOfAGoodRig) {
    const Json json = calibratedJson();
    // Centres are good to about 0.01 px at this noise; a wrong dot, pose or line would be off by many pixels.
    constexpr double kMeanError = 0.02;
    EXPECT_LT(json["reprojection"]["left"]["mean"], kMeanError);
    EXPECT_LT(json["reprojection"]["right"]["mean"], kMeanError);
    EXPECT_LT(json["epipolar"]["rms"], kMeanError);
    EXPECT_GT(json["epipolar"]["rms"], 0.0);
    EXPECT_GE(json["epipolar"]["dotPairs"], 6 * 40);
    for (const Json& view : json["views"]) {
        for (const char* side : {"left", "right"}) {
            const Json& figures = view[side]["reprojection"];
            EXPECT_LE(figures["mean"], figures["rms"]);
            EXPECT_LE(figures["rms"], figures["worst"]);
        }
    }
}

TEST(ToolCalibrate, TableAndFilesAreComplete) {
    const TemporaryFolder out;
    const CommandResult result =
        calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), (out / "o").string());
    ASSERT_EQ(result.status, 0);
    for (const char* words : {"left_00.pgm", "right_05.pgm", "mean", "rms", "worst", "focal length alpha",
                              "distortion k2", "baseline", "mm", "convergence angle", "epipolar RMS distance"}) {
        EXPECT_NE(result.output.find(words), std::string::npos) << words;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(out / "o"), {}), 4);  // with rig.zcov
    EXPECT_EQ(std::distance(fs::directory_iterator(calibratedSmallRig() / "overlays"), {}), 12);
}

TEST(ToolCalibrate, RunningTwiceGivesTheSameFiles) {
    const TemporaryFolder out;
    const std::string folder = (out / "o").string();
    fs::create_directory(folder);
    for (const char* name : {"rig.zcal", "rig.zcov", "rig.json"}) {
        writeFile(out / "o" / name, "of an earlier run");
    }
    ASSERT_EQ(calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), folder).status, 0);
    for (const char* name : {"rig.zcal", "rig.zcov", "rig.json"}) {
        EXPECT_EQ(readFile(out / "o" / name), readFile(calibratedSmallRig() / name)) << name;
    }
}

TEST(ToolCalibrate, OneBadViewAmongManyIsSkippedAndReported) {
    const TemporaryFolder folder;
    for (int view = 0; view < 6; ++view) {
        for (const std::string side : {"left", "right"}) {
            const std::string name = side + "_0" + std::to_string(view) + ".pgm";
            fs::copy_file(smallRig() / name, folder / name);
        }
    }
    writeFile(folder / "left_00.pgm", "no image");
    writeFile(folder / "right_03.pgm", withoutMarker(3, "right"));
    const std::string out = (folder / "o").string();
    const CommandResult result =
        calibrate((folder / "left_*.pgm").string(), (folder / "right_*.pgm").string(), out, {"--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 3) << result.errors;
    EXPECT_NE(result.errors.find("zelm: warning: skipping a view: " + (folder / "left_00.pgm").string()),
              std::string::npos);
    EXPECT_NE(result.errors.find("only 2 of 3 markers found"), std::string::npos) << result.errors;
    const Json json = Json::parse(result.output);
    // The left image of view 3 places the plate, so that the right one's dots are found all the same, at the end.
    EXPECT_NE(result.errors.find((folder / "right_03.pgm").string() + ": used all the same"), std::string::npos);
    ASSERT_EQ(json["views"].size(), 5U);
    ASSERT_EQ(json["skipped"].size(), 1U);
    EXPECT_EQ(json["skipped"][0]["left"], (folder / "left_00.pgm").string());
    EXPECT_EQ(json["views"][0]["left"]["image"], (folder / "left_01.pgm").string());
    EXPECT_EQ(json["views"][4]["right"]["image"], (folder / "right_03.pgm").string());
    EXPECT_EQ(json["views"][4]["right"]["dots"], 62);  // all but the covered marker
    EXPECT_EQ(readFile(out + "/rig.zcal").size(), 5U * 240U + 812U);
    EXPECT_NE(readFile(out + "/report.html").find("Skipped: "), std::string::npos);
}

TEST(ToolCalibrate, ViewsComeInNaturalOrder) {
    const TemporaryFolder folder;
    const std::vector<std::string> numbers{"1", "2", "9", "10", "11", "100"};
    for (int view = 0; view < 6; ++view) {
        for (const std::string side : {"left", "right"}) {
            fs::create_directories(folder / side);
            fs::copy_file(smallRig() / (side + "_0" + std::to_string(view) + ".pgm"),
                          folder / side / ("image" + numbers[static_cast<std::size_t>(view)] + ".pgm"));
        }
    }
    for (const std::string pattern : {"/image*.pgm", ""}) {  // a glob, and the folder itself
        const CommandResult result =
            calibrate((folder / "left").string() + pattern, (folder / "right").string() + pattern,
                      (folder / "o").string(), {"--json"});
        ASSERT_EQ(result.status, 0) << result.errors;
        const Json views = Json::parse(result.output)["views"];
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            EXPECT_EQ(views[i]["left"]["image"], (folder / "left" / ("image" + numbers[i] + ".pgm")).string());
        }
        EXPECT_EQ(readFile(folder / "o" / "rig.zcal"), readFile(calibratedSmallRig() / "rig.zcal"));
    }
}

TEST(ToolCalibrate, AListGivesItsOwnOrder) {
    const TemporaryFolder folder;
    std::string left;
    std::string right;
    for (const int view : {4, 0, 2, 1}) {
        left += smallRigFile("left_0" + std::to_string(view) + ".pgm") + "\r\n";
        right += smallRigFile("right_0" + std::to_string(view) + ".pgm") + "\n\n";
    }
    writeFile(folder / "left.txt", left);
    writeFile(folder / "right.txt", right);
    const CommandResult result =
        calibrate((folder / "left.txt").string(), (folder / "right.txt").string(), (folder / "o").string(), {"--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json views = Json::parse(result.output)["views"];
    ASSERT_EQ(views.size(), 4U);
    EXPECT_EQ(views[0]["left"]["image"], smallRigFile("left_04.pgm"));
    EXPECT_EQ(views[3]["right"]["image"], smallRigFile("right_01.pgm"));
}

TEST(ToolCalibrate, AdjustmentBringsTheRigNearerToTheTruth) {
    const TemporaryFolder out;
    const std::string apart = (out / "apart").string();
    ASSERT_EQ(calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), apart, {"--no-adjust"}).status, 0);
    // In standard deviations as the adjusted calibration states them; and in pixels, smaller than before.
    const Json adjusted = calibratedJson();
    const Json before = Json::parse(readFile(apart + "/rig.json"));
    const Json truth = Json::parse(readFile(smallRig() / "truth.json"));
    for (const std::string side : {"left", "right"}) {
        EXPECT_LT(adjusted["adjustment"][side]["residualRms"], adjusted["adjustment"][side]["residualRmsBefore"]);
        EXPECT_LT(adjusted["reprojection"][side]["rms"], before["reprojection"][side]["rms"]);
    }
    const double baseline = truth["right_from_left"]["baseline"];
    EXPECT_LT(std::fabs(adjusted["pair"]["baseline"].get<double>() - baseline), 0.001 * baseline);
    EXPECT_EQ(adjusted["adjustment"]["dots"], "refined");
    EXPECT_EQ(adjusted["adjustment"]["views"], 6);
}

TEST(ToolCalibrate, AdjustmentTakesItsOptions) {
    const TemporaryFolder out;
    const auto adjusted = [&](const std::vector<std::string>& options) {
        std::vector<std::string> all{"--json"};
        all.insert(all.end(), options.begin(), options.end());
        const CommandResult result =
            calibrate(smallRigFile("left_0[0-3].pgm"), smallRigFile("right_0[0-3].pgm"), (out / "o").string(), all);
        EXPECT_EQ(result.status, 0) << result.errors;
        return Json::parse(result.output);
    };
    EXPECT_EQ(adjusted({"--dots", "reader"})["adjustment"]["dots"], "reader");
    EXPECT_EQ(adjusted({"--no-skew"})["left"]["gamma"], 0.0);
    const Json square = adjusted({"--square-pixels", "--no-skew"});
    EXPECT_EQ(square["right"]["alpha"], square["right"]["beta"]);
    EXPECT_EQ(adjusted({"--noise", "0.01"})["covariance"]["noise"], 0.01);
    const Json bent = adjusted({"--bow"});
    EXPECT_LT(std::fabs(bent["adjustment"]["bow"][0].get<double>()), 0.1);  // the plate is flat
    EXPECT_NE(bent["adjustment"]["bow"][0], 0.0);
}

TEST(ToolCalibrate, MeasuredDotPositionsAreTaken) {
    const TemporaryFolder out;
    const std::string positions = (out / "positions.csv").string();
    const auto adjusted = [&] {
        return calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), (out / "o").string(),
                         {"--json", "--dot-positions", positions});
    };
    // The same places change nothing; a place that is wrong by half a unit makes its dot an outlier.
    writeFile(positions, "column,row,x,y\n1,1,10,10\n");
    const CommandResult same = adjusted();
    ASSERT_EQ(same.status, 0) << same.errors;
    EXPECT_EQ(Json::parse(same.output)["pair"], calibratedJson()["pair"]);
    writeFile(positions, "1,1,10.5,10\n");
    const CommandResult moved = adjusted();
    ASSERT_EQ(moved.status, 0) << moved.errors;
    EXPECT_GE(Json::parse(moved.output)["adjustment"]["outliers"], 6);
    writeFile(positions, "1.5,1,10,10\n");
    const CommandResult refused = adjusted();
    EXPECT_EQ(Json::parse(refused.output).at("status"), "failed");
    expectOneLine({refused.status, "", refused.errors}, 1, {positions, "whole number", "column,row,x,y"});
}

TEST(ToolCalibrate, ModelsArePassedOn) {
    const TemporaryFolder out;
    const CommandResult result = calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"),
                                           (out / "o").string(), {"--json", "--left-model", "1"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    EXPECT_EQ(json["left"]["model"], 1);
    EXPECT_EQ(json["right"]["model"], 0);
    EXPECT_EQ(json["right"]["theta"], 0.0);
    EXPECT_NE(json["left"]["theta"], 0.0);
}

// The truth's fy is the same number for every model; beta of a tilted sensor is fy cos(theta), here half a pixel less.
TEST(ToolCalibrate, ATiltedSensorIsComparedInTheTermsOfTheTruth) {
    const TemporaryFolder folder;
    Json rig = Json::parse(readFile(smallRig().parent_path() / "rig.json"));
    rig["left"]["theta"] = 2.0;
    writeFile(folder / "rig.json", rig.dump());
    const std::string views = (folder / "views").string();
    ASSERT_EQ(zelm({"simulate", (folder / "rig.json").string(), "-o", views}).status, 0);
    const CommandResult made = zelm({"calibrate", "--plate", views + "/plate.json", "--left", views + "/left_*.png",
                                     "--right", views + "/right_*.png", "--left-model", "1", "-o", views + "/o", "-q"});
    ASSERT_EQ(made.status, 0) << made.errors;
    const CommandResult compared = zelm({"compare", views + "/o/rig.zcal", views + "/truth.json", "--json"});
    ASSERT_EQ(compared.status, 0) << compared.errors;
    double x = 0.0;
    double y = 0.0;
    const Json comparisons = Json::parse(compared.output).at("comparisons");
    for (const Json& row : comparisons) {
        x = row["quantity"] == "left focal length x" ? row["difference"].get<double>() : x;
        y = row["quantity"] == "left focal length y" ? row["difference"].get<double>() : y;
    }
    // Both come from the same poses: what one is off by, so is the other, to the noise of the shape of a pixel.
    EXPECT_NEAR(x, y, 0.15);
    const Json info = Json::parse(zelm({"info", views + "/o/rig.zcal", "--json"}).output);
    EXPECT_NEAR(info["left"]["theta"], 2.0 * std::numbers::pi / 180.0, 1e-3);
}

TEST(ToolCalibrate, ParallelPairNeedsOneViewOnly) {
    const TemporaryFolder folder;
    writeFile(folder / "rig.json", R"({
        "plate": {"columns": [-4, 4], "rows": [-3, 3], "markerColumn": 2, "markerRow": 2},
        "left": {"width": 640, "height": 480, "projection": "parallel", "fx": 4.6, "fy": 4.6, "cx": 319.5, "cy": 239.5,
                 "k1": 0, "k2": 0},
        "right": {"width": 640, "height": 480, "projection": "parallel", "fx": 4.6, "fy": 4.6, "cx": 319.5, "cy": 239.5,
                 "k1": 0, "k2": 0},
        "rightFromLeft": {"rotation": [0, 12, 0], "translation": [0, 0, 0]},
        "optics": {"noiseSigma": 1.0},
        "views": [{"rotation": [4, 6, 3], "translation": [0, 0, 100]}]})");
    const std::string views = (folder / "views").string();
    const CommandResult made = zelm({"simulate", (folder / "rig.json").string(), "-o", views});
    ASSERT_EQ(made.status, 0) << made.errors;
    const CommandResult result =
        zelm({"calibrate", "--plate", views + "/plate.json", "--left", views + "/left_00.png", "--right",
              views + "/right_00.png", "--left-model", "2", "--right-model", "2", "-o", views + "/o", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    EXPECT_EQ(json["views"].size(), 1U);
    EXPECT_FALSE(json.contains("pair"));
    EXPECT_FALSE(json["adjustment"]["adjusted"]);
    EXPECT_NE(json["adjustment"]["reason"].get<std::string>().find("parallel"), std::string::npos);
    EXPECT_LT(json["reprojection"]["left"]["mean"], 0.03);
    EXPECT_LT(json["epipolar"]["rms"], 0.03);
    EXPECT_EQ(zelm({"info", views + "/o/rig.zcal"}).status, 0);
}

// One view of a parallel camera cannot tell a tilt from unequal scales.
TEST(ToolCalibrate, APlateTiltedAgainstAParallelCameraIsAWarning) {
    const TemporaryFolder folder;
    const std::string views = (folder / "views").string();
    const auto warnings = [&](const std::string& leftTilt, const std::string& rightTurn) {
        const std::string camera = R"({"width": 640, "height": 480, "projection": "parallel", "fx": 4.6, "fy": 4.6,
            "cx": 319.5, "cy": 239.5, "k1": 0, "k2": 0})";
        writeFile(folder / "rig.json",
                  R"({"plate": {"columns": [-4, 4], "rows": [-3, 3], "markerColumn": 2, "markerRow": 2},
                      "left": )" +
                      camera + R"(, "right": )" + camera + R"(, "rightFromLeft": {"rotation": [)" + rightTurn +
                      R"(, 0, 0], "translation": [0, 0, 0]}, "optics": {"noiseSigma": 1.0},
                      "views": [{"rotation": [0, )" +
                      leftTilt + R"(, 0], "translation": [0, 0, 100]}]})");
        EXPECT_EQ(zelm({"simulate", (folder / "rig.json").string(), "-o", views}).status, 0);
        const CommandResult made =
            zelm({"calibrate", "--plate", views + "/plate.json", "--left", views + "/left_00.png", "--right",
                  views + "/right_00.png", "--left-model", "2", "--right-model", "2", "-o", views + "/o", "-q"});
        EXPECT_EQ(made.status, 0) << made.errors;
        return made.errors;
    };
    EXPECT_EQ(warnings("0", "0.8"), "");
    const std::string one = warnings("0.8", "-13");
    EXPECT_EQ(one.find("left_00.png"), std::string::npos) << one;
    EXPECT_NE(one.find("right_00.png: the plate seems tilted by 13.0 degrees against the right camera"),
              std::string::npos)
        << one;
    const std::string both = warnings("13", "0");
    EXPECT_NE(both.find("left_00.png: the plate seems tilted by 13.0 degrees against the left camera"),
              std::string::npos)
        << both;
    EXPECT_NE(both.find("right_00.png"), std::string::npos) << both;
}

// The rig in samples/desk-rig was rendered outside this project. The bounds are what a user may rely on.
TEST(ToolSample, DeskRigIsCalibratedToItsTruth) {
    const TemporaryFolder out;
    const std::string sample = ZELM_SOURCE_DIR "/samples/desk-rig";
    const CommandResult result = zelm({"calibrate", "--plate", sample + "/truth.json", "--left", sample + "/left_*.png",
                                       "--right", sample + "/right_*.png", "-o", (out / "o").string(), "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    const Json truth = Json::parse(readFile(sample + "/truth.json"));
    ASSERT_EQ(json["views"].size(), 12U);
    for (const std::string side : {"left", "right"}) {
        const Json& camera = json[side];
        const Json& real = truth["cameras"][side];
        const double fx = real["fx"];
        const double fy = real["fy"];
        // Standard deviations: 0.04 px, 0.024 px and 0.00012.
        EXPECT_NEAR(camera["alpha"], fx, 0.12);
        EXPECT_NEAR(camera["beta"], fy, 0.12);
        EXPECT_NEAR(camera["cx"], real["cx"], 0.08);
        EXPECT_NEAR(camera["cy"], real["cy"], 0.08);
        EXPECT_NEAR(camera["k1"], real["k1"], 0.0004);
        EXPECT_LE(json["adjustment"][side]["residualRms"], 0.009);
        for (const Json& view : json["views"]) {
            EXPECT_EQ(view[side]["dots"], 143);
        }
    }
    const double baseline = truth["right_from_left"]["baseline"];
    EXPECT_NEAR(json["pair"]["baseline"], baseline, 0.007);  // standard deviation 0.002 mm
    const double angle = std::acos(truth["right_from_left"]["R"][8].get<double>()) * 180.0 / std::acos(-1.0);
    EXPECT_NEAR(json["pair"]["convergenceDegrees"], angle, 0.004);  // standard deviation 0.0013 degrees
    EXPECT_LE(json["epipolar"]["rms"], 0.013);
}

}  // namespace
