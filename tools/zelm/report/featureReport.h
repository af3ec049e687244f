// Measured features in words, as CSV and as JSON.
#ifndef ZELM_TOOL_FEATURE_REPORT_H
#define ZELM_TOOL_FEATURE_REPORT_H

#include <zelmMeasure.h>

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "featureNames.h"
#include "savedSummary.h"

namespace zelm::tool {

struct MeasuredFeatures {
    const MeasuredPoints* points = nullptr;
    std::vector<NamedFeature> features;
    std::vector<NamedRelation> relations;
    std::vector<ZelmMeasureFeatureResult> results;
    std::vector<ZelmMeasureRelationResult> related;
    std::vector<std::vector<std::int32_t>> uses;  // of each feature's points
    bool hasCalibration = false;                  // the calibration's part is known
    std::string noiseSource;                      // what the other part is told from
    std::string units = kUnknownUnits;            // of lengths, in words

    std::vector<std::string> leftOut(std::size_t feature) const;
};

std::string featureText(const MeasuredFeatures& measured);
std::string featureCsv(const MeasuredFeatures& measured);
nlohmann::ordered_json featureJson(const MeasuredFeatures& measured);

}  // namespace zelm::tool

#endif
