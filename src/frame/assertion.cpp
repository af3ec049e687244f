#include "assertion.h"

#include <cstdio>
#include <cstdlib>

namespace zelm {

void assertionFailed(const char* function, const char* file, const char* expression) {
    std::fprintf(stderr, "zelmLib: assertion failed in %s (%s): %s\n", function, file, expression);
    std::abort();
}

}  // namespace zelm
