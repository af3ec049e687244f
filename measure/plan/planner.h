// A plan: the pair, its volume and plate, and the views that were taken or are planned.
#ifndef ZELM_MEASURE_PLANNER_H
#define ZELM_MEASURE_PLANNER_H

#include <zelmMeasure.h>

#include <cstdint>
#include <vector>

#include "planSearch.h"

namespace zelm::measure {

class Planner {
public:
    // Throws Fault for options that cannot be meant and data that do not allow a plan.
    Planner(const PlanPair& pair, const Pattern& plate, const ZelmMeasurePlanOptions& options);

    // Each throws Fault; the plan stays as it was then.
    void take(const std::vector<MotionParameters>& poses);
    ZelmMeasurePlanView next() const;
    void fewest(double tolerance, std::size_t most);

    std::size_t views() const { return taken.size() + planned.size(); }
    ZelmMeasurePlanView view(std::size_t index) const;
    ZelmMeasurePlanFigures figures() const;

    // The covariance of the shared parameters that the views give, in the order of SharedParameter.
    PlanMatrix covariance() const;

private:
    // What some views tell.
    struct Knowledge {
        ViewInformation sum;
        std::size_t views = 0;
    };

    const PlanCandidate& at(std::size_t index) const;
    Knowledge knowledge(std::size_t views) const;
    static void add(const ViewInformation& information, Knowledge& knowledge);
    PlanMatrix withHeld(const PlanMatrix& information) const;
    PlanSearch search() const;
    // So many views in all, or as many as there are poses; ends before when the tolerance is met.
    PlanSearch grown(std::size_t most, double tolerance) const;
    PlanSearch shrunk(PlanSearch found, double tolerance) const;
    // Throws Fault, which names the parameter that the views do not determine.
    LengthScore determined(const Knowledge& knowledge) const;
    // Without throwing: zeros.
    LengthScore scoreOrNone(const Knowledge& knowledge) const;
    double criterionOf(const LengthScore& score) const { return byWorst ? score.worst : score.rms; }
    bool meets(const PlanSearch& search, double tolerance) const;
    [[noreturn]] void refuseTolerance(const PlanSearch& search, double tolerance) const;
    ZelmMeasurePlanView describe(const MotionParameters& pose, const Knowledge& after) const;

    PlanPair pair;
    PlanPlate plate;
    PlanBasis basis;
    TestLengths lengths;
    double noise;
    bool byWorst;
    std::vector<PlanCandidate> candidates;
    std::vector<PlanCandidate> taken;
    std::vector<std::size_t> planned;  // of the candidates
};

}  // namespace zelm::measure

// What the handles of the interface point to.
struct ZelmMeasurePlan {
    std::optional<zelm::measure::Planner> planner;  // nothing: the plan was refused
    zelm::measure::ErrorText error;
};

#endif
