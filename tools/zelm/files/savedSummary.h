// What the summary that calibrate writes beside a rig's file (rig.json) says of the calibration.
#ifndef ZELM_TOOL_SAVED_SUMMARY_H
#define ZELM_TOOL_SAVED_SUMMARY_H

#include <filesystem>
#include <string>

namespace zelm::tool {

struct Rig;

inline constexpr const char* kUnknownUnits = "plate units";

struct SavedSummary {
    std::string file;                   // name without folders; empty where there is none
    std::string units = kUnknownUnits;  // of lengths, in words
    std::string verdict;                // "good", "doubtful" or "refused"; empty: not told
    std::string sentence;               // the verdict for people

    bool isDoubtful() const { return verdict == "doubtful"; }
    bool isRefused() const { return verdict == "refused"; }
    bool hasUnits() const { return units != kUnknownUnits; }
};

// The summary beside the rig's file; nothing is known where there is none, or one of another calibration.
SavedSummary savedSummary(const std::filesystem::path& rigFile, const Rig& rig);

// "out/rig.zcal: rig.json says of this calibration: Doubtful: ..."
std::string savedVerdictText(const std::filesystem::path& rigFile, const SavedSummary& summary);

}  // namespace zelm::tool

#endif
