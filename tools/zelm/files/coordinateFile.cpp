#include "coordinateFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "failure.h"
#include "letterCase.h"
#include "numberText.h"
#include "tableFile.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

// The columns of a file: the coordinates and, where `id` is one of them, the id.
struct Columns {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::array<std::size_t, kMaxCoordinates> coordinates{kNone, kNone, kNone, kNone, kNone};
    std::size_t id = kNone;
    std::size_t count = 0;
};

class CoordinateReader {
public:
    CoordinateReader(const fs::path& file, const CoordinateFormat& form)
        : table(file, "a list of " + std::string(form.what), Separator::ofFirstRow),
          format(form),
          // "x,y or id,x,y, in pixels"
          expected(fmt::format("{0} or id,{0}{1}", fmt::join(form.names, ","), form.unit)) {}

    std::vector<CoordinateRow> read() {
        rows.reserve(table.maxRows());
        while (table.next()) {
            readRow();
        }
        if (rows.empty()) {
            failData("{}: holds no {}: expected lines of {}", table.file(), format.what, expected);
        }
        return std::move(rows);
    }

private:
    void readRow() {
        if (columns.count == 0) {
            columns = headerColumns();
            if (columns.count > 0) {
                return;
            }
            columns = plainColumns();
        }
        if (table.fields().size() != columns.count) {
            failData("{}: line {}: {}, but {} in the lines before: expected {}", table.file(), table.line(),
                     counted(table.fields().size(), "field"), columns.count, expected);
        }
        addRow();
    }

    // The columns that the line names; none when it is no header.
    Columns headerColumns() const {
        const std::size_t count = format.names.size();
        Columns found;
        for (std::size_t i = 0; i < table.fields().size(); ++i) {
            const std::string name = lowerCase(std::string(table.fields()[i]));
            std::size_t* place = name == "id" ? &found.id : nullptr;
            for (std::size_t k = 0; k < count; ++k) {
                place = name == lowerCase(std::string(format.names[k])) ? &found.coordinates[k] : place;
            }
            if (place != nullptr && *place != Columns::kNone) {
                failData("{}: line {}: two columns {}: leave one out", table.file(), table.line(),
                         TableReader::quoted(table.fields()[i]));
            }
            if (place != nullptr) {
                *place = i;
            }
        }
        const auto isFound = [](std::size_t i) { return i != Columns::kNone; };
        const auto named =
            static_cast<std::size_t>(std::count_if(found.coordinates.begin(), found.coordinates.end(), isFound));
        if (named > 0 && named < count) {
            failData("{}: line {}: this header does not name all of {}", table.file(), table.line(),
                     fmt::join(format.names, ", "));
        }
        found.count = named == count ? table.fields().size() : 0;
        return found;
    }

    Columns plainColumns() const {
        const std::size_t count = format.names.size();
        if (table.fields().size() == count) {
            return {{0, 1, 2, 3, 4}, Columns::kNone, count};
        }
        if (table.fields().size() == count + 1) {
            return {{1, 2, 3, 4, 5}, 0, count + 1};
        }
        failData("{}: line {}: {}: expected {}", table.file(), table.line(), counted(table.fields().size(), "field"),
                 expected);
    }

    double numberAt(std::size_t column) const {
        const auto number = numberOf(table.fields()[column]);
        if (!number) {
            failData("{}: line {}: {} is not a number: expected {}", table.file(), table.line(),
                     TableReader::quoted(table.fields()[column]), expected);
        }
        return *number;
    }

    void addRow() {
        CoordinateRow& row = rows.emplace_back();
        for (std::size_t k = 0; k < format.names.size(); ++k) {
            row.numbers[k] = numberAt(columns.coordinates[k]);
        }
        row.id = columns.id == Columns::kNone ? std::to_string(rows.size()) : std::string(table.fields()[columns.id]);
    }

    TableReader table;
    const CoordinateFormat& format;
    std::string expected;
    std::vector<CoordinateRow> rows;
    Columns columns;
};

}  // namespace

std::vector<CoordinateRow> readCoordinateFile(const fs::path& path, const CoordinateFormat& format) {
    return CoordinateReader(path, format).read();
}

}  // namespace zelm::tool
