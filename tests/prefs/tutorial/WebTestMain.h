#pragma once

#include "prefs/tutorial/WebTutorial.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QApplication>
#include <QStyleFactory>
#include <QTest>

/// main() of a test of the tutorial's web view: the application is prepared as the program's.
#define VANTOR_WEB_TEST_MAIN(TestClass)                                                            \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        const ScratchEnvironment environment;                                                      \
        WebTutorial::prepareApplication();                                                         \
        QApplication application(argc, argv);                                                      \
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));                   \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
