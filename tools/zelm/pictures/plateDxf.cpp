// The plate's sheet as a DXF: groups of a code and a value, each on a line of its own.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "plateDrawings.h"

namespace zelm::tool {
namespace {

struct Layer {
    std::string_view name;
    int colour;  // of AutoCAD's index
};
constexpr std::array<Layer, 6> kLayers{
    {{"DOTS", 7}, {"MARKERS", 1}, {"GROUND", 8}, {"RULER", 3}, {"TEXT", 4}, {"CUT", 5}}};

class DxfWriter {
public:
    explicit DxfWriter(const PlateSheet& plateSheet) : sheet(plateSheet) {}

    std::string write() {
        header();
        layers();
        group(0, "SECTION");
        group(2, "ENTITIES");
        entities();
        group(0, "ENDSEC");
        group(0, "EOF");
        return std::move(text);
    }

private:
    void group(int code, std::string_view value) { text += fmt::format("{:>3}\r\n{}\r\n", code, value); }
    // The shortest text that is this number.
    void number(int code, double value) { group(code, fmt::format("{}", value + 0.0)); }
    void whole(int code, int value) { group(code, std::to_string(value)); }

    // On the page's millimetres, y downwards; on the drawing y upwards from the corner marker. Ten nanometres are
    // less than anything can be made to, and hide what the page's margins leave of rounding.
    static double rounded(double value) { return std::round(value * 1e5) / 1e5; }
    void point(int code, const SheetPoint& at) {
        number(code, rounded(at.x - sheet.origin.x));
        number(code + 10, rounded(sheet.origin.y - at.y));
        number(code + 20, 0.0);
    }

    void header() {
        const SheetPoint lower{0.0, sheet.height};
        const SheetPoint upper{sheet.width, 0.0};
        group(999, "zelm plate");
        group(0, "SECTION");
        group(2, "HEADER");
        group(9, "$ACADVER");
        group(1, "AC1009");
        group(9, "$INSUNITS");
        whole(70, 4);  // millimetres
        group(9, "$MEASUREMENT");
        whole(70, 1);  // metric
        group(9, "$EXTMIN");
        point(10, lower);
        group(9, "$EXTMAX");
        point(10, upper);
        group(0, "ENDSEC");
    }

    void layers() {
        group(0, "SECTION");
        group(2, "TABLES");
        group(0, "TABLE");
        group(2, "LAYER");
        whole(70, static_cast<int>(kLayers.size()));
        for (const Layer& layer : kLayers) {
            group(0, "LAYER");
            group(2, layer.name);
            whole(70, 0);
            whole(62, layer.colour);
            group(6, "CONTINUOUS");
        }
        group(0, "ENDTAB");
        group(0, "ENDSEC");
    }

    void entities() {
        for (const SheetDisc& disc : sheet.discs) {
            begin("CIRCLE", disc.isMarker ? "MARKERS" : "DOTS");
            point(10, disc.centre);
            number(40, rounded(0.5 * disc.diameter));
        }
        if (sheet.isBright) {
            box("GROUND", sheet.ground);
        }
        for (const SheetBox& part : sheet.ruler) {
            box("RULER", part);
        }
        for (const SheetLine& mark : sheet.cropMarks) {
            begin("LINE", "CUT");
            point(10, mark.from);
            point(11, mark.to);
        }
        for (const SheetText& line : sheet.texts) {
            writing(line);
        }
    }

    void begin(std::string_view kind, std::string_view layer) {
        group(0, kind);
        group(8, layer);
    }

    void box(std::string_view layer, const SheetBox& b) {
        begin("POLYLINE", layer);
        whole(66, 1);  // vertices follow
        point(10, sheet.origin);
        whole(70, 1);  // closed
        for (const SheetPoint& corner :
             {SheetPoint{b.x, b.y}, {b.x, b.y + b.height}, {b.x + b.width, b.y + b.height}, {b.x + b.width, b.y}}) {
            begin("VERTEX", layer);
            point(10, corner);
        }
        begin("SEQEND", layer);
    }

    void writing(const SheetText& line) {
        begin("TEXT", "TEXT");
        point(10, line.at);
        number(40, sheet.textHeight);
        // The format is ASCII: other letters become question marks.
        std::string plain;
        for (const char c : line.text) {
            const auto byte = static_cast<unsigned char>(c);
            if ((byte & 0xC0U) != 0x80U) {  // the first byte of a letter
                plain += byte >= 0x20 && byte < 0x7F ? c : '?';
            }
        }
        group(1, plain);
        if (line.isCentred) {
            whole(72, 1);
            point(11, line.at);
        }
    }

    const PlateSheet& sheet;
    std::string text;
};

}  // namespace

std::string plateDxf(const PlateSheet& sheet) {
    return DxfWriter(sheet).write();
}

}  // namespace zelm::tool
