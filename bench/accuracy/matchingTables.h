// The tables of matching accuracy, as docs/accuracy.md shows them.
#ifndef ZELM_MATCHING_TABLES_H
#define ZELM_MATCHING_TABLES_H

namespace zelm::accuracy {

void printMatchingTables(int trials);

}  // namespace zelm::accuracy

#endif
