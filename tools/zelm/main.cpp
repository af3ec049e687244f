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
    CLI::App app{"zelm: calibrates a pair of cameras from images of a dot plate and measures with it", "zelm"};
    app.set_version_flag("--version", "zelm " ZELM_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Example:\n  zelm calibrate --plate plate.json --left 'left_*.png' --right 'right_*.png' -o out\n"
        "\nExit codes: 0 done, 1 the data did not allow it, 2 wrong usage.");
    addSubcommands(app, console);
    app.failure_message([](const CLI::App*, const CLI::Error& error) {
        return fmt::format("zelm: {} (--help tells the options)\n", error.what());
    });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        // Help and version arrive here as well, with exit code 0.
        return app.exit(error) == 0 ? exitStatus(ExitCode::done) : exitStatus(ExitCode::usage);
    }
    return exitStatus(ExitCode::done);
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
