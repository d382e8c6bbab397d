#include "platform/files/FolderGrant.h"

#include "platform/system/SystemCalls.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QIODevice>
#include <cerrno>
#include <unistd.h>

namespace {

constexpr quint8 kVersion = 1;
constexpr quint32 kMagic = 0x564e5447;
constexpr auto kStreamVersion = QDataStream::Qt_6_0;
constexpr qsizetype kLongest = 8192; ///< twice the longest path
constexpr auto kChecksum = QCryptographicHash::Sha256;

/// What the bytes of a grant say.
struct Stored
{
    QByteArray path;
    FileIdentity identity; ///< without the device number: it may change with every start
};

QByteArray checksumOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, kChecksum);
}

QByteArray encoded(const Stored &stored)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(kStreamVersion);
    const FileIdentity &identity = stored.identity;
    stream << kVersion << kMagic << stored.path << identity.handle << quint64(identity.fileSystem)
           << quint64(identity.inode) << qint64(identity.birthSeconds)
           << quint32(identity.birthNanoseconds);
    return bytes + checksumOf(bytes);
}

bool isCanonical(const QByteArray &path)
{
    const FileUrl url = FileUrl::fromPath(path, FileUrlKind::Folder);
    return url.isValid() && url.path() == path;
}

std::optional<Stored> decoded(const QByteArray &grant)
{
    const qsizetype bodySize = grant.size() - QCryptographicHash::hashLength(kChecksum);
    if (bodySize <= 0 || grant.size() > kLongest)
        return std::nullopt;
    const QByteArray body = grant.first(bodySize);
    if (checksumOf(body) != grant.sliced(bodySize))
        return std::nullopt;

    QDataStream stream(body);
    stream.setVersion(kStreamVersion);
    quint8 version = 0;
    quint32 magic = 0;
    Stored stored;
    quint64 fileSystem = 0;
    quint64 inode = 0;
    qint64 seconds = 0;
    quint32 nanoseconds = 0;
    stream >> version >> magic;
    if (version != kVersion || magic != kMagic)
        return std::nullopt;
    stream >> stored.path >> stored.identity.handle >> fileSystem >> inode >> seconds >>
        nanoseconds;
    if (stream.status() != QDataStream::Ok || !stream.atEnd() || !isCanonical(stored.path))
        return std::nullopt;
    stored.identity.fileSystem = fileSystem;
    stored.identity.inode = inode;
    stored.identity.birthSeconds = seconds;
    stored.identity.birthNanoseconds = nanoseconds;
    return stored;
}

bool hasBirthTime(const FileIdentity &identity)
{
    return identity.birthSeconds != 0 || identity.birthNanoseconds != 0;
}

/// The file system uses inode numbers again; only the handle and the birth time belong to one
/// folder for good.
bool isTelling(const FileIdentity &identity)
{
    return !identity.handle.isEmpty() || hasBirthTime(identity);
}

/// Everything that both identities know must be equal, and it must be enough to distinguish two
/// folders. A system may begin or cease to give handles or birth times between the making of a
/// grant and its use.
bool isSameFolder(const FileIdentity &granted, const FileIdentity &found)
{
    const bool bothHandles = !granted.handle.isEmpty() && !found.handle.isEmpty();
    const bool bothBirths = hasBirthTime(granted) && hasBirthTime(found);
    if (!bothHandles && !bothBirths)
        return false;
    const bool sameBirth = granted.birthSeconds == found.birthSeconds &&
                           granted.birthNanoseconds == found.birthNanoseconds;
    return granted.fileSystem == found.fileSystem && granted.inode == found.inode &&
           (!bothHandles || granted.handle == found.handle) && (!bothBirths || sameBirth);
}

/// No permission check ever refuses root. So the owner is compared instead, and "sudo" does not
/// clean another user's home with root's rights.
bool isForeign(const FileStatus &status)
{
    return ::geteuid() == 0 && status.owner != 0;
}

GrantFailure failureFor(int error)
{
    switch (error) {
    case ENOENT:
    case ESTALE:
        return GrantFailure::Gone;
    case ENOTDIR: // a file
    case ELOOP:   // a link, which is never followed
        return GrantFailure::Replaced;
    default:
        return GrantFailure::Unreadable;
    }
}

} // namespace

const char *nameOf(GrantFailure failure)
{
    switch (failure) {
    case GrantFailure::Missing:
        return "missing";
    case GrantFailure::Damaged:
        return "damaged";
    case GrantFailure::Gone:
        return "gone";
    case GrantFailure::Replaced:
        return "replaced";
    case GrantFailure::Unreadable:
        return "unreadable";
    case GrantFailure::Foreign:
        return "foreign";
    }
    Q_UNREACHABLE();
}

SystemResult<QByteArray> makeGrant(const SystemCalls &calls, const QByteArray &path)
{
    if (!FileUrl::fromPath(path, FileUrlKind::Folder).isValid())
        return tl::unexpected(EINVAL);
    const auto real = calls.realPath(path.constData());
    if (!real)
        return tl::unexpected(real.error());
    if (*real == "/") // every home and the system itself: surely a mistake
        return tl::unexpected(EPERM);
    const auto folder = calls.openRoot(real->constData());
    if (!folder)
        return tl::unexpected(folder.error());
    const auto status = calls.statusOf(folder->get());
    if (!status)
        return tl::unexpected(status.error());
    if (isForeign(*status))
        return tl::unexpected(EPERM);
    const auto identity = calls.identityOf(folder->get());
    if (!identity)
        return tl::unexpected(identity.error());
    if (!isTelling(*identity))
        return tl::unexpected(EOPNOTSUPP);
    return encoded({*real, *identity});
}

tl::expected<GrantedFolder, GrantFailure> resolveGrant(const SystemCalls &calls,
                                                       const QByteArray &grant)
{
    const auto stored = decoded(grant);
    if (!stored)
        return tl::unexpected(GrantFailure::Damaged);
    auto folder = calls.openRoot(stored->path.constData());
    if (!folder)
        return tl::unexpected(failureFor(folder.error()));
    const auto identity = calls.identityOf(folder->get());
    if (!identity)
        return tl::unexpected(failureFor(identity.error()));
    if (!isSameFolder(stored->identity, *identity))
        return tl::unexpected(GrantFailure::Replaced);
    const auto status = calls.statusOf(folder->get());
    if (!status)
        return tl::unexpected(failureFor(status.error()));
    if (isForeign(*status))
        return tl::unexpected(GrantFailure::Foreign);
    return GrantedFolder{FileUrl::fromPath(stored->path, FileUrlKind::Folder),
                         std::make_shared<const FileDescriptor>(std::move(*folder))};
}
