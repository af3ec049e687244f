// zelm detect: the dots of one image as CSV and as a picture.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "dots.h"
#include "failedPictures.h"
#include "failure.h"
#include "imageSet.h"
#include "imageTrouble.h"
#include "numberText.h"
#include "outputFiles.h"
#include "overlay.h"
#include "plateOptions.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

struct DetectOptions {
    PlateOptions plate;
    std::string image;
    std::string folder = ".";
    std::vector<int> region;
};

struct Detection {
    std::vector<Dot> dots;
    std::string gaps;  // why dots of the described field are missing, where the image tells
};

Detection detect(const Picture& picture, const Plate& plate, const DetectOptions& options) {
    const auto region = regionOf(options.region);
    if (region) {
        checkRegion(*region, picture, options.image);
    }
    const DotReading reading = readDots(picture, plate, region);
    if (reading.status < 0) {
        failImage(troubleOf(picture, options.image, plate, region));
    }
    Detection found{reading.dots, {}};
    std::vector<Dot>& dots = found.dots;
    if (dots.size() < describedDots(plate)) {
        if (auto gaps = gapsOf(picture, options.image, plate, region)) {
            if (isMisreading(*gaps)) {
                failImage(std::move(*gaps));
            }
            found.gaps =
                fmt::format("{}: {} of {} dots read: {}", options.image, dots.size(), describedDots(plate), gaps->text);
        }
    }
    if (const std::int64_t lost = reading.found - static_cast<std::int64_t>(dots.size()); lost > 0) {
        failData("{}: {} of {} dots have no place on the grid: do pitch and marker distances in {} fit the plate?",
                 options.image, lost, reading.found, options.plate.file);
    }
    std::sort(dots.begin(), dots.end(), [](const Dot& a, const Dot& b) {
        return std::pair(a.index.y, a.index.x) < std::pair(b.index.y, b.index.x);
    });
    return found;
}

std::string csvOf(const std::vector<Dot>& dots) {
    std::string csv = "grid_x,grid_y,plane_x,plane_y,pixel_x,pixel_y\n";
    for (const Dot& dot : dots) {
        csv += fmt::format("{},{},{},{},{:.6f},{:.6f}\n", dot.index.x, dot.index.y, dot.plane.x, dot.plane.y,
                           dot.pixel.x, dot.pixel.y);
    }
    return csv;
}

void runDetect(const DetectOptions& options, const Console& console) {
    const Plate plate = plateOf(options.plate);
    const Picture picture = readPicture(options.image);
    OutputFiles outputs;
    outputs.keep(options.plate.file);
    outputs.keep(options.image);
    outputs.prepareFolder(options.folder);
    const auto [dots, gaps] = detect(picture, plate, options);

    const std::string stem = fs::path(options.image).stem().string();
    const fs::path csv = fs::path(options.folder) / (stem + "_dots.csv");
    const fs::path png = fs::path(options.folder) / (stem + "_dots.png");
    outputs.add(csv, csvOf(dots));
    outputs.add(png, drawOverlay(picture, plate, dots));
    supersedeFailedPictures({options.image}, {}, options.folder, outputs);
    outputs.commit();
    if (!gaps.empty()) {
        console.warn(gaps);
    }
    console.warn(warningOfGlobs({options.image}, {png}));

    console.say(fmt::format("{}: {} found; wrote {} and {}", options.image, counted(dots.size(), "dot"), csv.string(),
                            png.string()));
    if (console.json) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Dot& dot : dots) {
            list.push_back({{"grid", {dot.index.x, dot.index.y}},
                            {"plane", {dot.plane.x, dot.plane.y}},
                            {"pixel", {dot.pixel.x, dot.pixel.y}}});
        }
        console.result({{"image", options.image},
                        {"units", plate.units},
                        {"csv", csv.string()},
                        {"overlay", png.string()},
                        {"dots", list}});
    }
}

}  // namespace

void addDetect(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("detect", "Find the dots of the plate in one image",
                                            "zelm detect left_00.png --plate plate.json -o out");
    const auto options = std::make_shared<DetectOptions>();
    sub.option("image", options->image, "The image (PNG, TIFF, JPEG, BMP or PGM)").required();
    addPlateOptions(sub, options->plate);
    sub.rectangle("--region", options->region, "Part of the image that holds the plate; default: find it");
    sub.option("-o,--output", options->folder, "Folder for IMAGE_dots.csv and IMAGE_dots.png").showDefault();
    sub.does([options, &console] { showingFailures(options->folder, [&] { runDetect(*options, console); }); });
}

}  // namespace zelm::tool
