// zelm measure: features of points, relations between them, and every refusal.
#include <cmath>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

class MeasureFiles : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return (folder / name).string(); }

    MeasureFiles() {
        std::string csv = "id,X,Y,Z,noise_XX,noise_XY,noise_XZ,noise_YY,noise_YZ,noise_ZZ,status\n";
        const auto add = [&csv](const std::string& id, double x, double y, double z) {
            csv += id + "," + std::to_string(x) + "," + std::to_string(y) + "," + std::to_string(z) +
                   ",0.0001,0,0,0.0001,0,0.0004,ok\n";
        };
        add("1", 0, 0, 0);
        add("2", 30, 0, 0);
        add("3", 0, 30, 0);
        add("4", 30, 30, 0);
        for (int i = 0; i < 12; ++i) {
            const double angle = 0.5 * i;
            add("hole" + std::to_string(i + 1), 10 + 5 * std::cos(angle), 10 + 5 * std::sin(angle), 20);
        }
        add("a-b", 0, 0, 50);
        add("x,y", 0, 40, 50);
        csv += "lost,,,,,,,,,,no_dot\n";
        // A name with a comma stands in quotes.
        csv.replace(csv.find("x,y"), 3, "\"x,y\"");
        writeFile(file("points.csv"), csv);
    }

    CommandResult run(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"measure", file("points.csv")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
    void refused(const std::vector<std::string>& more, int status, const std::vector<std::string>& words) const {
        expectOneLine(run(more), status, words);
    }

    TemporaryFolder folder;
};

TEST_F(MeasureFiles, FeaturesAndRelationsAsAsked) {
    const CommandResult result = run({"--plane",
                                      "1,2,3,4",
                                      "--circle",
                                      "hole=hole1-hole12",
                                      "--line",
                                      "1,2",
                                      "--line",
                                      "edge=1,3",
                                      "--distance",
                                      "plane1:hole",
                                      "--distance",
                                      "plane1:pointa-b",
                                      "--distance",
                                      "1:4",
                                      "--angle",
                                      "line1:edge",
                                      "--angle",
                                      "plane1:hole",
                                      "--json",
                                      "-o",
                                      file("out/figures.csv")});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    const Json& relations = json["relations"];
    EXPECT_NEAR(relations[0]["distance"].get<double>(), 20.0, 1e-9);
    EXPECT_NEAR(relations[1]["distance"].get<double>(), 50.0, 1e-9);
    EXPECT_NEAR(relations[2]["distance"].get<double>(), 30.0 * std::sqrt(2.0), 1e-6);
    EXPECT_NEAR(relations[3]["degrees"].get<double>(), 90.0, 1e-9);
    EXPECT_EQ(relations[4]["status"], "small");
    EXPECT_FALSE(relations[4].contains("U95"));
    const Json& features = json["features"];
    const auto found =
        std::find_if(features.begin(), features.end(), [](const Json& f) { return f["name"] == "hole"; });
    ASSERT_NE(found, features.end());
    const Json& hole = *found;
    EXPECT_NEAR(hole["diameter"].get<double>(), 10.0, 1e-5);  // six decimals in the file
    EXPECT_NEAR(hole["location"][0].get<double>(), 10.0, 1e-5);
    EXPECT_GT(hole["U95"]["diameter"].get<double>(), 0.0);
    EXPECT_EQ(hole["points"], 12);
    EXPECT_EQ(hole["leftOut"].size(), 0U);
    // From a plane of four corners to a point over one of them: 0.02 along z for the point, and the plane's leverage.
    EXPECT_NEAR(relations[1]["sigma"].get<double>(), 0.02 * std::sqrt(1.0 + 3.0 / 4.0), 1e-6);
    const std::string csv = readFile(file("out/figures.csv"));
    EXPECT_NE(csv.find("hole,diameter,,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("plane1,flatness,"), std::string::npos) << csv;
    EXPECT_NE(csv.find("distance plane1:hole,distance,,"), std::string::npos) << csv;
}

TEST_F(MeasureFiles, AFileOfFeaturesSaysTheSame) {
    writeFile(file("features.json"), R"({
        "features": [{"name": "top", "kind": "plane", "points": [1, 2, "3-4"]},
                     {"name": "hole", "kind": "circle", "points": ["hole*"], "robust": true}],
        "relations": [{"name": "height", "kind": "distance", "between": ["top", "hole"]},
                      {"kind": "distance", "between": ["top", "x,y"]}]})");
    const CommandResult result = run({"--features", file("features.json"), "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    EXPECT_EQ(json["relations"][0]["name"], "height");
    EXPECT_NEAR(json["relations"][0]["distance"].get<double>(), 20.0, 1e-9);
    EXPECT_NEAR(json["relations"][1]["distance"].get<double>(), 50.0, 1e-9);
}

TEST_F(MeasureFiles, TheTableShowsFormAndWrongPoints) {
    std::string csv = readFile(file("points.csv"));
    const std::size_t at = csv.find("hole5,");
    csv.replace(csv.find(",20.000000", at), 10, ",23.000000");
    writeFile(file("points.csv"), csv);
    const CommandResult plain = run({"--circle", "hole=hole*"});
    ASSERT_EQ(plain.status, 0) << plain.errors;
    EXPECT_NE(plain.errors.find("most of all hole5"), std::string::npos) << plain.errors;
    const CommandResult robust = run({"--circle", "hole=hole*", "--robust"});
    ASSERT_EQ(robust.status, 0) << robust.errors;
    EXPECT_EQ(robust.errors, "");
    EXPECT_NE(robust.output.find("1 left out (hole5)"), std::string::npos) << robust.output;
    EXPECT_NE(robust.output.find("roundness"), std::string::npos);
    EXPECT_NE(robust.output.find("give it with --rig"), std::string::npos);
}

TEST_F(MeasureFiles, WhatCannotBeMeantIsRefused) {
    refused({}, 2, {"nothing to measure"});
    refused({"--plane", "1,2,9"}, 1, {"points.csv", "\"9\"", "--plane 1,2,9"});
    refused({"--plane", "1,2,lost"}, 1, {"\"lost\"", "no_dot", "leave it out"});
    refused({"--plane", "1,2,2"}, 1, {"\"2\"", "twice"});
    refused({"--plane", "1-9"}, 1, {"\"5\"", "--plane 1-9"});
    refused({"--plane", "1-90000"}, 1, {"1-90000", "range"});
    refused({"--plane", "bolt*"}, 1, {"bolt*"});
    refused({"--plane", "1,2"}, 1, {"plane1", "too few points"});
    refused({"--plane", "hole=1,2,3", "--line", "hole=1,2"}, 2, {"two features", "hole"});
    refused({"--distance", "1"}, 2, {"--distance 1", "FROM:TO"});
    refused({"--distance", "1:nowhere"}, 1, {"nowhere", "neither"});
    refused({"--distance", "1:1"}, 2, {"itself"});
    refused({"--angle", "1:2"}, 2, {"no direction"});
    refused({"--sphere", "1,2,3,4"}, 1, {"sphere1", "do not determine"});
    refused({"--plane", "1,2,3", "--rig", file("missing.zcal")}, 1, {"missing.zcal"});
    refused({"--plane", "1,2,3", "-o", file("points.csv")}, 2, {"points.csv"});
    writeFile(file("features.json"), R"({"features": [{"name": "a", "kind": "cone", "points": [1]}]})");
    refused({"--features", file("features.json")}, 2, {"features.json", "features[0].kind"});
    writeFile(file("points.csv"), "id,X,Y\n1,2,3\n");
    refused({"--plane", "1"}, 1, {"line 1", "X, Y, Z"});
    writeFile(file("points.csv"), "id,X,Y,Z,noise_XX\n1,2,3,4,5\n");
    refused({"--plane", "1"}, 1, {"line 1", "noise_XX"});
    writeFile(file("points.csv"), "1,2,3,4\n1,2,3,4\n");
    refused({"--plane", "1"}, 1, {"line 2", "\"1\""});
    writeFile(file("points.csv"), "1,2,3,four\n");
    refused({"--plane", "1"}, 1, {"line 1", "\"four\""});
}

// Points of the calibrated pair, with what its calibration makes of them.
TEST_F(MeasureFiles, ARigAddsItsPart) {
    const std::string rig = (calibratedSmallRig() / "rig.zcal").string();
    std::string pairs;
    for (int column = -3; column <= 3; ++column) {
        for (int row = -2; row <= 2; ++row) {
            const auto l = truePixel(0, "left", column, row);
            const auto r = truePixel(0, "right", column, row);
            pairs += "d" + std::to_string(column + 3) + std::to_string(row + 2);
            for (const double coordinate : {l[0], l[1], r[0], r[1]}) {
                pairs += "," + std::to_string(coordinate);
            }
            pairs += "\n";
        }
    }
    writeFile(file("pairs.csv"), pairs);
    ASSERT_EQ(zelm({"triangulate", rig, file("pairs.csv"), "-o", file("points.csv"), "--covariance"}).status, 0);
    const CommandResult length = zelm({"length", rig, file("pairs.csv"), "--between", "d00,d64", "--json"});
    const CommandResult result =
        run({"--rig", rig, "--plane", "plate=d*", "--distance", "d00:d64", "--json", "--distance", "plate:d00"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json json = Json::parse(result.output);
    const Json expected = Json::parse(length.output)["lengths"][0];
    const Json& found = json["relations"][0];
    EXPECT_NEAR(found["distance"].get<double>(), expected["length"].get<double>(), 1e-6);
    EXPECT_NEAR(found["noiseSigma"].get<double>() / expected["noiseSigma"].get<double>(), 1.0, 1e-3);
    EXPECT_NEAR(found["calibrationSigma"].get<double>() / expected["calibrationSigma"].get<double>(), 1.0, 1e-3);
    const Json& plate = json["features"][0];
    EXPECT_NEAR(plate["direction"][2].get<double>(), 1.0, 1e-4);
    EXPECT_GT(plate["calibrationSigma"]["location"][2].get<double>(), 0.0);
}

}  // namespace
