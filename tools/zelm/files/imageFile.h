// Image files: PNG, TIFF, JPEG, BMP and PGM, 8 or 16 bit, gray or colour.
#ifndef ZELM_TOOL_IMAGE_FILE_H
#define ZELM_TOOL_IMAGE_FILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace zelm::tool {

// An 8-bit image without padding; pixel (x, y) is pixels[y * width + x].
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

// The same in colour: four bytes a pixel in the order alpha, red, green, blue.
struct ColourPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> argb;
};

using AnyPicture = std::variant<Picture, ColourPicture>;

// Reads the first frame as gray: 16 bits are scaled to 8, colours are weighted by the library's conversion, alpha is
// ignored. Throws Failure, naming the file, for anything but a complete image of a known format and a sane size.
Picture readPicture(const std::filesystem::path& path);

// The same, but an image with any pixel that is not gray stays in colour.
AnyPicture readAnyPicture(const std::filesystem::path& path);

// A gray image of 16 bits a pixel.
struct DeepPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint16_t> pixels;
};

// Reads the first frame of a gray image with all of its 16 bits; 8 bits are scaled up. Throws Failure as readPicture.
DeepPicture readDeepPicture(const std::filesystem::path& path);

// Encodes a gray picture in the format that the file name's ending asks for. Throws Failure for an unknown ending.
std::string encodePicture(const Picture& picture, const std::filesystem::path& path);

// A JPEG of the picture, scaled down where it is wider or higher than `largestSide`, a pixel the mean of those that it
// covers. Safe to call from several threads.
std::string encodeReducedJpeg(const Picture& picture, int largestSide, int quality);

// Throws Failure unless the ending names a format that encodePicture can write.
void checkPictureName(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
