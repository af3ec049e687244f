// zelm info: shows a calibration.
#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "numberText.h"
#include "rigFile.h"
#include "rigReport.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

std::string freedomText(double freedom) {
    return freedom > 0.0 ? fmt::format("{:.0f} degrees of freedom", freedom) : "known";
}

void showRig(const std::filesystem::path& path, const Console& console) {
    const LoadedRig loaded = loadRig(path, console);
    const Rig& rig = loaded.rig;
    const std::string covariance =
        rig.covariance ? fmt::format("covariance in {}: noise of a dot {:.4f} px, {}", covarianceFile(path).string(),
                                     rig.covariance->noise, freedomText(rig.covariance->freedom))
                       : fmt::format("no covariance beside {}", path.string());
    console.say(rig.isImported()
                    ? fmt::format("{}: an imported pair", path.string())
                    : fmt::format("{}: a calibrated pair from {}", path.string(), counted(rig.views(), "view")));
    console.say(rigText(rig, loaded.units));
    console.say(covariance);
    if (console.json) {
        nlohmann::ordered_json json = rigJson(rig);
        json["units"] = loaded.units;
        console.result(json);
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
