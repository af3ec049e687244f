// zelm undistort: images without the distortion of their lens.
#include <fmt/format.h>

#include <array>
#include <cctype>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "cameraPicture.h"
#include "failure.h"
#include "imageSet.h"
#include "letterCase.h"
#include "outputFiles.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

struct UndistortOptions {
    std::string rig;
    std::vector<std::string> images;
    std::string camera;
    std::string folder = ".";
};

struct Job {
    fs::path image;
    char side = 'L';
    fs::path output;
};

// The camera whose name the file's name begins with, as a word of its own: left_00.png, RIGHT-3.tif; 0 for none.
char sideInName(const fs::path& image) {
    const std::string name = lowerCase(image.filename().string());
    for (const std::string_view side : {"left", "right"}) {
        if (name.starts_with(side) &&
            (name.size() == side.size() || std::isalpha(static_cast<unsigned char>(name[side.size()])) == 0)) {
            return side == "left" ? 'L' : 'R';
        }
    }
    return 0;
}

std::vector<Job> jobsOf(const UndistortOptions& options) {
    std::vector<Job> jobs;
    std::map<fs::path, fs::path> sources;
    for (const fs::path& image : expandImageSet(options.images, "zelm undistort")) {
        const char side = options.camera.empty() ? sideInName(image) : sideOf(options.camera);
        if (side == 0) {
            failUsage("{}: which camera? Its name begins with neither left nor right: give --camera left or right",
                      image.string());
        }
        const fs::path output = fs::path(options.folder) / (image.stem().string() + "_undistorted.png");
        if (const auto [other, isNew] = sources.emplace(output, image); !isNew) {
            failUsage("{} and {}: both would be written to {}: give them one at a time, with folders of their own",
                      other->second.string(), image.string(), output.string());
        }
        jobs.push_back({image, side, output});
    }
    return jobs;
}

void runUndistort(const UndistortOptions& options, const Console& console) {
    const LoadedRig rig = loadRig(options.rig, console);
    const std::vector<Job> jobs = jobsOf(options);
    OutputFiles outputs;
    outputs.keep(options.rig);
    for (const Job& job : jobs) {
        outputs.keep(job.image);
    }
    outputs.prepareFolder(options.folder);
    Progress progress(console, "undistorting", jobs.size());
    for (const Job& job : jobs) {
        const AnyPicture picture = readCameraPicture(job.image, rig, job.side);
        outputs.add(job.output, encodePng(undistorted(rig, job.side, picture)));
        progress.advance();
    }
    outputs.commit();
    progress.erase();
    for (const Job& job : jobs) {
        if (const std::string warning = warningOfGlobs({job.image}, {job.output}); !warning.empty()) {
            console.warn(warning);
            break;  // the others are alike
        }
    }

    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Job& job : jobs) {
        console.say(
            fmt::format("{}: {} camera; wrote {}", job.image.string(), sideName(job.side), job.output.string()));
        list.push_back(
            {{"image", job.image.string()}, {"camera", sideName(job.side)}, {"undistorted", job.output.string()}});
    }
    console.result({{"images", list}});
}

}  // namespace

void addUndistort(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("undistort", "Remove the lens distortion from images",
                                            "zelm undistort out/rig.zcal left_00.png right_00.png -o out/undistorted");
    const auto o = std::make_shared<UndistortOptions>();
    sub.option("rig", o->rig, "The calibration (rig.zcal)").required();
    sub.option("images", o->images, "Raw images, as taken: files, a quoted glob, a folder, or a list (.txt)")
        .required();
    sub.option("--camera", o->camera,
               "The camera that took the images; default: by names that begin with left or right")
        .oneOf({"left", "right"});
    sub.option("-o,--output", o->folder, "Folder for IMAGE_undistorted.png, one for each image").showDefault();
    sub.does([o, &console] { runUndistort(*o, console); });
}

}  // namespace zelm::tool
