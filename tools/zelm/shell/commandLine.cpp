#include "commandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string_view>

#include "failure.h"

namespace zelm::tool {
namespace {

// The fewest letters to insert, drop or replace that turn one word into the other (Wagner and Fischer, 1974).
std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// Throws Failure when the command line does not begin with a subcommand or an option of the tool itself; for a
// subcommand that does not exist it suggests the nearest.
void checkFirstWord(const CLI::App& app, int argc, const char* const* argv) {
    const auto* const end = argv + argc;
    const auto* const word = std::find_if(argv + std::min(argc, 1), end, [&app](const std::string& argument) {
        return !argument.starts_with('-') || app.get_option_no_throw(argument) == nullptr;
    });
    if (word == end) {
        return;
    }
    if (std::string_view(*word).starts_with('-')) {
        failUsage("{}: not an option of zelm itself: the options of a subcommand come after its name (--help)", *word);
    }
    const std::vector<const CLI::App*> subs = app.get_subcommands([](const CLI::App*) { return true; });
    if (std::none_of(subs.begin(), subs.end(), [word](const CLI::App* sub) { return sub->get_name() == *word; })) {
        std::vector<std::string> names;
        for (const CLI::App* const sub : subs) {
            if (!sub->get_group().empty()) {
                names.push_back(sub->get_name());
            }
        }
        const auto nearest = std::min_element(names.begin(), names.end(), [word](const auto& a, const auto& b) {
            return editDistance(*word, a) < editDistance(*word, b);
        });
        failUsage("{}: no such subcommand: did you mean {}? (--help lists them)", *word, *nearest);
    }
}

// Throws Failure when an option that takes a value is followed by an option: the parser would take that for the value.
void checkValues(const CLI::App& app, const std::vector<const char*>& words) {
    const auto named = [&words](const CLI::App* sub) { return words.size() > 1 && sub->get_name() == words[1]; };
    for (const CLI::App* const sub : app.get_subcommands(named)) {
        for (std::size_t i = 2; i + 1 < words.size(); ++i) {
            const std::string next = words[i + 1];
            const CLI::Option* const option = sub->get_option_no_throw(words[i]);
            if (option != nullptr && option->get_items_expected_min() > 0 && next.starts_with('-') &&
                sub->get_option_no_throw(next) != nullptr) {
                failUsage("{}: has no value: {} follows (--help lists the options)", words[i], next);
            }
        }
    }
}

// "help" asks what --help does, and "help SUBCOMMAND" what SUBCOMMAND --help does.
std::vector<const char*> withoutHelpWord(int argc, const char* const* argv) {
    std::vector<const char*> words(argv, argv + argc);
    constexpr std::string_view kHelp = "help";
    if (argc < 2 || argv[1] != kHelp) {
        return words;
    }
    if (argc > 3) {
        failUsage("help: takes the name of one subcommand, not {} words", argc - 2);
    }
    words.erase(words.begin() + 1);
    if (argc == 3 && (argv[2] == kHelp || std::string_view(argv[2]).starts_with('-'))) {
        words.pop_back();
    }
    words.push_back("--help");
    return words;
}

// The words as a shell takes them, the program without its folder.
std::string commandText(int argc, const char* const* argv) {
    constexpr std::string_view kPlain = "-_./,:=+@%";
    std::string text = "zelm";
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool isPlain = !word.empty() && std::all_of(word.begin(), word.end(), [&](char c) {
            return std::isalnum(static_cast<unsigned char>(c)) != 0 || kPlain.find(c) != std::string_view::npos;
        });
        text += ' ';
        if (isPlain) {
            text += word;
            continue;
        }
        text += '\'';
        for (const char c : word) {
            text += c == '\'' ? std::string("'\\''") : std::string(1, c);
        }
        text += '\'';
    }
    return text;
}

}  // namespace

Option& Option::required() {
    parsed->required();
    return *this;
}

Option& Option::showDefault() {
    parsed->capture_default_str();
    return *this;
}

Option& Option::inRange(int least, int most) {
    parsed->check(CLI::Range(least, most));
    return *this;
}

Option& Option::inRange(double least, double most) {
    parsed->check(CLI::Range(least, most));
    return *this;
}

Option& Option::positive() {
    parsed->check(CLI::PositiveNumber);
    return *this;
}

Option& Option::oneOf(const std::vector<std::string>& words) {
    parsed->check(CLI::IsMember(words));
    return *this;
}

Option& Option::takes(int count) {
    parsed->expected(count);
    return *this;
}

Option& Option::excludes(const Option& other) {
    parsed->excludes(other.parsed);
    return *this;
}

template <class Value>
Option Subcommand::option(const std::string& names, Value& value, const std::string& description) {
    return Option(parsed->add_option(names, value, description));
}

template Option Subcommand::option(const std::string&, std::string&, const std::string&);
template Option Subcommand::option(const std::string&, int&, const std::string&);
template Option Subcommand::option(const std::string&, std::size_t&, const std::string&);
template Option Subcommand::option(const std::string&, double&, const std::string&);
template Option Subcommand::option(const std::string&, std::optional<int>&, const std::string&);
template Option Subcommand::option(const std::string&, std::optional<double>&, const std::string&);
template Option Subcommand::option(const std::string&, std::optional<std::uint64_t>&, const std::string&);
template Option Subcommand::option(const std::string&, std::vector<std::string>&, const std::string&);

Option Subcommand::rectangle(const std::string& names, std::vector<int>& value, const std::string& description) {
    return Option(
        parsed->add_option(names, value, description)->delimiter(',')->expected(4)->type_name("X,Y,WIDTH,HEIGHT"));
}

Option Subcommand::flag(const std::string& names, bool& value, const std::string& description) {
    return Option(parsed->add_flag(names, value, description));
}

void Subcommand::hide() {
    parsed->group("");
}

void Subcommand::does(std::function<void()> work) {
    parsed->callback(std::move(work));
}

CommandLine::CommandLine(Console& output)
    : console(output),
      parser(std::make_unique<CLI::App>(
          "zelm: calibrates a pair of cameras from images of a plate of dots and measures with it", "zelm")) {
    parser->set_version_flag("--version", "zelm " ZELM_VERSION);
    parser->require_subcommand(1);
    parser->footer(
        "Example:\n  zelm calibrate --plate plate.json --left 'left_*.png' --right 'right_*.png' -o out\n"
        "\nExit codes: 0 done, 1 the data did not allow it, 2 wrong usage.");
}

CommandLine::~CommandLine() = default;

Subcommand CommandLine::subcommand(const std::string& name, const std::string& description,
                                   const std::string& example) {
    CLI::App* const sub = parser->add_subcommand(name, description);
    sub->add_flag("--json", console.json, "Print the result as JSON, and nothing else, on stdout");
    sub->add_flag("-q,--quiet", console.quiet, "Print no text and no progress; warnings and errors remain");
    sub->footer("Example:\n  " + example + "\n");
    return Subcommand(sub);
}

void CommandLine::run(int argc, const char* const* argv) {
    console.command = commandText(argc, argv);
    const std::vector<const char*> words = withoutHelpWord(argc, argv);
    const auto count = static_cast<int>(words.size());
    checkFirstWord(*parser, count, words.data());
    checkValues(*parser, words);
    try {
        parser->parse(count, words.data());
    } catch (const CLI::ParseError& error) {
        // Help and version arrive here as well, with exit code 0.
        if (error.get_exit_code() != 0) {
            failUsage("{} (--help lists the options)", error.what());
        }
        parser->exit(error);
    }
}

}  // namespace zelm::tool
