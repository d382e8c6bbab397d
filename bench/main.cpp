#include "bench/CleanCommand.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == QStringLiteral("clean"))
        return runClean(arguments.mid(1));
    std::fputs("usage: vantor-bench clean PATH... [--exclude URL]... --yes\n", stderr);
    return 2;
}
