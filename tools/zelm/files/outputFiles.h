// Output files that appear whole or not at all.
#ifndef ZELM_TOOL_OUTPUT_FILES_H
#define ZELM_TOOL_OUTPUT_FILES_H

#include <filesystem>
#include <set>
#include <string_view>
#include <vector>

namespace zelm::tool {

// A group of files of one command. Each is written under a temporary name in its folder; commit() renames them all.
// What is not committed is removed again, with any folder made for it.
class OutputFiles {
public:
    OutputFiles();
    ~OutputFiles();
    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    // Names a file that the command reads: add() refuses to write over it.
    void keep(const std::filesystem::path& input);

    // Makes the folder where needed and checks that files can be created in it, so that long work does not start in
    // vain. An empty path is the current folder. Throws Failure.
    void prepareFolder(const std::filesystem::path& folder);

    // Writes the bytes beside `path`; its folder has been prepared. Throws Failure, for a second file of one name too.
    void add(const std::filesystem::path& path, std::string_view bytes);

    // A file of an earlier run that would contradict the new ones: commit() takes it away.
    void supersede(const std::filesystem::path& path);

    // Puts every added file in place. Throws Failure.
    void commit();

    // Takes away what is not in place.
    void discard();

private:
    struct Pending {
        std::filesystem::path temporary;
        std::filesystem::path final;
    };

    std::vector<Pending> pending;
    std::set<std::filesystem::path> inputs;
    std::set<std::filesystem::path> outputs;
    std::vector<std::filesystem::path> madeFolders;  // outermost first
    std::vector<std::filesystem::path> superseded;
};

// Whether two names are of one file, or would be if it existed.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

// From here on a process that is interrupted, terminated or hung up takes its unfinished outputs away before it dies.
// To be called before there are other threads.
void discardOutputsWhenInterrupted();

// The whole content of a file. Throws Failure naming the file, and `what` it should be, when it cannot be read.
std::string readWholeFile(const std::filesystem::path& path, std::string_view what);

}  // namespace zelm::tool

#endif
