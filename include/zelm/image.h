/// @file
/// Pixel-format conversion.
#ifndef ZELM_IMAGE_H
#define ZELM_IMAGE_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Converts an ARGB8888 buffer to weighted gray.
///
/// gray = (77 R + 150 G + 29 B) >> 8 in integers, the luma weights of ITU-R BT.601 in 1/256, truncated; alpha is
/// ignored. White gives 255. The plate readers use another gray, the truncated mean of R, G and B
/// (`docs/decisions.md#two-grays`).
/// @param tSrc [in]  ARGB8888 pixels (bytes A, R, G, B)
/// @param tDst [in]  Planar8 buffer of the same width and height; its data, owned by the caller, receive the gray
///                   levels. Each buffer keeps its own rowBytes, which is not checked; padding is left as it is
/// @return ZELM_OK; ZELM_ERR_PARAM, nothing written, if a pointer is NULL, the source is empty, data is missing in
///         either buffer, or the widths or heights differ
/// Memory: none. Reentrant: yes.
ZELM_API int32_t zelmConvertColorToGray_vImageARGB8888toPlanar8(const vImage_Buffer* tSrc, const vImage_Buffer* tDst);

ZELM_END_DECLS

#endif
