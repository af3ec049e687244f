// zelm import: a calibration of files of another program.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "exchangeFormat.h"
#include "failure.h"
#include "numberText.h"
#include "outputFiles.h"
#include "rigFile.h"
#include "rigReport.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct ImportOptions {
    std::vector<std::string> files;
    std::string format;
    std::string rig = "rig.zcal";
    std::string unit = "mm";
    std::string size;
    std::string rightSize;
    double tolerance = 0.05;
};

// "1280,960" as two whole numbers.
void takeSize(const std::string& text, const char* option, std::int32_t& width, std::int32_t& height) {
    if (text.empty()) {
        return;
    }
    const std::vector<double> n = numbersOf(text);
    const auto isSide = [](double v) { return v >= 1.0 && v <= 1 << 20 && v == static_cast<int>(v); };
    if (n.size() != 2 || !isSide(n[0]) || !isSide(n[1])) {
        failUsage("{} {}: expected width,height in pixels", option, text);
    }
    width = static_cast<std::int32_t>(n[0]);
    height = static_cast<std::int32_t>(n[1]);
}

ZelmMeasureImportOptions libraryOptions(const ImportOptions& o, const ExchangeFormat& format) {
    ZelmMeasureImportOptions options{};
    options.size = sizeof(options);
    options.format = format.number;
    options.metres = metresOfUnit(o.unit);
    options.tolerance = o.tolerance;
    takeSize(o.size, "--size", options.leftWidth, options.leftHeight);
    takeSize(o.rightSize, "--right-size", options.rightWidth, options.rightHeight);
    return options;
}

void checkCount(const ImportOptions& o, const ExchangeFormat& format) {
    const bool isGood = format.hasFileOfEach()
                            ? o.files.size() == 2
                            : o.files.size() == 1 || (format.word == "opencv" && o.files.size() == 2);
    if (!isGood) {
        failUsage("{} {}: {} takes {}", o.files.size(), o.files.size() == 1 ? "file" : "files", format.word,
                  format.hasFileOfEach()    ? "two, of the left and of the right camera"
                  : format.word == "opencv" ? "one, or two that complete each other (intrinsics and extrinsics)"
                                            : "one");
    }
}

struct ImportedPair {
    LoadedRig rig;
    ZelmMeasureImported facts{};
};

ImportedPair importPair(const ImportOptions& o, const ExchangeFormat& format) {
    std::vector<std::string> bytes;
    std::vector<const void*> places;
    std::vector<std::int64_t> sizes;
    std::string names;
    bytes.reserve(o.files.size());
    for (const std::string& file : o.files) {
        bytes.push_back(readWholeFile(file, fmt::format("a calibration of {}", format.program)));
        places.push_back(bytes.back().data());
        sizes.push_back(static_cast<std::int64_t>(bytes.back().size()));
        names += (names.empty() ? "" : ", ") + file;
    }
    const ZelmMeasureImportOptions options = libraryOptions(o, format);
    ImportedPair imported;
    imported.facts.size = sizeof(imported.facts);
    ZelmMeasureRig* handle = nullptr;
    const std::int32_t status = zelmMeasureImport(&options, static_cast<std::int32_t>(bytes.size()), places.data(),
                                                  sizes.data(), &handle, &imported.facts);
    MeasurePtr owner(handle);
    if (status < 0) {
        std::string why = handle != nullptr ? zelmMeasureRigError(handle) : "cannot be read: out of memory";
        if (why.ends_with("tell it")) {
            why += " with --size WIDTH,HEIGHT";
        } else if (why.find("the tolerance of") != std::string::npos) {
            why += ": calibrate with zelm calibrate, or accept it with --tolerance";
        }
        failData("{}: {}", names, why);
    }
    imported.rig = rigOfHandle(std::move(owner));
    return imported;
}

std::string lensText(const ZelmMeasureImported& facts) {
    std::string text;
    const auto add = [&text](const char* side, double worst, double rms) {
        if (worst > 0.0) {
            text +=
                fmt::format("\nthe {} lens replaced by k1 and k2: off by RMS {:.2g}, worst {:.2g} px over the image",
                            side, rms, worst);
        }
    };
    add("left", facts.leftLensWorst, facts.leftLensRms);
    add("right", facts.rightLensWorst, facts.rightLensRms);
    return text;
}

void runImport(const ImportOptions& o, const Console& console) {
    const ExchangeFormat& format = exchangeFormat(o.format, "--from");
    checkCount(o, format);
    OutputFiles outputs;
    for (const std::string& file : o.files) {
        outputs.keep(file);
    }
    outputs.prepareFolder(fs::path(o.rig).parent_path());
    const ImportedPair imported = importPair(o, format);
    outputs.add(o.rig, blockOf(imported.rig.calib()));
    outputs.supersede(covarianceFile(o.rig));
    outputs.commit();
    const bool isCameraFrame = imported.facts.isCameraFrame != 0;
    console.say(rigText(imported.rig.rig, format.inMetres ? o.unit : kUnknownUnits));
    console.say(fmt::format("points are in the frame of {}; no dots, no covariance{}\nwrote {}",
                            isCameraFrame ? "the left camera" : "the plate that the file tells",
                            lensText(imported.facts), o.rig));
    Json json{{"format", format.word}, {"rig", o.rig}, {"frame", isCameraFrame ? "left camera" : "plate"}};
    json["units"] = format.inMetres ? o.unit : kUnknownUnits;
    json["lens"] = {{"left", {{"worst", imported.facts.leftLensWorst}, {"rms", imported.facts.leftLensRms}}},
                    {"right", {{"worst", imported.facts.rightLensWorst}, {"rms", imported.facts.rightLensRms}}}};
    console.result(json);
}

}  // namespace

void addImport(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("import", "Make a calibration of the files of another program",
                                            "zelm import left.yaml right.yaml --from ros -o rig.zcal");
    const auto o = std::make_shared<ImportOptions>();
    sub.option("files", o->files, "Its files; of a program with a file a camera the left one first").required();
    sub.option("--from", o->format, "The program").required().oneOf(exchangeWords());
    sub.option("-o,--output", o->rig, "The calibration").showDefault();
    sub.option("--unit", o->unit,
               "What a plate unit shall be, for programs that count in metres: um, mm, cm, m, mil or inch")
        .showDefault();
    sub.option("--size", o->size, "Width,height of the images in pixels, where the file does not tell them");
    sub.option("--right-size", o->rightSize, "Likewise of the right images, where they are of another size");
    sub.option("--tolerance", o->tolerance,
               "How far k1 and k2 may be from a lens with more terms, at any pixel of the image, in pixels")
        .positive()
        .showDefault();
    sub.does([o, &console] { runImport(*o, console); });
}

}  // namespace zelm::tool
