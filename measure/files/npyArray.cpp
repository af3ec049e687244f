#include "npyArray.h"

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "fault.h"

namespace zelm::measure {
namespace {

static_assert(std::endian::native == std::endian::little, "the file's numbers are written as they are");

constexpr std::string_view kMagic{"\x93NUMPY\x01\x00", 8};
constexpr std::size_t kPrefix = 10;  // magic and the header's length
constexpr std::size_t kAlignment = 64;

std::string shapeText(std::span<const std::size_t> shape) {
    std::string text = "(";
    for (std::size_t i = 0; i < shape.size(); ++i) {
        text += (i > 0 ? ", " : "") + std::to_string(shape[i]);
    }
    return text + (shape.size() == 1 ? ",)" : ")");
}

// What follows `key` in the header's dictionary.
std::string_view valueOf(std::string_view header, std::string_view key) {
    const std::size_t at = header.find(key);
    const std::size_t colon = at == std::string_view::npos ? at : header.find(':', at);
    if (colon == std::string_view::npos) {
        return {};
    }
    std::string_view value = header.substr(colon + 1);
    value.remove_prefix(std::min(value.find_first_not_of(' '), value.size()));
    return value;
}

std::vector<std::size_t> shapeOf(std::string_view text) {
    std::vector<std::size_t> shape;
    const std::size_t end = text.find(')');
    for (std::size_t i = 1; end != std::string_view::npos && i < end;) {
        std::size_t size = 0;
        const auto [next, error] = std::from_chars(text.data() + i, text.data() + end, size);
        if (error == std::errc()) {
            shape.push_back(size);
            i = static_cast<std::size_t>(next - text.data());
        } else {
            ++i;
        }
    }
    return shape;
}

template <class T>
std::vector<double> widened(std::string_view data, std::size_t count) {
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) {
        T value{};
        std::memcpy(&value, data.data() + i * sizeof(T), sizeof(T));
        values[i] = static_cast<double>(value);
    }
    return values;
}

using Widen = std::vector<double> (*)(std::string_view, std::size_t);

struct NumberType {
    std::string_view name;
    std::size_t bytes;
    Widen widen;
};

const NumberType* typeOf(std::string_view text) {
    static constexpr std::array<NumberType, 6> kTypes{{{"'<f8'", 8, widened<double>},
                                                       {"'<f4'", 4, widened<float>},
                                                       {"'<i8'", 8, widened<std::int64_t>},
                                                       {"'<i4'", 4, widened<std::int32_t>},
                                                       {"'<u4'", 4, widened<std::uint32_t>},
                                                       {"'<u2'", 2, widened<std::uint16_t>}}};
    for (const NumberType& type : kTypes) {
        if (text.starts_with(type.name)) {
            return &type;
        }
    }
    return nullptr;
}

NamedArray byRows(NamedArray array) {
    std::vector<double> values;
    values.reserve(array.values.size());
    for (std::size_t row = 0; row < array.shape[0]; ++row) {
        for (std::size_t column = 0; column < array.shape[1]; ++column) {
            values.push_back(array.values[column * array.shape[0] + row]);
        }
    }
    array.values = std::move(values);
    return array;
}

}  // namespace

std::string npyBytes(std::span<const std::size_t> shape, std::span<const double> values) {
    std::string header = "{'descr': '<f8', 'fortran_order': False, 'shape': " + shapeText(shape) + ", }";
    header.append(kAlignment - (kPrefix + header.size() + 1) % kAlignment, ' ');
    header += '\n';
    std::string bytes(kMagic);
    bytes += static_cast<char>(header.size() & 0xffU);
    bytes += static_cast<char>(header.size() >> 8U);
    bytes += header;
    const std::size_t begin = bytes.size();
    bytes.resize(begin + values.size() * sizeof(double));
    std::memcpy(bytes.data() + begin, values.data(), values.size() * sizeof(double));
    return bytes;
}

NamedArray npyArray(std::string_view bytes, const std::string& name) {
    if (bytes.size() < 12 || bytes.substr(0, 6) != kMagic.substr(0, 6) || (bytes[6] != 1 && bytes[6] != 2)) {
        refuse(name + " is no array of NumPy");
    }
    const bool isLong = bytes[6] == 2;
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data() + 8, isLong ? 4 : 2);
    const std::size_t begin = isLong ? 12 : 10;
    if (length > bytes.size() - begin) {
        refuse(name + " is damaged: was it copied whole?");
    }
    const std::string_view header = bytes.substr(begin, length);
    const std::string_view data = bytes.substr(begin + length);
    const NumberType* const type = typeOf(valueOf(header, "'descr'"));
    NamedArray array;
    array.shape = shapeOf(valueOf(header, "'shape'"));
    if (type == nullptr || array.shape.size() > 2) {
        refuse(name + " is no array of numbers of at most two dimensions");
    }
    std::size_t count = 1;
    for (const std::size_t size : array.shape) {
        if (size > 0 && count > data.size() / size) {
            refuse(name + " is damaged: was it copied whole?");
        }
        count *= size;
    }
    if (count > data.size() / type->bytes) {
        refuse(name + " is damaged: was it copied whole?");
    }
    array.values = type->widen(data, count);
    const bool isByColumns = valueOf(header, "'fortran_order'").starts_with("True");
    return isByColumns && array.shape.size() == 2 ? byRows(std::move(array)) : array;
}

}  // namespace zelm::measure
