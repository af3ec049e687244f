// Bad input: each case gives one line that names the file and what to do, its exit code, and leaves no files behind.
#include <sys/stat.h>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

class ToolBadInput : public testing::Test {
protected:
    std::string at(const std::string& name) const { return (folder / name).string(); }

    std::string write(const std::string& name, const std::string& bytes) const {
        writeFile(folder / name, bytes);
        return at(name);
    }

    CommandResult detect(const std::string& image, const std::string& plate,
                         const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments{"detect", image, "--plate", plate, "-o", at("out")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }

    CommandResult detect(const std::string& image) const { return detect(image, smallRigFile("plate.json")); }

    // A run that failed made no folder, and nothing in it, but for pictures of images that could not be read.
    void TearDown() override {
        if (fs::exists(folder / "out")) {
            EXPECT_EQ(std::distance(fs::directory_iterator(folder / "out"), {}), 1);
            for (const auto& entry : fs::directory_iterator(folder / "out" / "failed")) {
                EXPECT_TRUE(entry.path().filename().string().ends_with("_failed.png")) << entry.path();
            }
        }
    }

    // Views of the small rig under the names left_0.pgm, right_0.pgm, ...
    void copyViews(int count) const {
        for (int view = 0; view < count; ++view) {
            for (const std::string side : {"left", "right"}) {
                fs::copy_file(smallRig() / (side + "_0" + std::to_string(view) + ".pgm"), at(name(side, view)),
                              fs::copy_options::overwrite_existing);
            }
        }
    }

    static std::string name(const std::string& side, int view) { return side + "_" + std::to_string(view) + ".pgm"; }

    CommandResult calibrateHere(const std::vector<std::string>& more = {}) const {
        return calibrate(at("left_*.pgm"), at("right_*.pgm"), at("out"), more);
    }

    TemporaryFolder folder;
};

TEST_F(ToolBadInput, MissingImage) {
    expectOneLine(detect(at("nowhere.png")), 1, {at("nowhere.png"), "No such file"});
}

TEST_F(ToolBadInput, TruncatedImage) {
    const std::string whole = readFile(smallRig() / "left_00.pgm");
    const std::string image = write("half.pgm", whole.substr(0, whole.size() / 2));
    expectOneLine(detect(image), 1, {image, "not a complete", "again"});
}

TEST_F(ToolBadInput, EmptyImage) {
    const std::string image = write("empty.png", "");
    expectOneLine(detect(image), 1, {image, "empty"});
}

TEST_F(ToolBadInput, FileThatIsNoImage) {
    const std::string image = write("letter.png", "Dear reader,\n");
    expectOneLine(detect(image), 1, {image, "not an image", "PNG"});
}

TEST_F(ToolBadInput, FolderInPlaceOfAnImage) {
    expectOneLine(detect(smallRig().string()), 1, {smallRig().string(), "folder"});
}

TEST_F(ToolBadInput, ImageWithoutAPlate) {
    const std::string image = write("flat.pgm", pgmBytes({640, 480, std::string(640 * 480, '\x40')}));
    expectOneLine(detect(image), 1, {image, "no plate found"});
}

TEST_F(ToolBadInput, DotsOfTheOtherPolarity) {
    const std::string plate = write("bright.json", [] {
        Json json = Json::parse(readFile(smallRig() / "plate.json"));
        json["polarity"] = "bright";
        return json.dump();
    }());
    expectOneLine(
        detect(smallRigFile("left_00.pgm"), plate), 1,
        {"left_00.pgm", "63 dark dots found, but no bright ones", "set \"polarity\" of the plate to \"dark\""});
}

// What a 12-bit camera gives in files of 16 bits.
TEST_F(ToolBadInput, NearlyBlackPictures) {
    Pgm pgm = readPgmFile(smallRig() / "left_00.pgm");
    for (char& level : pgm.pixels) {
        level = static_cast<char>(static_cast<unsigned char>(level) / 16);
    }
    const std::string image = write("dark.pgm", pgmBytes(pgm));
    expectOneLine(detect(image), 1, {image, "nearly black, with levels up to 12 of 255", "10 or 12 bits"});
}

TEST_F(ToolBadInput, HiddenMarker) {
    const std::string image = write("hidden.pgm", withoutMarker(0, "left"));
    expectOneLine(detect(image), 1, {image, "only 2 of 3 markers found", "hidden"});
}

TEST_F(ToolBadInput, TooFewDots) {
    const std::string image = smallRigFile("left_00.pgm");
    expectOneLine(detect(image, smallRigFile("plate.json"), {"--min-dots", "64"}), 1, {image, "fewer than 64"});
}

TEST_F(ToolBadInput, RegionOutsideTheImage) {
    const std::string image = smallRigFile("left_00.pgm");
    for (const char* region : {"0,0,641,480", "-1,0,100,100", "600,400,2147483647,10", "0,0,0,5"}) {
        expectOneLine(detect(image, smallRigFile("plate.json"), {"--region=" + std::string(region)}), 2,
                      {image, "region"});
    }
}

TEST_F(ToolBadInput, EveryMissingOrNonPositiveFieldOfAPlateIsNamed) {
    const Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    const std::string image = smallRigFile("left_00.pgm");
    for (const char* field : {"dotPitchX", "dotPitchY", "dotDiameter", "markerDiameter", "fieldWidth", "fieldHeight",
                              "markerDistanceX", "markerDistanceY"}) {
        Json missing = plate;
        missing.erase(field);
        const std::string file = write("plate.json", missing.dump());
        expectOneLine(detect(image, file), 2, {file, field, "missing"});
        for (const Json& value : {Json(0), Json(-1.5), Json("ten"), Json(nullptr)}) {
            Json bad = plate;
            bad[field] = value;
            write("plate.json", bad.dump());
            expectOneLine(detect(image, file), 2, {file, field});
        }
    }
}

TEST_F(ToolBadInput, OtherFaultsOfAPlateAreNamed) {
    const Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    const std::string image = smallRigFile("left_00.pgm");
    const std::vector<std::pair<const char*, Json>> faults{
        {"polarity", "gray"}, {"markers", 0},        {"markers", 2.5},      {"minDots", -1},   {"minEdgeStrength", 0},
        {"minDotArea", "x"},  {"markerDiameter", 4}, {"dotDiameter", 20.0}, {"dotPichX", 10.0}};
    for (const auto& [field, value] : faults) {
        Json bad = plate;
        bad[field] = value;
        const std::string file = write("plate.json", bad.dump());
        expectOneLine(detect(image, file), 2, {file, field});
    }
    expectOneLine(detect(image, write("half.json", plate.dump().substr(0, 40))), 2, {at("half.json"), "JSON"});
    expectOneLine(detect(image, write("list.json", "[1, 2]")), 2, {at("list.json"), "object"});
    expectOneLine(detect(image, at("none.json")), 1, {at("none.json"), "No such file"});
}

TEST_F(ToolBadInput, OutputFolderThatCannotBeMade) {
    const std::string file = write("file", "x");
    const CommandResult result =
        zelm({"detect", smallRigFile("left_00.pgm"), "--plate", smallRigFile("plate.json"), "-o", file + "/out"});
    expectOneLine(result, 2, {file + "/out", "-o"});
    expectOneLine(calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), file + "/out"), 2,
                  {file + "/out", "-o"});
}

TEST_F(ToolBadInput, OutputFolderThatCannotBeWritten) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root may write everywhere";
    }
    fs::create_directory(folder / "locked");
    ::chmod(at("locked").c_str(), 0555);
    expectOneLine(calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), at("locked")), 2,
                  {at("locked"), "-o"});
}

TEST_F(ToolBadInput, SetsOfDifferentLength) {
    copyViews(4);
    fs::remove(at("right_3.pgm"));
    expectOneLine(calibrateHere(), 2, {"4 left", "3 right", at("left_3.pgm"), "every view"});
}

TEST_F(ToolBadInput, FewerThanThreeViews) {
    copyViews(2);
    expectOneLine(calibrateHere(), 2, {"2 views", at("left_1.pgm"), "at least 3"});
}

TEST_F(ToolBadInput, FewerThanThreeReadableViews) {
    copyViews(3);
    write("right_1.pgm", "P5\n640 480\n255\nshort");
    const CommandResult result = calibrateHere();
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.errors.find("zelm: only 2 of 3 views can be read and 3 are needed"), std::string::npos)
        << result.errors;
    EXPECT_NE(result.errors.find(at("right_1.pgm")), std::string::npos);
}

TEST_F(ToolBadInput, ImagesOfDifferentSizes) {
    copyViews(4);
    write("left_2.pgm", pgmBytes({320, 240, std::string(320 * 240, '\x40')}));
    expectOneLine(calibrateHere(), 1, {at("left_2.pgm"), "320 x 240", at("left_0.pgm"), "640 x 480", "same size"});
}

TEST_F(ToolBadInput, StrictRefusesOneBadView) {
    copyViews(5);
    write("right_3.pgm", withoutMarker(3, "right"));
    expectOneLine(calibrateHere({"--strict"}), 1, {at("right_3.pgm"), "only 2 of 3 markers found"});
}

TEST_F(ToolBadInput, ViewsThatAreAllTheSame) {
    copyViews(3);
    for (const std::string side : {"left", "right"}) {
        for (int view = 1; view < 3; ++view) {
            fs::copy_file(at(name(side, 0)), at(name(side, view)), fs::copy_options::overwrite_existing);
        }
    }
    expectOneLine(calibrateHere(), 1, {at("left_0.pgm"), "tilt the plate"});
}

TEST_F(ToolBadInput, PatternsFoldersAndListsThatNameNothing) {
    expectOneLine(calibrate(at("no_*.pgm"), at("no_*.pgm"), at("out")), 2, {at("no_*.pgm"), "no file"});
    fs::create_directory(folder / "bare");
    expectOneLine(calibrate(at("bare"), at("bare"), at("out")), 2, {at("bare"), "no images"});
    const std::string list = write("list.txt", "\n\n");
    expectOneLine(calibrate(list, list, at("out")), 2, {list, "names no images"});
    write("list.txt", "gone.pgm\n");
    expectOneLine(calibrate(list, list, at("out")), 1, {at("gone.pgm"), "no such file"});
}

TEST_F(ToolBadInput, ParallelRightCameraAlone) {
    expectOneLine(calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), at("out"), {"--right-model", "2"}),
                  2, {"--right-model 2", "--left-model 2"});
}

TEST_F(ToolBadInput, CalibrationsThatAreNone) {
    const std::string block = readFile(calibratedSmallRig() / "rig.zcal");
    const auto refused = [&](const std::string& bytes, const std::vector<std::string>& words) {
        const std::string file = write("bad.zcal", bytes);
        std::vector<std::string> all{file};
        all.insert(all.end(), words.begin(), words.end());
        expectOneLine(zelm({"info", file}), 1, all);
        expectOneLine(zelm({"compare", file, smallRigFile("truth.json")}), 1, all);
    };
    refused("", {"not a calibration"});
    refused(block.substr(0, 27), {"not a calibration", "27 bytes"});
    refused(block.substr(0, block.size() - 1), {"damaged", "views take"});
    refused(block + "x", {"damaged"});
    refused(readFile(smallRig() / "left_00.pgm"), {"not a calibration"});
    std::string bad = block;
    bad.replace(460, 8, std::string(6, '\0') + "\xf8\x7f");  // a NaN
    refused(bad, {"damaged", "byte 460", "not finite"});
    bad = block;
    bad[0] = 2;
    refused(bad, {"not a calibration"});
    bad = block;
    bad[4] = 7;  // the left model
    refused(bad, {"not a calibration"});
    bad = block;
    bad[11] = '\x80';  // a negative left width
    refused(bad, {"not a calibration"});
    expectOneLine(zelm({"info", at("none.zcal")}), 1, {at("none.zcal"), "No such file"});
}

TEST_F(ToolBadInput, TruthThatIsNone) {
    const std::string plate = smallRigFile("plate.json");
    expectOneLine(zelm({"compare", (calibratedSmallRig() / "rig.zcal").string(), plate}), 2, {plate, "cameras"});
}

TEST_F(ToolBadInput, AFailedRunLeavesEarlierOutputAsItWas) {
    copyViews(3);
    const TemporaryFolder kept;
    const std::string out = (kept / "o").string();
    fs::create_directory(out);
    for (const char* name : {"rig.zcal", "rig.zcov", "rig.json", "report.html"}) {
        fs::copy_file(calibratedSmallRig() / name, kept / "o" / name);
    }
    const std::string block = readFile(out + "/rig.zcal");
    const std::string report = readFile(out + "/report.html");
    write("right_1.pgm", "no image");
    EXPECT_EQ(calibrate(at("left_*.pgm"), at("right_*.pgm"), out).status, 1);
    EXPECT_EQ(readFile(out + "/rig.zcal"), block);
    EXPECT_EQ(readFile(out + "/report.html"), report);
    EXPECT_EQ(std::distance(fs::directory_iterator(out), {}), 4);  // no temporary files
}

}  // namespace
