// How large a flaw must be for its check to find it, by theory.
#ifndef ZELM_BENCH_CHECK_POWER_H
#define ZELM_BENCH_CHECK_POWER_H

// Prints a table, means of some draws of sound calibrations.
void printCheckPower(int draws);

#endif
