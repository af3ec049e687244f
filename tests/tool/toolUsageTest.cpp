// The command line itself: help, version, unknown words, --json and --quiet. What the subcommands do is tested beside
// this file.
#include "toolFixtures.h"

using namespace zelmtest;

namespace {

const std::vector<std::string> kSubcommands{"calibrate", "compare", "detect", "info", "plate", "simulate"};

TEST(ToolUsage, HelpWorksEverywhereAndShowsAnExample) {
    const CommandResult all = zelm({"--help"});
    EXPECT_EQ(all.status, 0);
    EXPECT_NE(all.output.find("Example"), std::string::npos);
    for (const std::string& name : kSubcommands) {
        EXPECT_NE(all.output.find("  " + name), std::string::npos) << name;
        const CommandResult one = zelm({name, "--help"});
        EXPECT_EQ(one.status, 0) << name;
        EXPECT_NE(one.output.find("Example:\n  zelm " + name), std::string::npos) << one.output;
        EXPECT_NE(one.output.find("--json"), std::string::npos) << name;
        EXPECT_NE(one.output.find("--quiet"), std::string::npos) << name;
        EXPECT_EQ(one.errors, "") << name;
    }
}

TEST(ToolUsage, TheWordHelpDoesWhatTheOptionDoes) {
    const std::string all = zelm({"--help"}).output;
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"help"}, {"help", "help"}, {"help", "--help"}}) {
        const CommandResult result = zelm(words);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.output, all);
    }
    const CommandResult one = zelm({"help", "info"});
    EXPECT_EQ(one.status, 0) << one.errors;
    EXPECT_EQ(one.output, zelm({"info", "--help"}).output);
    expectOneLine(zelm({"help", "infos"}), 2, {"infos: no such", "did you mean info?"});
    expectOneLine(zelm({"help", "info", "detect"}), 2, {"help", "one subcommand"});
}

TEST(ToolUsage, VersionIsPrinted) {
    const CommandResult result = zelm({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.rfind("zelm 1.", 0), 0U) << result.output;
}

TEST(ToolUsage, WrongUsageGivesTwo) {
    expectOneLine(zelm({}), 2, {"subcommand", "--help"});
    expectOneLine(zelm({"survey"}), 2, {"survey: no such subcommand", "--help"});
    expectOneLine(zelm({"calibrat", "--plate", "p.json"}), 2, {"calibrat: no such", "did you mean calibrate?"});
    expectOneLine(zelm({"recitfy", "--help"}), 2, {"recitfy: no such", "did you mean rectify?"});
    expectOneLine(zelm({"Info", "a.zcal"}), 2, {"Info: no such", "did you mean info?"});
    expectOneLine(zelm({"--helo"}), 2, {"--helo: not an option", "--help"});
    expectOneLine(zelm({"--json", "info", "a.zcal"}), 2, {"--json: not an option", "after its name"});
    expectOneLine(zelm({"calibrate", "--plate", "--left", "x.png"}), 2, {"--plate: has no value", "--left follows"});
    expectOneLine(zelm({"detect"}), 2, {"required", "--help"});
    expectOneLine(zelm({"info", "a.zcal", "--unknown"}), 2, {"--unknown"});
    expectOneLine(calibrate("a.png", "b.png", "out", {"--left-model", "3"}), 2, {"--left-model"});
    expectOneLine(zelm({"detect", "a.png", "--plate", "p.json", "--region", "1,2,3"}), 2, {"--region"});
    expectOneLine(zelm({"detect", "a.png", "--plate", "p.json", "--min-dots", "0"}), 2, {"--min-dots"});
}

TEST(ToolUsage, JsonIsAllThatIsPrinted) {
    const TemporaryFolder out;
    const std::string folder = (out / "o").string();
    const CommandResult calibrated =
        calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), folder, {"--json"});
    const std::string rig = folder + "/rig.zcal";
    for (const CommandResult& result :
         {calibrated, zelm({"info", rig, "--json"}), zelm({"compare", rig, smallRigFile("truth.json"), "--json"}),
          zelm({"detect", smallRigFile("left_00.pgm"), "--plate", smallRigFile("plate.json"), "-o", folder,
                "--json"})}) {
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.errors, "");
        EXPECT_FALSE(Json::parse(result.output, nullptr, false).is_discarded()) << result.output;
    }
}

TEST(ToolUsage, QuietPrintsNothing) {
    const TemporaryFolder out;
    const std::string folder = (out / "o").string();
    const CommandResult calibrated =
        calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), folder, {"--quiet"});
    for (const CommandResult& result :
         {calibrated, zelm({"info", folder + "/rig.zcal", "--quiet"}),
          zelm({"detect", smallRigFile("left_00.pgm"), "--plate", smallRigFile("plate.json"), "-o", folder, "-q"})}) {
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.output + result.errors, "");
    }
}

}  // namespace
