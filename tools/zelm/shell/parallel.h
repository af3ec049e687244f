// Work on all cores.
#ifndef ZELM_TOOL_PARALLEL_H
#define ZELM_TOOL_PARALLEL_H

#include <cstddef>
#include <functional>

namespace zelm::tool {

// Calls work(0) to work(count - 1), each once and in no order, on as many threads as the machine runs at a time. When
// one throws, no further ones begin, and the first that was thrown is thrown again.
void onAllCores(std::size_t count, const std::function<void(std::size_t)>& work);

}  // namespace zelm::tool

#endif
