#include "tests/support/run/ScratchEnvironment.h"

#include <QDir>

ScratchEnvironment::ScratchEnvironment()
{
    if (!m_folder.isValid())
        qFatal("a test needs a folder of its own: %s", qPrintable(m_folder.errorString()));
    const struct
    {
        const char *variable;
        const char *folder;
    } places[] = {{"HOME", "home"},
                  {"XDG_CONFIG_HOME", "config"},
                  {"XDG_DATA_HOME", "data"},
                  {"XDG_CACHE_HOME", "cache"},
                  {"XDG_STATE_HOME", "state"},
                  {"XDG_RUNTIME_DIR", "runtime"}};
    for (const auto &place : places) {
        const QString path = m_folder.filePath(QLatin1String(place.folder));
        QDir().mkpath(path);
        qputenv(place.variable, QFile::encodeName(path));
    }
    QFile::setPermissions(m_folder.filePath(QStringLiteral("runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
