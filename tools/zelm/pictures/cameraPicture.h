// Pictures taken by a calibrated camera, and what the library makes of them.
#ifndef ZELM_TOOL_CAMERA_PICTURE_H
#define ZELM_TOOL_CAMERA_PICTURE_H

#include <filesystem>
#include <string>

#include "imageFile.h"
#include "rigFile.h"

namespace zelm::tool {

// "left" or "right" of a camera 'L' or 'R'.
const char* sideName(char side);

// 'L' or 'R' of "left" or "right".
char sideOf(const std::string& name);

// Whether an undistorted or raw pixel is one of a camera's image.
bool isInside(const RigCamera& camera, Point2d pixel);

// Reads a picture of a camera, in its colours or as gray. Throws Failure, with both sizes, when it is not of the size
// that was calibrated.
AnyPicture readCameraPicture(const std::filesystem::path& path, const LoadedRig& rig, char side);
Picture readGrayCameraPicture(const std::filesystem::path& path, const LoadedRig& rig, char side);

// A warning where one file is given as the image of both cameras; else empty.
std::string warningOfOneImage(const std::filesystem::path& left, const std::filesystem::path& right);

// The picture without lens distortion; black where the camera did not look.
AnyPicture undistorted(const LoadedRig& rig, char side, const AnyPicture& picture);

// The picture as the other camera would see it. Throws Failure when the two cameras have no such view.
AnyPicture rectified(const LoadedRig& rig, char side, const AnyPicture& picture, const Zelm2ViewHomParam& params);

// A PNG, gray or in colour.
std::string encodePng(const AnyPicture& picture);

}  // namespace zelm::tool

#endif
