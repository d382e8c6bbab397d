#pragma once

#include "slices/cleaning/RecordLocations.h"
#include "slices/cleaning/SlicesToClean.h"
#include "slices/record/Info.h"
#include "tests/slices/kit/Consent.h"
#include "tests/slices/kit/HomeKit.h"
#include "tests/support/calls/HookedSystem.h"

/// What the tests of whole plans share: a plan of all slices, and how it reads.

/// The plan of a cleaning of all slices of a home, made in the steps in which the program makes it.
inline CleaningPlan planOfEverything(const MadeHome &home, const HomeLayout &layout,
                                     const FileUrls &excluded = {},
                                     const SystemCalls &calls = HookedSystem())
{
    std::vector<std::shared_ptr<Info>> records;
    for (const SliceDescription &slice : sliceCatalogue())
        records.push_back(
            Info::infoWithName(QString::fromUtf16(slice.name), layout.locations(slice.kind)));
    setRecordLocations(records, layout, ProgramsInUse::find(calls, home.access(), layout));
    return makeCleaningPlan(calls, home.access(),
                            slicesToClean(layout, records, consentTo(home.access(), records)),
                            excluding(excluded));
}

/// What is done to a location, in words.
inline QByteArray verbOf(const CleaningLocation &location)
{
    const bool areFiles = location.content == SliceContent::Files;
    const bool goReadOnlyFolders = location.readOnlyFolders == ReadOnlyFolders::Emptied;
    if (areFiles && !goReadOnlyFolders && location.whatGoes != RemovalScope::LoneTrashInfo)
        return location.whatGoes == RemovalScope::RegularFiles ? "remove"
                                                               : "remove, whatever it is,";
    if (!areFiles && location.whatGoes == RemovalScope::Everything)
        return goReadOnlyFolders ? "empty, read-only folders too," : "empty";
    if (!areFiles && goReadOnlyFolders && location.whatGoes == RemovalScope::LoneTrashInfo)
        return "empty of lone records";
    return "DO NOBODY KNOWS WHAT TO";
}

/// "Cache: empty .cache/", and so on in the plan's order.
inline QByteArrayList linesOf(const MadeHome &home, const CleaningPlan &plan)
{
    QByteArrayList lines;
    for (const CleaningLocation &location : plan.locations())
        lines.append(location.slice.toUtf8() + ": " + verbOf(location) + ' ' +
                     home.relative(location.url));
    return lines;
}

/// "a link: .Trash", and so on.
inline QByteArrayList refusalsOf(const MadeHome &home, const CleaningPlan &plan)
{
    static const std::map<RefusalReason, QByteArray> kWords{
        {RefusalReason::Link, "a link: "}, {RefusalReason::NotAFile, "not a file: "}};
    QByteArrayList lines;
    for (const CleaningRefusal &refusal : plan.refusals()) {
        const auto words = kWords.find(refusal.reason);
        lines.append((words == kWords.end() ? QByteArray("SOMETHING ELSE: ") : words->second) +
                     home.relative(FileUrl::fromPath(refusal.path, FileUrlKind::File)));
    }
    return lines;
}

/// A line for each location, all with the same start.
inline QByteArrayList each(const QByteArray &start, const QByteArrayList &locations)
{
    QByteArrayList lines;
    for (const QByteArray &location : locations)
        lines.append(start + location);
    return lines;
}

/// "a -> b" is a link.
inline void makeAll(const MadeHome &home, const QByteArrayList &paths)
{
    for (const QByteArray &path : paths) {
        const qsizetype arrow = path.indexOf(" -> ");
        if (arrow < 0)
            home.make(path);
        else
            home.link(path.first(arrow), path.sliced(arrow + 4));
    }
}

/// Of kPlainHome.
inline QByteArrayList plainPlan(const QByteArrayList &downloads = {"Downloads/"})
{
    return QByteArrayList{"Trash: remove .local/share/Trash/directorysizes",
                          "Trash: empty, read-only folders too, .local/share/Trash/files/",
                          "Trash: empty of lone records .local/share/Trash/info/",
                          "Trash: empty, read-only folders too, .local/share/Trash/expunged/",
                          "Cache: empty .cache/",
                          "App Logs: empty .local/share/xorg/",
                          "App Logs: empty .npm/_logs/",
                          "App Logs: empty .config/editor/logs/",
                          "App Logs: empty .local/share/app/logs/",
                          "App Logs: empty .local/state/player/logs/"} +
           each("Downloads: empty ", downloads);
}
