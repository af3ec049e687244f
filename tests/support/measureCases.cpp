#include "measureCases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace zelmtest {
namespace {

// No container: cases are noted where memory is made to fail.
constexpr std::size_t kMaxNames = 1024;
std::array<const char*, kMaxNames> names{};
std::size_t nameCount = 0;

std::set<std::string> notedCases() {
    return {names.begin(), names.begin() + static_cast<std::ptrdiff_t>(nameCount)};
}

std::set<std::string> declaredFunctions() {
    std::set<std::string> found;
    const std::regex declaration(R"(\nZELM_API[^;(]*?(\w+)\s*\()");
    for (const auto& file : std::filesystem::directory_iterator(ZELM_SOURCE_DIR "/include/zelmMeasure")) {
        std::ifstream in(file.path());
        std::stringstream text;
        text << in.rdbuf();
        const std::string source = text.str();
        for (std::sregex_iterator it(source.begin(), source.end(), declaration), end; it != end; ++it) {
            found.insert((*it)[1]);
        }
    }
    return found;
}

class EveryFunctionHasACase : public testing::Environment {
public:
    void TearDown() override {
        if (testing::GTEST_FLAG(filter) != "*") {
            return;  // only some of the tests ran
        }
        const std::set<std::string> declared = declaredFunctions();
        const std::set<std::string> noted = notedCases();
        EXPECT_GT(declared.size(), 50U) << "the headers were not read";
        for (const std::string& name : declared) {
            EXPECT_TRUE(noted.contains(name)) << name << " has no case";
        }
        for (const std::string& name : noted) {
            EXPECT_TRUE(declared.contains(name)) << name << " is not declared";
        }
    }
};

// NOLINTNEXTLINE(cert-err58-cpp)
[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new EveryFunctionHasACase);

}  // namespace

void noteCase(const char* function) {
    const auto end = names.begin() + static_cast<std::ptrdiff_t>(nameCount);
    const auto isSame = [function](const char* name) { return std::strcmp(name, function) == 0; };
    if (std::find_if(names.begin(), end, isSame) == end && nameCount < names.size()) {
        names[nameCount++] = function;
    }
}

}  // namespace zelmtest
