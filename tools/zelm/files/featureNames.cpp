#include "featureNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "failure.h"
#include "jsonFields.h"
#include "numberText.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

constexpr std::array<const char*, 6> kFeatureWords{"point", "line", "plane", "circle", "sphere", "cylinder"};
constexpr std::array<const char*, 2> kRelationWords{"distance", "angle"};
constexpr std::size_t kMaxDigits = 9;  // of a number at the end of an id

std::vector<std::string> splitAt(const std::string& text, char separator) {
    std::vector<std::string> words;
    std::size_t from = 0;
    for (;;) {
        const std::size_t end = text.find(separator, from);
        words.push_back(text.substr(from, end - from));
        if (end == std::string::npos) {
            return words;
        }
        from = end + 1;
    }
}

// An id that ends with a number: "target12".
struct NumberedId {
    std::string prefix;
    std::string digits;
};
std::optional<NumberedId> numbered(const std::string& id) {
    std::size_t at = id.size();
    while (at > 0 && id[at - 1] >= '0' && id[at - 1] <= '9') {
        --at;
    }
    if (at == id.size() || id.size() - at > kMaxDigits) {
        return std::nullopt;
    }
    return NumberedId{id.substr(0, at), id.substr(at)};
}

template <std::size_t n>
std::optional<std::int32_t> placeOf(const std::array<const char*, n>& words, const std::string& word) {
    const auto found = std::find(words.begin(), words.end(), word);
    return found == words.end() ? std::nullopt : std::optional(static_cast<std::int32_t>(found - words.begin()));
}

}  // namespace

const char* featureWord(std::int32_t kind) {
    return kFeatureWords[static_cast<std::size_t>(kind)];
}

const char* relationWord(std::int32_t kind) {
    return kRelationWords[static_cast<std::size_t>(kind - 1)];
}

std::int64_t FeatureList::pointOf(const std::string& id, const std::string& where) const {
    if (const auto found = points.byId.find(id); found != points.byId.end()) {
        return static_cast<std::int64_t>(found->second);
    }
    if (const auto lost = points.lost.find(id); lost != points.lost.end()) {
        failData("{}: the id \"{}\" of {} has no point: its status is {}: leave it out", points.file, id, where,
                 lost->second);
    }
    failData("{}: no point has the id \"{}\" of {}", points.file, id, where);
}

// "5-9" or "target5-target9"; false when the word is no range.
bool FeatureList::addRange(const std::string& word, const std::string& where, std::vector<std::int64_t>& ids) const {
    for (std::size_t dash = word.find('-'); dash != std::string::npos; dash = word.find('-', dash + 1)) {
        const auto first = numbered(word.substr(0, dash));
        auto last = numbered(word.substr(dash + 1));
        if (!first || !last || (last->prefix != first->prefix && !last->prefix.empty())) {
            continue;
        }
        const long from = std::stol(first->digits);
        const long to = std::stol(last->digits);
        if (to < from || to - from >= static_cast<long>(points.size() + points.lost.size())) {
            failData("{}: the range {} of {} does not lie within the ids of the points", points.file, word, where);
        }
        for (long i = from; i <= to; ++i) {
            // With leading zeros where the first id has them.
            ids.push_back(pointOf(fmt::format("{}{:0{}}", first->prefix, i, first->digits.size()), where));
        }
        return true;
    }
    return false;
}

void FeatureList::addIds(const std::string& word, const std::string& where, std::vector<std::int64_t>& ids) const {
    if (points.byId.contains(word) || points.lost.contains(word)) {
        ids.push_back(pointOf(word, where));
        return;
    }
    if (word.ends_with('*')) {
        const std::string prefix = word.substr(0, word.size() - 1);
        const std::size_t before = ids.size();
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (points.ids[i].starts_with(prefix)) {
                ids.push_back(static_cast<std::int64_t>(i));
            }
        }
        if (ids.size() == before) {
            failData("{}: no point has an id like \"{}\" of {}", points.file, word, where);
        }
        return;
    }
    if (!addRange(word, where, ids)) {
        ids.push_back(pointOf(word, where));
    }
}

std::vector<std::int64_t> FeatureList::idsOf(const std::vector<std::string>& words, const std::string& where) const {
    std::vector<std::int64_t> ids;
    for (const std::string& word : words) {
        addIds(word, where, ids);
    }
    std::set<std::int64_t> seen;
    for (const std::int64_t id : ids) {
        if (!seen.insert(id).second) {
            failData("{}: the point \"{}\" stands twice in {}", points.file, points.ids[static_cast<std::size_t>(id)],
                     where);
        }
    }
    return ids;
}

void FeatureList::add(NamedFeature feature, const std::string& where) {
    if (std::any_of(named.begin(), named.end(), [&](const NamedFeature& n) { return n.name == feature.name; })) {
        failUsage("{}: two features have the name {}: give each one of its own", where, feature.name);
    }
    named.push_back(std::move(feature));
}

void FeatureList::addFeature(std::int32_t kind, const std::string& text, const std::string& option) {
    const std::string where = fmt::format("{} {}", option, text);
    NamedFeature feature;
    feature.kind = kind;
    std::string list = text;
    // "=" ends a name, unless an id has it.
    if (const std::size_t equals = text.find('='); equals != std::string::npos && !points.byId.contains(text)) {
        feature.name = text.substr(0, equals);
        list = text.substr(equals + 1);
        if (feature.name.empty()) {
            failUsage("{}: expected NAME=IDS, or IDS alone", where);
        }
    } else {
        const auto count = std::count_if(named.begin(), named.end(), [&](const NamedFeature& n) {
            return n.kind == kind && n.name.starts_with(featureWord(kind));
        });
        feature.name = fmt::format("{}{}", featureWord(kind), count + 1);
    }
    feature.points = idsOf(splitAt(list, ','), where);
    add(std::move(feature), where);
}

std::int64_t FeatureList::endOf(const std::string& word, const std::string& where) {
    const auto found = std::find_if(named.begin(), named.end(), [&](const NamedFeature& n) { return n.name == word; });
    if (found != named.end()) {
        return found - named.begin();
    }
    const std::string prefix = "point";
    const std::string id = points.byId.contains(word) || points.lost.contains(word) || !word.starts_with(prefix)
                               ? word
                               : word.substr(prefix.size());
    if (!points.byId.contains(id) && !points.lost.contains(id)) {
        failData("{}: {} of {} is neither the name of a feature nor the id of a point", points.file, word, where);
    }
    NamedFeature feature;
    feature.name = word;
    feature.points = {pointOf(id, where)};
    add(std::move(feature), where);
    return static_cast<std::int64_t>(named.size()) - 1;
}

void FeatureList::relate(std::int32_t kind, const std::string& name, const std::string& from, const std::string& to,
                         const std::string& where) {
    NamedRelation relation;
    relation.name = name;
    relation.kind = kind;
    relation.first = endOf(from, where);
    relation.second = endOf(to, where);
    if (relation.first == relation.second) {
        failUsage("{}: from a feature to itself: give two", where);
    }
    if (kind == ZELM_MEASURE_RELATION_ANGLE) {
        for (const std::int64_t end : {relation.first, relation.second}) {
            const NamedFeature& feature = named[static_cast<std::size_t>(end)];
            if (feature.kind == ZELM_MEASURE_FEATURE_POINT || feature.kind == ZELM_MEASURE_FEATURE_SPHERE) {
                failUsage(
                    "{}: {} is a {}, which has no direction: angles are between lines, planes, circles and "
                    "cylinders",
                    where, feature.name, featureWord(feature.kind));
            }
        }
    }
    related.push_back(std::move(relation));
}

void FeatureList::addRelation(std::int32_t kind, const std::string& text, const std::string& option) {
    const std::string where = fmt::format("{} {}", option, text);
    const std::vector<std::string> ends = splitAt(text, ':');
    if (ends.size() != 2 || ends[0].empty() || ends[1].empty()) {
        failUsage("{}: expected FROM:TO, names of features or ids of points", where);
    }
    relate(kind, fmt::format("{} {}", relationWord(kind), text), ends[0], ends[1], where);
}

void FeatureList::addFile(const std::filesystem::path& path) {
    const std::string file = path.string();
    const nlohmann::json json = parseCommentedJson(file, readWholeFile(path, "a list of features"));
    JsonFields top(json, file, "");
    const auto listOf = [&](const char* key) {
        const nlohmann::json* const list = top.find(key);
        if (list != nullptr && !list->is_array()) {
            top.fail(key, "a list");
        }
        return list == nullptr ? nlohmann::json::array() : *list;
    };
    const auto wordsOf = [](JsonFields& fields, const char* key) {
        const nlohmann::json* const list = fields.find(key);
        std::vector<std::string> words;
        const auto isWord = [](const nlohmann::json& w) { return w.is_string() || w.is_number_integer(); };
        if (list == nullptr || !list->is_array() || !std::all_of(list->begin(), list->end(), isWord)) {
            fields.fail(key, "a list of ids");
        }
        for (const nlohmann::json& word : *list) {
            words.push_back(word.is_string() ? word.get<std::string>() : word.dump());
        }
        return words;
    };
    const nlohmann::json featureList = listOf("features");
    for (std::size_t i = 0; i < featureList.size(); ++i) {
        const std::string place = fmt::format("features[{}]", i);
        JsonFields fields(featureList[i], file, place);
        NamedFeature feature;
        std::string kind;
        fields.read("name", feature.name);
        fields.read("kind", kind);
        const auto found = placeOf(kFeatureWords, kind);
        if (!found) {
            fields.fail("kind", "point, line, plane, circle, sphere or cylinder");
        }
        feature.kind = *found;
        if (feature.name.empty()) {
            fields.fail("name", "a name");
        }
        feature.points = idsOf(wordsOf(fields, "points"), fmt::format("{}: {}", file, feature.name));
        if (const nlohmann::json* const robust = fields.find("robust")) {
            if (!robust->is_boolean()) {
                fields.fail("robust", "true or false");
            }
            feature.robust = robust->get<bool>();
        }
        fields.done();
        add(std::move(feature), file);
    }
    const nlohmann::json relationList = listOf("relations");
    for (std::size_t i = 0; i < relationList.size(); ++i) {
        JsonFields fields(relationList[i], file, fmt::format("relations[{}]", i));
        std::string name;
        std::string kind;
        fields.read("name", name);
        fields.read("kind", kind);
        const auto found = placeOf(kRelationWords, kind);
        if (!found) {
            fields.fail("kind", "distance or angle");
        }
        const std::vector<std::string> ends = wordsOf(fields, "between");
        if (ends.size() != 2) {
            fields.fail("between", "two names of features or ids of points");
        }
        fields.done();
        relate(*found + 1, name.empty() ? fmt::format("{} {}:{}", kind, ends[0], ends[1]) : name, ends[0], ends[1],
               fmt::format("{}: {}:{}", file, ends[0], ends[1]));
    }
    top.done();
}

void FeatureList::makeRobust() {
    for (NamedFeature& feature : named) {
        feature.robust = true;
    }
}

}  // namespace zelm::tool
