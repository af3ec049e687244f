// Runs a command-line program in a test and keeps what it printed; and a folder that goes away with the test.
#ifndef ZELM_TEST_COMMAND_RUN_H
#define ZELM_TEST_COMMAND_RUN_H

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zelmtest {

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "zelmXXXXXX").string();
        path = ::mkdtemp(name.data()) != nullptr ? name : "";
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path / name; }

private:
    std::filesystem::path path;
};

struct CommandResult {
    int status = -1;  // exit code; -1 when the program did not end by itself
    std::string output;
    std::string errors;
};

// The arguments reach the program as they are.
inline CommandResult runCommand(const std::vector<std::string>& arguments) {
    const TemporaryFolder folder;
    std::string line;
    for (const std::string& argument : arguments) {
        line += '\'';
        for (const char c : argument) {
            line += c == '\'' ? std::string("'\\''") : std::string(1, c);
        }
        line += "' ";
    }
    line += ">'" + (folder / "out").string() + "' 2>'" + (folder / "err").string() + "' </dev/null";
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(folder / "out"), readFile(folder / "err")};
}

}  // namespace zelmtest

#endif
