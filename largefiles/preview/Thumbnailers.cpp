#include "largefiles/preview/Thumbnailers.h"

#include "platform/base/Log.h"
#include "platform/confinement/ConfinedProcess.h"
#include "platform/system/FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QMimeDatabase>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>

namespace {

constexpr QLatin1String kGroup("[Thumbnailer Entry]");
constexpr qint64 kLargestEntry = 64LL * 1024;
constexpr qint64 kLargestPicture = 16LL * 1024 * 1024; // bytes
const QString kLeftPicture = QStringLiteral("thumbnail.png");

QHash<QString, QString> valuesOf(const QString &entry)
{
    QHash<QString, QString> values;
    QFile file(entry);
    if (file.size() > kLargestEntry || !file.open(QIODevice::ReadOnly))
        return values;
    bool isInGroup = false;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const QString text = line.trimmed();
        if (text.startsWith(u'['))
            isInGroup = text == kGroup;
        else if (const qsizetype sign = text.indexOf(u'='); isInGroup && sign > 0)
            values.insert(text.first(sign).trimmed(), text.mid(sign + 1).trimmed());
    }
    return values;
}

bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/// All entries. An entry hides the entries of the same name in later folders.
QStringList installedEntries()
{
    QStringList entries;
    QSet<QString> names;
    for (const QString &path : QStandardPaths::locateAll(QStandardPaths::GenericDataLocation,
                                                         QStringLiteral("thumbnailers"),
                                                         QStandardPaths::LocateDirectory)) {
        const QDir folder(path);
        for (const QString &name :
             folder.entryList({QStringLiteral("*.thumbnailer")}, QDir::Files, QDir::Name)) {
            if (!names.contains(name))
                entries.append(folder.filePath(name));
            names.insert(name);
        }
    }
    return entries;
}

QString filledIn(const QString &argument, const QHash<QChar, QString> &fields)
{
    QString filled;
    for (qsizetype i = 0; i < argument.size(); ++i) {
        const bool isField = argument[i] == u'%' && i + 1 < argument.size();
        filled += isField ? fields.value(argument[++i]) : QString(argument[i]);
    }
    return filled;
}

/// What a program has left there. It need not be a picture, nor have the size that the program was
/// told, nor be a file at all: to open a pipe may wait for ever. The file that it looked into may
/// have taken it over, so a decoder looks at this as at any other picture.
QImage pictureLeftAt(const QString &output, int side, const PictureDecoder &decoder,
                     const std::stop_token &stop)
{
    const FileDescriptor descriptor(::open(QFile::encodeName(output).constData(),
                                           O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!descriptor.isValid() || ::fstat(descriptor.get(), &status) != 0 ||
        !S_ISREG(status.st_mode) || status.st_size > kLargestPicture)
        return {};
    return decoder.picture(descriptor.get(), 0, {side, side}, stop).image;
}

QStringList filledIn(const QStringList &arguments, const QString &inside, int side)
{
    const QHash<QChar, QString> fields{
        {u'u',
         QString::fromLatin1(
             FileUrl::fromPath(QFile::encodeName(inside), FileUrlKind::File).absoluteString())},
        {u'i', inside},
        {u'o', Sandbox::kOutput + u'/' + kLeftPicture},
        {u's', QString::number(side)},
        {u'%', QStringLiteral("%")}};
    QStringList filled;
    for (const QString &argument : arguments)
        filled.append(filledIn(argument, fields));
    return filled;
}

/// Once is enough: it is so for each file.
void logMissingSandbox()
{
    static std::once_flag isLogged;
    std::call_once(isLogged, [] {
        qCWarning(logVantor, "No thumbnails of other programs: bubblewrap, which keeps them away "
                             "from your files, is not installed or does not work.");
    });
}

} // namespace

std::optional<Thumbnailer> readThumbnailer(const QString &entry)
{
    const QHash<QString, QString> values = valuesOf(entry);
    const QString tried = values.value(QStringLiteral("TryExec"));
    const Thumbnailer thumbnailer{
        QProcess::splitCommand(values.value(QStringLiteral("Exec"))),
        values.value(QStringLiteral("MimeType")).split(u';', Qt::SkipEmptyParts)};
    if (thumbnailer.command.isEmpty() || thumbnailer.mimeTypes.isEmpty() ||
        (!tried.isEmpty() && !isInstalled(tried)) || !isInstalled(thumbnailer.command.constFirst()))
        return std::nullopt;
    return thumbnailer;
}

std::optional<Thumbnailer> thumbnailerFor(const QString &mimeType)
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(mimeType);
    const QStringList names = QStringList{mimeType, type.name()} + type.aliases();
    for (const QString &entry : installedEntries()) {
        auto thumbnailer = readThumbnailer(entry);
        if (!thumbnailer)
            continue;
        for (const QString &name : names) {
            if (thumbnailer->mimeTypes.contains(name))
                return thumbnailer;
        }
    }
    return std::nullopt;
}

QImage pictureMadeBy(const Thumbnailer &thumbnailer, const ThumbnailSource &source, int side,
                     const std::stop_token &stop, const ThumbnailerLimits &limits)
{
    const Sandbox &sandbox = limits.sandbox;
    const QTemporaryDir place;
    if (!place.isValid() || stop.stop_requested())
        return {};
    if (!sandbox.isInstalled()) {
        logMissingSandbox();
        return {};
    }
    SandboxedProgram inside;
    inside.file = QFile::decodeName(source.file.path());
    inside.descriptor = source.descriptor;
    inside.outputFolder = place.path();
    inside.program = QStandardPaths::findExecutable(thumbnailer.command.constFirst());
    inside.arguments = filledIn(thumbnailer.command.mid(1), Sandbox::fileInside(inside.file), side);
    ConfinedProcess process;
    process.program = sandbox.bubblewrap;
    process.arguments = sandbox.arguments(inside);
    process.patience = limits.patience;
    process.kept = source.descriptor;
    if (runConfined(process, stop) != 0) {
        if (!stop.stop_requested() && !sandbox.isUsable())
            logMissingSandbox();
        return {};
    }
    return pictureLeftAt(place.filePath(kLeftPicture), side, limits.decoder, stop);
}
