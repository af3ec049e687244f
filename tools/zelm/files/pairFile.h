// CSV files of pixel pairs: where the left and the right image show the same point.
#ifndef ZELM_TOOL_PAIR_FILE_H
#define ZELM_TOOL_PAIR_FILE_H

#include <zelmLib.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace zelm::tool {

struct PixelPair {
    Point2d left{};   // raw pixels
    Point2d right{};  // raw pixels
    std::string id;   // the row's number, from 1 on, where the file gives none
};

// Reads rows of xL,yL,xR,yR or id,xL,yL,xR,yR, separated by commas, semicolons or tabs. A header may name the columns
// in any order, and others beside them, which are left out; empty lines and lines that begin with # are passed over.
// Throws Failure, naming file and line, for anything else.
std::vector<PixelPair> readPairFile(const std::filesystem::path& path);

// The pixels of pairs as the library takes them: x and y in turn.
struct PairArrays {
    explicit PairArrays(const std::vector<PixelPair>& pairs);
    std::int64_t count;
    std::vector<double> left;
    std::vector<double> right;
};

}  // namespace zelm::tool

#endif
