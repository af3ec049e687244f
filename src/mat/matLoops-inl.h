// The loops of matKernels.h over vectors of kLanes doubles, which a tier's file defines before it includes this, local
// to that file: the linker never sees two copies built with different flags.
#ifndef ZELM_MAT_LOOPS_INL_H
#define ZELM_MAT_LOOPS_INL_H

#include <cstddef>
#include <cstring>

#include "matKernels.h"

namespace zelm {
namespace {

using Index = std::ptrdiff_t;
using Lanes = double __attribute__((vector_size(kLanes * sizeof(double))));

constexpr Index kBlockRows = 4;     // rows of C whose sums are held in registers,
constexpr Index kBlockVectors = 2;  // and vectors of each row
constexpr Index kBlockCols = kBlockVectors * kLanes;
constexpr Index kDepth = 128;       // rows of B that a panel holds: it stays in the nearest cache
constexpr Index kChunkVectors = 4;  // of a row that many rows are subtracted from

inline Lanes load(const double* from) {
    Lanes v;
    std::memcpy(&v, from, sizeof v);
    return v;
}
inline void store(double* to, Lanes v) {
    std::memcpy(to, &v, sizeof v);
}
inline Lanes every(double value) {
    return Lanes{} + value;
}

// kBlockCols columns of B, row after row; columns beyond B are 0.
using Panel = double[kDepth * kBlockCols];

inline void fillPanel(const SlantedMatrix& b, Index firstRow, Index depth, Index firstCol, Index cols, Panel& panel) {
    const double* const from = b.entries + firstRow * b.step + firstCol * b.across;
    for (Index k = 0; k < depth; ++k) {
        double* const row = panel + k * kBlockCols;
        for (Index j = 0; j < kBlockCols; ++j) {
            row[j] = j < cols ? from[k * b.step + j * b.across] : 0.0;
        }
    }
}

// Adds the products of `depth` rows to a block of Rows x cols sums at c.
template <std::size_t kRows>
void addToBlock(Index depth, const double* a, Index aStep, Index aAcross, const Panel& panel, Index cols, double* c,
                Index cStep) {
    constexpr auto Rows = static_cast<Index>(kRows);
    double block[kRows][static_cast<std::size_t>(kBlockCols)] = {};
    for (Index i = 0; i < Rows; ++i) {
        for (Index j = 0; j < cols; ++j) {
            block[i][j] = c[i * cStep + j];
        }
    }
    Lanes sums[kRows][static_cast<std::size_t>(kBlockVectors)];
    for (Index i = 0; i < Rows; ++i) {
        for (Index v = 0; v < kBlockVectors; ++v) {
            sums[i][v] = load(block[i] + v * kLanes);
        }
    }
    for (Index k = 0; k < depth; ++k) {
        Lanes row[kBlockVectors];
        for (Index v = 0; v < kBlockVectors; ++v) {
            row[v] = load(panel + k * kBlockCols + v * kLanes);
        }
        for (Index i = 0; i < Rows; ++i) {
            const Lanes factor = every(a[k * aStep + i * aAcross]);
            for (Index v = 0; v < kBlockVectors; ++v) {
                sums[i][v] = sums[i][v] + factor * row[v];
            }
        }
    }
    for (Index i = 0; i < Rows; ++i) {
        for (Index v = 0; v < kBlockVectors; ++v) {
            store(block[i] + v * kLanes, sums[i][v]);
        }
        for (Index j = 0; j < cols; ++j) {
            c[i * cStep + j] = block[i][j];
        }
    }
}

// Block by block, the sums kept in C from one panel to the next.
void product(Index rows, Index cols, Index inner, const SlantedMatrix& a, const SlantedMatrix& b, double* c) {
    for (Index i = 0; i < rows * cols; ++i) {
        c[i] = 0.0;
    }
    alignas(64) Panel panel;
    for (Index j = 0; j < cols; j += kBlockCols) {
        const Index width = cols - j < kBlockCols ? cols - j : kBlockCols;
        for (Index k = 0; k < inner; k += kDepth) {
            const Index depth = inner - k < kDepth ? inner - k : kDepth;
            fillPanel(b, k, depth, j, width, panel);
            const double* const factors = a.entries + k * a.step;
            Index i = 0;
            for (; i + kBlockRows <= rows; i += kBlockRows) {
                addToBlock<static_cast<std::size_t>(kBlockRows)>(depth, factors + i * a.across, a.step, a.across, panel,
                                                                 width, c + i * cols + j, cols);
            }
            for (; i < rows; ++i) {
                addToBlock<1>(depth, factors + i * a.across, a.step, a.across, panel, width, c + i * cols + j, cols);
            }
        }
    }
}

// A chunk of the target stays in registers while all rows are subtracted from it.
void subtractRows(Index cols, Index count, const double* factors, const double* rows, double* target) {
    constexpr Index kChunk = kChunkVectors * kLanes;
    Index c = 0;
    for (; c + kChunk <= cols; c += kChunk) {
        Lanes rest[kChunkVectors];
        for (Index v = 0; v < kChunkVectors; ++v) {
            rest[v] = load(target + c + v * kLanes);
        }
        for (Index k = 0; k < count; ++k) {
            const Lanes factor = every(factors[k]);
            for (Index v = 0; v < kChunkVectors; ++v) {
                rest[v] = rest[v] - factor * load(rows + k * cols + c + v * kLanes);
            }
        }
        for (Index v = 0; v < kChunkVectors; ++v) {
            store(target + c + v * kLanes, rest[v]);
        }
    }
    for (; c + kLanes <= cols; c += kLanes) {
        Lanes rest = load(target + c);
        for (Index k = 0; k < count; ++k) {
            rest = rest - every(factors[k]) * load(rows + k * cols + c);
        }
        store(target + c, rest);
    }
    for (; c < cols; ++c) {
        double rest = target[c];
        for (Index k = 0; k < count; ++k) {
            rest -= factors[k] * rows[k * cols + c];
        }
        target[c] = rest;
    }
}

void subtractRow(Index cols, double factor, const double* row, double* target) {
    Index c = 0;
    for (; c + kLanes <= cols; c += kLanes) {
        store(target + c, load(target + c) - load(row + c) * every(factor));
    }
    for (; c < cols; ++c) {
        target[c] = target[c] - row[c] * factor;
    }
}

}  // namespace
}  // namespace zelm

#endif
