// What tells one file's content from another's.
#ifndef ZELM_TOOL_FILE_HASH_H
#define ZELM_TOOL_FILE_HASH_H

#include <string>
#include <string_view>

namespace zelm::tool {

// SHA-256 as 64 hexadecimal digits.
std::string sha256(std::string_view bytes);

}  // namespace zelm::tool

#endif
