#pragma once

#include "largefiles/preview/PictureDecoder.h"
#include "platform/files/FileAccess.h"
#include "platform/files/FileUrl.h"

#include <QDeadlineTimer>
#include <QFile>
#include <chrono>
#include <memory>
#include <stop_token>

class SystemCalls;

/// What is needed to read files for previews: the system's calls and the right to work in the
/// granted folder, which both outlive every holder of this, and the decoder of the files.
struct FileReading
{
    const SystemCalls &calls;
    FileAccess &access;
    PictureDecoder decoder = {};
};

/// How much may be spent on looking into one file.
struct ReadingLimits
{
    qint64 bytes = 512LL * 1024 * 1024;                       ///< read all in all
    std::chrono::milliseconds time = std::chrono::seconds(4); ///< from the opening on
};

/// A file whose content cannot be trusted, as a device. Reads fail once the limits are reached or
/// the token says stop, so that no reader goes on for long. Only regular files are opened, and no
/// link is followed. One thread at a time, any but the main one.
class GuardedFile final : public QIODevice
{
    Q_OBJECT

public:
    /// Null when there is no such regular file in the granted folder, or it cannot be read. The
    /// caller holds the access while the file lives.
    static std::unique_ptr<GuardedFile> open(const FileReading &reading, const FileUrl &url,
                                             const std::stop_token &stop,
                                             ReadingLimits limits = {});

    /// Whether a read was refused. If so, what was read is not the whole file.
    bool hasGivenUp() const { return m_hasGivenUp; }
    QDateTime modified() const;
    const PictureDecoder &decoder() const { return m_decoder; }
    /// For another process, which reads it without these limits. Open as long as this lives.
    int descriptor() const { return m_descriptor.get(); }
    /// The file's content as a picture. After that the reading position is undefined; see seek().
    DecodedPicture picture(int page, QSize pixels);

    qint64 size() const override { return m_file.size(); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char *data, qint64 largest) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    GuardedFile(FileDescriptor descriptor, PictureDecoder decoder, std::stop_token stop,
                ReadingLimits limits);

    PictureDecoder m_decoder;
    FileDescriptor m_descriptor;
    QFile m_file;
    std::stop_token m_stop;
    qint64 m_bytesLeft;
    QDeadlineTimer m_deadline;
    bool m_hasGivenUp = false;
};
