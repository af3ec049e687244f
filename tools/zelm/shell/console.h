// What the tool prints: results on stdout, warnings and progress on stderr.
#ifndef ZELM_TOOL_CONSOLE_H
#define ZELM_TOOL_CONSOLE_H

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

// Text of one line: line ends and other control characters, which file names may hold, become question marks.
std::string oneLine(std::string_view text);

struct Console {
    bool json = false;                          // results as JSON, and nothing else on stdout
    bool quiet = false;                         // no text and no progress; warnings and errors remain
    std::string command;                        // as it was typed, for reports
    mutable std::vector<std::string> warnings;  // that were printed so far, for the result

    // A line of text for people; nothing with --json or --quiet.
    void say(std::string_view line) const;
    // The result for machines, an object, which gets "status": "done" and all warnings so far in front; written with
    // --json only.
    void result(const nlohmann::ordered_json& result) const;
    // One line on stderr, which results and failures tell as well; nothing for an empty one. Not from several threads.
    void warn(std::string_view line) const;
};

// A progress bar on stderr, drawn only on a terminal, erased at the end.
class Progress {
public:
    Progress(const Console& console, std::string_view label, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Counts one piece of work as done.
    void advance();
    // Removes the bar, for example before a warning; the next advance draws it again.
    void erase();

private:
    void draw() const;

    std::string label;
    std::size_t total;
    std::size_t done = 0;
    bool visible;
};

}  // namespace zelm::tool

#endif
