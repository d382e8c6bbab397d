#include "platform/confinement/Sandbox.h"

#include "platform/confinement/ConfinedProcess.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

using namespace std::chrono_literals;
constexpr auto kPatience = 5s;
const QString kEntranceInside = QStringLiteral("/run/vantor-enter");

/// No user, network, process or message of the system is seen from inside, and nobody there gets
/// rights. It ends with the thread that has started it. Nothing but the output can be written, not
/// even in memory.
QStringList emptyWorld()
{
    return {QStringLiteral("--unshare-all"), QStringLiteral("--die-with-parent"),
            QStringLiteral("--new-session"), QStringLiteral("--cap-drop"),
            QStringLiteral("ALL"),           QStringLiteral("--proc"),
            QStringLiteral("/proc"),         QStringLiteral("--dev"),
            QStringLiteral("/dev"),          QStringLiteral("--remount-ro"),
            QStringLiteral("/dev")};
}

QStringList shown(const QString &path, const QString &inside)
{
    return {QStringLiteral("--ro-bind"), path, inside};
}

/// Where they are links into /usr they stay links.
QStringList systemFolder(const QString &path)
{
    const QFileInfo folder(path);
    if (folder.isSymLink())
        return {QStringLiteral("--symlink"), folder.symLinkTarget(), path};
    return {QStringLiteral("--ro-bind-try"), path, path};
}

QStringList systemFiles()
{
    QStringList arguments;
    for (const char *folder : {"/usr", "/bin", "/sbin", "/lib", "/lib32", "/lib64", "/libx32"})
        arguments += systemFolder(QString::fromLatin1(folder));
    // Which libraries and fonts there are.
    for (const char *path :
         {"/etc/ld.so.cache", "/etc/alternatives", "/etc/fonts", "/var/cache/fontconfig"})
        arguments << QStringLiteral("--ro-bind-try") << QString::fromLatin1(path)
                  << QString::fromLatin1(path);
    return arguments;
}

/// Others are shown beside the entrance.
bool isOfTheSystem(const QString &program)
{
    return program.startsWith(QLatin1String("/usr/")) ||
           program.startsWith(QLatin1String("/bin/")) || QFileInfo(program).isRelative();
}

QString programInside(const QString &program)
{
    if (isOfTheSystem(program))
        return program;
    return QStringLiteral("/run/program/") + QFileInfo(program).fileName();
}

/// Its folder for all that a program may want to write.
QStringList output(const QString &folder)
{
    if (folder.isEmpty())
        return {QStringLiteral("--chdir"), QStringLiteral("/")};
    QStringList arguments{QStringLiteral("--bind"),   folder,
                          Sandbox::kOutput,           QStringLiteral("--symlink"),
                          Sandbox::kOutput.sliced(1), QStringLiteral("/tmp"),
                          QStringLiteral("--chdir"),  Sandbox::kOutput};
    for (const char *variable : {"HOME", "TMPDIR"})
        arguments << QStringLiteral("--setenv") << QString::fromLatin1(variable)
                  << Sandbox::kOutput;
    return arguments;
}

} // namespace

QString Sandbox::installedBubblewrap()
{
    return QStandardPaths::findExecutable(
        QStringLiteral("bwrap"),
        {QStringLiteral("/usr/bin"), QStringLiteral("/usr/local/bin"), QStringLiteral("/bin")});
}

QString Sandbox::besideTheProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-enter");
}

QString Sandbox::fileInside(const QString &file)
{
    const QString suffix = QFileInfo(file).suffix();
    return QStringLiteral("/input/file") + (suffix.isEmpty() ? suffix : u'.' + suffix);
}

bool Sandbox::isUsable() const
{
    if (!isInstalled())
        return false;
    ConfinedProcess process;
    process.program = bubblewrap;
    process.arguments = emptyWorld() + systemFiles() + shown(entrance, kEntranceInside) +
                        QStringList{kEntranceInside};
    process.patience = kPatience;
    return runConfined(process, {}) == 0;
}

QStringList Sandbox::arguments(const SandboxedProgram &wanted) const
{
    const QString inside = fileInside(wanted.file);
    QStringList arguments = emptyWorld() + systemFiles();
    for (const QString &folder : wanted.folders)
        arguments << QStringLiteral("--ro-bind-try") << folder << folder;
    if (!isOfTheSystem(wanted.program))
        arguments += shown(wanted.program, programInside(wanted.program));
    arguments +=
        shown(entrance, kEntranceInside) + shown(wanted.file, inside) + output(wanted.outputFolder);
    if (!wanted.socket.isEmpty())
        arguments += shown(wanted.socket, kSocket);
    return arguments +
           QStringList{QStringLiteral("--remount-ro"),
                       QStringLiteral("/"),
                       kEntranceInside,
                       QString::number(wanted.descriptor),
                       inside,
                       programInside(wanted.program)} +
           wanted.arguments;
}
