#include "lengthFile.h"

#include <algorithm>
#include <string_view>

#include "failure.h"
#include "letterCase.h"
#include "numberText.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

constexpr std::string_view kExpected = "expected from,to,length: two ids of pixel pairs and a length";
constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

char separatorOf(std::string_view line) {
    for (const char c : {',', ';'}) {
        if (line.find(c) != std::string_view::npos) {
            return c;
        }
    }
    return '\t';
}

std::vector<std::string> fieldsOf(std::string_view line) {
    const char separator = separatorOf(line);
    std::vector<std::string> fields;
    for (;;) {
        const std::size_t end = line.find(separator);
        std::string_view field = trimmed(line.substr(0, end));
        if (field.size() > 1 && field.front() == '"' && field.back() == '"') {
            field = field.substr(1, field.size() - 2);
        }
        fields.emplace_back(field);
        if (end == std::string_view::npos) {
            return fields;
        }
        line.remove_prefix(end + 1);
    }
}

}  // namespace

std::vector<NamedLength> readLengthFile(const std::filesystem::path& path) {
    const std::string whole = readWholeFile(path, "a list of lengths");
    std::string_view text = whole;
    if (text.starts_with("\xef\xbb\xbf")) {
        text.remove_prefix(3);  // a byte order mark
    }
    std::vector<NamedLength> lengths;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const std::vector<std::string> fields = fieldsOf(line);
        if (fields.size() != 3) {
            failData("{}: line {}: {} fields: {}", path.string(), number, fields.size(), kExpected);
        }
        if (lengths.empty() && lowerCase(fields[0]) == "from" && lowerCase(fields[1]) == "to") {
            continue;
        }
        const auto nominal = numberOf(fields[2]);
        if (!nominal || !(*nominal > 0.0)) {
            failData("{}: line {}: the length is not a number greater than 0: {}", path.string(), number, kExpected);
        }
        lengths.push_back({fields[0], fields[1], *nominal, number});
    }
    if (lengths.empty()) {
        failData("{}: holds no lengths: {}", path.string(), kExpected);
    }
    return lengths;
}

}  // namespace zelm::tool
