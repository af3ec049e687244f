// zelm: from image files to a calibrated stereo pair.
#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>
#include <system_error>

#include "console.h"
#include "failure.h"
#include "outputFiles.h"
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

// What was printed may still fail: a full disk, a closed output.
int checkOutput(int status) {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        failData("standard output: cannot write: {}: print to another place", std::strerror(errno));
    }
    return status;
}

int fail(ExitCode code, std::string_view line) {
    fmt::print(stderr, "zelm: {}\n", oneLine(line));
    return exitStatus(code);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        discardOutputsWhenInterrupted();
        return checkOutput(run(argc, argv));
    } catch (const Failure& failure) {
        return fail(failure.code, failure.what());
    } catch (const std::bad_alloc&) {
        return fail(ExitCode::data, "out of memory: use smaller images or fewer at a time");
    } catch (const std::system_error& error) {  // of printing
        return fail(ExitCode::data, fmt::format("standard output: {}: print to another place", error.what()));
    } catch (const std::exception& error) {
        return fail(ExitCode::data, error.what());
    }
}
