// zelm calibrate on what goes wrong in laboratories: it ends with exit code 1, or warns in one line that names the file
// and what to try.
#include "toolFixtures.h"

using namespace zelmtest;

namespace {

class CalibrationDoubts : public testing::Test {
protected:
    std::string at(const std::string& name) const { return (folder / name).string(); }

    // A list of images of a side in an order of views.
    std::string list(const std::string& side, const std::vector<int>& views) const {
        std::string names;
        for (const int view : views) {
            names += image(side, view) + "\n";
        }
        writeFile(folder / (side + ".txt"), names);
        return at(side + ".txt");
    }
    static std::string image(const std::string& side, int view) {
        return smallRigFile(side + "_0" + std::to_string(view) + ".pgm");
    }
    CommandResult calibrateLists(const std::vector<int>& left, const std::vector<int>& right,
                                 const std::vector<std::string>& more = {"--quiet"}) const {
        return calibrate(list("left", left), list("right", right), at("out"), more);
    }
    // All views with a plate file of which some fields are other ones.
    CommandResult calibrateWithPlate(const Json& fields) const {
        Json plate = Json::parse(readFile(smallRig() / "plate.json"));
        plate.update(fields);
        writeFile(folder / "plate.json", plate.dump());
        return zelm({"calibrate", "--plate", at("plate.json"), "--left", smallRigFile("left_*.pgm"), "--right",
                     smallRigFile("right_*.pgm"), "-o", at("out"), "--quiet"});
    }

    TemporaryFolder folder;
};

// Exit code 0, and so many lines of warnings, which hold the words.
void expectWarnings(const CommandResult& result, int lines, const std::vector<std::string>& words) {
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), lines) << result.errors;
    for (const std::string& word : words) {
        EXPECT_NE(result.errors.find(word), std::string::npos) << "lacks '" << word << "': " << result.errors;
    }
}

TEST_F(CalibrationDoubts, AGoodRigRaisesNone) {
    expectWarnings(calibrateLists({0, 1, 2, 3, 4, 5}, {0, 1, 2, 3, 4, 5}), 0, {});
    expectWarnings(calibrateLists({0, 1, 2, 3, 4, 5}, {0, 1, 2, 3, 4, 5}, {"--no-adjust", "--quiet"}), 0, {});
}

TEST_F(CalibrationDoubts, ListsShiftedByOneAreRefused) {
    const std::vector<std::vector<std::string>> ways{{"--quiet"}, {"--no-adjust", "--quiet"}};
    for (const auto& more : ways) {
        const CommandResult run = calibrateLists({0, 1, 2, 3, 4}, {1, 2, 3, 4, 5}, more);
        expectOneLine(run, 1, {image("left", 0) + " and " + image("right", 1), "shifted by one", "same order"});
        EXPECT_FALSE(fs::exists(at("out")));
    }
    // What is written all the same says by how much.
    const CommandResult forced =
        calibrateLists({0, 1, 2, 3, 4}, {1, 2, 3, 4, 5}, {"--no-adjust", "--quiet", "--force"});
    expectWarnings(forced, 2, {image("left", 0) + " to " + image("right", 5), "epipolar lines", "same order"});
}

TEST_F(CalibrationDoubts, ExchangedImagesAreNamed) {
    const std::string first = image("left", 2) + " and " + image("right", 4) + ": the images of a pair show different";
    expectWarnings(calibrateLists({0, 1, 2, 3, 4, 5}, {0, 1, 4, 3, 2, 5}), 1,
                   {first, "right_04.pgm fits left_04.pgm", "these views take no part"});
    // The files that stay say it too.
    const Json json = Json::parse(readFile(at("out/rig.json")));
    ASSERT_EQ(json.at("warnings").size(), 1U);
    EXPECT_EQ(json.at("warnings")[0].get<std::string>().rfind(first, 0), 0U);
    EXPECT_EQ(json.at("skipped").size(), 2U);
    EXPECT_NE(readFile(at("out/report.html")).find("<li>" + first), std::string::npos);
}

TEST_F(CalibrationDoubts, ExchangedCamerasAreNamed) {
    const CommandResult run =
        calibrate(smallRigFile("right_*.pgm"), smallRigFile("left_*.pgm"), at("out"), {"--quiet"});
    expectWarnings(run, 1, {image("right", 0) + " and " + image("left", 0), "to the left of the left one", "--right"});
}

TEST_F(CalibrationDoubts, AFieldThatNoImageShows) {
    const Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    const CommandResult run =
        calibrateWithPlate({{"fieldWidth", plate["fieldHeight"]}, {"fieldHeight", plate["fieldWidth"]}});
    expectWarnings(run, 1, {at("plate.json"), "outermost dots", "fieldHeight promises", "mirrored"});
}

TEST_F(CalibrationDoubts, AFieldThatIsDescribedTooSmall) {
    const Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    const auto less = [&plate](const char* extent, const char* pitch) {
        return plate[extent].get<double>() - 2.0 * plate[pitch].get<double>();
    };
    ASSERT_EQ(plate["fieldWidth"], 80.0);
    const Json narrower{{"fieldWidth", less("fieldWidth", "dotPitchX")}};
    expectWarnings(calibrateWithPlate(narrower), 1,
                   {at("plate.json"), "columns of dots beyond fieldWidth", "not used", "is it 80 or more"});
    const Json lower{{"fieldHeight", less("fieldHeight", "dotPitchY")}};
    expectWarnings(calibrateWithPlate(lower), 1, {"rows of dots beyond fieldHeight"});
}

TEST_F(CalibrationDoubts, DistancesThatAreAllTooLarge) {
    Json larger = Json::parse(readFile(smallRig() / "plate.json"));
    const Json truth = larger;
    for (const char* name :
         {"fieldWidth", "fieldHeight", "dotPitchX", "dotPitchY", "markerDistanceX", "markerDistanceY"}) {
        larger[name] = 1.25 * truth[name].get<double>();
    }
    expectWarnings(calibrateWithPlate(larger), 3,
                   {at("plate.json") + ": the plain dots", at("plate.json") + ": the markers", "off by the same factor",
                    "are 1.2"});
    // Diameters that are off by two factors are the diameters' fault.
    const CommandResult dots = calibrateWithPlate({{"dotDiameter", 1.15 * truth["dotDiameter"].get<double>()}});
    EXPECT_NE(dots.errors.find(at("plate.json") + ": the plain dots"), std::string::npos) << dots.errors;
    EXPECT_EQ(dots.errors.find("same factor"), std::string::npos) << dots.errors;
}

TEST_F(CalibrationDoubts, ThePlateFileOfAnotherPlate) {
    const auto sample = [](const std::string& side) {
        return std::string(ZELM_SOURCE_DIR) + "/samples/desk-rig/" + side + "_0[0-3].png";
    };
    writeFile(folder / "plate.json", R"({"fieldWidth": 90, "fieldHeight": 80, "dotDiameter": 3, "markerDiameter": 5,
        "dotPitchX": 9, "dotPitchY": 8, "markerDistanceX": 27, "markerDistanceY": 24})");
    const CommandResult run = zelm({"calibrate", "--plate", at("plate.json"), "--left", sample("left"), "--right",
                                    sample("right"), "-o", at("out"), "--quiet"});
    expectWarnings(run, 2, {at("plate.json") + ": not adjusted", at("plate.json") + ": the dots lie"});
}

}  // namespace
