// Every allocation of a call failing in turn: files of other programs, row-aligned pairs, comparisons, designs of
// plates, features.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "featureScenes.h"
#include "measureFaults.h"
#include "measureRigs.h"

namespace zelmtest {
namespace {

constexpr std::int32_t kFormats = 6;

bool hasFileOfEach(std::int32_t format) {
    return format == ZELM_MEASURE_FILE_ROS || format == ZELM_MEASURE_FILE_MRCAL;
}

std::string exported(ZelmMeasureRig* rig, const ZelmMeasureExportOptions& options, std::int32_t side) {
    std::string file(32768, '\0');
    std::int64_t length = 0;
    EXPECT_EQ(zelmMeasureExport(rig, &options, side, 32768, file.data(), &length), ZELM_OK);
    file.resize(static_cast<std::size_t>(length));
    return file;
}

TEST(MeasureMemory, FilesOfOtherPrograms) {
    const OpenedRig rig(trueRig().block());
    const OpenedRig parallel(parallelBlock());
    for (std::int32_t format = 0; format < kFormats; ++format) {
        SCOPED_TRACE(format);
        auto options = emptyRecord<ZelmMeasureExportOptions>();
        options.format = format;
        const std::int32_t side = hasFileOfEach(format) ? 'L' : 0;
        std::vector<unsigned char> bytes(32768, 7);
        const std::vector<unsigned char> before = bytes;
        const FaultCounts writing =
            expectEveryFailureIsTold({.call =
                                          [&](FaultOutputs& out) {
                                              const std::int32_t status = ZELM_CASE(zelmMeasureExport)(
                                                  rig.get(), &options, side, 32768, bytes.data(), out.longs);
                                              EXPECT_EQ(bytes == before, status != ZELM_OK);
                                              return status;
                                          },
                                      .after = [&] { bytes = before; },
                                      .growth = 0.2});
        EXPECT_GE(writing.own, 5);
        expectEveryFailureIsTold(
            [&](FaultOutputs& out) {
                return ZELM_CASE(zelmMeasureExport)(parallel.get(), &options, side, 0, nullptr, out.longs);
            },
            ZELM_MEASURE_ERR_DATA);
        expectEveryFailureIsTold([&](FaultOutputs&) {
            WatchedRecord<ZelmMeasureExportLoss> loss;
            const std::int32_t status = ZELM_CASE(zelmMeasureExportLoss)(rig.get(), &options, &loss.record);
            EXPECT_EQ(loss.isUntouched(), status != ZELM_OK);
            return status;
        });
    }
}

// Opens the files with each allocation failing; `damage` cuts so many bytes off the first one.
FaultCounts importing(std::vector<std::string> files, std::int32_t format, std::size_t damage, std::int32_t success) {
    files[0].resize(files[0].size() - damage);
    auto options = emptyRecord<ZelmMeasureImportOptions>();
    options.format = format;
    options.leftWidth = 1280;
    options.leftHeight = 960;
    std::vector<const void*> places;
    std::vector<std::int64_t> sizes;
    for (const std::string& file : files) {
        places.push_back(file.data());
        sizes.push_back(static_cast<std::int64_t>(file.size()));
    }
    ZelmMeasureRig* rig = nullptr;
    return expectEveryFailureIsTold({.call =
                                         [&](FaultOutputs&) {
                                             WatchedRecord<ZelmMeasureImported> imported;
                                             const std::int32_t status = ZELM_CASE(zelmMeasureImport)(
                                                 &options, static_cast<std::int32_t>(files.size()), places.data(),
                                                 sizes.data(), &rig, &imported.record);
                                             EXPECT_EQ(imported.isUntouched(), status != ZELM_OK);
                                             EXPECT_EQ(rig == nullptr, status == ZELM_ERR_MEMORY);
                                             return status;
                                         },
                                     .success = success,
                                     .after = [&] { zelmMeasureRigClose(&rig); },
                                     .everyOf = 100,
                                     .growth = 0.2});
}

TEST(MeasureMemory, FilesThatAreRead) {
    const OpenedRig rig(trueRig().block());
    for (std::int32_t format = 0; format < kFormats; ++format) {
        SCOPED_TRACE(format);
        auto options = emptyRecord<ZelmMeasureExportOptions>();
        options.format = format;
        std::vector<std::string> files;
        for (const std::int32_t side : hasFileOfEach(format) ? std::vector<std::int32_t>{'L', 'R'} : std::vector{0}) {
            files.push_back(exported(rig.get(), options, side));
        }
        EXPECT_GE(importing(files, format, 0, ZELM_OK).own, 10);
        EXPECT_GE(importing(files, format, files[0].size() / 2, ZELM_MEASURE_ERR_DATA).own, 2);
    }
}

TEST(MeasureMemory, RowAlignedPairs) {
    const OpenedRig rig(trueRig().block());
    auto options = emptyRecord<ZelmMeasureRowOptions>();
    options.width = 40;
    options.height = 30;
    const FaultCounts aligning = expectEveryFailureIsTold([&](FaultOutputs&) {
        WatchedRecord<ZelmMeasureRows> rows;
        const std::int32_t status = ZELM_CASE(zelmMeasureAlignRows)(rig.get(), &options, &rows.record);
        EXPECT_EQ(rows.isUntouched(), status != ZELM_OK);
        return status;
    });
    EXPECT_GE(aligning.own, 2);
    std::vector<float> map(2 * 40 * 30, -7.0F);
    const std::vector<float> before = map;
    expectEveryFailureIsTold({.call =
                                  [&](FaultOutputs&) {
                                      const std::int32_t status =
                                          ZELM_CASE(zelmMeasureAlignRowsMap)(rig.get(), &options, 'R', map.data());
                                      EXPECT_EQ(map == before, status != ZELM_OK);
                                      return status;
                                  },
                              .after = [&] { map = before; }});
    const double pixels[] = {100.0, 200.0, 300.0, 250.0};
    expectEveryFailureIsTold([&](FaultOutputs& out) {
        return ZELM_CASE(zelmMeasureAlignRowsPoints)(rig.get(), &options, 'L', 2, pixels, out.numbers);
    });
    const OpenedRig parallel(parallelBlock());
    const FaultCounts refused = expectEveryFailureIsTold(
        [&](FaultOutputs&) {
            auto rows = emptyRecord<ZelmMeasureRows>();
            return ZELM_CASE(zelmMeasureAlignRows)(parallel.get(), &options, &rows);
        },
        ZELM_MEASURE_ERR_DATA);
    EXPECT_GE(refused.own, 1);
}

TEST(MeasureMemory, Comparisons) {
    const OpenedRig first(trueRig().block());
    RigTruth other = trueRig();
    other.left.fx += 1.0;
    const OpenedRig second(other.block());
    const FaultCounts volume = expectEveryFailureIsTold({.call =
                                                             [&](FaultOutputs&) {
                                                                 WatchedRecord<ZelmMeasureComparison> c;
                                                                 const std::int32_t status =
                                                                     ZELM_CASE(zelmMeasureCompare)(
                                                                         first.get(), second.get(), nullptr, &c.record);
                                                                 EXPECT_EQ(c.isUntouched(), status != ZELM_OK);
                                                                 return status;
                                                             },
                                                         .everyOf = 30,
                                                         .growth = 0.3});
    EXPECT_GE(volume.own, 5);
    const double pixels[] = {100.0, 200.0, 300.0, 250.0};
    const FaultCounts image = expectEveryFailureIsTold(
        {.call =
             [&](FaultOutputs& out) {
                 return ZELM_CASE(zelmMeasureCompareImage)(first.get(), second.get(), 'L', 2, pixels, out.numbers);
             },
         .everyOf = 30,
         .growth = 0.3});
    EXPECT_GE(image.own + image.core, 1);
}

TEST(MeasureMemory, DesignsOfPlates) {
    const Zelm2ViewPatternDesc plate = plainPattern();
    auto camera = emptyRecord<ZelmMeasureCamera>();
    camera.intrinsics.alpha = camera.intrinsics.beta = 100.0;
    camera.width = 320;
    camera.height = 240;
    const FaultCounts design = expectEveryFailureIsTold([&](FaultOutputs& out) {
        WatchedRecord<ZelmMeasurePlateFinding> finding;
        const std::int32_t status =
            ZELM_CASE(zelmMeasurePlateDesign)(&plate, 1, &camera, 400.0, 900.0, &finding.record, 1, out.longs);
        EXPECT_EQ(finding.isUntouched(), status != ZELM_OK);
        return status;
    });
    EXPECT_GE(design.own, 1);
    Zelm2ViewPatternDesc expanded{};
    const double places[] = {1.0, 2.0, 3.0};
    expectNoAllocation([&](FaultOutputs& out) {
        return ZELM_CASE(zelmMeasurePlateExpanded)(&plate, 1e-5, 3.0, 1, places, &expanded, out.numbers,
                                                   out.numbers + 3);
    });
}

TEST(MeasureMemory, Features) {
    FeatureScene scene = shapePoints(ZELM_MEASURE_FEATURE_PLANE, 12);
    scene.state(0.05, 0.1);
    const ZelmMeasureFeaturePoints points{
        sizeof(ZelmMeasureFeaturePoints), 0, 12, scene.points.data(), scene.noise.data(), 0.0};
    const std::vector<std::int64_t> all = scene.all();
    const ZelmMeasureFeature features[] = {
        {sizeof(ZelmMeasureFeature), ZELM_MEASURE_FEATURE_PLANE, 1, 0, 12, all.data()},
        {sizeof(ZelmMeasureFeature), ZELM_MEASURE_FEATURE_POINT, 0, 0, 1, all.data()}};
    const ZelmMeasureRelation relation = relationOfTwo(ZELM_MEASURE_RELATION_DISTANCE, 0, 1);
    const FaultCounts failures =
        expectEveryFailureIsTold({.call =
                                      [&](FaultOutputs& out) {
                                          ZelmMeasureFeatureResult results[2]{};
                                          for (std::size_t i = 0; i < 2; ++i) {
                                              results[i].size = sizeof(ZelmMeasureFeatureResult);
                                              results[i].distances = out.numbers + 20 * i;
                                              results[i].uses = out.integers + 20 * i;
                                              results[i].used = -7;
                                          }
                                          auto between = emptyRecord<ZelmMeasureRelationResult>();
                                          between.value = -7.0;
                                          const std::int32_t status = ZELM_CASE(zelmMeasureFeatures)(
                                              &points, nullptr, 2, features, results, 1, &relation, &between);
                                          EXPECT_EQ(results[0].used == -7, status != ZELM_OK);
                                          EXPECT_EQ(results[1].used == -7, status != ZELM_OK);
                                          EXPECT_EQ(between.value == -7.0, status != ZELM_OK);
                                          return status;
                                      },
                                  .growth = 0.1});
    EXPECT_GE(failures.own, 100);
}

}  // namespace
}  // namespace zelmtest
