#include "imageNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>

#include "failure.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

// The last number in the name of a file.
std::optional<std::string> numberOf(const fs::path& path) {
    const std::string stem = path.stem().string();
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto end = std::find_if(stem.rbegin(), stem.rend(), isDigit).base();
    auto begin = end;
    while (begin != stem.begin() && isDigit(*(begin - 1))) {
        --begin;
    }
    std::string digits(begin, end);
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - (digits.empty() ? 0 : 1)));
    return digits.empty() ? std::nullopt : std::optional(digits);
}

// The words of a path's name and folder: runs of letters, in small ones, each with the digits that follow it.
std::set<std::string> wordsOf(const fs::path& path) {
    std::set<std::string> words;
    for (const std::string& part : {path.stem().string(), path.parent_path().filename().string()}) {
        std::string letters;
        std::string digits;
        const auto finish = [&] {
            if (!letters.empty()) {
                words.insert(letters);
                words.insert(letters + digits);
            }
            letters.clear();
            digits.clear();
        };
        for (const char c : part) {
            const auto u = static_cast<unsigned char>(c);
            if (std::isalpha(u) != 0) {
                if (!digits.empty()) {
                    finish();
                }
                letters += static_cast<char>(std::tolower(u));
            } else if (std::isdigit(u) != 0 && !letters.empty()) {
                digits += c;
            } else {
                finish();
            }
        }
        finish();
    }
    return words;
}

struct SideWords {
    const char* left;
    const char* right;
};
constexpr std::array<SideWords, 6> kSideWords{{{"left", "right"},
                                               {"l", "r"},
                                               {"cam0", "cam1"},
                                               {"camera0", "camera1"},
                                               {"cam1", "cam2"},
                                               {"camera1", "camera2"}}};

}  // namespace

bool areSameFile(const fs::path& a, const fs::path& b) {
    std::error_code error;
    return !a.empty() && !b.empty() && fs::equivalent(a, b, error);
}

bool haveSameBytes(const fs::path& a, const fs::path& b) {
    std::error_code error;
    if (a.empty() || b.empty() || fs::file_size(a, error) != fs::file_size(b, error) || error) {
        return false;
    }
    std::ifstream first(a, std::ios::binary);
    std::ifstream second(b, std::ios::binary);
    using Bytes = std::istreambuf_iterator<char>;
    return first && second && std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

void requireTwoSides(const std::vector<ViewFiles>& views) {
    std::vector<const ViewFiles*> same;
    for (const ViewFiles& view : views) {
        if (areSameFile(view.left, view.right) || haveSameBytes(view.left, view.right)) {
            same.push_back(&view);
        }
    }
    if (same.empty()) {
        return;
    }
    const ViewFiles& first = *same.front();
    const bool isFile = areSameFile(first.left, first.right);
    if (same.size() == views.size()) {
        failData(
            "{}: given as left and as right image{}: give --left the images of one camera and --right those of "
            "the other one",
            first.left.string(),
            isFile ? ", and so are all others"
                   : fmt::format(" ({} is a copy of it), and so are all others", first.right.string()));
    }
    failData("{}: {}, which is given as the right image of the same view{}: give the other camera's image",
             first.left.string(), isFile ? "the same file" : fmt::format("the same image as {}", first.right.string()),
             same.size() > 1 ? fmt::format(" (so in {} of {} views)", same.size(), views.size()) : "");
}

std::vector<std::size_t> pairsOfOtherNumbers(const std::vector<ViewFiles>& views) {
    std::set<std::string> left;
    std::set<std::string> right;
    std::vector<std::size_t> other;
    for (std::size_t i = 0; i < views.size(); ++i) {
        const auto l = numberOf(views[i].left);
        const auto r = numberOf(views[i].right);
        if (!l || !r) {
            return {};
        }
        left.insert(*l);
        right.insert(*r);
        if (*l != *r) {
            other.push_back(i);
        }
    }
    // Numbers that count views are all different, and mostly the same on both sides.
    std::size_t shared = 0;
    for (const std::string& number : left) {
        shared += right.contains(number) ? 1U : 0U;
    }
    const bool areCounts = left.size() == views.size() && right.size() == views.size() && 2 * shared >= views.size();
    return areCounts ? other : std::vector<std::size_t>{};
}

int sideOutOfOrder(const std::vector<ViewFiles>& views, std::size_t a, std::size_t b) {
    const auto isOut = [&](fs::path ViewFiles::*side) {
        const auto first = numberOf(views[a].*side);
        const auto second = numberOf(views[b].*side);
        return first && second && (first->size() != second->size() ? first->size() > second->size() : *first > *second);
    };
    const bool isLeft = isOut(&ViewFiles::left);
    const bool isRight = isOut(&ViewFiles::right);
    return isLeft == isRight ? 0 : isLeft ? 'L' : 'R';
}

bool areNamedExchanged(const std::vector<ViewFiles>& views) {
    return !views.empty() && std::all_of(views.begin(), views.end(), [](const ViewFiles& view) {
        const std::set<std::string> left = wordsOf(view.left);
        const std::set<std::string> right = wordsOf(view.right);
        return std::any_of(kSideWords.begin(), kSideWords.end(), [&](const SideWords& words) {
            return left.contains(words.right) && !left.contains(words.left) && right.contains(words.left) &&
                   !right.contains(words.right);
        });
    });
}

}  // namespace zelm::tool
