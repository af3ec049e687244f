#include "targetPointFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <tuple>

#include "failure.h"
#include "letterCase.h"
#include "numberText.h"
#include "tableFile.h"

namespace zelm::tool {
namespace {

constexpr std::string_view kExpected = "view,camera,id,x,y,X,Y (camera: left or right; a column Z may follow)";

enum Column : std::size_t { kView, kCamera, kId, kPixelX, kPixelY, kPlaceX, kPlaceY, kPlaceZ, kColumns };
// As users write them: x and X are two.
constexpr std::array<std::string_view, kColumns> kNames{"view", "camera", "id", "x", "y", "X", "Y", "Z"};

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Names in the order in which they come.
class Names {
public:
    std::size_t of(std::string_view name) {
        const auto [at, isNew] = places.emplace(std::string(name), list.size());
        if (isNew) {
            list.emplace_back(name);
        }
        return at->second;
    }
    std::vector<std::string> list;

private:
    std::map<std::string, std::size_t> places;
};

class TargetPointReader {
public:
    explicit TargetPointReader(const std::filesystem::path& file)
        : table(file, "points of a target", Separator::ofFirstRow) {}

    TargetPoints read() {
        while (table.next()) {
            if (width == 0) {
                const bool isHeader = takeColumns();
                width = table.fields().size();
                if (isHeader) {
                    continue;
                }
            }
            if (table.fields().size() != width) {
                fail("{} fields, but {} in the lines before: expected {}", table.fields().size(), width, kExpected);
            }
            addPoint();
        }
        if (points.empty()) {
            failData("{}: holds no points: expected lines of {}", table.file(), kExpected);
        }
        return {std::move(views.list), std::move(ids.list), std::move(points)};
    }

private:
    template <typename... Args>
    [[noreturn]] void fail(fmt::format_string<Args...> words, Args&&... args) const {
        failData("{}: line {}: {}", table.file(), table.line(), fmt::format(words, std::forward<Args>(args)...));
    }

    // Where the columns are; whether the line at hand names them.
    bool takeColumns() {
        columns.fill(kNone);
        for (std::size_t i = 0; i < table.fields().size(); ++i) {
            const std::string_view field = table.fields()[i];
            const std::string lower = lowerCase(std::string(field));
            for (std::size_t k = 0; k < kColumns; ++k) {
                if (k < kPixelX ? lower == kNames[k] : field == kNames[k]) {
                    if (columns[k] != kNone) {
                        fail("two columns {}: leave one out", TableReader::quoted(field));
                    }
                    columns[k] = i;
                }
            }
        }
        if (std::all_of(columns.begin(), columns.end(), [](std::size_t i) { return i == kNone; })) {
            takePlainColumns();
            return false;
        }
        for (const Column k : {kView, kId, kPixelX, kPixelY, kPlaceX, kPlaceY}) {
            if (columns[k] == kNone) {
                fail("this header names no column {}: expected {}", kNames[k], kExpected);
            }
        }
        return true;
    }

    void takePlainColumns() {
        const std::size_t count = table.fields().size();
        if (count != kColumns && count != kColumns - 1) {
            fail("{} fields: expected {}", count, kExpected);
        }
        for (std::size_t k = 0; k < count; ++k) {
            columns[k] = k;
        }
    }

    std::string_view textAt(Column column) const {
        const std::string_view text = table.fields()[columns[column]];
        if (text.empty()) {
            fail("the field {} is empty: expected {}", kNames[column], kExpected);
        }
        return text;
    }

    double numberAt(Column column) const {
        const std::string_view text = table.fields()[columns[column]];
        const auto number = numberOf(text);
        if (!number) {
            fail("{} is {}, not a number: expected {}", kNames[column], TableReader::quoted(text), kExpected);
        }
        return *number;
    }

    char sideAt() const {
        if (columns[kCamera] == kNone) {
            return 'L';
        }
        const std::string word = lowerCase(std::string(table.fields()[columns[kCamera]]));
        if (word != "left" && word != "right") {
            fail("camera is {}: expected left or right", TableReader::quoted(table.fields()[columns[kCamera]]));
        }
        return word == "left" ? 'L' : 'R';
    }

    void addPoint() {
        TargetPoint point;
        point.line = table.line();
        point.view = views.of(textAt(kView));
        point.side = sideAt();
        point.id = ids.of(textAt(kId));
        point.pixel = {numberAt(kPixelX), numberAt(kPixelY)};
        point.place = {numberAt(kPlaceX), numberAt(kPlaceY), columns[kPlaceZ] == kNone ? 0.0 : numberAt(kPlaceZ)};
        const std::string& id = ids.list[point.id];
        if (point.id == firsts.size()) {
            firsts.push_back(points.size());
        } else if (const TargetPoint& first = points[firsts[point.id]]; first.place != point.place) {
            fail(
                "the point {} has another X, Y or Z than in line {}: a point stands where it stands on the target, "
                "whatever the view",
                TableReader::quoted(id), first.line);
        }
        const auto [before, isNew] = seen.emplace(std::tuple(point.view, point.side, point.id), point.line);
        if (!isNew) {
            fail("the point {} stands in line {} already, of the same view and camera", TableReader::quoted(id),
                 before->second);
        }
        points.push_back(point);
    }

    TableReader table;
    std::array<std::size_t, kColumns> columns{};
    std::size_t width = 0;
    Names views;
    Names ids;
    std::vector<std::size_t> firsts;  // of each id, the first point
    std::map<std::tuple<std::size_t, char, std::size_t>, std::size_t> seen;
    std::vector<TargetPoint> points;
};

}  // namespace

bool TargetPoints::has(char side) const {
    return std::any_of(points.begin(), points.end(), [side](const TargetPoint& point) { return point.side == side; });
}

TargetPoints readTargetPoints(const std::filesystem::path& path) {
    return TargetPointReader(path).read();
}

}  // namespace zelm::tool
