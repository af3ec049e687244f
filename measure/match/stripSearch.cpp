#include "stripSearch.h"

#include <zelmLib.h>

#include <algorithm>
#include <array>

#include "fault.h"

namespace zelm::measure {

std::size_t searchStrip(std::uint8_t* pattern, int side, std::uint8_t* strip, int width, double minScore,
                        int minDistance, std::span<StripMatch> matches) {
    constexpr std::size_t kMaxMatches = 16;
    ZelmCstmRefImg reference{};
    reference.width = side;
    reference.height = side;
    reference.pixels = pattern;
    reference.anchorX = reference.anchorY = side / 2;
    if (zelmCstmDrovnCalcBasicStatisticsOfRefImg(&reference) < 0) {
        return 0;
    }
    ZelmCstmSearchPrm search{};
    search.width = search.roiWidth = width;
    search.height = search.roiHeight = side;
    search.pixels = strip;
    search.epiLine = {0.0, 1.0, -static_cast<double>(side / 2)};
    search.maxResults = static_cast<std::int32_t>(std::min(kMaxMatches, matches.size()));
    search.minScore = minScore;
    search.minDistance = minDistance;
    // Full: the sparser patterns score a perfect match low in their coarse pass, and would lose it.
    search.mode = ZELM_CSTM_FULL;
    std::array<ZelmCstmMatch, kMaxMatches> found{};
    std::int32_t count = 0;
    const std::int32_t status = zelmCstmDrovnSearchOnEpiLine(&reference, &search, &count, found.data());
    // The middle row always crosses the strip: the search finds that it does not only when memory runs out on the way.
    requireMemory(status == ZELM_ERR_DEGENERATE ? ZELM_ERR_MEMORY : status);
    if (status < 0) {
        return 0;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        matches[i] = {found[i].score, found[i].x};
    }
    return static_cast<std::size_t>(count);
}

}  // namespace zelm::measure
