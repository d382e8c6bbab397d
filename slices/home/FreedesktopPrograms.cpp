// The part of the survey that finds what belongs to programs that may be running.

#include "slices/home/FreedesktopSurvey.h"
#include "slices/home/KnownPrograms.h"

void FreedesktopSurvey::addMailDownloads()
{
    for (const KnownMailProgram &program : knownMailPrograms()) {
        const char *folder = program.attachments;
        if (!m_reader.hasFolder(folder) || !add(SliceKind::MailDownloads, folder))
            continue;
        m_findings.programs.push_back({QString::fromLatin1(program.name),
                                       {ProgramLock::Style::ProcessName, program.process},
                                       {folderUrl(folder)}});
    }
}

/// A profile may have any name, such as "logs": its content belongs to no other slice.
void FreedesktopSurvey::findBrowserData()
{
    m_found = findPrograms(m_reader);
    FileUrls &all = m_findings.locations[indexOf(SliceKind::BrowserData)];
    for (const FoundProgram &found : m_found) {
        for (const QByteArray &profile : found.profiles)
            m_known.push_back(FolderIdentity::at(m_reader, profile));
        for (const QByteArray &path : found.files)
            all.append(m_home.appending(path, FileUrlKind::File));
    }
}

/// Adds the locations that programs may use, once all locations are known.
void FreedesktopSurvey::addPrograms()
{
    for (const FoundProgram &found : m_found) {
        const FileUrls locations = locationsOf(found);
        if (!locations.isEmpty())
            m_findings.programs.push_back({found.program, found.lock, locations});
    }
}

FileUrls FreedesktopSurvey::locationsOf(const FoundProgram &found) const
{
    FileUrls locations;
    for (const QByteArray &path : found.files)
        locations.append(m_home.appending(path, FileUrlKind::File));
    for (const QByteArray &cache : found.caches)
        locations += cacheLocations(cache);
    return locations;
}

/// A cache of the program's own counts only when it is one of the locations.
FileUrls FreedesktopSurvey::cacheLocations(const QByteArray &cache) const
{
    FileUrls locations;
    if (cache.contains('/')) {
        if (m_findings.locations[indexOf(SliceKind::Cache)].contains(folderUrl(cache)))
            locations.append(folderUrl(cache));
        return locations;
    }
    for (const QByteArray &home : m_cacheHomes)
        locations.append(folderUrl(home + '/' + cache));
    return locations;
}
