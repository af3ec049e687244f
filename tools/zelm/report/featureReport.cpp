#include "featureReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "numberText.h"
#include "spacePoints.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::ordered_json;

// One figure, ready to be shown.
struct Figure {
    std::string name;  // of its feature or relation
    const char* quantity;
    const char* unit;  // empty: plate units
    double value;
    bool isKnown;
    double expanded;
    double deviation;
    double noise;
    double calibration;
};

bool hasDirection(std::int32_t kind) {
    return kind != ZELM_MEASURE_FEATURE_POINT && kind != ZELM_MEASURE_FEATURE_SPHERE;
}

bool hasRadius(std::int32_t kind) {
    return kind >= ZELM_MEASURE_FEATURE_CIRCLE;
}

// The word for how far a feature is from its ideal form.
const char* formWord(std::int32_t kind) {
    return kind == ZELM_MEASURE_FEATURE_LINE    ? "straightness"
           : kind == ZELM_MEASURE_FEATURE_PLANE ? "flatness"
                                                : "roundness";
}

std::vector<Figure> figuresOf(const MeasuredFeatures& m) {
    constexpr const char* kQuantities[] = {"X", "Y", "Z", "direction_X", "direction_Y", "direction_Z", "diameter"};
    std::vector<Figure> figures;
    for (std::size_t i = 0; i < m.features.size(); ++i) {
        const std::int32_t kind = m.features[i].kind;
        const ZelmMeasureFeatureResult& r = m.results[i];
        for (std::size_t k = 0; k < ZELM_MEASURE_FEATURE_NUMBERS; ++k) {
            const bool isDirection = k >= 3 && k < 6;
            if ((isDirection && !hasDirection(kind)) || (k == 6 && !hasRadius(kind))) {
                continue;
            }
            const double factor = k == 6 ? 2.0 : 1.0;  // the diameter is what drawings have
            figures.push_back({m.features[i].name, kQuantities[k], isDirection ? "1" : "", factor * r.values[k],
                               r.known == 1, factor * r.expanded[k], factor * r.deviations[k], factor * r.noise[k],
                               factor * r.calibration[k]});
        }
    }
    for (std::size_t i = 0; i < m.relations.size(); ++i) {
        const ZelmMeasureRelationResult& r = m.related[i];
        const bool isAngle = m.relations[i].kind == ZELM_MEASURE_RELATION_ANGLE;
        const double factor = isAngle ? kDegreesPerRadian : 1.0;
        figures.push_back({m.relations[i].name, relationWord(m.relations[i].kind), isAngle ? "deg" : "",
                           factor * r.value, r.known == 1, factor * r.expanded, factor * r.deviation, factor * r.noise,
                           factor * r.calibration});
    }
    return figures;
}

std::string formText(const MeasuredFeatures& m, std::size_t i) {
    const ZelmMeasureFeatureResult& r = m.results[i];
    const NamedFeature& f = m.features[i];
    if (f.kind == ZELM_MEASURE_FEATURE_POINT && r.used == 1) {
        return {};
    }
    std::string text = fmt::format("{}: {} of {} points", f.name, featureWord(f.kind), r.used);
    if (const std::vector<std::string> out = m.leftOut(i); !out.empty()) {
        text += fmt::format(", {} left out ({})", out.size(), fmt::join(out, ", "));
    }
    text += fmt::format("; residuals RMS {:.6f}, worst {:.6f} at {}", r.rms, r.worst,
                        m.points->ids[static_cast<std::size_t>(r.worstPoint)]);
    if (f.kind != ZELM_MEASURE_FEATURE_POINT) {
        text += fmt::format("; {} {:.6f}", formWord(f.kind), r.form);
    }
    if (f.kind == ZELM_MEASURE_FEATURE_CIRCLE) {
        text += fmt::format(", flatness {:.6f}", r.flatness);
    }
    if (r.misfit > 0.0) {
        text += fmt::format("; {:.2f} times what the points' noise makes", r.misfit);
    }
    return text + "\n";
}

}  // namespace

std::vector<std::string> MeasuredFeatures::leftOut(std::size_t feature) const {
    std::vector<std::string> ids;
    for (std::size_t k = 0; k < uses[feature].size(); ++k) {
        if (uses[feature][k] == 0) {
            ids.push_back(points->ids[static_cast<std::size_t>(features[feature].points[k])]);
        }
    }
    return ids;
}

std::string featureText(const MeasuredFeatures& m) {
    const std::vector<Figure> figures = figuresOf(m);
    std::size_t width = 8;
    for (const Figure& f : figures) {
        width = std::max(width, f.name.size());
    }
    std::string text = fmt::format("{:<{}}  {:<15}{:>14}{:>12}{:>12}{:>12}{:>13}\n", "feature", width, "", "", "U95",
                                   "sigma", "by noise", "calibration");
    for (const Figure& f : figures) {
        const std::string quantity =
            fmt::format("{}{}{}", f.quantity, *f.unit == 'd' ? ", " : "", *f.unit == 'd' ? f.unit : "");
        text += fmt::format("{:<{}}  {:<15}{:>14.6f}", f.name, width, quantity, f.value);
        text += f.isKnown ? fmt::format("{:>12.6f}{:>12.6f}{:>12.6f}", f.expanded, f.deviation, f.noise)
                          : fmt::format("{:>12}{:>12}{:>12}", "-", "-", "-");
        text +=
            f.isKnown && m.hasCalibration ? fmt::format("{:>13.6f}\n", f.calibration) : fmt::format("{:>13}\n", "-");
    }
    for (std::size_t i = 0; i < m.features.size(); ++i) {
        text += formText(m, i);
    }
    return text + fmt::format("{}; U95: half the interval that holds the truth at 95 %; noise: {}{}",
                              m.units == kUnknownUnits ? m.units : "lengths in " + m.units, m.noiseSource,
                              m.hasCalibration ? "" : "; the calibration's part is not known: give it with --rig");
}

std::string featureCsv(const MeasuredFeatures& m) {
    const std::string length = m.units == kUnknownUnits ? "" : csvField(m.units);
    std::string csv = "name,quantity,unit,value,U95,sigma,noise_sigma,calibration_sigma\n";
    const auto row = [&csv](const std::string& name, const char* quantity, const std::string& rest) {
        csv += fmt::format("{},{},{}\n", csvField(name), quantity, rest);
    };
    for (const Figure& f : figuresOf(m)) {
        const std::string known =
            f.isKnown ? fmt::format("{:.6g},{:.6g},{:.6g},", f.expanded, f.deviation, f.noise) : ",,,";
        row(f.name, f.quantity,
            fmt::format("{},{:.10g},{}{}", *f.unit == '\0' ? length : f.unit, f.value, known,
                        f.isKnown && m.hasCalibration ? fmt::format("{:.6g}", f.calibration) : ""));
    }
    for (std::size_t i = 0; i < m.features.size(); ++i) {
        const ZelmMeasureFeatureResult& r = m.results[i];
        const std::string& name = m.features[i].name;
        const auto plain = [&](const char* quantity, double value, const std::string& unit) {
            row(name, quantity, fmt::format("{},{:.10g},,,,", unit, value));
        };
        plain("points", static_cast<double>(r.used), "");
        plain("left_out", static_cast<double>(r.leftOut), "");
        plain("rms", r.rms, length);
        plain("worst", r.worst, length);
        if (m.features[i].kind != ZELM_MEASURE_FEATURE_POINT) {
            plain(formWord(m.features[i].kind), r.form, length);
        }
        if (m.features[i].kind == ZELM_MEASURE_FEATURE_CIRCLE) {
            plain("flatness", r.flatness, length);
        }
    }
    return csv;
}

Json featureJson(const MeasuredFeatures& m) {
    const auto three = [](const double* v, double factor = 1.0) {
        return Json{factor * v[0], factor * v[1], factor * v[2]};
    };
    Json features = Json::array();
    for (std::size_t i = 0; i < m.features.size(); ++i) {
        const ZelmMeasureFeatureResult& r = m.results[i];
        const std::int32_t kind = m.features[i].kind;
        Json f{
            {"name", m.features[i].name}, {"kind", featureWord(kind)}, {"points", r.used}, {"leftOut", m.leftOut(i)}};
        const auto parts = [&](const double* numbers) {
            Json part{{"location", three(numbers)}};
            if (hasDirection(kind)) {
                part["direction"] = three(numbers + 3);
            }
            if (hasRadius(kind)) {
                part["diameter"] = 2.0 * numbers[6];
            }
            return part;
        };
        f.update(parts(r.values));
        if (r.known == 1) {
            f["U95"] = parts(r.expanded);
            f["sigma"] = parts(r.deviations);
            f["noiseSigma"] = parts(r.noise);
            if (m.hasCalibration) {
                f["calibrationSigma"] = parts(r.calibration);
            }
        }
        f["rms"] = r.rms;
        f["worst"] = r.worst;
        f["worstPoint"] = m.points->ids[static_cast<std::size_t>(r.worstPoint)];
        if (kind != ZELM_MEASURE_FEATURE_POINT) {
            f[formWord(kind)] = r.form;
        }
        if (kind == ZELM_MEASURE_FEATURE_CIRCLE) {
            f["flatness"] = r.flatness;
        }
        if (r.misfit > 0.0) {
            f["misfit"] = r.misfit;
            f["misfitChance"] = r.misfitChance;
        }
        features.push_back(f);
    }
    Json relations = Json::array();
    for (std::size_t i = 0; i < m.relations.size(); ++i) {
        const ZelmMeasureRelationResult& r = m.related[i];
        const bool isAngle = m.relations[i].kind == ZELM_MEASURE_RELATION_ANGLE;
        const double factor = isAngle ? kDegreesPerRadian : 1.0;
        const auto nameOf = [&](std::int64_t feature) { return m.features[static_cast<std::size_t>(feature)].name; };
        Json json{{"name", m.relations[i].name},
                  {"kind", relationWord(m.relations[i].kind)},
                  {"between", {nameOf(m.relations[i].first), nameOf(m.relations[i].second)}},
                  {"status", r.status == ZELM_MEASURE_FEATURE_SMALL ? "small" : "ok"},
                  {isAngle ? "degrees" : "distance", factor * r.value}};
        if (r.known == 1) {
            json["U95"] = factor * r.expanded;
            json["sigma"] = factor * r.deviation;
            json["noiseSigma"] = factor * r.noise;
            if (m.hasCalibration) {
                json["calibrationSigma"] = factor * r.calibration;
            }
        }
        relations.push_back(json);
    }
    return {{"units", m.units}, {"features", features}, {"relations", relations}, {"noise", m.noiseSource}};
}

}  // namespace zelm::tool
