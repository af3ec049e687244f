#include "referenceView.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "failure.h"

namespace zelm::tool {
namespace {

bool isSame(const ViewFiles& a, const ViewFiles& b) {
    return a.left == b.left && a.right == b.right;
}

bool isPerspectivePair(const PairSettings& s) {
    return s.leftModel != ZELM_CAMERA_PARALLEL && s.rightModel != ZELM_CAMERA_PARALLEL;
}

std::string nameOf(const ViewFiles& view) {
    return (view.left.empty() ? view.right : view.left).filename().string();
}

}  // namespace

ReferenceReader::ReferenceReader(const std::vector<ViewFiles>& views, const std::optional<int>& wantedView,
                                 const PairSettings& pairSettings, const Console& pairConsole)
    : given(views), wanted(wantedView), settings(pairSettings), console(pairConsole) {
    if (!wanted) {
        return;
    }
    if (static_cast<std::size_t>(*wanted) >= given.size()) {
        failUsage("--reference {}: there are {} views, counted from 0", *wanted, given.size());
    }
    const ViewFiles& view = given[static_cast<std::size_t>(*wanted)];
    if (view.left.empty() || view.right.empty()) {
        failUsage("--reference {}: a parallel camera is calibrated from its one image: give both images of that view",
                  *wanted);
    }
    reason = fmt::format("as --reference {} asks", *wanted);
}

PairReading ReferenceReader::read() {
    std::vector<ViewFiles> views = given;
    if (wanted) {
        std::rotate(views.begin(), views.begin() + *wanted, views.begin() + *wanted + 1);
    }
    PairReading reading = readPairs(views, settings, console);
    if (wanted) {
        const auto skipped = std::find_if(reading.skipped.begin(), reading.skipped.end(),
                                          [&](const SkippedView& s) { return isSame(s.files, views.front()); });
        if (skipped != reading.skipped.end()) {
            failData("{}: --reference {}: the plate of this view cannot be the world frame: choose another view",
                     skipped->reason, *wanted);
        }
    }
    sharp = sharpnessOf(reading, settings.plate, console);
    if (wanted || !isPerspectivePair(settings)) {
        return reading;
    }
    if (!isSame(reading.used.front(), given.front())) {
        reason = fmt::format("as view 0 ({}) was skipped", nameOf(given.front()));
    }
    std::vector<bool> isFit(reading.used.size(), true);
    for (const BlurredImage& blurred : blurredImages(sharp)) {
        isFit[blurred.view] = false;
    }
    if (const std::size_t first = numberOf(reading.used.front()); !isFit.front()) {
        if (const auto best = sharpest(isFit)) {
            reason = fmt::format("as view {} ({}) is less sharp than the others", first, nameOf(given[first]));
            putFirst(reading, *best);
        }
    }
    return reading;
}

bool ReferenceReader::replace(PairReading& reading, const std::vector<std::string>& leftOut) {
    if (wanted || leftOut.empty() || leftOut.front().empty() || !isPerspectivePair(settings)) {
        return false;
    }
    std::vector<bool> isFit(reading.used.size(), false);
    for (std::size_t i = 0; i < std::min(isFit.size(), leftOut.size()); ++i) {
        isFit[i] = leftOut[i].empty();
    }
    const auto best = sharpest(isFit);
    if (!best) {
        return false;
    }
    const std::size_t first = numberOf(reading.used.front());
    reason = fmt::format("as view {} ({}) takes no part", first, nameOf(given[first]));
    putFirst(reading, *best);
    return true;
}

void ReferenceReader::setAside(PairReading& reading, const std::vector<std::string>& reasons) {
    if (std::all_of(reasons.begin(), reasons.end(), [](const std::string& r) { return r.empty(); })) {
        return;
    }
    if (wanted && !reasons.front().empty()) {
        failData("{}: --reference {}: the plate of this view cannot be the world frame: choose another view",
                 reasons.front(), *wanted);
    }
    std::vector<ViewFiles> good;
    std::vector<ViewSharpness> goodSharp;
    std::vector<SkippedView> skipped = std::move(reading.skipped);
    for (std::size_t i = 0; i < reading.used.size(); ++i) {
        if (reasons[i].empty()) {
            good.push_back(reading.used[i]);
            goodSharp.push_back(sharp[i]);
        } else {
            skipped.push_back({reading.used[i], reasons[i], {}, true});
        }
    }
    sharp = std::move(goodSharp);
    if (!reasons.front().empty()) {
        const std::size_t first = numberOf(reading.used.front());
        reason = fmt::format("as view {} ({}) takes no part", first, nameOf(given[first]));
        if (const auto best = sharpest(std::vector<bool>(good.size(), true))) {
            const auto at = static_cast<std::ptrdiff_t>(*best);
            std::rotate(good.begin(), good.begin() + at, good.begin() + at + 1);
            std::rotate(sharp.begin(), sharp.begin() + at, sharp.begin() + at + 1);
        }
    }
    reading = readPairs(good, settings, console);
    reading.skipped.insert(reading.skipped.begin(), skipped.begin(), skipped.end());
}

std::optional<std::size_t> ReferenceReader::sharpest(const std::vector<bool>& isFit) const {
    std::optional<std::size_t> best;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < std::min(isFit.size(), sharp.size()); ++i) {
        if (isFit[i] && sharp[i][0] && sharp[i][1]) {
            if (const double blur = std::max(sharp[i][0]->largest, sharp[i][1]->largest); blur < least) {
                least = blur;
                best = i;
            }
        }
    }
    return best;
}

// The core takes the first view for the world: it reads them in another order.
void ReferenceReader::putFirst(PairReading& reading, std::size_t place) {
    std::vector<ViewFiles> views = reading.used;
    const auto at = static_cast<std::ptrdiff_t>(place);
    std::rotate(views.begin(), views.begin() + at, views.begin() + at + 1);
    std::rotate(sharp.begin(), sharp.begin() + at, sharp.begin() + at + 1);
    std::vector<SkippedView> skipped = std::move(reading.skipped);
    reading = readPairs(views, settings, console);
    reading.skipped.insert(reading.skipped.begin(), skipped.begin(), skipped.end());
}

std::size_t ReferenceReader::numberOf(const ViewFiles& view) const {
    const auto place = std::find_if(given.begin(), given.end(), [&](const ViewFiles& v) { return isSame(v, view); });
    return static_cast<std::size_t>(place - given.begin());
}

ReferenceView ReferenceReader::described(const PairReading& reading) const {
    const ViewFiles& view = reading.used.front();
    return {numberOf(view), reason};
}

}  // namespace zelm::tool
