// What lengths of known size tell of a rig, in words, as JSON and as CSV.
#ifndef ZELM_TOOL_LENGTH_REPORT_H
#define ZELM_TOOL_LENGTH_REPORT_H

#include <zelmMeasure.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace zelm::tool {

struct CheckedLength {
    std::string view;  // left image; empty for a file of pixel pairs
    std::string from;
    std::string to;
    double nominal = 0.0;
    double measured = 0.0;
    Point3d middle{};
    double depth = 0.0;
    std::int32_t region = 0;

    double error() const { return measured - nominal; }
};

struct CheckedPlate {
    std::string view;  // left image
    ZelmMeasurePlateFit fit{};
};

struct LengthCheck {
    std::string units;  // empty: not known
    std::vector<CheckedLength> lengths;
    std::vector<CheckedPlate> plates;
    ZelmMeasureLengthSummary summary{};
    std::optional<double> tolerance;

    bool isExceeded() const;
};

std::string lengthText(const LengthCheck& check);
nlohmann::ordered_json lengthJson(const LengthCheck& check);
std::string lengthCsv(const LengthCheck& check);
// Of a check whose tolerance is exceeded: one line that says so and what to do.
std::string exceededText(const LengthCheck& check);

}  // namespace zelm::tool

#endif
