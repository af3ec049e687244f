// The order of image sets. What they expand to is tested with the tool itself.
#include <gtest/gtest.h>

#include <algorithm>

#include "commandRun.h"
#include "failure.h"
#include "imageSet.h"

using zelm::tool::naturallyBefore;

namespace {

TEST(ImageSet, RunsOfDigitsCountAsNumbers) {
    const std::vector<std::string> sorted{"a",
                                          "a1",
                                          "a2",
                                          "a10",
                                          "a10b2",
                                          "a10b10",
                                          "a100",
                                          "a_1",
                                          "b000001",
                                          "b2",
                                          "b02x",
                                          "b2y",
                                          "b10",
                                          "c99999999999999999999",
                                          "c100000000000000000000"};
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        for (std::size_t j = 0; j < sorted.size(); ++j) {
            EXPECT_EQ(naturallyBefore(sorted[i], sorted[j]), i < j) << sorted[i] << " " << sorted[j];
        }
    }
}

// Some editors put a byte order mark before a list.
TEST(ImageSet, AByteOrderMarkIsNoPartOfAName) {
    const zelmtest::TemporaryFolder folder;
    zelmtest::writeFile(folder / "a.png", "");
    zelmtest::writeFile(folder / "list.txt",
                        "\xef\xbb\xbf"
                        "a.png\r\n\n a.png\n");
    zelmtest::writeFile(folder / " a.png", "");
    const auto paths = zelm::tool::expandImageSet({(folder / "list.txt").string()}, "--left");
    EXPECT_EQ(paths, (std::vector<std::filesystem::path>{folder / "a.png", folder / " a.png"}));
}

TEST(ImageSet, EmptyLinesAndCommentsOfAListArePassedOver) {
    const zelmtest::TemporaryFolder folder;
    for (const char* const name : {"a.png", "b#2.png", "#c.png"}) {
        zelmtest::writeFile(folder / name, "");
    }
    zelmtest::writeFile(folder / "list.txt", "# left images\n\n   \t\na.png\n  # b.png\nb#2.png\n./#c.png\n#\n");
    const auto paths = zelm::tool::expandImageSet({(folder / "list.txt").string()}, "--left");
    ASSERT_EQ(paths.size(), 3U);
    EXPECT_EQ(paths[0], folder / "a.png");
    EXPECT_EQ(paths[1], folder / "b#2.png");
    EXPECT_EQ(paths[2].filename(), "#c.png");
    zelmtest::writeFile(folder / "none.txt", "# nothing\n\n");
    try {
        zelm::tool::expandImageSet({(folder / "none.txt").string()}, "--left");
        ADD_FAILURE() << "it is read";
    } catch (const zelm::tool::Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("names no images"), std::string::npos);
    }
}

TEST(ImageSet, AFolderThatCannotBeRead) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "root may read everywhere";
    }
    const zelmtest::TemporaryFolder folder;
    std::filesystem::create_directory(folder / "closed");
    std::filesystem::permissions(folder / "closed", std::filesystem::perms::none);
    try {
        zelm::tool::expandImageSet({(folder / "closed").string()}, "--left");
        ADD_FAILURE() << "it is read";
    } catch (const zelm::tool::Failure& failure) {
        EXPECT_NE(std::string(failure.what()).find("closed: cannot read this folder"), std::string::npos);
    }
}

TEST(ImageSet, EqualNumbersWithZerosInFrontHaveAFixedOrder) {
    EXPECT_NE(naturallyBefore("a01", "a1"), naturallyBefore("a1", "a01"));
    EXPECT_FALSE(naturallyBefore("a1", "a1"));
    EXPECT_TRUE(naturallyBefore("file_2.png", "file_10.png"));
    EXPECT_TRUE(naturallyBefore("2/a", "10/a"));
}

}  // namespace
