#include "tableFile.h"

#include <algorithm>
#include <utility>

#include "failure.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

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

char separatorOf(std::string_view line) {
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

}  // namespace

TableReader::TableReader(const std::filesystem::path& file, std::string_view what, Separator rows)
    : name(file.string()), whole(readWholeFile(file, what)), rest(whole), told(rows) {
    if (rest.starts_with("\xef\xbb\xbf")) {
        rest.remove_prefix(3);  // a byte order mark
    }
}

std::size_t TableReader::maxRows() const {
    return static_cast<std::size_t>(std::count(whole.begin(), whole.end(), '\n')) + 1;
}

bool TableReader::next() {
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = trimmed(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        lineNumber += 1;
        if (!line.empty() && line.front() != '#') {
            if (separator == 0 || told == Separator::ofEveryRow) {
                separator = separatorOf(line);
            }
            split(line);
            return true;
        }
    }
    return false;
}

std::string TableReader::quoted(std::string_view text) {
    std::string quote(text.substr(0, kMaxQuote));
    std::replace_if(
        quote.begin(), quote.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return "\"" + quote + (text.size() > kMaxQuote ? "..." : "") + "\"";
}

void TableReader::split(std::string_view text) {
    row.clear();
    unquoted.clear();
    for (;;) {
        const std::size_t end = takeField(text);
        if (end == std::string_view::npos) {
            return;
        }
        text.remove_prefix(end + 1);
    }
}

// Adds the first field of the text; gives the place of the separator behind it.
std::size_t TableReader::takeField(std::string_view text) {
    const std::size_t start = text.find_first_not_of(' ');
    if (start == std::string_view::npos || text[start] != '"') {
        const std::size_t end = text.find(separator);
        row.push_back(trimmed(text.substr(0, end)));
        return end;
    }
    std::string field;
    std::size_t i = start + 1;
    for (; i < text.size() && (text[i] != '"' || text.substr(i, 2) == "\"\""); ++i) {
        field += text[i];
        i += text[i] == '"' ? 1U : 0U;
    }
    const std::size_t end = text.find(separator, i);
    if (i >= text.size() || !trimmed(text.substr(i + 1, end - i - 1)).empty()) {
        failData("{}: line {}: {}: a quote must end with its field", name, lineNumber, quoted(text.substr(start)));
    }
    row.push_back(unquoted.emplace_back(std::move(field)));
    return end;
}

}  // namespace zelm::tool
