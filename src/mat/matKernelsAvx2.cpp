// The AVX2 tier. Products and sums are not fused, which would round otherwise than the plain tier does.
#include <cstddef>

namespace zelm {
namespace {

constexpr std::ptrdiff_t kLanes = 4;

}  // namespace
}  // namespace zelm

#include "matLoops-inl.h"

namespace zelm {

const MatKernels kMatAvx2Tier = {product, subtractRows, subtractRow};

}  // namespace zelm
