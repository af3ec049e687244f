// Sixteen bytes at a time, by the vector types of gcc and clang: a vector instruction where the processor has one.
#ifndef ZELM_BYTE_VECTOR_H
#define ZELM_BYTE_VECTOR_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zelm {

using ByteVector = uint8_t __attribute__((vector_size(16)));

constexpr ptrdiff_t kVectorBytes = sizeof(ByteVector);

inline ByteVector loadBytes(const uint8_t* from) {
    ByteVector v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

inline void storeBytes(uint8_t* to, ByteVector v) {
    std::memcpy(to, &v, sizeof v);
}

inline ByteVector everyByte(uint8_t value) {
    return ByteVector{} + value;
}

// All ones where a byte is at or above the level, else 0.
inline ByteVector atOrAbove(ByteVector v, ByteVector level) {
    return reinterpret_cast<ByteVector>(v >= level);
}

}  // namespace zelm

#endif
