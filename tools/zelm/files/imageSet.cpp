#include "imageSet.h"

#include <glob.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>
#include <sstream>

#include "failure.h"
#include "letterCase.h"
#include "outputFiles.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;
using Paths = std::vector<fs::path>;

constexpr std::array<std::string_view, 9> kImageEndings{".png", ".tif", ".tiff", ".jpg", ".jpeg",
                                                        ".bmp", ".pgm", ".ppm",  ".pnm"};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view digitsAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && isDigit(text[end])) {
        ++end;
    }
    return text.substr(at, end - at);
}

// Compares as numbers of any length; leading zeros do not count.
int compareDigits(std::string_view a, std::string_view b) {
    a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
    b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    return a.compare(b);
}

int compareNaturally(std::string_view a, std::string_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const std::string_view m = digitsAt(a, i);
            const std::string_view n = digitsAt(b, j);
            if (const int order = compareDigits(m, n); order != 0) {
                return order;
            }
            i += m.size();
            j += n.size();
        } else {
            if (a[i] != b[j]) {
                return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]) ? -1 : 1;
            }
            ++i;
            ++j;
        }
    }
    return static_cast<int>(a.size() - i > 0) - static_cast<int>(b.size() - j > 0);
}

void sortNaturally(Paths& paths) {
    std::sort(paths.begin(), paths.end(),
              [](const fs::path& a, const fs::path& b) { return naturallyBefore(a.native(), b.native()); });
}

Paths imagesOfFolder(const fs::path& folder) {
    Paths paths;
    std::error_code error;
    fs::directory_iterator entries(folder, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        const fs::directory_entry& entry = *entries;
        const bool isImage =
            std::find(kImageEndings.begin(), kImageEndings.end(), lowerEnding(entry.path())) != kImageEndings.end();
        std::error_code unknown;
        if (isImage && entry.is_regular_file(unknown) && !entry.path().filename().native().starts_with('.')) {
            paths.push_back(entry.path());
        }
    }
    if (error) {
        failData("{}: cannot read this folder: {}", folder.string(), error.message());
    }
    if (paths.empty()) {
        failUsage("{}: this folder holds no images (PNG, TIFF, JPEG, BMP or PGM)", folder.string());
    }
    sortNaturally(paths);
    return paths;
}

Paths filesOfGlob(const std::string& pattern) {
    glob_t found{};
    const int status = ::glob(pattern.c_str(), 0, nullptr, &found);
    const std::unique_ptr<glob_t, decltype(&::globfree)> owner(&found, ::globfree);
    if (status != 0 || found.gl_pathc == 0) {
        failUsage("{}: no file matches this glob: is the folder right?", pattern);
    }
    Paths paths(found.gl_pathv, found.gl_pathv + found.gl_pathc);
    sortNaturally(paths);
    return paths;
}

// A line whose first letter is #. A file whose name begins so is listed as ./#name.
bool isComment(const std::string& line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return first != std::string::npos && line[first] == '#';
}

Paths filesOfList(const fs::path& list) {
    Paths paths;
    std::string text = readWholeFile(list, "a list of images");
    if (constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf"; text.starts_with(kByteOrderMark)) {
        text.erase(0, kByteOrderMark.size());
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back())) != 0) {
            line.pop_back();
        }
        if (!line.empty() && !isComment(line)) {
            paths.push_back(list.parent_path() / line);
        }
    }
    if (paths.empty()) {
        failUsage("{}: this list names no images: write one name on each line", list.string());
    }
    return paths;
}

Paths expand(const std::string& argument) {
    std::error_code error;
    if (fs::is_directory(argument, error)) {
        return imagesOfFolder(argument);
    }
    // A file whose name holds glob characters is taken as it is.
    if (argument.find_first_of("*?[") != std::string::npos && !fs::exists(argument, error)) {
        return filesOfGlob(argument);
    }
    if (lowerEnding(argument) == ".txt") {
        return filesOfList(argument);
    }
    return {argument};
}

// The letters that a file's name begins with.
std::string firstWord(const fs::path& path) {
    const std::string name = lowerCase(path.filename().string());
    const auto end =
        std::find_if(name.begin(), name.end(), [](char c) { return std::isalpha(static_cast<unsigned char>(c)) == 0; });
    return {name.begin(), end};
}

bool isImageName(const fs::path& path) {
    return std::find(kImageEndings.begin(), kImageEndings.end(), lowerEnding(path)) != kImageEndings.end();
}

// Whether both lie, or would lie, in one folder.
bool areBeside(const fs::path& a, const fs::path& b) {
    const auto folder = [](const fs::path& path) {
        std::error_code error;
        return fs::weakly_canonical(path.has_parent_path() ? path.parent_path() : fs::path("."), error);
    };
    return folder(a) == folder(b);
}

}  // namespace

bool naturallyBefore(std::string_view a, std::string_view b) {
    const int order = compareNaturally(a, b);
    return order != 0 ? order < 0 : a < b;
}

Paths expandImageSet(const std::vector<std::string>& arguments, std::string_view option) {
    Paths paths;
    for (const std::string& argument : arguments) {
        const Paths more = expand(argument);
        paths.insert(paths.end(), more.begin(), more.end());
    }
    for (const fs::path& path : paths) {
        if (std::error_code error; !fs::exists(path, error)) {
            failData("{}: no such file: check the name given to {}", path.string(), option);
        }
    }
    return paths;
}

std::string warningOfGlobs(const Paths& images, const Paths& pictures) {
    for (const fs::path& picture : pictures) {
        for (const fs::path& image : images) {
            if (isImageName(picture) && firstWord(picture) == firstWord(image) && areBeside(picture, image)) {
                return fmt::format(
                    "{}: lies beside {}, so that a glob for such images takes it for one of them the "
                    "next time: give it a folder of its own",
                    picture.string(), image.string());
            }
        }
    }
    return {};
}

}  // namespace zelm::tool
