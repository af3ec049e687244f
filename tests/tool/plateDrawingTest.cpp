// What `zelm plate` draws, measured: dots, ruler and page as other programs render and read them.
#include <gtest/gtest.h>

#include <cmath>

#include "plateBitmap.h"
#include "toolFixtures.h"

namespace zelmtest {
namespace {

constexpr int kDpi = 600;
constexpr double kMillimetresTolerance = 0.01;

// Plates of 7 x 5 dots: dark ones in millimetres, and bright ones in inches with unequal pitches.
struct Design {
    std::vector<std::string> options;
    double pitchX, pitchY, dot, marker;  // millimetres
    int markerX, markerY;
    bool isBright;
};
const Design kDark{{"--field", "60x40", "--pitch", "10", "--markers-at", "20,10", "--name", "No. 5 <&>"},
                   10.0,
                   10.0,
                   4.0,
                   7.0,
                   2,
                   1,
                   false};
const Design kBright{{"--field", "3x2", "--pitch", "0.5x0.5", "--dot", "0.2", "--marker", "0.33", "--units", "inch",
                      "--polarity", "bright", "--markers-at", "0.5,1"},
                     12.7,
                     12.7,
                     5.08,
                     8.382,
                     1,
                     2,
                     true};
const Design kOblong{{"--field", "60x32", "--pitch", "10x8", "--dot", "3", "--marker", "5.5", "--markers-at", "20,16"},
                     10.0,
                     8.0,
                     3.0,
                     5.5,
                     2,
                     2,
                     false};

class PlateDrawing : public testing::TestWithParam<const Design*> {
protected:
    void SetUp() override {
        std::vector<std::string> arguments{"plate", "-o", out.string(), "--page", "fit", "--dpi", std::to_string(kDpi)};
        arguments.insert(arguments.end(), design.options.begin(), design.options.end());
        const CommandResult made = zelm(arguments);
        ASSERT_EQ(made.status, 0) << made.errors;
        circles = circlesOfSvg(readFile(out / "plate.svg"));
        ASSERT_EQ(circles.size(), 35U);
    }

    // The SVG states the circles; they stand where the design says, x to the right, y downwards.
    void expectDesign() const {
        const SheetCircle& corner = circles[17];
        for (int row = -2; row <= 2; ++row) {
            for (int column = -3; column <= 3; ++column) {
                const SheetCircle& c = circles[static_cast<std::size_t>(7 * (row + 2) + column + 3)];
                const bool isMarker =
                    (row == 0 && (column == 0 || column == design.markerX)) || (column == 0 && row == design.markerY);
                EXPECT_NEAR(c.x - corner.x, column * design.pitchX, 2e-6);  // of six decimals
                EXPECT_NEAR(c.y - corner.y, row * design.pitchY, 2e-6);
                EXPECT_NEAR(c.diameter, isMarker ? design.marker : design.dot, 2e-6);
            }
        }
    }

    void expectPrinted(const fs::path& path) const {
        const PlateBitmap page(zelm::tool::readPicture(path), kDpi);
        const double half = 0.5 * std::min(design.pitchX, design.pitchY);
        double worst = 0.0;
        for (const SheetCircle& c : circles) {
            // A marker's box holds as much of its ground as its neighbours leave.
            const double box = std::min(0.5 * c.diameter + 0.5, 1.9 * half - 0.5 * design.dot);
            const PlateBitmap::Blob dot = page.blob(c.x, c.y, box, box, design.isBright);
            worst = std::max(
                {worst, std::fabs(dot.x - c.x), std::fabs(dot.y - c.y), std::fabs(dot.diameter() - c.diameter)});
        }
        EXPECT_LT(worst, kMillimetresTolerance) << path;
        RecordProperty("worst", std::to_string(worst));
        expectRuler(page);
    }

    // The bar of the ruler is the page's only row of ink that is 100 mm long without a gap.
    void expectRuler(const PlateBitmap& page) const {
        double best = 1e9;
        const double below = circles.back().y + 0.5 * design.dot;
        for (double y = below; y < page.height() - 1.0; y += 0.15) {
            const auto [begin, end] = page.extentOfRow(y);
            const PlateBitmap::Blob ink = page.blob(0.5 * (begin + end), y, 0.5 * (end - begin), 0.05, false);
            const bool isSolid = ink.area > 0.95 * 0.1 * (end - begin);
            best = isSolid && std::fabs(end - begin - 100.0) < std::fabs(best - 100.0) ? end - begin : best;
        }
        EXPECT_NEAR(best, 100.0, kMillimetresTolerance);
    }

    const Design& design = *GetParam();
    TemporaryFolder folder;
    fs::path out = folder / "out";
    std::vector<SheetCircle> circles;
};

TEST_P(PlateDrawing, SvgHoldsTheDesignAndIsRenderedTrue) {
    expectDesign();
    const std::string png = (folder / "svg.png").string();
    const std::string dpi = std::to_string(kDpi);
    const CommandResult rendered =
        runCommand({"rsvg-convert", "-d", dpi, "-p", dpi, "-o", png, (out / "plate.svg").string()});
    ASSERT_EQ(rendered.status, 0) << rendered.errors;
    expectPrinted(png);
}

TEST_P(PlateDrawing, PdfIsRenderedTrue) {
    const CommandResult rendered = runCommand({"pdftoppm", "-r", std::to_string(kDpi), "-gray", "-singlefile",
                                               (out / "plate.pdf").string(), (folder / "pdf").string()});
    ASSERT_EQ(rendered.status, 0) << rendered.errors;
    expectPrinted(folder / "pdf.pgm");
}

TEST_P(PlateDrawing, PngIsTrueAndTellsItsResolution) {
    expectPrinted(out / "plate.png");
    const std::string bytes = readFile(out / "plate.png");
    const std::size_t at = bytes.find("pHYs");
    ASSERT_NE(at, std::string::npos);
    const auto byte = [&](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(bytes[at + i])); };
    EXPECT_EQ(byte(4) << 24U | byte(5) << 16U | byte(6) << 8U | byte(7), 23622U);  // 600 / 0.0254, a metre
    EXPECT_EQ(byte(12), 1U);
}

// Of another program: kind, layer and geometry of every entity, and the unit.
TEST_P(PlateDrawing, DxfIsReadBackExactly) {
    const std::string script =
        "import ezdxf, json, sys\n"
        "d = ezdxf.readfile(sys.argv[1]); a = d.audit()\n"
        "c = [[e.dxf.layer, *e.dxf.center, e.dxf.radius] for e in d.modelspace().query('CIRCLE')]\n"
        "p = {l: [[list(v.dxf.location)[:2] for v in e.vertices] for e in d.modelspace().query('POLYLINE')"
        " if e.dxf.layer == l] for l in ('GROUND', 'RULER')}\n"
        "print(json.dumps({'units': d.header['$INSUNITS'], 'metric': d.header['$MEASUREMENT'],"
        " 'errors': len(a.errors), 'fixes': len(a.fixes), 'circles': c, 'boxes': p,"
        " 'texts': [e.dxf.text for e in d.modelspace().query('TEXT')]}))\n";
    writeFile(folder / "read.py", script);
    const CommandResult read =
        runCommand({"/usr/bin/python3", (folder / "read.py").string(), (out / "plate.dxf").string()});
    ASSERT_EQ(read.status, 0) << read.errors;
    const Json dxf = Json::parse(read.output);
    EXPECT_EQ(dxf["units"], 4);
    EXPECT_EQ(dxf["metric"], 1);
    EXPECT_EQ(dxf["errors"], 0);
    ASSERT_EQ(dxf["circles"].size(), 35U);
    std::size_t i = 0;
    for (int row = -2; row <= 2; ++row) {
        for (int column = -3; column <= 3; ++column, ++i) {
            const Json& circle = dxf["circles"][i];
            const bool isMarker =
                (row == 0 && (column == 0 || column == design.markerX)) || (column == 0 && row == design.markerY);
            EXPECT_EQ(circle[0], isMarker ? "MARKERS" : "DOTS");
            // Rows go down on the page; the drawing's y goes up.
            EXPECT_NEAR(circle[1].get<double>(), column * design.pitchX, 1e-12);
            EXPECT_NEAR(circle[2].get<double>(), -row * design.pitchY, 1e-12);
            EXPECT_NEAR(2.0 * circle[4].get<double>(), isMarker ? design.marker : design.dot, 1e-12);
        }
    }
    EXPECT_EQ(dxf["boxes"]["GROUND"].size(), design.isBright ? 1U : 0U);
    const Json& bar = dxf["boxes"]["RULER"][0];
    EXPECT_NEAR(bar[2][0].get<double>() - bar[0][0].get<double>(), 100.0, 2e-5);  // both ends are rounded to 1e-5
    EXPECT_GE(dxf["texts"].size(), 4U);
}

INSTANTIATE_TEST_SUITE_P(Plates, PlateDrawing, testing::Values(&kDark, &kBright, &kOblong));

TEST(PlatePage, PagesAreOfTheirSize) {
    const TemporaryFolder folder;
    struct Case {
        const char *page, *orientation;
        double width, height;
    };
    for (const Case& c : {Case{"A4", "auto", 297.0, 210.0}, Case{"a4", "portrait", 210.0, 297.0},
                          Case{"letter", "landscape", 279.4, 215.9}, Case{"A3", "portrait", 297.0, 420.0},
                          Case{"150x135.5", "auto", 150.0, 135.5}}) {
        const fs::path out = folder / (std::string(c.page) + c.orientation);
        const CommandResult made = zelm({"plate", "--page", c.page, "--orientation", c.orientation, "--format", "pdf",
                                         "--field", "80x60", "--pitch", "10", "-o", out.string(), "--json"});
        ASSERT_EQ(made.status, 0) << made.errors;
        const Json page = Json::parse(made.output)["page"];
        EXPECT_EQ(page["width"], c.width);
        EXPECT_EQ(page["height"], c.height);
        EXPECT_FALSE(fs::exists(out / "plate.svg"));
        const CommandResult info = runCommand({"pdfinfo", (out / "plate.pdf").string()});
        double width = 0.0;
        double height = 0.0;
        const std::size_t at = info.output.find("Page size:");
        ASSERT_NE(at, std::string::npos) << info.output << info.errors;
        ASSERT_EQ(std::sscanf(info.output.c_str() + at, "Page size: %lf x %lf pts", &width, &height), 2);
        EXPECT_NEAR(width, c.width * 72.0 / 25.4, 0.01);  // pdfinfo prints six digits
        EXPECT_NEAR(height, c.height * 72.0 / 25.4, 0.01);
    }
}

}  // namespace
}  // namespace zelmtest
