#include "slices/home/PlacesOutOfReach.h"

#include "slices/home/KnownPrograms.h"
#include "slices/probe/HomeProbe.h"

namespace {

/// The folders in which the patterns of the survey begin, and those that have fixed names.
QByteArrayList usualPlaces(SliceKind kind)
{
    switch (kind) {
    case SliceKind::Trash:
        return {".local/share/Trash/files", ".local/share/Trash/info"};
    case SliceKind::Cache:
        return {".cache"};
    case SliceKind::AppLogs:
        return {".local/share", ".local/state", ".config", ".npm/_logs"};
    case SliceKind::OldIos:
        return {".wine/drive_c/users"};
    case SliceKind::LargeFiles:
    case SliceKind::Downloads:
    case SliceKind::MailDownloads:
    case SliceKind::BrowserData:
        break;
    }
    return {};
}

QByteArrayList attachmentPlaces()
{
    QByteArrayList places;
    for (const KnownMailProgram &program : knownMailPrograms())
        places.append(program.attachments);
    return places;
}

QByteArrayList profilePlaces()
{
    QByteArrayList places;
    for (const KnownProgram &program : knownPrograms()) {
        if (program.files != ProfileFiles::Known)
            continue;
        if (program.homeProfiles)
            places.append(program.homeProfiles);
        if (program.configProfiles)
            places.append(QByteArray(".config/") + program.configProfiles);
    }
    return places;
}

QByteArrayList placesOf(SliceKind kind, const NamedPlaces &named)
{
    if (kind == SliceKind::MailDownloads)
        return attachmentPlaces();
    if (kind == SliceKind::BrowserData)
        return profilePlaces();
    QByteArrayList places = usualPlaces(kind);
    if (kind == SliceKind::Downloads && !named.downloads.isEmpty())
        places.append(named.downloads);
    if (kind == SliceKind::Cache && !named.cache.isEmpty())
        places.append(named.cache);
    return places;
}

} // namespace

PlacesOutOfReach findPlacesOutOfReach(const HomeProbe &reader, const NamedPlaces &named)
{
    PlacesOutOfReach found;
    for (const SliceDescription &slice : sliceCatalogue()) {
        QList<PlaceOutOfReach> &ofSlice = found[indexOf(slice.kind)];
        for (const QByteArray &path : placesOf(slice.kind, named)) {
            const auto place = reader.obstacleOnTheWay(path);
            if (place && !ofSlice.contains(*place))
                ofSlice.append(*place);
        }
    }
    return found;
}
