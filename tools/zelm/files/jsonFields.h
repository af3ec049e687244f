// Strict reading of the fields of a JSON object: what is unknown or of the wrong kind is refused by name.
#ifndef ZELM_TOOL_JSON_FIELDS_H
#define ZELM_TOOL_JSON_FIELDS_H

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace zelm::tool {

// Parses JSON that may hold // comments. Throws Failure with `file`, line and column.
nlohmann::json parseCommentedJson(const std::string& file, const std::string& text);

// The fields of one object. `read` leaves the target as it is when the field is absent and throws Failure
// ("file: left.fx: expected a number") when it is of the wrong kind; `done` refuses fields that nobody asked for.
class JsonFields {
public:
    // `where` is the object's path in the file, empty for the outermost one. Throws Failure unless it is an object.
    JsonFields(const nlohmann::json& object, std::string file, std::string where);

    void read(const std::string& key, double& target);
    void read(const std::string& key, int& target);
    void read(const std::string& key, std::uint64_t& target);
    void read(const std::string& key, std::string& target);
    void read(const std::string& key, std::span<double> target);
    void read(const std::string& key, std::span<int> target);
    // A list of pairs, of any length.
    void read(const std::string& key, std::vector<std::array<int, 2>>& target);

    // The field, or NULL when it is absent.
    const nlohmann::json* find(const std::string& key);
    // The field's path in the file: "where.key".
    std::string pathOf(const std::string& key) const;
    // Throws Failure about this field; where it is missing, about a field with nearly its name that nobody asked for.
    [[noreturn]] void fail(const std::string& key, const std::string& expected) const;

    // Throws Failure about a field that nobody asked for, with the name that it may be meant to have.
    void done() const;

private:
    template <typename T>
    void readNumber(const std::string& key, T& target);
    template <typename T>
    void readNumbers(const std::string& key, std::span<T> target);

    const nlohmann::json& object;
    std::string file;
    std::string where;
    std::set<std::string> asked;
};

}  // namespace zelm::tool

#endif
