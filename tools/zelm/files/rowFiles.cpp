#include "rowFiles.h"

#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <span>

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kDisparityStep = 16;  // block matchers take multiples of it

Json rowsOf(std::span<const double> m, std::size_t columns) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < m.size(); i += columns) {
        const auto row = m.subspan(i, columns);
        rows.push_back(std::vector<double>(row.begin(), row.end()));
    }
    return rows;
}

std::string matrixYaml(const char* name, std::span<const double> values, std::size_t columns) {
    std::string text = fmt::format("{}: !!opencv-matrix\n   rows: {}\n   cols: {}\n   dt: d\n   data: [ ", name,
                                   values.size() / columns, columns);
    for (std::size_t i = 0; i < values.size(); ++i) {
        text += i == 0 ? "" : i % columns == 0 ? ",\n       " : ", ";
        text += fmt::format("{:#.17g}", values[i]);
    }
    return text + " ]\n";
}

std::string listYaml(const char* name, std::span<const std::int32_t> values) {
    return fmt::format("{}: [ {} ]\n", name, fmt::join(values, ", "));
}

}  // namespace

std::string npyOf(const RowMap& map) {
    static_assert(std::endian::native == std::endian::little, "the floats are written as they are");
    constexpr std::size_t kPrefix = 10;
    constexpr std::size_t kAlignment = 64;
    std::string header =
        fmt::format("{{'descr': '<f4', 'fortran_order': False, 'shape': ({}, {}, 2), }}", map.height, map.width);
    header.append(kAlignment - (kPrefix + header.size() + 1) % kAlignment, ' ');
    header += '\n';
    std::string bytes("\x93NUMPY\x01\x00", 8);
    bytes += static_cast<char>(header.size() & 0xffU);
    bytes += static_cast<char>(header.size() >> 8U);
    bytes += header;
    const std::size_t begin = bytes.size();
    bytes.resize(begin + map.positions.size() * sizeof(float));
    std::memcpy(bytes.data() + begin, map.positions.data(), map.positions.size() * sizeof(float));
    return bytes;
}

DisparityRange disparityRange(const ZelmMeasureRows& rows) {
    if (rows.disparities[0] == 0.0 && rows.disparities[1] == 0.0) {
        return {};
    }
    // What is farther apart than the image is wide has no counterpart.
    const double widest = rows.width;
    const int least = static_cast<int>(std::floor(std::fmax(rows.disparities[0], -widest)));
    const int greatest = static_cast<int>(std::ceil(std::fmin(rows.disparities[1], widest)));
    const int count = std::max(1, greatest - least + 1);
    return {least, (count + kDisparityStep - 1) / kDisparityStep * kDisparityStep};
}

Json rowsJson(const ZelmMeasureRows& rows) {
    Json json{{"width", rows.width}, {"height", rows.height}};
    json["R1"] = rowsOf(rows.R1, 3);
    json["R2"] = rowsOf(rows.R2, 3);
    json["P1"] = rowsOf(rows.P1, 4);
    json["P2"] = rowsOf(rows.P2, 4);
    json["Q"] = rowsOf(rows.Q, 4);
    json["leftSeen"] = rows.leftSeen;
    json["rightSeen"] = rows.rightSeen;
    const DisparityRange range = disparityRange(rows);
    json["minDisparity"] = range.count > 0 ? Json(range.least) : Json();
    json["numDisparities"] = range.count > 0 ? Json(range.count) : Json();
    return json;
}

std::string rowsYaml(const ZelmMeasureRows& rows) {
    std::string text = fmt::format("%YAML:1.0\n---\nimage_width: {}\nimage_height: {}\n", rows.width, rows.height);
    text += matrixYaml("R1", rows.R1, 3) + matrixYaml("R2", rows.R2, 3) + matrixYaml("P1", rows.P1, 4) +
            matrixYaml("P2", rows.P2, 4) + matrixYaml("Q", rows.Q, 4) + listYaml("left_seen", rows.leftSeen) +
            listYaml("right_seen", rows.rightSeen);
    const DisparityRange range = disparityRange(rows);
    if (range.count > 0) {
        text += fmt::format("min_disparity: {}\nnum_disparities: {}\n", range.least, range.count);
    }
    return text;
}

}  // namespace zelm::tool
