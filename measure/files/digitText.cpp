#include "digitText.h"

#include <array>
#include <charconv>

namespace zelm::measure {

std::string numberText(double value) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    std::string text(digits.data(), end);
    const std::size_t exponent = text.find('e');
    if (text.find('.') == std::string::npos) {
        text.insert(exponent == std::string::npos ? text.size() : exponent, ".0");
    }
    return text;
}

std::string numberList(std::span<const double> values, std::size_t perLine, const std::string& indent) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) {
            text += i % perLine == 0 ? ",\n" + indent : ", ";
        }
        text += numberText(values[i]);
    }
    return text;
}

}  // namespace zelm::measure
