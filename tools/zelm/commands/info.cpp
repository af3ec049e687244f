// zelm info: shows a calibration.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "jsonText.h"
#include "rigFile.h"
#include "rigReport.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

void showRig(const std::filesystem::path& path, const Console& console) {
    const Rig rig = loadRig(path).rig;
    console.say(fmt::format("{}: a calibrated pair from {} views", path.string(), rig.views()));
    console.say(rigText(rig, "plate units"));
    if (console.json) {
        console.result(jsonText(rigJson(rig)));
    }
}

}  // namespace

void addInfo(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("info", "Show a calibration file", "zelm info out/rig.zcal --json");
    const auto path = std::make_shared<std::string>();
    sub.option("rig", *path, "The calibration (rig.zcal)").required();
    sub.does([path, &console] { showRig(*path, console); });
}

}  // namespace zelm::tool
