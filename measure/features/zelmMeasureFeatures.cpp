// The exported function of features.
#include <zelmMeasure.h>

#include <Eigen/Cholesky>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <vector>

#include "expandedUncertainty.h"
#include "featureRelation.h"
#include "featureUncertainty.h"
#include "pointSensitivity.h"
#include "records.h"
#include "rig.h"
#include "significance.h"

using namespace zelm::measure;

namespace {

constexpr double kMinDeviations = 3.0;  // of a relation's uncertainty, below which it is not told

Eigen::Matrix3d symmetric(const double* c) {
    Eigen::Matrix3d C;
    C << c[0], c[1], c[2], c[1], c[3], c[4], c[2], c[4], c[5];
    return C;
}

struct Fitted {
    FeatureTask task;
    FeatureFit fit;
    FeatureSensitivity sensitivity;
    Residuals residuals;
};

using RigRow = Eigen::Matrix<double, 1, static_cast<Eigen::Index>(kRigParameters)>;

// Variances of numbers, in parts.
struct Parts {
    double noise = 0.0;
    double calibration = 0.0;
    double expanded = 0.0;
};

class Features {
public:
    Features(const ZelmMeasureFeaturePoints& given, const Rig* rig) : givenFreedom(given.freedom) {
        require(given.count >= 0 && (given.points != nullptr || given.count == 0), "the points are NULL");
        require(given.freedom >= 0.0, "the degrees of freedom are negative");
        const auto count = static_cast<std::size_t>(given.count);
        set.points.reserve(count);
        set.noise.reserve(count);
        for (std::size_t i = 0; i < count; ++i) {
            set.points.emplace_back(given.points[3 * i], given.points[3 * i + 1], given.points[3 * i + 2]);
            require(set.points.back().allFinite(), "a point is not finite");
        }
        for (std::size_t i = 0; given.noise != nullptr && i < count; ++i) {
            set.noise.push_back(symmetric(given.noise + 6 * i));
            const bool isSound = set.noise.back().allFinite() && set.noise.back().ldlt().vectorD().minCoeff() > 0.0;
            require(isSound, "a point's covariance is not positive definite");
        }
        if (rig != nullptr) {
            takeRig(*rig);
        }
    }

    std::size_t size() const { return set.points.size(); }

    Fitted fitted(const FeatureTask& task, const PointIndices& indices) const {
        Fitted f;
        f.task = task;
        f.fit = task.robust ? fitRobust(task, set, indices) : fitAll(task, set, indices);
        if (f.fit.status == FeatureStatus::ok) {
            orient(f.fit.shape);
            centre(f.fit);
            f.residuals = residualsOf(f.fit, set);
            f.sensitivity = sensitivityOf(f.fit, task, set, shared);
        }
        return f;
    }

    bool isKnown(const Fitted& f) const { return set.isKnown() || f.residuals.freedom > 0.0; }
    double misfit(const Fitted& f) const {
        return set.isKnown() && f.residuals.freedom > 0.0 ? std::sqrt(f.residuals.chiSquare / f.residuals.freedom)
                                                          : 0.0;
    }
    double misfitChance(const Fitted& f) const {
        if (!set.isKnown() || !(f.residuals.freedom > 0.0)) {
            return 1.0;
        }
        return squaresTail(f.residuals.chiSquare, f.residuals.freedom, noiseFreedom());
    }
    double distance(const Fitted& f, std::size_t point) const {
        return distanceOf(f.fit.shape, set.points[point]).distance();
    }
    // Of a circle, from its plane.
    double height(const Fitted& f, std::size_t point) const {
        return f.fit.shape.direction.dot(set.points[point] - f.fit.shape.location);
    }
    double radial(const Fitted& f, std::size_t point) const {
        return distanceOf(f.fit.shape, set.points[point]).rows[0];
    }

    // Of a number with these derivatives by the shapes of features.
    Parts partsOf(const std::vector<std::pair<const Fitted*, Eigen::Matrix<double, 1, kShapeNumbers>>>& sum) const {
        std::map<std::size_t, Eigen::RowVector3d> byPoint;
        RigRow byRig = RigRow::Zero();
        double residualVariance = 0.0;
        double residualFreedom = HUGE_VAL;
        for (const auto& [feature, by] : sum) {
            for (const auto& [point, sensitivity] : feature->sensitivity.byPoint) {
                byPoint.try_emplace(point, Eigen::RowVector3d::Zero()).first->second += by * sensitivity;
            }
            byRig += by * feature->sensitivity.byRig;
            // Of two features the rougher residuals, with the fewer degrees of freedom: errs to the safe side.
            if (feature->residuals.freedom > 0.0) {
                residualVariance = std::max(residualVariance, feature->residuals.variance);
                residualFreedom = std::min(residualFreedom, feature->residuals.freedom);
            }
        }
        Parts parts;
        for (const auto& [point, by] : byPoint) {
            parts.noise += (by * noiseOf(set, point, residualVariance)).dot(by);
        }
        if (shared.isKnown()) {
            parts.calibration = std::max((byRig * shared.covariance).dot(byRig), 0.0);
        }
        const double freedom = set.isKnown() ? noiseFreedom() : residualFreedom;
        // The noise of the rig's dots is one estimate, which scales both variances.
        const double effective = isOfRig ? shared.freedom
                                         : effectiveFreedom({parts.noise, std::isfinite(freedom) ? freedom : 0.0},
                                                            {parts.calibration, shared.freedom});
        parts.expanded = coverageFactor(effective) * std::sqrt(parts.noise + parts.calibration);
        return parts;
    }

private:
    double noiseFreedom() const { return isOfRig ? shared.freedom : givenFreedom; }

    void takeRig(const Rig& rig) {
        rig.requireTriangulation();
        if (!rig.covariance) {
            return;
        }
        const CalibrationCovariance& covariance = *rig.covariance;
        constexpr auto n = static_cast<Eigen::Index>(kRigParameters);
        for (Eigen::Index i = 0; i < n; ++i) {
            for (Eigen::Index j = 0; j < n; ++j) {
                shared.covariance(i, j) =
                    covariance.matrix[static_cast<std::size_t>(n * std::max(i, j) + std::min(i, j))];
            }
        }
        shared.freedom = covariance.freedom;
        const SensitivityModel model(rig);
        const bool tellsNoise = set.noise.empty();
        shared.byRig.reserve(size());
        for (const Eigen::Vector3d& X : set.points) {
            const auto s = model.at({X[0], X[1], X[2]});
            if (!s) {
                refuse("a point lies where the rig's rays are parallel: is this the rig that the points come from?");
            }
            const SensitivityModel::ByParameters by = model.inPlate(*s);
            ByRig rows;
            for (Eigen::Index i = 0; i < 3; ++i) {
                for (Eigen::Index k = 0; k < n; ++k) {
                    rows(i, k) = by[static_cast<std::size_t>(i)][static_cast<std::size_t>(k)];
                }
            }
            if (!rows.allFinite()) {
                refuse("a point lies where no camera of the rig sees it: is this the rig that the points come from?");
            }
            shared.byRig.push_back(rows);
            if (tellsNoise) {
                const double variance = covariance.noise * covariance.noise;
                const Symmetric2 pixel{variance, 0.0, variance};
                set.noise.push_back(symmetric(model.inPlate(imageCovariance(*s, pixel, pixel)).data()));
            }
        }
        isOfRig = tellsNoise;
    }

    // One of the two directions that mean the same.
    static void orient(Shape& shape) {
        Eigen::Index greatest = 0;
        shape.direction.cwiseAbs().maxCoeff(&greatest);
        if (shape.direction[greatest] < 0.0) {
            shape.direction = -shape.direction;
        }
    }

    // The location of a line, plane or cylinder goes to the middle of the points that take part: the shape is the same.
    void centre(FeatureFit& fit) const {
        Shape& shape = fit.shape;
        Eigen::Vector3d middle = Eigen::Vector3d::Zero();
        for (const std::size_t i : fit.used) {
            middle += set.points[i] / static_cast<double>(fit.used.size());
        }
        const Eigen::Vector3d way = middle - shape.location;
        const Eigen::Vector3d along = shape.direction.dot(way) * shape.direction;
        if (shape.kind == FeatureKind::plane) {
            shape.location += way - along;
        } else if (shape.kind == FeatureKind::line || shape.kind == FeatureKind::cylinder) {
            shape.location += along;
        }
    }

    FeaturePoints set;
    SharedErrors shared;
    double givenFreedom = 0.0;
    bool isOfRig = false;  // the noise
};

PointIndices indicesOf(const ZelmMeasureFeature& feature, std::size_t points) {
    require(feature.count >= 0 && (feature.points != nullptr || feature.count == 0), "a feature's points are NULL");
    PointIndices indices;
    std::set<std::int64_t> seen;
    indices.reserve(static_cast<std::size_t>(feature.count));
    for (std::size_t i = 0; i < static_cast<std::size_t>(feature.count); ++i) {
        const std::int64_t at = feature.points[i];
        require(at >= 0 && static_cast<std::uint64_t>(at) < points, "a feature's point is not there");
        require(seen.insert(at).second, "a point stands twice in a feature");
        indices.push_back(static_cast<std::size_t>(at));
    }
    return indices;
}

FeatureTask taskOf(const ZelmMeasureFeature& feature) {
    require(feature.kind >= 0 && feature.kind < static_cast<std::int32_t>(kFeatureKinds),
            "a feature's kind is unknown");
    require((feature.robust == 0 || feature.robust == 1) && (feature.plain == 0 || feature.plain == 1),
            "an option is neither 0 nor 1");
    return {static_cast<FeatureKind>(feature.kind), feature.plain == 0, feature.robust == 1};
}

// A record of an array, whose elements are all as large as the first one says.
template <class Record>
Record* recordAt(Record* first, std::size_t i) {
    return reinterpret_cast<Record*>(reinterpret_cast<unsigned char*>(first) +
                                     i * static_cast<std::size_t>(first->size));
}
template <class Record>
Record recordIn(const Record* first, std::size_t i) {
    Record record{};
    const auto size = static_cast<std::size_t>(first->size);
    std::memcpy(&record, reinterpret_cast<const unsigned char*>(first) + i * size, std::min(sizeof record, size));
    return record;
}

template <class Record>
void requireArray(const Record* first, std::int64_t count, const char* words) {
    require(count >= 0 && (first != nullptr || count == 0), words);
    if (count > 0) {
        recordOf(first);
        require(first->size % 8 == 0, "a record's size is not a multiple of 8");
    }
}

struct Spread {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    void add(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    double width() const { return high - low; }
};

void addForm(const Features& features, const Fitted& f, ZelmMeasureFeatureResult& r) {
    Spread form;
    Spread heights;
    double squares = 0.0;
    r.worst = -1.0;
    for (const std::size_t point : f.fit.used) {
        const double distance = features.distance(f, point);
        squares += distance * distance;
        if (std::fabs(distance) > r.worst) {
            r.worst = std::fabs(distance);
            r.worstPoint = static_cast<std::int64_t>(point);
        }
        form.add(f.task.kind == FeatureKind::circle ? features.radial(f, point) : distance);
        if (f.task.kind == FeatureKind::circle) {
            heights.add(features.height(f, point));
        }
    }
    r.rms = std::sqrt(squares / static_cast<double>(f.fit.used.size()));
    r.form = f.task.kind == FeatureKind::point ? 0.0 : f.task.kind == FeatureKind::line ? 2.0 * r.worst : form.width();
    r.flatness = f.task.kind == FeatureKind::circle ? heights.width() : 0.0;
}

void addUncertainty(const Features& features, const Fitted& f, ZelmMeasureFeatureResult& r) {
    r.known = features.isKnown(f) ? 1 : 0;
    for (Eigen::Index i = 0; r.known == 1 && i < kShapeNumbers; ++i) {
        Eigen::Matrix<double, 1, kShapeNumbers> by = Eigen::Matrix<double, 1, kShapeNumbers>::Zero();
        by[i] = 1.0;
        const Parts parts = features.partsOf({{&f, by}});
        r.noise[i] = std::sqrt(parts.noise);
        r.calibration[i] = std::sqrt(parts.calibration);
        r.deviations[i] = std::sqrt(parts.noise + parts.calibration);
        r.expanded[i] = parts.expanded;
    }
}

ZelmMeasureFeatureResult resultOf(const Features& features, const Fitted& f) {
    ZelmMeasureFeatureResult r{};
    r.status = static_cast<std::int32_t>(f.fit.status);
    r.misfitChance = 1.0;
    if (f.fit.status != FeatureStatus::ok) {
        return r;
    }
    const Shape& shape = f.fit.shape;
    r.used = static_cast<std::int64_t>(f.fit.used.size());
    r.leftOut = static_cast<std::int64_t>(f.fit.leftOut);
    for (Eigen::Index i = 0; i < 3; ++i) {
        r.values[i] = shape.location[i];
        r.values[3 + i] = shape.direction[i];
    }
    r.values[6] = shape.radius;
    addForm(features, f, r);
    addUncertainty(features, f, r);
    r.misfit = features.misfit(f);
    r.misfitChance = features.misfitChance(f);
    r.freedom = f.residuals.freedom;
    return r;
}

// A feature's result before any is written.
struct FeatureOutput {
    ZelmMeasureFeatureResult result{};
    std::vector<double> distances;
    std::vector<std::int32_t> uses;
};

FeatureOutput outputOf(const Features& features, const Fitted& f, const PointIndices& indices) {
    FeatureOutput output{resultOf(features, f), {}, {}};
    if (f.fit.status != FeatureStatus::ok) {
        return output;
    }
    const std::set<std::size_t> used(f.fit.used.begin(), f.fit.used.end());
    output.distances.reserve(indices.size());
    output.uses.reserve(indices.size());
    for (const std::size_t point : indices) {
        output.distances.push_back(features.distance(f, point));
        output.uses.push_back(used.contains(point) ? 1 : 0);
    }
    return output;
}

// Writes a record of an array, as much of it as the caller's are large.
template <class Record>
void giveAs(Record record, std::int32_t size, Record* to) {
    record.size = size;
    std::memcpy(to, &record, std::min(sizeof record, static_cast<std::size_t>(size)));
}

void give(const FeatureOutput& output, std::int32_t size, ZelmMeasureFeatureResult* to) {
    ZelmMeasureFeatureResult r = output.result;
    ZelmMeasureFeatureResult given{};
    std::memcpy(&given, to, std::min(sizeof given, static_cast<std::size_t>(size)));
    r.distances = given.distances;
    r.uses = given.uses;
    if (given.distances != nullptr) {
        std::copy(output.distances.begin(), output.distances.end(), given.distances);
    }
    if (given.uses != nullptr) {
        std::copy(output.uses.begin(), output.uses.end(), given.uses);
    }
    giveAs(r, size, to);
}

void checkRelation(const ZelmMeasureRelation& relation, const std::vector<Fitted>& fitted) {
    const auto count = static_cast<std::int64_t>(fitted.size());
    require(relation.kind == ZELM_MEASURE_RELATION_DISTANCE || relation.kind == ZELM_MEASURE_RELATION_ANGLE,
            "a relation's kind is unknown");
    require(relation.first >= 0 && relation.first < count && relation.second >= 0 && relation.second < count &&
                relation.first != relation.second,
            "a relation's features are not there, or are one");
    for (const std::int64_t end : {relation.first, relation.second}) {
        Shape shape;
        shape.kind = fitted[static_cast<std::size_t>(end)].task.kind;
        require(relation.kind != ZELM_MEASURE_RELATION_ANGLE || shape.hasDirection(),
                "a point or a sphere has no direction that an angle could be measured to");
    }
}

ZelmMeasureRelationResult related(const Features& features, const Fitted& a, const Fitted& b, RelationKind kind) {
    ZelmMeasureRelationResult r{};
    r.status = ZELM_MEASURE_FEATURE_NO_PART;
    if (a.fit.status != FeatureStatus::ok || b.fit.status != FeatureStatus::ok) {
        return r;
    }
    const Relation relation = relationOf(kind, a.fit.shape, b.fit.shape);
    r.status = ZELM_MEASURE_FEATURE_OK;
    r.value = relation.value;
    r.known = features.isKnown(a) || features.isKnown(b) ? 1 : 0;
    if (r.known == 0) {
        return r;
    }
    const Parts parts = features.partsOf({{&a, relation.byFirst}, {&b, relation.bySecond}});
    const double deviation = std::sqrt(parts.noise + parts.calibration);
    if (!(r.value > kMinDeviations * deviation)) {
        r.status = ZELM_MEASURE_FEATURE_SMALL;
        r.known = 0;
        return r;
    }
    r.noise = std::sqrt(parts.noise);
    r.calibration = std::sqrt(parts.calibration);
    r.deviation = deviation;
    r.expanded = parts.expanded;
    return r;
}

}  // namespace

std::int32_t zelmMeasureFeatures(const ZelmMeasureFeaturePoints* points, ZelmMeasureRig* rig, std::int64_t featureCount,
                                 const ZelmMeasureFeature* features, ZelmMeasureFeatureResult* results,
                                 std::int64_t relationCount, const ZelmMeasureRelation* relations,
                                 ZelmMeasureRelationResult* relationResults) {
    if (rig != nullptr && !rig->isOpen) {
        return ZELM_ERR_PARAM;
    }
    return guarded(rig == nullptr ? nullptr : &rig->error, [&] {
        requireArray(features, featureCount, "the features are NULL");
        requireArray(results, featureCount, "the features' results are NULL");
        requireArray(relations, relationCount, "the relations are NULL");
        requireArray(relationResults, relationCount, "the relations' results are NULL");
        const Features all(recordOf(points), rig == nullptr ? nullptr : &rig->rig);
        std::vector<Fitted> fitted;
        std::vector<PointIndices> indices;
        fitted.reserve(static_cast<std::size_t>(featureCount));
        indices.reserve(static_cast<std::size_t>(featureCount));
        for (std::size_t i = 0; i < static_cast<std::size_t>(featureCount); ++i) {
            const ZelmMeasureFeature feature = recordIn(features, i);
            indices.push_back(indicesOf(feature, all.size()));
            fitted.push_back(all.fitted(taskOf(feature), indices.back()));
        }
        std::vector<ZelmMeasureRelationResult> found;
        found.reserve(static_cast<std::size_t>(relationCount));
        for (std::size_t i = 0; i < static_cast<std::size_t>(relationCount); ++i) {
            const ZelmMeasureRelation relation = recordIn(relations, i);
            checkRelation(relation, fitted);
            found.push_back(related(all, fitted[static_cast<std::size_t>(relation.first)],
                                    fitted[static_cast<std::size_t>(relation.second)],
                                    static_cast<RelationKind>(relation.kind)));
        }
        std::vector<FeatureOutput> outputs;
        outputs.reserve(fitted.size());
        for (std::size_t i = 0; i < fitted.size(); ++i) {
            outputs.push_back(outputOf(all, fitted[i], indices[i]));
        }
        for (std::size_t i = 0; i < outputs.size(); ++i) {
            give(outputs[i], results->size, recordAt(results, i));
        }
        for (std::size_t i = 0; i < found.size(); ++i) {
            giveAs(found[i], relationResults->size, recordAt(relationResults, i));
        }
    });
}
