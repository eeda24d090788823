#pragma once
// Checks of programming errors. A failed check reports
// "<function>:<line>: failed: <expression>" on standard error (and the trace),
// writes the current stack trace and aborts the process. The checks stay in
// release builds: they guard conditions that must never happen.
#include "support/trace/TarniTrace.h"

#define TARNI_ASSERT(expr)                                                        \
    do                                                                            \
    {                                                                             \
        if (!(expr)) ::Tarni::Support::tarni_fail(__func__, __LINE__, #expr);     \
    } while (0)

/// A check reported with a text of its own instead of the expression.
#define TARNI_ASSERT_MSG(expr, text)                                              \
    do                                                                            \
    {                                                                             \
        if (!(expr)) ::Tarni::Support::tarni_fail(__func__, __LINE__, text);      \
    } while (0)
