#include "subcommands.h"

namespace zelm::tool {

void addSubcommands(CommandLine& commandLine, Console& console) {
    addCalibrate(commandLine, console);
    addCompare(commandLine, console);
    addDetect(commandLine, console);
    addEpiline(commandLine, console);
    addExport(commandLine, console);
    addImport(commandLine, console);
    addInfo(commandLine, console);
    addLength(commandLine, console);
    addManual(commandLine, console);
    addMatch(commandLine, console);
    addMeasure(commandLine, console);
    addPlan(commandLine, console);
    addPlate(commandLine, console);
    addRectify(commandLine, console);
    addSimulate(commandLine, console);
    addTriangulate(commandLine, console);
    addUndistort(commandLine, console);
    addVerify(commandLine, console);
}

}  // namespace zelm::tool
