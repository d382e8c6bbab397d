#pragma once

#include "platform/files/FileUrl.h"

#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

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

/// What the program knows of one slice before it looks at any disk.
struct SliceDescription
{
    SliceKind kind;
    const char16_t *name; ///< shown to people, and the name of its icon
    const char16_t *details;
    SliceColor color;
    SliceColor secondaryColor;
    SliceContent content;
    bool isOnByDefault;
};

/// A slice that is off.
inline constexpr SliceColor kOffColor{134, 134, 134};
inline constexpr SliceColor kOffSecondaryColor{110, 110, 110};

/// The size text of large files before the user picked any.
inline constexpr auto kClickToSelect = u"Click to select";

/// The eight slices in order. Immutable; any thread.
const std::array<SliceDescription, kSliceCount> &sliceCatalogue();

/// Where the slice's content lies below the home folder; nothing where the user chooses the files.
/// Whether a place exists is not looked at.
std::optional<FileUrls> sliceLocations(SliceKind kind, const FileUrl &home);

inline int indexOf(SliceKind kind)
{
    return static_cast<int>(kind);
}

/// The place of a name in the catalogue; nothing for a name that is no slice's.
std::optional<SliceKind> sliceKindNamed(const QString &name);
