// `zelm plate`: what it chooses and refuses, and what a plate's file holds beyond the grid: measured positions, its
// maker's words, its expansion.
#include <gtest/gtest.h>

#include <algorithm>

#include "toolFixtures.h"

namespace zelmtest {
namespace {

CommandResult plate(const TemporaryFolder& folder, std::vector<std::string> more) {
    std::vector<std::string> arguments{"plate", "-o", (folder / "out").string()};
    if (std::find(more.begin(), more.end(), "--format") == more.end()) {
        more.insert(more.end(), {"--format", "svg"});
    }
    arguments.insert(arguments.end(), more.begin(), more.end());
    return zelm(arguments);
}

Json made(const TemporaryFolder& folder) {
    return Json::parse(readFile(folder / "out" / "plate.json"));
}

TEST(PlateCommand, WithoutOptionsItFillsTheUsualPage) {
    const TemporaryFolder folder;
    const CommandResult result = plate(folder, {"--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    const Json json = Json::parse(result.output);
    EXPECT_TRUE(json["findings"].empty());
    EXPECT_EQ(json["page"]["width"], 297.0);
    EXPECT_EQ(json["units"], "mm");
    const Json design = made(folder);
    EXPECT_EQ(design, json["plate"]);
    EXPECT_EQ(design["dotPitchX"], 10.0);
    EXPECT_EQ(design["markerDistanceX"], design["markerDistanceY"]);
    EXPECT_GE(design["fieldWidth"].get<double>(), 220.0);  // of 297, less margins, crop marks and the quiet zone
    EXPECT_GE(design["fieldHeight"].get<double>(), 120.0);
    // It is a plate that can be read back.
    const CommandResult again = plate(folder, {(folder / "out" / "plate.json").string()});
    EXPECT_EQ(again.status, 2);  // its own input is not written over
    const TemporaryFolder other;
    ASSERT_EQ(plate(other, {(folder / "out" / "plate.json").string()}).status, 0);
    EXPECT_EQ(made(other), design);
    EXPECT_EQ(readFile(other / "out" / "plate.svg"), readFile(folder / "out" / "plate.svg"));
}

TEST(PlateCommand, ADescriptionIsKeptWithAllItHolds) {
    const TemporaryFolder folder;
    writeFile(folder / "dots.csv", "column,row,x,y,z\n1,1,10.001,9.998,0.02\n0,0,0,0,0\n");
    const Json full{
        {"fieldWidth", 60.0},  {"fieldHeight", 40.0},    {"dotPitchX", 10.0},       {"dotPitchY", 10.0},
        {"dotDiameter", 4.0},  {"markerDiameter", 7.0},  {"markerDistanceX", 20.0}, {"markerDistanceY", 20.0},
        {"markers", 3},        {"polarity", "bright"},   {"units", "mm"},           {"minDots", 20},
        {"minDotArea", 30},    {"minEdgeStrength", 5.0}, {"name", "No. 5"},         {"maker", "a workshop"},
        {"serial", "0815"},    {"date", "2026-05-04"},   {"certificate", "C-17"},   {"expansion", 8.5e-6},
        {"temperature", 20.0}, {"positions", "dots.csv"}};
    writeFile(folder / "plate.json", full.dump());
    const CommandResult result = plate(folder, {(folder / "plate.json").string(), "--page", "fit"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("measured positions"), std::string::npos) << result.output;
    Json expected = full;
    expected["positions"] = Json::parse("[[1, 1, 10.001, 9.998, 0.02], [0, 0, 0.0, 0.0]]");
    EXPECT_EQ(made(folder), expected);
}

TEST(PlateCommand, DesignsThatAreReadLessWellAreTold) {
    const TemporaryFolder folder;
    struct Case {
        std::vector<std::string> options;
        std::string words;
    };
    const std::vector<std::string> field{"--field", "120x100", "--pitch", "10"};
    for (const Case& c :
         {Case{{"--marker", "6"}, "1.5 times as wide"}, Case{{"--field", "100x100"}, "mirror image"},
          Case{{"--field", "20x40"}, "only 15 dots"},
          Case{{"--pixel-size", "0.005", "--focal-length", "8", "--distance", "1000"}, "3.2 pixels"},
          Case{{"--pixel-size", "0.002", "--focal-length", "50", "--distance", "500"}, "100 pixels"},
          Case{{"--pixel-size", "0.00345", "--focal-length", "16", "--distance", "350", "--image", "1280x1024"},
               "of the field"},
          Case{{"--pixel-size", "0.00345", "--focal-length", "16", "--distance", "900", "--image", "2448x2048"},
               "takes only"},
          Case{{"--field", "110x100"}, "becomes 100 x 100"}}) {
        std::vector<std::string> options = c.options;
        if (std::find(options.begin(), options.end(), "--field") == options.end()) {
            options.insert(options.end(), field.begin(), field.end());
        } else {
            options.insert(options.end(), {"--pitch", "10"});
        }
        const CommandResult result = plate(folder, options);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_NE(result.errors.find("zelm: warning: "), std::string::npos) << c.words;
        EXPECT_NE(result.errors.find(c.words), std::string::npos) << c.words << ": " << result.errors;
    }
}

TEST(PlateCommand, DesignsThatAreNotReadAreRefused) {
    const TemporaryFolder folder;
    struct Case {
        std::vector<std::string> options;
        int status;
        std::vector<std::string> words;
    };
    for (const Case& c :
         {Case{{"--field", "120x100", "--marker", "5.5"}, 1, {"1.38 times", "cannot be told"}},
          Case{{"--field", "120x100", "--dot", "7", "--marker", "14"}, 2, {"markerDiameter 14", "overlap"}},
          Case{{"--field", "120x100", "--markers-at", "35,30"}, 2, {"markerDistanceX 35", "no multiple"}},
          Case{{"--field", "120x100", "--markers-at", "70,30"}, 2, {"markerDistanceX 70", "outside the dot field"}},
          Case{{"--field", "500x400"}, 1, {"A4", "--page", "fit"}}, Case{{"--field", "120"}, 2, {"--field", "120x100"}},
          Case{{"--field", "120x100", "--units", "furlong"}, 2, {"furlong", "inch"}},
          Case{{"--page", "B9"}, 2, {"B9", "WIDTHxHEIGHT"}}, Case{{"--format", "pdf,gif"}, 2, {"pdf,gif", "dxf"}},
          Case{{"--distance", "400"}, 2, {"--pixel-size", "all three"}},
          Case{{"--field", "120x100", "--pixel-size", "0.01", "--focal-length", "8", "--distance", "2000"},
               1,
               {"minDotArea"}},
          Case{{"--field", "300x200", "--page", "fit", "--dpi", "10000", "--format", "png"}, 1, {"--dpi"}},
          Case{{(folder / "none.json").string()}, 1, {"none.json"}}}) {
        std::vector<std::string> options = c.options;
        if (std::find(options.begin(), options.end(), "--field") != options.end()) {
            options.insert(options.end(), {"--pitch", "10"});
        }
        expectOneLine(plate(folder, options), c.status, c.words);
        EXPECT_FALSE(fs::exists(folder / "out")) << c.words.front();
    }
}

TEST(PlateCommand, AStationJudgesAsItsNumbersDo) {
    const TemporaryFolder folder;
    writeFile(folder / "station.json", R"({"left": {"width": 800, "height": 700, "fx": 2300}, "baseline": 200,
        "volume": {"distance": 600, "size": [200, 150, 100]}})");
    const CommandResult result = plate(folder, {"--field", "120x100", "--pitch", "10", "--dot", "2", "--camera",
                                                (folder / "station.json").string(), "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json findings = Json::parse(result.output)["findings"];
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings[0]["flaw"], "dotsSmall");
    EXPECT_EQ(findings[0]["camera"], "the left camera");
    EXPECT_NEAR(findings[0]["value"].get<double>(), 2300.0 / 650.0, 1e-9);  // a radius of 1 at the far end
}

// The small rig's plate with more fields.
std::string plateWith(const TemporaryFolder& folder, const Json& more) {
    Json json = Json::parse(readFile(smallRig() / "plate.json"));
    json.update(more);
    writeFile(folder / "plate.json", json.dump());
    return (folder / "plate.json").string();
}

CommandResult calibrateWith(const std::string& plateFile, const fs::path& out, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments{"calibrate",
                                       "--plate",
                                       plateFile,
                                       "--left",
                                       smallRigFile("left_*.pgm"),
                                       "--right",
                                       smallRigFile("right_*.pgm"),
                                       "-o",
                                       out.string(),
                                       "--json",
                                       "--dots",
                                       "reader"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return zelm(arguments);
}

TEST(PlateFile, AWarmPlateIsLargerByItsExpansion) {
    const TemporaryFolder folder;
    const std::string file = plateWith(folder, {{"expansion", 24e-6}, {"temperature", 20.0}, {"serial", "0815"}});
    const CommandResult cold = calibrateWith(file, folder / "cold");
    const CommandResult warm = calibrateWith(file, folder / "warm", {"--temperature", "60"});
    ASSERT_EQ(cold.status, 0) << cold.errors;
    ASSERT_EQ(warm.status, 0) << warm.errors;
    const Json a = Json::parse(cold.output);
    const Json b = Json::parse(warm.output);
    constexpr double kGrowth = 1.0 + 24e-6 * 40.0;
    EXPECT_EQ(a["plate"]["growth"], 1.0);
    EXPECT_EQ(a["plate"]["serial"], "0815");
    EXPECT_NEAR(b["plate"]["growth"].get<double>(), kGrowth, 1e-15);
    EXPECT_EQ(b["plate"]["temperature"], 60.0);
    // Of the same images a plate that is larger all over makes a larger baseline, and the same cameras.
    EXPECT_NEAR(b["pair"]["baseline"].get<double>() / a["pair"]["baseline"].get<double>(), kGrowth, 1e-8);
    EXPECT_NEAR(b["left"]["alpha"].get<double>(), a["left"]["alpha"].get<double>(), 1e-4);
    const CommandResult words =
        zelm({"calibrate", "--plate", file, "--left", smallRigFile("left_*.pgm"), "--right",
              smallRigFile("right_*.pgm"), "-o", (folder / "words").string(), "--no-adjust", "--temperature", "60"});
    EXPECT_NE(words.output.find("plate at 60 deg C: its lengths are +960.0 ppm"), std::string::npos) << words.output;
    expectOneLine(calibrateWith(smallRigFile("plate.json"), folder / "none", {"--temperature", "60"}), 2,
                  {"plate.json", "expansion"});
}

TEST(PlateFile, PositionsOfTheFileDoWhatTheOptionDoes) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "sub");
    writeFile(folder / "dots.csv", "column,row,x,y\n1,1,10.2,10\n2,1,20,10.3\n-3,2,-30.2,20\n");
    writeFile(folder / "other.csv", "1,1,10,10,0\n");
    const auto baseline = [](const CommandResult& result) {
        EXPECT_EQ(result.status, 0) << result.errors;
        return result.status == 0 ? Json::parse(result.output)["pair"]["baseline"].get<double>() : 0.0;
    };
    const double plain = baseline(calibrateWith(smallRigFile("plate.json"), folder / "a"));
    const double byOption = baseline(
        calibrateWith(smallRigFile("plate.json"), folder / "b", {"--dot-positions", (folder / "dots.csv").string()}));
    EXPECT_NE(plain, byOption);
    // A relative name is looked for beside the plate's file, whatever the current folder.
    EXPECT_EQ(baseline(calibrateWith(plateWith(folder, {{"positions", "dots.csv"}}), folder / "c")), byOption);
    const Json rows = Json::parse("[[1, 1, 10.2, 10], [2, 1, 20, 10.3], [-3, 2, -30.2, 20.0, 0.0]]");
    const std::string inlined = plateWith(folder, {{"positions", rows}});
    EXPECT_EQ(baseline(calibrateWith(inlined, folder / "d")), byOption);
    // The option still wins.
    EXPECT_EQ(baseline(calibrateWith(inlined, folder / "e", {"--dot-positions", (folder / "other.csv").string()})),
              plain);
}

TEST(PlateFile, WhatCannotBeMeantIsRefusedByName) {
    const TemporaryFolder folder;
    struct Case {
        Json more;
        int status;
        std::vector<std::string> words;
    };
    writeFile(folder / "twice.csv", "1,1,10,10\n1,1,10,10\n");
    for (const Case& c :
         {Case{{{"positions", 7}}, 2, {"plate.json", "positions", "CSV"}},
          Case{{{"positions", "none.csv"}}, 1, {"none.csv"}},
          Case{{{"positions", "twice.csv"}}, 1, {"twice.csv", "1/1", "leave one out"}},
          Case{Json::parse(R"({"positions": [[1, 1, 10.0]]})"), 2, {"positions", "row 1"}},
          Case{Json::parse(R"({"positions": [[1, 1, 10, 10], [1.5, 1, 10, 10]]})"), 2, {"positions", "row 2"}},
          Case{Json::parse(R"({"positions": [[1, 1, 30, 10]]})"), 1, {"dot 1/1", "30, 10", "frame"}},
          Case{{{"expansion", 8.5e-6}}, 2, {"temperature", "missing"}},
          Case{{{"expansion", 8.5}, {"temperature", 20}}, 2, {"expansion", "per kelvin"}},
          Case{{{"temperature", "warm"}}, 2, {"temperature", "number"}},
          Case{{{"maker", "two\nlines"}}, 2, {"maker", "one line"}}, Case{{{"serial", 815}}, 2, {"serial", "quotes"}},
          Case{{{"units", 1}}, 2, {"units", "quotes"}}}) {
        expectOneLine(calibrateWith(plateWith(folder, c.more), folder / "out"), c.status, c.words);
        EXPECT_FALSE(fs::exists(folder / "out"));
    }
}

// Commands that have a rig alone take the unit from the summary beside it, if that is the rig's own.
TEST(PlateFile, TheUnitGoesWithTheRig) {
    const TemporaryFolder folder;
    const std::string file = plateWith(folder, {{"units", "cm"}});
    ASSERT_EQ(calibrateWith(file, folder / "out").status, 0);
    const std::string rig = (folder / "out" / "rig.zcal").string();
    const auto info = [&rig] { return zelm({"info", rig}).output; };
    EXPECT_NE(info().find(" cm, convergence"), std::string::npos) << info();
    EXPECT_EQ(Json::parse(zelm({"info", rig, "--json"}).output)["units"], "cm");
    std::string rows;
    for (const int column : {-1, 1}) {
        rows += column < 0 ? "a" : "b";
        for (const char* side : {"left", "right"}) {
            for (const double coordinate : truePixel(0, side, column, 0)) {
                rows += "," + std::to_string(coordinate);
            }
        }
        rows += "\n";
    }
    writeFile(folder / "pairs.csv", rows);
    const std::string pairs = (folder / "pairs.csv").string();
    const CommandResult points =
        zelm({"triangulate", rig, pairs, "-o", (folder / "p.csv").string(), "--ply", (folder / "p.ply").string()});
    ASSERT_EQ(points.status, 0) << points.errors;
    EXPECT_NE(points.output.find("triangulated, in cm"), std::string::npos) << points.output;
    EXPECT_NE(readFile(folder / "p.ply").find("comment units cm\n"), std::string::npos);
    EXPECT_NE(zelm({"length", rig, pairs}).output.find("lengths in cm"), std::string::npos);
    EXPECT_EQ(Json::parse(zelm({"length", rig, pairs, "--json"}).output)["units"], "cm");
    // A summary of another calibration, or a broken one, tells nothing.
    const std::string summary = readFile(folder / "out" / "rig.json");
    Json other = Json::parse(summary);
    other["left"]["alpha"] = other["left"]["alpha"].get<double>() + 1e-9;
    for (const std::string& text : {other.dump(), std::string("{"), std::string("[]")}) {
        writeFile(folder / "out" / "rig.json", text);
        EXPECT_NE(info().find(" plate units, convergence"), std::string::npos) << text.substr(0, 40);
    }
    fs::remove(folder / "out" / "rig.json");
    EXPECT_NE(info().find(" plate units, convergence"), std::string::npos);
}

}  // namespace
}  // namespace zelmtest
