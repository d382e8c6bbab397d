#include "largefiles/preview/PlayerProcess.h"

#include "platform/base/Log.h"
#include "platform/confinement/ChildConfinement.h"
#include "platform/system/FileDescriptor.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>

namespace {

constexpr int kPatience = 100;              ///< milliseconds
constexpr quint64 kMostMemory = 8ULL << 30; ///< address space, most of which codecs never touch
const QString kSoundServer = QStringLiteral("PULSE_SERVER");
const QLatin1String kSocketScheme("unix:");

/// What a film may be; a pipe or a device may wait, or do something, and is never opened for long.
FileDescriptor openedFilm(const FileUrl &file)
{
    FileDescriptor descriptor(
        ::open(file.path().constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (descriptor.isValid() && ::fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode))
        return descriptor;
    return {};
}

/// Desktops offer it whatever sound server they have. Empty where there is none.
QString soundSocket()
{
    QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/pulse/native");
    const QString named = QString::fromLocal8Bit(qgetenv("PULSE_SERVER"));
    if (named.startsWith(kSocketScheme))
        socket = named.sliced(kSocketScheme.size());
    return QFileInfo(socket).isAbsolute() && QFileInfo::exists(socket) ? socket : QString();
}

/// The toolkit's, where they are not among the system's programs.
QStringList libraryFolders()
{
    return {QLibraryInfo::path(QLibraryInfo::LibrariesPath),
            QLibraryInfo::path(QLibraryInfo::PluginsPath)};
}

/// Once is enough: it is so for each film.
void logMissingSandbox()
{
    static std::once_flag isLogged;
    std::call_once(isLogged, [] {
        qCWarning(logVantor, "No films and sounds: this system does not let bubblewrap keep the "
                             "player away from your files.");
    });
}

} // namespace

/// What was found out beside the main thread.
struct PlayerProcess::Opened
{
    FileDescriptor film;
    QString socket;
    bool hasSandbox = false;
};

QString Player::besideTheProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-player");
}

bool Player::isInstalled() const
{
    return sandbox.isInstalled() && QFileInfo(program).isExecutable();
}

PlayerProcess::PlayerProcess(const Player &player, const FileUrl &file, QSize frameSize,
                             QObject *parent)
    : QObject(parent)
{
    m_process->setStandardErrorFile(QProcess::nullDevice()); // codecs are talkative
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &PlayerProcess::read);
    connect(m_process.get(), &QProcess::finished, this, &PlayerProcess::fail);
    connect(m_process.get(), &QProcess::errorOccurred, this, &PlayerProcess::fail);
    m_opening.run([this, player, file, frameSize](const std::stop_token &) -> BackgroundReply {
        const auto opened = std::make_shared<Opened>(
            Opened{openedFilm(file), soundSocket(), player.sandbox.isUsable()});
        return [this, player, file, frameSize, opened] { start(player, file, frameSize, *opened); };
    });
}

/// The player draws nothing itself, so it needs no display. To be heard it gets one socket, that of
/// the sound server: no other way leads out of its sandbox. It gets no sound or graphics device, as
/// a sound device is a microphone too, and drivers of graphics are no place for strangers' films.
void PlayerProcess::start(const Player &player, const FileUrl &file, QSize frameSize,
                          const Opened &opened)
{
    if (!opened.hasSandbox)
        logMissingSandbox();
    if (!opened.hasSandbox || !opened.film.isValid())
        return fail();
    SandboxedProgram inside;
    inside.program = player.program;
    inside.file = QFile::decodeName(file.path());
    inside.descriptor = opened.film.get();
    inside.folders = libraryFolders();
    inside.socket = opened.socket;
    inside.arguments = {QString::number(frameSize.width()), QString::number(frameSize.height()),
                        Sandbox::fileInside(inside.file)};
    ChildConfinement confinement;
    confinement.limits.memory = kMostMemory;
    confinement.limits.processorTime = std::nullopt; // films are long
    confinement.kept = inside.descriptor;
    confinement.variables = {QStringLiteral("QT_MEDIA_BACKEND")};
    confineChild(*m_process, confinement);
    QProcessEnvironment environment = m_process->processEnvironment();
    environment.insert(kSoundServer, kSocketScheme + Sandbox::kSocket);
    m_process->setProcessEnvironment(environment);
    m_process->start(player.sandbox.bubblewrap, player.sandbox.arguments(inside));
}

PlayerProcess::~PlayerProcess()
{
    m_process->disconnect(this);
    m_process->kill();
    if (m_process->state() == QProcess::NotRunning || m_process->waitForFinished(kPatience))
        return;
    // The process hangs in the system, perhaps because of its disk. It is deleted when it ends.
    QProcess *const late = m_process.release();
    connect(late, &QProcess::finished, late, &QObject::deleteLater);
}

void PlayerProcess::seek(qint64 milliseconds)
{
    say("seek " + QByteArray::number(milliseconds) + '\n');
}

void PlayerProcess::say(const QByteArray &command)
{
    if (m_process->isOpen()) // the file is still being opened otherwise
        m_process->write(command);
}

void PlayerProcess::read()
{
    while (!m_isOver) {
        const ReadReport read = readReport(*m_process);
        if (read.state == ReadReport::State::Incomplete)
            return;
        if (read.state == ReadReport::State::Broken)
            return fail();
        m_isOver = read.report.kind == PlayerReport::Kind::Silent ||
                   read.report.kind == PlayerReport::Kind::Failed;
        Q_EMIT reported(read.report);
    }
}

/// The process has ended without a report, or its reports make no sense. A second failure is not
/// reported.
void PlayerProcess::fail()
{
    if (m_isOver)
        return;
    m_isOver = true;
    Q_EMIT reported({});
}
