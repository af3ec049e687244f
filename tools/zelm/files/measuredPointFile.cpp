#include "measuredPointFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "failure.h"
#include "numberText.h"
#include "tableFile.h"

namespace zelm::tool {
namespace {

constexpr std::string_view kExpected = "id,X,Y,Z, or columns that a header names so";
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

enum Column : std::size_t { kX, kY, kZ, kNoise, kId = kNoise + 6, kStatus, kColumns };
constexpr std::array<std::string_view, kColumns> kNames{
    "X", "Y", "Z", "noise_XX", "noise_XY", "noise_XZ", "noise_YY", "noise_YZ", "noise_ZZ", "id", "status"};

class MeasuredPointReader {
public:
    explicit MeasuredPointReader(const std::filesystem::path& file)
        : table(file, "a list of points", Separator::ofFirstRow) {
        result.file = file.string();
        columns.fill(kNone);
    }

    MeasuredPoints read() {
        while (table.next()) {
            if (width == 0) {
                width = table.fields().size();
                if (takeHeader()) {
                    continue;
                }
                takePlainColumns();
            }
            if (table.fields().size() != width) {
                fail("{} fields, but {} in the lines before: expected {}", table.fields().size(), width, kExpected);
            }
            addRow();
        }
        if (result.ids.empty()) {
            failData("{}: holds no points: expected lines of {}", result.file, kExpected);
        }
        return std::move(result);
    }

private:
    template <typename... Args>
    [[noreturn]] void fail(fmt::format_string<Args...> words, Args&&... args) const {
        failData("{}: line {}: {}", table.file(), table.line(), fmt::format(words, std::forward<Args>(args)...));
    }

    bool takeHeader() {
        for (std::size_t i = 0; i < width; ++i) {
            const auto name = std::find(kNames.begin(), kNames.end(), table.fields()[i]);
            if (name == kNames.end()) {
                continue;
            }
            std::size_t& column = columns[static_cast<std::size_t>(name - kNames.begin())];
            if (column != kNone) {
                fail("two columns {}: leave one out", TableReader::quoted(*name));
            }
            column = i;
        }
        const auto named = [this](std::size_t from, std::size_t to) {
            return std::count_if(columns.begin() + static_cast<std::ptrdiff_t>(from),
                                 columns.begin() + static_cast<std::ptrdiff_t>(to),
                                 [](std::size_t i) { return i != kNone; });
        };
        const auto places = named(kX, kNoise);
        if (places == 0 && named(kNoise, kColumns) == 0) {
            return false;
        }
        if (places != 3) {
            fail("this header does not name all of X, Y, Z");
        }
        if (const auto noise = named(kNoise, kId); noise != 0 && noise != 6) {
            fail("this header names some of noise_XX, noise_XY, noise_XZ, noise_YY, noise_YZ, noise_ZZ, but not all");
        }
        return true;
    }

    void takePlainColumns() {
        if (width != 3 && width != 4) {
            fail("{} fields: expected {}", width, kExpected);
        }
        columns[kId] = width == 4 ? 0 : kNone;
        for (std::size_t k = 0; k < 3; ++k) {
            columns[k] = width - 3 + k;
        }
    }

    double numberAt(std::size_t column) const {
        const std::string_view text = table.fields()[columns[column]];
        const auto number = numberOf(text);
        if (!number) {
            fail("{} is {}, not a number", kNames[column], TableReader::quoted(text));
        }
        return *number;
    }

    void addRow() {
        ++rows;
        const std::string id = columns[kId] == kNone ? std::to_string(rows) : std::string(table.fields()[columns[kId]]);
        if (id.empty()) {
            fail("the id is empty");
        }
        if (result.byId.contains(id) || result.lost.contains(id)) {
            fail("the id {} stands in a line before: give each point one of its own", TableReader::quoted(id));
        }
        if (columns[kStatus] != kNone && table.fields()[columns[kStatus]] != "ok") {
            result.lost.emplace(id, table.fields()[columns[kStatus]]);
            return;
        }
        for (std::size_t k = 0; k < 3; ++k) {
            result.places.push_back(numberAt(k));
        }
        if (columns[kNoise] != kNone) {
            for (std::size_t k = 0; k < 6; ++k) {
                result.noise.push_back(numberAt(kNoise + k));
            }
            const double* const c = &result.noise[result.noise.size() - 6];
            const double minor = c[0] * c[3] - c[1] * c[1];
            const double determinant = c[0] * (c[3] * c[5] - c[4] * c[4]) - c[1] * (c[1] * c[5] - c[4] * c[2]) +
                                       c[2] * (c[1] * c[4] - c[3] * c[2]);
            if (!(c[0] > 0.0 && minor > 0.0 && determinant > 0.0)) {
                fail("noise_XX to noise_ZZ are no covariance: a variance is not greater than 0 in some direction");
            }
        }
        result.byId.emplace(id, result.ids.size());
        result.ids.push_back(id);
    }

    TableReader table;
    std::array<std::size_t, kColumns> columns{};
    std::size_t width = 0;
    std::size_t rows = 0;
    MeasuredPoints result;
};

}  // namespace

MeasuredPoints readMeasuredPoints(const std::filesystem::path& path) {
    return MeasuredPointReader(path).read();
}

}  // namespace zelm::tool
