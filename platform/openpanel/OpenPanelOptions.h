#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

enum class OpenPanelChoice { Files, Folders, FilesAndFolders };

/// What an open panel offers. Paths are raw bytes.
struct OpenPanel
{
    OpenPanelChoice choice = OpenPanelChoice::FilesAndFolders;
    /// Where it starts; the user's home folder when empty or not there.
    QByteArray startFolder;
    /// Tells which items may be chosen; all when empty. The others are greyed, and refused when
    /// typed. The main thread calls it often: it must not use the file system.
    std::function<bool(const QByteArray &path)> shouldEnable;
    QString prompt;                         ///< one line above the list; none when empty
    QString title = QStringLiteral("Open"); ///< the text of the button that chooses
};
