#include "cameraParameters.h"

#include <fmt/format.h>

#include <cmath>

#include "numberText.h"
#include "rigReport.h"

namespace zelm::tool {
namespace {

constexpr double kSmallDistortion = 1e-3;  // below it six decimals would show too little
constexpr const char* kNone = "-";

std::string distortionText(double k) {
    return k == 0.0 || std::fabs(k) >= kSmallDistortion ? fmt::format("{:.6f}", k) : fmt::format("{:.5g}", k);
}

class Rows {
public:
    Rows(const Rig& pair, std::string lengths) : rig(pair), units(std::move(lengths)) {}

    // text(camera) for every camera.
    template <class Text>
    void add(const std::string& name, const std::string& unit, Text text, int parameter = -1) {
        list.push_back({name, unit, text(rig.left), text(rig.right), parameter});
    }

    // The scales of the cameras of one kind; none when neither is.
    void addScales(bool parallel) {
        const int model = parallel ? ZELM_CAMERA_PARALLEL : ZELM_CAMERA_PERSPECTIVE;
        const auto isOfKind = [parallel](const RigCamera& camera) { return camera.isParallel() == parallel; };
        if (!isOfKind(rig.left) && !isOfKind(rig.right)) {
            return;
        }
        const ScaleWords words = scaleWords(model, units);
        const auto scale = [&](const std::string& name, double ZelmCameraIntrinsics::*field, int digits,
                               int parameter) {
            const auto text = [&](const RigCamera& camera) {
                return isOfKind(camera) ? fmt::format("{:.{}f}", camera.intrinsics.*field, digits) : kNone;
            };
            add(name, words.unit, text, parameter);
        };
        scale(words.name + " alpha", &ZelmCameraIntrinsics::alpha, 3, ZELM_MEASURE_LEFT_FX);
        scale(words.name + " beta", &ZelmCameraIntrinsics::beta, 3, ZELM_MEASURE_LEFT_FY);
        scale("skew gamma", &ZelmCameraIntrinsics::gamma, 4, ZELM_MEASURE_LEFT_SKEW);
    }

    std::vector<CameraParameter> list;

private:
    const Rig& rig;
    std::string units;
};

}  // namespace

ScaleWords scaleWords(int model, const std::string& units) {
    if (model != ZELM_CAMERA_PARALLEL) {
        return {"focal length", "px"};
    }
    // One of them: "px/plate unit".
    return {"magnification", "px/" + (units.ends_with("units") ? units.substr(0, units.size() - 1) : units)};
}

std::vector<CameraParameter> cameraParameters(const Rig& rig, const std::string& units) {
    Rows rows(rig, units);
    rows.add("model", "", [](const RigCamera& c) { return std::string(modelName(c.model)); });
    rows.add("image size", "px", [](const RigCamera& c) { return fmt::format("{} x {}", c.width, c.height); });
    rows.addScales(false);
    rows.addScales(true);
    rows.add(
        "principal point cx", "px", [](const RigCamera& c) { return fmt::format("{:.3f}", c.intrinsics.cx); },
        ZELM_MEASURE_LEFT_CX);
    rows.add(
        "principal point cy", "px", [](const RigCamera& c) { return fmt::format("{:.3f}", c.intrinsics.cy); },
        ZELM_MEASURE_LEFT_CY);
    rows.add("axis angle theta", "deg",
             [](const RigCamera& c) { return fmt::format("{:.4f}", c.intrinsics.theta * kDegreesPerRadian); });
    rows.add(
        "distortion k1", "", [](const RigCamera& c) { return distortionText(c.intrinsics.k1); }, ZELM_MEASURE_LEFT_K1);
    rows.add(
        "distortion k2", "", [](const RigCamera& c) { return distortionText(c.intrinsics.k2); }, ZELM_MEASURE_LEFT_K2);
    return rows.list;
}

}  // namespace zelm::tool
