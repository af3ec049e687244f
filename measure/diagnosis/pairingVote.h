// Which left image belongs to which right one, by the relative pose that most of them share.
#ifndef ZELM_MEASURE_PAIRING_VOTE_H
#define ZELM_MEASURE_PAIRING_VOTE_H

#include <cstddef>
#include <utility>
#include <vector>

#include "pairedImages.h"

namespace zelm::measure {

struct CandidatePairing {
    PlatePose relative;                                      // X_right = R X_left + t
    std::vector<std::pair<std::size_t, std::size_t>> pairs;  // left and right image, one to one
    double score = 0.0;
};

// The relative poses that most one-to-one combinations share, best first, and none twice that pairs alike. They are
// proposals: poses of single cameras are right to some pixels, which tells alike views hardly apart.
std::vector<CandidatePairing> proposePairings(const SetOfImages& set, const SingleCamera& left,
                                              const SingleCamera& right, std::size_t count);

// Of given pairs of images, the relative pose that most of them share, and those that share it roughly. None may: then
// an adjustment would start from nonsense.
CandidatePairing sharedBy(const SetOfImages& set, const SingleCamera& left, const SingleCamera& right,
                          const std::vector<std::pair<std::size_t, std::size_t>>& pairs);

}  // namespace zelm::measure

#endif
