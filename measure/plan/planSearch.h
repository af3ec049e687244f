// Which candidates to take: the best next one, and few that meet a tolerance.
#ifndef ZELM_MEASURE_PLAN_SEARCH_H
#define ZELM_MEASURE_PLAN_SEARCH_H

#include <cstddef>
#include <vector>

#include "planCandidates.h"

namespace zelm::measure {

class PlanSearch {
public:
    // `start`: what is known before any candidate is taken, positive definite. The references outlive the search.
    PlanSearch(const std::vector<PlanCandidate>& candidates, const TestLengths& lengths, bool byWorst,
               const PlanMatrix& start);

    // The candidate that makes the criterion least; one past the last when all are chosen.
    std::size_t next() const;
    void add(std::size_t candidate);
    // Takes away the view that matters least.
    void dropLeast();
    // Exchanges single views for better ones until none gets better.
    void exchange();
    // The best first.
    void order();

    const std::vector<std::size_t>& chosen() const { return list; }
    PlanMatrix sum() const { return sumWithout(list.size()); }

private:
    struct Choice {
        std::size_t candidate;
        double value;
    };

    // The criterion, with a small part of the other so that it never rests on a plateau.
    double valueOf(const PlanMatrix& information) const;
    Choice best(const PlanMatrix& base) const;
    PlanMatrix sumWithout(std::size_t place) const;
    const PlanMatrix& of(std::size_t candidate) const { return (*candidates)[candidate].information.reduced; }

    const std::vector<PlanCandidate>* candidates;
    const TestLengths* lengths;
    bool byWorst;
    PlanMatrix start;
    std::vector<std::size_t> list;
    std::vector<char> isChosen;
};

}  // namespace zelm::measure

#endif
