#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A home, settings and cache folders of the test's own, named in the environment for as long as
/// this lives, so that no test reaches the user's. Made first thing in a test's main().
class ScratchEnvironment final
{
public:
    ScratchEnvironment();

    QString home() const { return m_folder.path() + QStringLiteral("/home"); }

private:
    QTemporaryDir m_folder;
};
