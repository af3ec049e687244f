#include "heapSort.h"

#include <cstddef>

namespace zelm {
namespace {

using Index = std::ptrdiff_t;

// Values with the indices that travel with them; positions count from 1.
struct Heap {
    double* values;
    std::int32_t* index;

    struct Item {
        double value;
        std::int32_t index;
    };

    [[nodiscard]] double value(Index position) const { return values[position - 1]; }
    [[nodiscard]] Item take(Index position) const {
        return {values[position - 1], index != nullptr ? index[position - 1] : 0};
    }
    void put(Index position, Item item) const {
        values[position - 1] = item.value;
        if (index != nullptr) {
            index[position - 1] = item.index;
        }
    }

    // Sinks item from position into the heap of the first size elements.
    void sink(Index position, Index size, Item item) const {
        for (Index child = 2 * position; child <= size; child = 2 * position) {
            if (child < size && value(child) >= value(child + 1)) {
                child += 1;  // of equal children the right one: docs/decisions.md#heap-order
            }
            if (value(child) > item.value) {
                break;
            }
            put(position, take(child));
            position = child;
        }
        put(position, item);
    }
};

}  // namespace

void innerHeapSortDescending(std::int32_t n, double* values, std::int32_t* index) {
    if (n < 2) {
        return;
    }
    const Heap heap{values, index};
    for (Index parent = n / 2; parent >= 1; --parent) {
        heap.sink(parent, n, heap.take(parent));
    }
    for (Index last = n; last >= 2; --last) {
        const Heap::Item taken = heap.take(last);
        heap.put(last, heap.take(1));
        heap.sink(1, last - 1, taken);
    }
}

}  // namespace zelm
