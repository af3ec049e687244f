// The registry of subcommands: a function each, defined in the file of the same name.
#ifndef ZELM_TOOL_SUBCOMMANDS_H
#define ZELM_TOOL_SUBCOMMANDS_H

#include <CLI/CLI.hpp>
#include <string>

#include "console.h"

namespace zelm::tool {

// Adds a subcommand with --json and --quiet and an example at the foot of its help. The caller adds its own options and
// sets its callback, which runs once the command line is parsed and throws Failure to give up.
CLI::App* addSubcommand(CLI::App& app, Console& console, const std::string& name, const std::string& description,
                        const std::string& example);

// Each adds one subcommand. `console` outlives the parse.
void addCalibrate(CLI::App& app, Console& console);
void addCompare(CLI::App& app, Console& console);
void addDetect(CLI::App& app, Console& console);
void addEpiline(CLI::App& app, Console& console);
void addInfo(CLI::App& app, Console& console);
void addMatch(CLI::App& app, Console& console);
void addRectify(CLI::App& app, Console& console);
void addSimulate(CLI::App& app, Console& console);
void addTriangulate(CLI::App& app, Console& console);
void addUndistort(CLI::App& app, Console& console);

// Adds them all.
void addSubcommands(CLI::App& app, Console& console);

}  // namespace zelm::tool

#endif
