#include "completionScripts.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace zelm::tool {
namespace {

template <class Texts>
std::string joined(const Texts& texts, std::string_view separator) {
    return fmt::format("{}", fmt::join(texts, separator));
}

// The inside of single quotes, with a backslash before each of `special`; a quote is written as the shell wants it.
std::string quoted(std::string_view text, std::string_view special, std::string_view quote) {
    std::string result;
    for (const char letter : text) {
        if (letter == '\'') {
            result += quote;
            continue;
        }
        if (special.find(letter) != std::string_view::npos) {
            result += '\\';
        }
        result += letter;
    }
    return result;
}

std::vector<std::string> namesOf(const CommandOutline& command) {
    std::vector<std::string> names;
    for (const OptionOutline& option : command.options) {
        if (!option.isArgument) {
            names.insert(names.end(), option.names.begin(), option.names.end());
        }
    }
    return names;
}

std::vector<std::string> subcommandNames(const ToolOutline& outline) {
    std::vector<std::string> names;
    for (const CommandOutline& sub : outline.subcommands) {
        names.push_back(sub.name);
    }
    return names;
}

// What bash offers after an option with a value.
std::string bashValue(const OptionOutline& option) {
    if (option.isArgument || option.value.empty()) {
        return "";
    }
    const std::string offer = !option.choices.empty() ? fmt::format("words='{}'", joined(option.choices, " "))
                              : option.takesFiles()   ? "files=yes"
                                                      : "files=no";
    return fmt::format("                {}) {} ;;\n", joined(option.names, " | "), offer);
}

std::string bashSubcommand(const CommandOutline& sub) {
    std::string values;
    for (const OptionOutline& option : sub.options) {
        values += bashValue(option);
    }
    return fmt::format(
        "        {})\n"
        "            options='{}'\n"
        "            case $before in\n{}            esac ;;\n",
        sub.name, joined(namesOf(sub), " "), values);
}

std::string zshText(std::string_view text) {
    return quoted(text, "[]:\\", "'\\''");
}

// The action of a value: its words, files, or nothing.
std::string zshAction(const OptionOutline& option) {
    if (!option.choices.empty()) {
        return fmt::format("({})", joined(option.choices, " "));
    }
    return option.takesFiles() || option.isArgument ? "_files" : " ";
}

std::string zshOption(const OptionOutline& option) {
    std::string values;
    for (int i = 0; i < option.values; ++i) {
        values += fmt::format(":{}:{}", option.value, zshAction(option));
    }
    const std::string body = fmt::format("'[{}]{}'", zshText(option.description), values);
    const std::string names =
        option.names.size() > 1 ? fmt::format("{{{}}}", joined(option.names, ",")) : option.names.front();
    if (option.repeated) {
        return fmt::format("'*'{}{}", names, body);
    }
    return option.names.size() > 1 ? fmt::format("'({})'{}{}", joined(option.names, " "), names, body) : names + body;
}

std::string zshArgument(const OptionOutline& option) {
    const std::string place = option.repeated ? "*:" : option.isRequired ? ":" : "::";
    return fmt::format("'{}{}:{}'", place, option.names.front(), zshAction(option));
}

std::string zshSubcommand(const CommandOutline& sub) {
    std::vector<std::string> lines{"_arguments"};
    bool takesMore = false;    // values of an option that takes any number
    bool restIsNamed = false;  // by an argument that takes any number
    for (const OptionOutline& option : sub.options) {
        lines.push_back(option.isArgument ? zshArgument(option) : zshOption(option));
        takesMore = takesMore || (option.repeated && option.takesFiles() && !option.isArgument);
        restIsNamed = restIsNamed || (option.repeated && option.isArgument);
    }
    if (takesMore && !restIsNamed) {
        lines.emplace_back("'*:file:_files'");
    }
    return fmt::format("        {})\n          {} ;;\n", sub.name, joined(lines, " \\\n            "));
}

std::string fishWord(std::string_view text) {
    return fmt::format("'{}'", quoted(text, "\\", "\\'"));
}

std::string fishOption(const OptionOutline& option, const std::string& condition) {
    std::string line = fmt::format("complete -c zelm -n {}", fishWord(condition));
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.choices.empty()) {
        line += " -x -a " + fishWord(joined(option.choices, " "));
    } else if (option.takesFiles()) {
        line += " -r -F";
    } else if (!option.value.empty()) {
        line += " -x";
    }
    return line + " -d " + fishWord(option.description) + "\n";
}

std::string fishOptions(const CommandOutline& command, const std::string& condition) {
    std::string text;
    for (const OptionOutline& option : command.options) {
        text += option.isArgument ? "" : fishOption(option, condition);
    }
    return text;
}

}  // namespace

std::string bashCompletion(const ToolOutline& outline) {
    std::string cases;
    for (const CommandOutline& sub : outline.subcommands) {
        cases += bashSubcommand(sub);
    }
    return fmt::format(
        R"(# Completion of zelm {} in bash.
_zelm() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}}
    local subcommand="" options="" words="" files="" i
    # An option and its value with "=" between them are three words here.
    if [[ $word == "=" ]]; then
        word=""
    elif [[ $before == "=" ]]; then
        before=${{COMP_WORDS[COMP_CWORD - 2]}}
    fi
    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${{COMP_WORDS[i]}} != -* ]]; then
            subcommand=${{COMP_WORDS[i]}}
            break
        fi
    done
    case $subcommand in
        "")
            options='{}'
            words='{}' ;;
{}    esac
    COMPREPLY=()
    if [[ $word == -* && -z $files ]]; then
        words=$options
    fi
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    fi
    # Where there is nothing to offer, readline offers files; not in the place of words and numbers.
    if [[ -n $words || $files == no ]]; then
        compopt +o default
    fi
}}
complete -o default -F _zelm zelm
)",
        outline.version, joined(namesOf(outline.tool), " "), joined(subcommandNames(outline), " "), cases);
}

std::string zshCompletion(const ToolOutline& outline) {
    std::string commands;
    std::string cases;
    for (const CommandOutline& sub : outline.subcommands) {
        commands += fmt::format("        '{}:{}'\n", sub.name, zshText(sub.description));
        cases += zshSubcommand(sub);
    }
    std::vector<std::string> options;
    for (const OptionOutline& option : outline.tool.options) {
        options.push_back(zshOption(option));
    }
    return fmt::format(
        R"(#compdef zelm
# Completion of zelm {} in zsh.
_zelm() {{
  local curcontext="$curcontext" state line
  typeset -A opt_args
  _arguments -C {} '1: :->subcommand' '*:: :->rest' && return 0
  case $state in
    subcommand)
      local -a subcommands
      subcommands=(
{}      )
      _describe -t commands 'subcommand' subcommands ;;
    rest)
      case $words[1] in
{}      esac ;;
  esac
}}
_zelm "$@"
)",
        outline.version, joined(options, " "), commands, cases);
}

std::string fishCompletion(const ToolOutline& outline) {
    std::string text = fmt::format("# Completion of zelm {} in fish.\n", outline.version);
    const std::string atFirst = "__fish_use_subcommand";
    text += fmt::format("complete -c zelm -n {} -f\n", fishWord(atFirst));
    text += fishOptions(outline.tool, atFirst);
    for (const CommandOutline& sub : outline.subcommands) {
        text +=
            fmt::format("complete -c zelm -n {} -a {} -d {}\n", fishWord(atFirst), sub.name, fishWord(sub.description));
        text += fishOptions(sub, "__fish_seen_subcommand_from " + sub.name);
    }
    return text;
}

}  // namespace zelm::tool
