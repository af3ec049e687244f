// Tables of docs/accuracy.md about dots placed by all their pixels.
#ifndef ZELM_BENCH_DOT_TABLES_H
#define ZELM_BENCH_DOT_TABLES_H

namespace zelm::accuracy {

// `views` of each setting; 2500 trials a view of wrong places, 250 of every disturbance.
void printDotTables(int views);

// Processor time of a dot, by radius and blur.
void printDotTimes();

// What the path-traced sample shows.
void printDeskRigDots();

}  // namespace zelm::accuracy

#endif
