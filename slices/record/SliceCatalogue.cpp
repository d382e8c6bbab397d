#include "slices/record/SliceCatalogue.h"

#include <algorithm>

namespace {

using Slices = std::array<SliceDescription, kSliceCount>;

constexpr Slices kSlices{{
    {SliceKind::Trash,
     u"Trash",
     u"Empty the Trash",
     {93, 183, 26},
     {103, 166, 56},
     SliceContent::Folders,
     true},
    {SliceKind::LargeFiles,
     u"Large Files",
     u"View all files (except files excluded in the Preferences) organized by size. Added files "
     u"are "
     u"not deleted.",
     {237, 215, 98},
     {206, 179, 36},
     SliceContent::Files,
     false},
    {SliceKind::Cache,
     u"Cache",
     u"Cache files increase speeds of your apps. Cache files can acclimate over time to gigabytes "
     u"of "
     u"data because some apps don’t ever delete them leading to many unused files.",
     {167, 118, 235},
     {135, 100, 183},
     SliceContent::Folders,
     true},
    {SliceKind::AppLogs,
     u"App Logs",
     u"Similar to Cache, some apps make log files that could end up leading to large files",
     {93, 156, 236},
     {46, 126, 227},
     SliceContent::Folders,
     true},
    {SliceKind::OldIos,
     u"Old iOS",
     u"Every single iOS update that is downloaded from iTunes is stored on your Mac.",
     {112, 210, 48},
     {123, 186, 82},
     SliceContent::Folders,
     true},
    {SliceKind::Downloads,
     u"Downloads",
     u"Delete all items in the downloads folder. Please make sure to view and check your downloads "
     u"folder before deleting all files from there.",
     {242, 175, 37},
     {237, 160, 29},
     SliceContent::Folders,
     false},
    {SliceKind::MailDownloads,
     u"Mail Downloads",
     u"Attachments downloaded in Mail are stored in your hard drive when they are opened.",
     {215, 112, 173},
     {220, 86, 165},
     SliceContent::Folders,
     false},
    {SliceKind::BrowserData,
     u"Browser Data",
     u"Removes browser data from Safari and Chrome such as cookie files and website cache.",
     {62, 173, 228},
     {18, 164, 236},
     SliceContent::Files,
     false},
}};

std::vector<const char *> relativePaths(SliceKind kind)
{
    switch (kind) {
    case SliceKind::Trash:
        return {".Trash"};
    case SliceKind::LargeFiles:
        return {};
    case SliceKind::Cache:
        return {"Library/Caches"};
    case SliceKind::AppLogs:
        return {"Library/Logs"};
    case SliceKind::OldIos:
        return {"Library/iTunes/iPad Software Updates", "Library/iTunes/iPod Software Updates",
                "Library/iTunes/iPhone Software Updates"};
    case SliceKind::Downloads:
        return {"Downloads"};
    case SliceKind::MailDownloads:
        return {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads"};
    case SliceKind::BrowserData:
        return {"Library/Application Support/Google/Chrome/Default/Cookies",
                "Library/Application Support/Google/Chrome/Default/History",
                "Library/Application Support/Google/Chrome/Default/Web Data",
                "Library/Safari/History.plist", "Library/Safari/WebpageIcons.db"};
    }
    Q_UNREACHABLE();
}

} // namespace

const Slices &sliceCatalogue()
{
    return kSlices;
}

std::optional<FileUrls> sliceLocations(SliceKind kind, const FileUrl &home)
{
    if (kind == SliceKind::LargeFiles)
        return std::nullopt;
    const bool areFolders = kSlices[indexOf(kind)].content == SliceContent::Folders;
    FileUrls urls;
    for (const char *path : relativePaths(kind))
        urls.append(home.appending(path, areFolders ? FileUrlKind::Folder : FileUrlKind::File));
    return urls;
}

std::optional<SliceKind> sliceKindNamed(const QString &name)
{
    const auto slice = std::ranges::find_if(
        kSlices, [&](const SliceDescription &each) { return name == QStringView(each.name); });
    return slice == kSlices.end() ? std::nullopt : std::optional(slice->kind);
}
