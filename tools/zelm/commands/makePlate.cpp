// zelm plate: a plate to print or to have made, and the description that reads it.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "failure.h"
#include "jsonText.h"
#include "outputFiles.h"
#include "plateChoice.h"
#include "plateDrawings.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

struct PlateCommandOptions {
    DesignOptions design;
    SightOptions sight;
    std::string page = "A4";
    std::string orientation = "auto";
    std::string folder;
    std::string formats;  // separated by commas; empty: all
    int dpi = 600;
};

// A plate that is not read is not printed; what makes it read less well is told.
std::vector<ZelmMeasurePlateFinding> judge(const Plate& plate, const PlateCameras& cameras, const std::string& source) {
    const std::vector<ZelmMeasurePlateFinding> findings = plateFindings(plate, cameras);
    const auto fatal =
        std::find_if(findings.begin(), findings.end(), [](const auto& finding) { return finding.isFatal != 0; });
    if (fatal != findings.end()) {
        failData("{}: {}", source, findingText(*fatal, plate, cameras));
    }
    return findings;
}

constexpr std::array<const char*, 4> kFormats{"pdf", "svg", "png", "dxf"};

// Those of the option, in their fixed order. Throws Failure for a word that is none.
std::vector<std::string> wantedFormats(const std::string& list) {
    std::vector<std::string> wanted(kFormats.begin(), kFormats.end());
    if (list.empty()) {
        return wanted;
    }
    std::set<std::string> given;
    std::istringstream words(list);
    for (std::string word; std::getline(words, word, ',');) {
        if (std::find(wanted.begin(), wanted.end(), word) == wanted.end()) {
            failUsage("--format {}: expected pdf, svg, png or dxf, or several with commas between", list);
        }
        given.insert(word);
    }
    wanted.erase(std::remove_if(wanted.begin(), wanted.end(),
                                [&given](const std::string& format) { return !given.contains(format); }),
                 wanted.end());
    return wanted;
}

std::vector<std::string> addDrawings(const PlateCommandOptions& o, const PlateSheet& sheet, OutputFiles& outputs) {
    std::vector<std::string> names;
    for (const std::string& format : wantedFormats(o.formats)) {
        names.push_back("plate." + format);
        outputs.add(fs::path(o.folder) / names.back(), format == "pdf"   ? platePdf(sheet)
                                                       : format == "svg" ? plateSvg(sheet)
                                                       : format == "png" ? platePng(sheet, o.dpi)
                                                                         : plateDxf(sheet));
    }
    return names;
}

std::string designLine(const Plate& plate) {
    const Zelm2ViewPatternDesc& p = plate.pattern;
    const FieldReach reach = reachOf(p);
    const std::string pitch = p.d4 == p.d5 ? fmt::format("{:.6g}", p.d4) : fmt::format("{:.6g} x {:.6g}", p.d4, p.d5);
    return fmt::format(
        "{} x {} {} dots, field {:.6g} x {:.6g} {u}, pitch {} {u}, diameter {:.6g} {u}, markers {:.6g} "
        "{u} at {:.6g} and {:.6g} {u}",
        2 * reach.x + 1, 2 * reach.y + 1, p.polarity == 1 ? "bright" : "dark", p.d0, p.d1, pitch, p.d2, p.d3, p.d6,
        p.d7, fmt::arg("u", plate.units));
}

void tell(const Plate& plate, const PlateSheet& sheet, const std::vector<std::string>& names,
          const PlateCommandOptions& o, const Console& console) {
    console.say(designLine(plate));
    console.say(
        fmt::format("page of {:.6g} x {:.6g} mm: print it at 100 % (\"actual size\"), then hold a ruler against "
                    "the bar of 100 mm{}",
                    sheet.width, sheet.height, sheet.cropMarks.empty() ? "; no room for crop marks" : ""));
    if (!plate.positions.grid.empty()) {
        console.say(
            "plate.json keeps the measured positions: they are those of the plate that was measured, not of a "
            "new print");
    }
    console.say(fmt::format("wrote {} to {}", fmt::join(names, ", "), o.folder));
}

void makePlate(const PlateCommandOptions& o, const Console& console) {
    const Page page = pageOf(o.page, o.orientation);
    const PlateCameras cameras = camerasOf(o.sight);
    OutputFiles outputs;
    for (const std::string& input : {o.design.file, o.sight.station}) {
        if (!input.empty()) {
            outputs.keep(input);
        }
    }
    const auto [plate, notes] = designPlate(o.design, page);
    const std::vector<ZelmMeasurePlateFinding> findings =
        judge(plate, cameras, o.design.file.empty() ? "the plate" : o.design.file);
    const PlateSheet sheet = layOut(plate, page);
    static_cast<void>(wantedFormats(o.formats));
    outputs.prepareFolder(o.folder);
    std::vector<std::string> names = addDrawings(o, sheet, outputs);
    names.emplace_back("plate.json");
    const nlohmann::ordered_json description = plateFileJson(plate);
    outputs.add(fs::path(o.folder) / names.back(), jsonText(description) + "\n");
    outputs.commit();
    for (const std::string& note : notes) {
        console.warn(note);
    }
    for (const ZelmMeasurePlateFinding& finding : findings) {
        console.warn(findingText(finding, plate, cameras));
    }
    tell(plate, sheet, names, o, console);
    const nlohmann::ordered_json result{{"folder", o.folder},
                                        {"files", names},
                                        {"units", plate.units},
                                        {"page", {{"width", sheet.width}, {"height", sheet.height}, {"units", "mm"}}},
                                        {"dots", sheet.discs.size()},
                                        {"plate", description},
                                        {"findings", findingsJson(findings, plate, cameras)}};
    console.result(result);
}

}  // namespace

void addPlate(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("plate", "Make a plate to print, and the file that describes it",
                                            "zelm plate --page A4 --pitch 10 -o plate");
    const auto o = std::make_shared<PlateCommandOptions>();
    addDesignOptions(sub, o->design);
    sub.option("--page", o->page, "A5 to A0, letter, legal, tabloid, fit, or WIDTHxHEIGHT in mm").showDefault();
    sub.option("--orientation", o->orientation, "auto, landscape or portrait")
        .oneOf({"auto", "landscape", "portrait"})
        .showDefault();
    sub.option("--format", o->formats, "pdf, svg, png or dxf, or several with commas between; default: all of them");
    sub.option("--dpi", o->dpi, "Pixels an inch of the PNG").inRange(50, 10000).showDefault();
    addSightOptions(sub, o->sight);
    sub.option("-o,--output", o->folder, "Folder for plate.pdf, .svg, .png, .dxf and plate.json").required();
    sub.does([o, &console] { makePlate(*o, console); });
}

}  // namespace zelm::tool
