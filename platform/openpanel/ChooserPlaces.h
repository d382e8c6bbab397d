#pragma once

#include <QList>
#include <QUrl>
#include <functional>

/// The folder in which a file chooser starts: the one at the raw path `wanted`, or the home folder
/// when the path is empty or leads to no folder. Waits for its disk: not for the main thread.
QString chooserStart(const QByteArray &wanted);

/// The folders that a chooser might offer beside its list, the home folder first. They need not
/// exist: see isPlaceThere(). Waits for the home's disk: not for the main thread.
QList<QUrl> sidePlaces();

/// Whether a folder is at this URL. Waits for its disk: not for the main thread.
bool isPlaceThere(const QUrl &place);

/// The questions that a file chooser asks the disk. Each runs on a thread of its own, and nothing
/// waits for that thread: a folder that never answers keeps no other folder from the list. A value.
struct ChooserQuestions
{
    std::function<QString(const QByteArray &wanted)> start = chooserStart;
    std::function<QList<QUrl>()> places = sidePlaces;
    std::function<bool(const QUrl &place)> isThere = isPlaceThere;
};
