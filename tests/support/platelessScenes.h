// Scenes without a plate of dots: what a diagnosis may take for one.
#ifndef ZELM_TEST_PLATELESS_SCENES_H
#define ZELM_TEST_PLATELESS_SCENES_H

#include "randomSource.h"
#include "renderView.h"

namespace zelm::accuracy {

enum class Scene { clutter, uniformNoise, normalNoise, gradient, texture, text, stripes, stars };
constexpr int kScenes = 8;

const char* sceneName(Scene scene);

render::LevelImage platelessScene(Scene scene, int width, int height, render::RandomSource& random);

// Squares of two levels side by side: a plate, but none of dots.
render::LevelImage checkerboard(int width, int height, render::RandomSource& random);

}  // namespace zelm::accuracy

#endif
