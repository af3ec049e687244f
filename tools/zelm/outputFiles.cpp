#include "outputFiles.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "failure.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

fs::path temporaryName(const fs::path& path) {
    return folderOf(path) / fmt::format(".{}.{}.part", path.filename().string(), ::getpid());
}

void writeBytes(const fs::path& temporary, const fs::path& final, std::string_view bytes) {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        failData("{}: cannot write: {}; is the disk full?", final.string(), std::strerror(errno));
    }
}

}  // namespace

OutputFiles::~OutputFiles() {
    std::error_code ignored;
    for (const Pending& file : pending) {
        fs::remove(file.temporary, ignored);
    }
    for (auto folder = madeFolders.rbegin(); folder != madeFolders.rend(); ++folder) {
        fs::remove(*folder, ignored);  // fails, as it should, unless the folder is empty
    }
}

void OutputFiles::prepareFolder(const fs::path& folder) {
    const fs::path target = folder.empty() ? fs::path(".") : folder;
    fs::path part;
    for (const fs::path& name : target) {
        part /= name;
        std::error_code error;
        if (fs::create_directory(part, error)) {
            madeFolders.push_back(part);
        } else if (!fs::is_directory(part, error)) {
            failUsage("{}: cannot make this output folder: choose another with -o", target.string());
        }
    }
    if (::access(target.c_str(), W_OK | X_OK) != 0) {
        failUsage("{}: cannot write to this output folder: {}; choose another with -o", target.string(),
                  std::strerror(errno));
    }
}

void OutputFiles::add(const fs::path& path, std::string_view bytes) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::is_directory(status)) {
        failUsage("{}: is a folder, cannot write a file of that name", path.string());
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        // Renaming a file onto a device would take its place.
        failUsage("{}: is no file but a device or pipe: give the output a name of its own", path.string());
    }
    pending.push_back({temporaryName(path), path});
    writeBytes(pending.back().temporary, path, bytes);
}

void OutputFiles::commit() {
    for (const Pending& file : pending) {
        std::error_code error;
        fs::rename(file.temporary, file.final, error);
        if (error) {
            failData("{}: cannot write: {}", file.final.string(), error.message());
        }
    }
    pending.clear();
    madeFolders.clear();
}

std::string readWholeFile(const fs::path& path, std::string_view what) {
    std::error_code error;
    if (fs::is_directory(path, error)) {
        failData("{}: is a folder, not {}", path.string(), what);
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        failData("{}: cannot open {}: {}", path.string(), what, std::strerror(errno));
    }
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad()) {
        failData("{}: cannot read {}: {}", path.string(), what, std::strerror(errno));
    }
    return bytes;
}

}  // namespace zelm::tool
