// `zelm verify`: known lengths and drift as a user checks them, and every refusal.
#include <gtest/gtest.h>

#include <cmath>

#include "driftTrials.h"
#include "measureFixtures.h"

namespace zelmtest {
namespace {

std::vector<std::string> deskImages(const std::string& left = "left_0[0-2].png") {
    return {"--plate", sampleFile("truth.json"), "--left", sampleFile(left), "--right", sampleFile("right_0[0-2].png")};
}

CommandResult verify(std::vector<std::string> arguments, const std::vector<std::string>& more = {}) {
    arguments.insert(arguments.begin(), "verify");
    arguments.insert(arguments.end(), more.begin(), more.end());
    return zelm(arguments);
}

CommandResult verifyDesk(const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = deskImages();
    arguments.insert(arguments.begin(), deskRigFile());
    return verify(arguments, more);
}

// A rig of exact parameters and pixel pairs of it, or of the rig after its right camera has moved.
struct PairFiles {
    TemporaryFolder folder;
    RigTruth rig = sideBySideRig();

    explicit PairFiles(const RightMove& move = {}, const DriftScene& scene = {}) {
        const std::vector<unsigned char> block = rig.block();
        writeFile(folder / "rig.zcal", std::string(block.begin(), block.end()));
        const DriftPairs pairs = driftPairs(moved(rig, move), scene, 11);
        std::ostringstream csv;
        csv.precision(12);
        csv << "id,xL,yL,xR,yR\n";
        for (std::size_t i = 0; i < pairs.isWrong.size(); ++i) {
            csv << 'p' << i << ',' << pairs.left[2 * i] << ',' << pairs.left[2 * i + 1] << ',' << pairs.right[2 * i]
                << ',' << pairs.right[2 * i + 1] << '\n';
        }
        writeFile(folder / "pairs.csv", csv.str());
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (folder / name).string(); }
    [[nodiscard]] CommandResult run(const std::vector<std::string>& more = {}) const {
        return verify({file("rig.zcal"), "--pairs", file("pairs.csv")}, more);
    }
};

RightMove turned(std::size_t axis, double degrees) {
    RightMove move;
    move.turn[axis] = radiansOf(degrees);
    return move;
}

TEST(ToolVerify, TheSampleMeasuresItsOwnPlate) {
    const TemporaryFolder folder;
    const std::string csv = (folder / "lengths.csv").string();
    const CommandResult run = verifyDesk({"--tolerance", "0.05", "-o", csv, "--json"});
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.errors, "");
    const Json json = Json::parse(run.output);
    const Json& lengths = json.at("lengths");
    EXPECT_EQ(json.at("views"), 3);
    EXPECT_GE(lengths.at("all").at("count").get<int>(), 3 * 60);
    // Dots of 0.011 px, depth of which 1 px is 0.9 mm and across 0.2 mm: some 0.004 mm; a longer list has the table.
    EXPECT_LT(lengths.at("all").at("rms").get<double>(), 0.008);
    EXPECT_LT(std::fabs(lengths.at("scalePpm").get<double>()), 100.0);
    EXPECT_TRUE(lengths.at("withinTolerance").get<bool>());
    EXPECT_EQ(lengths.at("views").size(), 3U);
    EXPECT_FALSE(json.at("drift").at("found").get<bool>());
    const std::vector<std::string> rows = splitLines(readFile(csv));
    EXPECT_EQ(rows.front(), "view,from,to,nominal,measured,error,X,Y,Z,depth,region");
    EXPECT_EQ(rows.size(), 1 + lengths.at("all").at("count").get<std::size_t>());
}

TEST(ToolVerify, DotsMeasuredOnTheirPixelsGiveBetterLengths) {
    const CommandResult refined = verifyDesk({"--json"});
    const CommandResult reader = verifyDesk({"--json", "--dots", "reader"});
    ASSERT_EQ(refined.status, 0) << refined.errors;
    ASSERT_EQ(reader.status, 0) << reader.errors;
    const Json better = Json::parse(refined.output);
    const Json plain = Json::parse(reader.output);
    EXPECT_EQ(better.at("dots"), "refined");
    EXPECT_EQ(plain.at("dots"), "reader");
    EXPECT_EQ(plain.at("dotsNotConfirmed"), 0);
    EXPECT_LE(better.at("dotsNotConfirmed").get<int>(), 3);
    const auto rms = [](const Json& json) { return json.at("lengths").at("all").at("rms").get<double>(); };
    // The noise of a dot's coordinate falls by about a sixth.
    EXPECT_LT(rms(better), 0.95 * rms(plain));
    EXPECT_LT(better.at("drift").at("noise").get<double>(), 0.95 * plain.at("drift").at("noise").get<double>());
    EXPECT_TRUE(better.at("drift").at("calibrationCovariance").get<bool>());
}

TEST(ToolVerify, AToleranceThatIsExceededIsExitCodeOne) {
    const TemporaryFolder folder;
    const std::string csv = (folder / "lengths.csv").string();
    const CommandResult run = verifyDesk({"--tolerance", "0.0005", "-o", csv});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find("exceeds the tolerance of 0.0005"), std::string::npos) << run.errors;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1);
    // The figures are there all the same.
    EXPECT_NE(run.output.find("scale error"), std::string::npos);
    EXPECT_NE(run.output.find("flatness"), std::string::npos);
    EXPECT_TRUE(fs::exists(csv));
}

TEST(ToolVerify, DriftIsNamedInWords) {
    const PairFiles files(turned(0, 0.0103));
    const CommandResult run = files.run();
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find("the right camera seems turned by +0.010"), std::string::npos) << run.errors;
    EXPECT_NE(run.errors.find("deg about its x axis since the calibration (p = "), std::string::npos) << run.errors;
    EXPECT_NE(run.errors.find("calibrate again"), std::string::npos) << run.errors;
    EXPECT_NE(run.output.find("length of the baseline"), std::string::npos) << run.output;
    const CommandResult json = files.run({"--json", "--noise", "0.05"});
    EXPECT_EQ(json.status, 1);
    const Json drift = Json::parse(json.output).at("drift");
    EXPECT_EQ(drift.at("best"), "turnX");
    EXPECT_NEAR(drift.at("alone").at("turnX").at("value").get<double>(), 0.0103, 0.001);
}

TEST(ToolVerify, NoDriftIsExitCodeZero) {
    const CommandResult run = PairFiles().run();
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("no drift of the cameras is seen"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("9 times out of 10"), std::string::npos) << run.output;
}

TEST(ToolVerify, KnownLengthsBetweenNamedPoints) {
    const PairFiles files({}, {.points = 60, .noise = 0.0});
    ASSERT_EQ(
        zelm({"triangulate", files.file("rig.zcal"), files.file("pairs.csv"), "-o", files.file("points.csv")}).status,
        0);
    const std::vector<PointRow> points = readPoints(files.file("points.csv"));
    std::ostringstream lengths;
    lengths.precision(12);
    lengths << "from,to,length\n# two lengths\n";
    lengths << "p0;p1;" << distance(positionOf(points[0]), positionOf(points[1])) << '\n';
    lengths << "p2;\"p9\";" << distance(positionOf(points[2]), positionOf(points[9])) - 0.5 << '\n';
    writeFile(files.file("lengths.csv"), lengths.str());
    const CommandResult run = files.run({"--lengths", files.file("lengths.csv"), "--tolerance", "0.4", "--json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find("the largest length error of 0.5000 plate units (p2 to p9)"), std::string::npos)
        << run.errors;
    EXPECT_EQ(Json::parse(run.output).at("lengths").at("all").at("count"), 2);
    // Of fewer points than drift takes, the lengths are checked all the same.
    const PairFiles few({}, {.points = 10, .noise = 0.0});
    writeFile(few.file("lengths.csv"), "p0,p1,100\n");
    const CommandResult little = few.run({"--lengths", few.file("lengths.csv")});
    EXPECT_EQ(little.status, 0) << little.errors;
    EXPECT_NE(little.output.find("drift cannot be told: only 10 of 10 pixel pairs"), std::string::npos)
        << little.output;
}

TEST(ToolVerify, ViewsThatCannotBeReadAreSkippedByName) {
    const TemporaryFolder folder;
    writeFile(folder / "left_9.png", "no image");
    std::vector<std::string> arguments{deskRigFile(),
                                       "--plate",
                                       sampleFile("truth.json"),
                                       "--left",
                                       sampleFile("left_00.png"),
                                       (folder / "left_9.png").string(),
                                       "--right",
                                       sampleFile("right_00.png"),
                                       sampleFile("right_01.png"),
                                       "--json"};
    const CommandResult run = verify(arguments);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.errors.find("skipping a view"), std::string::npos) << run.errors;
    EXPECT_NE(run.errors.find("left_9.png"), std::string::npos) << run.errors;
    const Json json = Json::parse(run.output);
    EXPECT_EQ(json.at("views"), 1);
    EXPECT_EQ(json.at("skipped").size(), 1U);
}

TEST(ToolVerify, WrongUsageIsToldInOneLine) {
    const PairFiles files;
    const std::string rig = files.file("rig.zcal");
    const std::string pairs = files.file("pairs.csv");
    expectOneLine(verify({rig}), 2, {"either images of a plate", "--pairs"});
    expectOneLine(verifyDesk({"--pairs", pairs}), 2, {"either images of a plate"});
    expectOneLine(verify({rig, "--left", sampleFile("left_00.png")}), 2, {"--left and --right go together"});
    expectOneLine(verify({rig, "--left", sampleFile("left_00.png"), "--right", sampleFile("right_00.png")}), 2,
                  {"--plate is missing"});
    expectOneLine(files.run({"--tolerance", "0.1"}), 2, {"--tolerance needs lengths"});
    expectOneLine(files.run({"-o", files.file("out.csv")}), 2, {"-o needs lengths"});
    expectOneLine(verifyDesk({"--lengths", pairs}), 2, {"--lengths goes with --pairs"});
    expectOneLine(files.run({"--calibration-error", "-1"}), 2, {"--calibration-error"});
    expectOneLine(files.run({"--dots", "reader"}), 2, {"--dots goes with images of a plate"});
    expectOneLine(verify({deskRigFile(), "--plate", sampleFile("truth.json"), "--left", sampleFile("left_00.png"),
                          "--right", sampleFile("right_0[0-1].png")}),
                  2, {"1 left images but 2 right ones"});
}

TEST(ToolVerify, BadInputNamesFileAndRemedy) {
    const PairFiles files;
    const std::string missing = files.file("none.csv");
    expectOneLine(verify({files.file("rig.zcal"), "--pairs", missing}), 1, {missing});
    expectOneLine(verify({files.file("none.zcal"), "--pairs", files.file("pairs.csv")}), 1, {"none.zcal"});
    const PairFiles few({}, {.points = 12});
    expectOneLine(few.run(), 1, {"pairs.csv", "only 12 of 12 pixel pairs", "give more"});
    const PairFiles narrow({}, {.depthRange = 4.0, .halfWidth = 3.0, .halfHeight = 3.0});
    expectOneLine(narrow.run(), 1, {"pairs.csv", "in one place", "all over the images"});
    const PairFiles wrong({}, {.wrong = 1.0});
    expectOneLine(wrong.run(), 1, {"pairs.csv", "calibration of other cameras"});
    // Images of another rig.
    expectOneLine(verify({deskRigFile(), "--plate", smallRigFile("plate.json"), "--left", smallRigFile("left_00.pgm"),
                          "--right", smallRigFile("right_00.pgm")}),
                  1, {"left_00.pgm", "640 x 480", "1280 x 960"});
    for (const auto& [text, words] :
         {std::pair("p0,p1\n", "2 fields"), std::pair("p0,p1,x\n", "line 1"), std::pair("p0,p1,-3\n", "greater than 0"),
          std::pair("# none\n", "no lengths"), std::pair("p0,pX,3\n", "no pixel pair of the id pX")}) {
        writeFile(files.file("lengths.csv"), text);
        expectOneLine(files.run({"--lengths", files.file("lengths.csv")}), 1, {"lengths.csv", words});
    }
    writeFile(files.file("lengths.csv"), "p0,p1,100\n");
    expectOneLine(files.run({"--lengths", files.file("lengths.csv"), "-o", files.file("pairs.csv")}), 2,
                  {"pairs.csv", "input"});
    expectOneLine(files.run({"--lengths", files.file("lengths.csv"), "-o", files.file("rig.zcov")}), 2,
                  {"rig.zcov", "input"});
}

}  // namespace
}  // namespace zelmtest
