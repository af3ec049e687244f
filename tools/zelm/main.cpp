// zelm: from image files to a calibrated stereo pair.
#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <system_error>

#include "console.h"
#include "failure.h"
#include "failureJson.h"
#include "outputFiles.h"
#include "subcommands.h"

using namespace zelm::tool;

namespace {

int run(int argc, char** argv, Console& console) {
    CommandLine commandLine(console);
    addSubcommands(commandLine, console);
    commandLine.run(argc, argv);
    return static_cast<int>(ExitCode::done);
}

// What was printed may still fail: a full disk, a closed output.
int checkOutput(int status) {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        failData("standard output: cannot write: {}: print to another place", std::strerror(errno));
    }
    return status;
}

// Says so, with --json also to programs.
int fail(const Failure& failure, bool asJson, const Console& console) {
    fmt::print(stderr, "zelm: {}\n", oneLine(failure.what()));
    if (asJson && std::ferror(stdout) == 0) {
        // Where this cannot be printed either, the line and the exit code say enough.
        std::fputs((failureJson(failure, console.warnings) + "\n").c_str(), stdout);
    }
    return static_cast<int>(failure.code);
}

}  // namespace

int main(int argc, char** argv) {
    Console console;
    const bool asJson = asksForJson(argc, argv);
    const auto failed = [&](const std::string& cause, const std::string& line) {
        return fail(Failure(ExitCode::data, line, {cause, {}}), asJson, console);
    };
    try {
        discardOutputsWhenInterrupted();
        return checkOutput(run(argc, argv, console));
    } catch (const Failure& failure) {
        return fail(failure, asJson, console);
    } catch (const std::bad_alloc&) {
        return failed("memory", "out of memory: use smaller images or fewer at a time");
    } catch (const std::system_error& error) {  // of printing
        return failed("output", fmt::format("standard output: {}: print to another place", error.what()));
    } catch (const std::exception& error) {
        return failed("", error.what());
    }
}
