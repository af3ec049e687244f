// The list of matches that a search has found.
#ifndef ZELM_MATCH_LIST_H
#define ZELM_MATCH_LIST_H

#include <cstdint>

#include "zelm/cstmSearch.h"

namespace zelm {

// No two of its matches are closer than minDistance pixels, or 1e-12 when minDistance <= 0.
class MatchList {
public:
    // room: most matches that are added, in the caller's memory. isSorted: by score, highest first and equal ones as
    // they come; else all as they come.
    MatchList(ZelmCstmMatch* room, std::int32_t minDistance, bool isSorted);

    // Puts a match in its place, and drops it when an earlier one is too close, and later ones that are too close to
    // it.
    void add(const ZelmCstmMatch& match);
    [[nodiscard]] std::int32_t size() const { return count; }

private:
    [[nodiscard]] std::int32_t placeOf(const ZelmCstmMatch& match) const;
    [[nodiscard]] bool isNear(const ZelmCstmMatch& a, const ZelmCstmMatch& b) const;

    ZelmCstmMatch* entries;
    std::int32_t count = 0;
    double leastSquared;
    bool sorted;
};

}  // namespace zelm

#endif
