#include "matchList.h"

#include <algorithm>

namespace zelm {
namespace {

constexpr double kIdentical = 1e-24;  // square of a distance

}  // namespace

MatchList::MatchList(ZelmCstmMatch* room, std::int32_t minDistance, bool isSorted)
    : entries(room),
      leastSquared(minDistance <= 0 ? kIdentical : static_cast<double>(minDistance) * minDistance),
      sorted(isSorted) {}

std::int32_t MatchList::placeOf(const ZelmCstmMatch& match) const {
    std::int32_t place = count;
    while (sorted && place > 0 && entries[place - 1].score < match.score) {
        --place;
    }
    return place;
}

bool MatchList::isNear(const ZelmCstmMatch& a, const ZelmCstmMatch& b) const {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return dx * dx + dy * dy < leastSquared;
}

void MatchList::add(const ZelmCstmMatch& match) {
    const auto nearToIt = [&](const ZelmCstmMatch& other) { return isNear(other, match); };
    const std::int32_t place = placeOf(match);
    if (std::any_of(entries, entries + place, nearToIt)) {
        return;
    }
    ZelmCstmMatch* const end = std::remove_if(entries + place, entries + count, nearToIt);
    std::move_backward(entries + place, end, end + 1);
    entries[place] = match;
    count = static_cast<std::int32_t>(end + 1 - entries);
}

}  // namespace zelm
