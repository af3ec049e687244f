#include "lengthFile.h"

#include <algorithm>
#include <array>
#include <optional>

#include "failure.h"
#include "letterCase.h"
#include "numberText.h"
#include "tableFile.h"

namespace zelm::tool {
namespace {

// Where the columns stand, in the order from, to, length.
struct LengthColumns {
    std::array<std::size_t, 3> places{0, 1, 2};
    std::size_t count = 0;  // of all columns
};

// The columns that a header names; none when the row is no header.
std::optional<LengthColumns> headerColumns(const TableReader& table, std::size_t wanted) {
    constexpr std::array<const char*, 3> kNames{"from", "to", "length"};
    LengthColumns columns;
    columns.count = table.fields().size();
    for (std::size_t k = 0; k < wanted; ++k) {
        const auto isNamed = [&](std::string_view field) { return lowerCase(std::string(field)) == kNames[k]; };
        const auto found = std::find_if(table.fields().begin(), table.fields().end(), isNamed);
        if (found == table.fields().end()) {
            return std::nullopt;
        }
        columns.places[k] = static_cast<std::size_t>(found - table.fields().begin());
    }
    return columns;
}

}  // namespace

std::vector<NamedLength> readLengthFile(const std::filesystem::path& path, bool areKnown) {
    const char* const expected = areKnown ? "expected from,to,length: two ids of pixel pairs and a length"
                                          : "expected from,to: two ids of pixel pairs";
    const std::size_t wanted = areKnown ? 3 : 2;
    TableReader table(path, "a list of lengths", Separator::ofEveryRow);
    LengthColumns columns;
    std::vector<NamedLength> lengths;
    while (table.next()) {
        if (columns.count == 0) {
            const auto header = headerColumns(table, wanted);
            columns = header.value_or(LengthColumns{{0, 1, 2}, wanted});
            if (header) {
                continue;
            }
        }
        const auto& fields = table.fields();
        if (fields.size() != columns.count) {
            failData("{}: line {}: {}: {}", table.file(), table.line(), counted(fields.size(), "field"), expected);
        }
        NamedLength length{std::string(fields[columns.places[0]]), std::string(fields[columns.places[1]]), 0.0,
                           table.line()};
        if (areKnown) {
            length.nominal = numberOf(fields[columns.places[2]]).value_or(0.0);
            if (!(length.nominal > 0.0)) {
                failData("{}: line {}: the length is not a number greater than 0: {}", table.file(), table.line(),
                         expected);
            }
        }
        lengths.push_back(length);
    }
    if (lengths.empty()) {
        failData("{}: holds no lengths: {}", path.string(), expected);
    }
    return lengths;
}

}  // namespace zelm::tool
