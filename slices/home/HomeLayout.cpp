#include "slices/home/HomeLayout.h"

#include "slices/home/KnownPrograms.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("HomeLayout", text);
}

} // namespace

HomeLayout HomeLayout::withLibrary(const FileUrl &home)
{
    HomeLayout layout;
    layout.m_kind = HomeKind::Library;
    layout.m_home = home;
    return layout;
}

HomeLayout HomeLayout::freedesktop(const FileUrl &home, Findings findings)
{
    HomeLayout layout;
    layout.m_kind = HomeKind::Freedesktop;
    layout.m_home = home;
    layout.m_findings = std::move(findings);
    return layout;
}

std::optional<FileUrls> HomeLayout::locations(SliceKind kind) const
{
    if (m_kind == HomeKind::Library)
        return sliceLocations(kind, m_home);
    if (m_kind == HomeKind::Unknown || kind == SliceKind::LargeFiles)
        return std::nullopt;
    return m_findings.locations[indexOf(kind)];
}

QString HomeLayout::nameOfDownloads() const
{
    const FileUrls downloads = locations(SliceKind::Downloads).value_or(FileUrls());
    if (m_kind != HomeKind::Freedesktop || downloads.isEmpty())
        return {};
    const QByteArray path = downloads.constFirst().path().sliced(m_home.path().size() + 1);
    return path == "Downloads" ? QString() : QString::fromUtf8(path);
}

QString HomeLayout::details(SliceKind kind) const
{
    const SliceDescription &slice = sliceDescription(kind);
    if (m_kind == HomeKind::Freedesktop && slice.freedesktopDetails)
        return withProgramNames(QString::fromUtf16(slice.freedesktopDetails));
    const QString details = QString::fromUtf16(slice.details);
    const QString downloads = kind == SliceKind::Downloads ? nameOfDownloads() : QString();
    return downloads.isEmpty() ? details : details + tr(" It is called “%1”.").arg(downloads);
}

FileUrl HomeLayout::trashFolder() const
{
    return m_kind == HomeKind::Library ? locations(SliceKind::Trash)->constLast()
                                       : m_findings.trashFolder;
}

bool HomeLayout::isInTrash(const FileUrl &location) const
{
    return m_kind == HomeKind::Freedesktop &&
           m_findings.locations[indexOf(SliceKind::Trash)].contains(location);
}
