// Memory between two pages that may not be touched: a read or write past either end of the buffer ends the test
// program.
#ifndef ZELM_TEST_GUARDED_BUFFER_H
#define ZELM_TEST_GUARDED_BUFFER_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace zelmtest {

// Which end of the buffer touches its guard page exactly; the other one lies within a page of its guard.
enum class Guard { atStart, atEnd };

template <class T>
class GuardedBuffer {
public:
    GuardedBuffer(std::size_t count, Guard guard) : length(count) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t bytes = count * sizeof(T);
        const std::size_t inner = (bytes + page - 1) / page * page;
        mapped = inner + 2 * page;
        base = static_cast<std::uint8_t*>(mmap(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (base == MAP_FAILED || (inner > 0 && mprotect(base + page, inner, PROT_READ | PROT_WRITE) != 0)) {
            std::abort();
        }
        first = reinterpret_cast<T*>(guard == Guard::atStart ? base + page : base + page + inner - bytes);
    }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;
    ~GuardedBuffer() { munmap(base, mapped); }

    T* data() { return first; }
    [[nodiscard]] std::size_t size() const { return length; }
    T& operator[](std::size_t i) { return first[i]; }
    T* begin() { return first; }
    T* end() { return first + length; }

private:
    std::uint8_t* base = nullptr;
    std::size_t mapped = 0;
    std::size_t length = 0;
    T* first = nullptr;
};

}  // namespace zelmtest

#endif
