#pragma once

#include "platform/files/FileUrl.h"

#include <optional>
#include <utility>

/// One file or folder as a table shows it: a file that the search found, or an entry of the
/// excluded paths. Its icon is looked up where it is shown. Plain data; one thread at a time.
class File final
{
public:
    explicit File(FileUrl fileURL) : m_fileURL(std::move(fileURL)) {}

    const FileUrl &fileURL() const { return m_fileURL; }
    /// The preview shows the file itself.
    const FileUrl &previewItemURL() const { return m_fileURL; }

    /// The last component of the path, for people; "/" for the root.
    QString name() const;

    /// Bytes, as read when it was found or measured; 0 until then.
    qint64 size() const { return m_size; }
    void setSize(qint64 bytes) { m_size = bytes; }

    /// Whether a cleaning could remove it, as found.
    bool isDeletable() const { return m_isDeletable; }
    void setIsDeletable(bool isDeletable) { m_isDeletable = isDeletable; }

    /// The size as people read it; nothing until it was set.
    const std::optional<QString> &sizeString() const { return m_sizeString; }
    void setSizeString(std::optional<QString> text) { m_sizeString = std::move(text); }

    /// Whether the user has picked it.
    bool isAdded() const { return m_isAdded; }
    void setIsAdded(bool isAdded) { m_isAdded = isAdded; }

private:
    FileUrl m_fileURL;
    qint64 m_size = 0;
    std::optional<QString> m_sizeString;
    bool m_isDeletable = false;
    bool m_isAdded = false;
};
