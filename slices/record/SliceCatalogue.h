#pragma once

#include "platform/files/FileUrl.h"

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

class Info;

/// The kinds of content in their fixed order. Everywhere else this index stands for a slice.
enum class SliceKind : std::uint8_t {
    Trash,
    LargeFiles,
    Cache,
    AppLogs,
    OldIos,
    Downloads,
    MailDownloads,
    BrowserData,
};

inline constexpr int kSliceCount = 8;

/// A colour's red, green and blue, 0 to 255.
using SliceColor = std::array<int, 3>;

/// What a slice's locations stand for.
enum class SliceContent {
    Folders, ///< folders whose contents are cleaned; the folders themselves stay
    Files,   ///< the files themselves are cleaned
};

/// When the page offers to show a slice's locations in the file manager.
enum class RevealPolicy {
    Never,
    Always,
    WhenThere, ///< for locations that few machines have: when one of them exists
};

/// All that the program knows of one slice before it looks at any disk. A new slice is a kind (and
/// one more in the count), a row of these, a drawing of the row's name, and a function of
/// FreedesktopSurvey that finds it.
struct SliceDescription
{
    static constexpr std::size_t kMostPaths = 5;
    using Paths = std::array<const char *, kMostPaths>;

    SliceKind kind = SliceKind::Trash;
    const char16_t *name = nullptr; ///< shown to people, and the name of its drawing
    const char16_t *details = nullptr;
    /// The text for a freedesktop home, when it needs another one. It may name programs with the
    /// placeholders of withProgramNames().
    const char16_t *freedesktopDetails = nullptr;
    SliceColor color{};
    SliceColor secondaryColor{};
    SliceContent content = SliceContent::Folders;
    bool isOnByDefault = false; ///< before the user has chosen anything
    RevealPolicy reveal = RevealPolicy::Never;
    /// The locations in a home with a Library, relative to the home; unused ones are null. In a
    /// freedesktop home a survey finds them.
    Paths fixedPaths{};
    /// Where a freedesktop home usually has the content, or the folders in which the survey begins
    /// to look for it; unused ones are null. The user is told when they cannot be reached.
    Paths usualPaths{};
};

/// A slice that is off.
inline constexpr SliceColor kOffColor{134, 134, 134};
inline constexpr SliceColor kOffSecondaryColor{110, 110, 110};

/// The size text of large files before the user picked any.
inline constexpr auto kClickToSelect = u"Click to select";

/// The eight slices in order. Immutable; any thread.
const std::array<SliceDescription, kSliceCount> &sliceCatalogue();
const SliceDescription &sliceDescription(SliceKind kind);

/// Where the slice's content lies below the home folder; nothing where the user chooses the files.
/// Does not look whether a location exists.
std::optional<FileUrls> sliceLocations(SliceKind kind, const FileUrl &home);

constexpr int indexOf(SliceKind kind)
{
    return static_cast<int>(kind);
}

/// Whether the record's locations are files that a cleaning removes themselves. The locations of a
/// record that is not in the catalogue are folders, whose contents are removed.
bool infoIsFilesNotFolders(const Info &record);

/// The kind of the slice with this name; nothing for a name that is no slice's.
std::optional<SliceKind> sliceKindNamed(const QString &name);
