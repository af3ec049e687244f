#include "matchRun.h"

#include <tbb/blocked_range.h>
#include <tbb/enumerable_thread_specific.h>
#include <tbb/info.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "neighbours.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kPointsAStep = 2048;  // of the progress bar
constexpr std::size_t kPointsATask = 16;
constexpr int kMaxRounds = 6;                  // of spreading surfaces to neighbours
constexpr std::size_t kSurfaces = 6;           // of neighbours that are tried for a point
constexpr std::size_t kSurfacesOfAPixel = 5;   // that are tried for a pixel between matched ones
constexpr int kDenseStep = 4;                  // pixels between those
constexpr std::size_t kJudges = 16;            // neighbours asked whether a point is plausible
constexpr std::size_t kMinIsland = 12;         // points that agree with each other, if others around disagree
constexpr std::size_t kMinAmongFailures = 3;   // if most of those around were not found
constexpr std::size_t kMinOpponents = 4;       // so many of these
constexpr double kConsentPixels = 1.0;         // along the epipolar line by which they may disagree
constexpr double kConsentPixelsPerPixel = .1;  // and by their distance

// More threads than the machine runs at a time are of no use, and the thread library complains of them.
int threadsFor(int threads) {
    const int most = tbb::info::default_concurrency();
    return threads > 0 ? std::min(threads, most) : most;
}

// Pixels on a grid over an image, row by row, half a step from its edges.
std::vector<Point2d> gridPoints(const DenseImage& image, int step) {
    std::vector<Point2d> points;
    for (int y = step / 2; y < image.height(); y += step) {
        for (int x = step / 2; x < image.width(); x += step) {
            points.push_back({static_cast<double>(x), static_cast<double>(y)});
        }
    }
    return points;
}

class Run {
public:
    Run(const MatchInput& matchInput, const std::vector<Point2d>& allPoints)
        : input(matchInput),
          points(allPoints),
          left(input.rig, 'L', input.left),
          right(input.rig, 'R', input.right),
          toRight(input.rig, 'L', input.settings.limits),
          toLeft(input.rig, 'R', input.settings.limits),
          neighbours(points, input.left.width(), input.left.height(), input.reach),
          arena(threadsFor(input.threads)),
          matchers([this] { return PointMatcher(left, right, toRight, toLeft, input.settings); }),
          matches(points.size()) {}

    std::vector<PointMatch> operator()() {
        std::vector<std::size_t> all(points.size());
        std::iota(all.begin(), all.end(), std::size_t{0});
        forEach("matching", all, [this](PointMatcher& match, std::size_t i) { matches[i] = match(points[i]); });
        spread();
        dropIslands();
        return std::move(matches);
    }

    // Takes the results of these points as known and matches every pixel of the left image with them.
    std::vector<PointMatch> fill(std::vector<PointMatch> known) {
        matches = std::move(known);
        const std::vector<char> found = foundOnes();
        const auto width = static_cast<std::size_t>(input.left.width());
        std::vector<PointMatch> pixels(width * static_cast<std::size_t>(input.left.height()));
        std::vector<std::size_t> all(pixels.size());
        std::iota(all.begin(), all.end(), std::size_t{0});
        forEach("filling", all, [&](PointMatcher& matcher, std::size_t i) {
            const Point2d pixel{static_cast<double>(i % width), static_cast<double>(i / width)};
            std::vector<std::size_t> near;
            neighbours.around(pixel, kSurfacesOfAPixel, found, near);
            pixels[i] = matcher.on(pixel, surfacesOf(near));
        });
        return pixels;
    }

private:
    // Calls work(matcher, index) for each index, on all threads.
    template <typename Work>
    void forEach(const char* stage, const std::vector<std::size_t>& indices, Work work) {
        const std::size_t steps = (indices.size() + kPointsAStep - 1) / kPointsAStep;
        input.report(stage, 0, steps);
        for (std::size_t begin = 0; begin < indices.size(); begin += kPointsAStep) {
            const std::size_t end = std::min(begin + kPointsAStep, indices.size());
            arena.execute([&] {
                tbb::parallel_for(tbb::blocked_range<std::size_t>(begin, end, kPointsATask),
                                  [&](const tbb::blocked_range<std::size_t>& part) {
                                      PointMatcher& matcher = matchers.local();
                                      for (std::size_t k = part.begin(); k < part.end(); ++k) {
                                          work(matcher, indices[k]);
                                      }
                                  });
            });
            input.report(stage, begin / kPointsAStep + 1, steps);
        }
    }

    std::vector<char> foundOnes() const {
        std::vector<char> found(matches.size());
        std::transform(matches.begin(), matches.end(), found.begin(),
                       [](const PointMatch& m) { return static_cast<char>(m.status == MatchStatus::ok); });
        return found;
    }

    std::vector<char> triedOnes() const {
        std::vector<char> tried(matches.size());
        std::transform(matches.begin(), matches.end(), tried.begin(), [](const PointMatch& m) {
            return static_cast<char>(m.status != MatchStatus::outside && m.status != MatchStatus::noTexture);
        });
        return tried;
    }

    // Tries the points that were looked for in vain where neighbours lead, and again with what that has found.
    void spread() {
        std::vector<char> fresh = foundOnes();  // found in the round before
        for (int round = 0; round < kMaxRounds; ++round) {
            const std::vector<char> found = foundOnes();
            std::vector<std::size_t> open;
            std::vector<std::size_t> near;
            for (std::size_t i = 0; i < matches.size(); ++i) {
                // Neighbours do not settle what is ambiguous: in a repeated pattern they may all be a period off.
                const MatchStatus status = matches[i].status;
                if (status == MatchStatus::noMatch || status == MatchStatus::inconsistent) {
                    neighbours.around(i, kSurfaces, found, near);
                    if (std::any_of(near.begin(), near.end(), [&](std::size_t k) { return fresh[k] != 0; })) {
                        open.push_back(i);
                    }
                }
            }
            std::vector<PointMatch> results(open.size());
            std::vector<std::size_t> places(open.size());
            std::iota(places.begin(), places.end(), std::size_t{0});
            forEach("filling", places, [&](PointMatcher& matcher, std::size_t k) {
                results[k] = matcher.near(points[open[k]], surfacesAround(open[k], found));
            });
            std::fill(fresh.begin(), fresh.end(), char{0});
            bool any = false;
            for (std::size_t k = 0; k < open.size(); ++k) {
                if (results[k].status == MatchStatus::ok) {
                    matches[open[k]] = results[k];
                    fresh[open[k]] = 1;
                    any = true;
                }
            }
            if (!any) {
                return;
            }
        }
    }

    std::vector<Surface> surfacesAround(std::size_t i, const std::vector<char>& found) const {
        std::vector<std::size_t> near;
        neighbours.around(i, kSurfaces, found, near);
        return surfacesOf(near);
    }

    std::vector<Surface> surfacesOf(const std::vector<std::size_t>& near) const {
        std::vector<Surface> surfaces(near.size());
        std::transform(near.begin(), near.end(), surfaces.begin(),
                       [this](std::size_t k) { return matches[k].fitted.surface; });
        return surfaces;
    }

    // Leaves out small groups of points that agree with each other alone, while others around them do not; and single
    // points and pairs where the points around them were looked for in vain, as a false match would be.
    void dropIslands() {
        const std::vector<char> found = foundOnes();
        const std::vector<char> tried = triedOnes();
        std::vector<std::size_t> group(matches.size());  // a point of the same group, towards its first
        std::iota(group.begin(), group.end(), std::size_t{0});
        const auto firstOf = [&](std::size_t i) {
            while (group[i] != i) {
                i = group[i] = group[group[i]];
            }
            return i;
        };
        std::vector<std::size_t> strangers(matches.size());  // around a point, not agreeing with it
        std::vector<std::size_t> failures(matches.size());   // around a point, not found
        std::vector<std::size_t> near;
        for (std::size_t i = 0; i < matches.size(); ++i) {
            if (found[i] == 0) {
                continue;
            }
            neighbours.around(i, kJudges, tried, near);
            for (const std::size_t k : near) {
                if (found[k] == 0) {
                    failures[i] += 1;
                } else if (agree(i, k)) {
                    const std::size_t a = firstOf(i);
                    const std::size_t b = firstOf(k);
                    group[std::max(a, b)] = std::min(a, b);
                } else {
                    strangers[i] += 1;
                }
            }
        }
        std::vector<std::size_t> members(matches.size());
        std::vector<std::size_t> opponents(matches.size());
        for (std::size_t i = 0; i < matches.size(); ++i) {
            if (found[i] != 0) {
                members[firstOf(i)] += 1;
                opponents[firstOf(i)] += strangers[i];
            }
        }
        for (std::size_t i = 0; i < matches.size(); ++i) {
            const std::size_t first = firstOf(i);
            const bool isIsland = members[first] < kMinIsland && opponents[first] >= kMinOpponents;
            const bool isChance = members[first] < kMinAmongFailures && 2 * failures[i] >= kJudges;
            if (found[i] != 0 && (isIsland || isChance)) {
                matches[i].status = MatchStatus::inconsistent;
            }
        }
    }

    // Whether the surface of one of two points leads to the other.
    bool agree(std::size_t i, std::size_t k) const {
        const FittedSurface& a = matches[i].fitted;
        const FittedSurface& b = matches[k].fitted;
        const Point2d& p = a.surface.at;
        const Point2d& q = b.surface.at;
        const double limit = kConsentPixels + kConsentPixelsPerPixel * std::hypot(p.x - q.x, p.y - q.y);
        return std::fabs(a.surface.rhoAt(q) - b.surface.rho) * b.pixelsPerRho < limit ||
               std::fabs(b.surface.rhoAt(p) - a.surface.rho) * a.pixelsPerRho < limit;
    }

    const MatchInput& input;
    const std::vector<Point2d>& points;
    CameraView left;
    CameraView right;
    Transfer toRight;
    Transfer toLeft;
    Neighbours neighbours;
    tbb::task_arena arena;
    tbb::enumerable_thread_specific<PointMatcher> matchers;
    std::vector<PointMatch> matches;
};

}  // namespace

std::vector<PointMatch> matchPoints(const MatchInput& input, const std::vector<Point2d>& points) {
    return Run(input, points)();
}

std::vector<PointMatch> matchPixels(const MatchInput& input) {
    const std::vector<Point2d> grid = gridPoints(input.left, kDenseStep);
    MatchInput coarse = input;
    coarse.reach = 2.0 * kDenseStep;
    std::vector<PointMatch> known = matchPoints(input, grid);
    return Run(coarse, grid).fill(std::move(known));
}

}  // namespace zelm::measure
