#include "plateSheet.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "failure.h"
#include "letterCase.h"
#include "numberText.h"

namespace zelm::tool {
namespace {

using Pattern = Zelm2ViewPatternDesc;

// Millimetres.
constexpr double kPageMargin = 5.0;  // what printers leave white
constexpr double kCropGap = 1.5;     // from the plate's corner to a crop mark
constexpr double kCropLength = 3.5;
constexpr double kMostTextHeight = 2.5;
constexpr double kLeastTextHeight = 1.0;  // below it nobody can read
constexpr double kRulerSide = 3.0;        // from the ruler's ends to the plate's edge
constexpr double kRulerGap = 3.0;         // above its highest tick
constexpr double kBarHeight = 0.4;
constexpr double kTickWidth = 0.2;
constexpr double kBelow = 10.0;  // least distance from the plate to a ruler that stands below it
constexpr double kMostPage = 5000.0;

// Letters are no larger than this share of a dot, so that none is taken for a dot or a marker.
constexpr double kLetterShare = 0.8;
constexpr double kLetterWidth = 0.85;  // of an average letter, in heights of capitals
constexpr double kLineDistance = 1.7;  // in heights of capitals

struct NamedSize {
    std::string_view name;
    double width, height;
};
constexpr std::array<NamedSize, 10> kPages{{{"a5", 148.0, 210.0},
                                            {"a4", 210.0, 297.0},
                                            {"a3", 297.0, 420.0},
                                            {"a2", 420.0, 594.0},
                                            {"a1", 594.0, 841.0},
                                            {"a0", 841.0, 1189.0},
                                            {"letter", 215.9, 279.4},
                                            {"legal", 215.9, 355.6},
                                            {"tabloid", 279.4, 431.8},
                                            {"ledger", 279.4, 431.8}}};

struct NamedUnit {
    std::string_view name;
    double millimetres;
};
constexpr std::array<NamedUnit, 12> kUnits{{{"mm", 1.0},
                                            {"millimetre", 1.0},
                                            {"millimeter", 1.0},
                                            {"cm", 10.0},
                                            {"m", 1000.0},
                                            {"um", 1e-3},
                                            {"µm", 1e-3},
                                            {"in", 25.4},
                                            {"inch", 25.4},
                                            {"inches", 25.4},
                                            {"\"", 25.4},
                                            {"mil", 0.0254}}};

// The words on a plate, as lines of no more than so many letters.
std::vector<std::string> wrapped(const std::vector<std::string>& pieces, double most) {
    std::vector<std::string> lines;
    for (const std::string& piece : pieces) {
        const bool isRoom = !lines.empty() && static_cast<double>(lines.back().size() + 2 + piece.size()) <= most;
        if (isRoom) {
            lines.back() += ", " + piece;
        } else {
            lines.push_back(piece);
        }
    }
    return lines;
}

std::string pairText(double x, double y) {
    return x == y ? fmt::format("{:.6g}", x) : fmt::format("{:.6g} x {:.6g}", x, y);
}

std::vector<std::string> wordsOf(const Plate& plate) {
    const Pattern& p = plate.pattern;
    std::vector<std::string> pieces;
    for (const std::string& text : {plate.name, plate.maker, plate.serial}) {
        if (!text.empty()) {
            pieces.push_back(text);
        }
    }
    pieces.push_back(fmt::format("field {:.6g} x {:.6g} {}", p.d0, p.d1, plate.units));
    pieces.push_back(fmt::format("pitch {} {}", pairText(p.d4, p.d5), plate.units));
    pieces.push_back(fmt::format("dots {:.6g} {}", p.d2, plate.units));
    pieces.push_back(
        fmt::format("markers {:.6g} {u} at {:.6g} and {:.6g} {u}", p.d3, p.d6, p.d7, fmt::arg("u", plate.units)));
    return pieces;
}

// A plate in millimetres about its corner marker, before it has a place on a page.
class Layout {
public:
    Layout(const Plate& described, double millimetres)
        : plate(described), p(described.pattern), scale(millimetres), reach(reachOf(described.pattern)) {
        const double quiet = scale * (std::max(p.d4, p.d5) + 0.5 * p.d2);
        halfWidth = scale * reach.x * p.d4 + quiet;
        halfHeight = scale * reach.y * p.d5 + quiet;
        const double letters = std::min(kMostTextHeight, kLetterShare * scale * p.d2);
        isFooterOnPlate = letters >= kLeastTextHeight && 2.0 * halfWidth >= kRulerLength + 2.0 * kRulerSide;
        textHeight = isFooterOnPlate ? letters : kMostTextHeight;
        const double room = (isFooterOnPlate ? 2.0 * halfWidth - 2.0 * kRulerSide : kRulerLength);
        lines = wrapped(wordsOf(plate), room / (kLetterWidth * textHeight));
    }

    // Of the plate, up to where it is cut.
    double width() const { return 2.0 * halfWidth; }
    double height() const { return 2.0 * halfHeight + (isFooterOnPlate ? footerHeight() : 0.0); }
    // Of all that is printed but for crop marks.
    double fullWidth() const { return isFooterOnPlate ? width() : std::max(width(), kRulerLength); }
    double fullHeight() const { return height() + (isFooterOnPlate ? 0.0 : below() + footerHeight()); }
    // From the plate to a ruler below it. Letters that could be taken for dots stand where a camera that is filled by
    // the plate does not look.
    double below() const { return textHeight > kLetterShare * scale * p.d2 ? std::max(kBelow, height()) : kBelow; }

    PlateSheet sheet(double pageWidth, double pageHeight) const {
        PlateSheet s;
        s.title = plate.name.empty() ? "zelm plate" : plate.name;
        s.width = pageWidth;
        s.height = pageHeight;
        s.isBright = p.polarity == 1;
        s.textHeight = textHeight;
        s.plate = {0.5 * (pageWidth - width()), 0.5 * (pageHeight - fullHeight()), width(), height()};
        s.ground = {s.plate.x, s.plate.y, width(), 2.0 * halfHeight};
        s.origin = {s.plate.x + halfWidth, s.plate.y + halfHeight};
        addDiscs(s);
        addFooter(s, isFooterOnPlate ? s.ground.y + s.ground.height : s.plate.y + s.plate.height + below());
        if (needed(true).x <= pageWidth && needed(true).y <= pageHeight) {
            addCropMarks(s);
        }
        return s;
    }

    // The least page.
    SheetPoint needed(bool withCropMarks) const {
        const double side = kPageMargin + (withCropMarks ? kCropGap + kCropLength : 0.0);
        return {std::max(width() + 2.0 * side, fullWidth() + 2.0 * kPageMargin), fullHeight() + 2.0 * side};
    }

private:
    double footerHeight() const {
        return kRulerGap + kHighTick + kBarHeight + kLineDistance * textHeight +
               kLineDistance * textHeight * static_cast<double>(lines.size()) + 0.7 * textHeight;
    }

    void addDiscs(PlateSheet& s) const {
        const double markerX = std::round(p.d6 / p.d4);
        const double markerY = std::round(p.d7 / p.d5);
        for (int y = -reach.y; y <= reach.y; ++y) {
            for (int x = -reach.x; x <= reach.x; ++x) {
                const bool isMarker = (y == 0 && (x == 0 || x == markerX)) || (x == 0 && y == markerY);
                s.discs.push_back({{s.origin.x + scale * x * p.d4, s.origin.y + scale * y * p.d5},
                                   scale * (isMarker ? p.d3 : p.d2),
                                   isMarker});
            }
        }
    }

    void addFooter(PlateSheet& s, double top) const {
        const double left = isFooterOnPlate ? s.plate.x + kRulerSide : 0.5 * (s.width - kRulerLength);
        const double bar = top + kRulerGap + kHighTick;
        s.ruler.push_back({left, bar, kRulerLength, kBarHeight});
        for (int mm = 0; mm <= 100; mm += 5) {
            const double height = mm % 50 == 0 ? kHighTick : mm % 10 == 0 ? kMiddleTick : kLowTick;
            // The outer edges of the first and the last tick are those of the bar.
            const double shift = mm == 0 ? 0.0 : mm == 100 ? -kTickWidth : -0.5 * kTickWidth;
            s.ruler.push_back({left + mm + shift, bar - height, kTickWidth, height});
        }
        double base = bar + kBarHeight + 0.5 * textHeight + textHeight;
        for (const auto& [at, label] : {std::pair(0.0, "0"), {50.0, "50 mm"}, {100.0, "100 mm"}}) {
            const double half = 0.5 * kLetterWidth * textHeight * static_cast<double>(std::string_view(label).size());
            // The last label ends where the bar does.
            const double middle = std::clamp(at, half, kRulerLength - half);
            s.texts.push_back({{left + middle, base}, true, label});
        }
        for (const std::string& line : lines) {
            base += kLineDistance * textHeight;
            s.texts.push_back({{left, base}, false, line});
        }
    }

    static void addCropMarks(PlateSheet& s) {
        const SheetBox& b = s.plate;
        for (const double right : {0.0, 1.0}) {
            for (const double lower : {0.0, 1.0}) {
                const SheetPoint corner{b.x + right * b.width, b.y + lower * b.height};
                const double outX = right > 0.0 ? 1.0 : -1.0;
                const double outY = lower > 0.0 ? 1.0 : -1.0;
                s.cropMarks.push_back(
                    {{corner.x + outX * kCropGap, corner.y}, {corner.x + outX * (kCropGap + kCropLength), corner.y}});
                s.cropMarks.push_back(
                    {{corner.x, corner.y + outY * kCropGap}, {corner.x, corner.y + outY * (kCropGap + kCropLength)}});
            }
        }
    }

    static constexpr double kHighTick = 3.0;
    static constexpr double kMiddleTick = 2.0;
    static constexpr double kLowTick = 1.2;

    const Plate& plate;
    const Pattern& p;
    double scale;
    FieldReach reach;
    double halfWidth = 0.0;   // of the field with its quiet zone
    double halfHeight = 0.0;  //
    bool isFooterOnPlate = false;
    double textHeight = 0.0;
    std::vector<std::string> lines;
};

double scaleOf(const Plate& plate) {
    const auto scale = millimetresOf(plate.units);
    if (!scale) {
        failUsage("units \"{}\": a plate is printed in mm, cm, m, um, mil or inch: give one of them", plate.units);
    }
    return *scale;
}

// The page as it is held, where it has the room that is needed, or nothing.
std::optional<SheetPoint> held(const SheetPoint& need, bool isWide, const Page& page) {
    const SheetPoint upright = *page.size;
    const SheetPoint turned{upright.y, upright.x};
    const bool prefersTurned = page.mayTurn && isWide != (upright.x > upright.y);
    for (const SheetPoint& size : {prefersTurned ? turned : upright, prefersTurned ? upright : turned}) {
        const bool isAllowed = page.mayTurn || (size.x == upright.x && size.y == upright.y);
        if (isAllowed && need.x <= size.x && need.y <= size.y) {
            return size;
        }
    }
    return std::nullopt;
}

}  // namespace

Page pageOf(const std::string& name, const std::string& orientation) {
    Page page{name, std::nullopt, orientation == "auto"};
    const std::string lower = lowerCase(name);
    if (lower == "fit") {
        return page;
    }
    const auto* const known =
        std::find_if(kPages.begin(), kPages.end(), [&lower](const NamedSize& size) { return size.name == lower; });
    if (known != kPages.end()) {
        page.size = SheetPoint{known->width, known->height};
        if (orientation == "landscape") {
            std::swap(page.size->x, page.size->y);
        }
        return page;
    }
    const std::size_t cross = lower.find('x');
    const auto width = cross == std::string::npos ? std::nullopt : numberOf(lower.substr(0, cross));
    const auto height = cross == std::string::npos ? std::nullopt : numberOf(lower.substr(cross + 1));
    if (!width || !height || !(*width > 0.0 && *width <= kMostPage && *height > 0.0 && *height <= kMostPage)) {
        failUsage("--page {}: expected A5 to A0, letter, legal, tabloid, fit, or WIDTHxHEIGHT in millimetres", name);
    }
    page.size = SheetPoint{*width, *height};
    const bool isTurned =
        (orientation == "landscape" && *width < *height) || (orientation == "portrait" && *width > *height);
    if (isTurned) {
        std::swap(page.size->x, page.size->y);
    }
    return page;
}

std::optional<double> millimetresOf(const std::string& unit) {
    const auto* const known =
        std::find_if(kUnits.begin(), kUnits.end(), [&unit](const NamedUnit& u) { return u.name == unit; });
    return known == kUnits.end() ? std::nullopt : std::optional(known->millimetres);
}

PlateSheet layOut(const Plate& plate, const Page& page) {
    const Layout layout(plate, scaleOf(plate));
    const SheetPoint roomy = layout.needed(true);
    const SheetPoint need = layout.needed(false);
    const auto size = page.size ? held(need, layout.width() >= layout.height(), page)
                                : std::optional(SheetPoint{std::ceil(roomy.x), std::ceil(roomy.y)});
    if (!size) {
        failData(
            "the plate needs a page of {:.1f} x {:.1f} mm, margins included, which {} is not: take a larger --page "
            "(fit makes one that fits) or a smaller --field",
            need.x, need.y, page.name);
    }
    if (size->x > kMostPage || size->y > kMostPage) {
        failData("the plate needs a page of {:.0f} x {:.0f} mm: is its unit {}?", size->x, size->y, plate.units);
    }
    return layout.sheet(size->x, size->y);
}

bool isRoomFor(const Plate& plate, const Page& page) {
    const Layout layout(plate, scaleOf(plate));
    return !page.size || held(layout.needed(true), layout.width() >= layout.height(), page).has_value();
}

}  // namespace zelm::tool
