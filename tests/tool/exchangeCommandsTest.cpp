// Calibrations for other programs and from them, row-aligned images, and two calibrations beside each other, as a user
// has them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "measureFixtures.h"

namespace zelmtest {
namespace {

bool holds(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

// One line, and nothing else, on stderr; nothing made.
void expectRefused(const CommandResult& result, int status, const std::string& words) {
    EXPECT_EQ(result.status, status) << result.errors;
    EXPECT_TRUE(holds(result.errors, words)) << result.errors;
    EXPECT_EQ(splitLines(result.errors).size(), 1U) << result.errors;
    EXPECT_EQ(result.output, "");
}

class ExchangeCommands : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string rig = writePair(makePair(0, 0), folder / "rig.zcal");
    std::string inFolder(const std::string& name) const { return (folder / name).string(); }
};

TEST_F(ExchangeCommands, WhatIsExportedIsImported) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> formats{
        {"opencv", {"stereo.yml"}},    {"ros", {"left.yaml", "right.yaml"}},
        {"kalibr", {"camchain.yaml"}}, {"matlab", {"stereo.mat"}},
        {"numpy", {"stereo.npz"}},     {"mrcal", {"left.cameramodel", "right.cameramodel"}}};
    for (const auto& [word, files] : formats) {
        const CommandResult made = zelm({"export", rig, "--to", word, "-o", inFolder(word), "--json"});
        ASSERT_EQ(made.status, 0) << made.errors;
        EXPECT_EQ(Json::parse(made.output).at("files").size(), files.size());
        EXPECT_EQ(Json::parse(made.output).at("lost").at("views"), 2);
        EXPECT_TRUE(holds(made.errors, "the poses of 2 further views")) << made.errors;
        std::vector<std::string> call{"import"};
        for (const std::string& file : files) {
            call.push_back(inFolder(word) + "/" + file);
        }
        call.insert(call.end(), {"--from", word, "-o", inFolder(word + ".zcal")});
        const CommandResult back = zelm(call);
        ASSERT_EQ(back.status, 0) << back.errors;
        const CommandResult info = zelm({"info", inFolder(word + ".zcal")});
        EXPECT_TRUE(holds(info.output, "an imported pair") && holds(info.output, "1688.600")) << info.output;
        const CommandResult same = zelm({"compare", rig, inFolder(word + ".zcal"), "--depths", "300,600", "--json"});
        ASSERT_EQ(same.status, 0) << same.errors;
        EXPECT_LT(Json::parse(same.output).at("left").at("worst").get<double>(), 1e-8) << word;
        EXPECT_LT(Json::parse(same.output).at("volume").at("worst").get<double>(), 1e-6) << word;
    }
}

TEST_F(ExchangeCommands, RefusalsNameTheFileAndTheRemedy) {
    expectRefused(
        zelm({"export", writePair(makePair(2, 2), folder / "parallel.zcal"), "--to", "ros", "-o", inFolder("none")}), 1,
        "parallel camera");
    EXPECT_FALSE(fs::exists(folder / "none"));
    expectRefused(zelm({"export", rig, "--to", "excel"}), 2, "opencv");
    expectRefused(zelm({"export", rig, "--to", "ros", "--unit", "furlong"}), 2, "mm");
    expectRefused(zelm({"import", rig, "--from", "ros"}), 2, "two, of the left");
    writeFile(folder / "text.yml", "a: 1\n");
    expectRefused(zelm({"import", inFolder("text.yml"), "--from", "opencv", "-o", inFolder("none.zcal")}), 1,
                  "text.yml: no left.camera_matrix");
    expectRefused(zelm({"import", inFolder("text.yml"), "--from", "opencv", "--size", "12"}), 2, "width,height");
    EXPECT_FALSE(fs::exists(folder / "none.zcal"));
}

// The unit stands in the summary beside the calibration; --unit goes before it.
TEST_F(ExchangeCommands, LengthsInMetresAreOfTheCalibrationsUnit) {
    const auto exported = [&](const std::vector<std::string>& more) {
        std::vector<std::string> call{"export", rig, "--to", "ros", "-o", inFolder("ros"), "--json"};
        call.insert(call.end(), more.begin(), more.end());
        return zelm(call);
    };
    const auto metres = [](const CommandResult& run) {
        return Json::parse(run.output).at("metresPerUnit").get<double>();
    };
    const CommandResult unknown = exported({});
    ASSERT_EQ(unknown.status, 0) << unknown.errors;
    EXPECT_EQ(metres(unknown), 0.001);
    EXPECT_TRUE(holds(unknown.errors, "no rig.json of this calibration")) << unknown.errors;

    const Json info = Json::parse(zelm({"info", rig, "--json"}).output);
    const auto saveUnit = [&](const std::string& unit) {
        const Json summary{{"units", {{"length", unit}}}, {"left", info.at("left")}, {"right", info.at("right")}};
        writeFile(folder / "rig.json", summary.dump());
    };
    saveUnit("cm");
    const CommandResult told = exported({});
    ASSERT_EQ(told.status, 0) << told.errors;
    EXPECT_EQ(metres(told), 0.01);
    EXPECT_FALSE(holds(told.errors, "--unit")) << told.errors;
    const CommandResult other = exported({"--unit", "mm"});
    EXPECT_EQ(metres(other), 0.001);
    EXPECT_TRUE(holds(other.errors, "rig.json says that it counts in cm")) << other.errors;
    EXPECT_FALSE(holds(exported({"--unit", "cm"}).errors, "--unit"));
    saveUnit("cubit");
    expectRefused(zelm({"export", rig, "--to", "ros", "-o", inFolder("none")}), 1, "cubit");
    EXPECT_EQ(Json::parse(zelm({"export", rig, "--to", "numpy", "-o", inFolder("np"), "--json"}).output).at("lengths"),
              "cubit");
}

// What an imported pair cannot do is said; a covariance of the file's earlier calibration goes away.
TEST_F(ExchangeCommands, ImportedPairsSayWhatTheyLack) {
    ASSERT_EQ(zelm({"export", rig, "--to", "kalibr", "-o", inFolder("k"), "--quiet"}).status, 0);
    writeFile(folder / "in.zcov", "of another calibration");
    ASSERT_EQ(zelm({"import", inFolder("k/camchain.yaml"), "--from", "kalibr", "-o", inFolder("in.zcal")}).status, 0);
    EXPECT_FALSE(fs::exists(folder / "in.zcov"));
    writeFile(folder / "pairs.csv", "600,480,620,480\n700,500,710,500\n");
    expectRefused(zelm({"length", inFolder("in.zcal"), inFolder("pairs.csv")}), 1, "imported");
    writeFile(folder / "volume.json", R"({"volume": {"distance": 350, "size": [80, 60, 60]}})");
    expectRefused(
        zelm({"plan", inFolder("volume.json"), "--plate", sampleFile("truth.json"), "--rig", inFolder("in.zcal")}), 1,
        "imported");
    expectRefused(zelm({"compare", inFolder("in.zcal"), rig}), 1, "--depths");
}

TEST_F(ExchangeCommands, RowsAreWrittenTogetherOrNotAtAll) {
    const std::string left = sampleFile("scene_left.png");
    const std::string right = sampleFile("scene_right.png");
    const CommandResult made = zelm({"rectify", rig, left, right, "--rows", "--maps", "--depths", "300,600", "--size",
                                     "320,240", "-o", inFolder("rows"), "--json"});
    ASSERT_EQ(made.status, 0) << made.errors;
    Json json = Json::parse(made.output);
    EXPECT_EQ(json.at("status"), "done");
    json.erase("status");
    json.erase("warnings");
    EXPECT_EQ(json.at("width"), 320);
    EXPECT_EQ(json.at("numDisparities").get<int>() % 16, 0);
    EXPECT_EQ(Json::parse(readFile(folder / "rows" / "rows.json")), json);
    for (const char* name :
         {"scene_left_rows.png", "scene_right_rows.png", "rows.yml", "left_map.npy", "right_map.npy"}) {
        EXPECT_TRUE(fs::exists(folder / "rows" / name)) << name;
    }
    EXPECT_EQ(fs::file_size(folder / "rows" / "left_map.npy"), 128U + 320 * 240 * 8);
    expectRefused(zelm({"rectify", rig, left, right, "--maps", "-o", inFolder("none")}), 2, "--rows");
    expectRefused(zelm({"rectify", rig, left, right, "--rows", "--reference", "1,2", "-o", inFolder("none")}), 2,
                  "--reference");
    expectRefused(zelm({"rectify", rig, left, right, "--rows", "--size", "0,5", "-o", inFolder("none")}), 2, "--size");
    EXPECT_FALSE(fs::exists(folder / "none"));
}

}  // namespace
}  // namespace zelmtest
