// Images whose plate cannot be read: the cause with its figures, the exit code, and the picture that shows the spots.
#include <cmath>
#include <functional>
#include <set>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

constexpr double kPi = 3.14159265358979323846;

double levelAt(const Pgm& pgm, double x, double y) {
    const double cx = std::clamp(x, 0.0, pgm.width - 1.001);
    const double cy = std::clamp(y, 0.0, pgm.height - 1.001);
    const int left = static_cast<int>(cx);
    const int top = static_cast<int>(cy);
    const auto at = [&](int column, int row) {
        return static_cast<double>(
            static_cast<unsigned char>(pgm.pixels[static_cast<std::size_t>(row * pgm.width + column)]));
    };
    const double u = cx - left;
    const double v = cy - top;
    return (1 - v) * ((1 - u) * at(left, top) + u * at(left + 1, top)) +
           v * ((1 - u) * at(left, top + 1) + u * at(left + 1, top + 1));
}

// Each pixel anew, from its place and its level.
Pgm changed(const Pgm& pgm, const std::function<double(int, int, double)>& level) {
    Pgm result = pgm;
    for (int y = 0; y < pgm.height; ++y) {
        for (int x = 0; x < pgm.width; ++x) {
            char& pixel = result.pixels[static_cast<std::size_t>(y * pgm.width + x)];
            const double value = level(x, y, static_cast<unsigned char>(pixel));
            pixel = static_cast<char>(static_cast<unsigned char>(std::clamp(std::lround(value), 0L, 255L)));
        }
    }
    return result;
}

// Moved by so many pixels in that direction while the shutter was open.
Pgm smeared(const Pgm& pgm, double length, double degrees) {
    const int steps = 2 * static_cast<int>(length);
    const double c = std::cos(degrees * kPi / 180.0);
    const double s = std::sin(degrees * kPi / 180.0);
    return changed(pgm, [&](int x, int y, double) {
        double sum = 0.0;
        for (int k = 0; k < steps; ++k) {
            const double way = length * ((k + 0.5) / steps - 0.5);
            sum += levelAt(pgm, x + way * c, y + way * s);
        }
        return sum / steps;
    });
}

// Four boxes of that width in each direction: a normal blur of 0.577 of it.
Pgm blurred(Pgm pgm, double width) {
    for (int k = 0; k < 4; ++k) {
        pgm = smeared(smeared(pgm, width, 0.0), width, 90.0);
    }
    return pgm;
}

class ImageDiagnosis : public testing::Test {
protected:
    std::string at(const std::string& name) const { return (folder / name).string(); }

    std::string write(const std::string& name, const Pgm& pgm) const {
        writeFile(folder / name, pgmBytes(pgm));
        return at(name);
    }

    std::string plateWith(const std::string& field, const Json& value) const {
        Json json = Json::parse(readFile(smallRig() / "plate.json"));
        json[field] = value;
        writeFile(folder / "plate.json", json.dump());
        return at("plate.json");
    }

    // The line says so, and a picture is all that is written.
    void expectDiagnosis(const std::string& image, const std::vector<std::string>& words,
                         const std::string& plate = smallRigFile("plate.json")) const {
        SCOPED_TRACE(image);
        fs::remove_all(folder / "out");
        const CommandResult run = zelm({"detect", image, "--plate", plate, "-o", at("out")});
        const fs::path shown = folder / "out" / "failed" / (fs::path(image).stem().string() + "_failed.png");
        std::vector<std::string> all{image, shown.string()};
        all.insert(all.end(), words.begin(), words.end());
        expectOneLine(run, 1, all);
        EXPECT_EQ(files(folder / "out"), std::set<std::string>{shown.string()});
        EXPECT_EQ(readFile(shown).substr(0, 8), "\x89PNG\r\n\x1a\n");
    }

    static std::set<std::string> files(const fs::path& in) {
        std::set<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(in)) {
            if (entry.is_regular_file()) {
                names.insert(entry.path().string());
            }
        }
        return names;
    }

    static Pgm good(int view = 0, const std::string& side = "left") {
        return readPgmFile(smallRig() / (side + "_0" + std::to_string(view) + ".pgm"));
    }

    TemporaryFolder folder;
};

TEST_F(ImageDiagnosis, OutOfFocusAndMotionAreToldApart) {
    expectDiagnosis(write("soft.pgm", blurred(good(), 6)), {"out of focus", "on dots of radius", "focus the lens"});
    expectDiagnosis(write("moved.pgm", smeared(good(), 16, 30)),
                    {"motion blur", "degrees", "hold plate and cameras still"});
}

TEST_F(ImageDiagnosis, LevelsThatAreToBlame) {
    const auto scaled = [](double gain, double base) {
        return changed(good(), [=](int, int, double level) { return base + gain * level; });
    };
    expectDiagnosis(write("dark.pgm", scaled(1.0 / 16, 0)), {"nearly black", "levels up to 12 of 255"});
    expectDiagnosis(write("bright.pgm", scaled(30, 0)), {"overexposed", "% of the pixels", "shorter"});
    expectDiagnosis(write("faint.pgm", scaled(0.04, 120)), {"too little contrast", "dots of gray level 121"});
    expectDiagnosis(write("flat.pgm", scaled(0.0, 64)), {"no plate found", "from 64 to 64"});
}

TEST_F(ImageDiagnosis, BitsAtTheFootOfAFileOf16AreNamed) {
    const Pgm pgm = good();
    std::string bytes = "P5\n640 480\n65535\n";
    for (const char pixel : pgm.pixels) {
        const int level = 16 * static_cast<unsigned char>(pixel) + 7;
        bytes += static_cast<char>(level / 256);
        bytes += static_cast<char>(level % 256);
    }
    writeFile(folder / "twelve.pgm", bytes);
    expectDiagnosis(at("twelve.pgm"), {"of 65535", "12 bits in a file of 16", "scale the levels up by 16"});
}

TEST_F(ImageDiagnosis, WhatStandsBeforeThePlateOrShinesOnIt) {
    const std::vector<double> corner = truePixel(0, "left", 0, 0);
    const std::vector<double> marker = truePixel(0, "left", 2, 0);
    expectDiagnosis(write("shiny.pgm", changed(good(),
                                               [&](int x, int y, double level) {
                                                   const double r = std::hypot(x - marker[0], y - marker[1]);
                                                   return level + 500.0 / (1.0 + std::exp(0.3 * (r - 60.0)));
                                               })),
                    {"a reflection hides dots", "of 3 markers", "move the light"});
    expectDiagnosis(write("hand.pgm", changed(good(),
                                              [&](int x, int, double level) {
                                                  return x > std::min(corner[0], marker[0]) - 15 ? 70.0 : level;
                                              })),
                    {"covered", "of 3 markers"});
    writeFile(folder / "hidden.pgm", withoutMarker(0, "left"));
    expectDiagnosis(at("hidden.pgm"), {"only 2 of 3 markers found among 62 dots"});
}

TEST_F(ImageDiagnosis, APlateThatTheImageCutsOff) {
    const Pgm whole = good();
    const int from = static_cast<int>(truePixel(0, "left", 0, 0)[0]) + 5;
    Pgm cut{640 - from, 480, {}};
    for (int y = 0; y < 480; ++y) {
        cut.pixels +=
            whole.pixels.substr(static_cast<std::size_t>(640 * y + from), static_cast<std::size_t>(cut.width));
    }
    expectDiagnosis(write("cut.pgm", cut), {"cut off at the left", "of 63 dots", "of 3 markers found"});
}

TEST_F(ImageDiagnosis, PlateFilesThatContradictTheImage) {
    const std::string image = smallRigFile("left_00.pgm");
    expectDiagnosis(image, {"63 dark dots found, but no bright ones", "\"dark\""}, plateWith("polarity", "bright"));
    expectDiagnosis(image, {"63 dots found, but the x marker stands 2 pitches away", "the plate file says 3"},
                    plateWith("markerDistanceX", 30));
    // With twice the distance the reader finds a grid, of every second column.
    const std::string twice = plateWith("markerDistanceX", 40);
    expectDiagnosis(image, {"63 dots found, but the x marker stands 2 pitches away", "the plate file says 4"}, twice);
    expectDiagnosis(image, {"the markers are 1.7", "times as large as the dots, the plate file says 2.4"},
                    plateWith("markerDiameter", 9.7));
    expectDiagnosis(image, {"63 dots in 9 columns and 7 rows found, fewer than 100"}, plateWith("minDots", 100));
}

// Whatever reads images refuses a grid that only every second column has, and says what is wrong.
TEST_F(ImageDiagnosis, NothingIsMadeOfAGridOfEverySecondDot) {
    const std::string twice = plateWith("markerDistanceX", 40);
    std::vector<std::string> left{"--left"};
    std::vector<std::string> right{"--right"};
    for (const char* number : {"0", "1", "2"}) {
        left.push_back(smallRigFile("left_0" + std::string(number) + ".pgm"));
        right.push_back(smallRigFile("right_0" + std::string(number) + ".pgm"));
    }
    const std::vector<std::string> calibrate{"calibrate", "--plate", twice, "-o", at("out")};
    const std::vector<std::string> verify{
        "verify", (calibratedSmallRig() / "rig.zcal").string(), "--plate", twice, "-o", at("out/lengths.csv")};
    const auto joined = [](std::vector<std::string> call, const std::vector<std::vector<std::string>>& more) {
        for (const std::vector<std::string>& list : more) {
            call.insert(call.end(), list.begin(), list.end());
        }
        return call;
    };
    for (const std::vector<std::string>& call :
         {joined(calibrate, {left, right}), joined(calibrate, {left}), joined(verify, {left, right})}) {
        const CommandResult run = zelm(call);
        EXPECT_EQ(run.status, 1) << call.front();
        EXPECT_NE(run.errors.find("the x marker stands 2 pitches away from the corner marker, the plate file says 4"),
                  std::string::npos)
            << run.errors;
        for (const char* made : {"rig.zcal", "camera.json", "lengths.csv"}) {
            EXPECT_FALSE(fs::exists(folder / "out" / made)) << call.front() << " wrote " << made;
        }
    }
}

TEST_F(ImageDiagnosis, DotsThatAreTooSmall) {
    const Pgm whole = good();
    Pgm small = changed(whole, [&](int, int, double) { return 12.0; });
    for (int y = 0; y < 120; ++y) {
        for (int x = 0; x < 160; ++x) {
            double sum = 0.0;
            for (int k = 0; k < 16; ++k) {
                sum += levelAt(whole, 4 * x + k % 4, 4 * y + k / 4);
            }
            small.pixels[static_cast<std::size_t>(640 * (y + 150) + x + 200)] =
                static_cast<char>(static_cast<unsigned char>(sum / 16.0));
        }
    }
    expectDiagnosis(write("small.pgm", small), {"the dots are too small", "pixels wide, where 10 are needed"});
}

TEST_F(ImageDiagnosis, SpotsInNoRowsAreNoPlate) {
    Pgm pgm{640, 480, std::string(640 * 480, '\x30')};
    for (const auto& [x, y, r] : {std::tuple{100, 90, 30}, {300, 300, 50}, {500, 120, 20}, {420, 400, 60}}) {
        cover(pgm, x, y, r, 190);
    }
    expectDiagnosis(write("none.pgm", pgm), {"no plate found", "0 of ", "rows and columns"});
}

TEST_F(ImageDiagnosis, ImagesOfOneFaultAreOneLine) {
    for (int view = 0; view < 6; ++view) {
        for (const std::string side : {"left", "right"}) {
            const bool isBad = side == "left" && view < 3;
            Pgm pgm = good(view, side);
            write(side + "_0" + std::to_string(view) + ".pgm", isBad ? smeared(pgm, 20, 0) : pgm);
        }
    }
    const auto run = [&](const std::vector<std::string>& more) {
        return calibrate(at("left_*.pgm"), at("right_*.pgm"), at("out"), more);
    };
    const std::string three = at("left_00.pgm") + ", " + at("left_01.pgm") + " and 1 more: motion blur";
    const CommandResult skipped = run({"--no-adjust"});
    EXPECT_EQ(skipped.status, 0) << skipped.errors;
    EXPECT_NE(skipped.errors.find("skipping 3 views: " + three), std::string::npos) << skipped.errors;
    for (const char* name : {"left_00", "left_01", "left_02"}) {
        EXPECT_TRUE(fs::exists(folder / "out" / "failed" / (std::string(name) + "_failed.png"))) << name;
    }

    // One more, and too few are left: nothing but pictures, and one line that ends it.
    fs::remove_all(folder / "out");
    write("right_04.pgm", smeared(good(4, "right"), 20, 0));
    const CommandResult refused = run({"--no-adjust"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.errors.find("zelm: only 2 of 6 views can be read and 3 are needed"), std::string::npos)
        << refused.errors;
    EXPECT_NE(refused.errors.find("motion blur"), std::string::npos) << refused.errors;
    EXPECT_EQ(files(folder / "out").size(), 4U);

    // What is read again takes its picture away.
    for (int view = 0; view < 3; ++view) {
        write("left_0" + std::to_string(view) + ".pgm", good(view));
    }
    write("right_04.pgm", good(4, "right"));
    EXPECT_EQ(run({"--no-adjust"}).status, 0);
    for (const std::string& name : files(folder / "out")) {
        EXPECT_EQ(name.find("_failed"), std::string::npos) << name;
    }
}

TEST_F(ImageDiagnosis, APlateReadInPartSaysWhy) {
    const Pgm whole = good();
    // The outermost column of dots lies outside.
    const double first = truePixel(0, "left", -4, 0)[0];
    const double second = truePixel(0, "left", 4, 0)[0];
    ASSERT_NE(first, second);
    double from = 0.0;
    for (int row = -3; row <= 3; ++row) {
        from = std::max(from, truePixel(0, "left", first < second ? -4 : 4, row)[0]);
    }
    const int left = static_cast<int>(from) + 4;
    Pgm cut{640 - left, 480, {}};
    for (int y = 0; y < 480; ++y) {
        cut.pixels +=
            whole.pixels.substr(static_cast<std::size_t>(640 * y + left), static_cast<std::size_t>(cut.width));
    }
    const std::string image = write("part.pgm", cut);
    const CommandResult run = zelm({"detect", image, "--plate", smallRigFile("plate.json"), "-o", at("out")});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.errors.find("of 63 dots read: cut off at the left"), std::string::npos) << run.errors;
}

// As of calibrate: views with one fault are one line, and their pictures stand beside the outputs.
TEST_F(ImageDiagnosis, VerifyShowsWhatItCannotRead) {
    std::vector<std::string> left;
    std::vector<std::string> right;
    for (int view = 0; view < 3; ++view) {
        const std::string number = "_0" + std::to_string(view) + ".pgm";
        right.push_back(smallRigFile("right" + number));
        left.push_back(smallRigFile("left" + number));
        if (view < 2) {
            left.back() = at("left" + number);
            writeFile(left.back(), withoutMarker(view, "left"));
        }
    }
    const auto verify = [&](int views) {
        std::vector<std::string> call{"verify",  (calibratedSmallRig() / "rig.zcal").string(),
                                      "--plate", smallRigFile("plate.json"),
                                      "-o",      at("out/lengths.csv")};
        call.emplace_back("--left");
        call.insert(call.end(), left.begin(), left.begin() + views);
        call.emplace_back("--right");
        call.insert(call.end(), right.begin(), right.begin() + views);
        return zelm(call);
    };
    const CommandResult some = verify(3);
    EXPECT_EQ(some.status, 0) << some.errors;
    EXPECT_EQ(some.errors.rfind("zelm: warning: skipping 2 views: " + left[0] + " and " + left[1] + ": ", 0), 0U)
        << some.errors;
    EXPECT_EQ(std::count(some.errors.begin(), some.errors.end(), '\n'), 1) << some.errors;
    for (const char* name : {"left_00_failed.png", "left_01_failed.png"}) {
        EXPECT_TRUE(fs::exists(folder / "out" / "failed" / name)) << name;
    }
    fs::remove_all(folder / "out");
    const CommandResult none = verify(2);
    expectOneLine(none, 1, {"none of 2 views can be read: " + left[0], at("out/failed") + " shows what was found"});
    EXPECT_TRUE(fs::exists(folder / "out" / "failed" / "left_01_failed.png"));
    EXPECT_FALSE(fs::exists(folder / "out" / "lengths.csv"));
    // Once the images are read, their pictures go.
    left[0] = smallRigFile("left_00.pgm");
    EXPECT_EQ(verify(2).status, 0);
    EXPECT_FALSE(fs::exists(folder / "out" / "failed" / "left_00_failed.png"));
    EXPECT_TRUE(fs::exists(folder / "out" / "failed" / "left_01_failed.png"));
}

}  // namespace
