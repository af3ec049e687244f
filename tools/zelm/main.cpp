// zelm: from image files to a calibrated stereo pair.
#include <fmt/format.h>

#include <cstdio>
#include <exception>

#include "failure.h"
#include "subcommands.h"

using namespace zelm::tool;

namespace {

int exitStatus(ExitCode code) {
    return static_cast<int>(code);
}

int run(int argc, char** argv) {
    Console console;
    CommandLine commandLine(console);
    addSubcommands(commandLine, console);
    return exitStatus(commandLine.run(argc, argv) ? ExitCode::done : ExitCode::usage);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const Failure& failure) {
        fmt::print(stderr, "zelm: {}\n", failure.what());
        return exitStatus(failure.code);
    } catch (const std::bad_alloc&) {
        fmt::print(stderr, "zelm: out of memory: use smaller images or fewer at a time\n");
    } catch (const std::exception& error) {
        fmt::print(stderr, "zelm: {}\n", error.what());
    }
    return exitStatus(ExitCode::data);
}
