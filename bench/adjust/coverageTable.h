// How often stated intervals hold the truth, over many random rigs.
#ifndef ZELM_BENCH_COVERAGE_TABLE_H
#define ZELM_BENCH_COVERAGE_TABLE_H

namespace zelmbench {

void printCoverage(int rigs);

}  // namespace zelmbench

#endif
