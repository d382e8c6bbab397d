#include "slices/record/SliceCatalogue.h"

#include "slices/record/Info.h"

#include <algorithm>

namespace {

using Slices = std::array<SliceDescription, kSliceCount>;

constexpr Slices kSlices{{
    {.kind = SliceKind::Trash,
     .name = u"Trash",
     .details = u"Empty the Trash",
     .color = {93, 183, 26},
     .secondaryColor = {103, 166, 56},
     .isOnByDefault = true,
     .reveal = RevealPolicy::Always,
     .fixedPaths = {".Trash"},
     .usualPaths = {".local/share/Trash/files", ".local/share/Trash/info"}},
    {.kind = SliceKind::LargeFiles,
     .name = u"Large Files",
     .details = u"View all files (except files excluded in the Preferences) organized by size. "
                u"Added files are not deleted.",
     .color = {237, 215, 98},
     .secondaryColor = {206, 179, 36},
     .content = SliceContent::Files},
    {.kind = SliceKind::Cache,
     .name = u"Cache",
     .details = u"Cache files increase speeds of your apps. Cache files can acclimate over time to "
                u"gigabytes of data because some apps don’t ever delete them leading to many "
                u"unused files.",
     .color = {167, 118, 235},
     .secondaryColor = {135, 100, 183},
     .isOnByDefault = true,
     .fixedPaths = {"Library/Caches"},
     .usualPaths = {".cache"}},
    {.kind = SliceKind::AppLogs,
     .name = u"App Logs",
     .details = u"Similar to Cache, some apps make log files that could end up leading to large "
                u"files",
     .color = {93, 156, 236},
     .secondaryColor = {46, 126, 227},
     .isOnByDefault = true,
     .fixedPaths = {"Library/Logs"},
     .usualPaths = {".local/share", ".local/state", ".config", ".npm/_logs"}},
    {.kind = SliceKind::OldIos,
     .name = u"Old iOS",
     .details = u"Every single iOS update that is downloaded from iTunes is stored on your Mac.",
     .freedesktopDetails = u"Every single iOS update that is downloaded from iTunes is stored in "
                           u"the folder of Wine.",
     .color = {112, 210, 48},
     .secondaryColor = {123, 186, 82},
     .isOnByDefault = true,
     .reveal = RevealPolicy::WhenThere,
     .fixedPaths = {"Library/iTunes/iPad Software Updates", "Library/iTunes/iPod Software Updates",
                    "Library/iTunes/iPhone Software Updates"},
     .usualPaths = {".wine/drive_c/users"}},
    {.kind = SliceKind::Downloads,
     .name = u"Downloads",
     .details = u"Delete all items in the downloads folder. Please make sure to view and check "
                u"your downloads folder before deleting all files from there.",
     .color = {242, 175, 37},
     .secondaryColor = {237, 160, 29},
     .reveal = RevealPolicy::Always,
     .fixedPaths = {"Downloads"}},
    {.kind = SliceKind::MailDownloads,
     .name = u"Mail Downloads",
     .details = u"Attachments downloaded in Mail are stored in your hard drive when they are "
                u"opened.",
     .freedesktopDetails = u"Attachments downloaded in {mail programs} are stored in your hard "
                           u"drive when they are opened.",
     .color = {215, 112, 173},
     .secondaryColor = {220, 86, 165},
     .reveal = RevealPolicy::Always,
     .fixedPaths = {"Library/Containers/com.apple.mail/Data/Library/Mail Downloads"}},
    {.kind = SliceKind::BrowserData,
     .name = u"Browser Data",
     .details = u"Removes browser data from Safari and Chrome such as cookie files and website "
                u"cache.",
     .freedesktopDetails = u"Removes browser data from {browsers} such as cookie files, the "
                           u"history of the latter {chromiums} and what was typed into forms.",
     .color = {62, 173, 228},
     .secondaryColor = {18, 164, 236},
     .content = SliceContent::Files,
     .fixedPaths = {"Library/Application Support/Google/Chrome/Default/Cookies",
                    "Library/Application Support/Google/Chrome/Default/History",
                    "Library/Application Support/Google/Chrome/Default/Web Data",
                    "Library/Safari/History.plist", "Library/Safari/WebpageIcons.db"}},
}};

/// A slice is found by its kind, so each row must stand at its kind's index, and none may be
/// missing.
constexpr bool isComplete()
{
    for (int i = 0; i < kSliceCount; ++i) {
        const SliceDescription &slice = kSlices[static_cast<std::size_t>(i)];
        if (indexOf(slice.kind) != i || !slice.name || !slice.details)
            return false;
    }
    return true;
}
static_assert(isComplete());

} // namespace

const Slices &sliceCatalogue()
{
    return kSlices;
}

const SliceDescription &sliceDescription(SliceKind kind)
{
    return kSlices[indexOf(kind)];
}

std::optional<FileUrls> sliceLocations(SliceKind kind, const FileUrl &home)
{
    if (kind == SliceKind::LargeFiles)
        return std::nullopt;
    const SliceDescription &slice = sliceDescription(kind);
    const FileUrlKind urlKind =
        slice.content == SliceContent::Folders ? FileUrlKind::Folder : FileUrlKind::File;
    FileUrls urls;
    for (const char *path : slice.fixedPaths) {
        if (path)
            urls.append(home.appending(path, urlKind));
    }
    return urls;
}

bool infoIsFilesNotFolders(const Info &record)
{
    const std::optional<SliceKind> kind = sliceKindNamed(record.name());
    return kind && kSlices[indexOf(*kind)].content == SliceContent::Files;
}

std::optional<SliceKind> sliceKindNamed(const QString &name)
{
    const auto *const slice = std::ranges::find_if(
        kSlices, [&](const SliceDescription &each) { return name == QStringView(each.name); });
    return slice == kSlices.end() ? std::nullopt : std::optional(slice->kind);
}
