// Whether a calibration is to be trusted, and what speaks against it.
#ifndef ZELM_TOOL_VERDICT_H
#define ZELM_TOOL_VERDICT_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace zelm::tool {

enum class VerdictStatus { good, doubtful, refused };

// One reason, told once for all the images that it is about.
struct Doubt {
    std::string cause;  // a word for machines, such as "list-shifted"
    std::string text;   // a line that names the files and what to try
    std::vector<std::filesystem::path> images;
    bool isFatal = false;  // the result is not to be trusted
};

struct Verdict {
    VerdictStatus status = VerdictStatus::good;
    std::vector<Doubt> doubts;  // fatal ones first

    // Adds doubts and judges anew.
    void add(std::vector<Doubt> more);
    // The first fatal doubt; NULL when there is none.
    const Doubt* fatal() const;
    std::string sentence() const;
};

// "good", "doubtful" or "refused".
const char* statusWord(VerdictStatus status);
nlohmann::ordered_json verdictJson(const Verdict& verdict);

// Throws Failure for a refused result, unless it is wanted all the same.
void requireTrust(const Verdict& verdict, bool isForced);

}  // namespace zelm::tool

#endif
