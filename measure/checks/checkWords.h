// Sentences about checks, for reports.
#ifndef ZELM_MEASURE_CHECK_WORDS_H
#define ZELM_MEASURE_CHECK_WORDS_H

#include <string>

#include "adjustmentChecks.h"

namespace zelm::measure {

// What is wrong, and what to do about it; or what was found to be right, or why the check was not done.
std::string wordsOf(const Check& check);

}  // namespace zelm::measure

#endif
