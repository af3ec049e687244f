// Work memory that takes none from the heap for up to kInPlace entries: what small matrices and few points need takes
// less time than to ask for a block. Test it once with ok() before use. Contents are uninitialised.
#ifndef ZELM_SMALL_BUFFER_H
#define ZELM_SMALL_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "workBuffer.h"

namespace zelm {

template <class T, std::size_t kInPlace>
class SmallBuffer {
public:
    explicit SmallBuffer(std::size_t count) : length(count) {
        if (count > kInPlace) {
            far = WorkBuffer<T>(count);
        }
        first = count > kInPlace ? far.data() : near;
    }
    SmallBuffer(std::size_t rows, std::size_t cols)
        : SmallBuffer(cols == 0 || rows <= SIZE_MAX / cols ? rows * cols : SIZE_MAX) {}
    SmallBuffer(const SmallBuffer&) = delete;
    SmallBuffer& operator=(const SmallBuffer&) = delete;

    [[nodiscard]] bool ok() const { return first != nullptr; }
    [[nodiscard]] std::size_t size() const { return length; }
    T* data() { return first; }
    const T* data() const { return first; }
    T& operator[](std::size_t i) { return first[i]; }
    const T& operator[](std::size_t i) const { return first[i]; }
    std::span<T> span() { return {first, length}; }

private:
    std::size_t length;
    T* first = nullptr;
    WorkBuffer<T> far;
    T near[kInPlace];
};

}  // namespace zelm

#endif
