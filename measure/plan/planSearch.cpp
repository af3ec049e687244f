#include "planSearch.h"

#include <algorithm>
#include <limits>

namespace zelm::measure {
namespace {

constexpr double kNone = std::numeric_limits<double>::infinity();
constexpr double kOtherPart = 0.01;      // of the criterion that is not asked for
constexpr double kGain = 1e-4;           // relative, that an exchange is worth
constexpr int kMaxSweeps = 4;            // of exchanges
constexpr std::size_t kManyViews = 60;   // of which one matters little
constexpr std::size_t kFinalists = 100;  // by the rms, of which the worst length is looked at

}  // namespace

PlanSearch::PlanSearch(const std::vector<PlanCandidate>& c, const TestLengths& l, bool worst, const PlanMatrix& s)
    : candidates(&c), lengths(&l), byWorst(worst), start(s), isChosen(c.size(), 0) {
    list.reserve(c.size());
}

double PlanSearch::valueOf(const PlanMatrix& information) const {
    if (!byWorst) {
        return lengths->rms(information).value_or(kNone);
    }
    const auto score = lengths->score(information);
    return score ? score->worst + kOtherPart * score->rms : kNone;
}

PlanSearch::Choice PlanSearch::best(const PlanMatrix& base) const {
    std::vector<Choice> choices;
    choices.reserve(candidates->size());
    for (std::size_t i = 0; i < candidates->size(); ++i) {
        if (isChosen[i] == 0) {
            choices.push_back({i, lengths->rms(base + of(i)).value_or(kNone)});
        }
    }
    const auto isLess = [](const Choice& a, const Choice& b) { return a.value < b.value; };
    if (byWorst) {
        const std::size_t finalists = std::min(kFinalists, choices.size());
        std::partial_sort(choices.begin(), choices.begin() + static_cast<std::ptrdiff_t>(finalists), choices.end(),
                          isLess);
        choices.resize(finalists);
        for (Choice& choice : choices) {
            choice.value = valueOf(base + of(choice.candidate));
        }
    }
    const auto least = std::min_element(choices.begin(), choices.end(), isLess);
    return least == choices.end() ? Choice{candidates->size(), kNone} : *least;
}

PlanMatrix PlanSearch::sumWithout(std::size_t place) const {
    PlanMatrix sum = start;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i != place) {
            sum += of(list[i]);
        }
    }
    return sum;
}

std::size_t PlanSearch::next() const {
    return best(sum()).candidate;
}

void PlanSearch::add(std::size_t candidate) {
    list.push_back(candidate);
    isChosen[candidate] = 1;
}

void PlanSearch::dropLeast() {
    std::size_t least = 0;
    double value = kNone;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const double without = valueOf(sumWithout(i));
        if (without < value) {
            value = without;
            least = i;
        }
    }
    isChosen[list[least]] = 0;
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(least));
}

void PlanSearch::exchange() {
    double value = valueOf(sum());
    bool moved = true;
    const int sweeps = list.size() > kManyViews ? 1 : kMaxSweeps;
    for (int sweep = 0; moved && sweep < sweeps; ++sweep) {
        moved = false;
        for (std::size_t i = 0; i < list.size(); ++i) {
            const Choice choice = best(sumWithout(i));
            if (choice.value < (1.0 - kGain) * value) {
                isChosen[list[i]] = 0;
                isChosen[choice.candidate] = 1;
                list[i] = choice.candidate;
                value = choice.value;
                moved = true;
            }
        }
    }
}

void PlanSearch::order() {
    PlanMatrix sum = start;
    for (auto from = list.begin(); from != list.end(); ++from) {
        double value = kNone;
        auto best = from;
        for (auto i = from; i != list.end(); ++i) {
            const double with = valueOf(sum + of(*i));
            if (with < value) {
                value = with;
                best = i;
            }
        }
        std::iter_swap(from, best);
        sum += of(*from);
    }
}

}  // namespace zelm::measure
