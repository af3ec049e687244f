// mrcal cameramodel: a file a camera, a dictionary in Python's notation.
#include "digitText.h"
#include "foreignCameras.h"
#include "pairFigures.h"
#include "readers.h"
#include "rigBlock.h"
#include "yamlText.h"

namespace zelm::measure {
namespace {

struct CameraModel {
    ForeignCamera camera;
    ZelmCameraExtrinsics pose{};
};

// Such a dictionary is a map of YAML, but for the bytes b'...' of what it was optimised from.
std::string asYaml(std::string_view text) {
    std::string yaml;
    yaml.reserve(text.size());
    bool isComment = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool beginsBytes =
            text.substr(i).starts_with("b'") && (i == 0 || text[i - 1] == ' ' || text[i - 1] == ':');
        isComment = text[i] != '\n' && (isComment || (text[i] == '#' && (i == 0 || text[i - 1] == '\n')));
        if (!beginsBytes || isComment) {
            yaml += text[i];
        }
    }
    return yaml;
}

ForeignLens lensOf(const std::string& model, std::span<const double> coefficients) {
    constexpr std::array<std::pair<std::string_view, std::size_t>, 5> kModels{{{"LENSMODEL_PINHOLE", 0},
                                                                               {"LENSMODEL_OPENCV4", 4},
                                                                               {"LENSMODEL_OPENCV5", 5},
                                                                               {"LENSMODEL_OPENCV8", 8},
                                                                               {"LENSMODEL_OPENCV12", 12}}};
    for (const auto& [name, count] : kModels) {
        if (model == name && coefficients.size() == count) {
            return radialTangentialLens(coefficients, model);
        }
    }
    refuse(model.substr(0, 60) + " with " + std::to_string(coefficients.size() + 4) +
           " intrinsics is not known: convert it with mrcal-convert-lensmodel to LENSMODEL_OPENCV4, 5, 8 or 12");
}

CameraModel modelOf(std::string_view text, double metres) {
    const YAML::Node map = yamlMap(asYaml(text));
    const char* const poseName = map["rt_cam_ref"] ? "rt_cam_ref" : "extrinsics";
    const std::string lens = yamlWord(yamlMember(map, map["lensmodel"] ? "lensmodel" : "lens_model"), "lensmodel");
    const std::vector<double> k = yamlNumbers(yamlMember(map, "intrinsics"), "intrinsics");
    const YAML::Node size = yamlMember(map, "imagersize");
    const std::vector<double> rt = yamlNumbers(yamlMember(map, poseName), poseName);
    if (k.size() < 4 || rt.size() != 6 || !size.IsSequence() || size.size() != 2) {
        refuse("it has not at least 4 intrinsics, 6 extrinsics and an imagersize of 2 numbers");
    }
    CameraModel model;
    model.camera.width = yamlCount(size[0], "imagersize");
    model.camera.height = yamlCount(size[1], "imagersize");
    takeCameraMatrix(model.camera, {k[0], 0.0, k[2], 0.0, k[1], k[3], 0.0, 0.0, 1.0}, "intrinsics");
    model.camera.lens = lensOf(lens, std::span(k).subspan(4));
    model.pose = poseRecordOfVector({rt[0], rt[1], rt[2]},
                                    {lengthOf(rt[3], metres), lengthOf(rt[4], metres), lengthOf(rt[5], metres)});
    return model;
}

}  // namespace

std::string mrcalText(const PairFigures& f, char side, double metres) {
    const CameraFigures& c = f.camera(side);
    const CameraParameters& p = c.p;
    const auto& [R, t, r] = c.pose;
    return std::string("{\n    'lensmodel': 'LENSMODEL_OPENCV4',\n\n") +
           "    # fx, fy, cx, cy, k1, k2, p1, p2\n    'intrinsics': [ " +
           numberList(std::array{p[kFx], p[kFy], p[kCx], p[kCy], p[kK1], p[kK2], 0.0, 0.0}, 4, "                    ") +
           " ],\n\n    # from the reference, the frame of the plate of view 0, to the camera: rt_cam_ref, metres\n"
           "    'extrinsics': [ " +
           numberList(
               std::array{r[0], r[1], r[2], metresOf(t[0], metres), metresOf(t[1], metres), metresOf(t[2], metres)}, 3,
               "                    ") +
           " ],\n\n    'imagersize': [ " + std::to_string(c.width) + ", " + std::to_string(c.height) + " ],\n}\n";
}

ForeignPair mrcalPair(std::string_view left, std::string_view right, double metres) {
    const CameraModel l = modelOf(left, metres);
    const CameraModel r = modelOf(right, metres);
    ForeignPair pair;
    pair.left = l.camera;
    pair.right = r.camera;
    pair.leftPose = l.pose;
    pair.rightPose = r.pose;
    pair.isCameraFrame = isNoMotion(l.pose);
    return pair;
}

}  // namespace zelm::measure
