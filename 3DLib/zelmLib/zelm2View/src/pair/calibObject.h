// The stereo calibration object: the data block and the work block.
#ifndef ZELM_CALIB_OBJECT_H
#define ZELM_CALIB_OBJECT_H

#include <cstdint>
#include <cstring>

#include "calibBlock.h"
#include "zelm/twoView.h"

// Two owning pointers, in this order.
struct Zelm2ViewCalib {
    unsigned char* data;  // the calibration data block, see calibBlock.h
    unsigned char* work;  // an opened object: Zelm2ViewWork and its entries; a loaded one: a single int32, 1
};

namespace zelm {

// Head of the work block of an opened object; n left point-list entries, then n right ones follow it.
struct Zelm2ViewWork {
    std::int32_t loaded;           // 0
    std::int32_t views;            // n
    Zelm2ViewPatternDesc pattern;  // the caller's, with d0 and d1 larger by a third of the pitch
};
static_assert(sizeof(Zelm2ViewWork) == 104 && sizeof(Zelm2ViewWork) % alignof(Zelm2ViewPtnEntry) == 0);

// The work block of an opened object; NULL for a loaded one, whose work block holds the loaded flag alone.
inline Zelm2ViewWork* openedWork(const Zelm2ViewCalib& calib) {
    std::int32_t loaded = 0;
    std::memcpy(&loaded, calib.work, sizeof(loaded));
    return loaded == 0 ? reinterpret_cast<Zelm2ViewWork*>(calib.work) : nullptr;
}

// The n entries of one camera, view 0 first.
inline Zelm2ViewPtnEntry* entriesOf(Zelm2ViewWork* work, Camera camera) {
    auto* const first = reinterpret_cast<Zelm2ViewPtnEntry*>(work + 1);
    return isLeft(camera) ? first : first + work->views;
}

// Frees both arrays of an entry and leaves it with no dots.
void emptyEntry(Zelm2ViewPtnEntry* entry);

// The camera that the low byte of a selector names; false for anything but 'L' and 'R'.
inline bool selectCamera(std::int32_t selector, Camera* camera) {
    const auto name = static_cast<unsigned char>(static_cast<std::uint32_t>(selector) & 0xFFU);
    *camera = name == 'L' ? Camera::left : Camera::right;
    return name == 'L' || name == 'R';
}

}  // namespace zelm

#endif
