#include "pairFile.h"

#include <array>
#include <string_view>
#include <utility>

#include "coordinateFile.h"

namespace zelm::tool {

std::vector<PixelPair> readPairFile(const std::filesystem::path& path) {
    constexpr std::array<std::string_view, 4> kNames{"xL", "yL", "xR", "yR"};
    std::vector<PixelPair> pairs;
    for (CoordinateRow& row : readCoordinateFile(path, {kNames, "pixel pairs"})) {
        const auto& n = row.numbers;
        pairs.push_back({{n[0], n[1]}, {n[2], n[3]}, std::move(row.id)});
    }
    return pairs;
}

PairArrays::PairArrays(const std::vector<PixelPair>& pairs) : count(static_cast<std::int64_t>(pairs.size())) {
    for (const PixelPair& pair : pairs) {
        left.insert(left.end(), {pair.left.x, pair.left.y});
        right.insert(right.end(), {pair.right.x, pair.right.y});
    }
}

}  // namespace zelm::tool
