#include "jsonFields.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

#include "failure.h"
#include "letterCase.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::json;

template <typename T>
bool fits(const Json& value) {
    if constexpr (std::is_floating_point_v<T>) {
        return value.is_number();
    } else if constexpr (std::is_unsigned_v<T>) {
        return value.is_number_unsigned();
    } else {
        return value.is_number_integer() && value.get<double>() >= static_cast<double>(std::numeric_limits<T>::min()) &&
               value.get<double>() <= static_cast<double>(std::numeric_limits<T>::max());
    }
}

template <typename T>
bool isListOf(const Json& value, std::size_t count) {
    return value.is_array() && value.size() == count && std::all_of(value.begin(), value.end(), fits<T>);
}

template <typename T>
const char* nameOf() {
    return std::is_floating_point_v<T> ? "number" : std::is_unsigned_v<T> ? "whole number from 0 on" : "whole number";
}

// Single letters added, left out, changed or exchanged with their neighbour that make one name of the other (Damerau,
// 1964), upper and lower case alike.
std::size_t editsBetween(const std::string& a, const std::string& b) {
    const std::string from = lowerCase(a);
    const std::string to = lowerCase(b);
    std::vector<std::vector<std::size_t>> edits(from.size() + 1, std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i) {
        for (std::size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                edits[i][j] = i + j;
                continue;
            }
            const std::size_t changed = edits[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0U : 1U);
            edits[i][j] = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, changed});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
            }
        }
    }
    return edits[from.size()][to.size()];
}

// Whether a name is likely to be meant as another one. Names of up to three letters are too much alike.
bool isMisspelt(const std::string& name, const std::string& meant) {
    constexpr std::size_t kLettersAnEdit = 4;
    return editsBetween(name, meant) <= meant.size() / kLettersAnEdit;
}

}  // namespace

Json parseCommentedJson(const std::string& file, const std::string& text) {
    try {
        return Json::parse(text, nullptr, true, true);
    } catch (const Json::parse_error& error) {
        const std::size_t at = std::min(error.byte > 0 ? error.byte - 1 : 0, text.size());
        const auto begin = text.begin();
        const auto end = begin + static_cast<std::ptrdiff_t>(at);
        const auto lineStart = std::find(std::make_reverse_iterator(end), text.rend(), '\n').base();
        failUsage("{}: not valid JSON at line {}, column {}: correct it there", file, std::count(begin, end, '\n') + 1,
                  end - lineStart + 1);
    } catch (const Json::out_of_range&) {
        failUsage("{}: a number is out of range: correct it", file);
    }
}

JsonFields::JsonFields(const Json& json, std::string fileName, std::string path)
    : object(json), file(std::move(fileName)), where(std::move(path)) {
    if (!object.is_object()) {
        failUsage("{}: {}: expected an object {{ ... }}", file, where.empty() ? "the file" : where);
    }
}

const Json* JsonFields::find(const std::string& key) {
    asked.insert(key);
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

std::string JsonFields::pathOf(const std::string& key) const {
    return where.empty() ? key : where + "." + key;
}

void JsonFields::fail(const std::string& key, const std::string& expected) const {
    if (!object.contains(key)) {
        for (const auto& [name, value] : object.items()) {
            if (!asked.contains(name) && isMisspelt(name, key)) {
                failUsage("{}: {}: unknown field; did you mean {}?", file, pathOf(name), key);
            }
        }
    }
    failUsage("{}: {}: expected {}", file, pathOf(key), expected);
}

template <typename T>
void JsonFields::readNumber(const std::string& key, T& target) {
    if (const Json* value = find(key); value != nullptr) {
        if (!fits<T>(*value)) {
            fail(key, fmt::format("a {}", nameOf<T>()));
        }
        target = value->get<T>();
    }
}

template <typename T>
void JsonFields::readNumbers(const std::string& key, std::span<T> target) {
    if (const Json* value = find(key); value != nullptr) {
        if (!isListOf<T>(*value, target.size())) {
            fail(key, fmt::format("a list of {} {}s", target.size(), nameOf<T>()));
        }
        std::transform(value->begin(), value->end(), target.begin(), [](const Json& item) { return item.get<T>(); });
    }
}

void JsonFields::read(const std::string& key, double& target) {
    readNumber(key, target);
}

void JsonFields::read(const std::string& key, int& target) {
    readNumber(key, target);
}

void JsonFields::read(const std::string& key, std::uint64_t& target) {
    readNumber(key, target);
}

void JsonFields::read(const std::string& key, std::string& target) {
    if (const Json* value = find(key); value != nullptr) {
        if (!value->is_string()) {
            fail(key, "a text in quotes");
        }
        target = value->get<std::string>();
    }
}

void JsonFields::read(const std::string& key, std::span<double> target) {
    readNumbers(key, target);
}

void JsonFields::read(const std::string& key, std::span<int> target) {
    readNumbers(key, target);
}

void JsonFields::read(const std::string& key, std::vector<std::array<int, 2>>& target) {
    if (const Json* value = find(key); value != nullptr) {
        const auto isPair = [](const Json& item) { return isListOf<int>(item, 2); };
        if (!value->is_array() || !std::all_of(value->begin(), value->end(), isPair)) {
            fail(key, "a list of pairs of whole numbers");
        }
        target = value->get<std::vector<std::array<int, 2>>>();
    }
}

void JsonFields::done() const {
    for (const auto& item : object.items()) {
        const std::string& key = item.key();
        if (!asked.contains(key)) {
            const auto meant = std::min_element(asked.begin(), asked.end(), [&](const auto& a, const auto& b) {
                return editsBetween(key, a) < editsBetween(key, b);
            });
            if (meant != asked.end() && isMisspelt(key, *meant)) {
                failUsage("{}: {}: unknown field; did you mean {}?", file, pathOf(key), *meant);
            }
            std::string names;
            for (const std::string& name : asked) {
                names += (names.empty() ? "" : ", ") + name;
            }
            failUsage("{}: {}: unknown field; known here are {}", file, pathOf(key), names);
        }
    }
}

}  // namespace zelm::tool
