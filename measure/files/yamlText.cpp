#include "yamlText.h"

#include <charconv>
#include <cmath>

#include "fault.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kMaxText = std::size_t{16} << 20;  // bytes; calibrations take a few thousand

// OpenCV writes "%YAML:1.0", which no other reader knows.
std::string_view withoutDirective(std::string_view text) {
    if (text.starts_with("%YAML")) {
        const std::size_t end = text.find('\n');
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return text;
}

double numberOf(const YAML::Node& node, const std::string& name) {
    if (!node.IsScalar()) {
        refuse(name + " is no number");
    }
    const std::string& word = node.Scalar();
    const char* begin = word.data() + (word.starts_with('+') ? 1 : 0);
    double value = 0.0;
    const auto [end, error] = std::from_chars(begin, word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(value)) {
        refuse(name + " holds \"" + word.substr(0, 40) + "\", which is no number");
    }
    return value;
}

void gather(const YAML::Node& node, const std::string& name, std::vector<double>& numbers) {
    if (!node.IsSequence()) {
        numbers.push_back(numberOf(node, name));
        return;
    }
    for (const YAML::Node& element : node) {
        if (element.IsSequence()) {
            for (const YAML::Node& inner : element) {
                numbers.push_back(numberOf(inner, name));
            }
        } else {
            numbers.push_back(numberOf(element, name));
        }
    }
}

}  // namespace

YAML::Node yamlMap(std::string_view text) {
    if (text.size() > kMaxText) {
        refuse("too long for a calibration: " + std::to_string(text.size()) + " bytes");
    }
    YAML::Node node;
    try {
        node = YAML::Load(std::string(withoutDirective(text)));
    } catch (const YAML::Exception& error) {
        refuse("not YAML: line " + std::to_string(error.mark.line + 1) + ": " + error.msg);
    }
    if (!node.IsMap()) {
        refuse("no fields: is this a calibration in YAML?");
    }
    return node;
}

YAML::Node yamlMember(const YAML::Node& map, const std::string& name) {
    if (!map.IsMap() || !map[name]) {
        refuse("no field " + name);
    }
    return map[name];
}

std::vector<double> yamlNumbers(const YAML::Node& node, const std::string& name) {
    std::vector<double> numbers;
    gather(node, name, numbers);
    return numbers;
}

int yamlCount(const YAML::Node& node, const std::string& name) {
    constexpr double kMaxCount = 1 << 20;
    const double value = numberOf(node, name);
    if (!(value >= 1.0 && value <= kMaxCount) || value != std::floor(value)) {
        refuse(name + " is no number of pixels");
    }
    return static_cast<int>(value);
}

std::string yamlWord(const YAML::Node& node, const std::string& name) {
    if (!node.IsScalar()) {
        refuse(name + " is no word");
    }
    return node.Scalar();
}

}  // namespace zelm::measure
