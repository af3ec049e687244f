// zelm calibrate with points of other targets, and with one camera alone: results against truth, and every refusal.
#include <cmath>
#include <sstream>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

// The dots of the small rig as a detector would give them: true pixels of their centres.
class PointFiles : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return (folder / name).string(); }

    // Rows of the sides that are asked for; `change` may alter or drop a row.
    template <class Change>
    std::string write(const std::string& name, const std::vector<std::string>& sides, Change change) const {
        const Json truth = Json::parse(readFile(smallRig() / "truth.json"));
        std::ostringstream csv;
        csv.precision(12);
        csv << "view,camera,id,x,y,X,Y\n";
        for (std::size_t v = 0; v < truth["views"].size(); ++v) {
            for (const std::string& side : sides) {
                for (const Json& dot : truth["views"][v][side]["dots"]) {
                    std::ostringstream row;
                    row.precision(12);
                    const int column = dot["grid"][0];
                    const int line = dot["grid"][1];
                    row << 'v' << v << ',' << side << ',' << column << '/' << line << ',' << dot["pixel"][0] << ','
                        << dot["pixel"][1] << ',' << 10 * column << ',' << 10 * line;
                    csv << change(row.str(), v, side);
                }
            }
        }
        writeFile(file(name), csv.str());
        return file(name);
    }
    std::string write(const std::string& name, const std::vector<std::string>& sides) const {
        return write(name, sides, [](const std::string& row, std::size_t, const std::string&) { return row + "\n"; });
    }

    CommandResult run(const std::string& csv, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{"calibrate", "--points", csv, "-o", file("out")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
    CommandResult runPair(const std::string& csv, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> all{"--left-size", "640x480", "--right-size", "640x480"};
        all.insert(all.end(), more.begin(), more.end());
        return run(csv, all);
    }
    void expectNothing() const { EXPECT_FALSE(fs::exists(file("out"))); }

    TemporaryFolder folder;
};

void expectCamera(const Json& camera, const std::string& side, double pixels) {
    const Json truth = Json::parse(readFile(smallRig() / "truth.json"))["cameras"][side];
    EXPECT_NEAR(camera["A"][0][0].get<double>(), side == "left" ? 844.0 : 847.0, pixels);
    EXPECT_NEAR(camera["A"][1][1].get<double>(), side == "left" ? 843.3 : 846.2, pixels);
    EXPECT_NEAR(camera["A"][0][2].get<double>(), side == "left" ? 321.0 : 318.5, pixels);
    EXPECT_NEAR(camera["A"][1][2].get<double>(), side == "left" ? 238.5 : 241.0, pixels);
    EXPECT_NEAR(camera["k1"].get<double>(), side == "left" ? -0.1 : -0.09, 0.001 * pixels);
}

TEST_F(PointFiles, TruePointsGiveTheTrueCameras) {
    const CommandResult result = runPair(write("points.csv", {"left", "right"}), {"--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    expectCamera(json["left"], "left", 1e-3);  // pixels in truth.json have five decimals or more
    expectCamera(json["right"], "right", 1e-3);
    EXPECT_NEAR(json["pair"]["baseline"].get<double>(), std::hypot(60.0, 1.2, 6.0), 1e-3);
    EXPECT_EQ(json["views"].size(), 6U);
    EXPECT_EQ(json["points"], file("points.csv"));
    EXPECT_LT(json["reprojection"]["left"]["rms"].get<double>(), 1e-3);
    EXPECT_LT(json["epipolar"]["rms"].get<double>(), 1e-3);
    EXPECT_EQ(json["adjustment"]["dots"], "given");
    for (const char* name : {"rig.zcal", "rig.zcov", "rig.json", "report.html"}) {
        EXPECT_TRUE(fs::exists(file("out/") + name)) << name;
    }
    // What was written measures: the rig's file is like any other.
    EXPECT_EQ(zelm({"info", file("out/rig.zcal")}).status, 0);
}

TEST_F(PointFiles, OneCameraAloneNeedsNoColumnOfCameras) {
    const std::string csv = write("points.csv", {"left"}, [](const std::string& row, std::size_t, const std::string&) {
        std::string bare = row;
        return bare.erase(bare.find(",left"), 5) + "\n";
    });
    std::string text = readFile(csv);
    text.replace(0, text.find('\n'), "view,id,x,y,X,Y");
    writeFile(csv, text);
    const CommandResult result = run(csv, {"--left-size", "640x480", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    expectCamera(json["camera"], "left", 1e-3);
    EXPECT_EQ(json["camera"]["poses"].size(), 6U);
    EXPECT_GT(json["deviations"]["fx"].get<double>(), 0.0);
    EXPECT_EQ(json["covariance"]["lowerTriangle"].size(), 28U);
    EXPECT_TRUE(fs::exists(file("out/camera.json")));
    EXPECT_FALSE(fs::exists(file("out/rig.zcal")));
    const CommandResult right = run(write("right.csv", {"right"}), {"--right-size", "640x480", "--json"});
    ASSERT_EQ(right.status, 0) << right.errors;
    expectCamera(Json::parse(right.output)["camera"], "right", 1e-3);
}

TEST_F(PointFiles, OneWrongPointIsLeftOut) {
    int rows = 0;
    const std::string csv =
        write("points.csv", {"left", "right"}, [&](const std::string& row, std::size_t v, const std::string& side) {
            if (v == 2 && side == "left" && ++rows == 20) {
                return "v2,left,odd,320,240,10,10\n" + row + "\n";
            }
            return row + "\n";
        });
    const CommandResult result = runPair(csv, {"--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    EXPECT_EQ(json["adjustment"]["outliers"], 1);
    expectCamera(json["left"], "left", 1e-3);
}

TEST_F(PointFiles, BadRowsAreNamedByFileAndLine) {
    const auto with = [&](const std::string& line) {
        std::string text = readFile(write("points.csv", {"left", "right"}));
        const std::size_t second = text.find('\n', text.find('\n') + 1) + 1;
        text.insert(second, line + "\n");
        writeFile(file("points.csv"), text);
        return file("points.csv");
    };
    const auto refused = [&](const std::string& line, const std::vector<std::string>& words) {
        std::vector<std::string> all{"points.csv", "line 3"};
        all.insert(all.end(), words.begin(), words.end());
        expectOneLine(runPair(with(line)), 1, all);
        expectNothing();
    };
    refused("v0,left,a,1,2,3", {"6 fields, but 7"});
    refused("v0,middle,a,1,2,3,4", {"\"middle\"", "left or right"});
    refused("v0,left,a,one,2,3,4", {"x is \"one\""});
    refused("v0,left,a,1,2,3,nan", {"Y is \"nan\""});
    refused("v0,left,,1,2,3,4", {"id is empty"});
    refused("v0,left,a,640,2,3,4", {"(640, 2)", "640 x 480"});
    refused("v0,left,-4/-3,1,2,-40,-30", {"-4/-3", "line 2"});
    refused("v9,left,-4/-3,1,2,-40,-29", {"-4/-3", "another X, Y or Z", "line 2"});
    writeFile(file("points.csv"), "view,camera,id,x,y,X\nv0,left,a,1,2,3\n");
    expectOneLine(runPair(file("points.csv")), 1, {"line 1", "no column Y"});
    writeFile(file("points.csv"), "view,camera,id,x,y,X,Y\n");
    expectOneLine(runPair(file("points.csv")), 1, {"points.csv: holds no points"});
    expectNothing();
}

TEST_F(PointFiles, ViewsThatTellNothingAreSkippedByName) {
    int kept = 0;
    const std::string csv =
        write("points.csv", {"left", "right"}, [&](const std::string& row, std::size_t v, const std::string&) {
            return v == 1 && ++kept > 4 ? std::string() : row + "\n";
        });
    const CommandResult result = runPair(csv, {"--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.errors.find("view v1: no image of it has 6 points"), std::string::npos) << result.errors;
    EXPECT_EQ(Json::parse(result.output)["views"].size(), 5U);
    fs::remove_all(file("out"));
    expectOneLine(runPair(csv, {"--strict"}), 1, {"points.csv", "view v1", "6 points"});
    expectNothing();
}

TEST_F(PointFiles, WrongUsageIsToldApart) {
    const std::string csv = write("points.csv", {"left", "right"});
    expectOneLine(run(csv), 2, {"--left-size"});
    expectOneLine(run(csv, {"--left-size", "640x480"}), 2, {"right camera", "--right-size"});
    expectOneLine(run(write("left.csv", {"left"}), {"--left-size", "640x480", "--right-size", "640x480"}), 1,
                  {"no points of the right camera"});
    for (const char* size : {"640", "640x", "0x480", "640x480.5", "640 x 480px", "99999x480"}) {
        expectOneLine(run(csv, {"--left-size", size, "--right-size", "640x480"}), 2, {"--left-size", "1280x960"});
    }
    expectOneLine(runPair(csv, {"--left", "a.png"}), 2, {"--points", "--left"});
    expectOneLine(runPair(csv, {"--no-adjust"}), 2, {"--no-adjust"});
    expectOneLine(runPair(csv, {"--left-model", "2"}), 2, {"parallel"});
    expectOneLine(zelm({"calibrate", "--plate", smallRigFile("plate.json")}), 2, {"--left is required"});
    expectOneLine(zelm({"calibrate", "--left", "a.png"}), 2, {"--plate is required"});
    expectOneLine(zelm({"calibrate", "--plate", "p", "--left", "a", "--left-size", "1x1"}), 2, {"--left-size"});
    expectOneLine(run(file("missing.csv"), {"--left-size", "640x480"}), 1, {"missing.csv"});
    expectNothing();
}

class OneCamera : public ::testing::Test {
protected:
    CommandResult run(const std::vector<std::string>& more = {}, const std::string& images = "left_*.pgm") const {
        std::vector<std::string> arguments{"calibrate",          "--plate", smallRigFile("plate.json"), "--left",
                                           smallRigFile(images), "-o",      (folder / "out").string()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
    TemporaryFolder folder;
};

TEST_F(OneCamera, ImagesOfAPlateGiveItWithDeviations) {
    const CommandResult result = run({"--json", "--overlays"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    const Json& camera = json["camera"];
    const Json& deviations = json["deviations"];
    const std::vector<std::tuple<const char*, double, double>> expected{
        {"fx", camera["A"][0][0], 844.0}, {"fy", camera["A"][1][1], 843.3}, {"cx", camera["A"][0][2], 321.0},
        {"cy", camera["A"][1][2], 238.5}, {"k1", camera["k1"], -0.1},       {"skew", camera["A"][0][1], 0.0}};
    for (const auto& [name, value, truth] : expected) {
        const double deviation = deviations[name];
        EXPECT_GT(deviation, 0.0) << name;
        EXPECT_NEAR(value, truth, 4.0 * deviation) << name;  // chance: one in 16,000
    }
    EXPECT_EQ(json["views"].size(), 6U);
    EXPECT_EQ(json["adjustment"]["dots"], "refined");
    EXPECT_EQ(json["adjustment"]["checks"].size(), 6U);  // halves, lens, bow, pitch and both diameters
    EXPECT_TRUE(fs::exists(folder / "out/camera.json"));
    EXPECT_TRUE(fs::exists(folder / "out/report.html"));
    EXPECT_TRUE(fs::exists(folder / "out/overlays/view05.png"));
    EXPECT_FALSE(fs::exists(folder / "out/rig.zcal"));
}

TEST_F(OneCamera, TheTextShowsEveryView) {
    const CommandResult result = run({"--no-skew"});
    ASSERT_EQ(result.status, 0) << result.errors;
    for (const char* word : {"left_05.pgm", "focal length, x, px", "held", "self-checks", "camera.json"}) {
        EXPECT_NE(result.output.find(word), std::string::npos) << word << "\n" << result.output;
    }
}

TEST_F(OneCamera, WhatCannotBeDoneIsRefused) {
    expectOneLine(run({"--no-adjust"}), 2, {"--no-adjust", "--right"});
    expectOneLine(run({"--left-model", "2"}), 2, {"--left-model 2", "--right"});
    expectOneLine(run({"--right-model", "1"}), 2, {"--right"});
    expectOneLine(run({}, "left_0[01].pgm"), 2, {"2 views", "at least 3"});
    EXPECT_FALSE(fs::exists(folder / "out"));
}

}  // namespace
