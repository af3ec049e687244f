#include "lengthReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "numberText.h"
#include "spacePoints.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMillionths = 1e6;
constexpr double kPureScale = 0.5;      // of the RMS error: what remains without the scale, if the scale is nearly all
constexpr std::int64_t kMinScaled = 5;  // lengths that a word on their common scale takes
constexpr double kClear = 3.0;          // standard deviations
constexpr std::array<std::string_view, 9> kRegions{"upper left",  "upper middle", "upper right",
                                                   "middle left", "middle",       "middle right",
                                                   "lower left",  "lower middle", "lower right"};
constexpr std::array<std::string_view, 3> kSlabs{"near", "middle", "far"};

// " mm"; nothing where the unit is not known.
std::string unitOf(const LengthCheck& check) {
    return check.units.empty() ? std::string() : fmt::format(" {}", check.units);
}

std::string figuresText(const ZelmMeasureLengthFigures& f) {
    return fmt::format("{:7} {:9.4f} {:+9.4f} {:+9.4f}", f.count, f.rms, f.mean, f.worst);
}

std::string tableText(const LengthCheck& check) {
    const ZelmMeasureLengthSummary& s = check.summary;
    std::string text = fmt::format("length errors{:<25} lengths       RMS      mean     worst\n",
                                   check.units.empty() ? std::string() : fmt::format(" in {}", check.units));
    text += fmt::format("{:<38} {}", "all", figuresText(s.all));
    for (std::size_t i = 0; i < kSlabs.size(); ++i) {
        if (s.slabs[i].count > 0) {
            text += fmt::format("\n{:<38} {}",
                                fmt::format("{}, depth {:.1f} to {:.1f}", kSlabs[i], s.depths[i], s.depths[i + 1]),
                                figuresText(s.slabs[i]));
        }
    }
    for (std::size_t i = 0; i < kRegions.size(); ++i) {
        if (s.regions[i].count > 0) {
            text +=
                fmt::format("\n{:<38} {}", fmt::format("{} of the left image", kRegions[i]), figuresText(s.regions[i]));
        }
    }
    return text;
}

std::string nameOf(const CheckedLength& length) {
    return fmt::format("{}{}{} to {}", length.view, length.view.empty() ? "" : ": ", length.from, length.to);
}

std::string scaleText(const LengthCheck& check) {
    const ZelmMeasureLengthSummary& s = check.summary;
    const std::string deviation =
        s.all.count > 1 ? fmt::format(" +- {:.0f}", s.scaleDeviation * kMillionths) : std::string();
    std::string text = fmt::format("scale error: all lengths together are too {} by {:.0f}{} ppm",
                                   s.scale < 0.0 ? "short" : "long", std::fabs(s.scale) * kMillionths, deviation);
    if (s.all.count >= kMinScaled && std::fabs(s.scale) > kClear * s.scaleDeviation &&
        s.rmsWithoutScale < kPureScale * s.all.rms) {
        text += fmt::format(
            ", which is nearly all of the error (RMS {:.4f}{} without it): a pure scale error means that the pitch in "
            "the plate file, or the plate, is not the one of the calibration, or that the baseline has changed",
            s.rmsWithoutScale, unitOf(check));
    } else {
        text += fmt::format("; RMS {:.4f}{} without it", s.rmsWithoutScale, unitOf(check));
    }
    return text;
}

std::string flatnessText(const LengthCheck& check) {
    double squares = 0.0;
    double dots = 0.0;
    const CheckedPlate* worst = &check.plates.front();
    double offset = 0.0;
    for (const CheckedPlate& plate : check.plates) {
        const double count = static_cast<double>(plate.fit.count);
        squares += count * plate.fit.flatnessRms * plate.fit.flatnessRms;
        dots += count;
        worst = plate.fit.flatnessMax > worst->fit.flatnessMax ? &plate : worst;
        offset = std::max(offset, plate.fit.maxOffset);
    }
    return fmt::format(
        "flatness: the dots lie off the best plane of their view by {:.4f}{} RMS, at most {:.4f} ({})\n"
        "the centres of the dots' ellipses were corrected by up to {:.3f} px",
        std::sqrt(squares / dots), unitOf(check), worst->fit.flatnessMax, worst->view, offset);
}

Json figuresJson(const ZelmMeasureLengthFigures& f) {
    return {{"count", f.count}, {"rms", f.rms}, {"mean", f.mean}, {"worst", f.worst}};
}

}  // namespace

bool LengthCheck::isExceeded() const {
    return tolerance && std::fabs(summary.all.worst) > *tolerance;
}

std::string lengthText(const LengthCheck& check) {
    const ZelmMeasureLengthSummary& s = check.summary;
    const CheckedLength& worst = check.lengths[static_cast<std::size_t>(s.worst)];
    std::string text = fmt::format("{} of {:.3f} to {:.3f}{}, measured minus nominal",
                                   counted(check.lengths.size(), "length"), s.minNominal, s.maxNominal, unitOf(check));
    if (!check.plates.empty()) {
        text += fmt::format(", in {} view{}", check.plates.size(), check.plates.size() == 1 ? "" : "s");
    }
    text += fmt::format("\n{}", tableText(check));
    text += fmt::format("\nlargest error {:+.4f}{} at {:.3f}: {}", worst.error(), unitOf(check), worst.nominal,
                        nameOf(worst));
    text += fmt::format("\n{}", scaleText(check));
    if (!check.plates.empty()) {
        text += fmt::format("\n{}", flatnessText(check));
    }
    if (check.tolerance && !check.isExceeded()) {
        text += fmt::format("\nevery length is within the tolerance of {}{}", *check.tolerance, unitOf(check));
    }
    return text;
}

std::string exceededText(const LengthCheck& check) {
    const CheckedLength& worst = check.lengths[static_cast<std::size_t>(check.summary.worst)];
    return fmt::format("the largest length error of {:.4f}{} ({}) exceeds the tolerance of {}: calibrate again",
                       std::fabs(worst.error()), unitOf(check), nameOf(worst), *check.tolerance);
}

Json lengthJson(const LengthCheck& check) {
    const ZelmMeasureLengthSummary& s = check.summary;
    const CheckedLength& worst = check.lengths[static_cast<std::size_t>(s.worst)];
    Json json{{"units", check.units},
              {"all", figuresJson(s.all)},
              {"nominal", {s.minNominal, s.maxNominal}},
              {"largest",
               {{"view", worst.view},
                {"from", worst.from},
                {"to", worst.to},
                {"nominal", worst.nominal},
                {"error", worst.error()}}},
              {"scalePpm", s.scale * kMillionths},
              {"scalePpmDeviation", s.all.count > 1 ? Json(s.scaleDeviation * kMillionths) : Json()},
              {"rmsWithoutScale", s.rmsWithoutScale}};
    for (std::size_t i = 0; i < kSlabs.size(); ++i) {
        Json slab = figuresJson(s.slabs[i]);
        slab["depth"] = {s.depths[i], s.depths[i + 1]};
        json["byDepth"].push_back(slab);
    }
    for (std::size_t i = 0; i < kRegions.size(); ++i) {
        json["byRegion"][std::string(kRegions[i])] = figuresJson(s.regions[i]);
    }
    for (const CheckedPlate& plate : check.plates) {
        const ZelmMeasurePlateFit& f = plate.fit;
        json["views"].push_back({{"left", plate.view},
                                 {"dots", f.count},
                                 {"rms", f.rms},
                                 {"flatnessRms", f.flatnessRms},
                                 {"flatnessWorst", f.flatnessMax},
                                 {"scalePpm", f.scale * kMillionths},
                                 {"scalePpmDeviation", f.scaleDeviation * kMillionths}});
    }
    if (check.tolerance) {
        json["tolerance"] = *check.tolerance;
        json["withinTolerance"] = !check.isExceeded();
    }
    return json;
}

std::string lengthCsv(const LengthCheck& check) {
    std::string csv = "view,from,to,nominal,measured,error,X,Y,Z,depth,region\n";
    for (const CheckedLength& l : check.lengths) {
        csv += fmt::format("{},{},{},{:.10g},{:.10g},{:.6g},{:.10g},{:.10g},{:.10g},{:.10g},{}\n", csvField(l.view),
                           csvField(l.from), csvField(l.to), l.nominal, l.measured, l.error(), l.middle.x, l.middle.y,
                           l.middle.z, l.depth, kRegions[static_cast<std::size_t>(l.region)]);
    }
    return csv;
}

}  // namespace zelm::tool
