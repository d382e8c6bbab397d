#include "slices/home/PlacesOutOfReach.h"

#include "slices/home/KnownPrograms.h"
#include "slices/probe/HomeProbe.h"

namespace {

QByteArrayList usualPlaces(SliceKind kind)
{
    QByteArrayList places;
    for (const char *path : sliceDescription(kind).usualPaths) {
        if (path)
            places.append(path);
    }
    return places;
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
