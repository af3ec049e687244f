// zelm manual: writes manual pages and the completion of shells, from what --help says.
#include <fmt/format.h>

#include <filesystem>
#include <memory>

#include "completionScripts.h"
#include "manualPages.h"
#include "outputFiles.h"
#include "subcommands.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

void writeManual(const ToolOutline& outline, const fs::path& folder, const Console& console) {
    OutputFiles output;
    const auto add = [&](const fs::path& place, const std::string& name, const std::string& text) {
        output.prepareFolder(folder / place);
        output.add(folder / place / name, text);
    };
    const fs::path pages = "man/man1";
    add(pages, "zelm.1", toolPage(outline));
    for (const CommandOutline& sub : outline.subcommands) {
        add(pages, fmt::format("zelm-{}.1", sub.name), subcommandPage(outline, sub));
    }
    add("bash-completion/completions", "zelm", bashCompletion(outline));
    add("zsh/site-functions", "_zelm", zshCompletion(outline));
    add("fish/vendor_completions.d", "zelm.fish", fishCompletion(outline));
    output.commit();
    console.say(fmt::format("{}: {} manual pages, and completion for bash, zsh and fish", folder.string(),
                            outline.subcommands.size() + 1));
}

}  // namespace

void addManual(CommandLine& commandLine, Console& console) {
    Subcommand sub = commandLine.subcommand("manual", "Write the manual pages and the completion of shells",
                                            "zelm manual -o ~/.local/share");
    const auto folder = std::make_shared<std::string>();
    sub.option("-o,--output", *folder, "Folder for man/, bash-completion/, zsh/ and fish/").required();
    sub.hide();
    sub.does([&commandLine, folder, &console] { writeManual(commandLine.outline(), *folder, console); });
}

}  // namespace zelm::tool
