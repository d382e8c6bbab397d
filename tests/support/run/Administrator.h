#pragma once

#include <QTest>
#include <unistd.h>

/// Ends a test whose world only the administrator can set up: files of other users, locked files,
/// another user as whom to run.
#define VANTOR_NEEDS_ADMINISTRATOR()                                                               \
    do {                                                                                           \
        if (::geteuid() != 0)                                                                      \
            QSKIP("only the administrator can set this test up");                                  \
    } while (false)
