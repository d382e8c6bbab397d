#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

/// Whether a URL means a file or a folder: a folder's URL ends in a slash.
enum class FileUrlKind { File, Folder };

/// The absolute URL of a file or folder, built from the raw bytes of its path, so that a name of
/// any bytes (invalid UTF-8, newlines, '%', '#') leads back to exactly itself. Two URLs are the
/// same when their texts are. A value; any thread.
///
/// Percent-encoding is deterministic: letters, digits and "-._~!$&'()*+,=:@/" stand for
/// themselves, every other byte is written as %XX with capital digits.
class FileUrl final
{
public:
    /// The URL of an absolute path. Repeated and trailing slashes are dropped; the path itself is
    /// not resolved. A path that is not absolute or holds a NUL byte gives an invalid URL.
    static FileUrl fromPath(const QByteArray &path, FileUrlKind kind);

    /// Reads "file:///…" back. Anything that is not exactly one absolute local path gives nothing:
    /// another scheme or host, a query, a fragment, a broken escape, a NUL, "." or "..".
    static std::optional<FileUrl> fromString(const QString &text);

    FileUrl() = default;

    bool isValid() const { return !m_path.isEmpty(); }
    bool isFolder() const { return m_kind == FileUrlKind::Folder; }

    /// The raw bytes of the path, without a trailing slash (but for "/" itself).
    QByteArray path() const { return m_path; }

    /// The last name of the path; empty for "/".
    QByteArray lastPathComponent() const;

    /// The text that is stored and compared: ASCII, a folder's with its trailing slash.
    QByteArray absoluteString() const;

    /// The URL of something below this one, by its relative path ("Library/Caches").
    FileUrl appending(const QByteArray &relativePath, FileUrlKind kind) const;

    /// The path for people: decoded as UTF-8, with invalid bytes replaced. Never make a path from
    /// it again.
    QString displayPath() const;

    friend bool operator==(const FileUrl &, const FileUrl &) = default;

private:
    FileUrl(QByteArray path, FileUrlKind kind);

    QByteArray m_path;
    FileUrlKind m_kind = FileUrlKind::File;
};

using FileUrls = QList<FileUrl>;

/// Whether a name in a raw path is "." or "..". The text of such a path does not tell where it
/// leads.
bool hasDotComponent(const QByteArray &path);
