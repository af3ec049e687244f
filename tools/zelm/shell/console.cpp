#include "console.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "jsonText.h"

namespace zelm::tool {
namespace {

constexpr std::size_t kBarCells = 30;

}  // namespace

std::string oneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
    return line;
}

void Console::say(std::string_view line) const {
    if (!json && !quiet) {
        fmt::print("{}\n", line);
    }
}

void Console::result(const nlohmann::ordered_json& result) const {
    if (json) {
        nlohmann::ordered_json all{{"status", "done"}, {"warnings", nlohmann::ordered_json::array()}};
        all.update(result);
        all["warnings"] = warnings;  // where a summary has its own, these are among them
        fmt::print("{}\n", jsonText(all));
    }
}

void Console::warn(std::string_view line) const {
    if (line.empty()) {
        return;
    }
    std::fflush(stdout);
    warnings.push_back(oneLine(line));
    fmt::print(stderr, "zelm: warning: {}\n", warnings.back());
}

Progress::Progress(const Console& console, std::string_view text, std::size_t count)
    : label(text), total(std::max<std::size_t>(count, 1)), visible(!console.quiet && isatty(STDERR_FILENO) == 1) {
    draw();
}

Progress::~Progress() {
    erase();
}

void Progress::advance() {
    done = std::min(done + 1, total);
    draw();
}

void Progress::erase() {
    if (visible) {
        fmt::print(stderr, "\r\033[K");
        std::fflush(stderr);
    }
}

void Progress::draw() const {
    if (visible) {
        const std::size_t filled = kBarCells * done / total;
        fmt::print(stderr, "\r{} [{:#>{}}{:.>{}}] {}/{}", label, "", filled, "", kBarCells - filled, done, total);
        std::fflush(stderr);
    }
}

}  // namespace zelm::tool
