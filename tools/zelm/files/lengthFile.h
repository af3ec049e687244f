// CSV files of lengths between points that another file names.
#ifndef ZELM_TOOL_LENGTH_FILE_H
#define ZELM_TOOL_LENGTH_FILE_H

#include <filesystem>
#include <string>
#include <vector>

namespace zelm::tool {

struct NamedLength {
    std::string from;  // ids of points
    std::string to;
    double nominal = 0.0;  // plate units; 0 where it is not known
    std::size_t line = 0;  // of the file, from 1 on
};

// Reads rows of from,to,length, or of from,to where `areKnown` is false, separated by commas, semicolons or tabs. A
// header may name the columns in any order, and others beside them, which are left out; empty lines and lines that
// begin with # are passed over. Throws Failure, naming file and line, for anything else.
std::vector<NamedLength> readLengthFile(const std::filesystem::path& path, bool areKnown);

}  // namespace zelm::tool

#endif
