// `zelm plan`: the list and the JSON say what the library plans, and every refusal is one line.
#include <cmath>

#include "measureFixtures.h"

namespace zelmtest {
namespace {

constexpr const char* kPlate = R"({"fieldWidth": 80, "fieldHeight": 60, "dotPitchX": 10, "dotPitchY": 10,
    "dotDiameter": 4, "markerDiameter": 7, "markerDistanceX": 20, "markerDistanceY": 20, "units": "mm"})";
constexpr const char* kVolume = R"("volume": {"distance": 340, "size": [110, 80, 80]})";
constexpr const char* kCamera = R"({"width": 640, "height": 480, "pixelSize": 0.01, "focalLength": 8.45})";

struct PlanFiles {
    TemporaryFolder folder;
    std::string station = (folder / "station.json").string();
    std::string plate = (folder / "plate.json").string();

    explicit PlanFiles(const std::string& description = describe("")) {
        writeFile(station, description);
        writeFile(plate, kPlate);
    }
    static std::string describe(const std::string& more) {
        return std::string("{\"left\": ") + kCamera + ", \"baseline\": 120, " + kVolume + more + "}";
    }
    [[nodiscard]] CommandResult plan(const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"plan", station, "--plate", plate};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zelm(arguments);
    }
};

TEST(Plan, ListsPicturesInWords) {
    const PlanFiles files;
    const std::string out = (files.folder / "out").string();
    const CommandResult run = files.plan({"--views", "6", "-o", out});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(run.output.rfind("6 views: U95 of a length of 47.34 mm in the volume: worst ", 0), 0U) << run.output;
    const std::string list = readFile(files.folder / "out" / "pictures.txt");
    EXPECT_NE(run.output.find(list), std::string::npos) << list;
    const std::vector<std::string> lines = splitLines(list);
    ASSERT_GE(lines.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(lines[i].rfind("  " + std::to_string(i + 1) + ": ", 0), 0U) << lines[i];
        for (const char* const word : {" mm away", "% of the left image", "% of the right one"}) {
            EXPECT_NE(lines[i].find(word), std::string::npos) << lines[i];
        }
    }
    const Json json = Json::parse(readFile(files.folder / "out" / "plan.json"));
    EXPECT_EQ(json.at("views"), 6);
    EXPECT_EQ(json.at("taken"), 0);
    EXPECT_GT(json.at("u95").at("worst").get<double>(), json.at("u95OfPoints").at("worst").get<double>());
    ASSERT_EQ(json.at("pictures").size(), 6U);
    const Json& last = json.at("pictures").back();
    EXPECT_EQ(last.at("words").get<std::string>(), lines[5].substr(5));
    EXPECT_EQ(last.at("u95").at("worst"), json.at("u95").at("worst"));
    EXPECT_EQ(last.at("pose").at("R").size(), 9U);
}

TEST(Plan, MeetsATolerance) {
    const PlanFiles files;
    const CommandResult run = files.plan({"--tolerance", "0.103", "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output);
    EXPECT_LE(json.at("u95").at("worst").get<double>(), 0.103);
    const auto views = json.at("views").get<int>();
    EXPECT_GE(views, 4);
    EXPECT_LE(views, 8);
    // Half of the noise halves all.
    const Json half = Json::parse(files.plan({"--views", std::to_string(views), "--noise", "0.01", "--json"}).output);
    const Json whole = Json::parse(files.plan({"--views", std::to_string(views), "--json"}).output);
    EXPECT_NEAR(half.at("u95").at("rms").get<double>() / whole.at("u95").at("rms").get<double>(), 0.5, 0.005);
}

TEST(Plan, GoesOnFromACalibration) {
    const PlanFiles files(R"({"volume": {"distance": 350, "size": [80, 60, 60]}})");
    const std::string plate = sampleFile("truth.json");
    const CommandResult run = zelm({"plan", files.station, "--plate", plate, "--rig", deskRigFile(), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json.at("taken"), 12);
    EXPECT_EQ(json.at("views"), 13);
    const Json& pictures = json.at("pictures");
    EXPECT_EQ(pictures[11].at("taken"), true);
    EXPECT_EQ(pictures[12].at("taken"), false);
    EXPECT_LT(pictures[12].at("u95").at("worst"), pictures[11].at("u95").at("worst"));
    const CommandResult text = zelm({"plan", files.station, "--plate", plate, "--rig", deskRigFile()});
    EXPECT_NE(text.output.find("13 views, 12 of them taken"), std::string::npos) << text.output;
    EXPECT_NE(text.output.find("\n 13: "), std::string::npos) << text.output;
    EXPECT_EQ(text.output.find("\n 12: "), std::string::npos) << text.output;
    expectOneLine(zelm({"plan", files.station, "--plate", plate, "--rig", deskRigFile(), "--views", "12"}), 2,
                  {"has 12 views already"});
}

TEST(Plan, RefusesInOneLine) {
    const PlanFiles files;
    expectOneLine(files.plan({}), 2, {"--tolerance or --views"});
    expectOneLine(files.plan({"--views", "2"}), 2, {"--views"});
    expectOneLine(files.plan({"--views", "5", "--tolerance", "1"}), 2, {"--tolerance"});
    expectOneLine(files.plan({"--tolerance", "0.05"}), 1, {"station.json", "cannot be met", "however many views"});
    expectOneLine(files.plan({"--tolerance", "0.103", "--most", "3"}), 1, {"3 views give"});
    expectOneLine(zelm({"plan", "absent.json", "--plate", files.plate, "--views", "5"}), 1, {"absent.json"});
}

void expectDescriptionRefused(const std::string& description, int status, const std::vector<std::string>& words) {
    const PlanFiles files(description);
    expectOneLine(files.plan({"--views", "5"}), status, words);
}

TEST(Plan, RefusesDescriptionsByTheirFields) {
    expectDescriptionRefused("{", 2, {"station.json", "not valid JSON"});
    expectDescriptionRefused("{}", 2, {"volume", "missing"});
    expectDescriptionRefused(std::string("{") + kVolume + "}", 2, {"left", "--rig"});
    expectDescriptionRefused(PlanFiles::describe(", \"basline\": 3"), 2, {"basline"});
    expectDescriptionRefused(PlanFiles::describe(", \"convergence\": 170"), 2, {"convergence", "150"});
    expectDescriptionRefused(PlanFiles::describe(", \"focus\": [5, 4]"), 2, {"focus"});
    expectDescriptionRefused(PlanFiles::describe(", \"right\": {\"width\": 640, \"height\": 480}"), 2,
                             {"right.focalLength", "missing"});
    expectDescriptionRefused(PlanFiles::describe(", \"right\": {\"width\": 0}"), 2, {"right.width"});
    expectDescriptionRefused(PlanFiles::describe(", \"convergence\": 90"), 1, {"both cameras see only"});
    const PlanFiles withCameras;
    expectOneLine(zelm({"plan", withCameras.station, "--plate", sampleFile("truth.json"), "--rig", deskRigFile()}), 2,
                  {"left", "--rig gives the cameras"});
}

TEST(Plan, RefusesAPlateThatIsTooLarge) {
    const PlanFiles files;
    writeFile(files.plate, R"({"fieldWidth": 800, "fieldHeight": 600, "dotPitchX": 10, "dotPitchY": 10,
        "dotDiameter": 4, "markerDiameter": 7, "markerDistanceX": 20, "markerDistanceY": 20})");
    expectOneLine(files.plan({"--views", "5"}), 1, {"read the plate", "smaller plate"});
}

}  // namespace
}  // namespace zelmtest
