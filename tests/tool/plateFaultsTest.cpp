// Plate files whose lengths contradict each other, and misspelt fields of JSON files: refused by name, with the remedy.
#include <gtest/gtest.h>

#include "toolFixtures.h"

namespace zelmtest {
namespace {

// Of the small rig: pitches of 10, dots of 4, markers of 7, 9 x 7 dots.
const Json& goodPlate() {
    static const Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    return plate;
}

struct PlateFaults : ::testing::Test {
    TemporaryFolder folder;

    [[nodiscard]] std::string file() const { return (folder / "plate.json").string(); }
    CommandResult detect(const Json& plate) const {
        writeFile(folder / "plate.json", plate.dump());
        return zelm({"detect", smallRigFile("left_00.pgm"), "--plate", file(), "-o", (folder / "out").string()});
    }
    void refused(const Json& changes, const std::vector<std::string>& words) const {
        Json plate = goodPlate();
        plate.update(changes);
        SCOPED_TRACE(changes.dump());
        std::vector<std::string> all{file()};
        all.insert(all.end(), words.begin(), words.end());
        expectOneLine(detect(plate), 2, all);
        EXPECT_FALSE(fs::exists(folder / "out"));
    }
};

TEST_F(PlateFaults, TheGoodPlateIsTaken) {
    ASSERT_EQ(goodPlate().at("dotPitchX"), 10.0);
    ASSERT_EQ(goodPlate().at("markerDistanceX"), 20.0);
    EXPECT_EQ(detect(goodPlate()).status, 0);
    // Pitches with rounded decimals: a third of 25.4.
    Json inches = goodPlate();
    inches["dotPitchX"] = 8.46667;
    inches["markerDistanceX"] = 16.9333;
    inches["fieldWidth"] = 67.7333;
    EXPECT_NE(detect(inches).status, 2) << detect(inches).errors;  // not a fault of the file
}

TEST_F(PlateFaults, MarkersOffTheGrid) {
    refused({{"markerDistanceX", 25}}, {"markerDistanceX 25 is no multiple of dotPitchX 10", "20 or 30 would be"});
    refused({{"markerDistanceY", 20.5}}, {"markerDistanceY 20.5 is no multiple of dotPitchY 10", "20 or 30 would be"});
    refused({{"dotPitchX", 10.1}}, {"markerDistanceX 20 is no multiple of dotPitchX 10.1", "10.1 or 20.2 would be"});
    refused({{"dotPitchY", 10.01}}, {"markerDistanceY 20 is no multiple of dotPitchY 10.01", "10.01 or 20.02"});
    refused({{"markerDistanceX", 3}}, {"markerDistanceX 3 must be at least one dot pitch"});
}

TEST_F(PlateFaults, FieldsThatHoldNoWholeNumberOfPitches) {
    refused({{"fieldWidth", 85}}, {"fieldWidth 85 is no multiple of dotPitchX 10", "80 or 90 would be"});
    refused({{"fieldHeight", 64}}, {"fieldHeight 64 is no multiple of dotPitchY 10", "60 or 70 would be"});
    refused({{"fieldWidth", 5}}, {"fieldWidth 5 is no multiple of dotPitchX 10", ": 10 would be"});
}

TEST_F(PlateFaults, MarkersOutsideTheField) {
    refused({{"markerDistanceX", 50}}, {"markerDistanceX 50 puts a marker outside the dot field", "fieldWidth 80"});
    refused({{"fieldHeight", 20}}, {"markerDistanceY 20 puts a marker outside", "reaches 10", "fieldHeight 20"});
}

TEST_F(PlateFaults, DotsThatOverlapOrAreTooSmall) {
    refused({{"dotDiameter", 7}}, {"markerDiameter 7 must be larger than dotDiameter 7"});
    refused({{"dotDiameter", 10}, {"markerDiameter", 12}}, {"dotDiameter 10 must be smaller than the dot pitch 10"});
    refused({{"markerDiameter", 16}}, {"markerDiameter 16 is too large", "would overlap"});
    refused({{"dotDiameter", 0.4}, {"markerDiameter", 0.7}},
            {"dotDiameter 0.4 is less than a twentieth", "same units"});
}

TEST_F(PlateFaults, LengthsThatAreAbsurd) {
    refused({{"dotPitchX", 100}, {"markerDistanceX", 200}, {"fieldWidth", 800}}, {"dotPitchX 100", "factor of 10"});
    refused({{"fieldWidth", 8e7}}, {"over a million dots", "fieldWidth"});
    refused({{"fieldWidth", -80}}, {"fieldWidth", "greater than 0"});
    refused({{"dotPitchY", 0}}, {"dotPitchY", "greater than 0"});
}

TEST_F(PlateFaults, FieldsOfTruthAreNamedAsTheyAre) {
    Json truth = Json::parse(readFile(smallRig() / "truth.json"));
    truth["pattern"]["d6"] = 25.0;
    expectOneLine(detect(truth), 2, {file(), "d6 25 is no multiple of d4 10"});
}

TEST_F(PlateFaults, MisspeltFieldsAreNamedWithTheOnesThatAreMeant) {
    const auto renamed = [](const std::string& from, const std::string& to) {
        Json plate = goodPlate();
        plate[to] = plate.contains(from) ? plate[from] : Json(50);
        plate.erase(from);
        return plate;
    };
    // Required ones, which are missing then, and others.
    for (const auto& [meant, written] :
         {std::pair("dotPitchX", "dotPichX"), std::pair("markerDiameter", "markerDiamter"),
          std::pair("fieldHeight", "fieldheight"), std::pair("dotDiameter", "dotDiameetr"),
          std::pair("markerDistanceY", "makerDistanceY"), std::pair("minDots", "minDot"), std::pair("units", "unit"),
          std::pair("polarity", "polartiy")}) {
        expectOneLine(detect(renamed(meant, written)), 2,
                      {file() + ": " + written + ": unknown field; did you mean " + meant + "?"});
    }
    // Nothing is near it, or all that is near is there.
    expectOneLine(detect(renamed("minDots", "colour")), 2, {file(), "colour: unknown field; known here are"});
    Json missing = goodPlate();
    missing.erase("dotPitchX");
    expectOneLine(detect(missing), 2, {file(), "dotPitchX: expected a length", "missing"});
}

TEST_F(PlateFaults, OtherFilesNameMisspeltFieldsToo) {
    writeFile(folder / "station.json", R"({"left": {"width": 1280, "height": 960, "fx": 1700}, "baselin": 100,
        "volume": {"distance": 400, "size": [80, 60, 60]}})");
    expectOneLine(
        zelm({"plan", (folder / "station.json").string(), "--plate", smallRigFile("plate.json"), "--views", "4"}), 2,
        {"station.json: baselin: unknown field; did you mean baseline?"});
    writeFile(folder / "rig.json", R"({"plate": {"colums": [-4, 4]}})");
    expectOneLine(zelm({"simulate", (folder / "rig.json").string(), "-o", (folder / "views").string()}), 2,
                  {"rig.json: plate.colums: unknown field; did you mean columns?"});
}

}  // namespace
}  // namespace zelmtest
