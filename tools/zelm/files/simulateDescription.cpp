#include "simulateDescription.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "failure.h"
#include "jsonFields.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

using Json = nlohmann::json;

constexpr std::string_view kExample = R"({
  // Whatever is left out keeps the value shown here. Lengths are in any one unit, here millimetres; angles in degrees;
  // image positions in pixels, with pixel centres at integer coordinates.
  "set": "simulated",          // a name, copied into truth.json

  "plate": {
    "columns": [-6, 6],        // grid indices of the outermost columns; the corner marker is dot (0, 0)
    "rows": [-5, 5],
    "dotPitchX": 10.0,         // distance of the columns
    "dotPitchY": 10.0,         // distance of the rows
    "dotDiameter": 4.0,
    "markerDiameter": 7.0,
    "markerColumn": 3,         // the x marker is dot (3, 0)
    "markerRow": 3,            // the y marker is dot (0, 3)
    "marginX": 12.0,           // from the outermost dot centres to the edge of the plate
    "marginY": 12.0,
    "polarity": "dark",        // "dark" dots on a bright plate, or "bright" dots on a dark one
    "missing": []              // dots that are not there, for example [[2, 1], [0, 3]]
  },

  // A lens moves a pixel away from the principal point by the factor 1 + k1 r^2 + k2 r^4, where r is the distance from
  // it in focal lengths.
  "left": {
    "width": 1280, "height": 960,
    "projection": "perspective",  // or "parallel": fx and fy are then pixels per length
    "fx": 1690.4, "fy": 1688.1,   // focal lengths in pixels
    "skew": 0.0,                  // pixels
    "theta": 0.0,                 // of a tilted camera: angle by which the image axes are sheared
    "cx": 641.7, "cy": 477.3,     // principal point
    "k1": -0.118, "k2": 0.052     // lens
  },
  "right": {
    "width": 1280, "height": 960,
    "projection": "perspective",
    "fx": 1695.2, "fy": 1693.6,
    "skew": 0.0,
    "theta": 0.0,
    "cx": 637.2, "cy": 483.8,
    "k1": -0.111, "k2": 0.045
  },
  "rightFromLeft": {           // X_right = R X_left + t; camera axes: x right, y down, z forward
    "rotation": [0.45, 19.5, -0.7],  // axis times angle
    "translation": [-118.3, 1.2, 19.4]
  },

  "optics": {
    "dots": 20.0,              // gray levels: of the dots; for "bright" dots 190
    "plate": 190.0,            // of the plate; for "bright" dots 25
    "ground": 10.0,            // around the plate; for "bright" dots 200
    "blurSigma": 0.6,          // Gaussian blur in pixels: 0, or 0.02 to 50
    "noiseSigma": 1.5,         // gray levels
    "gradientX": 0.0,          // relative change of brightness from the middle of the image to its right edge
    "gradientY": 0.0,          // and to its lower edge
    "falloff": 0.0             // relative loss of brightness in the corners
  },

  // Either views drawn at random, in which both cameras see the whole plate ...
  "views": {
    "count": 12,
    "seed": 1,                 // of the poses and the noise
    "maxTilt": 35.0,           // of the plate against either camera, as far as their own angle allows
    "maxRoll": 180.0,          // turn of the plate in its plane, either way
    "border": 6.0,             // pixels between the plate and the edge of either image
    "smallestFill": 0.75,      // size of the plate as a share of what would just fit, at least
    "largestFill": 0.95        // and at most
  }
  // ... or poses of the plate in the left camera, X_left = R X_plate + t:
  // "views": [{"rotation": [14.2, 1.9, 4.4], "translation": [34.5, -3.2, 346.2]}, ...]
}
)";

// Runs `check` and turns what it finds wrong into a Failure about `where`.
template <typename Check>
void checked(const std::string& file, const std::string& where, Check check) {
    try {
        check();
    } catch (const std::invalid_argument& error) {
        failUsage("{}: {}: {}", file, where, error.what());
    }
}

std::array<double, 9> rotationFromDegrees(std::array<double, 3> vector) {
    for (double& component : vector) {
        component *= std::numbers::pi / 180.0;
    }
    return render::rotationFromVector(vector);
}

class Reader {
public:
    explicit Reader(std::string fileName) : file(std::move(fileName)) {}

    SimulateDescription read(const Json& json) const {
        SimulateDescription d = defaultDescription();
        JsonFields fields(json, file, "");
        fields.read("set", d.set);
        object(fields, "plate", [&](JsonFields& f) { readPlate(f, d.plate); });
        object(fields, "left", [&](JsonFields& f) { readCamera(f, d.rig.left); });
        object(fields, "right", [&](JsonFields& f) { readCamera(f, d.rig.right); });
        object(fields, "rightFromLeft", [&](JsonFields& f) { readPose(f, d.rig.rightFromLeft); });
        d.optics.levels = render::GrayLevels::matching(d.plate.polarity);
        object(fields, "optics", [&](JsonFields& f) { readOptics(f, d.optics); });
        checkContrast(d);
        if (const Json* views = fields.find("views"); views != nullptr && views->is_array()) {
            readPoses(*views, d);
        } else {
            object(fields, "views", [&](JsonFields& f) { readRange(f, d); });
        }
        fields.done();
        return d;
    }

private:
    template <typename ReadFields>
    void object(JsonFields& parent, const std::string& key, ReadFields readFields) const {
        if (const Json* value = parent.find(key); value != nullptr) {
            JsonFields fields(*value, file, parent.pathOf(key));
            checked(file, parent.pathOf(key), [&] { readFields(fields); });
            fields.done();
        }
    }

    // Dots of the other polarity than the plate file would say cannot be found again.
    void checkContrast(const SimulateDescription& d) const {
        const double step = d.optics.levels.plate - d.optics.levels.dots;
        const bool dark = d.plate.polarity == render::Polarity::darkDots;
        if (dark ? step < 0.0 : step > 0.0) {
            failUsage(
                "{}: optics: dots of level {} on a plate of level {} are not {}, as plate.polarity says: change "
                "one or the other",
                file, d.optics.levels.dots, d.optics.levels.plate, dark ? "dark" : "bright");
        }
    }

    void readPlate(JsonFields& f, render::Plate& plate) const {
        std::array<int, 2> columns = {plate.minX, plate.maxX}, rows = {plate.minY, plate.maxY};
        std::string polarity = "dark";
        f.read("columns", columns);
        f.read("rows", rows);
        f.read("dotPitchX", plate.pitchX);
        f.read("dotPitchY", plate.pitchY);
        f.read("dotDiameter", plate.dotDiameter);
        f.read("markerDiameter", plate.markerDiameter);
        f.read("markerColumn", plate.markerX);
        f.read("markerRow", plate.markerY);
        f.read("marginX", plate.marginX);
        f.read("marginY", plate.marginY);
        f.read("polarity", polarity);
        if (polarity != "dark" && polarity != "bright") {
            f.fail("polarity", "\"dark\" or \"bright\"");
        }
        plate.polarity = polarity == "dark" ? render::Polarity::darkDots : render::Polarity::lightDots;
        plate.minX = columns[0];
        plate.maxX = columns[1];
        plate.minY = rows[0];
        plate.maxY = rows[1];
        std::vector<std::array<int, 2>> missing;
        f.read("missing", missing);
        for (const auto& [column, row] : missing) {
            plate.missing.push_back({column, row});
        }
        render::checkPlate(plate);
    }

    void readCamera(JsonFields& f, render::Camera& camera) const {
        std::string projection = "perspective";
        double thetaDegrees = 0.0;
        f.read("width", camera.width);
        f.read("height", camera.height);
        f.read("projection", projection);
        f.read("fx", camera.fx);
        f.read("fy", camera.fy);
        f.read("skew", camera.skew);
        f.read("theta", thetaDegrees);
        f.read("cx", camera.cx);
        f.read("cy", camera.cy);
        f.read("k1", camera.k1);
        f.read("k2", camera.k2);
        if (projection != "perspective" && projection != "parallel") {
            f.fail("projection", "\"perspective\" or \"parallel\"");
        }
        camera.projection = projection == "parallel" ? render::Projection::parallel : render::Projection::perspective;
        camera.theta = thetaDegrees * std::numbers::pi / 180.0;
        render::checkCamera(camera);
    }

    static void readPose(JsonFields& f, render::Pose& pose) {
        if (f.find("rotation") != nullptr) {
            std::array<double, 3> rotation{};
            f.read("rotation", rotation);
            pose.R = rotationFromDegrees(rotation);
        }
        f.read("translation", pose.t);
    }

    static void readOptics(JsonFields& f, render::Optics& optics) {
        f.read("dots", optics.levels.dots);
        f.read("plate", optics.levels.plate);
        f.read("ground", optics.levels.ground);
        f.read("blurSigma", optics.blurSigma);
        f.read("noiseSigma", optics.noiseSigma);
        f.read("gradientX", optics.light.gradientX);
        f.read("gradientY", optics.light.gradientY);
        f.read("falloff", optics.light.falloff);
        render::checkOptics(optics);
    }

    static void readRange(JsonFields& f, SimulateDescription& d) {
        f.read("count", d.viewCount);
        f.read("seed", d.seed);
        f.read("maxTilt", d.range.maxTiltDegrees);
        f.read("maxRoll", d.range.maxRollDegrees);
        f.read("border", d.range.borderPixels);
        f.read("smallestFill", d.range.smallestFill);
        f.read("largestFill", d.range.largestFill);
        if (d.viewCount < 1 || d.viewCount > kMaxSimulatedViews) {
            f.fail("count", fmt::format("1 to {} views", kMaxSimulatedViews));
        }
        if (!(d.range.maxTiltDegrees >= 0.0 && d.range.maxTiltDegrees < 90.0)) {
            f.fail("maxTilt", "an angle from 0 to less than 90 degrees");
        }
        if (!(d.range.smallestFill > 0.0 && d.range.smallestFill <= d.range.largestFill)) {
            f.fail("smallestFill", "a share above 0 and up to largestFill");
        }
        if (!(d.range.largestFill <= 1.0)) {
            f.fail("largestFill", "a share up to 1");
        }
    }

    void readPoses(const Json& list, SimulateDescription& d) const {
        if (list.empty() || list.size() > kMaxSimulatedViews) {
            failUsage("{}: views: expected 1 to {} poses", file, kMaxSimulatedViews);
        }
        for (std::size_t i = 0; i < list.size(); ++i) {
            JsonFields fields(list[i], file, fmt::format("views[{}]", i));
            readPose(fields, d.poses.emplace_back());
            fields.done();
        }
    }

    std::string file;
};

}  // namespace

SimulateDescription defaultDescription() {
    SimulateDescription description;
    description.optics.noiseSigma = 1.5;
    return description;
}

SimulateDescription readSimulateDescription(const std::filesystem::path& path) {
    const std::string text = readWholeFile(path, "a rig description (zelm simulate --example prints one)");
    return Reader(path.string()).read(parseCommentedJson(path.string(), text));
}

std::string_view exampleDescription() {
    return kExample;
}

}  // namespace zelm::tool
