#include "pointMatcher.h"

#include <algorithm>
#include <cmath>

#include "stripSearch.h"

namespace zelm::measure {
namespace {

constexpr double kZoneRatio = 1.25;   // of depths that share a template: beyond, the two views differ too much
constexpr double kEvenZones = 4.0;    // where depths have no ratio: a parallel camera, or no farthest depth
constexpr double kMaxZones = 64.0;    //
constexpr int kReach = 2;             // pixels by which strips go beyond their zone
constexpr double kCoarseScore = 0.3;  // of a candidate: its window is not yet turned to its surface
constexpr double kCoarseLead = 0.3;   // candidates that score less than the best by this are left out
constexpr std::size_t kMaxCandidates = 4;
constexpr int kPeakDistance = 3;         // pixels between candidates
constexpr double kNear = 4.0;            // pixels around the place where neighbours expect a point
constexpr double kNearness = 0.4;        // half windows within which texture counts: a standard deviation
constexpr double kSamePixels = 0.5;      // by which the same surface may differ along the line,
constexpr double kSameSlope = 0.05;      // and a pixel
constexpr double kLeadNear = 0.2;        // by which another place may score better on the way back, if neighbours agree
constexpr double kMinShare = 0.4;        // of the window that must lie on the surface, where neighbours expect it,
constexpr double kMinShareAlone = 0.6;   // and where nothing speaks for it but its looks
constexpr double kMinCentreShare = 0.6;  // and of its middle
constexpr double kLeadOfBest = 1.3;      // factor by which the best place must excel every other one
constexpr double kMaxStrip = 16384.0;    // pixels

double distance(Point2d a, Point2d b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// Carries the pixels of a strip or patch whose rows run along a direction: (column, row) is the centre.
Matrix3 along(Point2d direction, Point2d centre, double column, double row) {
    const Point2d d = direction;
    return {d.x, -d.y, centre.x - column * d.x + row * d.y, d.y, d.x, centre.y - column * d.y - row * d.x, 0.0,
            0.0, 1.0};
}

}  // namespace

PointMatcher::PointMatcher(const CameraView& leftView, const CameraView& rightView, const Transfer& transferToRight,
                           const Transfer& transferToLeft, const MatchSettings& s)
    : left(leftView),
      right(rightView),
      toRight(transferToRight),
      toLeft(transferToLeft),
      settings(s),
      fit(leftView, rightView, transferToRight, s.half, s.noise),
      side(2 * s.half + 1),
      pattern(static_cast<std::size_t>(side) * static_cast<std::size_t>(side)) {
    const double width = kNearness * s.half;
    for (int y = -s.half; y <= s.half; ++y) {
        for (int x = -s.half; x <= s.half; ++x) {
            nearness.push_back(static_cast<float>(std::exp(-0.5 * (x * x + y * y) / (width * width))));
        }
    }
}

// Whether the pattern just cut, whose rows run along the epipolar line, tells the place on it well enough. Texture
// counts by its nearness to the point: beside an edge, that of another surface would promise what it cannot keep.
bool PointMatcher::hasTexture() const {
    double energy = 0.0;
    double weight = 0.0;
    for (int row = 0; row < side; ++row) {
        const std::ptrdiff_t begin = static_cast<std::ptrdiff_t>(row) * side;
        for (std::ptrdiff_t i = begin + 1; i < begin + side - 1; ++i) {
            const double slope =
                0.5 * (pattern[static_cast<std::size_t>(i + 1)] - pattern[static_cast<std::size_t>(i - 1)]);
            energy += nearness[static_cast<std::size_t>(i)] * slope * slope;
            weight += nearness[static_cast<std::size_t>(i)];
        }
    }
    const double variance = settings.noise * settings.noise;
    energy -= 0.5 * variance * weight;  // what noise alone has
    return energy > 0.0 && std::sqrt(2.0 * variance / energy) <= settings.worstPrecision;
}

bool PointMatcher::cutPattern(const CameraView& view, const Matrix3& toView) {
    if (!view.shows(toView, side, side)) {
        return false;
    }
    view.warp(toView, side, side, pattern.data());
    return true;
}

// Cuts the stretch of a view between two undistorted pixels of a line, as far as whole windows are seen.
bool PointMatcher::cutStrip(const CameraView& view, Point2d from, Point2d to) {
    const double length = distance(from, to);
    if (!(length > 1e-6 && length < kMaxStrip)) {
        return false;
    }
    const int margin = settings.half + kReach;
    strip.direction = {(to.x - from.x) / length, (to.y - from.y) / length};
    strip.width = static_cast<int>(std::ceil(length)) + 1 + 2 * margin;
    int first = 0;
    const auto toIdeal = [&](int column) { return along(strip.direction, from, margin - column, settings.half); };
    if (!view.shows(toIdeal(0), strip.width, side)) {
        int last = strip.width - 1;
        while (first <= last && !view.shows(toIdeal(first), 1, side)) {
            ++first;
        }
        while (last > first && !view.shows(toIdeal(last), 1, side)) {
            --last;
        }
        strip.width = last - first + 1;
        if (strip.width < side + 2) {
            return false;
        }
    }
    strip.origin = {from.x + (first - margin) * strip.direction.x, from.y + (first - margin) * strip.direction.y};
    strip.pixels.resize(static_cast<std::size_t>(strip.width) * static_cast<std::size_t>(side));
    view.warp(toIdeal(first), strip.width, side, strip.pixels.data());
    return true;
}

void PointMatcher::searchZone(Point2d ideal, Interval zone) {
    const double middle = zone.middle();
    const Surface surface = toRight.facingSurface(ideal, middle);
    const auto toSource = inverse(toRight.homographyOf(surface));
    if (!toSource || !cutStrip(right, toRight.targetOf(ideal, zone.low), toRight.targetOf(ideal, zone.high))) {
        return;
    }
    const Matrix3 inTarget = along(strip.direction, toRight.targetOf(ideal, middle), settings.half, settings.half);
    if (!cutPattern(left, product(*toSource, inTarget))) {
        return;
    }
    std::array<StripMatch, kMaxCandidates> matches;
    const std::size_t count =
        searchStrip(pattern.data(), side, strip.pixels.data(), strip.width, kCoarseScore, kPeakDistance, matches);
    for (std::size_t i = 0; i < count; ++i) {
        const Point2d target = strip.at(matches[i].column);
        const double rho = toRight.rhoFor(ideal, target, strip.direction);
        candidates.push_back({matches[i].score, target, toRight.facingSurface(ideal, rho)});
    }
}

void PointMatcher::searchAll(Point2d ideal) {
    candidates.clear();
    const bool byRatio = !toRight.isParallel() && interval.low > 0.0;
    const double ratio = interval.high / interval.low;
    const double steps = byRatio ? std::ceil(std::log(ratio) / std::log(kZoneRatio)) : kEvenZones;
    const int zones = static_cast<int>(std::clamp(steps, 1.0, kMaxZones));
    for (int i = 0; i < zones; ++i) {
        const auto border = [&](int k) {
            const double part = static_cast<double>(k) / zones;
            return byRatio ? interval.low * std::pow(ratio, part)
                           : interval.low + part * (interval.high - interval.low);
        };
        searchZone(ideal, {border(i), border(i + 1)});
    }
    thinOut();
}

// Looks around the place where a surface brings its pixel.
void PointMatcher::searchNear(const Surface& surface) {
    const Point2d middle = toRight.targetOf(surface.at, surface.rho);
    const Point2d motion = toRight.motionOf(surface.at, surface.rho);
    const double scale = kNear / std::hypot(motion.x, motion.y);
    const Point2d step{scale * motion.x, scale * motion.y};
    const auto toSource = inverse(toRight.homographyOf(surface));
    if (!toSource || !cutStrip(right, {middle.x - step.x, middle.y - step.y}, {middle.x + step.x, middle.y + step.y}) ||
        !cutPattern(left, product(*toSource, along(strip.direction, middle, settings.half, settings.half)))) {
        return;
    }
    std::array<StripMatch, 1> found;
    if (searchStrip(pattern.data(), side, strip.pixels.data(), strip.width, kCoarseScore, kPeakDistance, found) == 1) {
        const Point2d target = strip.at(found[0].column);
        Surface start = surface;
        start.rho = toRight.rhoFor(surface.at, target, strip.direction);
        candidates.push_back({found[0].score, target, start});
    }
}

// Keeps the best candidates, each of them once.
void PointMatcher::thinOut() {
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score > b.score; });
    std::vector<Candidate> kept;
    for (const Candidate& c : candidates) {
        const auto isNear = [&](const Candidate& k) { return distance(k.target, c.target) < kPeakDistance; };
        if (kept.size() < kMaxCandidates && c.score >= candidates.front().score - kCoarseLead &&
            std::none_of(kept.begin(), kept.end(), isNear)) {
            kept.push_back(c);
        }
    }
    candidates = std::move(kept);
}

// Fits surfaces to the candidates and takes the best one, or tells that there is none that stands out.
void PointMatcher::settle(PointMatch& match, double leastShare) {
    double second = 0.0;
    double best = 0.0;
    Point2d place{};
    match.status = MatchStatus::noMatch;
    for (const Candidate& c : candidates) {
        const auto fitted = fit(c.surface);
        if (!fitted) {
            continue;
        }
        const Surface& s = fitted->surface;
        const Point2d target = toRight.targetOf(s.at, s.rho);
        const double merit = fitted->score * fitted->share * fitted->centreShare;
        const bool isSame = best > 0.0 && distance(target, place) < kPeakDistance;
        if (merit > best) {
            second = isSame ? second : best;
            best = merit;
            place = target;
            match.fitted = *fitted;
        } else if (!isSame) {
            second = std::max(second, merit);
        }
    }
    const FittedSurface& f = match.fitted;
    if (best <= 0.0 || f.score < settings.minScore || f.share < leastShare || f.centreShare < kMinCentreShare) {
        return;
    }
    match.right = right.distorted(place);
    match.status = best < kLeadOfBest * second ? MatchStatus::ambiguous : MatchStatus::ok;
}

// Searches the left image for the window found in the right one: whether the start is a best place, or one that scores
// less by `lead` at most.
bool PointMatcher::returns(const PointMatch& match, double lead) {
    const Surface& surface = match.fitted.surface;
    const Point2d target = toRight.targetOf(surface.at, surface.rho);
    const Interval back = toLeft.searchInterval(target);
    if (back.isEmpty() || !cutStrip(left, toLeft.targetOf(target, back.low), toLeft.targetOf(target, back.high))) {
        return false;
    }
    const Matrix3 inSource = along(strip.direction, surface.at, settings.half, settings.half);
    if (!cutPattern(right, product(toRight.homographyOf(surface), inSource))) {
        return false;
    }
    std::array<StripMatch, kMaxCandidates> found;
    const std::size_t count =
        searchStrip(pattern.data(), side, strip.pixels.data(), strip.width, kCoarseScore, kPeakDistance, found);
    for (std::size_t i = 0; i < count && found[i].score >= found[0].score - lead; ++i) {
        if (distance(strip.at(found[i].column), surface.at) <= settings.returnTolerance) {
            return true;
        }
    }
    return false;
}

// The surfaces continued to a pixel, without those that say the same of it as an earlier one.
std::vector<Surface> PointMatcher::differing(std::span<const Surface> surfaces, Point2d ideal) const {
    std::vector<Surface> kept;
    for (const Surface& surface : surfaces) {
        const Surface here = surface.movedTo(ideal);
        const Point2d motion = toRight.motionOf(ideal, here.rho);
        const double pixels = std::hypot(motion.x, motion.y);
        const auto isSame = [&](const Surface& k) {
            return pixels * std::fabs(k.rho - here.rho) < kSamePixels &&
                   pixels * std::hypot(k.slopeX - here.slopeX, k.slopeY - here.slopeY) < kSameSlope;
        };
        if (here.rho > interval.low && here.rho < interval.high && std::none_of(kept.begin(), kept.end(), isSame)) {
            kept.push_back(here);
        }
    }
    return kept;
}

// Whether the point can be looked for: sets its status if not.
bool PointMatcher::prepare(PointMatch& match) {
    match.status = MatchStatus::outside;
    const auto ideal = left.undistorted(match.left);
    if (!ideal) {
        return false;
    }
    interval = toRight.searchInterval(*ideal);
    if (interval.isEmpty()) {
        return false;
    }
    const Surface surface = toRight.facingSurface(*ideal, interval.middle());
    match.fitted.surface = surface;
    const Point2d motion = toRight.motionOf(*ideal, surface.rho);
    const double length = std::hypot(motion.x, motion.y);
    const auto toSource = inverse(toRight.homographyOf(surface));
    const Matrix3 inTarget = along({motion.x / length, motion.y / length}, toRight.targetOf(*ideal, surface.rho),
                                   settings.half, settings.half);
    if (!toSource || !cutPattern(left, product(*toSource, inTarget))) {
        return false;
    }
    match.status = MatchStatus::noTexture;
    return hasTexture();
}

PointMatch PointMatcher::operator()(Point2d raw) {
    PointMatch match;
    match.left = raw;
    if (prepare(match)) {
        searchAll(match.fitted.surface.at);
        settle(match, kMinShareAlone);
    }
    if (match.status == MatchStatus::ok && !returns(match, 0.0)) {
        match.status = MatchStatus::inconsistent;
    }
    return match;
}

PointMatch PointMatcher::near(Point2d raw, std::span<const Surface> surfaces) {
    PointMatch match;
    match.left = raw;
    if (prepare(match)) {
        const Point2d ideal = match.fitted.surface.at;
        candidates.clear();
        for (const Surface& surface : differing(surfaces, ideal)) {
            searchNear(surface);
        }
        settle(match, kMinShare);
    }
    if (match.status == MatchStatus::ok && !returns(match, kLeadNear)) {
        match.status = MatchStatus::inconsistent;
    }
    return match;
}

PointMatch PointMatcher::on(Point2d raw, std::span<const Surface> surfaces) {
    PointMatch match;
    match.left = raw;
    if (prepare(match)) {
        const Point2d ideal = match.fitted.surface.at;
        candidates.clear();
        for (const Surface& surface : differing(surfaces, ideal)) {
            candidates.push_back({0.0, {}, surface});
        }
        settle(match, kMinShare);
    }
    return match;
}

}  // namespace zelm::measure
