#include "coordinateFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <deque>

#include "failure.h"
#include "letterCase.h"
#include "numberText.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxQuote = 40;  // characters of the file shown in a message

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
    std::string quote(text.substr(0, kMaxQuote));
    std::replace_if(
        quote.begin(), quote.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return "\"" + quote + (text.size() > kMaxQuote ? "..." : "") + "\"";
}

// The columns of a file: the coordinates and, where `id` is one of them, the id.
struct Columns {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::array<std::size_t, kMaxCoordinates> coordinates{kNone, kNone, kNone, kNone};
    std::size_t id = kNone;
    std::size_t count = 0;
};

class CoordinateReader {
public:
    CoordinateReader(const fs::path& file, const CoordinateFormat& form)
        : path(file),
          format(form),
          // "x,y or id,x,y, in pixels"
          expected(fmt::format("{0} or id,{0}, in pixels", fmt::join(form.names, ","))) {}

    std::vector<CoordinateRow> read(std::string_view text) {
        if (text.starts_with("\xef\xbb\xbf")) {
            text.remove_prefix(3);  // a byte order mark
        }
        rows.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            lineNumber += 1;
            if (const std::string_view line = trimmed(text.substr(0, end)); !line.empty() && line.front() != '#') {
                readLine(line);
            }
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        if (rows.empty()) {
            failData("{}: holds no {}: expected lines of {}", path.string(), format.what, expected);
        }
        return std::move(rows);
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
                     fields.size(), columns.count, expected);
        }
        addRow();
    }

    static char separatorOf(std::string_view line) {
        std::string bare;  // without what stands in quotes
        for (bool quotes = false; const char c : line) {
            quotes = quotes != (c == '"');
            bare += quotes ? '"' : c;
        }
        for (const char c : {',', ';'}) {
            if (bare.find(c) != std::string::npos) {
                return c;
            }
        }
        return '\t';
    }

    void split(std::string_view line) {
        fields.clear();
        unquoted.clear();
        for (;;) {
            const std::size_t end = takeField(line);
            if (end == std::string_view::npos) {
                return;
            }
            line.remove_prefix(end + 1);
        }
    }

    // Adds the first field of the line; gives the place of the separator behind it. A field in quotes may hold
    // separators, and quotes that are doubled.
    std::size_t takeField(std::string_view line) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start == std::string_view::npos || line[start] != '"') {
            const std::size_t end = line.find(separator);
            fields.push_back(trimmed(line.substr(0, end)));
            return end;
        }
        std::string text;
        std::size_t i = start + 1;
        for (; i < line.size() && (line[i] != '"' || line.substr(i, 2) == "\"\""); ++i) {
            text += line[i];
            i += line[i] == '"' ? 1U : 0U;
        }
        const std::size_t end = line.find(separator, i);
        if (i >= line.size() || !trimmed(line.substr(i + 1, end - i - 1)).empty()) {
            failData("{}: line {}: {}: a quote must end with its field", path.string(), lineNumber,
                     quoted(line.substr(start)));
        }
        fields.push_back(unquoted.emplace_back(std::move(text)));
        return end;
    }

    // The columns that the line names; none when it is no header.
    Columns headerColumns() const {
        const std::size_t count = format.names.size();
        Columns found;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const std::string name = lowerCase(std::string(fields[i]));
            std::size_t* place = name == "id" ? &found.id : nullptr;
            for (std::size_t k = 0; k < count; ++k) {
                place = name == lowerCase(std::string(format.names[k])) ? &found.coordinates[k] : place;
            }
            if (place != nullptr && *place != Columns::kNone) {
                failData("{}: line {}: two columns {}: leave one out", path.string(), lineNumber, quoted(fields[i]));
            }
            if (place != nullptr) {
                *place = i;
            }
        }
        const auto isFound = [](std::size_t i) { return i != Columns::kNone; };
        const auto named =
            static_cast<std::size_t>(std::count_if(found.coordinates.begin(), found.coordinates.end(), isFound));
        if (named > 0 && named < count) {
            failData("{}: line {}: this header does not name all of {}", path.string(), lineNumber,
                     fmt::join(format.names, ", "));
        }
        found.count = named == count ? fields.size() : 0;
        return found;
    }

    Columns plainColumns() const {
        const std::size_t count = format.names.size();
        if (fields.size() == count) {
            return {{0, 1, 2, 3}, Columns::kNone, count};
        }
        if (fields.size() == count + 1) {
            return {{1, 2, 3, 4}, 0, count + 1};
        }
        failData("{}: line {}: {} fields: expected {}", path.string(), lineNumber, fields.size(), expected);
    }

    double numberAt(std::size_t column) const {
        const auto number = numberOf(fields[column]);
        if (!number) {
            failData("{}: line {}: {} is not a number: expected {}", path.string(), lineNumber, quoted(fields[column]),
                     expected);
        }
        return *number;
    }

    void addRow() {
        CoordinateRow& row = rows.emplace_back();
        for (std::size_t k = 0; k < format.names.size(); ++k) {
            row.numbers[k] = numberAt(columns.coordinates[k]);
        }
        row.id = columns.id == Columns::kNone ? std::to_string(rows.size()) : std::string(fields[columns.id]);
    }

    const fs::path& path;
    const CoordinateFormat& format;
    std::string expected;
    std::vector<CoordinateRow> rows;
    std::vector<std::string_view> fields;  // of the line at hand
    std::deque<std::string> unquoted;      // those of them that stand in quotes in the file
    Columns columns;
    char separator = ',';
    std::size_t lineNumber = 0;
};

}  // namespace

std::vector<CoordinateRow> readCoordinateFile(const fs::path& path, const CoordinateFormat& format) {
    return CoordinateReader(path, format).read(readWholeFile(path, "a list of " + std::string(format.what)));
}

}  // namespace zelm::tool
