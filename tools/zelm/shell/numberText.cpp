#include "numberText.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace zelm::tool {

std::optional<double> numberOf(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    return number;
}

std::string counted(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::vector<double> numbersOf(std::string_view list) {
    std::vector<double> numbers;
    for (;;) {
        const std::size_t end = list.find(',');
        const auto number = numberOf(list.substr(0, end));
        if (!number) {
            return {};
        }
        numbers.push_back(*number);
        if (end == std::string_view::npos) {
            return numbers;
        }
        list.remove_prefix(end + 1);
    }
}

}  // namespace zelm::tool
