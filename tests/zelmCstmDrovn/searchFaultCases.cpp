// Allocation faults of the search.
#include "faultCase.h"
#include "searchScene.h"

namespace {

using namespace zelmtest;

void expectFault(std::int32_t status, const SearchScene& scene) {
    EXPECT_EQ(status, ZELM_ERR_MEMORY);
    EXPECT_EQ(scene.count, -77);
    for (const ZelmCstmMatch& match : scene.matches) {
        EXPECT_EQ(match.score, 77.0);
        EXPECT_EQ(match.x, 77.0);
        EXPECT_EQ(match.y, 77.0);
    }
}

SearchScene preparedScene() {
    SearchScene scene = texturedScene(9, 31, 28, 1);
    scene.prm.mode = ZELM_CSTM_CHECKER;
    scene.prm.maxResults = 4;
    scene.run();
    EXPECT_EQ(scene.count, 4);
    scene.count = -77;
    scene.matches.assign(5, {77.0, 77.0, 77.0});
    return scene;
}

}  // namespace

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnCalcBasicStatisticsOfRefImg) {
    SearchScene scene = texturedScene(5, 31, 28);
    scene.prepare();
    EXPECT_EQ(probe.call([&] { return zelmCstmDrovnCalcBasicStatisticsOfRefImg(&scene.ref); }), ZELM_OK);
}

ZELM_NO_ALLOCATION_CASE(zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8) {
    SearchScene scene = texturedScene(5, 31, 28);
    const vImage_Buffer tmpl{scene.tmplPixels.data(), 15, 15, 15};
    EXPECT_EQ(
        probe.call([&] { return zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(&tmpl, nullptr, &scene.ref); }),
        ZELM_OK);
}

ZELM_FAULT_CASE(zelmCstmDrovnSearchOnEpiLine) {
    SearchScene scene = preparedScene();
    const std::int32_t status = probe.call(
        [&] { return zelmCstmDrovnSearchOnEpiLine(&scene.ref, &scene.prm, &scene.count, scene.matches.data()); });
    if (probe.failed()) {
        expectFault(status, scene);
    } else {
        EXPECT_EQ(status, ZELM_OK);
        EXPECT_EQ(scene.count, 4);
    }
}

ZELM_FAULT_CASE(zelmCstmDrovnSearchOnEpiLine_vImagePlanar8) {
    SearchScene scene = preparedScene();
    const vImage_Buffer tmpl{scene.tmplPixels.data(), 15, 15, 15};
    const vImage_Buffer image{scene.pixels.data(), 60, 80, 80};
    const std::int32_t status = probe.call([&] {
        return zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(&scene.ref, &tmpl, nullptr, &scene.prm, &image, nullptr,
                                                          &scene.count, scene.matches.data());
    });
    if (probe.failed()) {
        expectFault(status, scene);
    } else {
        EXPECT_EQ(status, ZELM_OK);
        EXPECT_EQ(scene.count, 4);
    }
}
