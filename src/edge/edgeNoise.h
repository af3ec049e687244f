// Noise in a quantised profile.
#ifndef ZELM_EDGE_NOISE_H
#define ZELM_EDGE_NOISE_H

#include <cstdint>
#include <span>

namespace zelm {

// Whether the profile turns back and forth as noise does: rising, falling and rising again, or the reverse, within four
// steps and by at most swing gray levels in between. Plateaus and ramps of more than two samples do not.
bool isNoisyProfile(std::span<const int32_t> q, int32_t swing);

// Whether a sample stands above both its neighbours, or below both, and above or below one of them by at most
// tolerance: a sign of noise too weak to break plateaus.
bool hasJitter(std::span<const int32_t> q, int32_t tolerance);

}  // namespace zelm

#endif
