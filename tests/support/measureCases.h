// Which functions of the measuring library a program has put to the test, so that none is forgotten: a program that
// links this fails unless every function of the headers was named by ZELM_CASE() where it was called.
#ifndef ZELM_TEST_MEASURE_CASES_H
#define ZELM_TEST_MEASURE_CASES_H

namespace zelmtest {

void noteCase(const char* function);

}  // namespace zelmtest

// The function, noted as one that is tested here: ZELM_CASE(zelmMeasureNoise)(&image, &noise).
#define ZELM_CASE(function) (::zelmtest::noteCase(#function), function)

#endif
