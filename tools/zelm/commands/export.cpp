// zelm export: a calibration as the files of another program.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "exchangeFormat.h"
#include "failure.h"
#include "outputFiles.h"
#include "rigFile.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct ExportOptions {
    std::string rig;
    std::string format;
    std::string folder = ".";
    std::string unit;  // empty: that of the calibration
};

std::string exportedFile(const LoadedRig& rig, const ZelmMeasureExportOptions& options, std::int32_t side) {
    std::int64_t length = 0;
    rig.require(zelmMeasureExport(rig.handle.get(), &options, side, 0, nullptr, &length), rig.file.string());
    std::string bytes(static_cast<std::size_t>(length), '\0');
    rig.require(zelmMeasureExport(rig.handle.get(), &options, side, length, bytes.data(), &length), rig.file.string());
    return bytes;
}

ZelmMeasureExportLoss lossOf(const LoadedRig& rig, const ZelmMeasureExportOptions& options) {
    ZelmMeasureExportLoss loss{};
    loss.size = sizeof(loss);
    rig.require(zelmMeasureExportLoss(rig.handle.get(), &options, &loss), rig.file.string());
    return loss;
}

// "the covariance; the poses of 11 further views"; empty when nothing is lost.
std::string lossText(const ZelmMeasureExportLoss& loss) {
    std::string text;
    const auto add = [&text](const std::string& words) { text += (text.empty() ? "" : "; ") + words; };
    if (loss.skewLeft > 0.0 || loss.skewRight > 0.0) {
        add(fmt::format("the skew, which its functions ignore (up to {:.2g} px left, {:.2g} px right)", loss.skewLeft,
                        loss.skewRight));
    }
    if (loss.frame != 0) {
        add("the frame of the plate (points are in the left camera's)");
    }
    if (loss.covariance != 0) {
        add("the covariance");
    }
    if (loss.views > 0) {
        add(fmt::format("the poses of {} further views", loss.views));
    }
    return text;
}

Json lossJson(const ZelmMeasureExportLoss& loss) {
    return {{"skewPixels", {{"left", loss.skewLeft}, {"right", loss.skewRight}}},
            {"frame", loss.frame != 0},
            {"covariance", loss.covariance != 0},
            {"views", loss.views}};
}

// What a length of 1 in the calibration is. Only programs that count in metres must know it.
struct PlateUnit {
    std::string name;
    std::string warning;  // where the user may be mistaken; or empty
};

PlateUnit unitOf(const ExportOptions& o, const ExchangeFormat& format, const LoadedRig& rig) {
    constexpr const char* kUsual = "mm";
    const SavedSummary& summary = rig.summary;
    const bool isUnknown = !summary.hasUnits();
    if (!o.unit.empty()) {
        const bool isOther = !isUnknown && knownMetres(summary.units) != metresOfUnit(o.unit);
        return {o.unit, isOther ? fmt::format("{}: {} says that it counts in {}: --unit {} is taken instead", o.rig,
                                              summary.file, summary.units, o.unit)
                                : std::string()};
    }
    if (!format.inMetres || knownMetres(summary.units)) {
        return {rig.units, {}};
    }
    if (!isUnknown) {
        failData("{}: {} says that it counts in {}, and how much of a metre that is, is not known: give --unit", o.rig,
                 summary.file, summary.units);
    }
    return {kUsual,
            fmt::format("{}: no {} of this calibration stands beside it and tells its unit: taken for {}, which "
                        "--unit changes",
                        o.rig, fs::path(o.rig).filename().replace_extension(".json").string(), kUsual)};
}

void runExport(const ExportOptions& o, const Console& console) {
    const ExchangeFormat& format = exchangeFormat(o.format, "--to");
    if (!o.unit.empty()) {
        static_cast<void>(metresOfUnit(o.unit));
    }
    const LoadedRig rig = loadRig(o.rig, console);
    const auto [unit, warning] = unitOf(o, format, rig);
    const ZelmMeasureExportOptions options{sizeof(options), format.number, knownMetres(unit).value_or(0.0)};
    OutputFiles outputs;
    outputs.keep(o.rig);
    outputs.keep(covarianceFile(o.rig));
    outputs.prepareFolder(o.folder);
    Json names = Json::array();
    std::string written;
    for (std::size_t i = 0; i < format.files.size(); ++i) {
        const std::int32_t side = format.hasFileOfEach() ? (i == 0 ? 'L' : 'R') : 0;
        const fs::path path = fs::path(o.folder) / format.files[i];
        outputs.add(path, exportedFile(rig, options, side));
        names.push_back(path.string());
        written += (i == 0 ? "" : " and ") + path.string();
    }
    const ZelmMeasureExportLoss loss = lossOf(rig, options);
    outputs.commit();
    console.warn(warning);
    if (const std::string lost = lossText(loss); !lost.empty()) {
        console.warn(fmt::format("{}: what {} does not hold: {}", o.rig, format.program, lost));
    }
    console.say(fmt::format("wrote {} for {}, lengths in {}", written, format.program,
                            format.inMetres ? fmt::format("metres (those of the calibration are in {})", unit) : unit));
    Json json{{"format", format.word}, {"files", names}, {"lost", lossJson(loss)}};
    json["metresPerUnit"] = format.inMetres ? options.metres : 1.0;
    json["lengths"] = format.inMetres ? "metres" : unit;
    json["units"] = unit;  // of the calibration
    console.result(json);
}

}  // namespace

void addExport(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("export", "Write a calibration as the files of another program",
                                            "zelm export out/rig.zcal --to opencv -o out");
    const auto o = std::make_shared<ExportOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("--to", o->format, "The program").required().oneOf(exchangeWords());
    sub.option("-o,--output", o->folder, "Folder for the files").showDefault();
    sub.option("--unit", o->unit,
               "Unit of the calibration's lengths, for programs that count in metres: um, mm, cm, m, mil or inch; "
               "default: what the rig.json beside it says");
    sub.does([o, &console] { runExport(*o, console); });
}

}  // namespace zelm::tool
