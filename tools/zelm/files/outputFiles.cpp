#include "outputFiles.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

#include "failure.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

// The entry of a folder that a name is: one for ./a and a, and for a folder's name and that of a link to it.
fs::path entryOf(const fs::path& path) {
    std::error_code error;
    const fs::path folder = fs::canonical(folderOf(path), error);
    return (error ? fs::absolute(folderOf(path), error).lexically_normal() : folder) / path.filename();
}

// Short, so that a name may be as long as the file system takes.
fs::path temporaryName(const fs::path& path, std::size_t number) {
    return folderOf(path) / fmt::format(".zelm-{}-{}.part", ::getpid(), number);
}

const char* remedyFor(int error) {
    return error == ENOSPC || error == EDQUOT ? "make room on the disk" : "choose another name";
}

void writeBytes(const fs::path& temporary, const fs::path& final, std::string_view bytes) {
    std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        const int error = errno;
        failData("{}: cannot write: {}: {}", final.string(), std::strerror(error), remedyFor(error));
    }
}

// The outputs that are not in place yet, for the thread that waits for an interruption. The mutex is held by whoever
// changes files.
struct Unfinished {
    std::mutex mutex;
    std::vector<OutputFiles*> groups;
};

Unfinished& unfinished() {
    static auto* const all = new Unfinished;  // never destroyed: the waiting thread lives until the process ends
    return *all;
}

std::unique_lock<std::mutex> lockFiles() {
    return std::unique_lock(unfinished().mutex);
}

// The signals that end a process politely, but for those that its parent has it ignore, as nohup does.
sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            sigaddset(&signals, signal);
        }
    }
    return signals;
}

void dieOfNextSignal(const sigset_t& signals) {
    int signal = 0;
    if (sigwait(&signals, &signal) != 0) {
        return;
    }
    const auto lock = lockFiles();  // never given back: nothing more is written or put in place
    for (OutputFiles* const group : unfinished().groups) {
        group->discard();
    }
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    std::raise(signal);
}

}  // namespace

OutputFiles::OutputFiles() {
    const auto lock = lockFiles();
    unfinished().groups.push_back(this);
}

OutputFiles::~OutputFiles() {
    const auto lock = lockFiles();
    std::erase(unfinished().groups, this);
    discard();
}

void OutputFiles::discard() {
    std::error_code ignored;
    for (const Pending& file : pending) {
        fs::remove(file.temporary, ignored);
    }
    for (auto folder = madeFolders.rbegin(); folder != madeFolders.rend(); ++folder) {
        fs::remove(*folder, ignored);  // fails, as it should, unless the folder is empty
    }
}

void OutputFiles::keep(const fs::path& input) {
    std::error_code error;
    inputs.insert(entryOf(input));
    if (const fs::path target = fs::canonical(input, error); !error) {
        inputs.insert(target);
    }
}

void OutputFiles::prepareFolder(const fs::path& folder) {
    const auto lock = lockFiles();
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
    const auto lock = lockFiles();
    std::error_code error;
    if (path.empty()) {
        failUsage("an output file has an empty name: give it one");
    }
    const fs::file_status status = fs::status(path, error);
    if (fs::is_directory(status)) {
        failUsage("{}: is a folder, cannot write a file of that name", path.string());
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        // Renaming a file onto a device would take its place.
        failUsage("{}: is no file but a device or pipe: give the output a name of its own", path.string());
    }
    const fs::path entry = entryOf(path);
    if (inputs.contains(entry)) {
        failUsage("{}: is an input: give the output another name", path.string());
    }
    if (!outputs.insert(entry).second) {
        failUsage("{}: given for two outputs: give two names", path.string());
    }
    pending.push_back({temporaryName(path, pending.size()), path});
    writeBytes(pending.back().temporary, path, bytes);
}

void OutputFiles::supersede(const fs::path& path) {
    superseded.push_back(path);
}

void OutputFiles::commit() {
    const auto lock = lockFiles();
    for (const Pending& file : pending) {
        std::error_code error;
        fs::rename(file.temporary, file.final, error);
        if (error) {
            failData("{}: cannot write: {}: {}", file.final.string(), error.message(), remedyFor(error.value()));
        }
    }
    for (const fs::path& path : superseded) {
        std::error_code error;
        if (fs::is_regular_file(path, error) && !fs::remove(path, error)) {
            failData("{}: cannot take it away: {}: it belongs to an earlier calibration", path.string(),
                     error.message());
        }
    }
    pending.clear();
    madeFolders.clear();
}

bool isSameFile(const fs::path& a, const fs::path& b) {
    std::error_code error;
    return entryOf(a) == entryOf(b) || fs::equivalent(a, b, error);
}

void discardOutputsWhenInterrupted() {
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    try {
        std::thread(dieOfNextSignal, signals).detach();
    } catch (const std::system_error&) {
        pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);  // without a thread to spare the process just dies
    }
}

std::string readWholeFile(const fs::path& path, std::string_view what) {
    std::error_code error;
    if (fs::is_directory(path, error)) {
        failData("{}: is a folder, not {}", path.string(), what);
    }
    if (const fs::file_status status = fs::status(path, error);
        fs::is_character_file(status) || fs::is_block_file(status)) {
        failData("{}: is a device, not {}", path.string(), what);  // which may never end
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
