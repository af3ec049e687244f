// A plan of pictures in words that a person can follow, and for machines.
#ifndef ZELM_TOOL_PLAN_LIST_H
#define ZELM_TOOL_PLAN_LIST_H

#include <zelmMeasure.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zelm::tool {

struct PlanList {
    ZelmMeasurePlanOptions options{};  // the volume
    std::string units;
    std::vector<ZelmMeasurePlanView> views;
    ZelmMeasurePlanFigures figures{};
    bool determined = true;    // else the figures say nothing
    std::string undetermined;  // why
};

// "upper left, near (305 mm away, 55 mm left, 40 mm up), tilted by 45 deg to the right, upright; fills ..."
std::string pictureWords(const PlanList& list, const ZelmMeasurePlanView& view);
// The pictures that are still to be taken, numbered on from the taken ones, with a legend.
std::string pictureText(const PlanList& list);
// What the views give.
std::string planText(const PlanList& list);
nlohmann::ordered_json planJson(const PlanList& list);

}  // namespace zelm::tool

#endif
