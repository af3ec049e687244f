// Reading MAT-files. All that a file says of sizes is checked against the bytes that are there.
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "fault.h"
#include "matBytes.h"

namespace zelm::measure {
namespace {

constexpr std::size_t kHeaderBytes = 128;
constexpr std::size_t kMaxInflated = std::size_t{256} << 20;  // bytes; calibrations take a few thousand
constexpr int kMaxDepth = 16;                                 // of structures in structures

enum ElementType : std::uint32_t { kMatrix = 14, kCompressed = 15 };
enum ArrayClass : std::uint32_t { kStructClass = 2, kFirstNumericClass = 6, kLastNumericClass = 15 };

[[noreturn]] void refuseDamaged() {
    refuse("damaged MAT-file: was it copied whole?");
}

template <class T>
T valueAt(std::string_view bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(T)) {
        refuseDamaged();
    }
    T value{};
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
    return value;
}

struct Element {
    std::uint32_t type = 0;
    std::string_view data;
};

// Takes the first element from the bytes.
Element takeElement(std::string_view& bytes) {
    const auto tag = valueAt<std::uint32_t>(bytes, 0);
    const bool isSmall = tag >> 16U != 0;
    const std::size_t size = isSmall ? tag >> 16U : valueAt<std::uint32_t>(bytes, 4);
    const std::size_t begin = isSmall ? 4 : 8;
    if (size > bytes.size() - begin || (isSmall && size > 4)) {
        refuseDamaged();
    }
    const Element e{isSmall ? tag & 0xffffU : tag, bytes.substr(begin, size)};
    // Compressed elements alone are not filled up.
    const std::size_t filled = e.type == kCompressed ? begin + size : (begin + size + 7) / 8 * 8;
    bytes.remove_prefix(std::min(filled, bytes.size()));
    return e;
}

std::string inflated(std::string_view data) {
    std::string result;
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) {
        throw std::bad_alloc();
    }
    struct Ender {
        z_stream* stream;
        ~Ender() { inflateEnd(stream); }
    } const ender{&stream};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    std::string piece(std::size_t{1} << 16, '\0');
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        status = inflate(&stream, Z_NO_FLUSH);
        result.append(piece.data(), piece.size() - stream.avail_out);
        if (result.size() > kMaxInflated) {
            refuse("a MAT-file of more than 256 megabytes: leave the calibration alone in it");
        }
    }
    if (status != Z_STREAM_END) {
        refuseDamaged();
    }
    return result;
}

template <class T>
std::vector<double> widened(std::string_view data) {
    std::vector<double> values(data.size() / sizeof(T));
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = static_cast<double>(valueAt<T>(data, i * sizeof(T)));
    }
    return values;
}

// MATLAB stores whole numbers as the smallest type that holds them, whatever the array's class.
std::vector<double> numbersOf(const Element& e) {
    switch (e.type) {
        case 1:
            return widened<std::int8_t>(e.data);
        case 2:
            return widened<std::uint8_t>(e.data);
        case 3:
            return widened<std::int16_t>(e.data);
        case 4:
            return widened<std::uint16_t>(e.data);
        case 5:
            return widened<std::int32_t>(e.data);
        case 6:
            return widened<std::uint32_t>(e.data);
        case 7:
            return widened<float>(e.data);
        case 9:
            return widened<double>(e.data);
        case 12:
            return widened<std::int64_t>(e.data);
        case 13:
            return widened<std::uint64_t>(e.data);
        default:
            refuseDamaged();
    }
}

class Reader {
public:
    NamedArrays arrays;

    void readAll(std::string_view bytes, int depth) {
        while (bytes.size() >= 8) {
            const Element e = takeElement(bytes);
            if (e.type == kCompressed && depth == 0) {
                const std::string inner = inflated(e.data);
                readAll(inner, 1);
            } else if (e.type == kMatrix) {
                readArray(e.data, "", 0);
            }
        }
    }

private:
    // `path`: the structure's name with its point, and the field's.
    void readArray(std::string_view bytes, const std::string& path, int depth) {
        if (bytes.empty()) {
            return;  // an empty field
        }
        if (depth > kMaxDepth) {
            refuse("structures within structures beyond measure: is this a calibration?");
        }
        const std::uint32_t arrayClass = valueAt<std::uint32_t>(takeElement(bytes).data, 0) & 0xffU;
        const Element shape = takeElement(bytes);
        const Element ownName = takeElement(bytes);
        const std::string name = path.empty() ? std::string(ownName.data) : path;
        if (arrayClass == kStructClass) {
            readStructure(bytes, name, widened<std::int32_t>(shape.data), depth);
        } else if (arrayClass >= kFirstNumericClass && arrayClass <= kLastNumericClass) {
            addNumbers(takeElement(bytes), name, widened<std::int32_t>(shape.data));
        }
    }

    void readStructure(std::string_view bytes, const std::string& name, const std::vector<double>& shape, int depth) {
        if (shape.size() != 2 || shape[0] != 1.0 || shape[1] != 1.0) {
            return;  // a list of structures has no single value for a name
        }
        const auto length = static_cast<std::size_t>(valueAt<std::uint32_t>(takeElement(bytes).data, 0));
        const std::string_view names = takeElement(bytes).data;
        if (length == 0) {
            refuseDamaged();
        }
        for (std::size_t begin = 0; begin + length <= names.size(); begin += length) {
            const std::string_view padded = names.substr(begin, length);
            std::string path = name;
            path += '.';
            path += padded.substr(0, padded.find('\0'));
            const Element value = takeElement(bytes);
            if (value.type != kMatrix) {
                refuseDamaged();
            }
            readArray(value.data, path, depth + 1);
        }
    }

    void addNumbers(const Element& e, const std::string& name, const std::vector<double>& shape) {
        const std::vector<double> byColumns = numbersOf(e);
        if (shape.size() != 2 || !(shape[0] >= 0.0) || !(shape[1] >= 0.0) ||
            shape[0] * shape[1] != static_cast<double>(byColumns.size())) {
            return;  // of more dimensions, as points of many views are
        }
        NamedArray array;
        array.shape = {static_cast<std::size_t>(shape[0]), static_cast<std::size_t>(shape[1])};
        array.values.reserve(byColumns.size());
        for (std::size_t row = 0; row < array.shape[0]; ++row) {
            for (std::size_t column = 0; column < array.shape[1]; ++column) {
                array.values.push_back(byColumns[column * array.shape[0] + row]);
            }
        }
        const bool isFinite =
            std::all_of(array.values.begin(), array.values.end(), [](double v) { return v - v == 0.0; });
        if (isFinite) {  // points that were not seen are NaN
            arrays.add(name, std::move(array));
        }
    }
};

}  // namespace

NamedArrays arraysOfMatFile(std::string_view file) {
    if (file.starts_with("MATLAB 7.3") || file.starts_with("\x89HDF")) {
        refuse("a MAT-file of version 7.3: save it in MATLAB with save(..., '-v7')");
    }
    if (file.size() < kHeaderBytes || file.substr(126, 2) != "IM") {
        refuse("no MAT-file of level 5 in little-endian order: save it in MATLAB with save(..., '-v7')");
    }
    Reader reader;
    reader.readAll(file.substr(kHeaderBytes), 0);
    return reader.arrays;
}

}  // namespace zelm::measure
