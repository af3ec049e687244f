// PGM and PPM files, whose levels go up to a number that the file states. The image library scales those of files of
// more than one row wrongly unless that number is 255 or 65535.
#ifndef ZELM_TOOL_PNM_FILE_H
#define ZELM_TOOL_PNM_FILE_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace zelm::tool {

struct PnmHeader {
    char kind = 0;  // '2' or '3': text, gray or colour; '5' or '6': binary
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t largest = 0;  // level: white
    std::size_t end = 0;        // where the levels begin

    bool isText() const { return kind == '2' || kind == '3'; }
    unsigned channels() const { return kind == '3' || kind == '6' ? 3 : 1; }
};

// The header of a file that begins as one of these kinds. Throws Failure naming the file when it is damaged.
PnmHeader readPnmHeader(const std::filesystem::path& path, std::string_view bytes);

// All levels, row by row, scaled so that white is 65535. Throws Failure when some are missing or above the largest.
std::vector<std::uint16_t> readPnmLevels(const std::filesystem::path& path, std::string_view bytes,
                                         const PnmHeader& header);

}  // namespace zelm::tool

#endif
