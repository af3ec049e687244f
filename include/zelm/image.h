/// Pixel-format conversion.
#ifndef ZELM_IMAGE_H
#define ZELM_IMAGE_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

ZELM_API int32_t zelmConvertColorToGray_vImageARGB8888toPlanar8(const vImage_Buffer* tSrc, const vImage_Buffer* tDst);

ZELM_END_DECLS

#endif
