// PGM and PPM files: levels up to any number, text and binary, comments, and damage.
#include "failure.h"
#include "imageFile.h"
#include "toolFixtures.h"

using namespace zelmtest;
using zelm::tool::Failure;
using zelm::tool::Picture;
using zelm::tool::readPicture;

namespace {

using Levels = std::vector<std::uint8_t>;

class PnmFile : public testing::Test {
protected:
    Picture read(const std::string& bytes) const {
        writeFile(folder / "image.pnm", bytes);
        return readPicture(folder / "image.pnm");
    }

    void refused(const std::string& bytes, const std::string& why) const {
        try {
            read(bytes);
            ADD_FAILURE() << bytes << " is accepted";
        } catch (const Failure& failure) {
            const std::string line = failure.what();
            EXPECT_EQ(line.rfind((folder / "image.pnm").string() + ": ", 0), 0U) << line;
            EXPECT_NE(line.find(why), std::string::npos) << line;
        }
    }

    TemporaryFolder folder;
};

// Rows below the first as well: those are where a scaling can be applied twice.
TEST_F(PnmFile, LevelsOfEveryRowAreScaledByTheLargest) {
    for (const unsigned largest : {1U, 100U, 127U, 255U, 256U, 1023U, 4095U, 40000U, 65535U}) {
        std::string bytes = "P5\n2 40\n" + std::to_string(largest) + "\n";
        Levels wanted;
        for (unsigned i = 0; i < 80; ++i) {
            const unsigned level = i * largest / 79;
            bytes += largest > 255 ? std::string(1, static_cast<char>(level >> 8U)) : "";
            bytes += static_cast<char>(level & 255U);
            wanted.push_back(static_cast<std::uint8_t>((level * 255ULL * 2 + largest) / (2 * largest)));
        }
        const Picture picture = read(bytes);
        ASSERT_EQ(picture.pixels.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            // Rounded to 16 bits on the way, which may turn a tie.
            EXPECT_NEAR(picture.pixels[i], wanted[i], largest > 255 && largest < 65535 ? 1 : 0) << largest << " " << i;
        }
    }
}

TEST_F(PnmFile, TextAndColour) {
    EXPECT_EQ(read("P2 # comment\n2 # one\n# two\n2\n100\n0 50\n100# three\n25").pixels, (Levels{0, 128, 255, 64}));
    EXPECT_EQ(read("P3\n2 1\n10\n10 0 0\t0 10 0\r\n").pixels, (Levels{76, 149}));
    EXPECT_EQ(read(std::string("P6\n1 2\n15\n\x0f\x0f\x0f\0\0\0", 17)).pixels, (Levels{255, 0}));
}

TEST_F(PnmFile, OneBlankAloneStandsBeforeTheLevels) {
    EXPECT_EQ(read("P5 2 1 255\n\n ").pixels, (Levels{'\n', ' '}));
}

TEST_F(PnmFile, DamagedFiles) {
    refused("P5\n", "it ends too early");
    refused("P5\n2 2\n255", "it ends too early");
    refused("P5\n2 2\n255\nabc", "it ends too early");
    refused("P5\n2 2\n4095\nabcdefg", "it ends too early");
    refused("P2\n2 2\n9\n1 2 3", "it ends too early");
    refused("P2\n2 2\n9\n1 2 3    ", "it ends too early");
    refused("P5\n# a comment without an end", "it ends too early");
    refused("P5\n-2 2\n255\nabcd", "no number at byte 3");
    refused("P2\n2 1\n9\n1 x", "no number at byte 11");
    refused("P5\n2 2\n0\nabcd", "levels up to 0");
    refused("P5\n2 2\n65536\nabcdefgh", "levels up to 65536");
    refused("P5\n0 2\n255\n", "0 x 2 pixels");
    refused("P5\n2 1\n100\nae", "a level of 101, but 100 is the largest");
    refused("P5\n32768 8192\n255\n", "it ends too early");  // before memory is taken for it
    refused("P5\n99999999999999999999 1\n255\n", "at most 32768 a side");
}

}  // namespace
