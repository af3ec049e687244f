// CSV files of known lengths between points that another file names.
#ifndef ZELM_TOOL_LENGTH_FILE_H
#define ZELM_TOOL_LENGTH_FILE_H

#include <filesystem>
#include <string>
#include <vector>

namespace zelm::tool {

struct NamedLength {
    std::string from;  // ids of points
    std::string to;
    double nominal = 0.0;  // plate units
    std::size_t line = 0;  // of the file, from 1 on
};

// Reads rows of from,to,length, separated by commas, semicolons or tabs. A first line of these three names is a header;
// empty lines and lines that begin with # are passed over. Throws Failure, naming file and line, for anything else.
std::vector<NamedLength> readLengthFile(const std::filesystem::path& path);

}  // namespace zelm::tool

#endif
