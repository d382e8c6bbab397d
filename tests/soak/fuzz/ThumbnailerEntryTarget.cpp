#include "largefiles/preview/Thumbnailers.h"
#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Must.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>

namespace {

QString fileWith(const QByteArray &content)
{
    static const ScratchFolder scratch;
    QFile file(QFile::decodeName(scratch.path("made.thumbnailer")));
    must(file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
             file.write(content) == content.size(),
         "writing an entry");
    return file.fileName();
}

} // namespace

/// An entry gives a program that is installed and the kinds of files that it is for, or nothing.
/// Lines outside its group count for nothing.
QByteArray findingInThumbnailerEntry(const QByteArray &input)
{
    const auto thumbnailer = readThumbnailer(fileWith(input));
    if (!thumbnailer)
        return {};
    if (!input.contains("[Thumbnailer Entry]") || !input.contains("Exec") ||
        !input.contains("MimeType"))
        return "no entry, but taken for one";
    if (thumbnailer->command.isEmpty() ||
        QStandardPaths::findExecutable(thumbnailer->command.constFirst()).isEmpty())
        return "no program to start";
    const QStringList &types = thumbnailer->mimeTypes;
    if (types.isEmpty() ||
        std::any_of(types.begin(), types.end(), [](const QString &type) { return type.isEmpty(); }))
        return "for no kind of file";
    return {};
}
