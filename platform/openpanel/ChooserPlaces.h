#pragma once

#include <QList>
#include <QUrl>
#include <functional>

/// Where a file chooser is to start: the folder at the raw path `wanted`, or the home folder when
/// that is empty or no folder. Waits for its disk: not for the main thread.
QString chooserStart(const QByteArray &wanted);

/// The places that it might offer beside its list, the home folder first; whether they are there is
/// another question. Waits for the home's disk: not for the main thread.
QList<QUrl> sidePlaces();

/// Whether a place is a folder that is there. Waits for its disk: not for the main thread.
bool isPlaceThere(const QUrl &place);

/// What a file chooser asks the disk. Each question is asked on a thread of its own, for which
/// nobody waits: one place that never answers takes no other away. A value.
struct ChooserQuestions
{
    std::function<QString(const QByteArray &wanted)> start = chooserStart;
    std::function<QList<QUrl>()> places = sidePlaces;
    std::function<bool(const QUrl &place)> isThere = isPlaceThere;
};
