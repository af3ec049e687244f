// zelm simulate: renders stereo views of a dot plate and writes the truth beside them.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>

#include "failure.h"
#include "imageFile.h"
#include "jsonText.h"
#include "numberText.h"
#include "outputFiles.h"
#include "simulateDescription.h"
#include "simulateTruth.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

struct SimulateOptions {
    std::string description;  // file name; empty: the example
    std::string folder;
    std::string format = "png";
    std::optional<int> views;
    std::optional<std::uint64_t> seed;
    bool example = false;
};

// The file that an error is about.
std::string sourceOf(const SimulateOptions& options) {
    return options.description.empty() ? "the example rig" : options.description;
}

SimulateDescription describe(const SimulateOptions& options) {
    SimulateDescription d =
        options.description.empty() ? defaultDescription() : readSimulateDescription(options.description);
    if (options.views && !d.poses.empty()) {
        failUsage("{}: lists its views one by one: leave out --views", options.description);
    }
    d.viewCount = options.views.value_or(d.viewCount);
    d.seed = options.seed.value_or(d.seed);
    return d;
}

std::vector<render::Pose> posesOf(const SimulateDescription& d, const std::string& source) {
    if (!d.poses.empty()) {
        return d.poses;
    }
    try {
        return render::makeViewPoses(d.plate, d.rig, d.viewCount, d.seed, d.range);
    } catch (const std::runtime_error& error) {
        // A parallel camera sees no distance: the plate is placed one unit away, where the other may not look.
        const bool parallel = d.rig.left.projection == render::Projection::parallel;
        failData("{}: {}{}", source, error.what(),
                 parallel ? ", or list the poses one by one: those for a parallel left camera are drawn at z = 1" : "");
    }
}

void warnOfCutPlates(const SimulateDescription& d, const std::vector<render::Pose>& poses, const Console& console) {
    for (std::size_t i = 0; i < poses.size(); ++i) {
        if (!render::seesWholePlate(d.plate, d.rig.left, poses[i], 0.0) ||
            !render::seesWholePlate(d.plate, d.rig.right, render::compose(d.rig.rightFromLeft, poses[i]), 0.0)) {
            console.warn(fmt::format("view {}: a camera does not see the whole plate from its printed side", i));
        }
    }
}

// Writes the two images of one view and returns what is true of them.
ViewTruth renderOne(const SimulateDescription& d, const render::Pose& pose, const std::string& number,
                    const std::string& format, std::uint64_t seed, const fs::path& folder, OutputFiles& output) {
    render::RenderedPair pair = render::renderPair(d.plate, d.rig, pose, d.optics, seed);
    const auto write = [&](const char* side, render::GrayImage& image) {
        const std::string name = fmt::format("{}_{}.{}", side, number, format);
        const Picture picture{image.width, image.height, std::move(image.pixels)};
        output.add(folder / name, encodePicture(picture, name));
        return name;
    };
    ViewTruth truth;
    truth.leftImage = write("left", pair.left.image);
    truth.rightImage = write("right", pair.right.image);
    truth.left = pose;
    truth.right = render::compose(d.rig.rightFromLeft, pose);
    truth.leftDots = std::move(pair.left.dots);
    truth.rightDots = std::move(pair.right.dots);
    return truth;
}

std::vector<ViewTruth> renderAll(const SimulateDescription& d, const SimulateOptions& options, const Console& console,
                                 OutputFiles& output) {
    const std::vector<render::Pose> poses = posesOf(d, sourceOf(options));
    warnOfCutPlates(d, poses, console);
    const std::size_t digits = std::max<std::size_t>(2, std::to_string(poses.size() - 1).size());
    Progress progress(console, "rendering", poses.size());
    std::vector<ViewTruth> views;
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const std::string number = fmt::format("{:0{}}", i, digits);
        try {
            views.push_back(renderOne(d, poses[i], number, options.format, d.seed + i, options.folder, output));
        } catch (const std::domain_error& error) {
            failData("{}: view {}: {}: move the plate or check k1 and k2", sourceOf(options), i, error.what());
        }
        progress.advance();
    }
    return views;
}

// Views of an earlier run would be taken for views of this one by a pattern such as left_*.png.
void warnOfOtherViews(const SimulateOptions& options, const std::vector<ViewTruth>& views, const Console& console) {
    const auto isWritten = [&views](const std::string& name) {
        return std::any_of(views.begin(), views.end(), [&name](const ViewTruth& view) {
            return view.leftImage == name || view.rightImage == name;
        });
    };
    std::vector<std::string> others;
    std::error_code error;
    for (fs::directory_iterator entry(options.folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if ((name.starts_with("left_") || name.starts_with("right_")) && name.ends_with("." + options.format) &&
            !isWritten(name)) {
            others.push_back(name);
        }
    }
    if (!others.empty()) {
        console.warn(
            fmt::format("{}: also holds {} of other views, such as {}: a glob left_*.{} takes them "
                        "as well",
                        options.folder, counted(others.size(), "image"),
                        *std::min_element(others.begin(), others.end()), options.format));
    }
}

void simulate(const SimulateOptions& options, const Console& console) {
    checkPictureName("left." + options.format);
    const SimulateDescription d = describe(options);
    OutputFiles output;
    output.keep(options.description);
    output.prepareFolder(options.folder);
    const std::vector<ViewTruth> views = renderAll(d, options, console, output);
    const fs::path folder = options.folder;
    output.add(folder / "truth.json", jsonText(truthJson(d, views), 1) + "\n");
    output.add(folder / "plate.json", jsonText(plateJson(d.plate)) + "\n");
    output.commit();
    warnOfOtherViews(options, views, console);
    console.say(fmt::format("{}: {} of {} dots, truth.json and plate.json", options.folder,
                            counted(views.size(), "view"), render::plateDots(d.plate).size()));
    if (console.json) {
        const nlohmann::ordered_json result = {{"folder", options.folder},
                                               {"views", views.size()},
                                               {"dots", render::plateDots(d.plate).size()},
                                               {"truth", (folder / "truth.json").string()},
                                               {"plate", (folder / "plate.json").string()}};
        console.result(result);
    }
}

}  // namespace

void addSimulate(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand(
        "simulate", "Render views of a described plate and pair, with their truth",
        "zelm simulate --example > rig.json   # then edit it\n  zelm simulate rig.json -o views --seed 7");
    const auto options = std::make_shared<SimulateOptions>();
    sub.option("rig", options->description, "Description of pair, plate, optics and views; default: the example");
    sub.option("-o,--output", options->folder, "Folder for images, truth.json and plate.json");
    sub.option("--views", options->views, "Number of views, instead of the description's")
        .inRange(1, kMaxSimulatedViews);
    sub.option("--seed", options->seed, "Seed of poses and noise, instead of the description's");
    sub.option("--format", options->format, "Format of the images: png, tif, bmp or pgm")
        .oneOf({"png", "tif", "bmp", "pgm"})
        .showDefault();
    sub.flag("--example", options->example, "Print a complete description with comments, and do nothing else");
    sub.does([options, &console] {
        if (options->example && console.json) {
            console.result({{"description", nlohmann::ordered_json::parse(exampleDescription(), nullptr, true, true)}});
        } else if (options->example) {
            fmt::print("{}", exampleDescription());
        } else if (options->folder.empty()) {
            failUsage("simulate: say with -o where the images are to go");
        } else {
            simulate(*options, console);
        }
    });
}

}  // namespace zelm::tool
