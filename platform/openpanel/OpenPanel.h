#pragma once

#include <QByteArray>
#include <QString>
#include <QWidget>
#include <functional>
#include <optional>

enum class OpenPanelChoice { Files, Folders, FilesAndFolders };

/// What an open panel offers. Paths are raw bytes.
struct OpenPanel
{
    OpenPanelChoice choice = OpenPanelChoice::FilesAndFolders;
    /// Where it starts; the user's home folder when empty or not there.
    QByteArray startFolder;
    /// Which items may be chosen; all when empty. The others are greyed, and refused when typed.
    /// Called often on the main thread: no file system in it.
    std::function<bool(const QByteArray &path)> shouldEnable;
    QString prompt;                         ///< one line above the list; none when empty
    QString title = QStringLiteral("Open"); ///< of the button that chooses
};

/// Gets the chosen path, absolute, existing at the time of choice; nothing when cancelled.
using OpenPanelCompletion = std::function<void(std::optional<QByteArray> path)>;

/// Lets the user choose one item, in a sheet of the window that holds `host` (see Sheet.h). Returns
/// at once. Main thread only.
void presentOpenPanel(QWidget &host, const OpenPanel &panel, OpenPanelCompletion completion);
