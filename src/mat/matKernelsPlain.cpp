// The tier of every processor.
#include <cstddef>

namespace zelm {
namespace {

constexpr std::ptrdiff_t kLanes = 2;

}  // namespace
}  // namespace zelm

#include "matLoops-inl.h"

namespace zelm {

const MatKernels kMatPlainTier = {product, subtractRows, subtractRow};

}  // namespace zelm
