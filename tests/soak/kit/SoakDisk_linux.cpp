#include "tests/soak/kit/SoakDisk.h"

#include "tests/support/disk/MountNamespace.h"
#include "tests/support/run/ChildProcess.h"
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
constexpr auto kMemory = "tmpfs";
constexpr auto kUser = "user";

void run(const char *program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QString::fromLatin1(program), arguments);
    must(process.waitForFinished(-1) && process.exitStatus() == QProcess::NormalExit &&
             process.exitCode() == 0,
         program);
}

QByteArray chosen(const SoakPart &part, const char *option, const QByteArrayList &all)
{
    QByteArray value = part.value(option);
    if (!all.contains(value))
        SoakPart::complain(option);
    return value;
}

QByteArray mountDisk(const QByteArray &fileSystem)
{
    const QByteArray image = QByteArray(kBase) + "/image";
    QByteArray folder = QByteArray(kBase) + "/disk";
    const int file = ::open(image.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    must(file >= 0 && ::ftruncate(file, kSize) == 0, "an image of a disk");
    ::close(file);
    must(::mkdir(folder.constData(), kForAll) == 0, "a folder for a disk");
    run(("mkfs." + fileSystem).constData(), {QStringLiteral("-q"), QString::fromLatin1(image)});
    // The loop device goes with the mount, and the mount with the process.
    run("mount", {QStringLiteral("-t"), QString::fromLatin1(fileSystem), QStringLiteral("-o"),
                  QStringLiteral("loop"), QString::fromLatin1(image), QString::fromLatin1(folder)});
    return folder;
}

} // namespace

QList<QCommandLineOption> SoakDisk::options()
{
    return {soakOption("on", "The disk, made for this run: tmpfs, ext4 or btrfs.", "DISK", kMemory),
            soakOption("as", "Who does it: administrator or user.", "WHO", kUser)};
}

SoakDisk::SoakDisk(const SoakPart &part)
    : m_kind(chosen(part, "on", {kMemory, "ext4", "btrfs"})), m_folder(kBase)
{
    const bool isUser = chosen(part, "as", {"administrator", kUser}) == kUser;
    must(enterMountNamespace(), "mounts of its own");
    must(::mount("soak", kBase, "tmpfs", 0, "mode=755") == 0, "a disk in memory");
    if (m_kind != kMemory)
        m_folder = mountDisk(m_kind);
    if (isUser && ::geteuid() == 0) {
        must(::chown(m_folder.constData(), kNobody, kNobody) == 0 && becomeNobody(),
             "an ordinary user");
        // Who has given up rights may not look at itself in /proc, unless it says that it may.
        must(::prctl(PR_SET_DUMPABLE, 1, 0, 0, 0) == 0, "a look at itself");
    }
    m_isAdministrator = ::geteuid() == 0;
}

QByteArray SoakDisk::where() const
{
    return m_kind + (m_isAdministrator ? ", administrator" : ", ordinary user");
}
