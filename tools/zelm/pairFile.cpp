#include "pairFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "failure.h"
#include "numberText.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExpected = "xL,yL,xR,yR or id,xL,yL,xR,yR, in pixels";
constexpr std::size_t kLongestQuote = 40;  // characters of the file shown in a message

std::string_view trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// A piece of the file fit for a message of one line.
std::string quoted(std::string_view text) {
    std::string quote(text.substr(0, kLongestQuote));
    std::replace_if(
        quote.begin(), quote.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return "\"" + quote + (text.size() > kLongestQuote ? "..." : "") + "\"";
}

// The columns of a file: the four coordinates and, where `id` is one of them, the id.
struct Columns {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::array<std::size_t, 4> coordinates{kNone, kNone, kNone, kNone};  // xL, yL, xR, yR
    std::size_t id = kNone;
    std::size_t count = 0;
};

class PairReader {
public:
    explicit PairReader(const fs::path& file) : path(file) {}

    std::vector<PixelPair> read(std::string_view text) {
        if (text.starts_with("\xef\xbb\xbf")) {
            text.remove_prefix(3);  // a byte order mark
        }
        pairs.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            lineNumber += 1;
            if (const std::string_view line = trimmed(text.substr(0, end)); !line.empty() && line.front() != '#') {
                readLine(line);
            }
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        if (pairs.empty()) {
            failData("{}: holds no pixel pairs: expected lines of {}", path.string(), kExpected);
        }
        return std::move(pairs);
    }

private:
    void readLine(std::string_view line) {
        const bool isFirst = columns.count == 0;
        if (isFirst) {
            separator = separatorOf(line);
        }
        split(line);
        if (isFirst) {
            columns = headerColumns();
            if (columns.count > 0) {
                return;
            }
            columns = plainColumns();
        }
        if (fields.size() != columns.count) {
            failData("{}: line {}: {} fields, but {} in the lines before: expected {}", path.string(), lineNumber,
                     fields.size(), columns.count, kExpected);
        }
        addPair();
    }

    static char separatorOf(std::string_view line) {
        for (const char c : {',', ';'}) {
            if (line.find(c) != std::string_view::npos) {
                return c;
            }
        }
        return '\t';
    }

    void split(std::string_view line) {
        fields.clear();
        for (;;) {
            const std::size_t end = line.find(separator);
            fields.push_back(trimmed(line.substr(0, end)));
            if (end == std::string_view::npos) {
                return;
            }
            line.remove_prefix(end + 1);
        }
    }

    // The columns that the line names; none when it is no header.
    Columns headerColumns() const {
        constexpr std::array<std::string_view, 4> kNames{"xl", "yl", "xr", "yr"};
        Columns found;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            std::string name(fields[i]);
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            const auto* const coordinate = std::find(kNames.begin(), kNames.end(), name);
            std::size_t* const place =
                coordinate != kNames.end()
                    ? &found.coordinates[static_cast<std::size_t>(std::distance(kNames.begin(), coordinate))]
                    : (name == "id" ? &found.id : nullptr);
            if (place != nullptr && *place != Columns::kNone) {
                failData("{}: line {}: two columns {}: leave one out", path.string(), lineNumber, quoted(fields[i]));
            }
            if (place != nullptr) {
                *place = i;
            }
        }
        const auto isFound = [](std::size_t i) { return i != Columns::kNone; };
        const auto named = std::count_if(found.coordinates.begin(), found.coordinates.end(), isFound);
        if (named > 0 && named < 4) {
            failData("{}: line {}: this header does not name all of xL, yL, xR and yR", path.string(), lineNumber);
        }
        found.count = named == 4 ? fields.size() : 0;
        return found;
    }

    Columns plainColumns() const {
        if (fields.size() == 4) {
            return {{0, 1, 2, 3}, Columns::kNone, 4};
        }
        if (fields.size() == 5) {
            return {{1, 2, 3, 4}, 0, 5};
        }
        failData("{}: line {}: {} fields: expected {}", path.string(), lineNumber, fields.size(), kExpected);
    }

    double numberAt(std::size_t column) const {
        const auto number = numberOf(fields[column]);
        if (!number) {
            failData("{}: line {}: {} is not a number: expected {}", path.string(), lineNumber, quoted(fields[column]),
                     kExpected);
        }
        return *number;
    }

    void addPair() {
        const auto& c = columns.coordinates;
        PixelPair& pair = pairs.emplace_back();
        pair.left = {numberAt(c[0]), numberAt(c[1])};
        pair.right = {numberAt(c[2]), numberAt(c[3])};
        pair.id = columns.id == Columns::kNone ? std::to_string(pairs.size()) : std::string(fields[columns.id]);
    }

    const fs::path& path;
    std::vector<PixelPair> pairs;
    std::vector<std::string_view> fields;  // of the line at hand
    Columns columns;
    char separator = ',';
    std::size_t lineNumber = 0;
};

}  // namespace

std::vector<PixelPair> readPairFile(const fs::path& path) {
    return PairReader(path).read(readWholeFile(path, "a list of pixel pairs"));
}

}  // namespace zelm::tool
