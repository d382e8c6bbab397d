#include "tests/soak/monkey/ProcessFigures.h"

#include <QDir>
#include <QFile>
#include <malloc.h>
#include <unistd.h>

ProcessFigures ProcessFigures::now()
{
    ::malloc_trim(0); // what is free already tells nothing
    QFile file(QStringLiteral("/proc/self/statm"));
    ProcessFigures figures;
    if (file.open(QIODevice::ReadOnly)) // pages: of the address space, in memory, ...
        figures.memory = file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
    file.close();
    figures.descriptors = static_cast<int>(
        QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::AllEntries).size());
    return figures;
}
