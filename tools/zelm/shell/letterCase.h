// Upper and lower case of names that people type, in ASCII whatever the locale.
#ifndef ZELM_TOOL_LETTER_CASE_H
#define ZELM_TOOL_LETTER_CASE_H

#include <algorithm>
#include <filesystem>
#include <string>

namespace zelm::tool {

inline std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

// The ending of a file's name with its point: ".png" of "Left.PNG".
inline std::string lowerEnding(const std::filesystem::path& path) {
    return lowerCase(path.extension().string());
}

}  // namespace zelm::tool

#endif
