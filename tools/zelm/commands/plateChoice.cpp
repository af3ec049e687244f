#include "plateChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "failure.h"
#include "numberText.h"
#include "planDescription.h"
#include "plateChecks.h"

namespace zelm::tool {
namespace {

using Pattern = Zelm2ViewPatternDesc;

constexpr double kUsualPitch = 10.0;   // millimetres
constexpr double kDotShare = 0.4;      // of the pitch: as much ground as dot between two edges, and some to spare
constexpr double kMarkerRatio = 1.75;  // of the dots' diameter: well beyond what is told apart reliably
constexpr double kMarkerRoom = 0.9;    // of what a marker may take before it touches its neighbours
constexpr double kUsualColumns = 6.0;  // on either side of the corner marker, where no page sets a limit
constexpr double kUsualRows = 5.0;     //
constexpr double kPitchesAlongField = 12.0;
constexpr double kSameLength = 1e-9;  // of a length
constexpr int kMostReach = 400;       // columns or rows on either side

// "120x100", or with `mayBeOne` "10", which is both.
std::array<double, 2> pairAt(const char* option, const std::string& text, char between, bool mayBeOne) {
    const std::size_t at = text.find(between);
    const auto first = numberOf(text.substr(0, at));
    const auto second = at == std::string::npos ? (mayBeOne ? first : std::nullopt) : numberOf(text.substr(at + 1));
    if (!first || !second || !(*first > 0.0 && *second > 0.0)) {
        failUsage("{} {}: expected two lengths greater than 0, such as {}", option, text,
                  between == 'x' ? "120x100" : "30,30");
    }
    return {*first, *second};
}

// 1, 2, 2.5 or 5 times a power of ten: the largest that is no larger.
double roundLengthBelow(double length) {
    const double power = std::pow(10.0, std::floor(std::log10(length)));
    double best = power;
    for (const double step : {2.0, 2.5, 5.0, 10.0}) {
        best = step * power <= length * (1.0 + 1e-9) ? step * power : best;
    }
    return best;
}

// As many columns and rows as the page has room for.
void fillPage(Plate& plate, const Page& page) {
    Pattern& p = plate.pattern;
    const auto fits = [&](int x, int y) {
        p.d0 = 2.0 * x * p.d4;
        p.d1 = 2.0 * y * p.d5;
        return isRoomFor(plate, page);
    };
    if (!page.size) {
        fits(static_cast<int>(kUsualColumns), static_cast<int>(kUsualRows));
        return;
    }
    int best = 0;
    FieldReach reach{1, 1};
    for (int x = 1; x <= kMostReach && fits(x, 1); ++x) {
        int y = 1;
        while (y < kMostReach && fits(x, y + 1)) {
            ++y;
        }
        // Images are wider than high, and so is a plate that may be held either way on the page.
        y = page.mayTurn ? std::min(y, static_cast<int>(x * p.d4 / p.d5)) : y;
        const int dots = (2 * x + 1) * (2 * y + 1);
        if (y >= 1 && dots > best) {
            best = dots;
            reach = {x, y};
        }
    }
    fits(reach.x, reach.y);
}

// Both about as far from the corner marker, halfway to the field's nearer edge: images may show axes that differ by a
// hundred pixels at most.
void placeMarkers(Pattern& p) {
    const FieldReach reach = reachOf(p);
    const double wanted = 0.5 * std::min(reach.x * p.d4, reach.y * p.d5);
    double best = HUGE_VAL;
    for (int x = 1; x <= std::max(1, reach.x); ++x) {
        // The two rows next to the same distance.
        const int row = static_cast<int>(std::floor(x * p.d4 / p.d5));
        for (const int y : {row, row + 1}) {
            const double difference = std::fabs(x * p.d4 - y * p.d5);
            const double cost = 3.0 * difference + std::fabs(x * p.d4 - wanted) + std::fabs(y * p.d5 - wanted);
            if (y >= 1 && y <= std::max(1, reach.y) && cost <= best) {
                best = cost;
                p.d6 = x * p.d4;
                p.d7 = y * p.d5;
            }
        }
    }
}

class Designer {
public:
    Designer(const DesignOptions& designOptions, const Page& sheetPage)
        : options(designOptions),
          page(sheetPage),
          hasFile(!designOptions.file.empty()),
          plate(hasFile ? readPlate(designOptions.file) : emptyPlate()) {}

    DesignedPlate design() {
        const bool hadUsualDots = plate.pattern.minDots == usualMinDots(plate.pattern);
        identify();
        choosePitch();
        chooseDiameters();
        chooseField();
        chooseMarkers();
        checkPlateSizes(source(), plate.pattern);
        if (!hasFile || hadUsualDots) {
            plate.pattern.minDots = usualMinDots(plate.pattern);
        }
        if (!plate.positions.grid.empty()) {
            checkDotPositions(plate.positionsSource, plate.pattern, plate.positions);
        }
        return {std::move(plate), std::move(notes)};
    }

private:
    std::string source() const { return hasFile ? options.file : "the plate"; }

    void identify() {
        for (const auto& [given, place] : {std::pair(&options.units, &plate.units),
                                           {&options.name, &plate.name},
                                           {&options.maker, &plate.maker},
                                           {&options.serial, &plate.serial}}) {
            *place = given->empty() ? *place : *given;
        }
        if (!options.polarity.empty()) {
            plate.pattern.polarity = options.polarity == "bright" ? 1 : 0;
        }
        if (!options.units.empty() && hasFile && options.units != readPlate(options.file).units) {
            failUsage("--units {}: the lengths of {} are in another unit: leave --units out", options.units,
                      options.file);
        }
        scale = millimetresOf(plate.units).value_or(1.0);
    }

    void choosePitch() {
        Pattern& p = plate.pattern;
        if (!options.pitch.empty()) {
            const auto [x, y] = pairAt("--pitch", options.pitch, 'x', true);
            p.d4 = x;
            p.d5 = y;
        } else if (!hasFile) {
            p.d4 = p.d5 = kUsualPitch / scale;
            if (!options.field.empty()) {
                const auto [width, height] = pairAt("--field", options.field, 'x', false);
                p.d4 = p.d5 = roundLengthBelow(std::max(width, height) / kPitchesAlongField * (1.0 + 1e-9));
            }
        }
    }

    void chooseDiameters() {
        Pattern& p = plate.pattern;
        const double pitch = std::min(p.d4, p.d5);
        if (options.dot || !hasFile) {
            p.d2 = options.dot.value_or(kDotShare * pitch);
        }
        if (options.marker || !hasFile) {
            p.d3 = options.marker.value_or(std::min(kMarkerRatio * p.d2, kMarkerRoom * (2.0 * pitch - p.d2)));
        }
    }

    void chooseField() {
        Pattern& p = plate.pattern;
        if (!options.field.empty()) {
            const auto [width, height] = pairAt("--field", options.field, 'x', false);
            p.d0 = width;
            p.d1 = height;
        } else if (!hasFile) {
            fillPage(plate, page);
        }
        roundField();
    }

    // The corner marker stands in the middle: the field ends at a whole number of pitches on either side of it.
    void roundField() {
        Pattern& p = plate.pattern;
        const FieldReach reach = reachOf(p);
        if (reach.x < 1 || reach.y < 1) {
            failUsage(
                "{}: a field of {:.6g} x {:.6g} {} has less than a pitch on either side of its middle: enlarge it",
                source(), p.d0, p.d1, plate.units);
        }
        const double width = 2.0 * reach.x * p.d4;
        const double height = 2.0 * reach.y * p.d5;
        if (std::fabs(width - p.d0) > kSameLength * width || std::fabs(height - p.d1) > kSameLength * height) {
            notes.push_back(
                fmt::format("{}: the field of {:.6g} x {:.6g} {} becomes {:.6g} x {:.6g}, an even number of pitches "
                            "each way, as the "
                            "corner marker stands in its middle",
                            source(), p.d0, p.d1, plate.units, width, height));
        }
        p.d0 = width;
        p.d1 = height;
    }

    void chooseMarkers() {
        Pattern& p = plate.pattern;
        if (!options.markersAt.empty()) {
            const auto [x, y] = pairAt("--markers-at", options.markersAt, ',', false);
            p.d6 = x;
            p.d7 = y;
        } else if (!hasFile) {
            placeMarkers(p);
        }
    }

    const DesignOptions& options;
    const Page& page;
    bool hasFile;
    Plate plate;
    std::vector<std::string> notes;
    double scale = 1.0;
};

ZelmMeasureCamera plainCamera(const SightOptions& options) {
    ZelmMeasureCamera camera{};
    camera.size = sizeof(camera);
    camera.intrinsics.alpha = camera.intrinsics.beta = *options.focalLength / *options.pixelSize;
    if (!options.image.empty()) {
        const auto [width, height] = pairAt("--image", options.image, 'x', false);
        constexpr double kMostSide = 1e6;
        if (width != std::round(width) || height != std::round(height) || width > kMostSide || height > kMostSide) {
            failUsage("--image {}: expected WIDTHxHEIGHT in pixels", options.image);
        }
        camera.width = static_cast<std::int32_t>(width);
        camera.height = static_cast<std::int32_t>(height);
    }
    return camera;
}

}  // namespace

void addDesignOptions(Subcommand& sub, DesignOptions& o) {
    sub.option("plate", o.file, "A plate's description (JSON) to begin with; options below change it");
    sub.option("--field", o.field, "WIDTHxHEIGHT from the first dots' centres to the last; default: fills the page");
    sub.option("--pitch", o.pitch, "Distance of neighbouring dots, or XxY; default 10 mm, or what suits --field");
    sub.option("--dot", o.dot, "Diameter of the dots; default 0.4 of the pitch").positive();
    sub.option("--marker", o.marker, "Diameter of the markers; default 1.75 times that of the dots").positive();
    sub.option("--markers-at", o.markersAt, "X,Y distances of the two outer markers from the corner marker");
    sub.option("--polarity", o.polarity, "dark dots on white, or bright ones on a printed ground; default dark")
        .oneOf({"dark", "bright"});
    sub.option("--units", o.units, "Unit of all lengths: mm, cm, m, um, mil or inch; default mm");
    sub.option("--name", o.name, "Name of the plate, printed on it");
    sub.option("--maker", o.maker, "Who makes it, printed on it");
    sub.option("--serial", o.serial, "Its number, printed on it");
}

DesignedPlate designPlate(const DesignOptions& options, const Page& page) {
    return Designer(options, page).design();
}

void addSightOptions(Subcommand& sub, SightOptions& o) {
    Option station = sub.option("--camera", o.station,
                                "Judge the plate before the cameras of this description, that "
                                "of zelm plan (JSON)");
    sub.option("--pixel-size", o.pixelSize, "... or before one camera: size of its pixels")
        .positive()
        .excludes(station);
    sub.option("--focal-length", o.focalLength, "... its focal length, in the same unit").positive().excludes(station);
    sub.option("--distance", o.distance, "... its distance from the plate, in the plate's unit")
        .positive()
        .excludes(station);
    sub.option("--image", o.image, "... and WIDTHxHEIGHT of its images in pixels").excludes(station);
}

PlateCameras camerasOf(const SightOptions& o) {
    PlateCameras sight;
    if (!o.station.empty()) {
        const PlanDescription plan = readPlanDescription(o.station, false);
        const double half = 0.5 * plan.options.extent[2];
        sight.cameras = {plan.pair->left, plan.pair->right};
        sight.names = {"the left camera", "the right camera"};
        sight.nearest = plan.options.centre[2] - half;
        sight.farthest = plan.options.centre[2] + half;
        if (!(sight.nearest > 0.0)) {
            failUsage("{}: volume: it reaches to the cameras: lessen its depth or enlarge its distance", o.station);
        }
        return sight;
    }
    const int given = (o.pixelSize ? 1 : 0) + (o.focalLength ? 1 : 0) + (o.distance ? 1 : 0);
    if (given == 0 && o.image.empty()) {
        return sight;
    }
    if (given < 3) {
        failUsage("--pixel-size, --focal-length and --distance describe a camera together: give all three");
    }
    sight.cameras = {plainCamera(o)};
    sight.names = {"the camera"};
    sight.nearest = sight.farthest = *o.distance;
    return sight;
}

}  // namespace zelm::tool
