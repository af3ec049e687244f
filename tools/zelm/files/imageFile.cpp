#include "imageFile.h"

#include <magick/api.h>
#include <zelmLib.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <memory>
#include <string_view>

#include "failure.h"
#include "letterCase.h"
#include "outputFiles.h"
#include "pnmFile.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kMaxSide = 32768;          // pixels
constexpr std::uint64_t kMaxPixels = 256U << 20U;  // in one image
constexpr std::size_t kJpegQuality = 95;           //
constexpr std::size_t kPngQuality = 31;            // compression 3 of 9, filter 1: quick, for a few % more bytes
constexpr std::string_view kKnownFormats = "PNG, TIFF, JPEG, BMP and PGM";

void startImageLibrary() {
    static const bool started = [] {
        ExceptionInfo exception;
        GetExceptionInfo(&exception);
        InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, &exception);
        DestroyExceptionInfo(&exception);
        SetMagickResourceLimit(PixelsResource, kMaxPixels);
        SetMagickResourceLimit(WidthResource, static_cast<magick_int64_t>(kMaxSide));
        SetMagickResourceLimit(HeightResource, static_cast<magick_int64_t>(kMaxSide));
        SetMagickResourceLimit(DiskResource, 0);
        return true;
    }();
    static_cast<void>(started);
}

struct Exception : ExceptionInfo {
    Exception() { GetExceptionInfo(this); }
    ~Exception() { DestroyExceptionInfo(this); }
    Exception(const Exception&) = delete;
    Exception& operator=(const Exception&) = delete;
};

using ImagePtr = std::unique_ptr<Image, decltype(&DestroyImageList)>;
using InfoPtr = std::unique_ptr<ImageInfo, decltype(&DestroyImageInfo)>;

// The format is told by the first bytes, never by the name, and only these formats are decoded: image libraries know
// many more, some of which run programs or fetch files.
std::string_view formatOf(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\x89PNG\r\n\x1a\n"sv)) {
        return "PNG";
    }
    if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv) || bytes.starts_with("II+\0"sv) ||
        bytes.starts_with("MM\0+"sv)) {
        return "TIFF";
    }
    if (bytes.starts_with("\xff\xd8\xff"sv)) {
        return "JPEG";
    }
    if (bytes.starts_with("BM"sv)) {
        return "BMP";
    }
    const bool netpbm = bytes.size() > 2 && bytes[0] == 'P' && std::strchr("2356", bytes[1]) != nullptr &&
                        (std::isspace(static_cast<unsigned char>(bytes[2])) != 0 || bytes[2] == '#');
    return netpbm ? "PNM" : "";
}

InfoPtr newInfo(std::string_view format) {
    InfoPtr info(CloneImageInfo(nullptr), DestroyImageInfo);
    std::copy_n(format.begin(), format.size(), info->magick);
    info->magick[format.size()] = '\0';
    // A name with the format in front keeps the library from guessing another one.
    const std::string name = std::string(format) + ":";
    std::copy_n(name.c_str(), name.size() + 1, info->filename);
    info->subimage = 0;  // the first frame alone
    info->subrange = 1;
    return info;
}

// Some decoders give what they could read of a damaged file and only warn; half an image is no image.
bool isDamage(const ExceptionInfo& exception) {
    return exception.severity >= ErrorException || exception.severity == CorruptImageWarning ||
           exception.severity == BlobWarning || exception.severity == StreamWarning;
}

[[noreturn]] void failDamaged(const fs::path& path, std::string_view format, const ExceptionInfo& exception) {
    std::string why = exception.reason != nullptr ? GetLocaleExceptionMessage(exception.severity, exception.reason)
                                                  : "nothing could be decoded";
    if (exception.description != nullptr && *exception.description != '\0') {
        why += fmt::format(": {}", exception.description);
    }
    failData("{}: not a complete {} image ({}): export or copy it again", path.string(), format, why);
}

void checkSize(const fs::path& path, std::uint64_t width, std::uint64_t height) {
    if (width == 0 || height == 0 || width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) {
        failData("{}: claims {} x {} pixels; at most {} a side and {} million in all are read: crop or scale it down",
                 path.string(), width, height, kMaxSide, kMaxPixels >> 20U);
    }
}

void checkSize(const fs::path& path, const Image& image) {
    checkSize(path, image.columns, image.rows);
}

// The PNG decoder calls a large image a damaged one: its size stands at a fixed place.
void checkPngSize(const fs::path& path, const std::string& bytes) {
    constexpr std::size_t kWidthAt = 16;
    constexpr std::size_t kHeightAt = 20;
    if (bytes.size() < kHeightAt + 4) {
        return;
    }
    const auto numberAt = [&bytes](std::size_t place) {
        std::uint64_t number = 0;
        for (std::size_t i = place; i < place + 4; ++i) {
            number = 256 * number + static_cast<unsigned char>(bytes[i]);
        }
        return number;
    };
    if (const auto width = numberAt(kWidthAt), height = numberAt(kHeightAt); width > 0 && height > 0) {
        checkSize(path, width, height);
    }
}

// What a decoder may ask for in the header, before anything is decoded.
void checkHeader(const fs::path& path, std::string_view format, const std::string& bytes) {
    if (format == "PNG") {
        checkPngSize(path, bytes);
    }
    Exception exception;
    const ImagePtr header(PingBlob(newInfo(format).get(), bytes.data(), bytes.size(), &exception), DestroyImageList);
    if (header != nullptr) {
        checkSize(path, *header);
    } else if (exception.severity == ResourceLimitError) {
        failData("{}: too large an image: at most {} pixels a side and {} million in all are read", path.string(),
                 kMaxSide, kMaxPixels >> 20U);
    } else {
        failDamaged(path, format, exception);
    }
}

ImagePtr decode(const fs::path& path, std::string_view format, const std::string& bytes) {
    checkHeader(path, format, bytes);
    Exception exception;
    ImagePtr image(BlobToImage(newInfo(format).get(), bytes.data(), bytes.size(), &exception), DestroyImageList);
    if (image == nullptr || isDamage(exception)) {
        failDamaged(path, format, exception);
    }
    if (isDamage(image->exception)) {
        failDamaged(path, format, image->exception);
    }
    checkSize(path, *image);
    return image;
}

ImagePtr decodePnm(const fs::path& path, std::string_view bytes) {
    const PnmHeader header = readPnmHeader(path, bytes);
    checkSize(path, header.width, header.height);
    const std::vector<std::uint16_t> levels = readPnmLevels(path, bytes, header);
    Exception exception;
    ImagePtr image(ConstituteImage(header.width, header.height, header.channels() == 1 ? "I" : "RGB", ShortPixel,
                                   levels.data(), &exception),
                   DestroyImageList);
    if (image == nullptr) {
        failDamaged(path, "PNM", exception);
    }
    return image;
}

// The library's own conversion to bytes cuts off, which darkens by half a level.
std::uint8_t nearestByte(std::uint16_t level) {
    constexpr unsigned kLevelsOfAByte = 257;  // 65535 / 255
    return static_cast<std::uint8_t>((level + kLevelsOfAByte / 2) / kLevelsOfAByte);
}

ColourPicture toColour(const fs::path& path, Image& image) {
    if (image.colorspace != RGBColorspace && IsRGBCompatibleColorspace(image.colorspace) == 0U) {
        TransformColorspace(&image, RGBColorspace);
    }
    ColourPicture colour{static_cast<int>(image.columns), static_cast<int>(image.rows), {}};
    colour.argb.resize(4 * std::size_t{image.columns} * image.rows);
    std::vector<std::uint16_t> row(4 * image.columns);
    Exception exception;
    for (unsigned long y = 0; y < image.rows; ++y) {
        if (DispatchImage(&image, 0, static_cast<long>(y), image.columns, 1, "ARGB", ShortPixel, row.data(),
                          &exception) == MagickFail) {
            failDamaged(path, image.magick, exception);
        }
        std::transform(row.begin(), row.end(), colour.argb.begin() + static_cast<std::ptrdiff_t>(y * row.size()),
                       nearestByte);
    }
    return colour;
}

Picture toGray(const fs::path& path, ColourPicture& source) {
    const auto width = static_cast<std::size_t>(source.width);
    const auto height = static_cast<std::size_t>(source.height);
    Picture picture{source.width, source.height, std::vector<std::uint8_t>(width * height)};
    const vImage_Buffer colour{source.argb.data(), height, width, 4 * width};
    const vImage_Buffer gray{picture.pixels.data(), height, width, width};
    if (zelmConvertColorToGray_vImageARGB8888toPlanar8(&colour, &gray) < 0) {
        failData("{}: cannot be turned into a gray image", path.string());
    }
    return picture;
}

bool hasColour(const ColourPicture& picture) {
    for (std::size_t i = 0; i < picture.argb.size(); i += 4) {
        if (picture.argb[i + 1] != picture.argb[i + 2] || picture.argb[i + 2] != picture.argb[i + 3]) {
            return true;
        }
    }
    return false;
}

ImagePtr readImage(const fs::path& path) {
    const std::string bytes = readWholeFile(path, "an image");
    const std::string_view format = formatOf(bytes);
    if (bytes.empty()) {
        failData("{}: is empty: export or copy it again", path.string());
    }
    if (format.empty()) {
        failData("{}: not an image that can be read: {} are", path.string(), kKnownFormats);
    }
    startImageLibrary();
    return format == "PNM" ? decodePnm(path, bytes) : decode(path, format, bytes);
}

ColourPicture readColours(const fs::path& path) {
    return toColour(path, *readImage(path));
}

std::string_view formatForName(const fs::path& path) {
    const std::string ending = lowerEnding(path);
    struct Ending {
        std::string_view ending, format;
    };
    constexpr std::array<Ending, 7> kEndings{{{".png", "PNG"},
                                              {".tif", "TIFF"},
                                              {".tiff", "TIFF"},
                                              {".jpg", "JPEG"},
                                              {".jpeg", "JPEG"},
                                              {".bmp", "BMP"},
                                              {".pgm", "PGM"}}};
    const auto* const found =
        std::find_if(kEndings.begin(), kEndings.end(), [&](const Ending& e) { return e.ending == ending; });
    if (found == kEndings.end()) {
        failUsage("{}: pictures are written as {}: give the name such an ending", path.string(), kKnownFormats);
    }
    return found->format;
}

ImagePtr imageOf(const Picture& picture, const fs::path& path) {
    startImageLibrary();
    Exception exception;
    ImagePtr image(
        ConstituteImage(static_cast<unsigned long>(picture.width), static_cast<unsigned long>(picture.height), "I",
                        CharPixel, picture.pixels.data(), &exception),
        DestroyImageList);
    if (image == nullptr) {
        failData("{}: cannot be encoded: {}", path.string(), exception.reason != nullptr ? exception.reason : "?");
    }
    return image;
}

std::string encode(ImagePtr image, std::string_view format, std::size_t quality, const fs::path& path) {
    std::size_t size = 0;
    void* bytes = nullptr;
    Exception exception;
    if (image != nullptr) {
        const InfoPtr info = newInfo(format);
        info->quality = quality;
        image->depth = 8;
        std::copy_n(info->magick, format.size() + 1, image->magick);
        SetImageType(image.get(), GrayscaleType);
        bytes = ImageToBlob(info.get(), image.get(), &size, &exception);
    }
    if (bytes == nullptr) {
        failData("{}: cannot be encoded: {}", path.string(), exception.reason != nullptr ? exception.reason : "?");
    }
    std::string encoded(static_cast<const char*>(bytes), size);
    MagickFree(bytes);
    return encoded;
}

}  // namespace

Picture readPicture(const fs::path& path) {
    ColourPicture colour = readColours(path);
    return toGray(path, colour);
}

AnyPicture readAnyPicture(const fs::path& path) {
    ColourPicture colour = readColours(path);
    if (hasColour(colour)) {
        return colour;
    }
    return toGray(path, colour);
}

DeepPicture readDeepPicture(const fs::path& path) {
    const ImagePtr image = readImage(path);
    DeepPicture picture{static_cast<int>(image->columns), static_cast<int>(image->rows), {}};
    picture.pixels.resize(std::size_t{image->columns} * image->rows);
    Exception exception;
    if (DispatchImage(image.get(), 0, 0, image->columns, image->rows, "R", ShortPixel, picture.pixels.data(),
                      &exception) == MagickFail) {
        failDamaged(path, image->magick, exception);
    }
    return picture;
}

void checkPictureName(const fs::path& path) {
    static_cast<void>(formatForName(path));
}

std::string encodePicture(const Picture& picture, const fs::path& path) {
    const std::string_view format = formatForName(path);
    return encode(imageOf(picture, path), format, format == "PNG" ? kPngQuality : kJpegQuality, path);
}

std::string encodeReducedJpeg(const Picture& picture, int largestSide, int quality) {
    ImagePtr image = imageOf(picture, "picture.jpg");
    if (const int side = std::max(picture.width, picture.height); side > largestSide) {
        const auto reduced = [&](int length) {
            return static_cast<unsigned long>(std::max(1, static_cast<int>(std::int64_t{length} * largestSide / side)));
        };
        Exception exception;
        image = {ScaleImage(image.get(), reduced(picture.width), reduced(picture.height), &exception),
                 DestroyImageList};
    }
    return encode(std::move(image), "JPEG", static_cast<std::size_t>(quality), "picture.jpg");
}

}  // namespace zelm::tool
