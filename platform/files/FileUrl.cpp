#include "platform/files/FileUrl.h"

#include <cctype>

namespace {

constexpr auto kScheme = "file://";
// What a path may hold besides letters, digits and "-._~", which are never encoded.
const QByteArray kUnencoded = QByteArrayLiteral("/!$&'()*+,=:@");

/// Drops repeated slashes and the trailing one.
QByteArray withoutSpareSlashes(const QByteArray &path)
{
    QByteArray result;
    result.reserve(path.size());
    for (const char c : path) {
        if (c != '/' || !result.endsWith('/'))
            result.append(c);
    }
    if (result.size() > 1 && result.endsWith('/'))
        result.chop(1);
    return result;
}

bool isHexDigit(char character)
{
    return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

/// Asked digit by digit: as a number "4 " would be read too, and the decoder makes some other byte
/// of it.
bool isWellEscaped(const QByteArray &text)
{
    for (qsizetype i = text.indexOf('%'); i >= 0; i = text.indexOf('%', i + 1)) {
        const QByteArray digits = text.mid(i + 1, 2);
        if (digits.size() != 2 || !isHexDigit(digits[0]) || !isHexDigit(digits[1]))
            return false;
    }
    return true;
}

} // namespace

bool hasDotComponent(const QByteArray &path)
{
    const QList<QByteArray> names = path.split('/');
    return names.contains(".") || names.contains("..");
}

FileUrl::FileUrl(QByteArray path, FileUrlKind kind)
    : m_path(std::move(path)), m_kind(m_path == "/" ? FileUrlKind::Folder : kind)
{
}

FileUrl FileUrl::fromPath(const QByteArray &path, FileUrlKind kind)
{
    if (!path.startsWith('/') || path.contains('\0'))
        return {};
    return {withoutSpareSlashes(path), kind};
}

std::optional<FileUrl> FileUrl::fromString(const QString &text)
{
    QByteArray rest = text.toUtf8();
    if (!rest.startsWith(kScheme))
        return std::nullopt;
    rest.remove(0, qstrlen(kScheme));
    if (!rest.startsWith('/') || rest.contains('?') || rest.contains('#') || !isWellEscaped(rest))
        return std::nullopt;
    const QByteArray path = QByteArray::fromPercentEncoding(rest);
    if (path.contains('\0') || hasDotComponent(path))
        return std::nullopt;
    return fromPath(path, path.endsWith('/') ? FileUrlKind::Folder : FileUrlKind::File);
}

QByteArray FileUrl::lastPathComponent() const
{
    return m_path.mid(m_path.lastIndexOf('/') + 1);
}

QByteArray FileUrl::absoluteString() const
{
    if (!isValid())
        return {};
    const QByteArray slash = isFolder() && m_path != "/" ? "/" : "";
    return kScheme + m_path.toPercentEncoding(kUnencoded) + slash;
}

FileUrl FileUrl::appending(const QByteArray &relativePath, FileUrlKind kind) const
{
    return isValid() ? fromPath(m_path + '/' + relativePath, kind) : FileUrl();
}

QString FileUrl::displayPath() const
{
    return QString::fromUtf8(m_path);
}
