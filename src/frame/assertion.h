// Assertions guard internal invariants, never the caller's arguments; they are on in every build. The text of the
// expression is behaviour: it appears on stderr as written, so keep its spelling.
#ifndef ZELM_ASSERTION_H
#define ZELM_ASSERTION_H

namespace zelm {

// Writes function, source file and expression to stderr and aborts.
[[noreturn]] void assertionFailed(const char* function, const char* file, const char* expression);

}  // namespace zelm

#define ZELM_ASSERT(expression) \
    ((expression) ? static_cast<void>(0) : ::zelm::assertionFailed(__func__, __FILE__, #expression))

#endif
