#pragma once

#include "platform/files/FileUrl.h"

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

class Info;

/// The kinds of content in their fixed order; everywhere else a slice is known by this index.
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
    Folders, ///< folders whose contents are cleaned, they themselves stay
    Files,   ///< the very files that are cleaned
};

/// When the page offers to show a slice's locations in the file manager.
enum class RevealPolicy {
    Never,
    Always,
    WhenThere, ///< for locations that few machines have: when one of them exists
};

/// All that the program knows of one slice before it looks at any disk. A new slice is a kind, a
/// row of these, a drawing of the row's name, and a function of FreedesktopSurvey that finds it.
struct SliceDescription
{
    static constexpr std::size_t kMostPaths = 5;
    using Paths = std::array<const char *, kMostPaths>;

    SliceKind kind = SliceKind::Trash;
    const char16_t *name = nullptr; ///< shown to people, and the name of its drawing
    const char16_t *details = nullptr;
    /// Where a freedesktop home needs another text; it may name programs as withProgramNames() has
    /// it.
    const char16_t *freedesktopDetails = nullptr;
    SliceColor color{};
    SliceColor secondaryColor{};
    SliceContent content = SliceContent::Folders;
    bool isOnByDefault = false; ///< before the user has chosen anything
    RevealPolicy reveal = RevealPolicy::Never;
    /// In a home with a Library, relative to the home; the rest is null. A freedesktop home is
    /// surveyed.
    Paths libraryPaths{};
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
/// Whether a location exists is not looked at.
std::optional<FileUrls> sliceLocations(SliceKind kind, const FileUrl &home);

constexpr int indexOf(SliceKind kind)
{
    return static_cast<int>(kind);
}

/// Whether the record's locations are the very files that a cleaning removes. Those of a record
/// that is none of the catalogue's are folders, of which the contents go.
bool infoIsFilesNotFolders(const Info &record);

/// The kind of the slice with this name; nothing for a name that is no slice's.
std::optional<SliceKind> sliceKindNamed(const QString &name);
