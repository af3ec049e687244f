// Kalibr camchain, YAML.
#include <cmath>

#include "digitText.h"
#include "foreignCameras.h"
#include "pairFigures.h"
#include "readers.h"
#include "yamlText.h"

namespace zelm::measure {
namespace {

std::string cameraText(const CameraFigures& c, int other) {
    const CameraParameters& p = c.p;
    return "  cam_overlaps: [" + std::to_string(other) +
           "]\n  camera_model: pinhole\n  distortion_coeffs: "
           "[" +
           numberList(std::array{p[kK1], p[kK2], 0.0, 0.0}, 4, "") + "]\n  distortion_model: radtan\n  intrinsics: [" +
           numberList(std::array{p[kFx], p[kFy], p[kCx], p[kCy]}, 4, "") + "]\n  resolution: [" +
           std::to_string(c.width) + ", " + std::to_string(c.height) + "]\n  rostopic: /cam" +
           std::to_string(1 - other) + "/image_raw\n";
}

std::string motionText(const Motion& m, double metres) {
    std::string text = "  T_cn_cnm1:\n";
    for (std::size_t i = 0; i < 3; ++i) {
        text += "  - [" +
                numberList(std::array{m.R[3 * i], m.R[3 * i + 1], m.R[3 * i + 2], metresOf(m.t[i], metres)}, 4, "") +
                "]\n";
    }
    return text + "  - [0.0, 0.0, 0.0, 1.0]\n";
}

ForeignCamera cameraOf(const YAML::Node& map, const std::string& name) {
    const std::string model = yamlWord(yamlMember(map, "camera_model"), "camera_model");
    const std::string lens = yamlWord(yamlMember(map, "distortion_model"), "distortion_model");
    if (model != "pinhole") {
        refuse(name + " is a camera of the model " + model.substr(0, 40) + ": pinhole alone can be taken");
    }
    const std::vector<double> k = yamlNumbers(yamlMember(map, "intrinsics"), "intrinsics");
    const std::vector<double> size = yamlNumbers(yamlMember(map, "resolution"), "resolution");
    std::vector<double> c;
    if (lens != "none") {
        c = yamlNumbers(yamlMember(map, "distortion_coeffs"), "distortion_coeffs");
    }
    if (k.size() != 4 || size.size() != 2) {
        refuse(name + " has not 4 intrinsics and a resolution of 2 numbers");
    }
    ForeignCamera camera;
    camera.width = yamlCount(map["resolution"][0], "resolution");
    camera.height = yamlCount(map["resolution"][1], "resolution");
    takeCameraMatrix(camera, {k[0], 0.0, k[2], 0.0, k[1], k[3], 0.0, 0.0, 1.0}, "intrinsics of " + name);
    if (lens == "equidistant") {
        camera.lens = equidistantLens(c, name);
    } else if (lens == "radtan" || lens == "none") {
        camera.lens = radialTangentialLens(c, name);
    } else {
        refuse(name + " has the distortion_model " + lens.substr(0, 40) + ": radtan, equidistant and none are known");
    }
    return camera;
}

}  // namespace

std::string kalibrText(const PairFigures& f, double metres) {
    return "cam0:\n" + cameraText(f.left, 1) + "cam1:\n" + motionText(f.motion, metres) + cameraText(f.right, 0);
}

// X_cam1 = T_cn_cnm1 X_cam0.
ForeignPair kalibrPair(std::string_view file, double metres) {
    const YAML::Node map = yamlMap(file);
    if (map["cam2"]) {
        refuse("a chain of more than two cameras: leave cam0 and cam1 in it");
    }
    const YAML::Node second = yamlMember(map, "cam1");
    ForeignPair pair;
    pair.left = cameraOf(yamlMember(map, "cam0"), "cam0");
    pair.right = cameraOf(second, "cam1");
    const std::vector<double> T = yamlNumbers(yamlMember(second, "T_cn_cnm1"), "T_cn_cnm1");
    if (T.size() != 16) {
        refuse("T_cn_cnm1 has " + std::to_string(T.size()) + " numbers, not 16");
    }
    pair.leftPose = noMotion();
    pair.rightPose = poseOfFile({T[0], T[1], T[2], T[4], T[5], T[6], T[8], T[9], T[10]},
                                {lengthOf(T[3], metres), lengthOf(T[7], metres), lengthOf(T[11], metres)}, "T_cn_cnm1");
    return pair;
}

}  // namespace zelm::measure
