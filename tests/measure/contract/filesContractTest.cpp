// Arguments that cannot be meant: files of other programs, row-aligned pairs, comparisons, designs of plates, features.
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "featureScenes.h"
#include "measureContract.h"

namespace zelmtest {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

TEST_F(MeasureContract, FilesThatAreWritten) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto options = emptyRecord<ZelmMeasureExportOptions>();
    std::vector<unsigned char> bytes(32768, 7);
    const std::vector<unsigned char> before = bytes;
    std::int64_t* const n = out.longs;
    const auto write = [&](ZelmMeasureRig* r, const ZelmMeasureExportOptions* o, std::int32_t side,
                           std::int64_t capacity, std::int64_t* length) {
        return ZELM_CASE(zelmMeasureExport)(r, o, side, capacity, bytes.data(), length);
    };
    expectParam("rig", write(nullptr, &options, 0, 32768, n));
    expectParam("length", write(rig, &options, 0, 32768, nullptr));
    for (const std::int64_t capacity : {std::int64_t{-1}, std::int64_t{0}, std::int64_t{100}}) {
        expectParam("capacity", write(rig, &options, 0, capacity, n));
    }
    expectParam("one file", write(rig, &options, 'L', 32768, n));
    expectRecordRefused<ZelmMeasureExportOptions>("options", [&](auto* r) { return write(rig, r, 0, 32768, n); });
    auto loss = emptyRecord<ZelmMeasureExportLoss>();
    for (const std::int32_t format : {-1, 6, 1000}) {
        options.format = format;
        expectParam("format", write(rig, &options, 0, 32768, n));
        expectParam("format", ZELM_CASE(zelmMeasureExportLoss)(rig, &options, &loss));
    }
    options.format = ZELM_MEASURE_FILE_ROS;
    for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
        expectParam("side", write(rig, &options, side, 32768, n));
    }
    for (const double metres : {-1.0, kNone, kInfinite}) {
        options.metres = metres;
        expectParam("metres", write(rig, &options, 'L', 32768, n));
    }
    EXPECT_EQ(bytes, before);
    options = emptyRecord<ZelmMeasureExportOptions>();
    expectParam("rig", ZELM_CASE(zelmMeasureExportLoss)(nullptr, &options, &loss));
    EXPECT_EQ(loss.views, 0);
    expectRecordRefused<ZelmMeasureExportOptions>(
        "options", [&](auto* r) { return ZELM_CASE(zelmMeasureExportLoss)(rig, r, &loss); });
    expectRecordRefused<ZelmMeasureExportLoss>(
        "loss", [&](auto* r) { return ZELM_CASE(zelmMeasureExportLoss)(rig, &options, r); });
}

TEST_F(MeasureContract, FilesThatAreRead) {
    auto options = emptyRecord<ZelmMeasureExportOptions>();
    std::string file(32768, '\0');
    std::int64_t length = 0;
    ASSERT_EQ(zelmMeasureExport(sound.rig.get(), &options, 0, 32768, file.data(), &length), ZELM_OK);
    auto reading = emptyRecord<ZelmMeasureImportOptions>();
    const void* const files[] = {file.data(), file.data()};
    const void* const none[] = {nullptr, nullptr};
    const std::int64_t sizes[] = {length, length};
    const std::int64_t negative[] = {-1, -1};
    auto imported = emptyRecord<ZelmMeasureImported>();
    ZelmMeasureRig* rig = nullptr;
    const auto read = [&](const ZelmMeasureImportOptions* o, std::int32_t count, const void* const* f,
                          const std::int64_t* s,
                          ZelmMeasureRig** to) { return ZELM_CASE(zelmMeasureImport)(o, count, f, s, to, &imported); };
    expectParam("files", read(&reading, 1, nullptr, sizes, &rig));
    expectParam("files", read(&reading, 1, none, sizes, &rig));
    expectParam("sizes", read(&reading, 1, files, nullptr, &rig));
    expectParam("sizes", read(&reading, 1, files, negative, &rig));
    expectParam("handle", read(&reading, 1, files, sizes, nullptr));
    ZelmMeasureRig* live = sound.rig.get();
    expectParam("live", read(&reading, 1, files, sizes, &live));
    EXPECT_EQ(live, sound.rig.get());
    for (const std::int32_t count : {-1, 0, 3, std::numeric_limits<std::int32_t>::max()}) {
        expectParam("count", read(&reading, count, files, sizes, &rig));
    }
    expectRecordRefused<ZelmMeasureImportOptions>("options", [&](auto* r) { return read(r, 1, files, sizes, &rig); });
    const std::function<void(ZelmMeasureImportOptions&)> changes[] = {
        [](auto& o) { o.format = -1; },        [](auto& o) { o.format = 6; },
        [](auto& o) { o.metres = -1.0; },      [](auto& o) { o.metres = kNone; },
        [](auto& o) { o.metres = kInfinite; }, [](auto& o) { o.leftWidth = -1; },
        [](auto& o) { o.rightHeight = -1; },   [](auto& o) { o.leftHeight = std::numeric_limits<std::int32_t>::max(); },
        [](auto& o) { o.tolerance = -1.0; },   [](auto& o) { o.tolerance = kNone; }};
    for (const auto& change : changes) {
        auto wrong = reading;
        change(wrong);
        expectParam("options", read(&wrong, 1, files, sizes, &rig));
    }
    EXPECT_EQ(imported.isCameraFrame, 0);
    for (const std::int32_t size : {0, 3, -8}) {
        imported.size = size;
        expectParam("imported", read(&reading, 1, files, sizes, &rig));
        EXPECT_EQ(rig, nullptr);
    }
    // An empty file is refused with words, in a handle of its own.
    imported.size = sizeof imported;
    const std::int64_t empty[] = {0};
    EXPECT_EQ(read(&reading, 1, files, empty, &rig), ZELM_MEASURE_ERR_DATA);
    EXPECT_STRNE(zelmMeasureRigError(rig), "");
    zelmMeasureRigClose(&rig);
}

TEST_F(MeasureContract, RowAlignedPairs) {
    ZelmMeasureRig* const rig = sound.rig.get();
    auto rows = emptyRecord<ZelmMeasureRows>();
    std::vector<float> map(2 * 64 * 48, -7.0F);
    const std::vector<float> before = map;
    double* const d = out.numbers;
    expectParam("rig", ZELM_CASE(zelmMeasureAlignRows)(nullptr, nullptr, &rows));
    expectParam("rig", ZELM_CASE(zelmMeasureAlignRowsMap)(nullptr, nullptr, 'L', map.data()));
    expectParam("rig", ZELM_CASE(zelmMeasureAlignRowsPoints)(nullptr, nullptr, 'L', 2, sound.pixels, d));
    expectParam("map", ZELM_CASE(zelmMeasureAlignRowsMap)(rig, nullptr, 'L', nullptr));
    expectParam("count", ZELM_CASE(zelmMeasureAlignRowsPoints)(rig, nullptr, 'L', -1, sound.pixels, d));
    expectParam("raw", ZELM_CASE(zelmMeasureAlignRowsPoints)(rig, nullptr, 'L', 2, nullptr, d));
    expectParam("aligned", ZELM_CASE(zelmMeasureAlignRowsPoints)(rig, nullptr, 'L', 2, sound.pixels, nullptr));
    for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
        expectParam("side", ZELM_CASE(zelmMeasureAlignRowsMap)(rig, nullptr, side, map.data()));
        expectParam("side", ZELM_CASE(zelmMeasureAlignRowsPoints)(rig, nullptr, side, 2, sound.pixels, d));
    }
    expectRecordRefused<ZelmMeasureRows>("rows",
                                         [&](auto* r) { return ZELM_CASE(zelmMeasureAlignRows)(rig, nullptr, r); });
    const std::function<void(ZelmMeasureRowOptions&)> changes[] = {
        [](auto& o) { o.size = 0; },        [](auto& o) { o.size = -8; },         [](auto& o) { o.width = -1; },
        [](auto& o) { o.height = -1; },     [](auto& o) { o.width = 32769; },     [](auto& o) { o.focal = -1.0; },
        [](auto& o) { o.focal = kNone; },   [](auto& o) { o.focal = kInfinite; }, [](auto& o) { o.nearest = -1.0; },
        [](auto& o) { o.nearest = kNone; }, [](auto& o) { o.farthest = -1.0; },   [](auto& o) { o.farthest = kNone; }};
    for (const auto& change : changes) {
        auto options = emptyRecord<ZelmMeasureRowOptions>();
        change(options);
        expectParam("options", ZELM_CASE(zelmMeasureAlignRows)(rig, &options, &rows));
        expectParam("options", ZELM_CASE(zelmMeasureAlignRowsMap)(rig, &options, 'R', map.data()));
        expectParam("options", ZELM_CASE(zelmMeasureAlignRowsPoints)(rig, &options, 'R', 2, sound.pixels, d));
    }
    EXPECT_EQ(rows.width, 0);
    EXPECT_EQ(map, before);
    EXPECT_EQ(ZELM_CASE(zelmMeasureAlignRowsPoints)(rig, nullptr, 'L', 0, nullptr, nullptr), ZELM_OK);
}

TEST_F(MeasureContract, Comparisons) {
    ZelmMeasureRig* const rig = sound.rig.get();
    const OpenedRig second(sound.block);
    auto comparison = emptyRecord<ZelmMeasureComparison>();
    double* const d = out.numbers;
    const double* const p = sound.pixels;
    expectParam("first", ZELM_CASE(zelmMeasureCompare)(nullptr, second.get(), nullptr, &comparison));
    expectParam("second", ZELM_CASE(zelmMeasureCompare)(rig, nullptr, nullptr, &comparison));
    expectRecordRefused<ZelmMeasureComparison>(
        "comparison", [&](auto* r) { return ZELM_CASE(zelmMeasureCompare)(rig, second.get(), nullptr, r); });
    const std::function<void(ZelmMeasureCompareOptions&)> changes[] = {[](auto& o) { o.size = 0; },
                                                                       [](auto& o) { o.nearest = -1.0; },
                                                                       [](auto& o) { o.nearest = kNone; },
                                                                       [](auto& o) { o.farthest = -1.0; },
                                                                       [](auto& o) { o.farthest = kNone; },
                                                                       [](auto& o) { o.nearest = kInfinite; },
                                                                       [](auto& o) { o.farthest = kInfinite; }};
    for (const auto& change : changes) {
        auto options = emptyRecord<ZelmMeasureCompareOptions>();
        change(options);
        expectParam("options", ZELM_CASE(zelmMeasureCompare)(rig, second.get(), &options, &comparison));
    }
    EXPECT_EQ(comparison.volume.count, 0);
    expectParam("first", ZELM_CASE(zelmMeasureCompareImage)(nullptr, second.get(), 'L', 2, p, d));
    expectParam("second", ZELM_CASE(zelmMeasureCompareImage)(rig, nullptr, 'L', 2, p, d));
    for (const std::int32_t side : {0, static_cast<int>('l'), 256 + 'L'}) {
        expectParam("side", ZELM_CASE(zelmMeasureCompareImage)(rig, second.get(), side, 2, p, d));
    }
    expectParam("count", ZELM_CASE(zelmMeasureCompareImage)(rig, second.get(), 'L', -1, p, d));
    expectParam("pixels", ZELM_CASE(zelmMeasureCompareImage)(rig, second.get(), 'L', 2, nullptr, d));
    expectParam("differences", ZELM_CASE(zelmMeasureCompareImage)(rig, second.get(), 'L', 2, p, nullptr));
    EXPECT_EQ(ZELM_CASE(zelmMeasureCompareImage)(rig, second.get(), 'L', 0, nullptr, nullptr), ZELM_OK);
}

TEST_F(MeasureContract, DesignsOfPlates) {
    const Zelm2ViewPatternDesc& plate = sound.pattern;
    auto camera = emptyRecord<ZelmMeasureCamera>();
    camera.intrinsics.alpha = camera.intrinsics.beta = 1000.0;
    auto finding = emptyRecord<ZelmMeasurePlateFinding>();
    std::int64_t* const n = out.longs;
    const auto design = [&](const Zelm2ViewPatternDesc* of, std::int32_t count, const ZelmMeasureCamera* cameras,
                            double nearest, double farthest) {
        return ZELM_CASE(zelmMeasurePlateDesign)(of, count, cameras, nearest, farthest, &finding, 1, n);
    };
    expectParam("plate", design(nullptr, 1, &camera, 300.0, 400.0));
    expectParam("count", design(&plate, -1, &camera, 300.0, 400.0));
    expectParam("cameras", design(&plate, 1, nullptr, 300.0, 400.0));
    for (const double wrong : {0.0, -1.0, kNone, kInfinite}) {
        expectParam("nearest", design(&plate, 1, &camera, wrong, 400.0));
        expectParam("farthest", design(&plate, 1, &camera, 300.0, wrong));
        auto bad = camera;
        bad.intrinsics.alpha = wrong;
        expectParam("focal", design(&plate, 1, &bad, 300.0, 400.0));
        for (const auto field : {&Zelm2ViewPatternDesc::d0, &Zelm2ViewPatternDesc::d3, &Zelm2ViewPatternDesc::d7}) {
            Zelm2ViewPatternDesc other = plate;
            other.*field = wrong;
            expectParam("plate", design(&other, 0, nullptr, 0.0, 0.0));
            Zelm2ViewPatternDesc expanded{};
            expectParam("plate", ZELM_CASE(zelmMeasurePlateExpanded)(&other, 0.0, 0.0, 0, nullptr, &expanded, nullptr,
                                                                     out.numbers));
        }
    }
    expectParam("order", design(&plate, 1, &camera, 500.0, 400.0));
    for (const std::int32_t size : {0, 3, -8, 12}) {
        auto bad = camera;
        bad.size = size;
        expectParam("camera", design(&plate, 1, &bad, 300.0, 400.0));
        auto findings = emptyRecord<ZelmMeasurePlateFinding>();
        findings.size = size;
        expectParam("finding", ZELM_CASE(zelmMeasurePlateDesign)(&plate, 0, nullptr, 0.0, 0.0, &findings, 1, n));
    }
    expectParam("capacity", ZELM_CASE(zelmMeasurePlateDesign)(&plate, 0, nullptr, 0.0, 0.0, &finding, -1, n));
    expectParam("number", ZELM_CASE(zelmMeasurePlateDesign)(&plate, 0, nullptr, 0.0, 0.0, &finding, 1, nullptr));
    EXPECT_EQ(finding.flaw, 0);
    const double places[] = {1.0, 2.0, kNone};
    Zelm2ViewPatternDesc expanded{};
    double* const d = out.numbers;
    const auto expand = [&](const Zelm2ViewPatternDesc* of, double expansion, double difference, std::int64_t count,
                            const double* at, Zelm2ViewPatternDesc* to, double* toPlaces) {
        return ZELM_CASE(zelmMeasurePlateExpanded)(of, expansion, difference, count, at, to, toPlaces, d + 10);
    };
    expectParam("plate", expand(nullptr, 1e-5, 1.0, 0, nullptr, &expanded, nullptr));
    expectParam("expanded", expand(&plate, 1e-5, 1.0, 0, nullptr, nullptr, nullptr));
    expectParam("count", expand(&plate, 1e-5, 1.0, -1, places, &expanded, d));
    expectParam("places", expand(&plate, 1e-5, 1.0, 1, nullptr, &expanded, d));
    expectParam("places", expand(&plate, 1e-5, 1.0, 1, places, &expanded, nullptr));
    expectParam("not finite", expand(&plate, 1e-5, 1.0, 1, places, &expanded, d));
    expectParam("expansion", expand(&plate, kNone, 1.0, 0, nullptr, &expanded, nullptr));
    expectParam("difference", expand(&plate, 1e-5, kNone, 0, nullptr, &expanded, nullptr));
    expectParam("factor", expand(&plate, -1.0, 1.0, 0, nullptr, &expanded, nullptr));
    expectParam("factor", expand(&plate, 1e300, 1e300, 0, nullptr, &expanded, nullptr));
    EXPECT_EQ(expanded.d0, 0.0);
}

// One call of features, each of whose parts can be made wrong.
struct FeatureCall {
    FeatureScene scene = shapePoints(ZELM_MEASURE_FEATURE_PLANE, 6);
    std::vector<std::int64_t> all = scene.all();
    ZelmMeasureFeaturePoints points{sizeof(ZelmMeasureFeaturePoints), 0, 6, nullptr, nullptr, 0.0};
    ZelmMeasureFeature features[2]{{sizeof(ZelmMeasureFeature), ZELM_MEASURE_FEATURE_PLANE, 0, 0, 6, nullptr},
                                   {sizeof(ZelmMeasureFeature), ZELM_MEASURE_FEATURE_POINT, 0, 0, 1, nullptr}};
    ZelmMeasureFeatureResult results[2]{};
    ZelmMeasureRelation relation = relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 1);
    ZelmMeasureRelationResult between = emptyRecord<ZelmMeasureRelationResult>();
    std::int64_t featureCount = 2, relationCount = 1;

    FeatureCall() {
        scene.state(0.1, 0.2);
        points.points = scene.points.data();
        points.noise = scene.noise.data();
        features[0].points = features[1].points = all.data();
        results[0].size = results[1].size = sizeof(ZelmMeasureFeatureResult);
    }
    FeatureCall(const FeatureCall&) = delete;
    FeatureCall& operator=(const FeatureCall&) = delete;
    std::int32_t run() {
        return ZELM_CASE(zelmMeasureFeatures)(&points, nullptr, featureCount, features, results, relationCount,
                                              &relation, &between);
    }
};

TEST_F(MeasureContract, Features) {
    const std::function<void(FeatureCall&)> changes[] = {[](auto& c) { c.points.size = 0; },
                                                         [](auto& c) { c.points.count = -1; },
                                                         [](auto& c) { c.points.points = nullptr; },
                                                         [](auto& c) { c.points.freedom = -1.0; },
                                                         [](auto& c) { c.points.freedom = kNone; },
                                                         [](auto& c) { c.scene.points[4] = kNone; },
                                                         [](auto& c) { c.scene.points[4] = kInfinite; },
                                                         [](auto& c) { c.scene.noise[0] = -1.0; },
                                                         [](auto& c) { c.scene.noise[0] = kNone; },
                                                         [](auto& c) { c.scene.noise[1] = 10.0; },
                                                         [](auto& c) { c.featureCount = -1; },
                                                         [](auto& c) { c.relationCount = -1; },
                                                         [](auto& c) { c.features[0].size = 0; },
                                                         [](auto& c) { c.features[0].size = 12; },
                                                         [](auto& c) { c.results[0].size = -8; },
                                                         [](auto& c) { c.results[0].size = 12; },
                                                         [](auto& c) { c.relation.size = 3; },
                                                         [](auto& c) { c.between.size = 0; },
                                                         [](auto& c) { c.features[0].kind = 6; },
                                                         [](auto& c) { c.features[1].kind = -1; },
                                                         [](auto& c) { c.features[0].robust = 2; },
                                                         [](auto& c) { c.features[0].plain = -1; },
                                                         [](auto& c) { c.features[0].count = -1; },
                                                         [](auto& c) { c.features[1].points = nullptr; },
                                                         [](auto& c) { c.all[2] = 6; },
                                                         [](auto& c) { c.all[2] = -1; },
                                                         [](auto& c) { c.all[2] = 1; },
                                                         [](auto& c) { c.relation.kind = 3; },
                                                         [](auto& c) { c.relation.kind = ZELM_MEASURE_RELATION_ANGLE; },
                                                         [](auto& c) { c.relation.first = 2; },
                                                         [](auto& c) { c.relation.second = -1; },
                                                         [](auto& c) { c.relation.second = 0; }};
    std::size_t number = 0;
    for (const auto& change : changes) {
        FeatureCall call;
        call.results[0].used = call.results[1].used = -7;
        change(call);
        expectParam(std::to_string(number++).c_str(), call.run());
        EXPECT_EQ(call.results[0].used, -7);
        EXPECT_EQ(call.results[1].used, -7);
        EXPECT_EQ(call.between.status, 0);
        EXPECT_EQ(call.between.value, 0.0);
    }
    FeatureCall call;
    const auto with = [&](const ZelmMeasureFeature* f, ZelmMeasureFeatureResult* r, const ZelmMeasureRelation* q,
                          ZelmMeasureRelationResult* s) {
        return ZELM_CASE(zelmMeasureFeatures)(&call.points, nullptr, 2, f, r, 1, q, s);
    };
    expectParam("features", with(nullptr, call.results, &call.relation, &call.between));
    expectParam("results", with(call.features, nullptr, &call.relation, &call.between));
    expectParam("relations", with(call.features, call.results, nullptr, &call.between));
    expectParam("relations", with(call.features, call.results, &call.relation, nullptr));
    expectParam("points",
                ZELM_CASE(zelmMeasureFeatures)(nullptr, nullptr, 2, call.features, call.results, 0, nullptr, nullptr));
    // The first record's size holds for all.
    call.features[1].size = call.results[1].size = 0;
    EXPECT_EQ(call.run(), ZELM_OK);
    EXPECT_EQ(call.results[1].used, 1);
    EXPECT_EQ(call.results[1].size, static_cast<std::int32_t>(sizeof(ZelmMeasureFeatureResult)));
    EXPECT_EQ(ZELM_CASE(zelmMeasureFeatures)(&call.points, nullptr, 0, nullptr, nullptr, 0, nullptr, nullptr), ZELM_OK);
}

}  // namespace
}  // namespace zelmtest
