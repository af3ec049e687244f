// Unions of rows of bits, local to each tier's file, whose flags decide how many words an instruction takes.
#ifndef ZELM_BIT_UNIONS_INL_H
#define ZELM_BIT_UNIONS_INL_H

#include <cstddef>
#include <cstdint>

namespace zelm {
namespace {

constexpr ptrdiff_t kWordBits = 64;

void uniteBits(const uint64_t* __restrict from, ptrdiff_t words, ptrdiff_t step, uint64_t* __restrict to) {
    const ptrdiff_t far = step / kWordBits;
    const auto bits = static_cast<unsigned>(step % kWordBits);
    const unsigned rest = kWordBits - bits;
    for (ptrdiff_t i = 0; i < words; ++i) {
        const uint64_t before = from[i - far] << bits | from[i - far - 1] >> rest;
        const uint64_t after = from[i + far] >> bits | from[i + far + 1] << rest;
        to[i] = from[i] | before | after;
    }
}

void uniteWords(const uint64_t* above, const uint64_t* at, const uint64_t* below, ptrdiff_t words,
                uint64_t* __restrict to) {
    for (ptrdiff_t i = 0; i < words; ++i) {
        to[i] = above[i] | at[i] | below[i];
    }
}

}  // namespace
}  // namespace zelm

#endif
