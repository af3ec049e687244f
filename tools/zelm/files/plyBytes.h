// Numbers of binary PLY files: lowest byte first, whatever the machine.
#ifndef ZELM_TOOL_PLY_BYTES_H
#define ZELM_TOOL_PLY_BYTES_H

#include <bit>
#include <cstdint>
#include <string>

namespace zelm::tool {

inline void appendWord(std::string& bytes, std::uint32_t bits) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(bits >> shift & 0xffU);
    }
}

inline void appendFloat(std::string& bytes, double value) {
    appendWord(bytes, std::bit_cast<std::uint32_t>(static_cast<float>(value)));
}

}  // namespace zelm::tool

#endif
