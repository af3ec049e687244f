// zelm info: shows a calibration.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "rigFile.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

void showRig(const std::filesystem::path& path, const Console& console) {
    const Rig rig = readRig(path);
    console.say(fmt::format("{}: a calibrated pair from {} views", path.string(), rig.views()));
    console.say(rigText(rig, "plane units"));
    if (console.json) {
        console.result(rigJson(rig).dump(2));
    }
}

}  // namespace

void addInfo(CLI::App& app, Console& console) {
    CLI::App* const sub =
        addSubcommand(app, console, "info", "Show a calibration file", "zelm info out/rig.zcal --json");
    const auto path = std::make_shared<std::string>();
    sub->add_option("rig", *path, "The calibration (rig.zcal)")->required();
    sub->callback([path, &console] { showRig(*path, console); });
}

}  // namespace zelm::tool
