#include "slices/page/CleaningText.h"

#include "platform/base/ByteCount.h"
#include "slices/exclusions/ExcludedPaths.h"
#include "slices/home/ProgramsInUse.h"
#include "slices/plan/CleaningReport.h"
#include "slices/plan/RefusalText.h"
#include "slices/probe/PlaceOutOfReach.h"
#include "slices/record/Enumeration.h"
#include "slices/record/Info.h"
#include "slices/record/SliceCatalogue.h"

#include <QCoreApplication>

namespace {

constexpr int kMostLines = 8;

QString tr(const char *text)
{
    return QCoreApplication::translate("CleaningText", text);
}

QString leftAloneLine(const CleaningRefusal &refusal)
{
    const QString reason = tr(refusalText(refusal.reason).told);
    return refusal.path.isEmpty() ? reason
                                  : tr("%1: %2").arg(QString::fromUtf8(refusal.path), reason);
}

/// The size of a slice without what programs in use keep of it; empty for any other slice.
QString withoutText(const Info &record, const ConfirmationDetails &details)
{
    const std::optional<SliceKind> kind = sliceKindNamed(record.name());
    const QStringList names = kind && details.programs ? details.programs(*kind) : QStringList();
    if (names.isEmpty())
        return {};
    QString text = names.size() == 1 ? tr(" (%1 without the files of %2, which is in use)")
                                     : tr(" (%1 without the files of %2, which are in use)");
    if (details.seen == ProgramsSeen::Some)
        text = tr(" (%1 without the files of %2, which may be in use)");
    return text.arg(stringFromByteCount(record.fileSize()), enumerated(names));
}

/// The folder, when the slice's name does not say which one it is.
QString downloadsText(const Info &record, const ConfirmationDetails &details)
{
    const bool areDownloads = sliceKindNamed(record.name()) == SliceKind::Downloads;
    return areDownloads && !details.nameOfDownloads.isEmpty()
               ? tr(" (the folder “%1”)").arg(details.nameOfDownloads)
               : QString();
}

QStringList displayPaths(const ExcludedPaths &excluded)
{
    QStringList paths;
    for (const FileUrl &url : excluded.urls())
        paths.append(url.displayPath());
    return paths;
}

/// Why nothing is removed there, as the end of a sentence.
QString obstacleText(Obstacle obstacle)
{
    switch (obstacle) {
    case Obstacle::Link:
        return tr("it is a link");
    case Obstacle::OtherFileSystem:
        return tr("it is on another disk");
    case Obstacle::Unreadable:
        return tr("it could not be read");
    case Obstacle::UnclearUserDirs:
        return tr("it cannot be read, so nobody knows which folders it names");
    }
    Q_UNREACHABLE();
}

/// Each place with its reason.
QString obstacleList(const QList<PlaceOutOfReach> &places)
{
    QStringList texts;
    for (const PlaceOutOfReach &place : places)
        texts.append(tr("“%1”, because %2")
                         .arg(QString::fromUtf8(place.path), obstacleText(place.obstacle)));
    return enumerated(texts);
}

/// What of the slice the user may miss; empty for most.
QString outOfReachIn(const Info &record, const ObstaclesOfSlice &outOfReach)
{
    const std::optional<SliceKind> kind = sliceKindNamed(record.name());
    const auto places = kind && outOfReach ? outOfReach(*kind) : QList<PlaceOutOfReach>();
    return places.isEmpty() ? QString() : tr(" (not %1)").arg(obstacleList(places));
}

/// The first lines, and how many there are besides.
QString shortened(const QStringList &lines)
{
    const qsizetype rest = lines.size() - kMostLines;
    QString text = lines.mid(0, kMostLines).join(u'\n');
    if (rest > 0)
        text += u'\n' + tr("and %1 more").arg(rest);
    return text;
}

} // namespace

QString confirmationText(const std::vector<std::shared_ptr<Info>> &records,
                         const ConfirmationDetails &details)
{
    QString list = tr("You have chosen to delete these slices:\n");
    for (const auto &record : records) {
        if (record->isOn())
            list += QStringLiteral("• %1\n").arg(record->name() + downloadsText(*record, details) +
                                                 withoutText(*record, details) +
                                                 outOfReachIn(*record, details.outOfReach));
    }
    return list + u'\n' +
           tr("Are you sure you want to permanently erase the items you’ve selected and that are "
              "in colored slices? You cannot undo this action and we recommend backing up "
              "before continuing.");
}

QString inUseText(const QStringList &programs, ProgramsSeen seen)
{
    if (programs.isEmpty())
        return {};
    const bool isOne = programs.size() == 1;
    QString text =
        isOne ? tr(" %1 is in use: its files stay.") : tr(" %1 are in use: their files stay.");
    if (seen == ProgramsSeen::Some)
        text = isOne ? tr(" %1 may be in use: its files stay.")
                     : tr(" %1 may be in use: their files stay.");
    return text.arg(enumerated(programs));
}

QString cacheInUseText(ProgramsSeen seen)
{
    return seen == ProgramsSeen::All
               ? tr(" A folder in it stays while a program has something open there.")
               : tr(" Vantor cannot see here which programs are running. Please close them before "
                    "you clean: what they have open there may go.");
}

QString outOfReachText(const QList<PlaceOutOfReach> &places)
{
    return places.isEmpty() ? QString() : tr(" Left alone: %1.").arg(obstacleList(places));
}

QString keptText(const QList<KeptContent> &kept)
{
    if (kept.isEmpty())
        return {};
    QStringList contents;
    for (const KeptContent &content : kept)
        contents.append(content.bytes
                            ? tr("%1 (%2)").arg(content.what, stringFromByteCount(*content.bytes))
                            : content.what);
    return tr(" Not removed, because it is no cache: %1.").arg(enumerated(contents));
}

QString leftAloneText(const CleaningReport &report)
{
    QStringList lines;
    for (const CleaningRefusal &refusal : report.refusals)
        lines.append(leftAloneLine(refusal));
    return shortened(lines);
}

QString foundExclusionsText(const QStringList &stored)
{
    const ExcludedPaths found = ExcludedPaths::fromStoredStrings(stored);
    return tr("They were not in Vantor's settings before. Vantor leaves them alone from now "
              "on:\n%1")
        .arg(shortened(displayPaths(found) + found.unparsable()));
}

QString unknownExclusionsText(const QString &damage, const ExcludedPaths &excluded)
{
    const QStringList paths = displayPaths(excluded);
    const QString known = paths.isEmpty() ? tr("No path is excluded now.")
                                          : tr("Excluded now:\n%1").arg(shortened(paths));
    return damage + QStringLiteral("\n\n") + known;
}

QString unparsableExclusionsText(const QStringList &stored)
{
    return tr("Nothing is cleaned while nobody knows what it stands for. Please remove it from "
              "your "
              "excluded paths in the preferences:\n%1")
        .arg(shortened(stored));
}
