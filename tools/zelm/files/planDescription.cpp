#include "planDescription.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "failure.h"
#include "jsonFields.h"
#include "numberText.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr double kMaxConvergence = 150.0;  // degrees

// A required number greater than 0.
template <class Number>
Number positive(JsonFields& fields, const char* key) {
    Number value{};
    fields.read(key, value);
    if (fields.find(key) == nullptr) {
        fields.fail(key, "a number greater than 0, but it is missing");
    }
    if (!(value > Number{}) || !std::isfinite(static_cast<double>(value))) {
        fields.fail(key, fmt::format("a number greater than 0, not {}", value));
    }
    return value;
}

// In pixels as fx and fy, or as a lens before a sensor.
void readFocalLengths(JsonFields& fields, ZelmCameraIntrinsics& intrinsics) {
    const bool inPixels = fields.find("fx") != nullptr;
    const bool asLens = fields.find("focalLength") != nullptr;
    if (inPixels && asLens) {
        fields.fail("fx", "either fx in pixels, or focalLength with pixelSize");
    }
    if (inPixels) {
        intrinsics.alpha = positive<double>(fields, "fx");
        intrinsics.beta = fields.find("fy") == nullptr ? intrinsics.alpha : positive<double>(fields, "fy");
        return;
    }
    if (!asLens) {
        fields.fail("focalLength", "a length with pixelSize in the same unit, or fx in pixels, but both are missing");
    }
    intrinsics.alpha = intrinsics.beta =
        positive<double>(fields, "focalLength") / positive<double>(fields, "pixelSize");
}

ZelmMeasureCamera readCamera(const Json& json, const std::string& file, const char* name) {
    JsonFields fields(json, file, name);
    ZelmMeasureCamera camera{};
    camera.size = sizeof(camera);
    camera.width = positive<int>(fields, "width");
    camera.height = positive<int>(fields, "height");
    ZelmCameraIntrinsics& i = camera.intrinsics;
    readFocalLengths(fields, i);
    i.cx = 0.5 * (camera.width - 1);
    i.cy = 0.5 * (camera.height - 1);
    fields.read("cx", i.cx);
    fields.read("cy", i.cy);
    fields.read("k1", i.k1);
    fields.read("k2", i.k2);
    fields.done();
    const std::array<double, 9> A{i.alpha, 0.0, i.cx, 0.0, i.beta, i.cy, 0.0, 0.0, 1.0};
    std::copy(A.begin(), A.end(), i.A);
    return camera;
}

// Each camera is turned inwards by half of the convergence: Y is the axis, the baseline lies along the frame's x.
ZelmMeasureRelativePose poseOf(double baseline, double convergence) {
    ZelmMeasureRelativePose pose{};
    pose.size = sizeof(pose);
    const double half = 0.5 * convergence;
    const double c = std::cos(convergence);
    const double s = std::sin(convergence);
    const std::array<double, 9> R{c, 0.0, s, 0.0, 1.0, 0.0, -s, 0.0, c};
    std::copy(R.begin(), R.end(), pose.R);
    pose.t[0] = -baseline * std::cos(half);
    pose.t[2] = baseline * std::sin(half);
    pose.baseline = baseline;
    pose.convergence = convergence;
    return pose;
}

PlannedPair readPair(JsonFields& fields, const std::string& file, double distance) {
    const Json* const left = fields.find("left");
    const Json* const right = fields.find("right");
    if (left == nullptr) {
        fields.fail("left", "the left camera, but it is missing (or give a calibrated pair with --rig)");
    }
    PlannedPair pair;
    pair.left = readCamera(*left, file, "left");
    pair.right = right == nullptr ? pair.left : readCamera(*right, file, "right");
    const auto baseline = positive<double>(fields, "baseline");
    double degrees = 2.0 * std::atan2(0.5 * baseline, distance) * kDegreesPerRadian;
    fields.read("convergence", degrees);
    if (!(degrees >= 0.0 && degrees <= kMaxConvergence)) {
        fields.fail("convergence", fmt::format("degrees from 0 to {}, not {}", kMaxConvergence, degrees));
    }
    pair.relative = poseOf(baseline, degrees / kDegreesPerRadian);
    return pair;
}

void readVolume(JsonFields& outer, const std::string& file, ZelmMeasurePlanOptions& options) {
    const Json* const json = outer.find("volume");
    if (json == nullptr) {
        outer.fail("volume", "an object with distance and size, but it is missing");
    }
    JsonFields fields(*json, file, "volume");
    options.centre[2] = positive<double>(fields, "distance");
    std::array<double, 2> offset{};
    fields.read("offset", offset);
    std::copy(offset.begin(), offset.end(), options.centre);
    if (fields.find("size") == nullptr) {
        fields.fail("size", "[width, height, depth], but it is missing");
    }
    std::array<double, 3> size{};
    fields.read("size", size);
    if (!(size[0] > 0.0 && size[1] > 0.0 && size[2] >= 0.0)) {
        fields.fail("size", "[width, height, depth] greater than 0");
    }
    std::copy(size.begin(), size.end(), options.extent);
    fields.done();
}

}  // namespace

PlanDescription readPlanDescription(const fs::path& path, bool withRig) {
    const std::string file = path.string();
    const Json json = parseCommentedJson(file, readWholeFile(path, "a description of a pair and a volume"));
    JsonFields fields(json, file, "");
    PlanDescription description;
    ZelmMeasurePlanOptions& options = description.options;
    options.size = sizeof(options);
    readVolume(fields, file, options);
    if (withRig) {
        for (const char* const key : {"left", "right", "baseline", "convergence"}) {
            if (fields.find(key) != nullptr) {
                fields.fail(key, "nothing, because --rig gives the cameras");
            }
        }
    } else {
        description.pair = readPair(fields, file, options.centre[2]);
    }
    std::array<double, 2> focus{};
    fields.read("focus", focus);
    if (fields.find("focus") != nullptr && !(focus[0] >= 0.0 && focus[1] > focus[0])) {
        fields.fail("focus", "[nearest, farthest] sharp distance");
    }
    options.focusNear = focus[0];
    options.focusFar = focus[1];
    for (const char* const forPeople : {"name", "description", "comment"}) {
        static_cast<void>(fields.find(forPeople));
    }
    fields.done();
    return description;
}

}  // namespace zelm::tool
