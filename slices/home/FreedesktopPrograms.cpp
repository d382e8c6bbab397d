// What of a freedesktop home belongs to programs that may be running.

#include "slices/home/FreedesktopSurvey.h"
#include "slices/home/KnownPrograms.h"

void FreedesktopSurvey::addMailDownloads()
{
    for (const KnownMailProgram &program : knownMailPrograms()) {
        const char *folder = program.attachments;
        if (!m_reader.hasFolder(folder) || !add(SliceKind::MailDownloads, folder))
            continue;
        m_places.programs.push_back({QString::fromLatin1(program.name),
                                     {ProgramLock::Style::ProcessName, program.process},
                                     {folderUrl(folder)}});
    }
}

/// A profile may have any name, such as "logs": what it holds is no other slice's.
void FreedesktopSurvey::findBrowserData()
{
    m_found = findPrograms(m_reader);
    FileUrls &all = m_places.locations[indexOf(SliceKind::BrowserData)];
    for (const FoundProgram &found : m_found) {
        for (const QByteArray &profile : found.profiles)
            m_known.push_back(FolderIdentity::at(m_reader, profile));
        for (const QByteArray &path : found.files)
            all.append(m_home.appending(path, FileUrlKind::File));
    }
}

/// What programs may keep, once all locations are known.
void FreedesktopSurvey::addPrograms()
{
    for (const FoundProgram &found : m_found) {
        const FileUrls places = placesOf(found);
        if (!places.isEmpty())
            m_places.programs.push_back({found.program, found.lock, places});
    }
}

FileUrls FreedesktopSurvey::placesOf(const FoundProgram &found) const
{
    FileUrls places;
    for (const QByteArray &path : found.files)
        places.append(m_home.appending(path, FileUrlKind::File));
    for (const QByteArray &cache : found.caches)
        places += cachePlaces(cache);
    return places;
}

/// One that a program has for itself is a location, or none of ours.
FileUrls FreedesktopSurvey::cachePlaces(const QByteArray &cache) const
{
    FileUrls places;
    if (cache.contains('/')) {
        if (m_places.locations[indexOf(SliceKind::Cache)].contains(folderUrl(cache)))
            places.append(folderUrl(cache));
        return places;
    }
    for (const QByteArray &home : m_cacheHomes)
        places.append(folderUrl(home + '/' + cache));
    return places;
}
