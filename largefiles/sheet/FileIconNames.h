#pragma once

#include "platform/threads/BackgroundQueue.h"

#include <QHash>
#include <QSet>

/// Which drawing shows a file, by the ending of its name. An ending that is met for the first time
/// is looked up on a thread of its own, because the desktop's list of types is a large file; until
/// then its files are plain documents. Main thread only.
class FileIconNames final : public QObject
{
    Q_OBJECT

public:
    explicit FileIconNames(QObject *parent = nullptr) : QObject(parent) {}

    /// The name of the drawing (see Images.h). Never waits.
    QString imageName(const QByteArray &fileName);

Q_SIGNALS:
    /// Endings that were asked for are known now.
    void namesChanged();

private:
    void lookUp();

    QHash<QByteArray, QString> m_names; ///< by ending
    QSet<QByteArray> m_wanted;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_job;
};
