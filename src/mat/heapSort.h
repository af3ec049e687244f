// The sort that orders the values of the decompositions.
#ifndef ZELM_HEAP_SORT_H
#define ZELM_HEAP_SORT_H

#include <cstdint>

namespace zelm {

// Sorts values into descending order in place and makes the same moves in index unless it is null. Heap sort on a
// min-heap (Williams 1964; Floyd 1964), not stable: where equal values end up follows from the rules in the source and
// is relied on, because callers pick vectors by position.
void innerHeapSortDescending(std::int32_t n, double* values, std::int32_t* index);

}  // namespace zelm

#endif
