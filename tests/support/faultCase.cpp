#include "faultCase.h"

namespace zelmtest {

std::vector<FaultCase>& faultCases() {
    static std::vector<FaultCase> cases;
    return cases;
}

}  // namespace zelmtest
