#include "alloc.h"

#include <cstdlib>

namespace zelm {

void* allocBytes(std::size_t bytes) {
    return std::malloc(bytes);
}
void* reallocBytes(void* block, std::size_t bytes) {
    return std::realloc(block, bytes);
}
void freeBytes(void* block) {
    std::free(block);
}

}  // namespace zelm
