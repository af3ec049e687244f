// Plates that `zelm plate` makes are read with the plate.json beside them: every dot, at its place, with the right
// handedness, whatever else is printed on the sheet.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>

#include "plateBitmap.h"
#include "toolFixtures.h"

namespace zelmtest {
namespace {

struct Sheet {
    const char* name;
    std::vector<std::string> options;
    int columns, rows;  // on either side of the corner marker
    double pitchX, pitchY;
    double distance;  // millimetres
    double tiltX, tiltY, roll;
    double desk;  // ink of the desk: 0 black, 255 white
};

const Sheet kSheets[] = {
    {"dark", {"--field", "120x100", "--page", "A4"}, 6, 5, 10.0, 10.0, 420.0, 0.35, 0.2, 0.1, 60.0},
    {"darkOnWhiteDesk", {"--field", "120x100"}, 6, 5, 10.0, 10.0, 420.0, -0.3, 0.3, 1.7, 255.0},
    {"bright", {"--field", "120x100", "--polarity", "bright"}, 6, 5, 10.0, 10.0, 420.0, 0.2, -0.35, 0.3, 255.0},
    {"brightOnDarkDesk", {"--field", "120x100", "--polarity", "bright"}, 6, 5, 10.0, 10.0, 420.0, 0.1, 0.3, 3.0, 90.0},
    {"oblong",
     {"--field", "120x96", "--pitch", "10x8", "--dot", "3.2", "--marker", "5.6", "--markers-at", "30,32"},
     6,
     6,
     10.0,
     8.0,
     420.0,
     0.3,
     -0.2,
     -0.4,
     60.0},
    {"small", {"--field", "36x28", "--pitch", "2", "--page", "A5"}, 9, 7, 2.0, 2.0, 110.0, 0.3, 0.1, 0.2, 60.0},
};

struct SeenDot {
    double x, y;  // on the plate
    double pixelX, pixelY;
};

std::map<std::pair<int, int>, SeenDot> readDots(const fs::path& csv) {
    std::map<std::pair<int, int>, SeenDot> dots;
    std::istringstream lines(readFile(csv));
    std::string line;
    std::getline(lines, line);  // the header
    while (std::getline(lines, line)) {
        int column = 0;
        int row = 0;
        SeenDot dot{};
        EXPECT_EQ(
            std::sscanf(line.c_str(), "%d,%d,%lf,%lf,%lf,%lf", &column, &row, &dot.x, &dot.y, &dot.pixelX, &dot.pixelY),
            6);
        EXPECT_TRUE(dots.insert({{column, row}, dot}).second);
    }
    return dots;
}

class PlateReading : public testing::TestWithParam<Sheet> {};

TEST_P(PlateReading, EveryDotIsReadAtItsPlace) {
    const Sheet& sheet = GetParam();
    constexpr int kDpi = 300;
    const TemporaryFolder folder;
    std::vector<std::string> arguments{"plate",          "-o",    (folder / "out").string(), "--format",
                                       "png,svg",        "--dpi", std::to_string(kDpi),      "--name",
                                       "oOo 0000 OO (8)"};
    arguments.insert(arguments.end(), sheet.options.begin(), sheet.options.end());
    const CommandResult made = zelm(arguments);
    ASSERT_EQ(made.status, 0) << made.errors;
    EXPECT_EQ(made.errors, "");
    const PlateBitmap bitmap(zelm::tool::readPicture(folder / "out" / "plate.png"), kDpi);
    const std::vector<SheetCircle> circles = circlesOfSvg(readFile(folder / "out" / "plate.svg"));
    ASSERT_FALSE(circles.empty());
    const double cornerX = circles[circles.size() / 2].x;  // the corner marker stands in the middle
    const double cornerY = circles[circles.size() / 2].y;
    const SheetCamera camera = cameraBefore(cornerX, cornerY, sheet.distance, sheet.tiltX, sheet.tiltY, sheet.roll);
    writeFile(folder / "view.pgm", [&] {
        const zelm::tool::Picture view = camera.view(bitmap, sheet.desk);
        return pgmBytes({view.width, view.height, std::string(view.pixels.begin(), view.pixels.end())});
    }());

    const CommandResult read = zelm({"detect", (folder / "view.pgm").string(), "--plate",
                                     (folder / "out" / "plate.json").string(), "-o", (folder / "dots").string()});
    ASSERT_EQ(read.status, 0) << read.errors;
    const auto dots = readDots(folder / "dots" / "view_dots.csv");
    EXPECT_EQ(dots.size(), static_cast<std::size_t>((2 * sheet.columns + 1) * (2 * sheet.rows + 1)));
    double worst = 0.0;
    for (const auto& [index, dot] : dots) {
        EXPECT_NEAR(dot.x, index.first * sheet.pitchX, 1e-9);
        EXPECT_NEAR(dot.y, index.second * sheet.pitchY, 1e-9);
        const auto pixel = camera.pixelOf(cornerX + dot.x, cornerY + dot.y);
        worst = std::max(worst, std::hypot(pixel[0] - dot.pixelX, pixel[1] - dot.pixelY));
    }
    // Pixels. The middle of an outline is off the image of the dot's centre by up to r^2 tan(tilt) / Z for a dot of the
    // radius r: a tenth of a pixel for the markers at these tilts. A mirrored plate would be off by tens of pixels.
    EXPECT_LT(worst, 0.2);
}

INSTANTIATE_TEST_SUITE_P(Sheets, PlateReading, testing::ValuesIn(kSheets),
                         [](const testing::TestParamInfo<Sheet>& sheet) { return std::string(sheet.param.name); });

}  // namespace
}  // namespace zelmtest
