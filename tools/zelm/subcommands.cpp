#include "subcommands.h"

namespace zelm::tool {

CLI::App* addSubcommand(CLI::App& app, Console& console, const std::string& name, const std::string& description,
                        const std::string& example) {
    CLI::App* const sub = app.add_subcommand(name, description);
    sub->add_flag("--json", console.json, "Print the result as JSON, and nothing else, on stdout");
    sub->add_flag("-q,--quiet", console.quiet, "Print no text and no progress; warnings and errors remain");
    sub->footer("Example:\n  " + example);
    return sub;
}

void addSubcommands(CLI::App& app, Console& console) {
    addCalibrate(app, console);
    addCompare(app, console);
    addDetect(app, console);
    addEpiline(app, console);
    addInfo(app, console);
    addMatch(app, console);
    addRectify(app, console);
    addSimulate(app, console);
    addTriangulate(app, console);
    addUndistort(app, console);
}

}  // namespace zelm::tool
