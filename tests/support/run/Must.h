#pragma once

#include <QtGlobal>

/// For the making of a test's world: what does not hold ends the test, in every kind of build.
inline void must(bool holds, const char *what)
{
    if (!holds)
        qFatal("the test's world could not be made: %s", what);
}
