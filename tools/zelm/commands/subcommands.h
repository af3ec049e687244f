// The registry of subcommands: a function each, defined in the file of the same name.
#ifndef ZELM_TOOL_SUBCOMMANDS_H
#define ZELM_TOOL_SUBCOMMANDS_H

#include "commandLine.h"

namespace zelm::tool {

// Each adds one subcommand. `console` outlives the parse.
void addCalibrate(CommandLine& commandLine, Console& console);
void addCompare(CommandLine& commandLine, Console& console);
void addDetect(CommandLine& commandLine, Console& console);
void addEpiline(CommandLine& commandLine, Console& console);
void addExport(CommandLine& commandLine, Console& console);
void addImport(CommandLine& commandLine, Console& console);
void addInfo(CommandLine& commandLine, Console& console);
void addLength(CommandLine& commandLine, Console& console);
void addManual(CommandLine& commandLine, Console& console);
void addMatch(CommandLine& commandLine, Console& console);
void addMeasure(CommandLine& commandLine, Console& console);
void addPlan(CommandLine& commandLine, Console& console);
void addPlate(CommandLine& commandLine, Console& console);
void addRectify(CommandLine& commandLine, Console& console);
void addSimulate(CommandLine& commandLine, Console& console);
void addTriangulate(CommandLine& commandLine, Console& console);
void addUndistort(CommandLine& commandLine, Console& console);
void addVerify(CommandLine& commandLine, Console& console);

// Adds them all.
void addSubcommands(CommandLine& commandLine, Console& console);

}  // namespace zelm::tool

#endif
