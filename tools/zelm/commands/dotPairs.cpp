#include "dotPairs.h"

#include "cameraPicture.h"
#include "targets.h"

namespace zelm::tool {
namespace {

Point2d imageOf(const Point3d& point, const RigCamera& camera) {
    Point2d pixel{};
    zelmCalibChange3Dto2D(&point, &camera.intrinsics, &camera.poses.front(), &pixel, camera.model);
    return pixel;
}

}  // namespace

void addDotOptions(Subcommand& sub, DotOptions& options) {
    sub.option("--dots", options.images, "LEFT and RIGHT image: measure the round targets in whose dots the pixels lie")
        .takes(2);
    sub.option("--polarity", options.polarity, "Polarity of the dots of --dots")
        .oneOf({"dark", "bright"})
        .showDefault();
}

std::vector<SpacePoint> moveToDots(std::vector<PixelPair>& pairs, const DotOptions& o, const LoadedRig& rig,
                                   const std::string& file) {
    const Picture left = readGrayCameraPicture(o.images[0], rig, 'L');
    const Picture right = readGrayCameraPicture(o.images[1], rig, 'R');
    std::vector<SpacePoint> points = measureTargets(rig, file, left, right, pairs, o.polarity == "bright");
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (points[i].status == PointStatus::ok) {
            pairs[i].left = imageOf(points[i].position, rig.rig.left);
            pairs[i].right = imageOf(points[i].position, rig.rig.right);
        }
    }
    return points;
}

}  // namespace zelm::tool
