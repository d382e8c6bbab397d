#pragma once

#include "platform/system/FileDescriptor.h"
#include "platform/system/SystemResult.h"

#include <QByteArray>
#include <QString>
#include <optional>

class SystemCalls;

/// Which of the two contents that are kept.
enum class Generation { Current, Previous };

/// What a write may replace.
enum class Replace {
    /// Only what this object has read or written itself, or nothing at all.
    OnlyWhatIsKnown,
    /// Everything: a good content becomes the previous generation, anything else is set aside.
    Anything,
};

enum class DurableState { Missing, Good, Damaged, Unreadable };

/// What a read found.
struct DurableContent
{
    DurableState state = DurableState::Missing;
    QByteArray bytes; ///< of a good file, without the checksum
    int error = 0;    ///< errno of an unreadable one

    friend bool operator==(const DurableContent &, const DurableContent &) = default;
};

/// Why a write failed.
struct DurableError
{
    int error = 0;           ///< errno; 0 for a conflict
    bool isConflict = false; ///< something is there that this object neither read nor wrote
};

/// One small file that is read and written whole, and survives a crash, a power cut and a full
/// disk: at any moment the old content or the new one stands under its name.
///
/// The file ends in a line "#crc32 xxxxxxxx", so every truncation and every flipped bit is noticed.
/// The previous content is kept beside it as "<name>.1". It is a copy, not a link. So there is
/// never a moment without a file of the name, and only a content that was read back whole becomes a
/// previous generation. A bad file is renamed to "<name>.bad-<UTC time>" and never deleted. All
/// work is done below the given folder's descriptor.
///
/// One thread at a time. `calls` must outlive this.
class DurableFile final
{
public:
    /// The largest content, in bytes; a larger file is damaged.
    static constexpr qsizetype kLargestContent = qsizetype{16} * 1024 * 1024;

    DurableFile(const SystemCalls &calls, FileDescriptor folder, QByteArray name);

    /// The file of this name in the folder at a path, which may lead through links; an errno where
    /// there is no such folder.
    static SystemResult<DurableFile> in(const SystemCalls &calls, const QString &folder,
                                        QByteArray name);

    DurableContent read(Generation generation);

    /// The current content that this object has read or written last; nothing without one.
    const std::optional<QByteArray> &known() const { return m_known; }
    /// Counts this content as read: its reader has taken over what it needs of it, so a write may
    /// replace it.
    void learn(const QByteArray &content) { m_known = content; }

    /// Makes `content` the current generation and the current one the previous. When this returns
    /// without an error, the content is on the disk; when it fails, the old content still stands
    /// (or the new one, where only the proof is missing that it is on the disk).
    tl::expected<void, DurableError> write(const QByteArray &content, Replace replace);

    /// Renames a generation's file out of the way and returns its new name.
    SystemResult<QByteArray> setAside(Generation generation);

    /// Whether a bad file of this name was ever set aside and is still there.
    SystemResult<bool> hasFilesSetAside() const;

private:
    QByteArray nameOf(Generation generation) const;
    DurableContent readNamed(const QByteArray &name) const;
    SystemResult<QByteArray> readAll(const QByteArray &name) const;
    tl::expected<void, DurableError> clearTheWay(Replace replace);
    SystemResult<void> replaceFile(const QByteArray &name, const QByteArray &content) const;
    SystemResult<void> writeBeside(const QByteArray &name, const QByteArray &content) const;
    SystemResult<void> putInPlace(const QByteArray &name) const;
    SystemResult<void> writeAll(int file, const QByteArray &bytes) const;
    SystemResult<void> syncFolder() const;
    SystemResult<QByteArray> freeNameForBad(const QByteArray &name) const;

    const SystemCalls &m_calls;
    FileDescriptor m_folder;
    QByteArray m_name;
    std::optional<QByteArray> m_known;
};
