// The one seam through which the library takes and returns heap memory. The tests link their own implementation of
// these three functions, which can make any allocation fail and counts what is live.
#ifndef ZELM_ALLOC_H
#define ZELM_ALLOC_H

#include <cstddef>

namespace zelm {

void* allocBytes(std::size_t bytes);
void* reallocBytes(void* block, std::size_t bytes);
void freeBytes(void* block);

}  // namespace zelm

#endif
