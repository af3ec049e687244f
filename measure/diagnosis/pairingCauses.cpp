#include "pairingCauses.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace zelm::measure {
namespace {

// A left image and the right one that it fits, of another view.
struct Arc {
    std::size_t left = 0;
    std::size_t right = 0;
    auto operator<=>(const Arc&) const = default;
};

class CauseFinder {
public:
    explicit CauseFinder(const SetJudgement& given) : judgement(given), isShifted(given.views.size(), false) {}

    std::vector<SetCause> run() {
        if (!judgement.isDetermined && judgement.agreeing == 0) {
            add({SetCauseKind::undetermined, {true, true}, 0, false, 0, viewsOf(ViewFate::unknown)});
        } else if (judgement.agreeing == 0) {
            add({SetCauseKind::noAgreement, {}, 0, false, 0, viewsOf(ViewFate::unknown)});
        }
        if (judgement.isSideMirrored) {
            SetCause cause{SetCauseKind::sideMirrored, judgement.mayBeMirrored, 0, false, 0, {}};
            for (std::size_t i = 0; i < judgement.views.size(); ++i) {
                if (judgement.views[i].fate != ViewFate::unread) {
                    cause.views.push_back(i);
                }
            }
            add(std::move(cause));
        }
        tellOrder();
        tellStored();
        tellCopies();
        add({SetCauseKind::exchangedImages, {true, true}, 0, false, 0, viewsOf(ViewFate::exchanged)});
        add({SetCauseKind::sameImages, {true, true}, 0, false, 0, viewsOf(ViewFate::sameImages)});
        add({SetCauseKind::otherSession, {}, 0, false, 0, viewsOf(ViewFate::otherSession), judgement.session});
        SetCause nothing{SetCauseKind::nothingFits, {}, 0, false, 0, viewsOf(ViewFate::nothingFits)};
        std::erase_if(nothing.views, [&](std::size_t view) { return isShifted[view]; });
        add(std::move(nothing));
        std::stable_sort(causes.begin(), causes.end(),
                         [](const SetCause& a, const SetCause& b) { return a.views.size() > b.views.size(); });
        SetCause same{SetCauseKind::sameViews, {true, true}, 0, false, 0, {}};
        for (std::size_t i = 0; i < judgement.views.size(); ++i) {
            if (judgement.views[i].sameView != kNoImage && judgement.views[i].fate != ViewFate::copy) {
                same.views.push_back(i);
            }
        }
        add(std::move(same));
        return std::move(causes);
    }

private:
    void add(SetCause cause) {
        if (!cause.views.empty()) {
            causes.push_back(std::move(cause));
        }
    }

    std::vector<std::size_t> viewsOf(ViewFate fate) const {
        std::vector<std::size_t> views;
        for (std::size_t i = 0; i < judgement.views.size(); ++i) {
            if (judgement.views[i].fate == fate) {
                views.push_back(i);
            }
        }
        return views;
    }

    std::vector<Arc> arcs() const {
        std::vector<Arc> list;
        for (std::size_t i = 0; i < judgement.views.size(); ++i) {
            const auto& fits = judgement.views[i].fitsImage;
            if (judgement.views[i].fate == ViewFate::fits) {
                continue;
            }
            if (fits[kLeft] != kNoImage) {
                list.push_back({i, fits[kLeft]});
            }
            if (fits[kRight] != kNoImage) {
                list.push_back({fits[kRight], i});
            }
        }
        std::sort(list.begin(), list.end());
        list.erase(std::unique(list.begin(), list.end()), list.end());
        return list;
    }

    std::size_t turnOf(const Arc& arc) const {
        const std::size_t n = judgement.views.size();
        return (arc.left + n - arc.right) % n;
    }

    // Of images that fit those of other views: how the lists must be put in order.
    void tellOrder() {
        std::vector<Arc> list = arcs();
        if (list.empty()) {
            return;
        }
        const bool isOneExchange = list.size() == 2 && list[0].left == list[1].right && list[0].right == list[1].left;
        std::map<std::size_t, std::size_t> turns;
        for (const Arc& arc : list) {
            turns[turnOf(arc)] += 1;
        }
        const auto most = std::max_element(turns.begin(), turns.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        std::vector<std::size_t> explained;
        if (!isOneExchange && most->second >= 2 && 2 * most->second > list.size()) {
            explained = tellShift(list, most->first);
        }
        tellExchanges(list, explained);
        SetCause others{SetCauseKind::otherImages, {true, true}, 0, false, 0, {}};
        for (const std::size_t view : viewsOf(ViewFate::otherImage)) {
            if (std::find(explained.begin(), explained.end(), view) == explained.end()) {
                others.views.push_back(view);
            }
        }
        add(std::move(others));
    }

    // Takes the arcs of a shift out of the list; gives the views that it explains.
    std::vector<std::size_t> tellShift(std::vector<Arc>& list, std::size_t turn) {
        const auto n = static_cast<int>(judgement.views.size());
        SetCause shift{SetCauseKind::shifted, {true, true}, 0, false, 0, {}};
        int forwards = 0;
        int backwards = 0;
        std::vector<std::size_t> views;
        for (const Arc& arc : list) {
            if (turnOf(arc) == turn) {
                (arc.left > arc.right ? forwards : backwards) += 1;
                views.push_back(arc.left);
                views.push_back(arc.right);
            }
        }
        shift.isCyclic = forwards > 0 && backwards > 0;
        const int offset = static_cast<int>(turn);
        shift.offset = forwards >= backwards ? offset : offset - n;
        std::erase_if(list, [&](const Arc& arc) { return turnOf(arc) == turn; });
        std::sort(views.begin(), views.end());
        views.erase(std::unique(views.begin(), views.end()), views.end());
        shift.views = partOfShift(views);
        add(shift);
        for (const std::size_t view : shift.views) {
            isShifted[view] = true;
        }
        return shift.views;
    }

    void tellExchanges(std::vector<Arc>& list, std::vector<std::size_t>& explained) {
        for (const Arc& arc : list) {
            const Arc opposite{arc.right, arc.left};
            if (arc.left < arc.right && std::find(list.begin(), list.end(), opposite) != list.end()) {
                add({SetCauseKind::exchangedViews, {true, true}, 0, false, 0, {arc.left, arc.right}});
                explained.push_back(arc.left);
                explained.push_back(arc.right);
            }
        }
    }

    // With those between them whose partners the shift has pushed out of the set.
    std::vector<std::size_t> partOfShift(const std::vector<std::size_t>& views) const {
        std::vector<std::size_t> part;
        for (std::size_t i = views.front(); i <= views.back(); ++i) {
            const ViewFate fate = judgement.views[i].fate;
            const bool isListed = std::find(views.begin(), views.end(), i) != views.end();
            if (fate == ViewFate::nothingFits || (isListed && fate == ViewFate::otherImage)) {
                part.push_back(i);
            }
        }
        return part;
    }

    void tellStored() {
        std::map<std::tuple<bool, Side, int>, std::vector<std::size_t>> groups;
        for (const std::size_t i : viewsOf(ViewFate::stored)) {
            const ViewJudgement& view = judgement.views[i];
            groups[{view.storing.isMirrored, view.side, view.storing.isMirrored ? 0 : view.storing.quarterTurns}]
                .push_back(i);
        }
        for (const auto& [key, views] : groups) {
            const auto& [isMirrored, side, turns] = key;
            add({isMirrored ? SetCauseKind::mirrored : SetCauseKind::turned,
                 {side == kLeft, side == kRight},
                 0,
                 false,
                 turns,
                 views});
        }
    }

    void tellCopies() {
        for (const Side side : {kLeft, kRight}) {
            SetCause cause{SetCauseKind::copies, {side == kLeft, side == kRight}, 0, false, 0, {}};
            for (const std::size_t i : viewsOf(ViewFate::copy)) {
                if (judgement.views[i].side == side) {
                    cause.views.push_back(i);
                }
            }
            add(std::move(cause));
        }
    }

    const SetJudgement& judgement;
    std::vector<bool> isShifted;  // of each view, that a shift explains it
    std::vector<SetCause> causes;
};

}  // namespace

std::vector<SetCause> causesOf(const SetJudgement& judgement) {
    return CauseFinder(judgement).run();
}

}  // namespace zelm::measure
