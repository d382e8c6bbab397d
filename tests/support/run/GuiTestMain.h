#pragma once

#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QApplication>
#include <QStyleFactory>
#include <QTest>

/// main() of a test of widgets: the style and the fonts of every picture are fixed.
#define VANTOR_GUI_TEST_MAIN(TestClass)                                                            \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        const ScratchEnvironment environment;                                                      \
        QApplication application(argc, argv);                                                      \
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));                   \
        TestClass test;                                                                            \
        const int failures = QTest::qExec(&test, argc, argv);                                      \
        awaitBackgroundThreads();                                                                  \
        return failures;                                                                           \
    }
