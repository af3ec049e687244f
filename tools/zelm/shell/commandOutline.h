// What --help says, as data: for manual pages and completion of shells.
#ifndef ZELM_TOOL_COMMAND_OUTLINE_H
#define ZELM_TOOL_COMMAND_OUTLINE_H

#include <string>
#include <vector>

namespace zelm::tool {

struct OptionOutline {
    std::vector<std::string> names;     // "-o", "--output"; of an argument the word that stands for it
    std::string value;                  // what stands for its value, "TEXT" or "INT"; empty: a flag
    std::vector<std::string> choices;   // all that the value can be, where that is a few words
    std::string condition;              // what else holds for the value, in words
    std::string standard;               // the value that holds unless another is given
    std::vector<std::string> excludes;  // options that cannot be given together with this one
    std::string description;
    int values = 0;         // how many come with it each time
    bool repeated = false;  // takes any number of values, also by being given several times
    bool isArgument = false;
    bool isRequired = false;

    // Whether a value is a file's or folder's name, as far as a type tells: no number and no choice.
    bool takesFiles() const { return value == "TEXT" && choices.empty(); }
};

struct CommandOutline {
    std::string name;  // "zelm", "calibrate"
    std::string description;
    std::vector<OptionOutline> options;  // and arguments, which come first
    std::vector<std::string> examples;   // command lines
};

struct ToolOutline {
    std::string version;
    CommandOutline tool;
    std::vector<CommandOutline> subcommands;  // by name, without those that help does not show
    std::string exitCodes;
};

}  // namespace zelm::tool

#endif
