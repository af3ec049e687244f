// YAML of other programs.
#ifndef ZELM_MEASURE_YAML_TEXT_H
#define ZELM_MEASURE_YAML_TEXT_H

#include <yaml-cpp/yaml.h>

#include <string>
#include <string_view>
#include <vector>

#include "space3.h"

namespace zelm::measure {

// The tree of a text that is a map. Throws Fault for anything else.
YAML::Node yamlMap(std::string_view text);

// Of a map; Throw Fault, naming `name`, for what is missing or no number.
YAML::Node yamlMember(const YAML::Node& map, const std::string& name);
std::vector<double> yamlNumbers(const YAML::Node& node, const std::string& name);
int yamlCount(const YAML::Node& node, const std::string& name);
std::string yamlWord(const YAML::Node& node, const std::string& name);

}  // namespace zelm::measure

#endif
