// Text files of rows, with fields between commas, semicolons or tabs.
#ifndef ZELM_TOOL_TABLE_FILE_H
#define ZELM_TOOL_TABLE_FILE_H

#include <cstddef>
#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

// Which rows tell the separator.
enum class Separator { ofFirstRow, ofEveryRow };

// Goes through the rows of a file. Empty lines and lines that begin with # are passed over. A field in quotes may hold
// separators, and quotes that are doubled.
class TableReader {
public:
    // Reads the file. `what` it is, for messages: "a list of lengths". Throws Failure when it cannot be read.
    TableReader(const std::filesystem::path& file, std::string_view what, Separator told);
    TableReader(const TableReader&) = delete;
    TableReader& operator=(const TableReader&) = delete;

    // Goes to the next row; false after the last one. Throws Failure for a quote that does not end with its field.
    bool next();

    // Of the row at hand; they hold until the next one.
    const std::vector<std::string_view>& fields() const { return row; }
    std::size_t line() const { return lineNumber; }  // of the file, from 1 on
    const std::string& file() const { return name; }
    std::size_t maxRows() const;

    // A piece of the file fit for a message of one line.
    static std::string quoted(std::string_view text);

private:
    void split(std::string_view text);
    std::size_t takeField(std::string_view text);

    std::string name;
    std::string whole;
    std::string_view rest;
    std::vector<std::string_view> row;
    std::deque<std::string> unquoted;  // those of its fields that stand in quotes in the file
    Separator told;
    char separator = 0;
    std::size_t lineNumber = 0;
};

}  // namespace zelm::tool

#endif
