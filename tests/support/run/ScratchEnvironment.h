#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// The test's own folders for home, settings and cache. The environment names them as long as this
/// object lives, so that no test reaches the user's folders. Made first in a test's main().
class ScratchEnvironment final
{
public:
    ScratchEnvironment();

    QString home() const { return m_folder.path() + QStringLiteral("/home"); }

private:
    QTemporaryDir m_folder;
};
