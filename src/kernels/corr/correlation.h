// Normalised cross-correlation of 8-bit gray windows from exact integer sums: three sampling patterns, four mask modes.
//
// A window is given by its first pixel and the bytes from one row to the next (any sign); a mask byte other than 0
// marks a pixel that takes part. Patterns: full takes every pixel; checker takes in row r the columns of r's parity;
// quarter takes even columns of even rows. Every call runs the variant that the processor calls for (AVX2, SSE4.1 or
// plain); all give the same bits, but for one intended asymmetry: only the plain variant samples the checker pattern,
// the vector variants take every pixel of the window in its place.
//
// The score is (N * sum(IT) - sum(I) * sum(T)) / sqrt(D), D = (N * sum(TT) - sum(T)^2) * (N * sum(II) - sum(I)^2); D is
// formed in single precision, and a D below 1e-9 (a flat window) gives 0.0. Sums are kept modulo 2^32, so windows
// beyond 66,051 pixels may overflow them. Nothing is read outside the w bytes of each of the h rows, nothing is checked
// or allocated. Statistics that the caller gives are taken as they are: when they belong to other pixels than those
// that the pattern visits, the score is not bound to [-1, 1].
#ifndef ZELM_CORRELATION_H
#define ZELM_CORRELATION_H

#include <cstdint>

namespace zelm {

// No mask. The caller gives the template's statistics: the number N of its pixels, variance = N * sum(TT) - sum(T)^2
// and sumT. An empty window gives 0.0.
float nccFull(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h, std::int32_t N,
              std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride);
float nccChecker(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h, std::int32_t N,
                 std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride);
float nccQuarter(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h, std::int32_t N,
                 std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride);

// A mask on the template, over which the caller computed the statistics.
float nccFullRefMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                     const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, std::int32_t N, std::int64_t variance,
                     std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride);
float nccCheckerRefMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                        const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, std::int32_t N,
                        std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride);
float nccQuarterRefMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                        const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, std::int32_t N,
                        std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride);

// One mask laid over both windows, the statistics computed over it. No participating pixel gives -2.0. searchWidth and
// searchHeight, the size of the search image, are not used.
float nccFullMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                  const std::uint8_t* img, std::int32_t imgStride, std::int32_t searchWidth, std::int32_t searchHeight,
                  const std::uint8_t* mask, std::int32_t maskStride);
float nccCheckerMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                     const std::uint8_t* img, std::int32_t imgStride, std::int32_t searchWidth,
                     std::int32_t searchHeight, const std::uint8_t* mask, std::int32_t maskStride);
float nccQuarterMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                     const std::uint8_t* img, std::int32_t imgStride, std::int32_t searchWidth,
                     std::int32_t searchHeight, const std::uint8_t* mask, std::int32_t maskStride);

// A mask on each window; a pixel takes part where both are set. Otherwise as with one shared mask.
float nccFullTwoMasks(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                      const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, const std::uint8_t* img,
                      std::int32_t imgStride, std::int32_t searchWidth, std::int32_t searchHeight,
                      const std::uint8_t* imgMask, std::int32_t imgMaskStride);
float nccCheckerTwoMasks(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                         const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, const std::uint8_t* img,
                         std::int32_t imgStride, std::int32_t searchWidth, std::int32_t searchHeight,
                         const std::uint8_t* imgMask, std::int32_t imgMaskStride);
float nccQuarterTwoMasks(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                         const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, const std::uint8_t* img,
                         std::int32_t imgStride, std::int32_t searchWidth, std::int32_t searchHeight,
                         const std::uint8_t* imgMask, std::int32_t imgMaskStride);

}  // namespace zelm

#endif
