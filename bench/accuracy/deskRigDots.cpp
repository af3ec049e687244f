// Dots of samples/desk-rig against the projections of their places by the true cameras. The centre of a dot's ellipse
// is not the projection of its centre: the difference is taken from the truth.
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "dotShapes.h"
#include "dotTables.h"
#include "imageFile.h"
#include "truth.h"

namespace zelm::accuracy {
namespace {

constexpr int kViews = 12;

render::Camera cameraOf(const nlohmann::json& c) {
    render::Camera camera;
    camera.width = c.at("width");
    camera.height = c.at("height");
    camera.fx = c.at("fx");
    camera.fy = c.at("fy");
    camera.cx = c.at("cx");
    camera.cy = c.at("cy");
    camera.k1 = c.at("k1");
    camera.k2 = c.at("k2");
    return camera;
}

render::Pose poseOf(const nlohmann::json& view) {
    return {view.at("R").get<std::array<double, 9>>(), view.at("t").get<std::array<double, 3>>()};
}

struct Sums {
    int dots = 0, placed = 0;
    double squares = 0.0, x = 0.0, y = 0.0, worst = 0.0, pull = 0.0;

    void add(const measure::DotFitResult& dot, const render::Pixel& truth) {
        ++dots;
        if (!dot.ok) {
            return;
        }
        const double dx = dot.centre.x - truth.x;
        const double dy = dot.centre.y - truth.y;
        ++placed;
        squares += 0.5 * (dx * dx + dy * dy);
        pull += 0.5 * (dx * dx / dot.covariance[0] + dy * dy / dot.covariance[2]);
        x += dx;
        y += dy;
        worst = std::max(worst, std::hypot(dx, dy));
    }
    void print(const char* name) const {
        const double n = std::max(placed, 1);
        std::printf("| %s | %d of %d | %.4f | %+.4f, %+.4f | %.3f | %.2f |\n", name, placed, dots,
                    std::sqrt(squares / n), x / n, y / n, worst, std::sqrt(pull / n));
    }
};

void addImage(const std::string& path, const render::Camera& camera, const render::Pose& pose, Sums& sums) {
    const tool::Picture picture = tool::readPicture(path);
    const measure::DenseImage image({picture.pixels.data(), camera.width, camera.height, camera.width});
    for (const render::DotTruth& dot : render::dotTruths(render::Plate{}, camera, pose)) {
        const auto shape = zelmtest::shapeOf(dot.ellipse, 0.3, -0.2);
        sums.add(measure::fitDot(image, shape, {measure::DotPolarity::dark, 3.0 * dot.radius}), dot.ellipse.centre);
    }
}

}  // namespace

void printDeskRigDots() {
    const std::string folder = std::string(ZELM_SOURCE_DIR) + "/samples/desk-rig/";
    const auto truth = nlohmann::json::parse(std::ifstream(folder + "truth.json"));
    Sums all;
    Sums first;  // views 0 to 2
    for (int view = 0; view < kViews; ++view) {
        for (const char* side : {"left", "right"}) {
            char name[32];
            std::snprintf(name, sizeof name, "%s_%02d.png", side, view);
            const render::Camera camera = cameraOf(truth.at("cameras").at(side));
            const render::Pose pose = poseOf(truth.at("views").at(static_cast<std::size_t>(view)).at(side));
            for (Sums* sums : {&all, &first}) {
                if (sums == &all || view < 3) {
                    addImage(folder + name, camera, pose, *sums);
                }
            }
        }
    }
    std::printf(
        "\n### Dots of samples/desk-rig\n\n| views | placed | error | mean error x, y | worst | over its standard "
        "deviation |\n|---|---:|---:|---:|---:|---:|\n");
    first.print("0 to 2");
    all.print("all 12");
}

}  // namespace zelm::accuracy
