#include "cameraPicture.h"

#include <fmt/format.h>

#include <system_error>

#include "canvas.h"
#include "failure.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

vImage_Buffer bufferOf(const ColourPicture& picture) {
    const auto width = static_cast<std::size_t>(picture.width);
    // The record has no form for reading alone; a source is only read.
    return {const_cast<std::uint8_t*>(picture.argb.data()), static_cast<std::size_t>(picture.height), width, 4 * width};
}

ColourPicture blankLike(const ColourPicture& picture) {
    return {picture.width, picture.height, std::vector<std::uint8_t>(picture.argb.size())};
}

Picture blankLike(const Picture& picture) {
    return {picture.width, picture.height, std::vector<std::uint8_t>(picture.pixels.size())};
}

std::int32_t undistort(const LoadedRig& rig, char side, const Picture& from, Picture& to) {
    return zelm2ViewUnDistortImage(rig.calib(), side, from.pixels.data(), to.pixels.data());
}

std::int32_t undistort(const LoadedRig& rig, char side, const ColourPicture& from, ColourPicture& to) {
    const vImage_Buffer source = bufferOf(from);
    const vImage_Buffer target = bufferOf(to);
    return zelm2ViewUnDistortImage_vImageARGB8888(rig.calib(), side, &source, &target);
}

std::int32_t rectify(const LoadedRig& rig, char side, const Zelm2ViewHomParam& params, const Picture& from,
                     Picture& to) {
    return zelm2ViewMakeHomImage(rig.calib(), side, from.pixels.data(), &params, to.pixels.data());
}

std::int32_t rectify(const LoadedRig& rig, char side, const Zelm2ViewHomParam& params, const ColourPicture& from,
                     ColourPicture& to) {
    const vImage_Buffer source = bufferOf(from);
    const vImage_Buffer target = bufferOf(to);
    return zelm2ViewMakeHomImage_vImageARGB8888(rig.calib(), side, &source, &params, &target);
}

void checkSize(const fs::path& path, int width, int height, const LoadedRig& rig, char side) {
    const RigCamera& camera = rig.camera(side);
    if (width != camera.width || height != camera.height) {
        failData("{}: {} x {} pixels, but the {} camera was calibrated with {} x {}: give the raw image", path.string(),
                 width, height, sideName(side), camera.width, camera.height);
    }
}

}  // namespace

const char* sideName(char side) {
    return side == 'L' ? "left" : "right";
}

char sideOf(const std::string& name) {
    return name == "left" ? 'L' : 'R';
}

bool isInside(const RigCamera& camera, Point2d pixel) {
    return pixel.x >= 0.0 && pixel.y >= 0.0 && pixel.x <= camera.width - 1 && pixel.y <= camera.height - 1;
}

std::string warningOfOneImage(const fs::path& left, const fs::path& right) {
    std::error_code error;
    if (!fs::equivalent(left, right, error)) {
        return {};
    }
    return fmt::format("{}: given as the left and as the right image: give those of both cameras, the left one first",
                       left.string());
}

AnyPicture readCameraPicture(const fs::path& path, const LoadedRig& rig, char side) {
    AnyPicture picture = readAnyPicture(path);
    std::visit([&](const auto& p) { checkSize(path, p.width, p.height, rig, side); }, picture);
    return picture;
}

Picture readGrayCameraPicture(const fs::path& path, const LoadedRig& rig, char side) {
    Picture picture = readPicture(path);
    checkSize(path, picture.width, picture.height, rig, side);
    return picture;
}

AnyPicture undistorted(const LoadedRig& rig, char side, const AnyPicture& picture) {
    return std::visit(
        [&](const auto& from) -> AnyPicture {
            auto to = blankLike(from);
            if (undistort(rig, side, from, to) < 0) {
                failData("the {} image cannot be undistorted: out of memory", sideName(side));
            }
            return to;
        },
        picture);
}

AnyPicture rectified(const LoadedRig& rig, char side, const AnyPicture& picture, const Zelm2ViewHomParam& params) {
    return std::visit(
        [&](const auto& from) -> AnyPicture {
            auto to = blankLike(from);
            if (rectify(rig, side, params, from, to) < 0) {
                failData("the {} image cannot be rectified with depth {}: give another --depth", sideName(side),
                         params.s);
            }
            return to;
        },
        picture);
}

std::string encodePng(const AnyPicture& picture) {
    if (const auto* gray = std::get_if<Picture>(&picture); gray != nullptr) {
        return encodePicture(*gray, "picture.png");
    }
    return pngOf(surfaceOf(picture).get());
}

}  // namespace zelm::tool
