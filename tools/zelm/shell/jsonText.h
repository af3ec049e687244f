// JSON as text: everything that the tool prints or writes of it.
#ifndef ZELM_TOOL_JSON_TEXT_H
#define ZELM_TOOL_JSON_TEXT_H

#include <nlohmann/json.hpp>
#include <string>

namespace zelm::tool {

// File names may hold any bytes, JSON texts UTF-8 alone: bytes that are none become the replacement character.
inline std::string jsonText(const nlohmann::ordered_json& json, int indent = 2) {
    return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace zelm::tool

#endif
