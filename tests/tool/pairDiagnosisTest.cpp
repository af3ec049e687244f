// zelm calibrate on images that do not belong together: the fault is named, with the image that would fit, and the
// result is refused where it is not to be trusted.
#include <functional>

#include "toolFixtures.h"

using namespace zelmtest;

namespace {

using Images = std::vector<std::string>;

class PairDiagnosis : public testing::Test {
protected:
    std::string at(const std::string& name) const { return (folder / name).string(); }

    static std::string image(const std::string& side, int view) {
        return smallRigFile(side + "_0" + std::to_string(view) + ".pgm");
    }
    static Images images(const std::string& side, const std::vector<int>& views = {0, 1, 2, 3, 4, 5}) {
        Images names;
        for (const int view : views) {
            names.push_back(image(side, view));
        }
        return names;
    }
    std::string list(const std::string& name, const Images& names) const {
        std::string text;
        for (const std::string& file : names) {
            text += file + "\n";
        }
        writeFile(folder / name, text);
        return at(name);
    }
    CommandResult run(const Images& left, const Images& right, std::vector<std::string> more = {}) const {
        more.emplace_back("--quiet");
        return calibrate(list("left.txt", left), list("right.txt", right), at("out"), more);
    }
    // An image of the rig changed pixel by pixel, under a name of its own.
    std::string changed(const std::string& source, const std::string& name,
                        const std::function<void(Pgm&)>& change) const {
        Pgm pgm = readPgmFile(source);
        change(pgm);
        writeFile(folder / name, pgmBytes(pgm));
        return at(name);
    }
    Json saved() const { return Json::parse(readFile(at("out/rig.json"))); }
    // The run ends well, with a verdict of doubt about one cause.
    void expectDoubt(const CommandResult& result, const std::string& cause, const std::vector<std::string>& words) {
        ASSERT_EQ(result.status, 0) << result.errors;
        for (const std::string& word : words) {
            EXPECT_NE(result.errors.find(word), std::string::npos) << "lacks '" << word << "': " << result.errors;
        }
        const Json json = saved();
        EXPECT_EQ(json["verdict"]["status"], "doubtful");
        ASSERT_EQ(json["verdict"]["causes"].size(), 1U) << json["verdict"].dump(1);
        EXPECT_EQ(json["verdict"]["causes"][0]["cause"], cause);
        EXPECT_FALSE(json["verdict"]["causes"][0]["images"].empty());
        EXPECT_EQ(json["warnings"].size(), 1U);
        const std::string report = readFile(at("out/report.html"));
        EXPECT_NE(report.find("doubtful"), std::string::npos);
        EXPECT_NE(report.find(words.front()), std::string::npos);
    }
    void expectRefused(const CommandResult& result, const std::vector<std::string>& words) {
        expectOneLine(result, 1, words);
        EXPECT_FALSE(fs::exists(at("out")));
    }

    TemporaryFolder folder;
};

void turnHalf(Pgm& pgm) {
    std::reverse(pgm.pixels.begin(), pgm.pixels.end());
}

void mirror(Pgm& pgm) {
    for (int row = 0; row < pgm.height; ++row) {
        std::reverse(pgm.pixels.begin() + row * pgm.width, pgm.pixels.begin() + (row + 1) * pgm.width);
    }
}

TEST_F(PairDiagnosis, AGoodSet) {
    ASSERT_EQ(run(images("left"), images("right")).errors, "");
    const Json verdict = saved()["verdict"];
    EXPECT_EQ(verdict["status"], "good");
    EXPECT_TRUE(verdict["causes"].empty());
}

TEST_F(PairDiagnosis, AListShiftedByOne) {
    expectRefused(run(images("left", {0, 1, 2, 3, 4}), images("right", {1, 2, 3, 4, 5})),
                  {"right_01.pgm fits left_01.pgm", "different poses", "is a list shifted by one?", "--force",
                   "by their numbers, too"});
    expectRefused(run(images("left", {0, 1, 2}), images("right", {1, 2, 3})),
                  {"right_01.pgm fits left_01.pgm", "right_02.pgm fits left_02.pgm", "is a list shifted by one?"});
    expectRefused(run(images("left"), images("right", {2, 3, 4, 5, 0, 1})),
                  {"right_02.pgm fits left_02.pgm", "is a list shifted by 2?"});
    // One image is missing on the right, and all that follow are shifted.
    expectRefused(run(images("left", {0, 1, 2, 3, 4}), images("right", {0, 1, 3, 4, 5})),
                  {image("left", 2) + " and " + image("right", 3), "right_03.pgm fits left_03.pgm",
                   "is a list shifted by one, an image missing or too many before this one?"});
}

TEST_F(PairDiagnosis, TwelveViewsShiftedByOne) {
    const std::string sample = std::string(ZELM_SOURCE_DIR) + "/samples/desk-rig/";
    Images left;
    Images right;
    for (int view = 0; view < 12; ++view) {
        const auto number = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n) + ".png"; };
        left.push_back(sample + "left_" + number(view));
        right.push_back(sample + "right_" + number((view + 1) % 12));
    }
    const CommandResult result = zelm({"calibrate", "--plate", sample + "truth.json", "--left", list("l.txt", left),
                                       "--right", list("r.txt", right), "-o", at("out"), "--quiet"});
    expectRefused(result, {"right_01.png fits left_01.png", "is a list shifted by one?", "12 in all"});
}

TEST_F(PairDiagnosis, ForcedAndForMachines) {
    const Images left = images("left", {0, 1, 2, 3, 4});
    const Images right = images("right", {1, 2, 3, 4, 5});
    const CommandResult refused = run(left, right, {"--json"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_FALSE(fs::exists(at("out")));
    const Json json = Json::parse(refused.output);
    EXPECT_EQ(json["verdict"]["status"], "refused");
    EXPECT_EQ(json["verdict"]["causes"][0]["cause"], "list-shifted");
    EXPECT_EQ(json["verdict"]["causes"][0]["images"].size(), 10U);

    const CommandResult forced = run(left, right, {"--force"});
    EXPECT_EQ(forced.status, 0) << forced.errors;
    EXPECT_NE(forced.errors.find("is a list shifted by one?"), std::string::npos);
    EXPECT_EQ(saved()["verdict"]["status"], "refused");
    EXPECT_NE(readFile(at("out/report.html")).find("refused"), std::string::npos);
    const CommandResult compared = zelm({"compare", at("out/rig.zcal"), smallRigFile("truth.json")});
    EXPECT_NE(compared.errors.find("Refused, not to be measured with"), std::string::npos) << compared.errors;
}

TEST_F(PairDiagnosis, TwoViewsExchanged) {
    expectDoubt(run(images("left"), images("right", {0, 1, 4, 3, 2, 5})), "views-exchanged",
                {image("left", 2) + " and " + image("right", 4), "right_04.pgm fits left_04.pgm",
                 "right_02.pgm fits left_02.pgm", "exchange right_04.pgm and right_02.pgm in --right"});
    EXPECT_EQ(saved()["views"].size(), 4U);
    EXPECT_EQ(saved()["skipped"].size(), 2U);
    // Of four views two are left: too few.
    fs::remove_all(at("out"));
    expectRefused(run(images("left", {0, 1, 2, 3}), images("right", {0, 1, 3, 2})),
                  {"right_03.pgm fits left_03.pgm", "too few views are left"});
}

TEST_F(PairDiagnosis, Copies) {
    Images right = images("right");
    right[3] = changed(image("right", 5), "copy.pgm", [](Pgm&) {});
    expectDoubt(run(images("left"), right), "copy",
                {at("copy.pgm") + ": as view 3 this is a copy of right_05.pgm of view 5", "together with left_03.pgm"});
    right[3] = right[5];
    expectDoubt(run(images("left"), right), "copy", {image("right", 5) + ": as view 3 this is the same file as"});
}

TEST_F(PairDiagnosis, AViewTakenTwice) {
    Images left = images("left");
    Images right = images("right");
    left.push_back(left[1]);
    right.push_back(right[1]);
    expectDoubt(run(left, right), "same-view", {image("left", 1), "adds nothing"});
}

TEST_F(PairDiagnosis, AnImageTurnedOrMirrored) {
    Images right = images("right");
    right[2] = changed(image("right", 2), "turned.pgm", turnHalf);
    expectDoubt(run(images("left"), right), "turned", {at("turned.pgm"), "turned by 180 degrees"});
    Images left = images("left");
    left[4] = changed(image("left", 4), "mirrored.pgm", mirror);
    expectDoubt(run(left, images("right")), "mirrored", {at("mirrored.pgm"), "is mirrored"});
}

TEST_F(PairDiagnosis, AWholeSideTurnedOrMirrored) {
    Images turned;
    Images mirrored;
    for (int view = 0; view < 6; ++view) {
        const std::string number = std::to_string(view) + ".pgm";
        turned.push_back(changed(image("right", view), "turned_" + number, turnHalf));
        mirrored.push_back(changed(image("right", view), "mirrored_" + number, mirror));
    }
    // A camera that hangs upside down is none the worse.
    EXPECT_EQ(run(images("left"), turned).errors, "");
    EXPECT_EQ(saved()["verdict"]["status"], "good");
    fs::remove_all(at("out"));
    expectRefused(run(images("left"), mirrored), {at("mirrored_0.pgm"), "all right images are mirrored"});
}

TEST_F(PairDiagnosis, LeftAndRightExchangedInAView) {
    Images left = images("left");
    Images right = images("right");
    std::swap(left[3], right[3]);
    expectDoubt(run(left, right), "left-right-exchanged",
                {image("right", 3) + " and " + image("left", 3), "left and right image are exchanged"});
}

TEST_F(PairDiagnosis, AViewOfWhichNothingFits) {
    // The right image of view 4 is the one of a view that is not in the set.
    expectDoubt(run(images("left", {0, 1, 2, 3, 4}), images("right", {0, 1, 2, 3, 5})), "nothing-fits",
                {image("left", 4) + " and " + image("right", 5), "different poses", "fit no other image", "move"});
}

TEST_F(PairDiagnosis, TheSameImagesOnBothSides) {
    expectRefused(run(images("left"), images("left")), {image("left", 0), "given as left and as right image"});
    Images right = images("right");
    right[2] = changed(image("left", 2), "again.pgm", [](Pgm&) {});
    expectRefused(run(images("left"), right), {image("left", 2), "the same image as " + at("again.pgm")});
}

// As a file written anew has them: the bytes differ, the dots do not.
TEST_F(PairDiagnosis, TheSamePictureInOtherFiles) {
    const auto again = [&](int view) {
        return changed(image("left", view), "again_" + std::to_string(view) + ".pgm",
                       [](Pgm& pgm) { pgm.pixels.front() = static_cast<char>(pgm.pixels.front() ^ 1); });
    };
    Images right = images("right");
    right[2] = again(2);
    expectDoubt(run(images("left"), right), "same-images",
                {image("left", 2) + " and " + at("again_2.pgm"), "the same picture twice", "takes no part"});
    fs::remove_all(at("out"));
    for (int view = 0; view < 6; ++view) {
        right[static_cast<std::size_t>(view)] = again(view);
    }
    expectRefused(run(images("left"), right), {image("left", 0) + " and " + at("again_0.pgm"),
                                               "the same picture twice, and so are all other views", "--right"});
}

// The right camera is turned a little after some views: its image moves by six rows.
TEST_F(PairDiagnosis, ACameraThatWasMovedInBetween) {
    const auto withMoved = [&](int count) {
        Images right = images("right");
        for (int view = 6 - count; view < 6; ++view) {
            right[static_cast<std::size_t>(view)] =
                changed(image("right", view), "moved_" + std::to_string(view) + ".pgm", [](Pgm& pgm) {
                    std::rotate(pgm.pixels.begin(), pgm.pixels.begin() + 6 * pgm.width, pgm.pixels.end());
                });
        }
        return right;
    };
    expectDoubt(run(images("left"), withMoved(2)), "other-session",
                {image("left", 4) + " and " + at("moved_4.pgm"), "the 2 views of left_04.pgm, left_05.pgm",
                 "not with the other 4", " mm and ", "degrees", "these views take no part"});
    EXPECT_EQ(saved()["views"].size(), 4U);
    fs::remove_all(at("out"));
    expectRefused(run(images("left"), withMoved(3)), {"the 3 views of", "not with the other 3", "degrees", "--force"});
}

// A plate that moves downwards while the left shutter is open, not while the right one is.
TEST_F(PairDiagnosis, ASmearedImageIsToldForItsSmear) {
    Images left = images("left");
    left[2] = changed(image("left", 2), "smeared.pgm", [](Pgm& pgm) {
        constexpr int kSmear = 9;  // pixels
        const Pgm sharp = pgm;
        for (int y = 0; y + kSmear <= pgm.height; ++y) {
            for (int x = 0; x < pgm.width; ++x) {
                int sum = 0;
                for (int k = 0; k < kSmear; ++k) {
                    sum += static_cast<unsigned char>(sharp.pixels[static_cast<std::size_t>((y + k) * pgm.width + x)]);
                }
                pgm.pixels[static_cast<std::size_t>(y * pgm.width + x)] = static_cast<char>(sum / kSmear);
            }
        }
    });
    const CommandResult result = run(left, images("right"));
    expectDoubt(result, "blurred-view", {at("smeared.pgm") + ": view 2 left: smeared by", "this view takes no part"});
    EXPECT_EQ(result.errors.find("different poses"), std::string::npos) << result.errors;
}

TEST_F(PairDiagnosis, AnImageOfAnotherSize) {
    Images right = images("right");
    right[2] = changed(image("right", 2), "upright.pgm", [](Pgm& pgm) {
        const Pgm lying = pgm;
        std::swap(pgm.width, pgm.height);
        for (int y = 0; y < pgm.height; ++y) {
            for (int x = 0; x < pgm.width; ++x) {
                pgm.pixels[static_cast<std::size_t>(y * pgm.width + x)] =
                    lying.pixels[static_cast<std::size_t>((lying.height - 1 - x) * lying.width + y)];
            }
        }
    });
    expectRefused(run(images("left"), right), {at("upright.pgm"), "480 x 640", "turned by 90 degrees"});
}

// Frontal views tell neither focal length nor distance.
TEST_F(PairDiagnosis, ViewsWithoutTilt) {
    writeFile(folder / "flat.json", R"({
        "plate": {"columns": [-4, 4], "rows": [-3, 3], "markerColumn": 2, "markerRow": 2},
        "left": {"width": 640, "height": 480, "fx": 844, "fy": 843.3, "cx": 321, "cy": 238.5},
        "right": {"width": 640, "height": 480, "fx": 847, "fy": 846.2, "cx": 318.5, "cy": 241},
        "rightFromLeft": {"rotation": [0.2, 1, -0.3], "translation": [-20, 0.2, 1]},
        "optics": {"noiseSigma": 1.5},
        "views": {"count": 4, "seed": 5, "maxTilt": 1}})");
    ASSERT_EQ(zelm({"simulate", at("flat.json"), "--format", "pgm", "-o", at("flat")}).status, 0);
    const CommandResult result = zelm({"calibrate", "--plate", at("flat/plate.json"), "--left", at("flat/left_*.pgm"),
                                       "--right", at("flat/right_*.pgm"), "-o", at("out"), "--quiet"});
    EXPECT_NE(result.errors.find("by 20 degrees"), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("left 1, "), std::string::npos) << result.errors;
    if (result.status == 0) {
        EXPECT_NE(saved()["verdict"]["status"], "good");
    }
}

}  // namespace
