#include "tests/soak/kit/SoakDisk.h"

#include "tests/support/disk/MountNamespace.h"
#include "tests/support/run/Must.h"

#include <QProcess>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// There in every system, and hidden from nobody but this process by what is mounted on it.
constexpr auto kBase = "/media";
/// Sparse: takes only the memory that is used.
constexpr off_t kSize = 2'000'000'000;
constexpr mode_t kForAll = 0755;

void run(const char *program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QString::fromLatin1(program), arguments);
    must(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
             process.exitCode() == 0,
         program);
}

QByteArray mountDisk(const char *fileSystem)
{
    const QByteArray image = QByteArray(kBase) + "/image";
    const QByteArray folder = QByteArray(kBase) + "/disk";
    const int file = ::open(image.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    must(file >= 0 && ::ftruncate(file, kSize) == 0, "an image of a disk");
    ::close(file);
    must(::mkdir(folder.constData(), kForAll) == 0, "a folder for a disk");
    const QString name = QString::fromLatin1(fileSystem);
    run(("mkfs." + QByteArray(fileSystem)).constData(),
        {QStringLiteral("-q"), QString::fromLatin1(image)});
    // The loop device goes with the mount, and the mount with the process.
    run("mount", {QStringLiteral("-t"), name, QStringLiteral("-o"), QStringLiteral("loop"),
                  QString::fromLatin1(image), QString::fromLatin1(folder)});
    return folder;
}

} // namespace

SoakDisk::SoakDisk(Kind kind, ChildUser user) : m_kind(kind), m_folder(kBase)
{
    must(enterMountNamespace(), "mounts of its own");
    must(::mount("soak", kBase, "tmpfs", 0, "mode=755") == 0, "a disk in memory");
    if (kind == Kind::Ext4)
        m_folder = mountDisk("ext4");
    if (kind == Kind::Btrfs)
        m_folder = mountDisk("btrfs");
    if (user == ChildUser::Nobody && ::geteuid() == 0) {
        must(::chown(m_folder.constData(), kNobody, kNobody) == 0 && becomeNobody(),
             "an ordinary user");
        // Who has given up rights may not look at itself in /proc, unless it says that it may.
        must(::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0) == 0, "a look at itself");
    }
    m_isAdministrator = ::geteuid() == 0;
}

QByteArray SoakDisk::where() const
{
    const char *const names[] = {"tmpfs", "ext4", "btrfs"};
    return QByteArray(names[int(m_kind)]) +
           (m_isAdministrator ? ", administrator" : ", ordinary user");
}
