#pragma once

#include <QtGlobal>

/// For the set-up of a test: a condition that does not hold ends the test, in every kind of build.
inline void must(bool holds, const char *what)
{
    if (!holds)
        qFatal("the test's world could not be made: %s", what);
}
