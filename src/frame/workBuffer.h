// A block of work memory that frees itself. Test it once with ok() before use; a failed or overflowing request holds
// nothing. Contents are uninitialised.
#ifndef ZELM_WORK_BUFFER_H
#define ZELM_WORK_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

#include "alloc.h"

namespace zelm {

template <class T>
class WorkBuffer {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

public:
    WorkBuffer() = default;
    explicit WorkBuffer(std::size_t count) { acquire(count); }
    WorkBuffer(std::size_t rows, std::size_t cols) {
        if (cols == 0 || rows <= SIZE_MAX / cols) {
            acquire(rows * cols);
        }
    }
    WorkBuffer(const WorkBuffer&) = delete;
    WorkBuffer& operator=(const WorkBuffer&) = delete;
    WorkBuffer(WorkBuffer&& other) noexcept : block(other.block), length(other.length) { other.forget(); }
    WorkBuffer& operator=(WorkBuffer&& other) noexcept {
        if (this != &other) {
            freeBytes(block);
            block = other.block;
            length = other.length;
            other.forget();
        }
        return *this;
    }
    ~WorkBuffer() { freeBytes(block); }

    [[nodiscard]] bool ok() const { return block != nullptr; }
    [[nodiscard]] std::size_t size() const { return length; }
    T* data() { return block; }
    const T* data() const { return block; }
    T& operator[](std::size_t i) { return block[i]; }
    const T& operator[](std::size_t i) const { return block[i]; }
    std::span<T> span() { return {block, length}; }
    std::span<const T> span() const { return {block, length}; }

    // Hands the block to the caller, who frees it with freeBytes().
    T* release() {
        T* const handedOut = block;
        forget();
        return handedOut;
    }

private:
    // A request for nothing still obtains a block, so that ok() means "obtained" for every count.
    void acquire(std::size_t count) {
        if (count > SIZE_MAX / sizeof(T)) {
            return;
        }
        block = static_cast<T*>(allocBytes(count == 0 ? 1 : count * sizeof(T)));
        length = block != nullptr ? count : 0;
    }
    void forget() {
        block = nullptr;
        length = 0;
    }

    T* block = nullptr;
    std::size_t length = 0;
};

}  // namespace zelm

#endif
