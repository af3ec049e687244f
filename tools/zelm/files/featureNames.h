// What `zelm measure` is asked for: features by the ids of their points, and relations between features.
#ifndef ZELM_TOOL_FEATURE_NAMES_H
#define ZELM_TOOL_FEATURE_NAMES_H

#include <zelmMeasure.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "measuredPointFile.h"

namespace zelm::tool {

struct NamedFeature {
    std::string name;
    std::int32_t kind = ZELM_MEASURE_FEATURE_POINT;
    bool robust = false;
    std::vector<std::int64_t> points;
};

struct NamedRelation {
    std::string name;
    std::int32_t kind = ZELM_MEASURE_RELATION_DISTANCE;
    std::int64_t first = 0;  // places of features
    std::int64_t second = 0;
};

// "point", "line", ...
const char* featureWord(std::int32_t kind);
const char* relationWord(std::int32_t kind);

class FeatureList {
public:
    explicit FeatureList(const MeasuredPoints& measured) : points(measured) {}

    // A feature of an option: ids "1,2,5-9", perhaps after a name, "top=1,2"; else its kind and a number name it.
    void addFeature(std::int32_t kind, const std::string& text, const std::string& option);
    // A relation of an option: "plane1:7". An end is the name of a feature, or the id of a point, also as point7.
    void addRelation(std::int32_t kind, const std::string& text, const std::string& option);
    // All of a file. Throws Failure, naming file and place.
    void addFile(const std::filesystem::path& path);
    void makeRobust();

    const std::vector<NamedFeature>& features() const { return named; }
    const std::vector<NamedRelation>& relations() const { return related; }

private:
    std::vector<std::int64_t> idsOf(const std::vector<std::string>& words, const std::string& where) const;
    void addIds(const std::string& word, const std::string& where, std::vector<std::int64_t>& ids) const;
    bool addRange(const std::string& word, const std::string& where, std::vector<std::int64_t>& ids) const;
    std::int64_t pointOf(const std::string& id, const std::string& where) const;
    std::int64_t endOf(const std::string& word, const std::string& where);
    void add(NamedFeature feature, const std::string& where);
    void relate(std::int32_t kind, const std::string& name, const std::string& from, const std::string& to,
                const std::string& where);

    const MeasuredPoints& points;
    std::vector<NamedFeature> named;
    std::vector<NamedRelation> related;
};

}  // namespace zelm::tool

#endif
