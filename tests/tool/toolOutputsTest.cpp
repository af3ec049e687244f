// What the tool does to files: inputs are never written over, names may be anything, an interrupted run leaves nothing
// behind, and what cannot be written is an error.
#include <spawn.h>

#include <csignal>
#include <thread>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

class ToolOutputs : public testing::Test {
protected:
    std::string at(const std::string& name) const { return (folder / name).string(); }

    std::string copy(const std::string& from, const std::string& to) const {
        fs::create_directories((folder / to).parent_path());
        fs::copy_file(smallRig() / from, folder / to);
        return at(to);
    }

    // A description of so many small views.
    std::string describe(const std::string& name, int views) const {
        fs::create_directories((folder / name).parent_path());
        writeFile(folder / name, R"({"left": {"width": 640, "height": 480, "fx": 844, "fy": 844, "cx": 320, "cy": 240},
            "right": {"width": 640, "height": 480, "fx": 844, "fy": 844, "cx": 320, "cy": 240},
            "views": {"count": )" + std::to_string(views) +
                                     "}}");
        return at(name);
    }

    TemporaryFolder folder;
};

TEST_F(ToolOutputs, InputsAreNotWrittenOver) {
    const std::string plate = copy("plate.json", "o/rig.json");
    const std::string bytes = readFile(plate);
    expectOneLine(zelm({"calibrate", "--plate", plate, "--left", smallRigFile("left_*.pgm"), "--right",
                        smallRigFile("right_*.pgm"), "-o", at("o/../o")}),
                  2, {"rig.json", "is an input", "another name"});
    EXPECT_EQ(readFile(plate), bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(at("o")), {}), 1);

    const std::string description = describe("v/plate.json", 1);
    const std::string described = readFile(description);
    expectOneLine(zelm({"simulate", description, "-o", at("v")}), 2, {"plate.json", "is an input"});
    EXPECT_EQ(readFile(description), described);
    EXPECT_EQ(std::distance(fs::directory_iterator(at("v")), {}), 1);
}

TEST_F(ToolOutputs, InputsThatLinksNameAreNotWrittenOver) {
    const std::string plate = copy("plate.json", "o/rig.json");
    const std::string bytes = readFile(plate);
    fs::create_symlink(plate, at("link.json"));
    expectOneLine(zelm({"calibrate", "--plate", at("link.json"), "--left", smallRigFile("left_*.pgm"), "--right",
                        smallRigFile("right_*.pgm"), "-o", at("o")}),
                  2, {"rig.json", "is an input"});
    EXPECT_EQ(readFile(plate), bytes);
}

TEST_F(ToolOutputs, LineEndsInNamesStayOutOfMessages) {
    expectOneLine(zelm({"info", at("no\nsuch\tfile")}), 1, {"no?such?file", "cannot open"});
    expectOneLine(zelm({"info", "a", "b\nc"}), 2, {"b?c"});
}

// A file name is a string of bytes; JSON is not.
TEST_F(ToolOutputs, NamesThatAreNoUtf8) {
    const std::string image = copy("left_00.pgm", "view\xff.pgm");
    const CommandResult json = zelm({"detect", image, "--plate", smallRigFile("plate.json"), "-o", at("o"), "--json"});
    ASSERT_EQ(json.status, 0) << json.errors;
    const Json result = Json::parse(json.output);
    EXPECT_EQ(result["image"], at("view\xef\xbf\xbd.pgm"));
    EXPECT_EQ(result["dots"].size(), 63U);
    EXPECT_TRUE(fs::exists(at("o/view\xff_dots.csv")));

    const CommandResult images =
        zelm({"calibrate", "--plate", smallRigFile("plate.json"), "--left", image, smallRigFile("left_01.pgm"),
              smallRigFile("left_02.pgm"), "--right", smallRigFile("right_00.pgm"), smallRigFile("right_01.pgm"),
              smallRigFile("right_02.pgm"), "-o", at("d"), "--quiet"});
    EXPECT_EQ(images.status, 0) << images.errors;
    EXPECT_TRUE(Json::accept(readFile(at("d/rig.json"))));
}

TEST_F(ToolOutputs, NamesAsLongAsTheFileSystemTakes) {
    const std::string stem(246, 'x');  // with "_dots.csv" 255 bytes
    const std::string image = copy("left_00.pgm", stem + ".pgm");
    const CommandResult result = zelm({"detect", image, "--plate", smallRigFile("plate.json"), "-o", at("o")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(fs::exists(at("o/" + stem + "_dots.csv")));

    const std::string longer = copy("left_00.pgm", stem + "xx.pgm");
    expectOneLine(zelm({"detect", longer, "--plate", smallRigFile("plate.json"), "-o", at("p")}), 1,
                  {stem, "cannot write", "choose another name"});
    EXPECT_FALSE(fs::exists(at("p")));
}

TEST_F(ToolOutputs, DevicesAreNotRead) {
    expectOneLine(zelm({"info", "/dev/null"}), 1, {"/dev/null", "is a device"});
}

TEST_F(ToolOutputs, AStandardOutputThatTakesNothingIsAnError) {
    if (!fs::exists("/dev/full")) {
        GTEST_SKIP() << "no device that is always full";
    }
    for (const std::string option : {"--example", "--help"}) {
        expectOneLine(runCommand({"sh", "-c", R"("$0" "$@" >/dev/full)", ZELM_PROGRAM, "simulate", option}), 1,
                      {"standard output", "cannot write", "No space left"});
    }
}

// Starts the tool and gives it a signal when its first file is being written.
int statusAfterSignal(const std::vector<std::string>& arguments, const fs::path& output, int signal) {
    std::vector<char*> words;
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, words[0], nullptr, nullptr, words.data(), environ) != 0) {
        return -1;
    }
    std::error_code error;
    for (int tries = 0; tries < 10000 && (!fs::exists(output, error) || fs::is_empty(output, error)); ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ::kill(child, signal);
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

TEST_F(ToolOutputs, AnInterruptedRunLeavesNothing) {
    const std::string rig = describe("rig.json", 100);  // many times longer than the first image takes
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const int status =
            statusAfterSignal({ZELM_PROGRAM, "simulate", rig, "-o", at("new/o"), "--quiet"}, folder / "new/o", signal);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_FALSE(fs::exists(at("new"))) << signal;
    }
}

TEST_F(ToolOutputs, ASignalThatIsToBeIgnoredIs) {
    const std::string rig = describe("rig.json", 2);
    const int status = statusAfterSignal(
        {"sh", "-c", R"(trap '' HUP; exec "$0" "$@")", ZELM_PROGRAM, "simulate", rig, "-o", at("o"), "--quiet"},
        folder / "o", SIGHUP);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_TRUE(fs::exists(at("o/truth.json")));
}

TEST_F(ToolOutputs, ViewsOfAnEarlierRunAreAWarning) {
    const std::string rig = describe("rig.json", 1);
    const std::vector<std::string> command{"simulate", rig, "-o", at("o"), "--quiet"};
    EXPECT_EQ(zelm(command).errors, "");
    EXPECT_EQ(zelm(command).errors, "");  // all of them are written anew
    fs::copy_file(at("o/left_00.png"), at("o/left_01.png"));
    fs::copy_file(at("o/right_00.png"), at("o/right_01.png"));
    const CommandResult result = zelm(command);
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.errors.find("warning: " + at("o") + ": also holds 2 images of other views, such as left_01.png"),
              std::string::npos)
        << result.errors;
}

}  // namespace
