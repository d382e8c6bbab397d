#pragma once

#include <QTest>
#include <unistd.h>

/// Skips a test that only the administrator can set up: it needs files of other users, locked
/// files, or to run as another user.
#define VANTOR_NEEDS_ADMINISTRATOR()                                                               \
    do {                                                                                           \
        if (::geteuid() != 0)                                                                      \
            QSKIP("only the administrator can set this test up");                                  \
    } while (false)
