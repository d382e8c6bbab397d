#include "platform/files/DurableFile.h"

#include "platform/system/Attempts.h"
#include "platform/system/DirectoryEntries.h"
#include "platform/system/SystemCalls.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <cerrno>
#include <zlib.h>

namespace {

constexpr char kChecksumMark[] = "\n#crc32 ";
constexpr qsizetype kChecksumDigits = 8;
constexpr qsizetype kChecksumLength = sizeof kChecksumMark - 1 + kChecksumDigits + 1;
constexpr char kUnfinished[] = ".new";
constexpr char kPrevious[] = ".1";
constexpr char kBad[] = ".bad-";

QByteArray checksumLine(const QByteArray &content)
{
    const auto *bytes = reinterpret_cast<const Bytef *>(content.constData());
    const auto sum = crc32_z(0, bytes, static_cast<z_size_t>(content.size()));
    return kChecksumMark + QByteArray::number(qulonglong(sum), 16).rightJustified(8, '0') + '\n';
}

/// The line is compared as a whole, so a flipped bit in the line itself is noticed, too.
std::optional<QByteArray> contentOf(const QByteArray &file)
{
    if (file.size() < kChecksumLength)
        return std::nullopt;
    const QByteArray content = file.chopped(kChecksumLength);
    if (file.last(kChecksumLength) != checksumLine(content))
        return std::nullopt;
    return content;
}

tl::unexpected<DurableError> failed(int error)
{
    return tl::unexpected(DurableError{error, false});
}

} // namespace

DurableFile::DurableFile(const SystemCalls &calls, FileDescriptor folder, QByteArray name)
    : m_calls(calls), m_folder(std::move(folder)), m_name(std::move(name))
{
}

SystemResult<DurableFile> DurableFile::in(const SystemCalls &calls, const QString &folder,
                                          QByteArray name)
{
    const QString resolved = QFileInfo(folder).canonicalFilePath();
    const QByteArray path = QFile::encodeName(resolved.isEmpty() ? folder : resolved);
    auto opened = calls.openRoot(path.constData());
    if (!opened)
        return tl::unexpected(opened.error());
    return DurableFile(calls, std::move(*opened), std::move(name));
}

DurableContent DurableFile::read(Generation generation)
{
    DurableContent found = readNamed(nameOf(generation));
    if (generation == Generation::Current) {
        m_known.reset();
        if (found.state == DurableState::Good)
            m_known = found.bytes;
    }
    return found;
}

tl::expected<void, DurableError> DurableFile::write(const QByteArray &content, Replace replace)
{
    if (content.size() > kLargestContent)
        return failed(EFBIG);
    // The new content first: on a full disk this fails before anything else was touched.
    if (const auto written = writeBeside(m_name, content); !written)
        return failed(written.error());
    if (const auto cleared = clearTheWay(replace); !cleared) {
        (void)m_calls.removeFile(m_folder.get(), m_name + kUnfinished);
        return cleared;
    }
    if (const auto moved = putInPlace(m_name); !moved)
        return failed(moved.error());
    m_known = content;
    if (const auto synced = syncFolder(); !synced)
        return failed(synced.error());
    return {};
}

SystemResult<QByteArray> DurableFile::setAside(Generation generation)
{
    if (generation == Generation::Current)
        m_known.reset();
    const QByteArray name = nameOf(generation);
    auto badName = freeNameForBad(name);
    if (!badName)
        return badName;
    if (const auto moved = m_calls.rename(m_folder.get(), name, *badName); !moved)
        return tl::unexpected(moved.error());
    return badName;
}

SystemResult<bool> DurableFile::hasFilesSetAside() const
{
    constexpr std::size_t kBufferSize = std::size_t{32} * 1024;
    const auto folder = m_calls.openFolder(m_folder.get(), ".", Descent::Strict);
    if (!folder)
        return tl::unexpected(folder.error());
    alignas(std::max_align_t) std::array<char, kBufferSize> buffer{};
    for (;;) {
        const auto filled = m_calls.readEntries(folder->get(), buffer);
        if (!filled)
            return tl::unexpected(filled.error());
        if (*filled == 0)
            return false;
        DirectoryEntries entries({buffer.data(), *filled});
        DirectoryEntry entry;
        while (entries.next(entry)) {
            const QByteArrayView name(entry.name);
            if (name.startsWith(m_name + kBad) || name.startsWith(m_name + kPrevious + kBad))
                return true;
        }
    }
}

QByteArray DurableFile::nameOf(Generation generation) const
{
    return generation == Generation::Current ? m_name : m_name + kPrevious;
}

DurableContent DurableFile::readNamed(const QByteArray &name) const
{
    const auto file = readAll(name);
    if (!file && file.error() == ENOENT)
        return {DurableState::Missing, {}, 0};
    if (!file)
        return {DurableState::Unreadable, {}, file.error()};
    const auto content = contentOf(*file);
    if (!content)
        return {DurableState::Damaged, {}, 0};
    return {DurableState::Good, *content, 0};
}

SystemResult<QByteArray> DurableFile::readAll(const QByteArray &name) const
{
    constexpr std::size_t kBufferSize = std::size_t{64} * 1024;
    const auto file = m_calls.openFile(m_folder.get(), name);
    if (!file)
        return tl::unexpected(file.error());
    QByteArray bytes;
    std::array<char, kBufferSize> buffer{};
    // A file that is too large is read no further: cut short, it has no checksum.
    while (bytes.size() <= kLargestContent + kChecksumLength) {
        const auto count = attempted([&] { return m_calls.read(file->get(), buffer); });
        if (!count)
            return tl::unexpected(count.error());
        if (*count == 0)
            break;
        bytes.append(buffer.data(), static_cast<qsizetype>(*count));
    }
    return bytes;
}

/// Saves the current generation before the new one is renamed over it, so that nothing is lost.
tl::expected<void, DurableError> DurableFile::clearTheWay(Replace replace)
{
    const DurableContent current = readNamed(m_name);
    if (current.state == DurableState::Missing)
        return {};
    const bool isGood = current.state == DurableState::Good;
    const bool isKnown = isGood && current.bytes == m_known;
    if (!isKnown && replace == Replace::OnlyWhatIsKnown)
        return tl::unexpected(DurableError{current.error, current.error == 0});
    const auto kept = isGood ? replaceFile(nameOf(Generation::Previous), current.bytes)
                             : setAside(Generation::Current).map([](const QByteArray &) {});
    if (!kept)
        return failed(kept.error());
    return {};
}

SystemResult<void> DurableFile::replaceFile(const QByteArray &name, const QByteArray &content) const
{
    return writeBeside(name, content).and_then([&] { return putInPlace(name); });
}

SystemResult<void> DurableFile::putInPlace(const QByteArray &name) const
{
    const QByteArray unfinished = name + kUnfinished;
    const auto moved = m_calls.rename(m_folder.get(), unfinished, name);
    if (!moved)
        (void)m_calls.removeFile(m_folder.get(), unfinished);
    return moved;
}

/// Writes a file that waits to be renamed to `name`. A file that an earlier run left behind is
/// removed first: it may be anything.
SystemResult<void> DurableFile::writeBeside(const QByteArray &name, const QByteArray &content) const
{
    const QByteArray unfinished = name + kUnfinished;
    (void)m_calls.removeFile(m_folder.get(), unfinished);
    const auto file = m_calls.createFile(m_folder.get(), unfinished);
    if (!file)
        return tl::unexpected(file.error());
    const auto written = writeAll(file->get(), content + checksumLine(content)).and_then([&] {
        return m_calls.sync(file->get());
    });
    if (!written)
        (void)m_calls.removeFile(m_folder.get(), unfinished);
    return written;
}

SystemResult<void> DurableFile::writeAll(int file, const QByteArray &bytes) const
{
    std::span<const char> rest(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    while (!rest.empty()) {
        const auto count = attempted([&] { return m_calls.write(file, rest); });
        if (!count)
            return tl::unexpected(count.error());
        if (*count == 0)
            return tl::unexpected(EIO);
        rest = rest.subspan(*count);
    }
    return {};
}

SystemResult<void> DurableFile::syncFolder() const
{
    const auto synced = m_calls.sync(m_folder.get());
    // With these errors file systems say that their folders need no such call.
    if (!synced && (synced.error() == EINVAL || synced.error() == ENOTSUP))
        return {};
    return synced;
}

SystemResult<QByteArray> DurableFile::freeNameForBad(const QByteArray &name) const
{
    const QString time =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    const QByteArray base = name + kBad + time.toLatin1();
    for (int attempt = 1; attempt <= kMostAttempts; ++attempt) {
        const QByteArray candidate = attempt == 1 ? base : base + '-' + QByteArray::number(attempt);
        const auto status = m_calls.status(m_folder.get(), candidate);
        if (!status && status.error() == ENOENT)
            return candidate;
        if (!status)
            return tl::unexpected(status.error());
    }
    return tl::unexpected(EEXIST);
}
