#include "manualPages.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace zelm::tool {
namespace {

// Text that a formatter prints as it stands: quotes and dashes are those to type.
std::string literal(std::string_view text) {
    std::string result;
    for (const char letter : text) {
        switch (letter) {
            case '\\':
                result += "\\e";
                break;
            case '-':
                result += "\\-";
                break;
            case '\'':
                result += "\\(aq";
                break;
            case '`':
                result += "\\(ga";
                break;
            case '^':
                result += "\\(ha";
                break;
            case '~':
                result += "\\(ti";
                break;
            default:
                result += letter;
        }
    }
    // At the beginning of a line a dot would be a request.
    return result.starts_with('.') ? fmt::format("\\&{}", result) : result;
}

std::string bold(std::string_view text) {
    return fmt::format("\\fB{}\\fR", literal(text));
}

std::string italic(std::string_view text) {
    return fmt::format("\\fI{}\\fR", literal(text));
}

template <class Texts>
std::string joined(const Texts& texts, std::string_view separator) {
    return fmt::format("{}", fmt::join(texts, separator));
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string withSmallInitial(std::string text) {
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    return text;
}

std::string pageName(const CommandOutline& subcommand) {
    return fmt::format("zelm-{}", subcommand.name);
}

std::string head(const std::string& page, const std::string& does, const ToolOutline& outline) {
    return fmt::format(".TH {} 1 \"\" \"zelm {}\" \"Manual of zelm\"\n.SH NAME\n{} \\- {}\n", literal(upperCase(page)),
                       literal(outline.version), literal(page), literal(does));
}

// An option's values after its name, or an argument in a synopsis.
std::string valueText(const OptionOutline& option) {
    const std::string one = option.isArgument ? italic(option.names.front()) : italic(option.value);
    std::string all = one;
    for (int i = 1; i < option.values; ++i) {
        all += " " + one;
    }
    return option.repeated ? all + " ..." : all;
}

std::string tagOf(const OptionOutline& option) {
    if (option.isArgument) {
        return valueText(option);
    }
    std::vector<std::string> names;
    std::transform(option.names.begin(), option.names.end(), std::back_inserter(names), bold);
    return option.value.empty() ? joined(names, ", ") : fmt::format("{} {}", joined(names, ", "), valueText(option));
}

std::string entryOf(const OptionOutline& option) {
    std::string text = literal(option.description) + ".\n";
    const auto add = [&text](std::string_view words, const std::string& what) {
        text += fmt::format("{}{}.\n", words, what);
    };
    if (!option.choices.empty()) {
        std::vector<std::string> words;
        std::transform(option.choices.begin(), option.choices.end(), std::back_inserter(words), bold);
        add("One of ", joined(words, ", "));
    }
    if (!option.condition.empty()) {
        add("The value is ", literal(option.condition));
    }
    if (!option.standard.empty()) {
        add("Default: ", literal(option.standard));
    }
    if (!option.excludes.empty()) {
        std::vector<std::string> others;
        std::transform(option.excludes.begin(), option.excludes.end(), std::back_inserter(others), bold);
        add("Not together with ", joined(others, ", "));
    }
    if (option.isRequired && !option.isArgument) {
        text += "Required.\n";
    }
    return fmt::format(".TP\n{}\n{}", tagOf(option), text);
}

// The section of the arguments or of the options; nothing where there are none.
std::string entries(const CommandOutline& command, bool arguments, std::string_view title) {
    std::string text;
    for (const OptionOutline& option : command.options) {
        text += option.isArgument == arguments ? entryOf(option) : "";
    }
    return text.empty() ? text : fmt::format(".SH {}\n{}", title, text);
}

std::string synopsisOf(const CommandOutline& command) {
    std::string text = bold(fmt::format("zelm {}", command.name));
    for (const OptionOutline& option : command.options) {
        if (!option.isArgument && option.isRequired) {
            text += fmt::format(" {} {}", bold(option.names.back()), valueText(option));
        }
    }
    text += fmt::format(" [{}]", italic("options"));
    for (const OptionOutline& option : command.options) {
        if (option.isArgument) {
            text += option.isRequired ? fmt::format(" {}", valueText(option)) : fmt::format(" [{}]", valueText(option));
        }
    }
    return text;
}

std::string examplesOf(const CommandOutline& command) {
    std::string text;
    for (const std::string& line : command.examples) {
        text += literal(line) + "\n";
    }
    return text.empty() ? text : fmt::format(".SH EXAMPLES\n.nf\n{}.fi\n", text);
}

std::string exitStatus(const ToolOutline& outline) {
    std::string text = ".SH EXIT STATUS\n";
    text += literal(outline.exitCodes) + "\n";
    return text +
           "An error is one line on standard error that names the file and what to try; it leaves no files\n"
           "behind.\n";
}

std::string reference(const std::string& page) {
    return bold(page) + "(1)";
}

}  // namespace

std::string toolPage(const ToolOutline& outline) {
    // The description begins with the name.
    const std::string does = outline.tool.description.substr(outline.tool.description.find(' ') + 1);
    std::string text = head("zelm", does, outline);
    text += fmt::format(".SH SYNOPSIS\n{} {} [{}]\n", bold("zelm"), italic("SUBCOMMAND"), italic("options"));
    text += ".SH DESCRIPTION\n";
    text +=
        "Every subcommand does one thing with image files, calibrations and tables, and has a manual page of its\n"
        "own.\n"
        "Results go to standard output; warnings, errors and progress to standard error.\n";
    text += ".SH SUBCOMMANDS\n";
    for (const CommandOutline& sub : outline.subcommands) {
        text += fmt::format(".TP\n{}\n{}.\n", reference(pageName(sub)), literal(sub.description));
    }
    text += entries(outline.tool, false, "OPTIONS") + examplesOf(outline.tool) + exitStatus(outline);
    std::vector<std::string> pages;
    std::transform(outline.subcommands.begin(), outline.subcommands.end(), std::back_inserter(pages),
                   [](const CommandOutline& sub) { return reference(pageName(sub)); });
    return text + ".SH SEE ALSO\n" + joined(pages, ",\n") + "\n";
}

std::string subcommandPage(const ToolOutline& outline, const CommandOutline& subcommand) {
    std::string text = head(pageName(subcommand), withSmallInitial(subcommand.description), outline);
    text += fmt::format(".SH SYNOPSIS\n{}\n.SH DESCRIPTION\n{}.\n", synopsisOf(subcommand),
                        literal(subcommand.description));
    text += entries(subcommand, true, "ARGUMENTS") + entries(subcommand, false, "OPTIONS");
    return text + examplesOf(subcommand) + exitStatus(outline) + ".SH SEE ALSO\n" + reference("zelm") + "\n";
}

}  // namespace zelm::tool
