// The command line: subcommands and their options. It keeps the parser's headers, which take half a minute to compile,
// out of the subcommands' files.
#ifndef ZELM_TOOL_COMMAND_LINE_H
#define ZELM_TOOL_COMMAND_LINE_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "commandOutline.h"
#include "console.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zelm::tool {

// One option, for conditions on it. What does not meet them is refused with a line that names the option.
class Option {
public:
    explicit Option(CLI::Option* added) : parsed(added) {}

    Option& required();
    // The help shows the value that holds unless another is given.
    Option& showDefault();
    Option& inRange(int least, int most);
    Option& inRange(double least, double most);
    Option& positive();
    Option& oneOf(const std::vector<std::string>& words);
    Option& takes(int count);
    // The two cannot be given together.
    Option& excludes(const Option& other);

private:
    CLI::Option* parsed;
};

class Subcommand {
public:
    explicit Subcommand(CLI::App* added) : parsed(added) {}

    // An option, "-o,--output", or an argument without a name, "rig". The value must outlive the parse. Value:
    // std::string, int, std::size_t, double, std::optional of int, double or std::uint64_t, std::vector<std::string>.
    template <class Value>
    Option option(const std::string& names, Value& value, const std::string& description);
    // An option for a rectangle x,y,width,height.
    Option rectangle(const std::string& names, std::vector<int>& value, const std::string& description);
    Option flag(const std::string& names, bool& value, const std::string& description);

    // Help does not show it: it serves those who install the tool.
    void hide();

    // What the subcommand does once the command line is parsed; throws Failure to give up.
    void does(std::function<void()> work);

private:
    CLI::App* parsed;
};

class CommandLine {
public:
    // `console` gets --json and --quiet of the subcommand and must outlive the parse.
    explicit CommandLine(Console& console);
    ~CommandLine();

    // A subcommand with --json and --quiet and an example at the foot of its help.
    Subcommand subcommand(const std::string& name, const std::string& description, const std::string& example);

    // What help says of all that it shows.
    ToolOutline outline() const;

    // Parses and does what the subcommand does, or prints help. Throws Failure for wrong usage, and what the subcommand
    // throws.
    void run(int argc, const char* const* argv);

private:
    Console& console;
    std::unique_ptr<CLI::App> parser;
};

}  // namespace zelm::tool

#endif
