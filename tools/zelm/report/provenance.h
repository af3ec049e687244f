// Where a report comes from: when, by what, of which files.
#ifndef ZELM_TOOL_PROVENANCE_H
#define ZELM_TOOL_PROVENANCE_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zelm::tool {

struct HashedFile {
    std::string what;  // "plate", "left image"
    std::string name;
    std::uintmax_t bytes = 0;
    std::string sha256;
};

struct Provenance {
    std::string command;  // as it was typed
    std::string time;     // UTC
    std::vector<HashedFile> files;

    void addBytes(const std::string& what, const std::string& name, std::string_view bytes);
};

// Now, or the time that SOURCE_DATE_EPOCH gives so that a page can be made twice alike.
std::string timeOfReport();

// Hashes files on all cores. One that cannot be read has no hash.
struct NamedFile {
    std::string what;
    std::filesystem::path path;
};
std::vector<HashedFile> hashFiles(const std::vector<NamedFile>& files);

// A section of a page.
std::string provenanceHtml(const Provenance& provenance);

}  // namespace zelm::tool

#endif
