#include "matBytes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zelm::measure {
namespace {

static_assert(std::endian::native == std::endian::little, "the file's numbers are written as they are");

enum ElementType : std::uint32_t { kInt8 = 1, kUint16 = 4, kInt32 = 5, kUint32 = 6, kDouble = 9, kMatrix = 14 };
enum ArrayClass : std::uint32_t { kStructClass = 2, kCharClass = 4, kDoubleClass = 6 };

template <class T>
std::string bytesOf(std::span<const T> values) {
    std::string bytes(values.size() * sizeof(T), '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

std::string bytesOf(std::uint32_t value) {
    return bytesOf(std::span<const std::uint32_t>(&value, 1));
}

// Up to four bytes stand beside their tag; longer ones are filled up to a multiple of eight.
std::string element(std::uint32_t type, const std::string& data) {
    const auto size = static_cast<std::uint32_t>(data.size());
    std::string bytes;
    if (size > 0 && size <= 4 && type != kMatrix) {
        bytes = bytesOf(size << 16U | type) + data;
    } else {
        bytes = bytesOf(type) + bytesOf(size) + data;
    }
    bytes.append((8 - bytes.size() % 8) % 8, '\0');
    return bytes;
}

std::string flagsOf(ArrayClass arrayClass) {
    return element(kUint32, bytesOf(arrayClass) + bytesOf(0U));
}

std::string shapeOf(std::size_t rows, std::size_t columns) {
    const std::array<std::int32_t, 2> sizes{static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns)};
    return element(kInt32, bytesOf(std::span<const std::int32_t>(sizes)));
}

}  // namespace

MatElement MatElement::numbers(std::size_t rows, std::span<const double> values) {
    const std::size_t columns = values.size() / rows;
    std::vector<double> byColumns;
    byColumns.reserve(values.size());
    for (std::size_t column = 0; column < columns; ++column) {
        for (std::size_t row = 0; row < rows; ++row) {
            byColumns.push_back(values[row * columns + column]);
        }
    }
    MatElement e;
    e.flags = flagsOf(kDoubleClass);
    e.shape = shapeOf(rows, columns);
    e.content = element(kDouble, bytesOf(std::span<const double>(byColumns)));
    return e;
}

MatElement MatElement::text(std::string_view words) {
    std::vector<std::uint16_t> letters(words.size());
    std::transform(words.begin(), words.end(), letters.begin(),
                   [](char c) { return static_cast<std::uint16_t>(static_cast<unsigned char>(c)); });
    MatElement e;
    e.flags = flagsOf(kCharClass);
    e.shape = shapeOf(1, words.size());
    e.content = element(kUint16, bytesOf(std::span<const std::uint16_t>(letters)));
    return e;
}

MatElement MatElement::structure(const std::vector<std::pair<std::string, MatElement>>& fields) {
    constexpr std::size_t kNameBytes = 64;  // with the zero at the end
    std::string names;
    std::string values;
    for (const auto& [name, value] : fields) {
        names += name;
        names.append(kNameBytes - name.size(), '\0');
        values += value.bytes("");
    }
    MatElement e;
    e.flags = flagsOf(kStructClass);
    e.shape = shapeOf(1, 1);
    e.content = element(kInt32, bytesOf(static_cast<std::uint32_t>(kNameBytes))) + element(kInt8, names) + values;
    return e;
}

std::string MatElement::bytes(std::string_view name) const {
    return element(kMatrix, flags + shape + element(kInt8, std::string(name)) + content);
}

std::string matFile(std::string_view name, const MatElement& variable) {
    constexpr std::size_t kTextBytes = 116;
    constexpr std::size_t kSubsystemBytes = 8;
    std::string header = "MATLAB 5.0 MAT-file, stereo camera parameters";
    header.append(kTextBytes - header.size(), ' ');
    header.append(kSubsystemBytes, '\0');
    header += std::string("\x00\x01IM", 4);  // version 1, little-endian
    return header + variable.bytes(name);
}

}  // namespace zelm::measure
