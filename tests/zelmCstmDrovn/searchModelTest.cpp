// The search against an independent model of it, over random templates, images, masks, lines, regions and rules.
#include <gtest/gtest.h>

#include "searchModel.h"

namespace {

using namespace zelmtest;

SearchScene randomScene(Random& random, int masks, int mode) {
    const int tw = random.integer(1, 13);
    const int th = random.integer(1, 13);
    SearchScene scene(random.integer(25, 60), random.integer(25, 50), tw, th);
    const int smoothings = random.integer(0, 3);
    scene.pixels = randomTexture(random, scene.width, scene.height, smoothings);
    if (random.integer(0, 3) > 0) {
        scene.cutTemplate(random.integer(7, scene.width - 8), random.integer(7, scene.height - 8));
    } else {
        scene.tmplPixels = randomTexture(random, tw, th, smoothings);
    }
    if ((masks & 1) != 0) {
        scene.tmplMask.assign(scene.tmplPixels.size(), 1);
        for (std::size_t i = 1; i < scene.tmplMask.size(); ++i) {
            scene.tmplMask[i] = static_cast<std::uint8_t>(random.integer(0, 3) * 60);
        }
    }
    if ((masks & 2) != 0) {
        scene.mask.assign(scene.pixels.size(), 1);
        const int hidden = random.integer(0, 2);  // none, some or most of the pixels
        for (std::uint8_t& byte : scene.mask) {
            byte = hidden == 0 || random.integer(0, hidden == 1 ? 9 : 1) > 0 ? 255 : 0;
        }
    }
    scene.ref.anchorX = random.uniform(0.0, tw);
    scene.ref.anchorY = random.uniform(0.0, th);
    scene.prm.mode = mode;
    scene.prm.roiX = random.integer(0, 10);
    scene.prm.roiY = random.integer(0, 10);
    scene.prm.roiWidth = random.integer(3, scene.width);
    scene.prm.roiHeight = random.integer(3, scene.height);
    const double angle =
        random.integer(0, 3) == 0 ? 0.7853981633974483 * random.integer(0, 3) : random.uniform(0.0, 3.1);
    const double x = scene.prm.roiX + random.uniform(0.5, scene.prm.roiWidth - 1.5);
    const double y = scene.prm.roiY + random.uniform(0.5, scene.prm.roiHeight - 1.5);
    const double scale = random.uniform(-2.0, 2.0) + 0.01;
    scene.prm.epiLine = {-std::sin(angle) * scale, std::cos(angle) * scale,
                         (std::sin(angle) * x - std::cos(angle) * y) * scale};
    scene.prm.maxResults = random.integer(1, 12);
    scene.prm.minScore = random.integer(0, 1) == 0 ? 0.0 : random.uniform(-0.5, 0.8);
    scene.prm.minDistance = random.integer(-2, 12);
    return scene;
}

TEST(SearchModel, AgreesWithTheLibraryInEveryModeAndMaskCombination) {
    SearchModel model(checkerTakesAllPixels());
    int matches = 0;
    for (int combination = 0; combination < 12; ++combination) {
        Random random(1000 + static_cast<std::uint64_t>(combination));
        for (int round = 0; round < 400; ++round) {
            SCOPED_TRACE("masks " + std::to_string(combination / 3) + ", mode " + std::to_string(combination % 3) +
                         ", round " + std::to_string(round));
            SearchScene scene = randomScene(random, combination / 3, combination % 3);
            ASSERT_EQ(scene.run(), ZELM_OK);
            const std::vector<ZelmCstmMatch> expected = model.run(scene);
            ASSERT_EQ(static_cast<std::size_t>(scene.count), expected.size());
            for (std::size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(scene.matches[i].score, expected[i].score);
                // Rounding of some 1e-14 in the logarithms and abscissae, over curvatures that random scores keep above
                // 1e-5.
                ASSERT_NEAR(scene.matches[i].x, expected[i].x, 1e-9);
                ASSERT_NEAR(scene.matches[i].y, expected[i].y, 1e-9);
            }
            for (std::size_t i = expected.size(); i < scene.matches.size(); ++i) {
                ASSERT_EQ(scene.matches[i].x, 77.0) << "written beyond the matches";
            }
            matches += scene.count;
        }
    }
    // The cases reach what they are to prove.
    EXPECT_GT(matches, 3000);
    for (const int climbs : model.coverage.climbs) {
        EXPECT_GT(climbs, 100);
    }
    EXPECT_GT(model.coverage.dropped, 100);
    EXPECT_GT(model.coverage.low, 100);
    EXPECT_GT(model.coverage.raised, 100);
    EXPECT_GT(model.coverage.thinned, 100);
    EXPECT_GT(model.coverage.stopped, 100);
}

}  // namespace
