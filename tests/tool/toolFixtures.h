// What the tests of the tool share: running it as a user would, and a small rendered rig to run it on.
#ifndef ZELM_TEST_TOOL_FIXTURES_H
#define ZELM_TEST_TOOL_FIXTURES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "commandRun.h"

namespace zelmtest {

namespace fs = std::filesystem;
using Json = nlohmann::json;

inline CommandResult zelm(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ZELM_PROGRAM);
    return runCommand(arguments);
}

// Six views of 63 dots, 640 x 480, as PGM, rendered once for each test program.
inline const fs::path& smallRig() {
    static const TemporaryFolder folder;
    static const fs::path path = [] {
        writeFile(folder / "rig.json", R"({
            "plate": {"columns": [-4, 4], "rows": [-3, 3], "markerColumn": 2, "markerRow": 2},
            "left": {"width": 640, "height": 480, "fx": 844, "fy": 843.3, "cx": 321, "cy": 238.5, "k1": -0.1},
            "right": {"width": 640, "height": 480, "fx": 847, "fy": 846.2, "cx": 318.5, "cy": 241, "k1": -0.09},
            "rightFromLeft": {"rotation": [0.4, 10, -0.7], "translation": [-60, 1.2, 6]},
            "optics": {"noiseSigma": 1.5},
            "views": {"count": 6, "seed": 5, "maxTilt": 25}})");
        const CommandResult made =
            zelm({"simulate", (folder / "rig.json").string(), "--format", "pgm", "-o", (folder / "views").string()});
        EXPECT_EQ(made.status, 0) << made.errors;
        return folder / "views";
    }();
    return path;
}

inline std::string smallRigFile(const std::string& name) {
    return (smallRig() / name).string();
}

// A binary PGM taken apart.
struct Pgm {
    int width = 0;
    int height = 0;
    std::string pixels;
};

inline Pgm readPgmFile(const fs::path& path) {
    const std::string bytes = readFile(path);
    Pgm pgm;
    int most = 0;
    int used = 0;
    if (std::sscanf(bytes.c_str(), "P5 %d %d %d%n", &pgm.width, &pgm.height, &most, &used) == 3) {
        pgm.pixels = bytes.substr(static_cast<std::size_t>(used) + 1);
    }
    EXPECT_EQ(pgm.pixels.size(), static_cast<std::size_t>(pgm.width) * static_cast<std::size_t>(pgm.height)) << path;
    return pgm;
}

inline std::string pgmBytes(const Pgm& pgm) {
    return "P5\n" + std::to_string(pgm.width) + " " + std::to_string(pgm.height) + "\n255\n" + pgm.pixels;
}

// Covers a disc of the image with one gray level.
inline void cover(Pgm& pgm, double x, double y, double radius, int level) {
    for (int row = 0; row < pgm.height; ++row) {
        for (int column = 0; column < pgm.width; ++column) {
            if ((column - x) * (column - x) + (row - y) * (row - y) < radius * radius) {
                pgm.pixels[static_cast<std::size_t>(row * pgm.width + column)] = static_cast<char>(level);
            }
        }
    }
}

// Where the truth says that a dot is.
inline std::vector<double> truePixel(int view, const std::string& side, int gridX, int gridY) {
    const Json truth = Json::parse(readFile(smallRig() / "truth.json"));
    for (const Json& dot : truth["views"][static_cast<std::size_t>(view)][side]["dots"]) {
        if (dot["grid"] == Json::array({gridX, gridY})) {
            return dot["pixel"].get<std::vector<double>>();
        }
    }
    ADD_FAILURE() << "no such dot";
    return {0.0, 0.0};
}

// The image of a view with its x marker covered.
inline std::string withoutMarker(int view, const std::string& side) {
    Pgm pgm = readPgmFile(smallRig() / (side + "_0" + std::to_string(view) + ".pgm"));
    const std::vector<double> marker = truePixel(view, side, 2, 0);
    constexpr double kMoreThanAMarker = 22.0;  // pixels
    constexpr int kPlateLevel = 190;
    cover(pgm, marker[0], marker[1], kMoreThanAMarker, kPlateLevel);
    return pgmBytes(pgm);
}

// `zelm calibrate` on the small rig or on other sets, with further options.
inline CommandResult calibrate(const std::string& left, const std::string& right, const std::string& out,
                               const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{
        "calibrate", "--plate", smallRigFile("plate.json"), "--left", left, "--right", right, "-o", out};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return zelm(arguments);
}

// The small rig calibrated, with overlays, once for each test program.
inline const fs::path& calibratedSmallRig() {
    static const TemporaryFolder folder;
    static const fs::path path = [] {
        const CommandResult result = calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"),
                                               (folder / "out").string(), {"--overlays"});
        EXPECT_EQ(result.status, 0) << result.errors;
        return folder / "out";
    }();
    return path;
}

// One line on stderr that begins with "zelm: " and holds every one of the words; on stdout nothing, or with --json the
// one object that tells the failure.
inline void expectOneLine(const CommandResult& result, int status, const std::vector<std::string>& words) {
    EXPECT_EQ(result.status, status) << result.errors;
    if (!result.output.empty()) {
        EXPECT_EQ(result.output.rfind("{\n  \"status\": \"failed\",\n", 0), 0U) << result.output;
        EXPECT_TRUE(result.output.ends_with("}\n")) << result.output;
    }
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_EQ(result.errors.rfind("zelm: ", 0), 0U) << result.errors;
    for (const std::string& word : words) {
        EXPECT_NE(result.errors.find(word), std::string::npos) << "lacks '" << word << "': " << result.errors;
    }
}

}  // namespace zelmtest

#endif
