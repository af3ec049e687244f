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

int run(int argc, char** argv) {
    Console console;
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

int fail(const Failure& failure, bool asJson) {
    fmt::print(stderr, "zelm: {}\n", oneLine(failure.what()));
    if (asJson && std::ferror(stdout) == 0) {
        // Where this cannot be printed either, the line and the exit code say enough.
        std::fputs((failureJson(failure) + "\n").c_str(), stdout);
    }
    return static_cast<int>(failure.code);
}

int fail(const std::string& cause, const std::string& line, bool asJson) {
    return fail(Failure(ExitCode::data, line, {cause, {}}), asJson);
}

}  // namespace

int main(int argc, char** argv) {
    const bool asJson = asksForJson(argc, argv);
    try {
        discardOutputsWhenInterrupted();
        return checkOutput(run(argc, argv));
    } catch (const Failure& failure) {
        return fail(failure, asJson);
    } catch (const std::bad_alloc&) {
        return fail("memory", "out of memory: use smaller images or fewer at a time", asJson);
    } catch (const std::system_error& error) {  // of printing
        return fail("output", fmt::format("standard output: {}: print to another place", error.what()), asJson);
    } catch (const std::exception& error) {
        return fail("", error.what(), asJson);
    }
}
