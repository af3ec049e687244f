// The pages that the tool writes, as files: one file that fetches nothing, well formed, with the verdict first. How
// they look in a browser is tests/pages.
#include <cmath>
#include <cstdio>

#include "htmlStructure.h"
#include "toolFixtures.h"

using namespace zelmtest;

namespace {

const std::string& report() {
    static const std::string page = readFile(calibratedSmallRig() / "report.html");
    return page;
}

std::string attribute(const HtmlElement& element, const std::string& name) {
    const auto found = element.attributes.find(name);
    return found == element.attributes.end() ? "" : found->second;
}

// A page that refers to nothing outside itself. What scripts ask for the browser test sees.
void expectOneFile(const std::string& page) {
    const HtmlStructure html = htmlStructure(page);
    EXPECT_EQ(html.fault, "");
    bool isGuarded = false;
    for (const HtmlElement& element : html.elements) {
        for (const char* name : {"src", "href", "action", "srcset", "poster"}) {
            const std::string target = attribute(element, name);
            EXPECT_TRUE(target.empty() || target[0] == '#' || target.rfind("data:", 0) == 0) << target.substr(0, 80);
        }
        isGuarded = isGuarded || attribute(element, "content").find("default-src 'none'") != std::string::npos;
        if (element.name == "style") {
            const std::string style = page.substr(element.begin, page.find("</style>", element.begin) - element.begin);
            EXPECT_EQ(style.find("@import"), std::string::npos);
            EXPECT_EQ(style.find("url("), std::string::npos);
            EXPECT_GT(style.size(), 1000U);
        }
    }
    EXPECT_TRUE(isGuarded);
    EXPECT_EQ(html.text.find("http"), std::string::npos);
}

TEST(ReportPage, IsOneWellFormedFileThatFetchesNothing) {
    EXPECT_EQ(report().rfind("<!DOCTYPE html>", 0), 0U);
    expectOneFile(report());
    EXPECT_LT(report().size(), 8U << 20U);
}

TEST(ReportPage, TheVerdictStandsFirstAndNamesItsUnit) {
    const HtmlStructure html = htmlStructure(report());
    std::size_t i = 0;
    while (i < html.elements.size() && html.elements[i].name != "main") {
        ++i;
    }
    ASSERT_LT(i + 3, html.elements.size());
    EXPECT_EQ(attribute(html.elements[i + 1], "class").rfind("verdict ", 0), 0U);
    const HtmlElement& sentence = html.elements[i + 3];
    ASSERT_EQ(attribute(sentence, "class"), "sentence");
    const std::string words = report().substr(sentence.begin, report().find("</p>", sentence.begin) - sentence.begin);
    EXPECT_NE(words.find("\xc2\xb1"), std::string::npos) << words;
    EXPECT_NE(words.find(" mm"), std::string::npos) << words;
    EXPECT_NE(words.find("95 %"), std::string::npos) << words;
}

// The expected error of lengths is that of the tool's own `length`, for the same lengths.
TEST(ReportPage, TheExpectedErrorIsSmallAndPositive) {
    const std::string mark = "\xc2\xb1";
    const std::size_t sentence = report().find("class=\"sentence\"");
    double u95 = 0.0;
    ASSERT_EQ(std::sscanf(report().c_str() + report().find(mark, sentence) + mark.size(), "%lf mm", &u95), 1);
    // Noise of 0.01 px at 600 mm and 60 mm apart moves a point by some hundredths of a millimetre.
    EXPECT_GT(u95, 0.005);
    EXPECT_LT(u95, 0.5);
}

TEST(ReportPage, EveryImageIsThereReduced) {
    std::size_t images = 0;
    for (const HtmlElement& element : htmlStructure(report()).elements) {
        if (element.name == "image") {
            ++images;
            EXPECT_EQ(attribute(element, "href").rfind("data:image/jpeg;base64,/9j/", 0), 0U);
            EXPECT_EQ(attribute(element, "width"), "640");
        }
    }
    EXPECT_EQ(images, 12U);
}

TEST(ReportPage, FilesStandWithTheirHashesAndTheCommand) {
    for (const fs::path& file : {smallRig() / "plate.json", smallRig() / "left_03.pgm", smallRig() / "right_05.pgm",
                                 calibratedSmallRig() / "rig.zcal"}) {
        const CommandResult sum = runCommand({"sha256sum", file.string()});
        ASSERT_EQ(sum.status, 0);
        EXPECT_NE(report().find("<code>" + sum.output.substr(0, 64) + "</code>"), std::string::npos) << file;
    }
    EXPECT_NE(report().find("zelm calibrate --plate "), std::string::npos);
    EXPECT_NE(report().find("left_*.pgm&#39;"), std::string::npos) << "as a shell takes it";
    EXPECT_NE(report().find(" UTC"), std::string::npos);
}

TEST(ReportPage, IsTheSameForTheSameTime) {
    const TemporaryFolder out;
    const auto made = [&](const std::string& name) {
        const std::string plate = smallRigFile("plate.json");
        const CommandResult result =
            runCommand({"sh", "-c",
                        R"(cd "$1" && SOURCE_DATE_EPOCH=86400 "$0" calibrate --plate "$2" --left "$3" --right "$4" -q)",
                        ZELM_PROGRAM, (out / name).string(), plate, smallRigFile("left_0[0-2].pgm"),
                        smallRigFile("right_0[0-2].pgm")});
        EXPECT_EQ(result.status, 0) << result.errors;
        return readFile(out / name / "out" / "report.html");
    };
    fs::create_directory(out / "a");
    fs::create_directory(out / "b");
    const std::string first = made("a");
    EXPECT_NE(first.find("1970-01-02 00:00:00 UTC"), std::string::npos);
    EXPECT_EQ(first, made("b"));
}

TEST(ReportPage, HostileNamesStayNames) {
    const TemporaryFolder folder;
    const std::string evil = "<script>alert(1)<\xff&\"'";
    for (int view = 0; view < 4; ++view) {
        for (const std::string side : {"left", "right"}) {
            const std::string number = std::to_string(view);
            std::string name = side;
            name += evil;
            fs::copy_file(smallRig() / (side + "_0" + number + ".pgm"), folder / (name + number + ".pgm"));
        }
    }
    writeFile(folder / ("left" + evil + "3.pgm"), "no image");  // is skipped, by name
    Json plate = Json::parse(readFile(smallRig() / "plate.json"));
    plate["units"] = "<i>mm";
    writeFile(folder / "plate.json", plate.dump());
    const CommandResult result =
        zelm({"calibrate", "--plate", (folder / "plate.json").string(), "--left", (folder / "left*.pgm").string(),
              "--right", (folder / "right*.pgm").string(), "-o", (folder / "o").string(), "-q"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::string page = readFile(folder / "o" / "report.html");
    expectOneFile(page);
    EXPECT_EQ(page.find("alert(1)<\xff"), std::string::npos);
    EXPECT_NE(page.find("left&lt;script&gt;alert(1)&lt;\xef\xbf\xbd&amp;&quot;&#39;0.pgm"), std::string::npos);
    EXPECT_NE(page.find("Skipped: "), std::string::npos);
    for (const HtmlElement& element : htmlStructure(page).elements) {
        EXPECT_NE(element.name, "i");
    }
}

TEST(ReportPage, WithoutAdjustmentTheUncertaintyIsNotKnown) {
    const TemporaryFolder out;
    ASSERT_EQ(calibrate(smallRigFile("left_*.pgm"), smallRigFile("right_*.pgm"), (out / "o").string(), {"--no-adjust"})
                  .status,
              0);
    const std::string page = readFile(out / "o" / "report.html");
    expectOneFile(page);
    EXPECT_NE(page.find("verdict unknown"), std::string::npos);
    EXPECT_NE(page.find("--no-adjust"), std::string::npos);
}

// Pixel pairs of dots of all views, so many times over.
std::string pairsOfDots(int times) {
    const Json truth = Json::parse(readFile(smallRig() / "truth.json"));
    std::string csv = "xL,yL,xR,yR\n";
    for (const Json& view : truth["views"]) {
        for (const Json& left : view["left"]["dots"]) {
            for (const Json& right : view["right"]["dots"]) {
                if (left["grid"] == right["grid"]) {
                    const std::string line = left["pixel"][0].dump() + "," + left["pixel"][1].dump() + "," +
                                             right["pixel"][0].dump() + "," + right["pixel"][1].dump() + "\n";
                    for (int i = 0; i < times; ++i) {
                        csv += line;
                    }
                }
            }
        }
    }
    return csv;
}

TEST(ScenePage, TellsItsPointsAndIsOneFile) {
    const TemporaryFolder out;
    writeFile(out / "pairs.csv", pairsOfDots(1));
    const CommandResult result =
        zelm({"triangulate", (calibratedSmallRig() / "rig.zcal").string(), (out / "pairs.csv").string(), "-o",
              (out / "points.csv").string(), "--page", (out / "points.html").string()});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("points.html"), std::string::npos);
    const std::string page = readFile(out / "points.html");
    expectOneFile(page);
    const std::string start = "id=\"cloud-data\">";
    const std::size_t data = page.find(start) + start.size();
    const Json cloud = Json::parse(page.substr(data, page.find("</script>", data) - data));
    const std::string csv = readFile(out / "points.csv");
    const auto lines = std::count(csv.begin(), csv.end(), '\n') - 1;
    EXPECT_EQ(cloud["count"], lines);
    EXPECT_EQ(cloud["units"], "mm");
    EXPECT_EQ(cloud["positions"].get<std::string>().size(), (12U * static_cast<std::size_t>(lines) + 2) / 3 * 4);
    // All plates stand some 300 to 700 mm before the left camera.
    EXPECT_GT(cloud["depthRange"]["from"], 200.0);
    EXPECT_LT(cloud["depthRange"]["to"], 1000.0);
}

TEST(ScenePage, OfVeryManyPointsAPartIsShownAndSaid) {
    const TemporaryFolder out;
    const std::string csv = pairsOfDots(560);
    const auto pairs = std::count(csv.begin(), csv.end(), '\n') - 1;
    ASSERT_GT(pairs, 200000);
    writeFile(out / "pairs.csv", csv);
    const CommandResult result =
        zelm({"triangulate", (calibratedSmallRig() / "rig.zcal").string(), (out / "pairs.csv").string(), "-o",
              (out / "points.csv").string(), "--page", (out / "points.html").string(), "-q"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::string page = readFile(out / "points.html");
    EXPECT_NE(page.find("Shown are 200000 of " + std::to_string(pairs) + " points, drawn at random"),
              std::string::npos);
    EXPECT_LT(page.size(), 10U << 20U);
}

TEST(ScenePage, ItsNameIsChecked) {
    const TemporaryFolder out;
    writeFile(out / "pairs.csv", pairsOfDots(1));
    const std::string rig = (calibratedSmallRig() / "rig.zcal").string();
    const std::string pairs = (out / "pairs.csv").string();
    const std::string points = (out / "points.csv").string();
    expectOneLine(zelm({"triangulate", rig, pairs, "-o", points, "--page", (out / "page.png").string()}), 2,
                  {"page.png", "ending .html"});
    expectOneLine(
        zelm({"triangulate", rig, pairs, "-o", (out / "p.html").string(), "--page", (out / "p.html").string()}), 2,
        {"p.html", "given for two outputs"});
    expectOneLine(zelm({"match", rig, smallRigFile("left_00.pgm"), smallRigFile("right_00.pgm"), "-o", points, "--page",
                        (out / "page.txt").string()}),
                  2, {"page.txt", "ending .html"});
    EXPECT_EQ(std::distance(fs::directory_iterator(out / "."), {}), 1);
}

// A glob that takes the images again would take pictures beside them too.
TEST(Pictures, ThoseBesideTheirImagesAreAWarning) {
    const TemporaryFolder folder;
    for (const char* name : {"left_00.pgm", "right_00.pgm"}) {
        fs::copy_file(smallRig() / name, folder / name);
    }
    const std::string rig = (calibratedSmallRig() / "rig.zcal").string();
    const std::string left = (folder / "left_00.pgm").string();
    const std::string right = (folder / "right_00.pgm").string();
    const std::string here = (folder / ".").string();
    const std::string plate = smallRigFile("plate.json");
    for (const std::vector<std::string>& command : {std::vector<std::string>{"detect", left, "--plate", plate},
                                                    {"undistort", rig, left},
                                                    {"rectify", rig, left, right}}) {
        std::vector<std::string> beside = command;
        beside.insert(beside.end(), {"-o", here, "-q"});
        const CommandResult warned = zelm(beside);
        EXPECT_EQ(warned.status, 0);
        EXPECT_NE(warned.errors.find("lies beside " + left), std::string::npos) << command[0] << warned.errors;
        EXPECT_EQ(std::count(warned.errors.begin(), warned.errors.end(), '\n'), 1);
        std::vector<std::string> apart = command;
        apart.insert(apart.end(), {"-o", (folder / "o").string(), "-q"});
        EXPECT_EQ(zelm(apart).errors, "") << command[0];
    }
}

}  // namespace
