// Every combination of a left and a right image proposes a relative pose, by which each left image says where the
// right camera sees its plate. How far from there a right image shows it counts by its logarithm: the combinations
// that belong together are near one another, whatever the precision of the poses is.
#include "pairingVote.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zelm::measure {
namespace {

constexpr double kFar = 0.04;              // of the focal length, within which images can belong together
constexpr double kNear = 5e-4;             // of the focal length: nearer is no better
constexpr double kAlwaysNear = 4e-3;       // of the focal length: what single cameras are wrong by
constexpr double kMaxUsual = 1.5e-2;       // of the focal length, that most of what belongs together is within
constexpr double kMaxOverUsual = 6.0;      // times the median distance
constexpr std::size_t kMaxProposers = 12;  // left images whose combinations are tried; one that has a partner is enough
constexpr std::size_t kMaxVoters = 30;     // left images that are asked about a proposal
constexpr std::size_t kSpots = 5;          // of the plate, whose distances count
constexpr std::size_t kMaxRefined = 12;    // proposals that are followed up
constexpr double kInfinite = std::numeric_limits<double>::infinity();

using Spots = std::array<Vector3, kSpots>;  // in a camera's frame
using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;

Vector3 moved(const PlatePose& pose, const Vector3& X) {
    Vector3 Y = times(pose.R, X);
    for (std::size_t i = 0; i < 3; ++i) {
        Y[i] += pose.t[i];
    }
    return Y;
}

PlatePose inverseOf(const PlatePose& pose) {
    const Matrix3& R = pose.R;
    const Vector3 t = timesTransposed(R, pose.t);
    return {{R[0], R[3], R[6], R[1], R[4], R[7], R[2], R[5], R[8]}, {-t[0], -t[1], -t[2]}};
}

PlatePose after(const PlatePose& second, const PlatePose& first) {
    return {product(second.R, first.R), moved(second, first.t)};
}

// Square of the distance of two points as the camera sees them, over its focal length.
double seenSquare(const Vector3& a, const Vector3& b) {
    if (!(a[2] > 0.0) || !(b[2] > 0.0)) {
        return kInfinite;
    }
    const double x = a[0] / a[2] - b[0] / b[2];
    const double y = a[1] / a[2] - b[1] / b[2];
    return x * x + y * y;
}

class Voting {
public:
    Voting(const SetOfImages& set, const SingleCamera& leftCamera, const SingleCamera& rightCamera)
        : left(leftCamera.poses), right(rightCamera.poses) {
        const double x = 0.4 * set.plate.d0;
        const double y = 0.4 * set.plate.d1;
        const Spots plate{{{0.0, 0.0, 0.0}, {x, y, 0.0}, {-x, y, 0.0}, {x, -y, 0.0}, {-x, -y, 0.0}}};
        leftSpots = spotsOf(left, plate, lefts);
        rightSpots = spotsOf(right, plate, rights);
    }

    std::vector<CandidatePairing> propose(std::size_t count) const {
        std::vector<CandidatePairing> tried;
        for (const std::size_t i : spread(lefts, kMaxProposers)) {
            for (const std::size_t j : rights) {
                CandidatePairing candidate;
                candidate.relative = between(i, j);
                candidate.score = scoreOf(matches(candidate.relative, spread(lefts, kMaxVoters)), i);
                tried.push_back(std::move(candidate));
            }
        }
        keepBest(tried, kMaxRefined);
        for (CandidatePairing& candidate : tried) {
            refine(candidate);
        }
        dropTwins(tried);
        keepBest(tried, count);
        return tried;
    }

    CandidatePairing shared(const Pairs& pairs) const {
        CandidatePairing best;
        for (const auto& [i, j] : pairs) {
            if (!left[i] || !right[j]) {
                continue;
            }
            const PlatePose relative = between(i, j);
            const PlatePose back = inverseOf(relative);
            std::vector<Match> near;
            for (const auto& [k, l] : pairs) {
                const double d = left[k] && right[l] ? distance(relative, back, k, l) : kInfinite;
                if (d < kFar) {
                    near.push_back({k, l, std::max(d, kNear)});
                }
            }
            if (const double score = scoreOf(near, i); best.pairs.empty() || score > best.score) {
                best = {relative, {}, score};
                take(near, best);
            }
        }
        return best;
    }

private:
    struct Match {
        std::size_t left = 0;
        std::size_t right = 0;
        double distance = 0.0;  // over the focal length
    };

    static std::vector<Spots> spotsOf(const std::vector<std::optional<PlatePose>>& poses, const Spots& plate,
                                      std::vector<std::size_t>& known) {
        std::vector<Spots> spots(poses.size());
        for (std::size_t i = 0; i < poses.size(); ++i) {
            if (poses[i]) {
                known.push_back(i);
                std::transform(plate.begin(), plate.end(), spots[i].begin(),
                               [&](const Vector3& X) { return moved(*poses[i], X); });
            }
        }
        return spots;
    }

    static std::vector<std::size_t> spread(const std::vector<std::size_t>& list, std::size_t count) {
        if (list.size() <= count) {
            return list;
        }
        std::vector<std::size_t> some(count);
        for (std::size_t k = 0; k < count; ++k) {
            some[k] = list[k * list.size() / count];
        }
        return some;
    }

    PlatePose between(std::size_t i, std::size_t j) const { return after(*right[j], inverseOf(*left[i])); }

    // How far apart both cameras see the plates of two images, over the focal length.
    double distance(const PlatePose& relative, const PlatePose& back, std::size_t i, std::size_t j) const {
        double sum = seenSquare(moved(relative, leftSpots[i][0]), rightSpots[j][0]);
        if (!(sum < 4.0 * kFar * kFar)) {
            return kInfinite;
        }
        sum += seenSquare(moved(back, rightSpots[j][0]), leftSpots[i][0]);
        for (std::size_t k = 1; k < kSpots; ++k) {
            sum += seenSquare(moved(relative, leftSpots[i][k]), rightSpots[j][k]);
            sum += seenSquare(moved(back, rightSpots[j][k]), leftSpots[i][k]);
        }
        return std::sqrt(sum / (2.0 * kSpots));
    }

    // One to one, the nearest first.
    std::vector<Match> matches(const PlatePose& relative, const std::vector<std::size_t>& voters) const {
        const PlatePose back = inverseOf(relative);
        std::vector<Match> near;
        for (const std::size_t i : voters) {
            for (const std::size_t j : rights) {
                if (const double d = distance(relative, back, i, j); d < kFar) {
                    near.push_back({i, j, std::max(d, kNear)});
                }
            }
        }
        std::sort(near.begin(), near.end(), [](const Match& a, const Match& b) {
            return a.distance != b.distance ? a.distance < b.distance : a.left + b.right < b.left + a.right;
        });
        std::vector<bool> isLeftTaken(left.size(), false);
        std::vector<bool> isRightTaken(right.size(), false);
        std::vector<Match> chosen;
        for (const Match& match : near) {
            if (!isLeftTaken[match.left] && !isRightTaken[match.right]) {
                isLeftTaken[match.left] = isRightTaken[match.right] = true;
                chosen.push_back(match);
            }
        }
        return chosen;
    }

    // Without the image that proposed it: it fits in any case.
    static double scoreOf(const std::vector<Match>& chosen, std::size_t proposer) {
        double score = 0.0;
        for (const Match& match : chosen) {
            score += match.left == proposer ? 0.0 : std::log(kFar / match.distance);
        }
        return score;
    }

    // By the combination among the matches that the others agree with best.
    void refine(CandidatePairing& candidate) const {
        std::vector<Match> chosen = matches(candidate.relative, lefts);
        double best = 0.0;
        const std::vector<Match> proposals = chosen;
        for (std::size_t k = 0; k < std::min(proposals.size(), kMaxVoters); ++k) {
            const PlatePose relative = between(proposals[k].left, proposals[k].right);
            std::vector<Match> other = matches(relative, lefts);
            if (const double score = scoreOf(other, proposals[k].left); score > best || k == 0) {
                best = score;
                candidate.relative = relative;
                chosen = std::move(other);
            }
        }
        candidate.score = best;
        take(std::move(chosen), candidate);
    }

    // Those that are about as near as most, if that is near enough for poses of single cameras to be right.
    static void take(std::vector<Match> matched, CandidatePairing& candidate) {
        candidate.pairs.clear();
        if (matched.empty()) {
            return;
        }
        std::vector<double> distances;
        for (const Match& match : matched) {
            distances.push_back(match.distance);
        }
        const auto middle = distances.begin() + static_cast<std::ptrdiff_t>((distances.size() - 1) / 2);
        std::nth_element(distances.begin(), middle, distances.end());
        const double most = *middle > kMaxUsual ? kMaxUsual : std::max(kMaxOverUsual * *middle, kAlwaysNear);
        std::sort(matched.begin(), matched.end(), [](const Match& a, const Match& b) { return a.left < b.left; });
        for (const Match& match : matched) {
            if (match.distance <= most) {
                candidate.pairs.emplace_back(match.left, match.right);
            }
        }
    }

    static void keepBest(std::vector<CandidatePairing>& list, std::size_t count) {
        std::stable_sort(list.begin(), list.end(), [](const auto& a, const auto& b) { return a.score > b.score; });
        list.resize(std::min(list.size(), count));
    }

    static void dropTwins(std::vector<CandidatePairing>& list) {
        std::vector<CandidatePairing> kept;
        for (CandidatePairing& candidate : list) {
            if (std::none_of(kept.begin(), kept.end(), [&](const auto& k) { return k.pairs == candidate.pairs; })) {
                kept.push_back(std::move(candidate));
            }
        }
        list = std::move(kept);
    }

    const std::vector<std::optional<PlatePose>>& left;
    const std::vector<std::optional<PlatePose>>& right;
    std::vector<std::size_t> lefts;  // images with a pose
    std::vector<std::size_t> rights;
    std::vector<Spots> leftSpots;
    std::vector<Spots> rightSpots;
};

}  // namespace

std::vector<CandidatePairing> proposePairings(const SetOfImages& set, const SingleCamera& left,
                                              const SingleCamera& right, std::size_t count) {
    return Voting(set, left, right).propose(count);
}

CandidatePairing sharedBy(const SetOfImages& set, const SingleCamera& left, const SingleCamera& right,
                          const std::vector<std::pair<std::size_t, std::size_t>>& pairs) {
    return Voting(set, left, right).shared(pairs);
}

}  // namespace zelm::measure
