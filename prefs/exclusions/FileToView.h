#pragma once

#include "largefiles/search/File.h"
#include "platform/files/FileAccess.h"
#include "platform/threads/BackgroundQueue.h"

#include <QHash>
#include <QObject>
#include <memory>

class SystemCalls;

/// What a look at a path finds out, without entering it.
struct FileFacts
{
    enum class Presence { Unknown, Present, Missing };

    Presence presence = Presence::Unknown;
    FileUrlKind kind = FileUrlKind::File;
    QString iconName; ///< see genericIconName()
};

/// Finds out in the background what a table shows of a file. Answers come on the main thread, from
/// the event loop, and never after this is gone. A disk that does not answer delays neither the end
/// of this object nor the end of the program. Main thread only.
class FileToView final : public QObject
{
    Q_OBJECT

public:
    /// Gives the right to work below the granted folder; null while there is none. It is asked on
    /// the threads that do the work, because the answer may wait for a disk. What it uses lives as
    /// long as the program.
    using AccessSource = std::function<FileAccess *()>;

    /// The calls live as long as the program.
    FileToView(const SystemCalls &calls, AccessSource access, QObject *parent = nullptr);
    /// Stops what is under way, and waits for nothing.
    ~FileToView() override;

    /// Measures the file as cleaning would count it and then sets its size and its size text. A
    /// measurement of this file that is under way serves this call too. Without access the file
    /// stays as it is, and the completion is still called.
    void prepareFileForDisplay(const std::shared_ptr<File> &file, std::function<void()> completion);

    /// Ends a measurement: the file stays as it is, and its completions are not called.
    void cancel(const File &file);

    /// One answer for each path, in order.
    void lookAt(const QList<QByteArray> &paths,
                std::function<void(const QList<FileFacts> &)> answer);

private:
    struct Measurement
    {
        std::stop_source stop;
        std::vector<std::function<void()>> completions;
    };

    void finish(const std::shared_ptr<File> &file, qint64 bytes);
    void complete(const File &file);

    const SystemCalls &m_calls;
    AccessSource m_access;
    QHash<const File *, Measurement> m_underWay;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::All> m_looks;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::All> m_measurements;
};
