// What the measuring subcommands refuse: one line that names the file and what to do, the right exit code, and neither
// new files nor changed ones.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <limits>

#include "measureFixtures.h"

namespace zelmtest {
namespace {

struct MeasureBadInput : ::testing::Test {
    TemporaryFolder folder;
    std::string rig;

    void SetUp() override {
        const TruePair pair = makePair(0, 0);
        rig = writePair(pair, folder / "rig.zcal");
        const Point2d l = pair.project('L', {10.0, 5.0, 3.0});
        const Point2d r = pair.project('R', {10.0, 5.0, 3.0});
        std::ostringstream csv;
        csv << l.x << ',' << l.y << ',' << r.x << ',' << r.y << '\n';
        writeFile(folder / "pairs.csv", csv.str());
        writeFile(folder / "small.pgm", "P5\n4 3\n255\n123456789012");
        writeFile(folder / "file", "not a folder");
    }
    [[nodiscard]] std::string file(const std::string& name) const { return (folder / name).string(); }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> list;
        for (const auto& entry : fs::recursive_directory_iterator(folder / "")) {
            list.push_back(entry.path().string());
        }
        std::sort(list.begin(), list.end());
        return list;
    }
    // The command is refused and leaves the folder as it was.
    void refused(const std::vector<std::string>& arguments, int status, const std::vector<std::string>& words) const {
        SCOPED_TRACE(arguments.front() + " " + words.front());
        const std::vector<std::string> before = names();
        expectOneLine(zelm(arguments), status, words);
        EXPECT_EQ(names(), before);
    }
    // Every subcommand with this rig.
    void rigRefused(const std::string& path, const std::vector<std::string>& words) const {
        const std::string left = sampleFile("scene_left.png");
        const std::string right = sampleFile("scene_right.png");
        refused({"undistort", path, left, "--camera", "left", "-o", file("o")}, 1, words);
        refused({"rectify", path, left, right, "-o", file("o")}, 1, words);
        refused({"triangulate", path, file("pairs.csv"), "-o", file("o.csv")}, 1, words);
        refused({"epiline", path, "--point", "1,1", "--in", "left"}, 1, words);
    }
    void csvRefused(const std::string& csv, const std::vector<std::string>& words) const {
        writeFile(folder / "bad.csv", csv);
        refused({"triangulate", rig, file("bad.csv"), "-o", file("o.csv"), "--ply", file("o.ply")}, 1, words);
    }
};

TEST_F(MeasureBadInput, DamagedCalibrations) {
    const std::string good = readFile(rig);
    const auto changed = [&](std::size_t offset, const void* bytes, std::size_t count) {
        std::string bad = good;
        std::memcpy(bad.data() + offset, bytes, count);
        writeFile(folder / "bad.zcal", bad);
        return file("bad.zcal");
    };
    writeFile(folder / "bad.zcal", good.substr(0, good.size() - 8));
    rigRefused(file("bad.zcal"), {"bad.zcal", "1524 bytes, but 3 views take 1532"});
    writeFile(folder / "bad.zcal", good + "more");
    rigRefused(file("bad.zcal"), {"bad.zcal", "copied whole"});
    writeFile(folder / "bad.zcal", "");
    rigRefused(file("bad.zcal"), {"bad.zcal", "0 bytes"});
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    rigRefused(changed(460, &notANumber, sizeof(notANumber)), {"bad.zcal", "byte 460 is not finite"});
    const std::int32_t huge = 1 << 30;
    rigRefused(changed(8, &huge, sizeof(huge)), {"bad.zcal", "not a calibration"});
    const std::int32_t views = 4;
    rigRefused(changed(0, &views, sizeof(views)), {"bad.zcal", "4 views take 1772"});
    rigRefused(sampleFile("left_00.png"), {"left_00.png", "not a calibration"});
    rigRefused(file("missing.zcal"), {"missing.zcal", "No such file"});
    rigRefused(folder / "", {"is a folder"});
}

TEST_F(MeasureBadInput, PairsOfTwoParallelCamerasCannotTriangulate) {
    const std::string good = readFile(rig);
    std::string parallel = good;
    const std::int32_t model = 2;
    std::memcpy(parallel.data() + 4, &model, sizeof(model));
    std::memcpy(parallel.data() + 16, &model, sizeof(model));
    writeFile(folder / "parallel.zcal", parallel);
    refused({"triangulate", file("parallel.zcal"), file("pairs.csv"), "-o", file("o.csv")}, 1,
            {"parallel.zcal", "both cameras are parallel"});
}

TEST_F(MeasureBadInput, ImagesOfAnotherSize) {
    const std::string good = sampleFile("scene_left.png");
    const std::vector<std::string> words{"small.pgm", "4 x 3", "1280 x 960"};
    refused({"undistort", rig, good, file("small.pgm"), "--camera", "left", "-o", file("o")}, 1, words);
    refused({"rectify", rig, good, file("small.pgm"), "-o", file("o")}, 1, words);
    refused({"rectify", rig, file("small.pgm"), good, "-o", file("o")}, 1, words);
    refused({"epiline", rig, "--point", "1,1", "--in", "left", "--image", file("small.pgm"), "-o", file("o.png"),
             "--csv", file("o.csv")},
            1, words);
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("o.csv"), "--dots", good, file("small.pgm")}, 1, words);
}

TEST_F(MeasureBadInput, ImagesThatAreNone) {
    writeFile(folder / "left_x.png", "text");
    refused({"undistort", rig, file("left_x.png"), "-o", file("o")}, 1, {"left_x.png", "not an image"});
    refused({"undistort", rig, file("left_y.png"), "-o", file("o")}, 1, {"left_y.png", "no such file"});
    refused({"rectify", rig, file("left_y.png"), file("left_x.png"), "-o", file("o")}, 1,
            {"left_y.png", "cannot open"});
}

TEST_F(MeasureBadInput, PairFiles) {
    csvRefused("1,2,3,4\n1,2,x,4\n", {"bad.csv: line 2", "\"x\" is not a number", "xL,yL,xR,yR"});
    csvRefused("a,b,c,d\n", {"bad.csv: line 1", "\"a\" is not a number"});
    csvRefused("1,2,3,nan\n", {"bad.csv: line 1", "\"nan\" is not a number"});
    csvRefused("1,2,3,1e999\n", {"bad.csv: line 1", "\"1e999\""});
    csvRefused("1,2,3,\n", {"bad.csv: line 1", "\"\" is not a number"});
    csvRefused("1,2,3,4 px\n", {"bad.csv: line 1", "\"4 px\""});
    csvRefused("1,2,3\n", {"bad.csv: line 1", "3 fields"});
    csvRefused("\n# comment\n1,2,3,4\n5,6,7,8,9\n", {"bad.csv: line 4", "5 fields, but 4"});
    csvRefused("xL,yL,xR\n1,2,3\n", {"bad.csv: line 1", "does not name all"});
    csvRefused("xL,yL,xR,yR,xL\n1,2,3,4,5\n", {"bad.csv: line 1", "two columns"});
    csvRefused("", {"bad.csv", "holds no pixel pairs"});
    csvRefused("xL,yL,xR,yR\n", {"bad.csv", "holds no pixel pairs"});
    csvRefused("1,5;2,5;3,5;4,5\n", {"bad.csv: line 1", "is not a number"});
    csvRefused("\"a,1,2,3,4\n", {"bad.csv: line 1", "a quote must end"});
    csvRefused("\"a\"b,1,2,3,4\n", {"bad.csv: line 1", "a quote must end"});
    csvRefused(readFile(sampleFile("truth.json")), {"bad.csv: line 1"});
    csvRefused(readFile(sampleFile("left_00.png")).substr(0, 5000), {"bad.csv: line 1"});
    csvRefused("1e9,1e9,3,4\n1e9,1e9,3,4\n", {"bad.csv", "none of 2 pixel pairs", "2 outside"});
    refused({"triangulate", rig, file("none.csv"), "-o", file("o.csv")}, 1, {"none.csv", "cannot open"});
}

TEST_F(MeasureBadInput, OutputsThatCannotBeWritten) {
    const std::string left = sampleFile("left_00.png");
    const std::string right = sampleFile("right_00.png");
    const std::string below = file("file") + "/below";
    refused({"undistort", rig, left, "-o", below}, 2, {"file/below", "choose another with -o"});
    refused({"rectify", rig, left, right, "-o", file("file")}, 2, {"file", "choose another with -o"});
    refused({"triangulate", rig, file("pairs.csv"), "-o", below + "/o.csv"}, 2, {"file/below"});
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("o.csv"), "--ply", below + "/o.ply"}, 2, {"file/below"});
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("pairs.csv")}, 2, {"pairs.csv", "is an input"});
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("o.csv"), "--ply", file("o.csv")}, 2, {"o.csv", "both"});
    refused({"epiline", rig, "--point", "1,1", "--in", "right", "--csv", below + "/o.csv"}, 2, {"file/below"});
    refused({"epiline", rig, "--point", "1,1", "--in", "right", "--image", left, "-o", file("o.jpg")}, 2,
            {"o.jpg", ".png"});
    EXPECT_EQ(readFile(folder / "pairs.csv"), "650.61,510.177,698.343,491.711\n");
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("o.csv"), "--ply", file("./o.csv")}, 2, {"both"});
    refused({"epiline", rig, "--point", "1,1", "--in", "left", "--image", right, "-o", file("o.png"), "--csv",
             file("./o.png")},
            2, {"o.png", "two outputs"});
    refused({"triangulate", rig, file("pairs.csv"), "-o", ""}, 2, {"empty name"});
}

TEST_F(MeasureBadInput, OutputsThatAreInputs) {
    fs::copy_file(sampleFile("right_00.png"), file("right.png"));
    fs::copy_file(rig, file("copy.zcal"));
    refused({"epiline", rig, "--point", "1,1", "--in", "left", "--image", file("right.png"), "-o", file("right.png")},
            2, {"right.png", "is an input"});
    refused({"epiline", file("copy.zcal"), "--point", "1,1", "--in", "left", "--csv", file("copy.zcal")}, 2,
            {"copy.zcal", "is an input"});
    refused({"triangulate", rig, file("pairs.csv"), "--dots", file("right.png"), file("right.png"), "-o",
             file("right.png")},
            2, {"right.png", "is an input"});
    fs::copy_file(sampleFile("left_00.png"), file("a.png"));
    fs::copy_file(sampleFile("left_00.png"), file("a_undistorted.png"));
    refused({"undistort", rig, "--camera", "left", file("a.png"), file("a_undistorted.png"), "-o", file("")}, 2,
            {"a_undistorted.png", "is an input"});
    EXPECT_EQ(readFile(file("right.png")), readFile(sampleFile("right_00.png")));
    EXPECT_EQ(readFile(file("copy.zcal")), readFile(rig));
    EXPECT_EQ(readFile(file("a_undistorted.png")), readFile(sampleFile("left_00.png")));
}

// A file put in the place of a device would take it away from everyone else.
TEST_F(MeasureBadInput, OutputsThatAreNoFiles) {
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("pipe")}, 2, {"pipe", "give the output a name"});
    EXPECT_TRUE(fs::is_fifo(file("pipe")));
    refused({"triangulate", rig, file("pairs.csv"), "-o", "/dev/null"}, 2, {"/dev/null"});
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    fs::create_directory(file("folder"));
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("folder")}, 2, {"folder", "is a folder"});
}

TEST_F(MeasureBadInput, FailuresLeaveEarlierOutputsAlone) {
    writeFile(folder / "o.csv", "earlier");
    csvRefused("1,2,3\n", {"bad.csv"});
    EXPECT_EQ(readFile(folder / "o.csv"), "earlier");
}

TEST_F(MeasureBadInput, WrongUsage) {
    const std::string left = sampleFile("left_00.png");
    refused({"epiline", rig, "--point", "1,2,3", "--in", "left"}, 2, {"--point 1,2,3", "x,y"});
    refused({"epiline", rig, "--point", "1;2", "--in", "left"}, 2, {"--point 1;2"});
    refused({"epiline", rig, "--point", "1,2", "--in", "middle"}, 2, {"--in"});
    refused({"epiline", rig, "--in", "left"}, 2, {"--point"});
    refused({"epiline", rig, "--point", "1,2", "--in", "left", "-o", file("o.png")}, 2, {"--image"});
    refused({"epiline", rig, "--point", "1e9,1e9", "--in", "left"}, 1, {"distortion"});
    refused({"rectify", rig, left, left, "--reference", "1,2,3"}, 2, {"--reference 1,2,3"});
    refused({"rectify", rig, left, left, "--lines", "-1"}, 2, {"--lines"});
    refused({"rectify", rig, left}, 2, {"right"});
    refused({"undistort", rig, left, left, "-o", file("o")}, 2, {"left_00.png", "one at a time"});
    refused({"undistort", rig, left, "--camera", "L"}, 2, {"--camera"});
    refused({"triangulate", rig, file("pairs.csv")}, 2, {"--output"});
    refused({"triangulate", rig, file("pairs.csv"), "-o", file("o.csv"), "--dots", left}, 2, {"--dots"});
}

TEST_F(MeasureBadInput, SceneTruths) {
    writeFile(folder / "truth.json", R"({"points": [{"world": [1, 2]}]})");
    refused({"compare", rig, file("truth.json")}, 2, {"truth.json", "world"});
    writeFile(folder / "truth.json", R"({"points": [{"world": [1, 2, "3"]}]})");
    refused({"compare", rig, file("truth.json")}, 2, {"truth.json", "world"});
    writeFile(folder / "truth.json", R"({"points": [{"world": [1, 2, 3], "left": {"pixel": [1, 2]}}]})");
    refused({"compare", rig, file("truth.json")}, 2, {"truth.json", "right"});
    writeFile(folder / "truth.json", R"({"points": [{"world": [1, 2, 3], "left": 1, "right": {"pixel": [1, 2]}}]})");
    refused({"compare", rig, file("truth.json")}, 2, {"truth.json", "pixel"});
    writeFile(folder / "truth.json", R"({"points": [{"world": [1, 2, 3], "left": {"pixel": [640, 480]},
        "right": {"pixel": [640, 480]}, "dot_outline_centroid_left": [1, 2], "dot_outline_centroid_right": [1, 2]}]})");
    refused({"compare", rig, file("truth.json")}, 2, {"truth.json", "left_image"});
}

TEST_F(MeasureBadInput, HelpTellsTheOptions) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"undistort", {"--camera", "--output", "Example:\n  zelm undistort"}},
        {"rectify", {"--reference", "--depth", "--pairs", "Example:\n  zelm rectify"}},
        {"triangulate", {"--ply", "--dots", "--polarity", "Example:\n  zelm triangulate"}},
        {"epiline", {"--point", "--in", "--image", "Example:\n  zelm epiline"}},
    };
    const CommandResult all = zelm({"--help"});
    for (const auto& [name, words] : cases) {
        EXPECT_NE(all.output.find(name), std::string::npos) << name;
        const CommandResult help = zelm({name, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_EQ(help.errors, "");
        for (const std::string& word : words) {
            EXPECT_NE(help.output.find(word), std::string::npos) << name << ": " << word;
        }
    }
}

}  // namespace
}  // namespace zelmtest
