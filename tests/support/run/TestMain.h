#pragma once

#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QCoreApplication>
#include <QTest>

/// main() of a test of code that knows no widget.
#define VANTOR_TEST_MAIN(TestClass)                                                                \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        const ScratchEnvironment environment;                                                      \
        QCoreApplication application(argc, argv);                                                  \
        TestClass test;                                                                            \
        const int failures = QTest::qExec(&test, argc, argv);                                      \
        awaitBackgroundThreads();                                                                  \
        return failures;                                                                           \
    }
