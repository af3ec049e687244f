// How work inside the library gives up, and how that reaches the caller: a status, and words in the caller's handle.
#ifndef ZELM_MEASURE_FAULT_H
#define ZELM_MEASURE_FAULT_H

#include <zelmMeasure.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zelm::measure {

class Fault : public std::runtime_error {
public:
    Fault(std::int32_t faultStatus, const std::string& text) : std::runtime_error(text), status(faultStatus) {}

    std::int32_t status;
};

// The data do not allow it: say why, and what to try.
[[noreturn]] inline void refuse(const std::string& text) {
    throw Fault(ZELM_MEASURE_ERR_DATA, text);
}

// Throws unless the caller's argument can be meant.
inline void require(bool condition, const char* text) {
    if (!condition) {
        throw Fault(ZELM_ERR_PARAM, text);
    }
}

// Throws what the core's functions report when memory runs out.
inline void requireMemory(std::int32_t status) {
    if (status == ZELM_ERR_MEMORY) {
        throw std::bad_alloc();
    }
}

// The words for the last failure. They need no memory, so that there are some when it runs out.
class ErrorText {
public:
    const char* c_str() const { return text.data(); }
    void set(std::string_view words) {
        const std::size_t length = words.copy(text.data(), text.size() - 1);
        text[length] = '\0';
    }

private:
    std::array<char, 512> text{};
};

// Does the work of an exported function: nothing that it throws crosses the border.
template <class Work>
std::int32_t guarded(ErrorText* error, Work work) noexcept {
    const auto fail = [error](std::int32_t status, std::string_view words) {
        if (error != nullptr) {
            error->set(words);
        }
        return status;
    };
    try {
        work();
        return ZELM_OK;
    } catch (const Fault& fault) {
        return fail(fault.status, fault.what());
    } catch (const std::bad_alloc&) {
        return fail(ZELM_ERR_MEMORY, "out of memory");
    } catch (const std::length_error&) {
        return fail(ZELM_ERR_MEMORY, "out of memory");
    } catch (const std::exception& other) {
        return fail(ZELM_MEASURE_ERR_DATA, other.what());
    }
}

}  // namespace zelm::measure

#endif
