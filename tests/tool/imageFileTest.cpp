// Reading image files: formats, depths, colours, alpha, frames; damaged, foreign and hostile files. Files of other
// formats are made with the image library itself.
#include <magick/api.h>

#include "failure.h"
#include "imageFile.h"
#include "random.h"
#include "toolFixtures.h"

using namespace zelmtest;
using zelm::tool::encodePicture;
using zelm::tool::Failure;
using zelm::tool::Picture;
using zelm::tool::readPicture;

namespace {

struct Rgb16 {
    std::uint16_t r, g, b, alpha;  // alpha: 65535 is opaque
};

struct Wanted {
    const char* format;
    unsigned depth;
    bool colour;
    bool alpha;
};

// Encodes frames with the image library.
std::string encodeFrames(const Wanted& wanted, unsigned long width, unsigned long height,
                         const std::vector<std::vector<Rgb16>>& frames) {
    static const bool started = (InitializeMagick(nullptr), true);
    EXPECT_TRUE(started);
    ExceptionInfo exception;
    GetExceptionInfo(&exception);
    Image* images = nullptr;
    for (const auto& frame : frames) {
        Image* image = ConstituteImage(width, height, "RGBA", ShortPixel, frame.data(), &exception);
        if (image == nullptr) {
            ADD_FAILURE() << "no image";
            return {};
        }
        image->depth = wanted.depth;
        image->matte = wanted.alpha ? MagickTrue : MagickFalse;
        std::snprintf(image->magick, sizeof(image->magick), "%s", wanted.format);
        AppendImageToList(&images, image);
    }
    images = GetFirstImageInList(images);
    ImageInfo* info = CloneImageInfo(nullptr);
    info->depth = wanted.depth;
    info->quality = 98;
    info->adjoin = MagickTrue;
    info->type = wanted.colour ? (wanted.alpha ? TrueColorMatteType : TrueColorType)
                               : (wanted.alpha ? GrayscaleMatteType : GrayscaleType);
    std::snprintf(info->magick, sizeof(info->magick), "%s", wanted.format);
    std::size_t size = 0;
    void* blob = ImageToBlob(info, images, &size, &exception);
    EXPECT_NE(blob, nullptr) << wanted.format << " " << (exception.reason != nullptr ? exception.reason : "");
    std::string bytes(static_cast<const char*>(blob), size);
    MagickFree(blob);
    DestroyImageInfo(info);
    DestroyImageList(images);
    DestroyExceptionInfo(&exception);
    return bytes;
}

// Reads bytes as a file of that name would be.
class ImageFile : public testing::Test {
protected:
    Picture read(const std::string& bytes, const std::string& name = "image") const {
        writeFile(folder / name, bytes);
        return readPicture(folder / name);
    }

    // The message of the refusal; empty when the file was accepted.
    std::string refusal(const std::string& bytes, const std::string& name = "image") const {
        try {
            read(bytes, name);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code, zelm::tool::ExitCode::data);
            EXPECT_NE(std::string(failure.what()).find((folder / name).string()), std::string::npos) << failure.what();
            return failure.what();
        }
        return {};
    }

    TemporaryFolder folder;
};

std::vector<Rgb16> noiseFrame(std::size_t pixels, bool colour, unsigned depth, std::uint64_t seed) {
    Random random(seed);
    std::vector<Rgb16> frame(pixels);
    for (Rgb16& p : frame) {
        const auto level = [&] {
            const auto value = static_cast<unsigned>(random.uniform(0.0, depth == 8 ? 256.0 : 65536.0));
            return static_cast<std::uint16_t>(depth == 8 ? 257U * value : value);
        };
        p.r = level();
        p.g = colour ? level() : p.r;
        p.b = colour ? level() : p.r;
        p.alpha = 65535;
    }
    return frame;
}

// The byte nearest to a 16-bit level.
int byteOf(std::uint16_t level) {
    return (level + 128) / 257;
}

int weightedGray(const Rgb16& p) {
    return (77 * byteOf(p.r) + 150 * byteOf(p.g) + 29 * byteOf(p.b)) >> 8;
}

TEST_F(ImageFile, EveryFormatDepthAndColourIsRead) {
    constexpr unsigned long kWidth = 37;  // rows that are no multiple of four bytes
    constexpr unsigned long kHeight = 23;
    for (const Wanted& wanted : {Wanted{"PNG", 8, false, false},
                                 {"PNG", 8, true, false},
                                 {"PNG", 16, false, false},
                                 {"PNG", 16, true, false},
                                 {"TIFF", 8, false, false},
                                 {"TIFF", 8, true, false},
                                 {"TIFF", 16, false, false},
                                 {"TIFF", 16, true, false},
                                 {"BMP", 8, false, false},
                                 {"BMP", 8, true, false},
                                 {"PGM", 8, false, false},
                                 {"PGM", 16, false, false},
                                 {"PPM", 8, true, false},
                                 {"PPM", 16, true, false}}) {
        const std::vector<Rgb16> frame = noiseFrame(kWidth * kHeight, wanted.colour, wanted.depth, 7);
        const Picture picture = read(encodeFrames(wanted, kWidth, kHeight, {frame}));
        SCOPED_TRACE(std::string(wanted.format) + " " + std::to_string(wanted.depth) +
                     (wanted.colour ? " colour" : " gray"));
        ASSERT_EQ(picture.width, 37);
        ASSERT_EQ(picture.height, 23);
        for (std::size_t i = 0; i < frame.size(); ++i) {
            ASSERT_EQ(picture.pixels[i], weightedGray(frame[i])) << "pixel " << i;
        }
    }
}

TEST_F(ImageFile, JpegIsReadUpToItsLoss) {
    // A gentle slope: at this quality the loss is at most two levels.
    std::vector<Rgb16> frame;
    for (unsigned i = 0; i < 64 * 48; ++i) {
        const auto level = static_cast<std::uint16_t>(257 * (20 + 2 * (i % 64) + (i / 64)));
        frame.push_back({level, level, level, 65535});
    }
    for (const bool colour : {false, true}) {
        const Picture picture = read(encodeFrames({"JPEG", 8, colour, false}, 64, 48, {frame}));
        ASSERT_EQ(picture.pixels.size(), frame.size());
        for (std::size_t i = 0; i < frame.size(); ++i) {
            ASSERT_NEAR(picture.pixels[i], byteOf(frame[i].r), 2) << i;
        }
    }
}

TEST_F(ImageFile, LevelsOfTwelveBitFilesAreScaledByTheirMaximum) {
    const std::string bytes = std::string("P5\n3 1\n4095\n") + std::string("\x00\x00\x0f\xff\x08\x00", 6);
    const Picture picture = read(bytes);
    EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{0, 255, 128}));
}

TEST_F(ImageFile, ColoursAreWeightedAsTheLibraryDoes) {
    const Picture picture =
        read(std::string("P6\n4 1\n255\n") + std::string("\xff\0\0\0\xff\0\0\0\xff\xff\xff\xff", 12));
    EXPECT_EQ(picture.pixels, (std::vector<std::uint8_t>{76, 149, 28, 255}));
}

TEST_F(ImageFile, AlphaIsIgnored) {
    std::vector<Rgb16> frame = noiseFrame(12 * 9, true, 8, 3);
    for (std::size_t i = 0; i < frame.size(); ++i) {
        frame[i].alpha = static_cast<std::uint16_t>(257 * (i * 2));
    }
    for (const char* format : {"PNG", "TIFF"}) {
        const Picture picture = read(encodeFrames({format, 8, true, true}, 12, 9, {frame}));
        for (std::size_t i = 0; i < frame.size(); ++i) {
            ASSERT_EQ(picture.pixels[i], weightedGray(frame[i])) << format << " pixel " << i;
        }
    }
}

TEST_F(ImageFile, FirstOfSeveralFramesIsRead) {
    const auto first = noiseFrame(80, false, 8, 1);
    const auto second = noiseFrame(80, false, 8, 2);
    const Picture picture = read(encodeFrames({"TIFF", 8, false, false}, 10, 8, {first, second}));
    ASSERT_EQ(picture.height, 8);
    EXPECT_EQ(picture.pixels[5], byteOf(first[5].r));
    EXPECT_NE(byteOf(first[5].r), byteOf(second[5].r));
}

TEST_F(ImageFile, NameDoesNotDecideWhatAFileIs) {
    const std::string pgm = "P5\n2 1\n255\n\x10\x20";
    for (const char* name : {"picture.png", "mvg:picture", "|touch oops", "@list", "-", "picture[1]", "%d.pgm"}) {
        EXPECT_EQ(read(pgm, name).pixels, (std::vector<std::uint8_t>{16, 32})) << name;
    }
    EXPECT_FALSE(fs::exists("oops"));
}

TEST_F(ImageFile, FormatsThatCanDoMoreThanHoldPixelsAreRefused) {
    for (const char* text :
         {"<svg xmlns='http://www.w3.org/2000/svg' width='4' height='4'/>", "push graphic-context\n",
          "%!PS-Adobe-3.0\n", "GIF89a\1\0\1\0", "P7\nWIDTH 1\n", "P1\n1 1\n0\n", "id=MagickCache\n"}) {
        EXPECT_NE(refusal(text, "image.png").find("not an image that can be read"), std::string::npos) << text;
    }
}

TEST_F(ImageFile, TruncatedFilesAreNeverHalfRead) {
    for (const Wanted& wanted : {Wanted{"PNG", 8, false, false},
                                 {"PNG", 16, true, false},
                                 {"TIFF", 8, false, false},
                                 {"TIFF", 16, true, false},
                                 {"JPEG", 8, false, false},
                                 {"JPEG", 8, true, false},
                                 {"BMP", 8, false, false},
                                 {"BMP", 8, true, false},
                                 {"PGM", 8, false, false},
                                 {"PGM", 16, false, false}}) {
        const std::vector<Rgb16> frame = noiseFrame(48 * 40, wanted.colour, wanted.depth, 11);
        const std::string whole = encodeFrames(wanted, 48, 40, {frame});
        const Picture picture = read(whole);
        for (std::size_t length = 1; length < whole.size(); length += 1 + whole.size() / 60) {
            SCOPED_TRACE(std::string(wanted.format) + " cut to " + std::to_string(length) + " of " +
                         std::to_string(whole.size()));
            // What is cut off may be nothing but trailing data: then the picture is whole.
            if (refusal(whole.substr(0, length)).empty()) {
                EXPECT_EQ(read(whole.substr(0, length)).pixels, picture.pixels);
            }
        }
    }
}

TEST_F(ImageFile, DamagedBytesNeverCrash) {
    Random random(23);
    for (const char* format : {"PNG", "TIFF", "JPEG", "BMP", "PGM"}) {
        const std::string whole = encodeFrames({format, 8, false, false}, 24, 20, {noiseFrame(24 * 20, false, 8, 5)});
        for (int trial = 0; trial < 60; ++trial) {
            std::string bytes = whole;
            for (int i = 0; i < 4; ++i) {
                bytes[static_cast<std::size_t>(random.uniform(0.0, static_cast<double>(bytes.size())))] =
                    static_cast<char>(random.integer(-128, 127));
            }
            try {
                const Picture picture = read(bytes);
                EXPECT_EQ(picture.pixels.size(),
                          static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
            } catch (const Failure&) {
                continue;  // refused, as it should be where the damage shows
            }
        }
    }
}

TEST_F(ImageFile, HugeSizesAreRefusedBeforeAnythingIsDecoded) {
    std::string png = encodeFrames({"PNG", 8, false, false}, 8, 8, {noiseFrame(64, false, 8, 1)});
    png.replace(16, 8, std::string("\x00\x00\xff\x00\x00\x00\xff\x00", 8));
    std::string bmp = encodeFrames({"BMP", 8, false, false}, 8, 8, {noiseFrame(64, false, 8, 1)});
    bmp.replace(18, 8, std::string("\xff\xff\xff\x7f\xff\xff\xff\x7f", 8));
    for (const std::string& bytes : {std::string("P5\n32769 1\n255\n"), std::string("P5\n30000 30000\n255\n"),
                                     std::string("P5\n99999999999 99999999999\n255\n"), bmp, png}) {
        EXPECT_NE(refusal(bytes), "") << bytes.substr(0, 20);
    }
    for (const std::string& bytes : {std::string("P5\n30000 30000\n255\n"), png}) {
        EXPECT_NE(refusal(bytes).find("at most 32768"), std::string::npos);
    }
}

TEST_F(ImageFile, WrittenPicturesAreReadAgain) {
    Picture picture{31, 17, {}};
    Random random(9);
    for (int i = 0; i < 31 * 17; ++i) {
        picture.pixels.push_back(static_cast<std::uint8_t>(random.uniform(0.0, 256.0)));
    }
    for (const char* name : {"a.png", "a.tif", "a.TIFF", "a.bmp", "a.pgm"}) {
        const Picture again = read(encodePicture(picture, name), name);
        EXPECT_EQ(again.width, 31) << name;
        EXPECT_EQ(again.pixels, picture.pixels) << name;
    }
    EXPECT_EQ(read(encodePicture(picture, "a.jpg")).height, 17);
    EXPECT_THROW(zelm::tool::checkPictureName("a.gif"), Failure);
    EXPECT_THROW(encodePicture(picture, "a"), Failure);
}

// The formats reach the measurement: the same dots from every file.
TEST(ImageFormats, DetectFindsTheSameDotsInEveryFormat) {
    const TemporaryFolder folder;
    const Pgm pgm = readPgmFile(smallRig() / "left_00.pgm");
    std::vector<Rgb16> frame;
    for (const char c : pgm.pixels) {
        const auto level = static_cast<std::uint16_t>(257 * static_cast<unsigned char>(c));
        frame.push_back({level, level, level, 65535});
    }
    const auto dotsOf = [&](const std::string& name) {
        const CommandResult result = zelmtest::zelm(
            {"detect", name, "--plate", smallRigFile("plate.json"), "-o", (folder / "o").string(), "--json"});
        EXPECT_EQ(result.status, 0) << result.errors;
        return Json::parse(result.output)["dots"];
    };
    const Json expected = dotsOf(smallRigFile("left_00.pgm"));
    int number = 0;
    for (const Wanted& wanted : {Wanted{"PNG", 8, true, false},
                                 {"PNG", 16, false, false},
                                 {"TIFF", 8, false, false},
                                 {"TIFF", 16, true, false},
                                 {"BMP", 8, true, false},
                                 {"PGM", 16, false, false}}) {
        const std::string name = (folder / ("image" + std::to_string(++number))).string();
        writeFile(name, encodeFrames(wanted, 640, 480, {frame}));
        EXPECT_EQ(dotsOf(name), expected) << wanted.format << " " << wanted.depth;
    }
    writeFile(folder / "image.jpg", encodeFrames({"JPEG", 8, true, false}, 640, 480, {frame}));
    const Json lossy = dotsOf((folder / "image.jpg").string());
    ASSERT_EQ(lossy.size(), expected.size());
    for (std::size_t i = 0; i < lossy.size(); ++i) {
        // The loss at this quality is about the image's noise, which moves a centre by 0.02 px at most.
        EXPECT_NEAR(lossy[i]["pixel"][0], expected[i]["pixel"][0], 0.04);
        EXPECT_NEAR(lossy[i]["pixel"][1], expected[i]["pixel"][1], 0.04);
    }
}

}  // namespace
