#include "commandOutline.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "commandLine.h"

namespace zelm::tool {
namespace {

std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> parts;
    for (std::size_t end = 0; (end = text.find(separator)) != std::string_view::npos;) {
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(end + separator.size());
    }
    parts.emplace_back(text);
    return parts;
}

// "INT in [1 - 9]" as "from 1 to 9".
std::string conditionText(const std::string& condition) {
    const std::size_t open = condition.find(" in [");
    if (open != std::string::npos && condition.back() == ']') {
        const std::vector<std::string> ends =
            split(std::string_view(condition).substr(open + 5, condition.size() - open - 6), " - ");
        if (ends.size() == 2) {
            return "from " + ends[0] + " to " + ends[1];
        }
    }
    return condition == "POSITIVE" ? "greater than 0" : condition;
}

// The parser tells a value's type and conditions as "TYPE:CONDITION".
void setValue(const CLI::Option& option, OptionOutline& outline) {
    if (option.get_items_expected_max() == 0) {
        return;
    }
    const std::string type = option.get_type_name();
    const std::size_t colon = type.find(':');
    outline.value = type.substr(0, colon);
    outline.standard = option.get_default_str();
    outline.values = std::max(1, option.get_items_expected_min());
    outline.repeated = option.get_items_expected_max() >= CLI::detail::expected_max_vector_size;
    if (option.get_type_size() > 1 || outline.value.find(',') != std::string::npos) {
        outline.values = 1;  // numbers with commas between them, one word
    }
    if (colon == std::string::npos) {
        return;
    }
    const std::string condition = type.substr(colon + 1);
    if (condition.front() == '{' && condition.back() == '}') {
        outline.choices = split(std::string_view(condition).substr(1, condition.size() - 2), ",");
    } else {
        outline.condition = conditionText(condition);
    }
}

OptionOutline outlineOf(const CLI::Option& option) {
    OptionOutline outline;
    outline.isArgument = option.get_positional();
    if (outline.isArgument) {
        outline.names = {option.get_name(true)};
    } else {
        for (const std::string& name : option.get_snames()) {
            outline.names.push_back("-" + name);
        }
        for (const std::string& name : option.get_lnames()) {
            outline.names.push_back("--" + name);
        }
    }
    for (const CLI::Option* const other : option.get_excludes()) {
        outline.excludes.push_back(other->get_name());
    }
    std::sort(outline.excludes.begin(), outline.excludes.end());
    outline.description = option.get_description();
    outline.isRequired = option.get_required();
    setValue(option, outline);
    return outline;
}

CommandOutline outlineOf(const CLI::App& app) {
    CommandOutline outline{app.get_name(), app.get_description(), {}, {}};
    for (const CLI::Option* const option : app.get_options()) {
        if (!option->get_group().empty()) {
            outline.options.push_back(outlineOf(*option));
        }
    }
    std::stable_partition(outline.options.begin(), outline.options.end(),
                          [](const OptionOutline& option) { return option.isArgument; });
    for (const std::string& line : split(app.get_footer(), "\n")) {
        if (line.starts_with("  ")) {
            outline.examples.push_back(line.substr(2));
        }
    }
    return outline;
}

}  // namespace

ToolOutline CommandLine::outline() const {
    ToolOutline outline{ZELM_VERSION, outlineOf(*parser), {}, split(parser->get_footer(), "Exit codes: ").back()};
    for (const CLI::App* const sub : parser->get_subcommands([](const CLI::App*) { return true; })) {
        if (!sub->get_group().empty()) {
            outline.subcommands.push_back(outlineOf(*sub));
        }
    }
    std::sort(outline.subcommands.begin(), outline.subcommands.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    return outline;
}

}  // namespace zelm::tool
