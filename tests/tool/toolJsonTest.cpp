// --json of every subcommand: one object on stdout and nothing else, whether it succeeds or fails.
#include <set>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

// Arguments for every subcommand on the small rig, which all succeed.
class JsonRuns : public ::testing::Test {
protected:
    std::string file(const std::string& name) const { return (folder / name).string(); }

    std::vector<std::vector<std::string>> runs() const {
        const std::string rig = (calibratedSmallRig() / "rig.zcal").string();
        const std::string plate = smallRigFile("plate.json");
        const std::string left = smallRigFile("left_00.pgm");
        const std::string right = smallRigFile("right_00.pgm");
        const auto pixels = [](int column, int row) {
            std::string text;
            for (const char* side : {"left", "right"}) {
                for (const double coordinate : truePixel(0, side, column, row)) {
                    text += "," + std::to_string(coordinate);
                }
            }
            return text + "\n";
        };
        writeFile(file("pairs.csv"), "a" + pixels(-3, -2) + "b" + pixels(3, -2) + "c" + pixels(0, 1));
        writeFile(file("left.csv"), "x,y\n320,240\n");
        writeFile(file("space.csv"), "1,0,0,0\n2,1,0,0\n3,0,1,0\n4,1,1,0.1\n");
        writeFile(file("station.json"), R"({"volume": {"distance": 500, "size": [60, 60, 40]}})");
        return {
            {"calibrate", "--plate", plate, "--left", smallRigFile("left_*.pgm"), "--right",
             smallRigFile("right_*.pgm"), "-o", file("rig"), "--no-adjust"},
            {"compare", rig, smallRigFile("truth.json")},
            {"detect", left, "--plate", plate, "-o", file("o")},
            {"epiline", rig, "--point", "320,240", "--in", "left"},
            {"export", rig, "--to", "opencv", "-o", file("cv")},
            {"import", file("cv/stereo.yml"), "--from", "opencv", "-o", file("imported.zcal")},
            {"info", rig},
            {"length", rig, file("pairs.csv")},
            {"match", rig, left, right, "--points", file("left.csv"), "-o", file("match.csv")},
            {"measure", file("space.csv"), "--plane", "1,2,3"},
            {"plan", file("station.json"), "--plate", plate, "--rig", rig},
            {"plate", "-o", file("sheet"), "--format", "svg"},
            {"rectify", rig, left, right, "-o", file("o")},
            {"simulate", "-o", file("views"), "--views", "1", "--format", "pgm"},
            {"simulate", "--example"},
            {"triangulate", rig, file("pairs.csv"), "-o", file("points.csv")},
            {"undistort", rig, left, right, "-o", file("o")},
            {"verify", rig, "--plate", plate, "--left", left, "--right", right},
        };
    }

    TemporaryFolder folder;
};

std::set<std::string> listedSubcommands() {
    std::set<std::string> names;
    const std::string help = zelm({"--help"}).output;
    std::size_t line = help.find("Subcommands:");
    const std::size_t end = help.find("\n\n", line);
    while ((line = help.find("\n  ", line)) < end) {
        line += 3;
        if (const std::string name = help.substr(line, help.find(' ', line) - line); !name.empty()) {
            names.insert(name);
        }
    }
    return names;
}

// The warnings that were printed, without what stands before each.
Json printedWarnings(const CommandResult& run) {
    const std::string mark = "zelm: warning: ";
    Json warnings = Json::array();
    for (std::size_t at = 0; at < run.errors.size();) {
        const std::size_t end = std::min(run.errors.find('\n', at), run.errors.size());
        if (run.errors.compare(at, mark.size(), mark) == 0) {
            warnings.push_back(run.errors.substr(at + mark.size(), end - at - mark.size()));
        }
        at = end + 1;
    }
    return warnings;
}

// Not valid JSON, or more than one value, gives null.
Json whole(const CommandResult& run) {
    const Json json = Json::parse(run.output, nullptr, false);
    return json.is_discarded() ? Json() : json;
}

void expectFailure(const CommandResult& run, int status, const std::string& cause) {
    EXPECT_EQ(run.status, status) << run.errors;
    const Json json = whole(run);
    ASSERT_TRUE(json.is_object()) << run.output;
    EXPECT_EQ(json.value("status", ""), "failed");
    EXPECT_EQ(json.value("exitCode", -1), status);
    EXPECT_EQ("zelm: " + json.value("message", "") + "\n", run.errors);
    EXPECT_EQ(json.value("cause", ""), cause) << run.output;
    EXPECT_TRUE(json.contains("images") && json["images"].is_array()) << run.output;
    EXPECT_EQ(json.value("warnings", Json()), printedWarnings(run)) << run.output;
}

TEST_F(JsonRuns, EverySubcommandPrintsOneObjectWhenItIsDone) {
    std::set<std::string> seen;
    for (std::vector<std::string> arguments : runs()) {
        seen.insert(arguments.front());
        arguments.emplace_back("--json");
        const CommandResult run = zelm(arguments);
        EXPECT_EQ(run.status, 0) << arguments.front() << ": " << run.errors;
        const Json json = whole(run);
        ASSERT_TRUE(json.is_object()) << arguments.front() << ": " << run.output.substr(0, 200);
        EXPECT_EQ(json.value("status", ""), "done") << arguments.front();
        EXPECT_GT(json.size(), 2U) << arguments.front() << ": no more than a status and warnings";
        EXPECT_EQ(json.value("warnings", Json()), printedWarnings(run)) << arguments.front();
    }
    EXPECT_EQ(seen, listedSubcommands());
}

TEST_F(JsonRuns, EverySubcommandPrintsOneObjectWhenTheUsageIsWrong) {
    for (const std::string& name : listedSubcommands()) {
        expectFailure(zelm({name, "--json", "--no-such-option"}), 2, "usage");
    }
    expectFailure(zelm({"calibrat", "--json"}), 2, "usage");
    expectFailure(zelm({"simulate", "--json"}), 2, "usage");  // found out by the subcommand itself
}

TEST_F(JsonRuns, FilesThatAreMissingAreAnObjectToo) {
    int tried = 0;
    for (std::vector<std::string> arguments : runs()) {
        const auto input = std::find_if(arguments.begin() + 1, arguments.end(),
                                        [](const std::string& a) { return a.find('/') != std::string::npos; });
        if (input == arguments.end() || arguments.front() == "simulate" || arguments.front() == "plate") {
            continue;
        }
        *input = file("missing.file");
        arguments.emplace_back("--json");
        const CommandResult run = zelm(arguments);
        expectFailure(run, run.status, run.status == 2 ? "usage" : "data");
        EXPECT_TRUE(run.status == 1 || run.status == 2) << arguments.front();
        ++tried;
    }
    EXPECT_EQ(tried, 15);
}

// A calibration that was refused and written all the same; a summary beside it may be of another one, or missing.
TEST_F(JsonRuns, EveryCommandThatLoadsARefusedCalibrationWarns) {
    const std::string good = (calibratedSmallRig() / "rig.zcal").string();
    const std::string rig = file("bad/rig.zcal");
    fs::create_directory(folder / "bad");
    for (const char* name : {"rig.zcal", "rig.zcov"}) {
        fs::copy_file(calibratedSmallRig() / name, folder / "bad" / name);
    }
    Json summary = Json::parse(readFile(calibratedSmallRig() / "rig.json"));
    summary["verdict"] = {{"status", "refused"}, {"sentence", "Refused, not to be measured with: lists shifted"}};
    const auto warned = [](const CommandResult& run) {
        return run.errors.find("rig.zcal: rig.json says of this calibration: Refused") != std::string::npos;
    };
    std::vector<std::vector<std::string>> commands = runs();
    commands.push_back({"measure", file("space.csv"), "--plane", "1,2,3", "--rig", good});
    commands.push_back({"compare", rig, good, "--depths", "300,600"});
    commands.push_back({"compare", good, good, "--depths", "300,600"});
    commands.push_back({"rectify", good, smallRigFile("left_00.pgm"), smallRigFile("right_00.pgm"), "--rows",
                        "--depths", "300,600", "-o", file("o")});
    std::set<std::string> loading;
    for (std::vector<std::string> arguments : commands) {
        if (std::find(arguments.begin(), arguments.end(), good) == arguments.end()) {
            continue;
        }
        std::replace(arguments.begin(), arguments.end(), good, rig);
        arguments.emplace_back("--json");
        writeFile(folder / "bad" / "rig.json", summary.dump());
        const CommandResult run = zelm(arguments);
        EXPECT_EQ(run.status, 0) << arguments.front() << ": " << run.errors;
        EXPECT_TRUE(warned(run)) << arguments.front() << ": " << run.errors;
        EXPECT_EQ(whole(run).value("warnings", Json()), printedWarnings(run)) << arguments.front();
        loading.insert(arguments.front());
    }
    EXPECT_EQ(loading, (std::set<std::string>{"compare", "epiline", "export", "info", "length", "match", "measure",
                                              "plan", "rectify", "triangulate", "undistort", "verify"}));
    summary["left"]["alpha"] = 1.0;
    writeFile(folder / "bad" / "rig.json", summary.dump());
    EXPECT_EQ(zelm({"info", rig}).errors, "");
    writeFile(folder / "bad" / "rig.json", "[]");
    EXPECT_EQ(zelm({"info", rig}).errors, "");
    fs::remove(folder / "bad" / "rig.json");
    EXPECT_EQ(zelm({"info", rig}).errors, "");
}

// One file for both cameras shows nothing in space.
TEST_F(JsonRuns, OneImageForBothCamerasIsAWarning) {
    const std::string left = smallRigFile("left_00.pgm");
    for (std::vector<std::string> arguments : runs()) {
        if (arguments.front() != "rectify") {
            continue;
        }
        arguments.emplace_back("--json");
        EXPECT_EQ(zelm(arguments).errors.find("given as the left"), std::string::npos);
        *std::find(arguments.begin(), arguments.end(), smallRigFile("right_00.pgm")) = left;
        const CommandResult run = zelm(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_NE(run.errors.find("left_00.pgm: given as the left and as the right image"), std::string::npos);
        EXPECT_EQ(whole(run).value("warnings", Json()), printedWarnings(run));
        EXPECT_EQ(printedWarnings(run).size(), 1U) << run.errors;
    }
}

TEST_F(JsonRuns, AVerdictAgainstTheRigKeepsItsFigures) {
    const CommandResult run =
        zelm({"verify", (calibratedSmallRig() / "rig.zcal").string(), "--plate", smallRigFile("plate.json"), "--left",
              smallRigFile("left_*.pgm"), "--right", smallRigFile("right_*.pgm"), "--tolerance", "1e-7", "--json"});
    expectFailure(run, 1, "tolerance");
    const Json json = whole(run);
    EXPECT_TRUE(json.contains("lengths") && json.contains("drift")) << run.output;
}

TEST_F(JsonRuns, TriangulatedPointsStandInTheResult) {
    runs();
    const CommandResult run = zelm({"triangulate", (calibratedSmallRig() / "rig.zcal").string(), file("pairs.csv"),
                                    "-o", file("points.csv"), "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    const Json json = whole(run);
    const Json& list = json.at("list");
    ASSERT_EQ(list.size(), 3U);
    const std::string csv = readFile(file("points.csv"));
    for (const Json& point : list) {
        EXPECT_EQ(point.at("status"), "ok");
        for (const char* field : {"left", "right", "errorPx"}) {
            EXPECT_EQ(point.at(field).size(), 2U) << field;
        }
        for (const char* field : {"position", "sigma", "noiseSigma", "calibrationSigma"}) {
            EXPECT_EQ(point.at(field).size(), 3U) << field;
        }
    }
    // The plate's dots of view 0 lie in its plane, at their places: here 60 mm apart.
    const auto a = list[0].at("position").get<std::vector<double>>();
    const auto b = list[1].at("position").get<std::vector<double>>();
    EXPECT_EQ(list[0].at("id"), "a");
    EXPECT_NEAR(std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]), 60.0, 0.1);  // noise of 1.5 gray levels
}

}  // namespace
