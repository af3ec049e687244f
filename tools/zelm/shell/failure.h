// How a subcommand gives up: one line for the user and an exit code.
#ifndef ZELM_TOOL_FAILURE_H
#define ZELM_TOOL_FAILURE_H

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zelm::tool {

enum class ExitCode : int {
    done = 0,
    data = 1,   // the data did not allow it
    usage = 2,  // wrong usage
};

// What programs ask for besides the line: one word for the cause, such as "out-of-focus", and the images it holds for.
struct FailureCause {
    std::string word;                 // lower case with hyphens; empty: none is known
    std::vector<std::string> images;  // as the user named them
};

class Failure : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string& line, FailureCause causeOfIt = {})
        : std::runtime_error(line), code(exitCode), cause(std::move(causeOfIt)) {}

    ExitCode code;
    FailureCause cause;
    std::string result{};  // JSON of what was found out all the same, an object; or empty
};

// The data did not allow it: say which file, why, and what to try.
template <typename... Args>
[[noreturn]] void failData(fmt::format_string<Args...> line, Args&&... args) {
    throw Failure(ExitCode::data, fmt::format(line, std::forward<Args>(args)...));
}

// The command was given something that cannot be meant: say what, and what is expected.
template <typename... Args>
[[noreturn]] void failUsage(fmt::format_string<Args...> line, Args&&... args) {
    throw Failure(ExitCode::usage, fmt::format(line, std::forward<Args>(args)...));
}

}  // namespace zelm::tool

#endif
