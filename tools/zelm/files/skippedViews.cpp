#include "skippedViews.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

namespace zelm::tool {
namespace {

bool isOfOneCause(const SkippedView& view) {
    return !view.troubles.empty() &&
           std::all_of(view.troubles.begin(), view.troubles.end(),
                       [&](const ImageTrouble& t) { return t.cause == view.troubles.front().cause; });
}

}  // namespace

SkippedView skippedView(const ViewFiles& files, std::vector<ImageTrouble> troubles) {
    SkippedView view{files, {}, std::move(troubles), false};
    for (const ImageTrouble& trouble : view.troubles) {
        view.reason += fmt::format("{}{}: {}", view.reason.empty() ? "" : "; ", trouble.image.string(), trouble.text);
    }
    return view;
}

std::vector<ImageTrouble> troublesOf(const std::vector<SkippedView>& views) {
    std::vector<ImageTrouble> troubles;
    for (const SkippedView& view : views) {
        troubles.insert(troubles.end(), view.troubles.begin(), view.troubles.end());
    }
    return troubles;
}

FailureCause causeOf(const std::vector<SkippedView>& views) {
    const std::vector<TroubleGroup> groups = groupsOf(troublesOf(views));
    return groups.empty() ? FailureCause{} : FailureCause{groups.front().cause, groups.front().images};
}

std::string mainReasonOf(const std::vector<SkippedView>& views) {
    const std::vector<TroubleGroup> groups = groupsOf(troublesOf(views));
    return !groups.empty() ? groups.front().line : views.empty() ? std::string() : views.front().reason;
}

void warnOfSkipped(const std::vector<SkippedView>& views, const Console& console) {
    std::vector<ImageTrouble> alike;
    std::map<std::string, std::size_t> counts;  // of the views with that cause
    for (const SkippedView& view : views) {
        if (isOfOneCause(view)) {
            alike.insert(alike.end(), view.troubles.begin(), view.troubles.end());
            ++counts[view.troubles.front().cause];
        } else {
            console.warn(fmt::format("skipping a view: {}", view.reason));
        }
    }
    for (const TroubleGroup& group : groupsOf(alike)) {
        const std::size_t count = counts.at(group.cause);
        console.warn(count == 1 ? fmt::format("skipping a view: {}", group.line)
                                : fmt::format("skipping {} views: {}", count, group.line));
    }
}

}  // namespace zelm::tool
