#pragma once

#include "platform/system/ThreadConfinement.h"

#include <QTest>

/// Ends a test, with a word, on a kernel that cannot confine threads.
#define VANTOR_NEEDS_CONFINEMENT                                                                   \
    do {                                                                                           \
        if (!hostConfinement().isAvailable())                                                      \
            QSKIP("this kernel cannot confine threads");                                           \
    } while (false)
