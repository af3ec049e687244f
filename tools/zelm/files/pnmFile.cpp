#include "pnmFile.h"

#include <algorithm>

#include "failure.h"

namespace zelm::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kWhite = 65535;
constexpr std::uint64_t kMaxNumber = 1'000'000'000'000;  // larger ones count as this: far above all limits

[[noreturn]] void failDamaged(const fs::path& path, std::string_view why) {
    failData("{}: not a complete PNM image ({}): export or copy it again", path.string(), why);
}

bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads numbers in text, with blanks and comments between them.
class NumberReader {
public:
    NumberReader(const fs::path& file, std::string_view text, std::size_t start)
        : path(file), bytes(text), place(start) {}

    std::uint64_t next() {
        skipBlanks();
        if (place == bytes.size()) {
            failDamaged(path, "it ends too early");
        }
        if (!isDigit(bytes[place])) {
            failDamaged(path, fmt::format("no number at byte {}", place));
        }
        std::uint64_t number = 0;
        for (; place < bytes.size() && isDigit(bytes[place]); ++place) {
            number = std::min(10 * number + static_cast<std::uint64_t>(bytes[place] - '0'), kMaxNumber);
        }
        return number;
    }

    std::size_t position() const { return place; }

private:
    void skipBlanks() {
        for (; place < bytes.size() && (isBlank(bytes[place]) || bytes[place] == '#'); ++place) {
            if (bytes[place] == '#') {
                place = std::min(bytes.find_first_of("\n\r", place), bytes.size() - 1);
            }
        }
    }

    const fs::path& path;
    std::string_view bytes;
    std::size_t place;
};

}  // namespace

PnmHeader readPnmHeader(const fs::path& path, std::string_view bytes) {
    PnmHeader header;
    header.kind = bytes[1];
    NumberReader numbers(path, bytes, 2);
    header.width = numbers.next();
    header.height = numbers.next();
    header.largest = numbers.next();
    if (header.width == 0 || header.height == 0 || header.largest == 0 || header.largest > kWhite) {
        failDamaged(path,
                    fmt::format("{} x {} pixels of levels up to {}", header.width, header.height, header.largest));
    }
    header.end = std::min(numbers.position() + 1, bytes.size());  // a single blank stands before the levels
    return header;
}

std::vector<std::uint16_t> readPnmLevels(const fs::path& path, std::string_view bytes, const PnmHeader& header) {
    const std::uint64_t count = header.width * header.height * header.channels();
    const unsigned size = header.largest > 255 ? 2 : 1;  // bytes of a level, the high one first
    // A level in text takes at least a digit and a blank, but for the last.
    if (bytes.size() - header.end < (header.isText() ? 2 * count - 1 : size * count)) {
        failDamaged(path, "it ends too early");
    }
    std::vector<std::uint16_t> levels(count);
    NumberReader numbers(path, bytes, header.end);
    const auto* place = reinterpret_cast<const unsigned char*>(bytes.data()) + header.end;
    for (std::uint16_t& level : levels) {
        std::uint64_t value = 0;
        if (header.isText()) {
            value = numbers.next();
        } else {
            value = size == 1 ? place[0] : 256U * place[0] + place[1];
            place += size;
        }
        if (value > header.largest) {
            failDamaged(path, fmt::format("a level of {}, but {} is the largest it states", value, header.largest));
        }
        level = static_cast<std::uint16_t>((value * kWhite + header.largest / 2) / header.largest);
    }
    return levels;
}

}  // namespace zelm::tool
